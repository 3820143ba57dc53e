#include "desktop/plan/plan_view.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>
#include <QStyleHints>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/common/scheme.h"
#include "desktop/plan/object_names.h"
#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_gestures.h"
#include "desktop/plan/plan_pointer.h"

namespace lvx::desktop {

using civil::Box;
using civil::Handle;
using civil::ObjectKind;
using civil::Vec2;

namespace {

/// Movements nearer to one another are one view to go back to; milliseconds.
constexpr qint64 kOneMove = 600;
/// Of the window, for an arrow key.
constexpr double kKeyPan = 1.0 / 8.0;
/// Of the window, around an object that is shown alone.
constexpr double kZoomMargin = 0.15;
/// A point alone is shown with its neighbourhood, not at whatever scale there was; drawing units.
constexpr double kLeastExtent = 20.0;

Vec2 vec(QPointF point) { return {point.x(), point.y()}; }
QPointF point(Vec2 place) { return {place.x, place.y}; }
bool isDragDistance(QPointF from, QPointF to) {
  return (to - from).manhattanLength() >= QGuiApplication::styleHints()->startDragDistance();
}

}  // namespace

PlanView::PlanView(QWidget* parent)
    : QWidget(parent), tiles_([this] {
        // On the worker's thread.
        QMetaObject::invokeMethod(this, &PlanView::tileArrived, Qt::QueuedConnection);
      }) {
  setObjectName(QStringLiteral("planView"));
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(200, 150);
  setAccessibleName(tr("Plan"));
  grabGesture(Qt::PinchGesture);
  tileTime_.setSingleShot(true);
  connect(&tileTime_, &QTimer::timeout, this, &PlanView::invalidate);
}

PlanView::~PlanView() { tiles_.setScene(nullptr); }

// ---------------------------------------------------------------- what shows

void PlanView::setScene(std::shared_ptr<view::PlanScene> scene) {
  endZoomRectangle();
  cancelInteraction();
  endPull(false);
  handles_.clear();
  preview_.reset();
  tiles_.setScene(scene);
  scene_ = std::move(scene);
  hovered_.reset();
  pile_.reset();
  selected_.clear();
  painter_.clear();
  zoomToAll();
  history_.begin(place());
  Q_EMIT viewsChanged();
  invalidate();
}

void PlanView::refresh() {
  hovered_.reset();
  pile_.reset();
  painter_.clear();
  invalidate();
}

void PlanView::setLook(const PlanLook& look) {
  if (look == look_) return;
  look_ = look;
  pile_.reset();
  invalidate();
}

void PlanView::setVisibility(const view::Visibility& visibility) {
  if (!scene_) return;
  scene_->setVisibility(visibility);
  hovered_.reset();
  pile_.reset();
  invalidate();
}

void PlanView::zoomToAll() {
  showsAll_ = true;
  if (scene_) viewport_.show(scene_->box());
  viewChanged(Step::New);
}

void PlanView::zoomTo(Handle handle) {
  if (!scene_) return;
  const std::optional<Box> box = scene_->boxOf(handle);
  if (!box || box->isEmpty()) return;
  showsAll_ = false;
  viewport_.show(view::withLeastExtent(*box, kLeastExtent), kZoomMargin);
  viewChanged(Step::New);
}

void PlanView::zoomToBox(const Box& box) {
  if (!scene_ || !(box.maxX > box.minX) || !(box.maxY > box.minY)) return;
  showsAll_ = false;
  viewport_.show(box, 0.0);
  viewChanged(Step::New);
}

void PlanView::setPlace(const Place& place) {
  if (place.showsAll) return zoomToAll();
  takePlace(place);
  viewChanged(Step::New);
}

void PlanView::takePlace(const Place& place) {
  showsAll_ = place.showsAll;
  if (showsAll_ && scene_) return viewport_.show(scene_->box());
  viewport_.setScale(place.scale);
  viewport_.setCentre(place.centre);
}

void PlanView::showPreviousView() {
  if (!scene_ || !history_.hasBefore()) return;
  takePlace(history_.back());
  viewChanged(Step::Resized);
  Q_EMIT viewsChanged();
}

void PlanView::showNextView() {
  if (!scene_ || !history_.hasNext()) return;
  takePlace(history_.forth());
  viewChanged(Step::Resized);
  Q_EMIT viewsChanged();
}

void PlanView::startZoomRectangle() {
  if (!scene_) return;
  endPull(false);
  press_.reset();
  hovered_.reset();
  pile_.reset();
  zoomRectangle_.begin();
  setFocus(Qt::OtherFocusReason);
  showCursor();
  update();
}

void PlanView::endZoomRectangle() {
  if (!zoomRectangle_.isBegun()) return;
  zoomRectangle_.end();
  showCursor();
  update();
}

bool PlanView::drawZoomRectangle(QMouseEvent* event) {
  const bool isLeft = event->button() == Qt::LeftButton;
  const bool isPress = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
  if (isPress && isLeft && event->modifiers() == Qt::ControlModifier && !corner_) startZoomRectangle();
  if (!zoomRectangle_.isBegun() || panFrom_) return false;
  std::optional<Box> box;
  if (isPress && isLeft) {
    box = zoomRectangle_.press(event->position(), viewport_);
  } else if (isPress && event->button() == Qt::RightButton) {
    answeredByMenuButton_ = true;
    endZoomRectangle();
  } else if (event->type() == QEvent::MouseMove) {
    zoomRectangle_.move(event->position(), viewport_);
    Q_EMIT mouseAt(point(viewport_.toDrawing(vec(event->position()))));
  } else if (event->type() == QEvent::MouseButtonRelease && isLeft) {
    box = zoomRectangle_.release(event->position(), viewport_);
  } else {
    return false;
  }
  showCursor();
  update();
  if (box) zoomToBox(*box);
  return true;
}

void PlanView::zoomIn() { zoomAt(zoomPlace(), kZoomStep); }
void PlanView::zoomOut() { zoomAt(zoomPlace(), 1.0 / kZoomStep); }

void PlanView::setSelected(const std::vector<Handle>& handles) {
  selected_.clear();
  selected_.add(handles);
  invalidate();
}

void PlanView::setPreview(std::shared_ptr<const view::LineSet> lines) {
  preview_ = std::move(lines);
  invalidate();
}

void PlanView::setHandles(std::vector<Vec2> places) {
  endPull(false);
  handles_ = std::move(places);
  update();
}

void PlanView::setPulled(std::vector<Vec2> line) {
  pulled_ = std::move(line);
  update();
}

// ---------------------------------------------------------------- pulling at handles

std::optional<int> PlanView::handleAt(QPointF place) const {
  if (mode_ != Mode::None) return std::nullopt;
  constexpr double kReach = kPickRadius + 2.0;
  for (std::size_t i = 0; i < handles_.size(); ++i) {
    const QPointF away = point(viewport_.toPixels(handles_[i])) - place;
    if (std::max(std::abs(away.x()), std::abs(away.y())) <= kReach) return static_cast<int>(i);
  }
  return std::nullopt;
}

void PlanView::pull(QPointF place) {
  if (!pull_->isMoved && !isDragDistance(pull_->place, place)) return;
  pull_->isMoved = true;
  pull_->place = place;
  Q_EMIT handlePulled(pull_->index, point(viewport_.toDrawing(vec(place))));
}

void PlanView::endPull(bool drops) {
  if (!pull_) return;
  const Pull ended = *pull_;
  pull_.reset();
  pulled_.clear();
  showCursor();
  update();
  if (drops && ended.isMoved)
    Q_EMIT handleDropped(ended.index, point(viewport_.toDrawing(vec(ended.place))));
  else
    Q_EMIT handleLeft();
}

void PlanView::paintHandles(QPainter& painter) const {
  const PlanColours& colours = planColours(look_.dark);
  painter.setRenderHint(QPainter::Antialiasing);
  if (pulled_.size() > 1) {
    QPolygonF line;
    for (const Vec2 vertex : pulled_) line.push_back(point(viewport_.toPixels(vertex)));
    painter.setPen(QPen(colours.preview, 2.4, Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(line);
  }
  constexpr double kHalf = 4.5;
  painter.setPen(QPen(colours.ground, 1.0));
  painter.setBrush(colours.selected);
  for (const Vec2 place : handles_) {
    const QPointF middle = point(viewport_.toPixels(place));
    painter.drawRect(QRectF(middle - QPointF(kHalf, kHalf), QSizeF(2 * kHalf, 2 * kHalf)));
  }
}

// ---------------------------------------------------------------- interactions

void PlanView::startPick(const QString& prompt) {
  cancelInteraction();
  addPrompt_ = prompt;
  only_.reset();
  start(Mode::Pick);
}

void PlanView::startSelection(const QString& addPrompt, const QString& removePrompt, std::optional<ObjectKind> only) {
  cancelInteraction();
  addPrompt_ = addPrompt;
  removePrompt_ = removePrompt;
  only_ = only;
  start(Mode::Select);
}

void PlanView::start(Mode mode) {
  endPull(false);
  mode_ = mode;
  isRemoving_ = false;
  selection_.clear();
  corner_.reset();
  press_.reset();
  pile_.reset();
  setFocus(Qt::OtherFocusReason);
  showCursor();
  // The mouse may have come here while a dialog was in front.
  const QPoint place = mapFromGlobal(QCursor::pos());
  if (isVisible() && rect().contains(place)) mouse_ = place;
  if (mouse_) hover(*mouse_);
  invalidate();
  Q_EMIT promptChanged(prompt());
}

void PlanView::endInteraction() {
  mode_ = Mode::None;
  tool_ = nullptr;
  corner_.reset();
  press_.reset();
  hovered_.reset();
  pile_.reset();
  selection_.clear();
  showCursor();
  invalidate();
  Q_EMIT promptChanged(QString());
}

void PlanView::cancelInteraction() {
  if (mode_ == Mode::None) return;
  PlanTool* const tool = tool_;
  endInteraction();
  if (tool != nullptr)
    tool->ended();
  else
    Q_EMIT gaveUp();
}

void PlanView::startTool(PlanTool& tool) {
  cancelInteraction();
  tool_ = &tool;
  start(Mode::Tool);
}

void PlanView::endTool(const PlanTool& tool) {
  if (tool_ == &tool) endInteraction();
}

void PlanView::setGroundOverlay(const PlanOverlay* overlay) {
  groundOverlay_ = overlay;
  invalidate();
}

void PlanView::refreshGroundOverlay() { invalidate(); }

void PlanView::addOverlay(const PlanOverlay& overlay) {
  overlays_.push_back(&overlay);
  update();
}

void PlanView::removeOverlay(const PlanOverlay& overlay) {
  std::erase(overlays_, &overlay);
  update();
}

void PlanView::finishInteraction() {
  if (mode_ == Mode::Tool) tool_->finished();
  if (mode_ != Mode::Select) return;
  const std::vector<Handle> handles = selection_.handles();
  endInteraction();
  Q_EMIT selected(QList<quint64>(handles.begin(), handles.end()));
}

void PlanView::offerPick(Handle handle) {
  if (handle == 0 || !scene_) return;
  if (mode_ == Mode::Pick) {
    endInteraction();
    Q_EMIT picked(handle);
  } else if (mode_ == Mode::Select) {
    const std::optional<view::Description> object = scene_->describe(handle);
    if (object && (!only_ || object->kind == *only_)) take(std::span(&handle, 1), isRemoving_);
  }
}

void PlanView::setRemoving(bool removing) {
  isRemoving_ = removing;
  update();
  Q_EMIT promptChanged(prompt());
}

QString PlanView::prompt() const {
  if (mode_ == Mode::Tool) return tool_->prompt();
  return isRemoving_ ? removePrompt_ : addPrompt_;
}

void PlanView::take(std::span<const Handle> handles, bool remove) {
  if (remove)
    selection_.remove(handles);
  else
    selection_.add(handles);
  invalidate();
}

void PlanView::endRectangle(QPointF place, Qt::KeyboardModifiers modifiers) {
  const bool crossing = place.x() < cornerPixel().x();
  const Box box = view::boxOf(*corner_, viewport_.toDrawing(vec(place)));
  corner_.reset();
  if (const std::optional<view::KindSet> wanted = kinds(); scene_ && wanted)
    take(scene_->inside(box, crossing, *wanted), isRemoving_ || modifiers.testFlag(Qt::ShiftModifier));
  update();
}

QPointF PlanView::cornerPixel() const { return point(viewport_.toPixels(*corner_)); }

// ---------------------------------------------------------------- what lies under the mouse

std::optional<view::KindSet> PlanView::kinds() const {
  if (mode_ == Mode::Tool) return std::nullopt;
  const std::array shown{
      std::pair(ObjectKind::Alignment, look_.alignments),
      std::pair(ObjectKind::SampleLine, look_.sampleLines),
      std::pair(ObjectKind::Point, look_.points),
      std::pair(ObjectKind::Corridor, look_.corridors),
      std::pair(ObjectKind::Surface, look_.border || look_.surface != SurfaceLook::None),
  };
  view::KindSet kinds;
  for (const auto& [kind, isShown] : shown)
    if (isShown && (mode_ != Mode::Select || !only_ || kind == *only_)) kinds.add(kind);
  // An empty set would stand for all of them.
  if (kinds == view::KindSet()) return std::nullopt;
  return kinds;
}

std::optional<view::Hit> PlanView::hitAt(QPointF place) const {
  const std::optional<view::KindSet> wanted = kinds();
  if (!scene_ || !wanted) return std::nullopt;
  const Vec2 at = viewport_.toDrawing(vec(place));
  const double radius = kPickRadius / viewport_.scale();
  // From far away points are dots without names, everywhere along a road: there a line is what is meant.
  if (painter_.isCrowded() && mode_ != Mode::Select) {
    view::KindSet lines;
    for (const ObjectKind kind : {ObjectKind::Alignment, ObjectKind::SampleLine, ObjectKind::Corridor})
      if (wanted->has(kind)) lines.add(kind);
    if (lines != view::KindSet())
      if (std::optional<view::Hit> line = scene_->hit(at, radius, lines)) return line;
  }
  return scene_->hit(at, radius, *wanted);
}

std::vector<view::Hit> PlanView::pileAt(QPointF place) const {
  const std::optional<view::KindSet> wanted = kinds();
  const std::optional<view::Hit> first = hitAt(place);
  if (!first) return {};
  std::vector<view::Hit> hits = scene_->hits(viewport_.toDrawing(vec(place)), kPickRadius / viewport_.scale(), *wanted);
  const auto found = std::find(hits.begin(), hits.end(), *first);
  if (found != hits.end()) std::rotate(hits.begin(), found, found + 1);
  return hits;
}

bool PlanView::isOnPile(QPointF place) const {
  return pile_ && std::max(std::abs(place.x() - pile_->place.x()), std::abs(place.y() - pile_->place.y())) <= 2.0;
}

std::optional<view::Hit> PlanView::meantAt(QPointF place) const {
  return isOnPile(place) ? pile_->hits[pile_->turn] : hitAt(place);
}

void PlanView::showNextBelow() {
  if (!mouse_ || corner_) return;
  if (!isOnPile(*mouse_)) {
    pile_.reset();
    if (std::vector<view::Hit> hits = pileAt(*mouse_); hits.size() > 1) pile_ = Pile{.place = *mouse_, .hits = hits};
  }
  if (!pile_) return;
  pile_->turn = (pile_->turn + 1) % pile_->hits.size();
  pile_->isClicked = false;
  hover(*mouse_);
}

void PlanView::hover(QPointF place) {
  const Handle before = hovered_ ? hovered_->handle : 0;
  hovered_.reset();
  if (zoomRectangle_.isBegun()) return;
  if (!isOnPile(place)) pile_.reset();
  if (!corner_) hovered_ = meantAt(place);
  isOnSeveral_ = mode_ == Mode::Pick && (pile_ || pileAt(place).size() > 1);
  // The ground is everywhere: naming it at every step would be noise, unless it may be what is wanted.
  if (hovered_ && hovered_->kind == ObjectKind::Surface && mode_ == Mode::None && !pile_) hovered_.reset();
  // The box beside the pointer moves with it.
  if (before != 0 || hovered_ || mode_ != Mode::None) update();
}

void PlanView::clickAt(QPointF place, Qt::KeyboardModifiers modifiers) {
  if (isOnPile(place)) {
    if (pile_->isClicked) pile_->turn = (pile_->turn + 1) % pile_->hits.size();
  } else if (mode_ != Mode::Pick && !corner_) {
    pile_.reset();
    if (std::vector<view::Hit> hits = pileAt(place); hits.size() > 1) pile_ = Pile{.place = place, .hits = hits};
  }
  if (pile_) pile_->isClicked = true;
  const std::optional<view::Hit> hit = meantAt(place);
  switch (mode_) {
    case Mode::None:
      Q_EMIT clicked(hit ? hit->handle : 0);
      return;
    case Mode::Pick:
      if (!hit) return cancelInteraction();  // a click on nothing is an answer, as in the CAD program
      endInteraction();
      Q_EMIT picked(hit->handle);
      return;
    case Mode::Tool: {
      const QString before = prompt();
      tool_->clicked(viewport_.toDrawing(vec(place)), toolReach());
      update();
      if (mode_ == Mode::Tool && prompt() != before) Q_EMIT promptChanged(prompt());
      return;
    }
    case Mode::Select:
      if (corner_)
        endRectangle(place, modifiers);
      else if (hit)
        take(std::span(&hit->handle, 1), isRemoving_ || modifiers.testFlag(Qt::ShiftModifier));
      else
        corner_ = viewport_.toDrawing(vec(place));
      hover(place);
      update();
      return;
  }
}

// ---------------------------------------------------------------- mouse and keyboard

void PlanView::mousePressEvent(QMouseEvent* event) {
  const QPointF place = event->position();
  mouse_ = place;
  if (drawZoomRectangle(event)) return;
  if (event->button() == Qt::MiddleButton) {
    panFrom_ = place;
    showCursor();
  } else if (event->button() == Qt::LeftButton) {
    if (mode_ == Mode::Pick) {
      // At once, as a hand that moves on while it clicks meant the place where it pressed.
      clickAt(place, event->modifiers());
      return;
    }
    if (const std::optional<int> handle = handleAt(place)) {
      pull_ = Pull{.index = *handle, .place = place};
      showCursor();
      return;
    }
    press_ = Press{.place = place};
  } else if (event->button() == Qt::RightButton) {
    answeredByMenuButton_ = mode_ != Mode::None;
    if (mode_ == Mode::Pick)
      cancelInteraction();
    else if (mode_ != Mode::None)
      finishInteraction();
    else
      event->ignore();
  } else {
    event->ignore();
  }
}

void PlanView::mouseMoveEvent(QMouseEvent* event) {
  const QPointF place = event->position();
  mouse_ = place;
  if (drawZoomRectangle(event)) return;
  if (panFrom_) {
    panBy(place - *panFrom_);
    panFrom_ = place;
  } else if (pull_) {
    pull(place);
  } else if (press_) {
    if (!press_->isDrag && isDragDistance(press_->place, place)) {
      press_->isDrag = true;
      if (mode_ == Mode::Select) {
        if (!corner_) corner_ = viewport_.toDrawing(vec(press_->place));
      } else {
        const std::optional<view::Hit> hit = hitAt(press_->place);
        press_->pans = !hit || hit->kind == ObjectKind::Surface;
        showCursor();
      }
    }
    if (press_->pans) {
      panBy(place - press_->place);
      press_->place = place;
    } else {
      hover(place);
    }
  } else {
    hover(place);
    if (mode_ == Mode::None && !handles_.empty()) showCursor();
  }
  if (mode_ == Mode::Tool) tool_->moved(viewport_.toDrawing(vec(place)), toolReach());
  if (corner_ || mode_ == Mode::Tool) update();
  Q_EMIT mouseAt(point(viewport_.toDrawing(vec(place))));
}

void PlanView::mouseReleaseEvent(QMouseEvent* event) {
  if (drawZoomRectangle(event)) return;
  if (event->button() == Qt::MiddleButton) {
    panFrom_.reset();
    showCursor();
  } else if (event->button() == Qt::LeftButton && pull_) {
    endPull(true);
    hover(event->position());
  } else if (event->button() == Qt::LeftButton && press_) {
    const Press press = *press_;
    press_.reset();
    showCursor();
    if (!press.isDrag) {
      clickAt(press.place, event->modifiers());
    } else if (corner_) {
      endRectangle(event->position(), event->modifiers());
      hover(event->position());
    } else {
      hover(event->position());
    }
  } else {
    event->ignore();
  }
}

void PlanView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (drawZoomRectangle(event)) return;
  if (event->button() == Qt::MiddleButton) {
    panFrom_.reset();
    showCursor();
    zoomToAll();
  } else if (event->button() == Qt::LeftButton && mode_ == Mode::None) {
    // The first of the two clicks was told already.
    if (const std::optional<view::Hit> hit = hitAt(event->position())) Q_EMIT activated(hit->handle);
  } else if (event->button() == Qt::LeftButton && mode_ == Mode::Tool) {
    tool_->doubleClicked(viewport_.toDrawing(vec(event->position())), toolReach());
    update();
  } else {
    // While something is asked, two fast clicks are two clicks.
    mousePressEvent(event);
  }
}

void PlanView::wheelEvent(QWheelEvent* event) {
  mouse_ = event->position();
  event->setAccepted(move(event));
}

bool PlanView::move(QEvent* event) {
  const std::optional<PlanMotion> motion = motionOf(*event, *this);
  if (!motion) return false;
  showsAll_ = false;
  if (motion->factor != 1.0) viewport_.zoomAt(vec(motion->place), motion->factor);
  if (!motion->pan.isNull()) viewport_.panBy(vec(motion->pan));
  viewChanged(Step::GoesOn);
  return true;
}

bool PlanView::event(QEvent* event) {
  if (event->type() == QEvent::NativeGesture || event->type() == QEvent::Gesture) {
    // Of two fingers the first was a press before the second came: nothing that it began goes on.
    press_.reset();
    if (move(event)) {
      event->accept();
      return true;
    }
  }
  const bool isPress = event->type() == QEvent::KeyPress;
  if (mode_ == Mode::Tool && (isPress || event->type() == QEvent::ShortcutOverride) &&
      tool_->takesKey(*static_cast<QKeyEvent*>(event), isPress)) {
    event->accept();
    return true;
  }
  if (event->type() == QEvent::ShortcutOverride && zoomRectangle_.isBegun() &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
    event->accept();
  // While something is asked its keys belong here, whatever shortcuts the window has.
  if (event->type() == QEvent::ShortcutOverride && pull_ && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
    event->accept();
  if (event->type() == QEvent::ShortcutOverride && mode_ != Mode::None) {
    switch (static_cast<QKeyEvent*>(event)->key()) {
      case Qt::Key_Escape:
      case Qt::Key_Return:
      case Qt::Key_Enter:
      case Qt::Key_R:
      case Qt::Key_A:
      case Qt::Key_Space:
      case Qt::Key_Backspace:
        if ((static_cast<QKeyEvent*>(event)->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) event->accept();
        break;
      default:
        break;
    }
  }
  return QWidget::event(event);
}

void PlanView::keyPressEvent(QKeyEvent* event) {
  const double across = width() * kKeyPan;
  const double down = height() * kKeyPan;
  switch (event->key()) {
    case Qt::Key_Escape:
      if (zoomRectangle_.isBegun()) {
        if (!zoomRectangle_.back()) endZoomRectangle();
        return update();
      }
      if (pull_) return endPull(false);
      if (mode_ == Mode::None) return event->ignore();
      return cancelInteraction();
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (mode_ != Mode::Select && mode_ != Mode::Tool) return event->ignore();
      return finishInteraction();
    case Qt::Key_Backspace: {
      if (mode_ != Mode::Tool) return event->ignore();
      const QString before = prompt();
      tool_->back();
      update();
      if (mode_ == Mode::Tool && prompt() != before) Q_EMIT promptChanged(prompt());
      return;
    }
    case Qt::Key_R:
    case Qt::Key_A:
      if (mode_ != Mode::Select || (event->modifiers() & Qt::ControlModifier) != 0) return event->ignore();
      return setRemoving(event->key() == Qt::Key_R);
    case Qt::Key_Space:
      return showNextBelow();
    case Qt::Key_Left:
      return panBy({across, 0.0});
    case Qt::Key_Right:
      return panBy({-across, 0.0});
    case Qt::Key_Up:
      return panBy({0.0, down});
    case Qt::Key_Down:
      return panBy({0.0, -down});
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      return zoomIn();
    case Qt::Key_Minus:
      return zoomOut();
    case Qt::Key_Home:
      return zoomToAll();
    default:
      return event->ignore();
  }
}

void PlanView::contextMenuEvent(QContextMenuEvent* event) {
  if (std::exchange(answeredByMenuButton_, false) || mode_ != Mode::None || !scene_) return;
  const bool isMouse = event->reason() == QContextMenuEvent::Mouse;
  const QPointF place = isMouse ? QPointF(event->pos()) : mouse_.value_or(QRectF(rect()).center());
  const std::optional<view::Hit> hit = hitAt(place);
  Q_EMIT menuWanted(hit ? hit->handle : 0, point(viewport_.toDrawing(vec(place))), mapToGlobal(place.toPoint()));
}

void PlanView::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  mouse_.reset();
  hovered_.reset();
  if (mode_ == Mode::Tool) tool_->left();
  update();
  Q_EMIT mouseGone();
}

void PlanView::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  panFrom_.reset();
  press_.reset();
  endPull(false);
}

void PlanView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::LanguageChange) {
    painter_.clear();
    invalidate();
  }
}

void PlanView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  viewport_.resize(width(), height());
  if (showsAll_ && scene_) viewport_.show(scene_->box());
  viewChanged(Step::Resized);
}

