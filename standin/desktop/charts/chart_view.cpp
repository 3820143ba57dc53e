#include "desktop/charts/chart_view.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QPixmap>
#include <QSaveFile>
#include <QSignalBlocker>
#include <QSvgGenerator>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "desktop/charts/chart_page.h"
#include "desktop/charts/chart_painter.h"
#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

using civil::Vec2;

namespace {

/// How near the mouse must come, in pixels.
constexpr double kReach = 8.0;
constexpr double kZoomStep = 1.25;
constexpr int kLegendWidth = 230;
/// Narrower views have the legend below the chart.
constexpr int kWide = 520;

}  // namespace

// ---------------------------------------------------------------- canvas

/// The picture itself. What doesn't change with the mouse is painted once into a pixmap.
class ChartCanvas final : public QWidget {
 public:
  explicit ChartCanvas(ChartView& owner) : QWidget(&owner), owner_(owner) {
    setObjectName(QStringLiteral("canvas"));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(160, 90);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setCursor(Qt::CrossCursor);
  }

  [[nodiscard]] QSize sizeHint() const override { return {720, 320}; }
  [[nodiscard]] const view::Viewport& port() const { return port_; }
  [[nodiscard]] QRect plot() const { return painter().plotArea(rect()); }
  [[nodiscard]] double chosenExaggeration() const { return chosen_; }
  [[nodiscard]] QPoint pixelOf(Vec2 place) const {
    const Vec2 pixel = port_.toPixels(place);
    return plot().topLeft() + QPointF(pixel.x, pixel.y).toPoint();
  }

  void fit() {
    isFitted_ = true;
    port_ = painter().viewportFor(rect(), chosen_);
    changed();
  }
  void setExaggeration(double factor) {
    chosen_ = factor;
    if (isFitted_ || factor <= 0.0) {
      fit();
      return;
    }
    port_.setExaggeration(factor);
    changed();
  }
  void setHighlighted(int index) {
    if (highlighted_ == index) return;
    highlighted_ = index;
    changed();
  }
  void setMark(std::optional<double> x) {
    mark_ = x;
    update();
  }
  void changed() {
    isStale_ = true;
    update();
  }
  /// After another chart came, or its lines changed.
  void chartChanged(bool keepsPlace) {
    hover_ = -1;
    if (!keepsPlace || isFitted_) fit();
    refreshPointer();
    changed();
  }
  void repaintTo(QPainter& target, const QRectF& area, const ChartLook& look) const {
    const ChartPainter chart(owner_.chart(), look, pixelFont());
    // The same part of the chart at the same size, however large the margins of the look's font are.
    view::Viewport port = port_;
    const QRect plotArea = chart.plotArea(area);
    port.resize(plotArea.width(), plotArea.height());
    chart.paint(target, area, port);
  }
  [[nodiscard]] QFont pixelFont() const {
    QFont result = font();
    result.setPixelSize(std::max(QFontInfo(font()).pixelSize(), 8));
    return result;
  }

