#pragma once

#include <optional>
#include <vector>

#include "civil/geometry.h"
#include "civil/tin_surface.h"

/// What sections and profiles are drawn of: lines over an offset or a station (x) with elevations (y), broken where
/// there is nothing to draw. Distances are measured in reaches, since heights are drawn larger than widths: a reach of
/// {8 pixels across, 8 pixels up} in drawing units makes them distances on the screen. Both parts of a reach are above 0.
///
/// Every function here looks at each point once: O(points), no memory but for the answer. Errors are those of a few
/// operations on doubles, 1e-9 at survey coordinates of seven digits.
namespace lvx::view {

using Line = std::vector<civil::Vec2>;
using Lines = std::vector<Line>;

/// A place that isn't finite changes nothing.
void extend(civil::Box& box, civil::Vec2 place);
void extend(civil::Box& box, const Lines& lines);

/// The nearest distance from `place`, in reaches; empty when it is above 1, and for lines without points.
[[nodiscard]] std::optional<double> distanceTo(const Lines& lines, civil::Vec2 place, civil::Vec2 reach);

/// The nearest of the points that the lines are made of, at most one reach away.
struct NearPoint {
  civil::Vec2 place;
  double distance = 0.0;  ///< in reaches
};
[[nodiscard]] std::optional<NearPoint> nearestPoint(const Lines& lines, civil::Vec2 place, civil::Vec2 reach);

/// The elevation at `x` on the straight between its neighbours, of the first line that has one. Empty in a gap.
[[nodiscard]] std::optional<double> elevationAt(const Lines& lines, double x);

/// The part within `box`, its sides included, cut there; lines that leave it and come back are in pieces. Points that aren't finite are
/// gaps.
[[nodiscard]] Lines clipped(const Lines& lines, const civil::Box& box);

}  // namespace lvx::view