// ---------------------------------------------------------------- moving about

void PlanView::panBy(QPointF pixels) {
  showsAll_ = false;
  viewport_.panBy(vec(pixels));
  viewChanged(Step::GoesOn);
}

void PlanView::zoomAt(QPointF place, double factor) {
  showsAll_ = false;
  viewport_.zoomAt(vec(place), factor);
  viewChanged(Step::GoesOn);
}

QPointF PlanView::zoomPlace() const { return mouse_ ? *mouse_ : QRectF(rect()).center(); }

void PlanView::note(Step step) {
  const std::pair before(history_.hasBefore(), history_.hasNext());
  const bool isFresh = !sinceMove_.isValid() || sinceMove_.elapsed() > kOneMove;
  if (step == Step::Resized)
    history_.adjust(place());
  else
    history_.note(place(), step == Step::New || isFresh);
  // A move right behind a jump is another view.
  if (step == Step::GoesOn)
    sinceMove_.start();
  else
    sinceMove_.invalidate();
  if (before != std::pair(history_.hasBefore(), history_.hasNext())) Q_EMIT viewsChanged();
}

void PlanView::viewChanged(Step step) {
  note(step);
  pile_.reset();
  if (mouse_ && !panFrom_ && !(press_ && press_->pans)) hover(*mouse_);
  invalidate();
}

