#pragma once

#include <optional>
#include <vector>

#include "view/lines.h"

/// Cut and fill between what is designed and the ground, over an offset or a station.
///
///     const view::CutFill between = view::cutFillBetween(design, ground);
///     for (const view::CutFillArea& area : between.areas) paint(area.outline, area.isFill);
///     tell(between.cut, between.fill);     // square drawing units in a cross section
///
/// Lines are taken as heights over x: where several lie above each other (a folded line, the layers of a road), the
/// upper one counts; a gap is a gap, an upright piece a step. Points that aren't finite are gaps.
namespace lvx::view {

/// The upper edge of all lines together, from left to right; a line for each stretch without a gap. Single points have
/// none. Exact but for rounding: it turns where the lines turn and where they cross. O(n log n), times the square of how
/// many lie above each other.
[[nodiscard]] Lines upperEdge(const Lines& lines);

/// A stretch where one lies above the other all along.
struct CutFillArea {
  /// The design lies above the ground; else it is cut.
  bool isFill = false;
  /// Along the design from left to right, back along the ground; the first point isn't repeated.
  Line outline;
  double area = 0.0;
};

struct CutFill {
  /// From left to right.
  std::vector<CutFillArea> areas;
  /// Sums of their areas, products of the two axes' units.
  double cut = 0.0;
  double fill = 0.0;
  [[nodiscard]] bool isEmpty() const { return areas.empty(); }
};

/// Heights that differ by no more than this, drawing units, are one: lines that lie on each other enclose nothing.
inline constexpr double kSameHeight = 1e-9;

/// Between the upper edges of both, where both are. Areas are right to 1e-9 of their bounding boxes. Costs what the edges
/// do.
[[nodiscard]] CutFill cutFillBetween(const Lines& design, const Lines& ground);

/// How far the design lies above the ground at `x` (below 0: cut); of the upper ones. Empty where one of them isn't.
/// O(n log n).
[[nodiscard]] std::optional<double> heightOver(const Lines& design, const Lines& ground, double x);

/// The part of an area within `box`, cut along its sides; the outline may run along them forth and back. Empty where
/// nothing is left. O(points).
[[nodiscard]] Line clippedOutline(const Line& outline, const civil::Box& box);

/// Parallel strokes that fill an area (odd-even where it crosses itself): `spacing` apart, in the direction of `angle`,
/// radians counter-clockwise from the x axis. They stand where strokes of other areas with this spacing and angle go on.
/// Each line has two points. Nothing for a spacing that isn't above 0, for more than a million strokes, and
/// farther from the origin than 2^52 spacings.
[[nodiscard]] Lines hatched(const Line& outline, double spacing, double angle);

}  // namespace lvx::view
