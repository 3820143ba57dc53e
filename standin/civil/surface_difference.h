#pragma once

#include <functional>
#include <optional>

#include "civil/tin_surface.h"

namespace lvx::civil {

/// Elevations no further apart than this, in drawing units, are one: less than any file writes down, more than the
/// rounding of what is computed from it.
inline constexpr double kSameElevation = 1e-9;

/// What lies between two surfaces, an existing one and the one it is to become. Areas are horizontal, in square drawing
/// units; volumes are in cubic ones. None is negative but `net()`.
struct SurfaceDifference {
  double cut = 0.0;   ///< where the new surface lies below the existing one
  double fill = 0.0;  ///< where it lies above
  double cutArea = 0.0;
  double fillArea = 0.0;
  double equalArea = 0.0;     ///< where both lie within kSameElevation
  double onlyExisting = 0.0;  ///< area where the new surface has no ground
  double onlyNew = 0.0;       ///< area where the existing one has none
  /// The least and the greatest of new less existing; both 0 where the surfaces have no area in common.
  double lowest = 0.0;
  double highest = 0.0;

  /// Fill less cut: what has to be brought.
  [[nodiscard]] double net() const { return fill - cut; }
  [[nodiscard]] double commonArea() const { return cutArea + fillArea + equalArea; }
  bool operator==(const SurfaceDifference&) const = default;
};

/// Told the part that is done, from 0 to 1, by any thread, one at a time; false gives up.
using DifferenceProgress = std::function<bool(double done)>;

/// Cut and fill between two surfaces, exact over the overlay of both: the area that they have in common falls into convex
/// polygons on which both are planes. Each is a fan of triangles; over one of area A on which the surfaces lie d1, d2 and
/// d3 apart stands a truncated triangular prism of volume A (d1 + d2 + d3) / 3 (Legendre, Éléments de géométrie, book VI).
/// Where the difference changes its sign within a triangle, the corner that is alone on its side, d1 say, has a pyramid
/// of base A d1² / ((d1 - d2)(d1 - d3)) and height d1, and the rest is on the other side.
///
/// Only ground counts: holes, what lies beyond a border, and triangles without area in plan (walls) have none. Where
/// triangles of one surface lie one above another the highest counts, as in TinSurface. Everything is computed relative
/// to a corner of each triangle, so large coordinates lose nothing; areas and volumes are right to about 1e-12 of their
/// sums, and onlyExisting and onlyNew are 0 where they come to less than that of their surface's area.
///
/// `run` does the work; the answer is the same to the last bit whatever it is. O((n + m + k) log (n + m)) for k pairs of
/// triangles whose boxes do; with l layers of one surface one above another, up to l² of them more. Where f triangles of a
/// surface meet at one point, their boxes do too: f² pairs are looked at there, some 10 ns each, so that two fans of 20,000
/// triangles take four seconds on one thread. Takes some 100 bytes a run of 32 triangles. Empty where `progress` gave up.
///
///     const auto difference = surfaceDifference(existing, design);
///     std::cout << difference->cut << ' ' << difference->fill;
[[nodiscard]] std::optional<SurfaceDifference> surfaceDifference(const TinSurface& existing, const TinSurface& next,
                                                                 const RunPieces& run = inOrder,
                                                                 const DifferenceProgress& progress = {});

}  // namespace lvx::civil
