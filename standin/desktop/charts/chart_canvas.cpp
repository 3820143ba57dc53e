#include "desktop/charts/chart_canvas.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QFontInfo>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/charts/chart_cursor.h"
#include "desktop/common/scheme.h"

namespace lvx::desktop {

using civil::Vec2;

namespace {

/// How near the mouse must come, in pixels.
constexpr double kReach = 8.0;
constexpr double kZoomStep = 1.25;

}  // namespace

ChartCanvas::ChartCanvas(ChartView& owner) : QWidget(&owner), owner_(owner) {
  setObjectName(QStringLiteral("canvas"));
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(160, 90);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setCursor(Qt::CrossCursor);
}

QPoint ChartCanvas::pixelOf(Vec2 place) const {
  const Vec2 pixel = port_.toPixels(place);
  return plot().topLeft() + QPointF(pixel.x, pixel.y).toPoint();
}

void ChartCanvas::fit() {
  isFitted_ = true;
  port_ = painter().viewportFor(rect(), chosen_);
  changed();
}

void ChartCanvas::setExaggeration(double factor) {
  chosen_ = factor;
  if (isFitted_ || factor <= 0.0) {
    fit();
    return;
  }
  port_.setExaggeration(factor);
  changed();
}

void ChartCanvas::setHighlighted(int index) {
  if (highlighted_ == index) return;
  highlighted_ = index;
  changed();
}

void ChartCanvas::setCursorLine(std::optional<ChartCursor> cursor) {
  if (!cursor && !cursorLine_) return;
  cursorLine_ = std::move(cursor);
  update();
}

void ChartCanvas::changed() {
  isStale_ = true;
  update();
}

void ChartCanvas::chartChanged(bool keepsPlace) {
  hover_ = -1;
  if (!keepsPlace || isFitted_) fit();
  refreshPointer();
  changed();
}

void ChartCanvas::shift(civil::Vec2 by) {
  if (isFitted_) return;
  port_.setCentre(port_.centre() + by);
  refreshPointer();
  changed();
}

void ChartCanvas::repaintTo(QPainter& target, const QRectF& area, const ChartLook& look) const {
  const ChartPainter chart(owner_.chart(), look, pixelFont());
  // The same part of the chart at the same size, however large the margins of the look's font are.
  view::Viewport port = port_;
  const QRect plotArea = chart.plotArea(area);
  port.resize(plotArea.width(), plotArea.height());
  chart.paint(target, area, port);
}

QFont ChartCanvas::pixelFont() const {
  QFont result = font();
  result.setPixelSize(std::max(QFontInfo(font()).pixelSize(), 8));
  return result;
}

void ChartCanvas::paintEvent(QPaintEvent*) {
  const ChartPainter chart = painter();
  const double ratio = devicePixelRatioF();
  const QSize pixels = (QSizeF(size()) * ratio).toSize();
  if (isStale_ || picture_.size() != pixels || picture_.devicePixelRatio() != ratio) {
    picture_ = QPixmap(pixels);
    picture_.setDevicePixelRatio(ratio);
    picture_.fill(chart.look().paper);
    QPainter still(&picture_);
    paintStill(still, chart);
    isStale_ = false;
  }
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  if (hasFocus()) paintFocus(painter, rect(), palette());
  if (isEmpty()) return;
  if (cursorLine_ && !mouse_)
    paintCursorLine(painter, owner_.chart(), *cursorLine_, chart.look(), chart.font(), plot(), port_,
                    chart.xText(cursorLine_->x, 3));
  if (!mouse_ || isDragging_) return;
  chart.paintCross(painter, rect(), port_, *mouse_);
  if (const auto snap = owner_.snap(*mouse_, reach())) chart.paintSnap(painter, rect(), port_, snap->place, snap->text);
}

void ChartCanvas::resizeEvent(QResizeEvent*) {
  if (isFitted_) {
    fit();
  } else {
    const QRect area = plot();
    port_.resize(area.width(), area.height());
    changed();
  }
}

void ChartCanvas::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange ||
      event->type() == QEvent::StyleChange)
    changed();
  QWidget::changeEvent(event);
}

void ChartCanvas::wheelEvent(QWheelEvent* event) {
  const int turned = event->angleDelta().y();
  if (isEmpty() || turned == 0) return;
  zoom(event->position(), std::pow(kZoomStep, turned / 120.0));
  event->accept();
}

