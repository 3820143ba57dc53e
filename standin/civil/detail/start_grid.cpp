#include "civil/detail/start_grid.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "civil/detail/border_rings.h"
#include "civil/detail/tin_build.h"

namespace lvx::civil::detail {
namespace {

std::int32_t nextCorner(const std::int32_t* corners, std::size_t edge, std::size_t step) {
  return corners[(edge + step) % 3];
}

}  // namespace

StartGrid::StartGrid(std::span<const Vec3> points, std::span<const Triangle> triangles, const Box& box,
                     TriangleLinks& links, SpareMemory& spare) {
  if (triangles.empty()) return;
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

  starts_ = spare.array<std::int32_t>(columns_ * rows_);

  const double farthest = std::max({std::abs(box.minX), std::abs(box.minY), std::abs(box.maxX), std::abs(box.maxY)});
  const double margin = 1e-6 + 0x1p-48 * farthest * perUnit_;
  findTouched(points, cornersOf(triangles), links, triangles.size(), margin);
  judgeBorders(points, cornersOf(triangles));
  const std::vector<std::int32_t> shared = sharedCells();
  const auto isAlone = [&](std::size_t left, std::size_t right, std::size_t low, std::size_t high) {
    const std::size_t stride = columns_ + 1;
    return shared[(high + 1) * stride + right + 1] - shared[low * stride + right + 1] -
               shared[(high + 1) * stride + left] + shared[low * stride + left] ==
           0;
  };

  std::ranges::fill(starts_.all(), kNoLink);
  const auto middleOf = [&](const Vec3& a, const Vec3& b, const Vec3& c) {
    return rowOf((a.y + b.y + c.y) / 3.0) * columns_ + columnOf((a.x + b.x + c.x) / 3.0);
  };
  const auto eachTriangle = [&](auto use) {
    for (std::size_t t = 0; t < triangles.size(); ++t)
      use(t, points[static_cast<std::size_t>(triangles[t].a)], points[static_cast<std::size_t>(triangles[t].b)],
          points[static_cast<std::size_t>(triangles[t].c)]);
  };
  if (shared.empty() && hasCovers()) {
    eachTriangle([&](std::size_t t, const Vec3& a, const Vec3& b, const Vec3& c) {
      starts_[middleOf(a, b, c)] = static_cast<std::int32_t>(t);
    });
  } else {
    constexpr std::size_t kBits = 64;
    std::vector<std::uint64_t> sharedTriangles((triangles.size() + kBits - 1) / kBits, 0);
    eachTriangle([&](std::size_t t, const Vec3& a, const Vec3& b, const Vec3& c) {
      const bool alone =
          !shared.empty() && isAlone(columnOf(std::min({a.x, b.x, c.x})), columnOf(std::max({a.x, b.x, c.x})),
                                     rowOf(std::min({a.y, b.y, c.y})), rowOf(std::max({a.y, b.y, c.y})));
      const auto number = static_cast<std::int32_t>(t);
      starts_[middleOf(a, b, c)] = alone ? number : ~number;
      if (!alone) sharedTriangles[t / kBits] |= std::uint64_t{1} << t % kBits;
    });
    links.tellShared(std::move(sharedTriangles));
  }
  for (Link& border : borders_)
    if (!links.isAlone(static_cast<std::size_t>(border >> 2))) border = ~border;
  fillEmptyCells();
}

std::span<const Link> StartGrid::bordersIn(std::size_t cell) const {
  const auto found = std::lower_bound(cells_.begin(), cells_.end(), static_cast<std::uint32_t>(cell));
  if (found == cells_.end() || *found != cell) return {};
  const auto at = static_cast<std::size_t>(found - cells_.begin());
  return std::span(borders_).subspan(firsts_[at], firsts_[at + 1] - firsts_[at]);
}

/// Fills `touches_`, and `covers_` by the layers over each cell: Odd for those that a border touches.
void StartGrid::findTouched(std::span<const Vec3> points, const std::int32_t* corners, const TriangleLinks& links,
                            std::size_t triangleCount, double margin) {
  const std::size_t cellCount = columns_ * rows_;
  // Long borders through many cells each would cost more than they are worth.
  std::size_t budget = 4 * (columns_ + rows_ + cellCount) + 8 * triangleCount;
  // Where a row's lower line crosses a border from right to left of it, the layers grow by one; so the layers over a
  // cell's lower left corner are the sum of the changes before it in its row. The room for the starts, which come later,
  // holds them.
  const std::span<std::int32_t> changes = starts_.all();
  std::ranges::fill(changes, 0);
  bool isWithinBudget = true;
  links.eachBorder([&](std::size_t half) {
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
      if (count > budget) return isWithinBudget = false;
      budget -= count;
      const auto edge = static_cast<Link>(4 * (half / 3) + half % 3);
      for (std::size_t column = firstColumn; column <= lastColumn; ++column)
        touches_.push_back({static_cast<std::uint32_t>(row * columns_ + column), edge});
      if (lowY <= line && line < highY) {
        const std::size_t column = static_cast<std::size_t>(std::max(xAt(line), 0.0)) + 1;
        if (column < columns_) changes[row * columns_ + column] += isRising ? -1 : 1;
      }
    }
    return true;
  });
  if (!isWithinBudget) {
    touches_ = {};
    return;
  }
  covers_.resize(cellCount);
  for (std::size_t row = 0; row < rows_; ++row) {
    std::int32_t layers = 0;
    for (std::size_t cell = row * columns_; cell < (row + 1) * columns_; ++cell) {
      layers += changes[cell];
      covers_[cell] = layers == 0 ? Cover::None : layers == 1 ? Cover::One : Cover::Odd;
    }
  }
  for (const Touch& touch : touches_) covers_[touch.cell] = Cover::Odd;
  std::sort(touches_.begin(), touches_.end(),
            [](const Touch& p, const Touch& q) { return std::pair(p.cell, p.edge) < std::pair(q.cell, q.edge); });
}

