#include "desktop/charts/chart_fills.h"

#include <QPainter>
#include <QPolygonF>
#include <cmath>
#include <numbers>
#include <vector>

namespace lvx::desktop {

using civil::Vec2;

namespace {

// Units of 1/96 inch.
constexpr double kStrokeDistance = 6.0;
constexpr double kStrokeWidth = 0.8;
constexpr double kBandWidth = 6.0;
constexpr double kBandStrength = 0.45;

/// Of strokes on the screen, where y grows downward.
std::vector<double> anglesOf(view::Hatch hatch) {
  constexpr double kDiagonal = std::numbers::pi / 4;
  switch (hatch) {
    case view::Hatch::None:
      return {};
    case view::Hatch::Rising:
      return {-kDiagonal};
    case view::Hatch::Falling:
      return {kDiagonal};
    case view::Hatch::Crossed:
      return {-kDiagonal, kDiagonal};
    case view::Hatch::Level:
      return {0.0};
    case view::Hatch::Upright:
      return {2 * kDiagonal};
  }
  return {};
}

/// An outline in units of the paper.
void paintOutline(QPainter& painter, const view::Line& outline, const ChartFill& fill, const ChartLook& look) {
  if (outline.size() < 3) return;
  QPolygonF shape;
  shape.reserve(static_cast<qsizetype>(outline.size()));
  for (const Vec2 place : outline) shape << QPointF(place.x, place.y);
  QColor colour = look.fillOf(fill.look);
  colour.setAlphaF(static_cast<float>(fill.strength));
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  painter.drawPolygon(shape);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(look.strokesOf(fill.look), kStrokeWidth));
  for (const double angle : anglesOf(fill.look.hatch))
    for (const view::Line& stroke : view::hatched(outline, kStrokeDistance, angle))
      painter.drawLine(QPointF(stroke[0].x, stroke[0].y), QPointF(stroke[1].x, stroke[1].y));
}

void paintBand(QPainter& painter, const QPolygonF& line, const ChartFill& fill, const ChartLook& look) {
  QColor colour = look.strokesOf(fill.look);
  colour.setAlphaF(static_cast<float>(kBandStrength * fill.strength));
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colour, kBandWidth, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.drawPolyline(line);
}

}  // namespace

void paintFills(QPainter& painter, const Chart& chart, const ChartLook& look, const QRect& plot,
                const view::Viewport& port) {
  const civil::Box visible = port.visible();
  const auto toPaper = [&](Vec2 place) {
    const Vec2 pixel = port.toPixels(place);
    return Vec2{plot.left() + pixel.x, plot.top() + pixel.y};
  };
  for (const ChartFill& fill : chart.fills) {
    if (!fill.isShown) continue;
    for (const view::Line& area : fill.areas) {
      view::Line outline = view::clippedOutline(area, visible);
      for (Vec2& place : outline) place = toPaper(place);
      paintOutline(painter, outline, fill, look);
    }
    for (const view::Line& band : view::clipped(fill.bands, visible)) {
      QPolygonF line;
      for (const Vec2 place : band) line << QPointF(toPaper(place).x, toPaper(place).y);
      if (line.size() > 1) paintBand(painter, line, fill, look);
    }
  }
}

void paintFillSample(QPainter& painter, const QRectF& area, const ChartFill& fill, const ChartLook& look) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const double half = std::min(5.5, area.height() / 2 - 1.0);
  const double middle = area.center().y();
  if (fill.areas.empty() && !fill.bands.empty()) {
    paintBand(painter, {QPointF(area.left() + 1.0, middle), QPointF(area.right() - 1.0, middle)}, fill, look);
  } else {
    const view::Line box{{area.left() + 1.0, middle - half},
                         {area.right() - 1.0, middle - half},
                         {area.right() - 1.0, middle + half},
                         {area.left() + 1.0, middle + half}};
    paintOutline(painter, box, fill, look);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(look.strokesOf(fill.look), kStrokeWidth));
    painter.drawRect(QRectF(QPointF(box[0].x, box[0].y), QPointF(box[2].x, box[2].y)));
  }
  painter.restore();
}

}  // namespace lvx::desktop