void ChartCanvas::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) return;
  pressed_ = event->position();
  last_ = event->position();
  pressedButton_ = event->button();
}

void ChartCanvas::mouseMoveEvent(QMouseEvent* event) {
  if (pressed_) {
    if (!isDragging_ && (event->position() - *pressed_).manhattanLength() >= QApplication::startDragDistance()) {
      isDragging_ = true;
      setCursor(Qt::ClosedHandCursor);
    }
    if (isDragging_ && !isEmpty()) {
      const QPointF moved = event->position() - last_;
      port_.panBy({moved.x(), moved.y()});
      isFitted_ = false;
      last_ = event->position();
      changed();
    }
  }
  point(event->position());
}

void ChartCanvas::mouseReleaseEvent(QMouseEvent* event) {
  if (!pressed_ || event->button() != pressedButton_) return;
  const bool wasDrag = isDragging_;
  pressed_.reset();
  isDragging_ = false;
  setCursor(Qt::CrossCursor);
  point(event->position());
  if (wasDrag || event->button() != Qt::LeftButton || !mouse_) return;
  // What a click does may take the chart from under the mouse.
  const Vec2 place = *mouse_;
  const int index = owner_.seriesAt(place, reach());
  if (index >= 0) owner_.seriesClicked(index);
  owner_.placeClicked(place, index >= 0);
}

void ChartCanvas::contextMenuEvent(QContextMenuEvent* event) { owner_.showMenu(event->globalPos()); }

void ChartCanvas::keyPressEvent(QKeyEvent* event) {
  constexpr double kStep = 40.0;
  const QPointF middle = QRectF(plot()).center();
  switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      zoom(middle, kZoomStep);
      return;
    case Qt::Key_Minus:
      zoom(middle, 1.0 / kZoomStep);
      return;
    case Qt::Key_Left:
      pan({kStep, 0.0});
      return;
    case Qt::Key_Right:
      pan({-kStep, 0.0});
      return;
    case Qt::Key_Up:
      pan({0.0, kStep});
      return;
    case Qt::Key_Down:
      pan({0.0, -kStep});
      return;
    case Qt::Key_Home:
      fit();
      return;
    default:
      QWidget::keyPressEvent(event);
  }
}

Vec2 ChartCanvas::reach() const { return {kReach / port_.scale(), kReach / (port_.scale() * port_.exaggeration())}; }

void ChartCanvas::paintStill(QPainter& still, const ChartPainter& chart) const {
  if (!isEmpty()) {
    chart.paint(still, rect(), port_, hover_ >= 0 ? hover_ : highlighted_);
    return;
  }
  still.setFont(font());
  still.setPen(chart.look().faintInk);
  still.drawText(rect().adjusted(16, 16, -16, -16), static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap,
                 owner_.chart().emptyText);
}

void ChartCanvas::zoom(QPointF at, double factor) {
  const QPointF inPlot = at - plot().topLeft();
  port_.zoomAt({inPlot.x(), inPlot.y()}, factor);
  isFitted_ = false;
  changed();
  refreshPointer();
}

void ChartCanvas::pan(Vec2 pixels) {
  port_.panBy(pixels);
  isFitted_ = false;
  changed();
  refreshPointer();
}

void ChartCanvas::refreshPointer() {
  if (!mouse_) return;
  // Where the last event had it, unless the canvas moved below it: the cursor's own place is rounded to whole pixels, each
  // of them some of a fine screen.
  const QPointF cursor = mapFromGlobal(QPointF(QCursor::pos()));
  constexpr double kRounding = 2.0;
  point((cursor - at_).manhattanLength() <= kRounding ? at_ : cursor);
}

void ChartCanvas::point(QPointF at) {
  at_ = at;
  const QRect area = plot();
  if (isEmpty() || !QRectF(area).contains(at)) {
    leave();
    return;
  }
  const QPointF inPlot = at - area.topLeft();
  mouse_ = port_.toDrawing({inPlot.x(), inPlot.y()});
  const int under = isDragging_ ? -1 : owner_.seriesAt(*mouse_, reach());
  if (under != hover_) {
    hover_ = under;
    isStale_ = true;
  }
  owner_.pointAt(mouse_);
  update();
}

void ChartCanvas::leave() {
  if (!mouse_) return;
  mouse_.reset();
  if (hover_ >= 0) isStale_ = true;
  hover_ = -1;
  owner_.pointAt({});
  update();
}

}  // namespace lvx::desktop
