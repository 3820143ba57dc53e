#pragma once

#include <optional>
#include <span>
#include <vector>

#include "civil/geometry.h"

namespace lvx::view {

/// A place that was measured to; without elevation where there is no ground.
struct MeasuredPoint {
  civil::Vec2 place;
  std::optional<double> elevation;
};

/// From one point to the next. Lengths in drawing units.
struct MeasuredLeg {
  double horizontal = 0.0;
  /// Clockwise from north in radians, [0, 2 pi); empty for a leg without length.
  std::optional<double> azimuth;
  /// Of the later point less the earlier one; this and what follows are empty where one of them has no elevation.
  std::optional<double> rise;
  /// Along the slope.
  std::optional<double> slopeDistance;
  /// Rise over run; empty for a leg without length too.
  std::optional<double> slope;
};

/// Of a line through points, in their order.
struct Measurement {
  std::vector<MeasuredLeg> legs;
  double horizontal = 0.0;
  /// Empty where a point has no elevation.
  std::optional<double> slopeDistance;
  /// From the first point to the last one; empty where one of these has no elevation.
  std::optional<double> rise;
  /// Of the polygon that the last point closes with the first, horizontal; empty below three points. Where its sides
  /// cross, what is gone around to the left counts against what is gone around to the right.
  std::optional<double> area;
  std::optional<double> perimeter;
};

/// O(points). Right to the rounding of the coordinates: areas are summed relative to the first point.
[[nodiscard]] Measurement measure(std::span<const MeasuredPoint> points);

}  // namespace lvx::view
