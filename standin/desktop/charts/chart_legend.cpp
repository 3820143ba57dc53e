#include "desktop/charts/chart_legend.h"

#include <QPainter>
#include <QPixmap>

#include "desktop/charts/chart_fills.h"
#include "desktop/charts/chart_look.h"
#include "desktop/charts/chart_painter.h"

namespace lvx::desktop {

namespace {

constexpr int kIndex = Qt::UserRole;
constexpr int kIsFill = Qt::UserRole + 1;

/// What the looks of all rows depend on.
QStringList keysOf(const Chart& chart) {
  QStringList keys;
  for (const ChartSeries& series : chart.series)
    keys << QStringLiteral("%1/%2/%3/%4")
                .arg(series.pen.colour)
                .arg(static_cast<int>(series.pen.style))
                .arg(series.pen.width)
                .arg(series.name);
  for (const ChartFill& fill : chart.fills)
    keys << QStringLiteral("%1/%2").arg(fill.areas.empty() && !fill.bands.empty() ? 1 : 0).arg(fill.key);
  return keys;
}

}  // namespace

ChartLegend::ChartLegend(QWidget* parent) : QListWidget(parent) {
  setObjectName(QStringLiteral("legend"));
  setAccessibleName(tr("Lines of the chart"));
  setFrameShape(QFrame::NoFrame);
  setSelectionMode(QAbstractItemView::NoSelection);
  setIconSize(QSize(30, 14));
  setTextElideMode(Qt::ElideMiddle);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setUniformItemSizes(true);
  connect(this, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
    if (isFilling_) return;
    const int index = item->data(kIndex).toInt();
    const bool isShown = item->checkState() == Qt::Checked;
    if (item->data(kIsFill).toBool())
      Q_EMIT fillTicked(index, isShown);
    else
      Q_EMIT seriesTicked(index, isShown);
  });
}

void ChartLegend::follow(const Chart& chart) {
  if (keysOf(chart) != keys_) return fill(chart);
  isFilling_ = true;
  int row = 0;
  const auto show = [&](const QString& name, const QString& tip, bool isShown) {
    QListWidgetItem* const item = this->item(row++);
    if (item->text() != name) item->setText(name);
    if (item->toolTip() != tip) item->setToolTip(tip);
    const Qt::CheckState state = isShown ? Qt::Checked : Qt::Unchecked;
    if (item->checkState() != state) item->setCheckState(state);
  };
  for (const ChartSeries& series : chart.series) show(series.name, series.name, series.isShown);
  for (const ChartFill& fill : chart.fills) show(fill.name, fill.tip.isEmpty() ? fill.name : fill.tip, fill.isShown);
  isFilling_ = false;
}

void ChartLegend::repaintSamples(const Chart& chart) { fill(chart); }

void ChartLegend::fill(const Chart& chart) {
  isFilling_ = true;
  clear();
  keys_ = keysOf(chart);
  const ChartLook look = ChartLook::ofWindow(palette());
  const ChartPainter painter(chart, look, font());
  const double ratio = devicePixelRatioF();
  const QRectF area(QPointF(0.0, 0.0), QSizeF(iconSize()));
  const auto add = [&](const QString& name, const QString& tip, bool isShown, int index, bool isFill) {
    QPixmap sample((area.size() * ratio).toSize());
    sample.setDevicePixelRatio(ratio);
    sample.fill(Qt::transparent);
    QPainter swatch(&sample);
    const auto at = static_cast<std::size_t>(index);
    if (isFill)
      paintFillSample(swatch, area, chart.fills[at], look);
    else
      painter.paintSample(swatch, area, chart.series[at].pen);
    swatch.end();
    auto* item = new QListWidgetItem(QIcon(sample), name, this);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    item->setCheckState(isShown ? Qt::Checked : Qt::Unchecked);
    item->setData(kIndex, index);
    item->setData(kIsFill, isFill);
    item->setToolTip(tip);
  };
  for (std::size_t i = 0; i < chart.series.size(); ++i)
    add(chart.series[i].name, chart.series[i].name, chart.series[i].isShown, static_cast<int>(i), false);
  for (std::size_t i = 0; i < chart.fills.size(); ++i) {
    const ChartFill& fill = chart.fills[i];
    add(fill.name, fill.tip.isEmpty() ? fill.name : fill.tip, fill.isShown, static_cast<int>(i), true);
  }
  isFilling_ = false;
}

}  // namespace lvx::desktop
