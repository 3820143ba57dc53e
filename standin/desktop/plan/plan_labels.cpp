#include "desktop/plan/plan_labels.h"

#include <QFontInfo>
#include <QPainter>
#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <set>

#include "desktop/common/qt_text.h"
#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_furniture.h"

namespace lvx::desktop {

using civil::Box;
using view::Viewport;

namespace {

constexpr double kLeastNamedLine = 36.0;
/// Pixels between repetitions of an alignment's name.
constexpr double kNameDistance = 600.0;

double degreesOf(QPointF direction) {
  double degrees = std::atan2(direction.y(), direction.x()) * 180.0 / std::numbers::pi;
  // Readable from below or from the right, as texts of plans are; a row of nearly upright ones doesn't turn about midway.
  constexpr double kUpright = 75.0;
  if (degrees >= kUpright) degrees -= 180.0;
  if (degrees < kUpright - 180.0) degrees += 180.0;
  return degrees;
}

/// With as many decimals as it has, three at most.
QString contourText(double elevation) {
  QString text = QString::number(elevation, 'f', 3);
  while (text.endsWith(QLatin1Char('0'))) text.chop(1);
  if (text.endsWith(QLatin1Char('.'))) text.chop(1);
  return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

/// Small numbers for indices that stay when every other one has to go, as the fourth, the eighth, ...
int rankOf(std::size_t index) { return index == 0 ? -64 : -std::countr_zero(index); }

}  // namespace

void PlanLabels::paint(std::span<const civil::Point* const> points, std::span<const view::ContourLabel> contours) {
  if (frame_.look.alignments)
    for (const view::AlignmentShape& shape : frame_.scene.alignments())
      if (view::meet(shape.box, frame_.viewport.visible()) && !frame_.scene.isHidden(shape.object->handle))
        labelAlignment(shape);
  if (frame_.look.sampleLines) labelSampleLines();
  if (frame_.look.points) labelPoints(points);
  labelContours(contours);
}

void PlanLabels::labelAlignment(const view::AlignmentShape& shape) {
  const PlanColours& colours = planColours(frame_.look.dark);
  const Viewport& viewport = frame_.viewport;
  const civil::Alignment& geometry = shape.object->geometry;
  const std::vector<view::Tick> ticks = view::ticks(geometry, viewport.visible(), viewport.scale());

  // The name on the left, at places of the alignment, not of the window, so that it moves with the drawing.
  const HaloText::Style nameStyle{labelFont(frame_.font, 1.0, true), colours.alignment, colours.ground};
  const QString name = toQt(shape.object->name);
  const QSizeF nameSize = text_.sizeOf(name, nameStyle.font);
  if (!name.isEmpty() && geometry.length() * viewport.scale() > nameSize.width() / 2) {
    const double middle = (geometry.startStation() + geometry.endStation()) / 2;
    const double step = PlanFurniture::roundStep(kNameDistance / viewport.scale());
    const double from = ticks.empty() ? middle : ticks.front().station;
    const double to = ticks.empty() ? middle : ticks.back().station;
    for (double index = std::ceil((from - middle) / step); middle + index * step <= to; ++index) {
      const auto pose = geometry.poseAt(middle + index * step);
      if (!pose) continue;
      const QPointF left(-std::sin(pose->direction), -std::cos(pose->direction));
      const QPointF along(std::cos(pose->direction), -std::sin(pose->direction));
      const QPointF centre = pixelOf(viewport, pose->point) + left * (kMajorTick + 5.0 + nameSize.height() / 2);
      const double degrees = degreesOf(along);
      if (placer_.place(centre, nameSize + QSizeF(10, 8), degrees))
        text_.draw(painter_, centre, name, nameStyle, degrees);
    }
  }
  if (frame_.look.stations) labelStations(ticks);
}

void PlanLabels::labelStations(const std::vector<view::Tick>& ticks) {
  const PlanColours& colours = planColours(frame_.look.dark);
  const Viewport& viewport = frame_.viewport;
  const HaloText::Style style{labelFont(frame_.font, 0.85), colours.alignment, colours.ground};
  for (const view::Tick& tick : ticks) {
    if (!tick.isMajor) continue;
    const QString text = toQt(tick.text);
    const QSizeF size = text_.sizeOf(text, style.font);
    const QPointF right(std::sin(tick.direction), std::cos(tick.direction));
    const QPointF centre = pixelOf(viewport, tick.place) + right * (kMajorTick + 4.0 + size.width() / 2);
    const double degrees = degreesOf(right);
    if (placer_.place(centre, size + QSizeF(6, 6), degrees)) text_.draw(painter_, centre, text, style, degrees);
  }
}

void PlanLabels::labelSampleLines() {
  const PlanColours& colours = planColours(frame_.look.dark);
  const Viewport& viewport = frame_.viewport;
  const Box visible = seen(viewport);
  const HaloText::Style style{labelFont(frame_.font, 0.85), colours.sampleLine, colours.ground};
  const auto lines = frame_.scene.sampleLines();
  std::vector<std::size_t> order;
  for (std::size_t index = 0; index < lines.size(); ++index)
    if (lines[index].line->vertices.size() > 1 && view::meet(lines[index].box, visible) &&
        !frame_.scene.isHidden(lines[index].line->handle))
      order.push_back(index);
  // Where not all find room, every second, fourth, ... does, and the same ones while the view moves.
  std::stable_sort(order.begin(), order.end(),
                   [](std::size_t one, std::size_t other) { return rankOf(one) < rankOf(other); });
  for (const std::size_t index : order) {
    const civil::SampleLine& line = *lines[index].line;
    const QPointF end = pixelOf(viewport, line.vertices.front());
    const QPointF before = pixelOf(viewport, line.vertices[1]);
    const QPointF other = pixelOf(viewport, line.vertices.back());
    if (std::hypot(end.x() - other.x(), end.y() - other.y()) < kLeastNamedLine) continue;
    QPointF outwards = end - before;
    const double length = std::hypot(outwards.x(), outwards.y());
    if (length <= 0.0) continue;
    outwards /= length;
    const QString text = toQt(line.name);
    const QSizeF size = text_.sizeOf(text, style.font);
    const QPointF centre = end + outwards * (5.0 + size.width() / 2);
    const double degrees = degreesOf(outwards);
    if (placer_.place(centre, size + QSizeF(6, 5), degrees)) text_.draw(painter_, centre, text, style, degrees);
  }
}

void PlanLabels::labelContours(std::span<const view::ContourLabel> contours) {
  const PlanColours& colours = planColours(frame_.look.dark);
  const HaloText::Style style{labelFont(frame_.font, 0.78), colours.indexContour, colours.ground};
  // Few enough that lines are what one sees; but where texts stand close, an elevation that would have none gets one.
  constexpr double kRoom = 70.0;
  constexpr double kLeastRoom = 8.0;
  std::set<double> named;
  const bool hasIndex =
      std::any_of(contours.begin(), contours.end(), [](const view::ContourLabel& label) { return label.isIndex; });
  const auto place = [&](const view::ContourLabel& label, double room) {
    const QString text = contourText(label.elevation);
    const QSizeF size = text_.sizeOf(text, style.font);
    const QPointF centre = pixelOf(frame_.viewport, label.place);
    // In steps: a turned text is drawn once and kept.
    constexpr double kStep = 3.0;
    const double degrees = std::round(degreesOf({label.direction.x, -label.direction.y}) / kStep) * kStep;
    if (!placer_.place(centre, size + QSizeF(room, room / 2), degrees)) return;
    text_.draw(painter_, centre, text, style, degrees);
    named.insert(label.elevation);
  };
  // Index contours, the others where there is nothing else to go by.
  for (const view::ContourLabel& label : contours)
    if (label.isIndex == hasIndex) place(label, kRoom);
  for (const view::ContourLabel& label : contours)
    if (label.isIndex == hasIndex && !named.contains(label.elevation)) place(label, kLeastRoom);
}

void PlanLabels::labelPoints(std::span<const civil::Point* const> points) {
  const PlanColours& colours = planColours(frame_.look.dark);
  const HaloText::Style style{labelFont(frame_.font, 0.8), colours.point, colours.ground};
  std::vector<const civil::Point*> order(points.begin(), points.end());
  std::stable_sort(order.begin(), order.end(), [](const civil::Point* one, const civil::Point* other) {
    return rankOf(static_cast<std::size_t>(one->number)) < rankOf(static_cast<std::size_t>(other->number));
  });
  // A number may cover its own mark's surroundings, never the mark of another point.
  std::vector<QPointF> places;
  places.reserve(order.size());
  for (const civil::Point* const one : order) {
    places.push_back(pixelOf(frame_.viewport, {one->position.x, one->position.y}));
    placer_.reserve(QRectF(places.back() - QPointF(2.5, 2.5), QSizeF(5, 5)));
  }
  for (std::size_t index = 0; index < order.size(); ++index) {
    const QString text = QString::number(order[index]->number);
    const QSizeF size = text_.sizeOf(text, style.font);
    const double aside = 5.0 + size.width() / 2;
    const double above = 3.0 + size.height() / 2;
    for (const QPointF& offset :
         {QPointF(aside, -above), QPointF(aside, above), QPointF(-aside, -above), QPointF(-aside, above)}) {
      if (!placer_.place(places[index] + offset, size + QSizeF(3, 3), 0.0)) continue;
      text_.draw(painter_, places[index] + offset, text, style);
      break;
    }
  }
}

}  // namespace lvx::desktop