/// Finds the plain borders and keeps their edges by cells that no other border touches.
void StartGrid::judgeBorders(std::span<const Vec3> points, const std::int32_t* corners) {
  if (touches_.empty()) return;
  const BorderRings rings(points, corners, [&] {
    std::vector<Link> edges;
    for (const Touch& touch : touches_) edges.push_back(touch.edge);
    return edges;
  }());
  std::vector<bool> isPlain = rings.isClosed();
  const auto eachCell = [&](auto use) {
    for (std::size_t first = 0; first < touches_.size();) {
      std::size_t end = first + 1;
      while (end < touches_.size() && touches_[end].cell == touches_[first].cell) ++end;
      use(std::span(touches_).subspan(first, end - first));
      first = end;
    }
  };
  // More edges in a cell aren't compared with one another.
  constexpr std::size_t kMostCompared = 64;
  eachCell([&](std::span<const Touch> here) {
    for (std::size_t i = 0; i < here.size(); ++i) {
      for (std::size_t j = 0; j < i && here.size() <= kMostCompared; ++j)
        if (rings.doMeet(here[i].edge, here[j].edge))
          isPlain[rings.ringOf(here[i].edge)] = isPlain[rings.ringOf(here[j].edge)] = false;
      if (here.size() > kMostCompared) isPlain[rings.ringOf(here[i].edge)] = false;
    }
  });
  rings.requireOneLayer(isPlain);
  eachCell([&](std::span<const Touch> here) {
    const bool areAll =
        std::all_of(here.begin(), here.end(), [&](const Touch& t) { return isPlain[rings.ringOf(t.edge)]; });
    if (!areAll) return;
    covers_[here.front().cell] = Cover::PlainBorder;
    cells_.push_back(here.front().cell);
    firsts_.push_back(static_cast<std::uint32_t>(borders_.size()));
    for (const Touch& touch : here) borders_.push_back(touch.edge);
  });
  firsts_.push_back(static_cast<std::uint32_t>(borders_.size()));
  touches_ = {};
}

/// For every cell how many cells up to it, in both directions, are odd; with a row and a column of zeros before them. Empty
/// where the covers aren't known, and where no cell is odd.
std::vector<std::int32_t> StartGrid::sharedCells() const {
  if (std::ranges::find(covers_, Cover::Odd) == covers_.end()) return {};
  const std::size_t stride = columns_ + 1;
  std::vector<std::int32_t> cells(stride * (rows_ + 1), 0);
  for (std::size_t row = 0; row < rows_; ++row) {
    std::int32_t sharedInRow = 0;
    for (std::size_t column = 0; column < columns_; ++column) {
      if (covers_[row * columns_ + column] == Cover::Odd) ++sharedInRow;
      cells[(row + 1) * stride + column + 1] = sharedInRow + cells[row * stride + column + 1];
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