 protected:
  void paintEvent(QPaintEvent*) override {
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
    if (isEmpty()) return;
    if (mark_) chart.paintMark(painter, rect(), port_, *mark_);
    if (!mouse_ || isDragging_) return;
    chart.paintCross(painter, rect(), port_, *mouse_);
    if (const auto snap = owner_.snap(*mouse_, reach()))
      chart.paintSnap(painter, rect(), port_, snap->place, snap->text);
  }
  void resizeEvent(QResizeEvent*) override {
    if (isFitted_) {
      fit();
    } else {
      const QRect area = plot();
      port_.resize(area.width(), area.height());
      changed();
    }
  }
  void changeEvent(QEvent* event) override {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange ||
        event->type() == QEvent::StyleChange)
      changed();
    QWidget::changeEvent(event);
  }

  void wheelEvent(QWheelEvent* event) override {
    const int turned = event->angleDelta().y();
    if (isEmpty() || turned == 0) return;
    zoom(event->position(), std::pow(kZoomStep, turned / 120.0));
    event->accept();
  }
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) return;
    pressed_ = event->position();
    last_ = event->position();
    pressedButton_ = event->button();
  }
  void mouseMoveEvent(QMouseEvent* event) override {
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
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (!pressed_ || event->button() != pressedButton_) return;
    const bool wasDrag = isDragging_;
    pressed_.reset();
    isDragging_ = false;
    setCursor(Qt::CrossCursor);
    point(event->position());
    if (wasDrag || event->button() != Qt::LeftButton || !mouse_) return;
    const int index = owner_.seriesAt(*mouse_, reach());
    if (index >= 0) owner_.seriesClicked(index);
  }
  void leaveEvent(QEvent*) override { leave(); }
  void contextMenuEvent(QContextMenuEvent* event) override { owner_.showMenu(event->globalPos()); }
  void keyPressEvent(QKeyEvent* event) override {
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

 private:
  [[nodiscard]] ChartPainter painter() const { return {owner_.chart(), ChartLook::ofWindow(palette()), pixelFont()}; }
  [[nodiscard]] bool isEmpty() const { return owner_.chart().box().isEmpty(); }
  [[nodiscard]] Vec2 reach() const { return {kReach / port_.scale(), kReach / (port_.scale() * port_.exaggeration())}; }
  void paintStill(QPainter& still, const ChartPainter& chart) const {
    if (!isEmpty()) {
      chart.paint(still, rect(), port_, hover_ >= 0 ? hover_ : highlighted_);
      return;
    }
    still.setFont(font());
    still.setPen(chart.look().faintInk);
    still.drawText(rect().adjusted(16, 16, -16, -16), static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap,
                   owner_.chart().emptyText);
  }
  void zoom(QPointF at, double factor) {
    const QPointF inPlot = at - plot().topLeft();
    port_.zoomAt({inPlot.x(), inPlot.y()}, factor);
    isFitted_ = false;
    changed();
    refreshPointer();
  }
  void pan(Vec2 pixels) {
    port_.panBy(pixels);
    isFitted_ = false;
    changed();
    refreshPointer();
  }
  /// What lies under the mouse has changed without it.
  void refreshPointer() {
    if (mouse_) point(mapFromGlobal(QCursor::pos()));
  }
  void point(QPointF at) {
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
  void leave() {
    if (!mouse_) return;
    mouse_.reset();
    if (hover_ >= 0) isStale_ = true;
    hover_ = -1;
    owner_.pointAt({});
    update();
  }

  ChartView& owner_;
  view::Viewport port_;
  double chosen_ = 0.0;
  bool isFitted_ = true;
  bool isStale_ = true;
  QPixmap picture_;
  std::optional<Vec2> mouse_;
  std::optional<double> mark_;
  std::optional<QPointF> pressed_;
  QPointF last_;
  Qt::MouseButton pressedButton_ = Qt::NoButton;
  bool isDragging_ = false;
  int hover_ = -1;
  int highlighted_ = -1;
};

namespace {

/// Ends in "…" where its text has no room.
class TitleLabel final : public QLabel {
 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(), shown,
                          foregroundRole());
  }
};

}  // namespace

// ---------------------------------------------------------------- view

