#include "civil/detail/start_grid.h"

#include <algorithm>
#include <cmath>

namespace lvx::civil::detail {
namespace {

std::int32_t nextCorner(const std::int32_t* corners, std::size_t edge, std::size_t step) {
  return corners[(edge + step) % 3];
}

}  // namespace

StartGrid::StartGrid(std::span<const Vec3> points, std::span<const Triangle> triangles, const Box& box,
                     std::vector<Link>& links) {
  if (triangles.empty()) return;
  constexpr double kTrianglesPerCell = 2.0;
  const double width = box.maxX - box.minX;
  const double height = box.maxY - box.minY;
  const double cellCount = std::max(1.0, static_cast<double>(triangles.size()) / kTrianglesPerCell);
  // A long strip gets no more cells along it than it has cells in all.
  const double cell = std::max(std::sqrt(width / cellCount * height), std::max(width, height) / cellCount);
  if (!(cell > 0.0)) return;
  origin_ = {box.minX, box.minY};
  perUnit_ = 1.0 / cell;
  columns_ = static_cast<std::size_t>(width * perUnit_) + 1;
  rows_ = static_cast<std::size_t>(height * perUnit_) + 1;

  const double farthest = std::max({std::abs(box.minX), std::abs(box.minY), std::abs(box.maxX), std::abs(box.maxY)});
  const double margin = 1e-6 + 0x1p-48 * farthest * perUnit_;
  const std::vector<std::int32_t> shared = sharedCells(points, triangles, links, margin);
  const auto isAlone = [&](std::size_t left, std::size_t right, std::size_t low, std::size_t high) {
    const std::size_t stride = columns_ + 1;
    return shared[(high + 1) * stride + right + 1] - shared[low * stride + right + 1] -
               shared[(high + 1) * stride + left] + shared[low * stride + left] ==
           0;
  };

  starts_.assign(columns_ * rows_, kNoLink);
  for (std::size_t t = 0; t < triangles.size(); ++t) {
    const Vec3& a = points[static_cast<std::size_t>(triangles[t].a)];
    const Vec3& b = points[static_cast<std::size_t>(triangles[t].b)];
    const Vec3& c = points[static_cast<std::size_t>(triangles[t].c)];
    const bool alone =
        !shared.empty() && isAlone(columnOf(std::min({a.x, b.x, c.x})), columnOf(std::max({a.x, b.x, c.x})),
                                   rowOf(std::min({a.y, b.y, c.y})), rowOf(std::max({a.y, b.y, c.y})));
    const auto number = static_cast<std::int32_t>(t);
    const std::size_t middle = rowOf((a.y + b.y + c.y) / 3.0) * columns_ + columnOf((a.x + b.x + c.x) / 3.0);
    starts_[middle] = alone ? number : ~number;
    if (alone) continue;
    for (std::size_t i = 3 * t; i < 3 * t + 3; ++i) {
      const Link link = links[i];
      if (link == kNoLink) continue;
      const Link there = link >= 0 ? link : ~link;
      Link& back = links[3 * static_cast<std::size_t>(there >> 2) + static_cast<std::size_t>(there & 3)];
      if (back >= 0) back = ~back;
    }
  }
  fillEmptyCells();
}

std::vector<std::int32_t> StartGrid::sharedCells(std::span<const Vec3> points, std::span<const Triangle> triangles,
                                                 std::span<const Link> links, double margin) const {
  const std::size_t stride = columns_ + 1;
  std::vector<std::int32_t> cells(stride * (rows_ + 1), 0);
  std::vector<std::uint8_t> isTouched(columns_ * rows_, 0);
  // Long borders through many cells each would cost more than they are worth.
  std::size_t budget = 4 * (columns_ + rows_ + isTouched.size()) + 8 * triangles.size();
  const std::int32_t* corners = cornersOf(triangles);

  // Where a row's lower line crosses a border from right to left of it, the layers grow by one; so the layers over a
  // cell's lower left corner are the sum of the changes before it in its row.
  for (std::size_t half = 0; half < links.size(); ++half) {
    if (links[half] != kNoLink) continue;
    const std::int32_t* triangle = corners + half / 3 * 3;
    const Vec3& from = points[static_cast<std::size_t>(nextCorner(triangle, half % 3, 1))];
    const Vec3& to = points[static_cast<std::size_t>(nextCorner(triangle, half % 3, 2))];
    const bool isRising = from.y < to.y;
    const Vec3& lower = isRising ? from : to;
    const Vec3& upper = isRising ? to : from;
    const double lowX = gridX(lower.x);
    const double lowY = gridY(lower.y);
    const double highX = gridX(upper.x);
    const double highY = gridY(upper.y);
    const double slope = highY > lowY ? (highX - lowX) / (highY - lowY) : 0.0;
    const double minX = std::min(lowX, highX);
    const double maxX = std::max(lowX, highX);
    const auto xAt = [&](double y) { return std::clamp(lowX + (y - lowY) * slope, minX, maxX); };
    const std::size_t firstRow = clamped(lowY - margin, rows_);
    const std::size_t lastRow = clamped(highY + margin, rows_);
    for (std::size_t row = firstRow; row <= lastRow; ++row) {
      const auto line = static_cast<double>(row);
      double left = minX;
      double right = maxX;
      if (highY - lowY > margin) {
        const double below = xAt(line - margin);
        const double above = xAt(line + 1.0 + margin);
        left = std::min(below, above);
        right = std::max(below, above);
      }
      const std::size_t firstColumn = clamped(left - margin, columns_);
      const std::size_t lastColumn = clamped(right + margin, columns_);
      const std::size_t count = lastColumn - firstColumn + 1;
      if (count > budget) return {};
      budget -= count;
      std::fill_n(isTouched.begin() + static_cast<std::ptrdiff_t>(row * columns_ + firstColumn), count,
                  std::uint8_t{1});
      if (lowY <= line && line < highY) {
        const std::size_t column = static_cast<std::size_t>(std::max(xAt(line), 0.0)) + 1;
        if (column < columns_) cells[(row + 1) * stride + column + 1] += isRising ? -1 : 1;
      }
    }
  }

  for (std::size_t row = 0; row < rows_; ++row) {
    std::int32_t layers = 0;
    std::int32_t sharedInRow = 0;
    for (std::size_t column = 0; column < columns_; ++column) {
      std::int32_t& cell = cells[(row + 1) * stride + column + 1];
      layers += cell;
      if (isTouched[row * columns_ + column] != 0 || layers != 1) ++sharedInRow;
      cell = sharedInRow + cells[row * stride + column + 1];
    }
  }
  return cells;
}

void StartGrid::fillEmptyCells() {
  // From the left and then from below; a walk mends the distance.
  for (std::size_t row = 0; row < rows_; ++row) {
    std::int32_t last = kNoLink;
    for (std::size_t column = 0; column < columns_; ++column) {
      std::int32_t& start = starts_[row * columns_ + column];
      if (start == kNoLink) start = last;
      last = start;
    }
    for (std::size_t column = columns_; column-- > 0;) {
      std::int32_t& start = starts_[row * columns_ + column];
      if (start == kNoLink) start = last;
      last = start;
    }
  }
  for (std::size_t i = columns_; i < starts_.size(); ++i)
    if (starts_[i] == kNoLink) starts_[i] = starts_[i - columns_];
  for (std::size_t i = starts_.size() - columns_; i-- > 0;)
    if (starts_[i] == kNoLink) starts_[i] = starts_[i + columns_];
}

}  // namespace lvx::civil::detail
