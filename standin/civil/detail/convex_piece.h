#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "civil/geometry.h"

/// Convex pieces of planes and how they are cut. All coordinates are relative to a place nearby, so that differences of
/// them are exact. Nothing here decides exactly: a corner that rounding puts on the wrong side of a line moves a piece's
/// area by no more than the rounding of its sides.
namespace lvx::civil::detail {

/// Corners counter-clockwise; fewer than three hold no area.
using ConvexPiece = std::vector<Vec3>;
using Corners = std::array<Vec3, 3>;

[[nodiscard]] inline double sideOf(const Vec3& from, const Vec3& to, const Vec3& p) {
  return (to.x - from.x) * (p.y - from.y) - (to.y - from.y) * (p.x - from.x);
}

/// Twice the area in plan.
[[nodiscard]] inline double twiceArea(const ConvexPiece& piece) {
  double sum = 0.0;
  for (std::size_t i = 2; i < piece.size(); ++i) sum += sideOf(piece[0], piece[i - 1], piece[i]);
  return sum;
}

/// Puts the part of `piece` where `valueOf(corner)`, which is linear over it, isn't negative into `kept`.
template <class ValueOf>
void cut(const ConvexPiece& piece, ConvexPiece& kept, ValueOf valueOf) {
  kept.clear();
  if (piece.empty()) return;
  const Vec3* before = &piece.back();
  double valueBefore = valueOf(*before);
  for (const Vec3& corner : piece) {
    const double value = valueOf(corner);
    if ((value > 0.0 && valueBefore < 0.0) || (value < 0.0 && valueBefore > 0.0)) {
      const double along = valueBefore / (valueBefore - value);
      kept.push_back({before->x + along * (corner.x - before->x), before->y + along * (corner.y - before->y),
                      before->z + along * (corner.z - before->z)});
    }
    if (value >= 0.0) kept.push_back(corner);
    before = &corner;
    valueBefore = value;
  }
}

/// Leaves of `piece` what lies within a convex outline, whose corners stand counter-clockwise; `scratch` holds anything.
template <class Outline>
void cutToOutline(ConvexPiece& piece, ConvexPiece& scratch, const Outline& outline) {
  const Vec3* from = &outline.back();
  for (const Vec3& to : outline) {
    bool isOut = false;
    for (const Vec3& corner : piece) isOut |= sideOf(*from, to, corner) < 0.0;
    if (isOut) {
      cut(piece, scratch, [&](const Vec3& p) { return sideOf(*from, to, p); });
      piece.swap(scratch);
      if (piece.size() < 3) return;
    }
    from = &to;
  }
}

/// Elevation of a triangle at a place within it or, by rounding, beside it: never beyond its corners' elevations.
[[nodiscard]] inline double elevationIn(const Corners& corners, const Vec3& p) {
  const double atA = std::max(0.0, sideOf(corners[1], corners[2], p));
  const double atB = std::max(0.0, sideOf(corners[2], corners[0], p));
  const double atC = std::max(0.0, sideOf(corners[0], corners[1], p));
  const double sum = atA + atB + atC;
  if (!(sum > 0.0)) return (corners[0].z + corners[1].z + corners[2].z) / 3.0;
  return corners[0].z + (atB * (corners[1].z - corners[0].z) + atC * (corners[2].z - corners[0].z)) / sum;
}

/// Whether a line along an edge of one of the triangles has the other one on its far side: they have no area in common.
[[nodiscard]] inline bool areApart(const Corners& a, const Corners& b) {
  const auto hasBeyond = [](const Corners& inner, const Corners& other) {
    for (std::size_t i = 0; i < 3; ++i) {
      const Vec3& from = inner[i];
      const Vec3& to = inner[(i + 1) % 3];
      if (sideOf(from, to, other[0]) <= 0.0 && sideOf(from, to, other[1]) <= 0.0 && sideOf(from, to, other[2]) <= 0.0)
        return true;
    }
    return false;
  };
  return hasBeyond(a, b) || hasBeyond(b, a);
}

}  // namespace lvx::civil::detail