ChartView::ChartView(QWidget* parent) : QWidget(parent) {
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->setSpacing(2);

  auto* row = new QHBoxLayout;
  row->setContentsMargins(6, 4, 6, 0);
  controls_ = new QHBoxLayout;
  controls_->setSpacing(2);
  row->addLayout(controls_);
  title_ = new TitleLabel;
  title_->setObjectName(QStringLiteral("title"));
  title_->setTextFormat(Qt::PlainText);
  title_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  QFont bold = title_->font();
  bold.setBold(true);
  title_->setFont(bold);
  row->addWidget(title_, 1);
  auto* heightsLabel = new QLabel(tr("Heights:"));
  heights_ = new QComboBox;
  heights_->setObjectName(QStringLiteral("exaggeration"));
  heights_->setToolTip(tr("How many times larger heights are drawn than widths"));
  heights_->addItem(tr("Automatic"), 0.0);
  for (const double factor : {1.0, 2.0, 5.0, 10.0})
    heights_->addItem(tr("%1 \u00d7").arg(toQt(text::fixedText(factor, 0))), factor);
  heightsLabel->setBuddy(heights_);
  row->addWidget(heightsLabel);
  row->addWidget(heights_);
  fitButton_ = new QToolButton;
  fitButton_->setObjectName(QStringLiteral("fit"));
  fitButton_->setText(tr("Fit"));
  fitButton_->setToolTip(tr("Show everything (Home)"));
  row->addWidget(fitButton_);
  exportButton_ = new QToolButton;
  exportButton_->setObjectName(QStringLiteral("export"));
  exportButton_->setText(tr("Export\u2026"));
  exportButton_->setToolTip(tr("Write the chart to an SVG or PDF file"));
  row->addWidget(exportButton_);
  for (QToolButton* button : {fitButton_, exportButton_}) button->setAutoRaise(true);
  all->addLayout(row);

  middle_ = new QBoxLayout(QBoxLayout::LeftToRight);
  middle_->setSpacing(0);
  canvas_ = new ChartCanvas(*this);
  middle_->addWidget(canvas_, 1);
  legend_ = new QListWidget;
  legend_->setObjectName(QStringLiteral("legend"));
  legend_->setFrameShape(QFrame::NoFrame);
  legend_->setSelectionMode(QAbstractItemView::NoSelection);
  legend_->setIconSize(QSize(30, 14));
  legend_->setTextElideMode(Qt::ElideMiddle);
  legend_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  middle_->addWidget(legend_);
  all->addLayout(middle_, 1);

  readout_ = new QLabel;
  readout_->setObjectName(QStringLiteral("readout"));
  readout_->setTextFormat(Qt::PlainText);
  readout_->setContentsMargins(6, 0, 6, 3);
  readout_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  all->addWidget(readout_);

  connect(heights_, &QComboBox::activated, this,
          [this] { canvas_->setExaggeration(heights_->currentData().toDouble()); });
  connect(fitButton_, &QToolButton::clicked, this, &ChartView::fit);
  connect(exportButton_, &QToolButton::clicked, this, &ChartView::askExport);
  connect(legend_, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
    if (isFilling_) return;
    const int index = item->data(Qt::UserRole).toInt();
    ChartSeries& series = chart_.series[static_cast<std::size_t>(index)];
    series.isShown = item->checkState() == Qt::Checked;
    ticks_.insert(series.name, series.isShown);
    if (series.isShown) seriesWanted(index);
    canvas_->chartChanged(true);
  });
  retitle();
}

ChartView::~ChartView() = default;

void ChartView::fit() { canvas_->fit(); }

void ChartView::setExaggeration(double factor) {
  const int index = heights_->findData(factor);
  if (index >= 0) heights_->setCurrentIndex(index);
  canvas_->setExaggeration(factor);
}

double ChartView::exaggeration() const { return canvas_->port().exaggeration(); }
const view::Viewport& ChartView::viewport() const { return canvas_->port(); }
QPoint ChartView::pixelOf(Vec2 place) const { return canvas_->pixelOf(place); }
void ChartView::setMark(std::optional<double> x) { canvas_->setMark(x); }
void ChartView::setHighlighted(int index) { canvas_->setHighlighted(index); }

void ChartView::setChart(Chart chart, bool keepsPlace) {
  chart_ = std::move(chart);
  for (ChartSeries& series : chart_.series) series.isShown = ticks_.value(series.name, series.isShown);
  for (std::size_t i = 0; i < chart_.series.size(); ++i)
    if (chart_.series[i].isShown) seriesWanted(static_cast<int>(i));
  fillLegend();
  retitle();
  canvas_->setHighlighted(-1);
  canvas_->chartChanged(keepsPlace);
}

void ChartView::chartChanged() { canvas_->chartChanged(true); }

void ChartView::retitle() {
  title_->setText(chart_.title);
  title_->setToolTip(chart_.title + (chart_.subtitle.isEmpty() ? QString() : QStringLiteral("\n") + chart_.subtitle));
  const bool hasChart = !chart_.series.empty();
  for (QWidget* control :
       {static_cast<QWidget*>(heights_), static_cast<QWidget*>(fitButton_), static_cast<QWidget*>(exportButton_)})
    control->setEnabled(hasChart);
  legend_->setVisible(hasChart);
  if (!hasChart) readout_->clear();
}

