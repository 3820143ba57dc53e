#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "civil/detail/plain_array.h"
#include "civil/tin_surface.h"

namespace lvx::civil::detail {

/// Finds the triangles near a segment: a tree of boxes over runs of eight consecutive triangles, runs of eight such
/// runs, and so on. It stores no triangle numbers, so it takes about 2.3 bytes a triangle and is built in one pass; it
/// finds fast as far as consecutive triangles lie close to each other.
class BlockTree {
 public:
  BlockTree() = default;
  /// With the room for its boxes.
  BlockTree(std::span<const Triangle> triangles, const Box& box, SpareMemory& spare);
  /// To be called once, before anything is looked for. O(n).
  void fill(std::span<const Vec3> points, std::span<const Triangle> triangles);

  /// Bytes of the largest array of a tree, by the number of triangles; about.
  [[nodiscard]] static std::size_t boundsSize(std::size_t triangles) { return triangles * sizeof(Bounds) / (kRun - 1); }

  /// Calls `visit(triangle)` for every triangle that the segment from `a` to `b` may meet, and for some more.
  template <class Visit>
  void visitNear(Vec2 a, Vec2 b, Visit visit) const;

 private:
  static constexpr std::size_t kRun = 8;
  static constexpr std::size_t kMostLevels = 11;  // 8^11 is beyond what 32 bits number

  /// Relative to the origin, rounded outwards.
  struct Bounds {
    float minX;
    float minY;
    float maxX;
    float maxY;
  };
  struct Level {
    std::size_t first = 0;  // in bounds_
    std::size_t count = 0;
  };

  PlainArray<Bounds> bounds_;  // the runs of triangles first, the topmost level last
  std::array<Level, kMostLevels> levels_{};
  std::size_t levelCount_ = 0;
  std::size_t triangleCount_ = 0;
  Vec2 origin_;
  double rounding_ = 0.0;  // of coordinates when they are taken relative to the origin
};

template <class Visit>
void BlockTree::visitNear(Vec2 a, Vec2 b, Visit visit) const {
  if (levelCount_ == 0) return;
  const Vec2 from = a - origin_;
  const Vec2 d = b - a;
  const double slack = rounding_ + 0x1p-50 * (std::abs(a.x) + std::abs(a.y) + std::abs(b.x) + std::abs(b.y));
  const double minX = from.x + std::fmin(0.0, d.x) - slack;
  const double maxX = from.x + std::fmax(0.0, d.x) + slack;
  const double minY = from.y + std::fmin(0.0, d.y) - slack;
  const double maxY = from.y + std::fmax(0.0, d.y) + slack;
  const double spreadX = std::abs(d.x);
  const double spreadY = std::abs(d.y);
  const auto isNear = [&](const Bounds& box) {
    if (box.maxX < minX || box.minX > maxX || box.maxY < minY || box.minY > maxY) return false;
    // The box lies on one side of the segment's line if its middle is farther from it than its corners reach.
    const double halfX = 0.5 * (double{box.maxX} - box.minX) + slack;
    const double halfY = 0.5 * (double{box.maxY} - box.minY) + slack;
    const double middleX = 0.5 * (double{box.maxX} + box.minX) - from.x;
    const double middleY = 0.5 * (double{box.maxY} + box.minY) - from.y;
    const double forward = d.x * middleY;
    const double backward = d.y * middleX;
    return std::abs(forward - backward) <=
           spreadX * halfY + spreadY * halfX + 0x1p-48 * (std::abs(forward) + std::abs(backward));
  };

  struct Run {
    std::size_t level;
    std::size_t index;
  };
  std::array<Run, kRun * kMostLevels + kRun> open;
  std::size_t openCount = 0;
  const std::size_t top = levelCount_ - 1;
  for (std::size_t i = levels_[top].count; i-- > 0;) open[openCount++] = {top, i};
  while (openCount > 0) {
    const Run run = open[--openCount];
    if (!isNear(bounds_[levels_[run.level].first + run.index])) continue;
    const std::size_t first = run.index * kRun;
    if (run.level == 0) {
      const std::size_t end = std::min(first + kRun, triangleCount_);
      for (std::size_t t = first; t < end; ++t) visit(t);
      continue;
    }
    const std::size_t end = std::min(first + kRun, levels_[run.level - 1].count);
    for (std::size_t i = end; i-- > first;) open[openCount++] = {run.level - 1, i};
  }
}

}  // namespace lvx::civil::detail
