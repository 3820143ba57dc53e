#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "civil/detail/convex_piece.h"
#include "civil/tin_surface.h"

namespace lvx::civil::detail {

/// A surface's ground for laying another one over it: which triangles lie in a box, and of triangles one above another
/// the pieces that count, so that all pieces together cover the ground once.
class GroundLayers {
 public:
  static constexpr std::size_t kRun = 32;  ///< triangles that share a box

  /// Boxes alone; tellShared() tells which lie one above another. O(n).
  GroundLayers(const TinSurface& surface, const RunPieces& run);

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] std::size_t runCount() const { return levels_.empty() ? 0 : levels_.front().size(); }
  [[nodiscard]] const Box& boxOfRun(std::size_t run) const { return levels_.front()[run]; }
  [[nodiscard]] Box boxOf(std::size_t triangle) const;
  /// Relative to `origin`, counter-clockwise.
  [[nodiscard]] Corners cornersOf(std::size_t triangle, const Vec3& origin) const;
  [[nodiscard]] const Vec3& firstCorner(std::size_t triangle) const;

  /// Appends the triangles whose boxes meet `box`, ascending. O(log n + those in runs that meet it).
  void collect(const Box& box, std::vector<std::uint32_t>& triangles, std::vector<Box>& boxes) const;

  /// Two triangles that have area in common, the lower number first.
  using Pair = std::pair<std::uint32_t, std::uint32_t>;
  /// Appends the pairs whose lower number is in a run; those of all runs are to be told to tellShared(), in any order.
  void findShared(std::size_t run, std::vector<Pair>& pairs) const;
  void tellShared(std::vector<Pair> pairs);

  /// Whether a triangle has others above or below it.
  [[nodiscard]] bool isShared(std::size_t triangle) const {
    return !shared_.empty() && shared_.contains(static_cast<std::uint32_t>(triangle));
  }
  /// The parts of a convex piece of a triangle above which no other one lies, all relative to `origin`. They are cut
  /// along the triangles' own edges alone: what a cut leaves may be too short to tell a direction.
  [[nodiscard]] std::vector<ConvexPiece> uppermost(std::size_t triangle, const Vec3& origin, ConvexPiece whole) const;
  /// Horizontal, of the parts of a triangle that nothing lies above.
  [[nodiscard]] double visibleArea(std::size_t triangle) const;

 private:
  static constexpr std::size_t kFan = 8;
  [[nodiscard]] bool isSameGround(std::size_t lower, std::size_t higher, const Vec3& origin) const;

  std::span<const Vec3> points_;
  std::span<const Triangle> triangles_;
  std::size_t size_ = 0;
  std::vector<std::vector<Box>> levels_;  // the runs first
  std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> shared_;
};

}  // namespace lvx::civil::detail
