#include "desktop/charts/chart_view.h"

#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QSaveFile>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/charts/chart_canvas.h"
#include "desktop/charts/chart_files.h"
#include "desktop/charts/chart_legend.h"
#include "desktop/charts/chart_page.h"
#include "desktop/charts/chart_painter.h"
#include "desktop/common/elided_label.h"
#include "desktop/common/file_boxes.h"
#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

using civil::Vec2;

namespace {

constexpr int kLegendWidth = 230;
/// Narrower views have the legend below the chart.
constexpr int kWide = 520;

}  // namespace

// ---------------------------------------------------------------- view

ChartView::ChartView(QWidget* parent) : QWidget(parent) {
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->setSpacing(2);

  all->addLayout(buildRow());
  all->addLayout(buildMiddle(), 1);

  readout_ = new QLabel;
  readout_->setObjectName(QStringLiteral("readout"));
  readout_->setTextFormat(Qt::PlainText);
  readout_->setContentsMargins(6, 0, 6, 3);
  readout_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  all->addWidget(readout_);

  connectControls();
  retitle();
}

QHBoxLayout* ChartView::buildRow() {
  auto* row = new QHBoxLayout;
  row->setContentsMargins(6, 4, 6, 0);
  controls_ = new QHBoxLayout;
  controls_->setSpacing(2);
  row->addLayout(controls_);
  title_ = new ElidedLabel;
  title_->setObjectName(QStringLiteral("title"));
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
  heights_->setAccessibleName(tr("Enlargement of heights"));
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
  return row;
}

QBoxLayout* ChartView::buildMiddle() {
  middle_ = new QBoxLayout(QBoxLayout::LeftToRight);
  middle_->setSpacing(0);
  canvas_ = new ChartCanvas(*this);
  middle_->addWidget(canvas_, 1);
  legend_ = new ChartLegend;
  middle_->addWidget(legend_);
  return middle_;
}

void ChartView::addRow(QLayout* row) { qobject_cast<QVBoxLayout*>(layout())->insertLayout(1, row); }

