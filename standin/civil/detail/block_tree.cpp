#include "civil/detail/block_tree.h"

#include <algorithm>

#include "civil/detail/tin_build.h"

namespace lvx::civil::detail {
namespace {

/// x and y, which one instruction compares.
using Two = double __attribute__((vector_size(16)));

float roundedDown(double value) {
  const auto rounded = static_cast<float>(value);
  return double{rounded} > value ? std::nextafter(rounded, -std::numeric_limits<float>::infinity()) : rounded;
}

float roundedUp(double value) {
  const auto rounded = static_cast<float>(value);
  return double{rounded} < value ? std::nextafter(rounded, std::numeric_limits<float>::infinity()) : rounded;
}

}  // namespace

BlockTree::BlockTree(std::span<const Triangle> triangles, const Box& box, SpareMemory& spare)
    : triangleCount_(triangles.size()), origin_{box.minX, box.minY} {
  if (triangles.empty()) return;
  rounding_ = 0x1p-50 * std::max({std::abs(box.minX), std::abs(box.minY), std::abs(box.maxX), std::abs(box.maxY)});

  std::size_t total = 0;
  for (std::size_t count = triangles.size(); count > kRun || total == 0;) {
    count = (count + kRun - 1) / kRun;
    levels_[levelCount_++] = {total, count};
    total += count;
  }
  bounds_ = spare.array<Bounds>(total);
}

void BlockTree::fill(std::span<const Vec3> points, std::span<const Triangle> triangles) {
  if (triangles.empty()) return;
  std::size_t next = 0;
  const std::int32_t* corners = cornersOf(triangles);
  for (std::size_t run = 0; run < levels_[0].count; ++run) {
    const std::size_t end = std::min((run + 1) * kRun, triangles.size());
    const auto at = [&](std::size_t corner) {
      const Vec3& p = points[static_cast<std::size_t>(corners[corner])];
      return Two{p.x, p.y};
    };
    Two least = at(3 * run * kRun);
    Two most = least;
    for (std::size_t i = 3 * run * kRun + 1; i < 3 * end; ++i) {
      const Two p = at(i);
      least = p < least ? p : least;
      most = p > most ? p : most;
    }
    bounds_[next++] = {roundedDown(least[0] - origin_.x), roundedDown(least[1] - origin_.y),
                       roundedUp(most[0] - origin_.x), roundedUp(most[1] - origin_.y)};
  }
  for (std::size_t level = 1; level < levelCount_; ++level) {
    const Level below = levels_[level - 1];
    for (std::size_t run = 0; run < levels_[level].count; ++run) {
      Bounds around = bounds_[below.first + run * kRun];
      const std::size_t end = std::min((run + 1) * kRun, below.count);
      for (std::size_t i = run * kRun + 1; i < end; ++i) {
        const Bounds& part = bounds_[below.first + i];
        around.minX = std::min(around.minX, part.minX);
        around.minY = std::min(around.minY, part.minY);
        around.maxX = std::max(around.maxX, part.maxX);
        around.maxY = std::max(around.maxY, part.maxY);
      }
      bounds_[next++] = around;
    }
  }
}

}  // namespace lvx::civil::detail
