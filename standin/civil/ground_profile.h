#pragma once

#include <vector>

#include "civil/alignment.h"
#include "civil/profile.h"
#include "civil/tin_surface.h"

/// The ground under an alignment, over its stations.
///
///     const Profile ground = groundProfile(axis, surface, {.thinning = 0.02});
namespace lvx::civil {

struct GroundPoint {
  double station = 0.0;
  double elevation = 0.0;
  /// On an edge of a triangle or the border of the surface; else only where a chord in place of a curve ends, or an
  /// element does.
  bool isOnEdge = false;
};

/// The ground along an alignment in runs, one for each stretch without a gap, ascending. A point stands at every edge of
/// a triangle that the alignment crosses and at both ends of every run. Lines are walked exactly; arcs and transitions by
/// chords that leave them by at most `chordError` in plan, with a point at each chord's end, and stations between those
/// are set in proportion. Runs don't join where the alignment itself has a gap. Costs what sampling the surface does.
[[nodiscard]] std::vector<std::vector<GroundPoint>> groundAlong(const Alignment& axis, const TinSurface& surface,
                                                                double chordError);

struct GroundProfileOptions {
  /// Points may go where the profile without them stays this close in elevation; 0 keeps every crossing of an edge.
  double thinning = 0.0;
  /// How far chords may leave arcs and transitions in plan: elevations are those of the ground so far beside the axis.
  double chordError = 1e-4;
};

/// Ends of chords, between the edges that the axis crosses, are left out where the profile stays this close without.
inline constexpr double kGroundBetweenEdges = 1e-4;

/// A ground profile from a surface: a point at every triangle edge that the alignment crosses, and within triangles where
/// a curve bends the ground's line by more than kGroundBetweenEdges; or fewer, by `thinning`. Where there is no ground the
/// profile has a gap; it is empty where the alignment never meets the surface. Ends of runs always stay. Throws
/// std::invalid_argument for an option that isn't finite, a negative thinning or a chord error not above 0. Linear in
/// the points of groundAlong.
[[nodiscard]] Profile groundProfile(const Alignment& axis, const TinSurface& surface,
                                    const GroundProfileOptions& options = {});

}  // namespace lvx::civil