void ChartView::connectControls() {
  connect(heights_, &QComboBox::activated, this,
          [this] { canvas_->setExaggeration(heights_->currentData().toDouble()); });
  connect(fitButton_, &QToolButton::clicked, this, &ChartView::fit);
  connect(exportButton_, &QToolButton::clicked, this, &ChartView::askExport);
  connect(legend_, &ChartLegend::seriesTicked, this, [this](int index, bool isShown) {
    ChartSeries& series = chart_.series[static_cast<std::size_t>(index)];
    series.isShown = isShown;
    ticks_.insert(series.name, isShown);
    if (isShown) seriesWanted(index);
    areasChanged();
    canvas_->chartChanged(true);
  });
  connect(legend_, &ChartLegend::fillTicked, this, [this](int index, bool isShown) {
    ChartFill& fill = chart_.fills[static_cast<std::size_t>(index)];
    fill.isShown = isShown;
    fillTicks_.insert(fill.key, isShown);
    canvas_->changed();
  });
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
void ChartView::setHighlighted(int index) { canvas_->setHighlighted(index); }

void ChartView::setChart(Chart chart, bool keepsPlace) {
  chart_ = std::move(chart);
  for (ChartSeries& series : chart_.series) series.isShown = ticks_.value(series.name, series.isShown);
  for (std::size_t i = 0; i < chart_.series.size(); ++i)
    if (chart_.series[i].isShown) seriesWanted(static_cast<int>(i));
  takeAreas();
  layOutLegend();
  retitle();
  canvas_->setHighlighted(-1);
  canvas_->setCursorLine({});
  canvas_->chartChanged(keepsPlace);
}

void ChartView::takeAreas() {
  chart_.fills = areas();
  for (ChartFill& fill : chart_.fills) fill.isShown = fillTicks_.value(fill.key, fill.isShown);
}

void ChartView::areasChanged() {
  takeAreas();
  layOutLegend();
  canvas_->changed();
}

void ChartView::setCursorLine(std::optional<ChartCursor> cursor) { canvas_->setCursorLine(std::move(cursor)); }
const std::optional<ChartCursor>& ChartView::cursorLine() const { return canvas_->cursorLine(); }

void ChartView::shift(Vec2 by) { canvas_->shift(by); }

void ChartView::chartChanged() { canvas_->chartChanged(true); }

void ChartView::retitle() {
  title_->setText(chart_.title);
  canvas_->setAccessibleName(chart_.title.isEmpty() ? chart_.emptyText : chart_.title);
  canvas_->setAccessibleDescription(chart_.subtitle);
  title_->setToolTip(chart_.title + (chart_.subtitle.isEmpty() ? QString() : QStringLiteral("\n") + chart_.subtitle));
  const bool hasChart = !chart_.series.empty();
  for (QWidget* control :
       {static_cast<QWidget*>(heights_), static_cast<QWidget*>(fitButton_), static_cast<QWidget*>(exportButton_)})
    control->setEnabled(hasChart);
  legend_->setVisible(hasChart);
  if (!hasChart) readout_->clear();
}

void ChartView::layOutLegend() {
  legend_->follow(chart_);
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
}

void ChartView::changeEvent(QEvent* event) {
  if (legend_ != nullptr && (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)) {
    legend_->repaintSamples(chart_);
    layOutLegend();
  }
  QWidget::changeEvent(event);
}

void ChartView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const bool isWide = middle_->direction() == QBoxLayout::LeftToRight;
  if (isWide != (width() >= kWide)) layOutLegend();
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
void ChartView::placeClicked(Vec2, bool) {}
void ChartView::seriesWanted(int) {}
std::vector<ChartFill> ChartView::areas() { return {}; }

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
  return pictureOf(
      chart_, canvas_->pixelFont(), canvas_->size(),
      [&](QPainter& painter, const QRectF& area, const ChartLook& look) { canvas_->repaintTo(painter, area, look); });
}

void ChartView::copyPicture() const { QGuiApplication::clipboard()->setImage(picture()); }

bool ChartView::exportTo(const QString& path, QString& whyNot) {
  const QString shown = QDir::toNativeSeparators(path);
  if (chart_.box().isEmpty()) {
    whyNot = tr("There is nothing to export.");
    return false;
  }
  const QString ending = QFileInfo(path).suffix().toLower();
  const bool isSvg = canWriteSvg() && ending == QLatin1String("svg");
  if (!isSvg && ending != QLatin1String("pdf")) {
    whyNot = (canWriteSvg() ? tr("%1 can't be written: its name must end in .svg or .pdf.")
                            : tr("%1 can't be written: its name must end in .pdf."))
                 .arg(shown);
    return false;
  }
  const ChartPage page(chart_, font(), canvas_->chosenExaggeration());
  const QByteArray bytes = isSvg ? svgOf(page, chart_) : pdfOf(page, chart_);
  // Beside the file and then in its place: whoever has the old one keeps it until the new one is whole.
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
    whyNot = tr("%1 can't be written: %2.").arg(shown, file.errorString());
    return false;
  }
  return true;
}

void ChartView::askExport() {
  QList<FileForm> forms{{tr("PDF document"), {QStringLiteral("pdf")}}};
  if (canWriteSvg()) forms << FileForm{tr("SVG drawing"), {QStringLiteral("svg")}};
  const auto path =
      askTarget(this, {tr("Export the chart"), FilePurpose::Export, exportName() + QStringLiteral(".pdf"), forms, {}});
  if (!path) return;
  QString whyNot;
  if (exportTo(*path, whyNot))
    Q_EMIT exported(*path);
  else
    QMessageBox::warning(this, tr("Export the chart"), whyNot);
}

}  // namespace lvx::desktop