void PlanView::invalidate() {
  isBaseCurrent_ = false;
  update();
}

void PlanView::showCursor() {
  if (panFrom_ || (press_ && press_->pans))
    setCursor(Qt::ClosedHandCursor);
  else if (zoomRectangle_.isBegun())
    setCursor(Qt::CrossCursor);
  else if (mode_ != Mode::None)
    setCursor(pickCursor(devicePixelRatioF()));
  else if (pull_ || (mouse_ && handleAt(*mouse_)))
    setCursor(Qt::SizeAllCursor);
  else
    unsetCursor();
}

// ---------------------------------------------------------------- painting

void PlanView::tileArrived() {
  // Tiles come in dozens: some at once make fewer frames, the last one doesn't wait.
  constexpr std::chrono::milliseconds kGather{40};
  if (tiles_.isIdle())
    invalidate();
  else if (!tileTime_.isActive())
    tileTime_.start(kGather);
}

PlanPainter::Frame PlanView::frame() const {
  return {.scene = *scene_,
          .viewport = viewport_,
          .look = look_,
          .selected = &shownSelection(),
          .preview = preview_.get(),
          .groundOverlay = groundOverlay_,
          .font = font()};
}

void PlanView::paintBase() {
  const double ratio = devicePixelRatioF();
  const QSize size(static_cast<int>(std::lround(width() * ratio)), static_cast<int>(std::lround(height() * ratio)));
  if (base_.size() != size) base_ = QImage(size, QImage::Format_RGB32);
  base_.setDevicePixelRatio(ratio);
  QPainter painter(&base_);
  PlanPainter::Result result = painter_.paint(painter, frame(), tiles_.cache(), PlanPainter::Tiles::AsThere);
  isSharp_ = result.isSharp && !result.isUnfinished;
  isBaseCurrent_ = true;
  hoverOf_ = 0;
  if (result.isUnfinished) QTimer::singleShot(0, this, &PlanView::invalidate);
  tiles_.makeRoom(result.wantedBytes + result.wantedBytes / 4);
  tiles_.want(std::move(result.wanted));
}

