#include "desktop/charts/chart_files.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <vector>

#include "desktop/charts/chart_page.h"
#include "desktop/charts/chart_painter.h"

namespace lvx::desktop {

namespace {

constexpr double kGap = 8.0;
constexpr double kSample = 32.0;

double rowHeight(const QFontMetricsF& metrics) { return metrics.height() + 4.0; }

struct LegendEntry {
  QPointF at;
  ChartEntry entry;
};

/// The legend's entries in rows from `top` on.
std::vector<LegendEntry> legendOf(const Chart& chart, const QFontMetricsF& metrics, double top, double width) {
  std::vector<LegendEntry> entries;
  QPointF next(kGap, top);
  for (const ChartEntry& entry : listedEntries(chart)) {
    const double needed = kSample + metrics.horizontalAdvance(entry.name) + 3 * kGap;
    if (next.x() > kGap && next.x() + needed > width) next = {kGap, next.y() + rowHeight(metrics)};
    entries.push_back({next, entry});
    next.rx() += needed;
  }
  return entries;
}

}  // namespace

QByteArray pdfOf(const ChartPage& page, const Chart& chart) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  constexpr int kResolution = 1200;
  writer.setResolution(kResolution);
  writer.setTitle(chart.title);
  writer.setPageLayout(QPageLayout(QPageSize(page.isA3() ? QPageSize::A3 : QPageSize::A4), QPageLayout::Landscape,
                                   QMarginsF(0.0, 0.0, 0.0, 0.0)));
  QPainter painter(&writer);
  painter.scale(kResolution / 96.0, kResolution / 96.0);
  page.paint(painter);
  painter.end();
  return bytes;
}

QImage pictureOf(const Chart& chart, const QFont& text, const QSize& canvas, const PaintCanvas& paintCanvas) {
  constexpr double kSharp = 2.0;
  const ChartLook look = ChartLook::printed();
  QFont title = text;
  title.setBold(true);
  title.setPixelSize(text.pixelSize() * 5 / 4);
  const QFontMetricsF metrics(text);
  const QFontMetricsF titleMetrics(title);
  const double width = canvas.width();
  const double row = rowHeight(metrics);

  const std::vector<LegendEntry> entries = legendOf(chart, metrics, kGap + titleMetrics.height() + kGap / 2, width);
  const double foot = entries.empty() ? kGap + titleMetrics.height() + kGap / 2 : entries.back().at.y();
  const double head = foot + row;
  const QSizeF size(width, head + canvas.height());
  QImage image((size * kSharp).toSize(), QImage::Format_RGB32);
  image.setDevicePixelRatio(kSharp);
  image.fill(look.paper);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(look.ink);
  painter.setFont(title);
  painter.drawText(QPointF(kGap, kGap + titleMetrics.ascent()),
                   titleMetrics.elidedText(chart.title, Qt::ElideRight, width - 2 * kGap));
  painter.setFont(text);
  const ChartPainter samples(chart, look, text);
  for (const LegendEntry& entry : entries) {
    samples.paintEntry(painter, QRectF(entry.at, QSizeF(kSample, row)), entry.entry);
    painter.setPen(look.ink);
    painter.drawText(entry.at + QPointF(kSample + kGap / 2, 2.0 + metrics.ascent()), entry.entry.name);
  }
  paintCanvas(painter, QRectF(0.0, head, width, canvas.height()), look);
  return image;
}

}  // namespace lvx::desktop
