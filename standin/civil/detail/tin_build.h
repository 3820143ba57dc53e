#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "civil/detail/plain_array.h"
#include "civil/tin_surface.h"

/// The steps by which a TIN surface takes over its points and triangles.
namespace lvx::civil::detail {

[[nodiscard]] inline Vec2 plan(const Vec3& p) { return {p.x, p.y}; }

/// The corners of all triangles in one row, three a triangle.
[[nodiscard]] inline const std::int32_t* cornersOf(std::span<const Triangle> triangles) {
  static_assert(sizeof(Triangle) == 3 * sizeof(std::int32_t));
  return reinterpret_cast<const std::int32_t*>(triangles.data());
}

/// Cuts 0 to `count` into stretches and calls `use(first, end)` for each by `run`.
template <class Use>
void eachStretch(const RunPieces& run, std::size_t count, Use use) {
  constexpr std::size_t kStretch = std::size_t{1} << 16;
  run((count + kStretch - 1) / kStretch,
      [&](std::size_t i) { use(i * kStretch, std::min((i + 1) * kStretch, count)); });
}

/// The smallest box around values that `boxOf(first, end)` gives for stretches of them.
template <class BoxOf>
[[nodiscard]] Box boxAround(const RunPieces& run, std::size_t count, BoxOf boxOf) {
  Box all;
  std::mutex mutex;
  eachStretch(run, count, [&](std::size_t first, std::size_t end) {
    const Box box = boxOf(first, end);
    const std::lock_guard lock(mutex);
    all.minX = std::min(all.minX, box.minX);
    all.minY = std::min(all.minY, box.minY);
    all.maxX = std::max(all.maxX, box.maxX);
    all.maxY = std::max(all.maxY, box.maxY);
  });
  return all;
}

/// Points and triangles as a surface holds them.
struct AlongCurve {
  PlainArray<Vec3> points;
  std::size_t usedPoints = 0;  // those of triangles come first
  PlainArray<Triangle> triangles;
  SpareMemory spare;  // that of the points as they came
};

/// Numbers the triangles along a Morton curve through their lower left corners and the points by their first use; points
/// of no triangle come last. What lies close on the ground then lies close in memory, which a walk and the tree of boxes
/// live on, whatever order a file has. No coordinate may be other than finite. `box` is that of all points. O(n); at most
/// the triangles or the points lie there twice.
[[nodiscard]] AlongCurve renumberAlongCurve(std::vector<Vec3> points, std::vector<Triangle> triangles, const Box& box,
                                            const RunPieces& run = inOrder);

/// Winds every triangle counter-clockwise and puts those without area in plan last. Returns the number of the others.
[[nodiscard]] std::size_t windAndPartition(std::span<const Vec3> points, std::span<Triangle> triangles,
                                           const RunPieces& run = inOrder);

}  // namespace lvx::civil::detail