void PlanView::paintHoverBase() {
  if (hoverOf_ == hovered_->handle) return;
  hoverOf_ = hovered_->handle;
  hoverBase_ = base_.copy();
  QPainter painter(&hoverBase_);
  painter_.paintHover(painter, frame(), hovered_->handle);
}

void PlanView::paintEvent(QPaintEvent* event) {
  QWidget::paintEvent(event);
  QPainter painter(this);
  if (!scene_ || scene_->box().isEmpty()) {
    PlanPainter::paintEmpty(painter, QRectF(rect()), look_, font(), scene_ ? tr("Nothing to show") : tr("No drawing"),
                            scene_ ? tr("This drawing has no surface, alignment, point or corridor.")
                                   : tr("Open a LandXML file, or drop one here."));
    isSharp_ = true;
  } else {
    if (!isBaseCurrent_) paintBase();
    if (hovered_) paintHoverBase();
    painter.drawImage(0, 0, hovered_ ? hoverBase_ : base_);
    if (mode_ == Mode::None) paintHandles(painter);
    paintOverlays(painter);
  }
  if (corner_ && mouse_) paintRectangle(painter);
  zoomRectangle_.paint(painter, viewport_, planColours(look_.dark));
  if (hasFocus()) paintFocus(painter, rect(), palette());
  paintPointerBox(painter);
}

