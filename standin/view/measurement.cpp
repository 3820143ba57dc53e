#include "view/measurement.h"

#include <cmath>

namespace lvx::view {

using civil::Vec2;

namespace {

MeasuredLeg legBetween(const MeasuredPoint& from, const MeasuredPoint& to) {
  const Vec2 way = to.place - from.place;
  MeasuredLeg leg;
  leg.horizontal = civil::length(way);
  if (leg.horizontal > 0.0) leg.azimuth = civil::azimuthOf(std::atan2(way.y, way.x));
  if (!from.elevation || !to.elevation) return leg;
  leg.rise = *to.elevation - *from.elevation;
  leg.slopeDistance = std::hypot(leg.horizontal, *leg.rise);
  if (leg.horizontal > 0.0) leg.slope = *leg.rise / leg.horizontal;
  return leg;
}

}  // namespace

Measurement measure(std::span<const MeasuredPoint> points) {
  Measurement all;
  if (points.empty()) return all;
  all.slopeDistance = 0.0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const MeasuredLeg leg = legBetween(points[i - 1], points[i]);
    all.horizontal += leg.horizontal;
    if (all.slopeDistance && leg.slopeDistance)
      *all.slopeDistance += *leg.slopeDistance;
    else
      all.slopeDistance.reset();
    all.legs.push_back(leg);
  }
  if (points.front().elevation && points.back().elevation)
    all.rise = *points.back().elevation - *points.front().elevation;
  if (points.size() < 3) return all;
  const Vec2 first = points.front().place;
  double twice = 0.0;
  for (std::size_t i = 2; i < points.size(); ++i)
    twice += civil::cross(points[i - 1].place - first, points[i].place - first);
  all.area = std::abs(twice) / 2.0;
  all.perimeter = all.horizontal + civil::length(first - points.back().place);
  return all;
}

}  // namespace lvx::view
