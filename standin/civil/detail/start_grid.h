#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "civil/detail/tin_build.h"
#include "civil/tin_surface.h"

namespace lvx::civil::detail {

/// A grid of cells of about two triangles each: names a triangle near every place, from where a walk to that place sets
/// out, and tells apart the triangles that are alone where they lie.
///
/// A walk over links sees the triangles that it crosses and no others. That is all there is to see only where one layer
/// of triangles covers the ground and no border comes near: not at islands, overlaps, T-junctions, or seams of points
/// given twice. Such places lie within cells that a border edge touches, or that are covered more than once, because
/// the layers over a place change only at border edges. The triangles clear of all those cells are alone.
class StartGrid {
 public:
  StartGrid() = default;
  /// Complements the links to triangles that aren't alone. The triangles must be wound counter-clockwise. O(n).
  StartGrid(std::span<const Vec3> points, std::span<const Triangle> triangles, const Box& box,
            std::vector<Link>& links);

  /// The number of a triangle near a place, complemented if it isn't alone; kNoLink where there is none at all.
  [[nodiscard]] std::int32_t triangleNear(Vec2 p) const {
    if (starts_.empty()) return kNoLink;
    return starts_[rowOf(p.y) * columns_ + columnOf(p.x)];
  }

  /// Side of a cell.
  [[nodiscard]] double cellSize() const { return 1.0 / perUnit_; }

 private:
  [[nodiscard]] double gridX(double x) const { return (x - origin_.x) * perUnit_; }
  [[nodiscard]] double gridY(double y) const { return (y - origin_.y) * perUnit_; }
  [[nodiscard]] static std::size_t clamped(double cell, std::size_t count) {
    return cell > 0.0 ? (cell < static_cast<double>(count) ? static_cast<std::size_t>(cell) : count - 1) : 0;
  }
  [[nodiscard]] std::size_t columnOf(double x) const { return clamped(gridX(x), columns_); }
  [[nodiscard]] std::size_t rowOf(double y) const { return clamped(gridY(y), rows_); }

  /// For every cell how many cells up to it, in both directions, are shared; with a row and a column of zeros before
  /// them. Empty where the borders are too long to look at each: then all cells count as shared.
  [[nodiscard]] std::vector<std::int32_t> sharedCells(std::span<const Vec3> points, std::span<const Triangle> triangles,
                                                      std::span<const Link> links, double margin) const;
  void fillEmptyCells();

  Vec2 origin_;
  double perUnit_ = 0.0;
  std::size_t columns_ = 0;
  std::size_t rows_ = 0;
  std::vector<std::int32_t> starts_;
};

}  // namespace lvx::civil::detail