double PlanView::toolReach() const { return kPickRadius / viewport_.scale(); }

void PlanView::paintOverlays(QPainter& painter) const {
  const PlanColours& colours = planColours(look_.dark);
  for (const PlanOverlay* const overlay : overlays_) {
    painter.save();
    overlay->paint(painter, viewport_, colours);
    painter.restore();
  }
  if (tool_ == nullptr) return;
  painter.save();
  tool_->paint(painter, viewport_, colours);
  painter.restore();
}

void PlanView::paintRectangle(QPainter& painter) const {
  paintSelectionWindow(painter, cornerPixel(), *mouse_, planColours(look_.dark));
}

QString PlanView::titleOf(Handle handle) const {
  const auto object = scene_ ? scene_->describe(handle) : std::nullopt;
  return object ? titleOf(object->kind, toQt(object->name)) : QString();
}

QString PlanView::titleOf(ObjectKind kind, const QString& name) {
  const QString title = ObjectNames::kind(kind);
  return name.isEmpty() ? title : title + QStringLiteral("  ") + name;
}

QStringList PlanView::pointerBox() const {
  if (zoomRectangle_.isBegun()) return {zoomRectangle_.prompt(), ZoomRectangle::hint()};
  QStringList lines;
  if (mode_ != Mode::None && !prompt().isEmpty()) lines << prompt();
  if (mode_ == Mode::Tool) lines << tool_->readout();
  if (mode_ == Mode::Select) {
    lines << tr("%1 selected").arg(selection_.size());
  }
  if (hovered_) {
    lines << titleOf(hovered_->kind, toQt(hovered_->name));
    if (pile_) lines.back() += QStringLiteral("  ") + tr("(%1 of %2)").arg(pile_->turn + 1).arg(pile_->hits.size());
  }
  if (const QString hint = pointerHint(); !hint.isEmpty()) lines << hint;
  return lines;
}