void ChartView::fillLegend() {
  isFilling_ = true;
  legend_->clear();
  const ChartPainter painter(chart_, ChartLook::ofWindow(palette()), font());
  const double ratio = devicePixelRatioF();
  for (std::size_t i = 0; i < chart_.series.size(); ++i) {
    const ChartSeries& series = chart_.series[i];
    QPixmap sample((QSizeF(legend_->iconSize()) * ratio).toSize());
    sample.setDevicePixelRatio(ratio);
    sample.fill(Qt::transparent);
    QPainter swatch(&sample);
    painter.paintSample(swatch, QRectF(QPointF(0.0, 0.0), QSizeF(legend_->iconSize())), series.pen);
    swatch.end();
    auto* item = new QListWidgetItem(QIcon(sample), series.name, legend_);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    item->setCheckState(series.isShown ? Qt::Checked : Qt::Unchecked);
    item->setData(Qt::UserRole, static_cast<int>(i));
    item->setToolTip(series.name);
  }
  const bool wide = width() >= kWide;
  middle_->setDirection(wide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  if (wide) {
    legend_->setFixedWidth(std::min(kLegendWidth, legend_->sizeHintForColumn(0) + 12));
    legend_->setMaximumHeight(QWIDGETSIZE_MAX);
  } else {
    legend_->setMinimumWidth(0);
    legend_->setMaximumWidth(QWIDGETSIZE_MAX);
    const int rows = std::min(legend_->count(), 4);
    legend_->setMaximumHeight(rows * std::max(legend_->sizeHintForRow(0), 1) + 4);
  }
  isFilling_ = false;
}

void ChartView::changeEvent(QEvent* event) {
  if (legend_ != nullptr && (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange))
    fillLegend();
  QWidget::changeEvent(event);
}

void ChartView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const bool isWide = middle_->direction() == QBoxLayout::LeftToRight;
  if (isWide != (width() >= kWide)) fillLegend();
}

void ChartView::pointAt(std::optional<Vec2> place) {
  if (!place) {
    readout_->clear();
    Q_EMIT mouseGone();
    return;
  }
  readout_->setText(readout(*place));
  Q_EMIT mouseAt({place->x, place->y});
}

std::optional<ChartView::Snap> ChartView::snap(Vec2, Vec2) const { return {}; }
int ChartView::seriesAt(Vec2, Vec2) const { return -1; }
void ChartView::seriesClicked(int) {}
void ChartView::seriesWanted(int) {}

// ---------------------------------------------------------------- exports

void ChartView::showMenu(QPoint global) {
  QMenu menu(this);
  menu.setObjectName(QStringLiteral("chartMenu"));
  const bool hasChart = !chart_.box().isEmpty();
  const auto add = [&](const QString& text, auto action) { menu.addAction(text, this, action)->setEnabled(hasChart); };
  add(tr("&Show everything"), [this] { fit(); });
  menu.addSeparator();
  add(tr("&Copy as picture"), [this] { copyPicture(); });
  add(tr("&Export\u2026"), [this] { askExport(); });
  menu.exec(global);
}

QImage ChartView::picture() const {
  constexpr double kSharp = 2.0;
  const ChartLook look = ChartLook::printed();
  const QFont text = canvas_->pixelFont();
  QFont title = text;
  title.setBold(true);
  title.setPixelSize(text.pixelSize() * 5 / 4);
  const QFontMetricsF metrics(text);
  const QFontMetricsF titleMetrics(title);
  constexpr double kGap = 8.0;
  const double width = canvas_->width();
  const double row = metrics.height() + 4.0;

  // The legend's entries, in rows below the title.
  struct Entry {
    QPointF at;
    const ChartSeries* series;
  };
  std::vector<Entry> entries;
  QPointF next(kGap, kGap + titleMetrics.height() + kGap / 2);
  constexpr double kSample = 32.0;
  for (const ChartSeries& series : chart_.series) {
    if (!series.isShown || series.lines.empty()) continue;
    const double needed = kSample + metrics.horizontalAdvance(series.name) + 3 * kGap;
    if (next.x() > kGap && next.x() + needed > width) next = {kGap, next.y() + row};
    entries.push_back({next, &series});
    next.rx() += needed;
  }
  const double head = next.y() + row;
  const QSizeF size(width, head + canvas_->height());
  QImage image((size * kSharp).toSize(), QImage::Format_RGB32);
  image.setDevicePixelRatio(kSharp);
  image.fill(look.paper);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(look.ink);
  painter.setFont(title);
  painter.drawText(QPointF(kGap, kGap + titleMetrics.ascent()),
                   titleMetrics.elidedText(chart_.title, Qt::ElideRight, width - 2 * kGap));
  painter.setFont(text);
  const ChartPainter samples(chart_, look, text);
  for (const Entry& entry : entries) {
    samples.paintSample(painter, QRectF(entry.at, QSizeF(kSample, row)), entry.series->pen);
    painter.setPen(look.ink);
    painter.drawText(entry.at + QPointF(kSample + kGap / 2, 2.0 + metrics.ascent()), entry.series->name);
  }
  canvas_->repaintTo(painter, QRectF(0.0, head, width, canvas_->height()), look);
  return image;
}

