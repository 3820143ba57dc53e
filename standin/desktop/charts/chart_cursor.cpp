#include "desktop/charts/chart_cursor.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

namespace lvx::desktop {

using civil::Vec2;

namespace {

// Units of 1/96 inch.
constexpr double kRoom = 6.0;
constexpr double kDot = 3.2;
/// A chart of a thousand lines still has one that is seen.
constexpr std::size_t kMostValues = 8;

}  // namespace

void paintCursorLine(QPainter& painter, const Chart& chart, const ChartCursor& cursor, const ChartLook& look,
                     const QFont& font, const QRect& plot, const view::Viewport& port, const QString& label) {
  const civil::Box visible = port.visible();
  if (!(cursor.x >= visible.minX && cursor.x <= visible.maxX)) return;
  const double x = plot.left() + port.toPixels({cursor.x, 0.0}).x;
  painter.save();
  painter.setFont(font);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(look.highlight, 1.6));
  painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));

  struct Row {
    QString text;
    QColor colour;
  };
  std::vector<Row> rows{{label, look.ink}};
  std::size_t left = 0;
  for (const ChartCursor::Value& value : cursor.values) {
    const bool hasLine = value.series >= 0 && value.series < static_cast<int>(chart.series.size());
    const QColor colour = hasLine ? look.colourOf(chart.series[static_cast<std::size_t>(value.series)].pen) : look.ink;
    if (hasLine && value.y >= visible.minY && value.y <= visible.maxY) {
      painter.setPen(QPen(look.paper, 1.0));
      painter.setBrush(colour);
      painter.drawEllipse(QPointF(x, plot.top() + port.toPixels({cursor.x, value.y}).y), kDot, kDot);
    }
    if (rows.size() <= kMostValues)
      rows.push_back({value.text, colour});
    else
      ++left;
  }
  if (left > 0) rows.push_back({QStringLiteral("\u2026 %1").arg(left), look.faintInk});

  const QFontMetricsF metrics(font);
  double width = 0.0;
  for (const Row& row : rows) width = std::max(width, metrics.horizontalAdvance(row.text));
  QRectF box(x + 2 * kRoom, plot.top() + kRoom, width + 2 * kRoom,
             metrics.height() * static_cast<double>(rows.size()) + kRoom);
  if (box.right() > plot.right()) box.moveRight(x - 2 * kRoom);
  if (box.left() < plot.left()) box.moveLeft(plot.left());
  painter.setPen(QPen(look.faintInk, 1.0));
  painter.setBrush(look.paper);
  painter.drawRoundedRect(box, 3.0, 3.0);
  double base = box.top() + kRoom / 2 + metrics.ascent();
  for (const Row& row : rows) {
    painter.setPen(row.colour);
    painter.drawText(QPointF(box.left() + kRoom, base), row.text);
    base += metrics.height();
  }
  painter.restore();
}

}  // namespace lvx::desktop