QString PlanView::pointerHint() const {
  if (zoomRectangle_.isBegun()) return ZoomRectangle::hint();
  if (mode_ == Mode::Pick) {
    return mouse_ && isOnSeveral_ ? tr("Space: the next below, Esc: back") : tr("Here or in the tree, Esc: back");
  }
  if (mode_ == Mode::Tool) return tool_->hint();
  if (mode_ != Mode::Select) return {};
  if (corner_) return mouse_ && mouse_->x() < cornerPixel().x() ? tr("Inside and touched") : tr("Wholly inside");
  if (isRemoving_) return tr("A adds again, Enter ends");
  return selection_.size() == 0 ? tr("Click or drag a window, Enter ends") : tr("R or Shift removes, Enter ends");
}

void PlanView::paintPointerBox(QPainter& painter) const {
  const PointerBox box{.lines = pointerBox(),
                       .hasPrompt = zoomRectangle_.isBegun() || (mode_ != Mode::None && !prompt().isEmpty()),
                       .hasHint = !pointerHint().isEmpty()};
  if (box.lines.isEmpty() || panFrom_ || (press_ && press_->pans)) return;
  if (!mouse_ && mode_ == Mode::None) return;
  lvx::desktop::paintPointerBox(painter, QRectF(rect()), box, mouse_, font(), planColours(look_.dark));
}

}  // namespace lvx::desktop