void ChartView::copyPicture() const { QApplication::clipboard()->setImage(picture()); }

QByteArray ChartView::svgPage() const {
  const ChartPage page(chart_, font(), canvas_->chosenExaggeration());
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setTitle(chart_.title);
  generator.setDescription(chart_.subtitle + QStringLiteral("\n") + chart_.fileName);
  // A hundredth of a millimetre to a dot, so that the sheet's size and its scale are true.
  constexpr int kDots = 100;
  generator.setResolution(static_cast<int>(25.4 * kDots));
  const QSize dots = (page.size() * kDots).toSize();
  generator.setSize(dots);
  generator.setViewBox(QRect(QPoint(0, 0), dots));
  QPainter painter(&generator);
  painter.scale(kDots * 25.4 / 96.0, kDots * 25.4 / 96.0);
  page.paint(painter);
  painter.end();
  return bytes;
}

QByteArray ChartView::pdfPage() const {
  const ChartPage page(chart_, font(), canvas_->chosenExaggeration());
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  constexpr int kResolution = 1200;
  writer.setResolution(kResolution);
  writer.setTitle(chart_.title);
  writer.setPageLayout(QPageLayout(QPageSize(page.isA3() ? QPageSize::A3 : QPageSize::A4), QPageLayout::Landscape,
                                   QMarginsF(0.0, 0.0, 0.0, 0.0)));
  QPainter painter(&writer);
  painter.scale(kResolution / 96.0, kResolution / 96.0);
  page.paint(painter);
  painter.end();
  return bytes;
}

bool ChartView::exportTo(const QString& path, QString& whyNot) {
  const QString shown = QDir::toNativeSeparators(path);
  if (chart_.box().isEmpty()) {
    whyNot = tr("There is nothing to export.");
    return false;
  }
  const QString ending = QFileInfo(path).suffix().toLower();
  if (ending != QLatin1String("svg") && ending != QLatin1String("pdf")) {
    whyNot = tr("%1 can't be written: its name must end in .svg or .pdf.").arg(shown);
    return false;
  }
  const QByteArray bytes = ending == QLatin1String("svg") ? svgPage() : pdfPage();
  // Beside the file and then in its place: whoever has the old one keeps it until the new one is whole.
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
    whyNot = tr("%1 can't be written: %2.").arg(shown, file.errorString());
    return false;
  }
  Q_EMIT exported(path);
  return true;
}

void ChartView::askExport() {
  const QString pdf = tr("PDF document (*.pdf)");
  const QString svg = tr("SVG drawing (*.svg)");
  QString filter = pdf;
  QString path = QFileDialog::getSaveFileName(this, tr("Export the chart"), exportName() + QStringLiteral(".pdf"),
                                              pdf + QStringLiteral(";;") + svg, &filter);
  if (path.isEmpty()) return;
  if (QFileInfo(path).suffix().isEmpty()) path += filter == svg ? QStringLiteral(".svg") : QStringLiteral(".pdf");
  QString whyNot;
  if (!exportTo(path, whyNot)) QMessageBox::warning(this, tr("Export the chart"), whyNot);
}

}  // namespace lvx::desktop
