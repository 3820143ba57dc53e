#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "civil/detail/triangle_links.h"
#include "civil/tin_surface.h"

namespace lvx::civil::detail {

/// A grid of cells of about two triangles each: names a triangle near every place, from where a walk to that place sets
/// out, and tells apart the triangles that are alone where they lie.
///
/// A walk over links sees the triangles that it crosses and no others. That is all there is to see only where one layer
/// of triangles covers the ground, or none: not at islands, overlaps, T-junctions, or seams of points given twice. Such
/// places lie within cells that an odd border edge touches, or that are covered more than once, because the layers over a
/// place change only at border edges. The triangles clear of all those cells are alone.
///
/// A border is plain, not odd, where its edges meet one another and other borders at most in vertices, and part one layer
/// on their left from none on their right: rims and holes of a surface in good order. A walk may cross those, and the
/// grid knows the edges in each cell, so that it finds from where one ends to where it goes on.
class StartGrid {
 public:
  StartGrid() = default;
  /// Tells the links which triangles aren't alone. The triangles must be wound counter-clockwise. O(n).
  StartGrid(std::span<const Vec3> points, std::span<const Triangle> triangles, const Box& box, TriangleLinks& links,
            SpareMemory& spare);

  /// Bytes of the largest array of a grid, by the number of triangles; about.
  [[nodiscard]] static std::size_t startsSize(std::size_t triangles) {
    constexpr double kRims = 1.02;
    return static_cast<std::size_t>(kRims * static_cast<double>(triangles) / kTrianglesPerCell * sizeof(std::int32_t));
  }

  /// The number of a triangle near a place, complemented if it isn't alone; kNoLink where there is none at all.
  [[nodiscard]] std::int32_t triangleNear(Vec2 p) const {
    if (starts_.empty()) return kNoLink;
    return starts_[cellOf(p)];
  }

  /// The cell of a place; of the nearest one for a place outside. Not where there are no cells.
  [[nodiscard]] std::size_t cellOf(Vec2 p) const { return rowOf(p.y) * columns_ + columnOf(p.x); }
  [[nodiscard]] bool hasCovers() const { return !covers_.empty(); }
  /// What covers a cell.
  enum class Cover : std::uint8_t { None, One, PlainBorder, Odd };
  [[nodiscard]] Cover coverOf(std::size_t cell) const { return covers_[cell]; }
  /// The edges of a PlainBorder cell, as links pack them: 4 * triangle + edge; complemented where the triangle isn't
  /// alone. O(log n).
  [[nodiscard]] std::span<const Link> bordersIn(std::size_t cell) const;

  /// Whether the cells along a segment can be told: not where it comes from so far away that doubles can't.
  [[nodiscard]] bool canVisit(Vec2 a, Vec2 d) const {
    constexpr double kFarthest = 1e8;  // cells; what rounding moves a place by stays well below the borders' margin
    return std::abs(gridX(a.x)) + std::abs(d.x * perUnit_) < kFarthest &&
           std::abs(gridY(a.y)) + std::abs(d.y * perUnit_) < kFarthest;
  }
  /// Calls `visit(cell, end)` for the cells along the segment from `a` in direction `d`, from place `begin` on it to place
  /// `until`, in their order, each with the place where the segment leaves it; until `visit` returns false. Nothing lies
  /// outside the grid: cells there aren't visited.
  template <class Visit>
  void visitAlong(Vec2 a, Vec2 d, double begin, double until, Visit visit) const;

  /// Side of a cell.
  [[nodiscard]] double cellSize() const { return 1.0 / perUnit_; }

 private:
  static constexpr double kTrianglesPerCell = 2.0;

  [[nodiscard]] double gridX(double x) const { return (x - origin_.x) * perUnit_; }
  [[nodiscard]] double gridY(double y) const { return (y - origin_.y) * perUnit_; }
  [[nodiscard]] static std::size_t clamped(double cell, std::size_t count) {
    return cell > 0.0 ? (cell < static_cast<double>(count) ? static_cast<std::size_t>(cell) : count - 1) : 0;
  }
  [[nodiscard]] std::size_t columnOf(double x) const { return clamped(gridX(x), columns_); }
  [[nodiscard]] std::size_t rowOf(double y) const { return clamped(gridY(y), rows_); }

  /// A border edge touches a cell.
  struct Touch {
    std::uint32_t cell = 0;
    Link edge = 0;
  };
  void findTouched(std::span<const Vec3> points, const std::int32_t* corners, const TriangleLinks& links,
                   std::size_t triangleCount, double margin);
  void judgeBorders(std::span<const Vec3> points, const std::int32_t* corners);
  [[nodiscard]] std::vector<std::int32_t> sharedCells() const;
  void fillEmptyCells();

  Vec2 origin_;
  double perUnit_ = 0.0;
  std::size_t columns_ = 0;
  std::size_t rows_ = 0;
  PlainArray<std::int32_t> starts_;
  std::vector<Cover> covers_;          // empty where borders are too long to look at each: all cells count as odd
  std::vector<Touch> touches_;         // ascending by cell, while the grid is built
  std::vector<std::uint32_t> cells_;   // of plain borders, ascending
  std::vector<std::uint32_t> firsts_;  // where their edges begin in borders_, and where the last one's end
  std::vector<Link> borders_;
};

template <class Visit>
void StartGrid::visitAlong(Vec2 a, Vec2 d, double begin, double until, Visit visit) const {
  if (covers_.empty()) return;
  // In units of cells.
  const Vec2 from{gridX(a.x), gridY(a.y)};
  const Vec2 step{d.x * perUnit_, d.y * perUnit_};
  const auto cut = [&](double start, double along, double high) {
    if (along == 0.0) {
      if (start < 0.0 || start > high) begin = until + 1.0;
      return;
    }
    const auto [enter, leave] = std::minmax({-start / along, (high - start) / along});
    begin = std::max(begin, enter);
    until = std::min(until, leave);
  };
  cut(from.x, step.x, static_cast<double>(columns_));
  cut(from.y, step.y, static_cast<double>(rows_));
  if (!(begin <= until)) return;

  std::size_t column = clamped(from.x + begin * step.x, columns_);
  std::size_t row = clamped(from.y + begin * step.y, rows_);
  const auto nextLine = [](std::size_t cell, double start, double along) {
    if (along == 0.0) return std::numeric_limits<double>::infinity();
    return (static_cast<double>(along > 0.0 ? cell + 1 : cell) - start) / along;
  };
  for (;;) {
    const double atColumn = nextLine(column, from.x, step.x);
    const double atRow = nextLine(row, from.y, step.y);
    const double end = std::min(atColumn, atRow);
    if (!visit(row * columns_ + column, end) || !(end < until)) return;
    if (atColumn < atRow) {
      if (step.x > 0.0 ? ++column == columns_ : column-- == 0) return;
    } else {
      if (step.y > 0.0 ? ++row == rows_ : row-- == 0) return;
    }
  }
}

}  // namespace lvx::civil::detail
