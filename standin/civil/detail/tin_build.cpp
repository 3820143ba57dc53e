#include "civil/detail/tin_build.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <utility>

#include "civil/detail/predicates.h"

namespace lvx::civil::detail {
namespace {

/// Spreads the lower 16 bits to the even ones.
std::uint32_t spread(std::uint32_t bits) {
  bits = (bits | bits << 8) & 0x00ff00ffU;
  bits = (bits | bits << 4) & 0x0f0f0f0fU;
  bits = (bits | bits << 2) & 0x33333333U;
  return (bits | bits << 1) & 0x55555555U;
}

struct Keyed {
  std::uint32_t key;
  std::int32_t triangle;
};

/// Stable, by the lower 21 bits, in passes of 11.
void sortByKey(std::vector<Keyed>& items, std::vector<Keyed>& other) {
  constexpr unsigned kBits = 11;
  constexpr std::uint32_t kMask = (1U << kBits) - 1;
  other.resize(items.size());
  for (const unsigned shift : {0U, kBits}) {
    std::array<std::uint32_t, kMask + 2> first{};
    for (const Keyed& item : items) ++first[(item.key >> shift & kMask) + 1];
    for (std::size_t i = 1; i < first.size(); ++i) first[i] += first[i - 1];
    for (const Keyed& item : items) other[first[item.key >> shift & kMask]++] = item;
    items.swap(other);
  }
}

/// The triangles' places along a Morton curve through the lower left corners of their boxes.
class CurveKeys {
 public:
  CurveKeys(std::span<const Vec3> points, const Box& box) : points_(points), minX_(box.minX), minY_(box.minY) {
    const double size = std::max(box.maxX - box.minX, box.maxY - box.minY);
    scale_ = size > 0.0 ? 65535.0 / size : 0.0;
  }
  [[nodiscard]] std::uint32_t operator()(const Triangle& t) const {
    const auto at = [&](std::int32_t corner) { return plan(points_[static_cast<std::size_t>(corner)]); };
    const Vec2 p = at(t.a);
    const Vec2 q = at(t.b);
    const Vec2 r = at(t.c);
    const auto x = static_cast<std::uint32_t>((std::min({p.x, q.x, r.x}) - minX_) * scale_);
    const auto y = static_cast<std::uint32_t>((std::min({p.y, q.y, r.y}) - minY_) * scale_);
    return spread(x) | spread(y) << 1;
  }

 private:
  std::span<const Vec3> points_;
  double minX_;
  double minY_;
  double scale_ = 0.0;
};

/// Room for the work on one bucket after the other.
struct Bucket {
  std::vector<Keyed> items;
  std::vector<Keyed> other;
  std::vector<Triangle> triangles;

  /// Puts the triangles into the order of their keys, those with equal ones in the order given. Their upper bits are alike.
  void sort(std::span<Triangle> all, const CurveKeys& keyOf) {
    items.resize(all.size());
    bool isSorted = true;
    std::uint32_t before = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
      const std::uint32_t key = keyOf(all[i]);
      items[i] = {key, static_cast<std::int32_t>(i)};
      isSorted = isSorted && before <= key;
      before = key;
    }
    if (isSorted) return;
    constexpr std::size_t kFew = 2000;
    if (all.size() > kFew)
      sortByKey(items, other);
    else
      std::stable_sort(items.begin(), items.end(), [](const Keyed& p, const Keyed& q) { return p.key < q.key; });
    triangles.assign(all.begin(), all.end());
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = triangles[static_cast<std::size_t>(items[i].triangle)];
  }
};

/// The triangles in the order of their keys, of equal ones in the order given.
PlainArray<Triangle> alongCurve(std::span<const Vec3> points, std::span<const Triangle> triangles, const Box& box,
                                const RunPieces& run) {
  const CurveKeys keyOf(points, box);
  // First into buckets by the upper bits of the keys, then each bucket for itself.
  constexpr unsigned kLower = 21;
  constexpr std::size_t kBuckets = std::size_t{1} << (32 - kLower);
  constexpr std::size_t kStretches = 16;
  const std::size_t stretch = triangles.size() / kStretches + 1;
  using Counts = std::array<std::uint32_t, kBuckets>;
  std::vector<Counts> counts(kStretches);
  const auto eachOf = [&](std::size_t number, auto use) {
    for (std::size_t t = number * stretch; t < std::min((number + 1) * stretch, triangles.size()); ++t)
      use(triangles[t]);
  };
  run(kStretches, [&](std::size_t number) {
    Counts& here = counts[number];
    here.fill(0);
    eachOf(number, [&](const Triangle& t) { ++here[keyOf(t) >> kLower]; });
  });
  std::vector<std::size_t> ends(kBuckets);
  std::uint32_t before = 0;
  for (std::size_t bucket = 0; bucket < kBuckets; ++bucket) {
    for (Counts& here : counts) before += std::exchange(here[bucket], before);
    ends[bucket] = before;
  }
  PlainArray<Triangle> ordered(triangles.size());
  run(kStretches, [&](std::size_t number) {
    eachOf(number, [&](const Triangle& t) { ordered[counts[number][keyOf(t) >> kLower]++] = t; });
  });
  constexpr std::size_t kAtOnce = 16;
  run(kBuckets / kAtOnce, [&](std::size_t group) {
    Bucket bucket;
    for (std::size_t i = group * kAtOnce; i < (group + 1) * kAtOnce; ++i) {
      const std::size_t first = i == 0 ? 0 : ends[i - 1];
      bucket.sort(ordered.all().subspan(first, ends[i] - first), keyOf);
    }
  });
  return ordered;
}

/// Marks points that have a new place by that place, in a number that no coordinate is: so nothing of their count is needed
/// beside them.
class PlaceMark {
 public:
  static void set(Vec3& point, std::size_t place) {
    point.x = std::bit_cast<double>(kMark | static_cast<std::uint64_t>(place));
  }
  static bool isSet(const Vec3& point) { return (std::bit_cast<std::uint64_t>(point.x) & kMask) == kMark; }
  static std::int32_t placeOf(const Vec3& point) {
    return static_cast<std::int32_t>(std::bit_cast<std::uint64_t>(point.x) & ~kMask);
  }

 private:
  static constexpr std::uint64_t kMark = 0x7FF8'0000'0000'0000U;  // a quiet NaN
  static constexpr std::uint64_t kMask = 0xFFFF'FFFF'0000'0000U;
};

}  // namespace

AlongCurve renumberAlongCurve(std::vector<Vec3> points, std::vector<Triangle> triangles, const Box& box,
                              const RunPieces& run) {
  AlongCurve result;
  result.triangles = alongCurve(points, triangles, box, run);
  result.points = SpareMemory(std::move(triangles)).array<Vec3>(points.size());
  std::size_t count = 0;
  const auto renumber = [&](std::int32_t& corner) {
    Vec3& point = points[static_cast<std::size_t>(corner)];
    if (!PlaceMark::isSet(point)) {
      result.points[count] = point;
      PlaceMark::set(point, count++);
    }
    corner = PlaceMark::placeOf(point);
  };
  for (Triangle& triangle : result.triangles.all()) {
    renumber(triangle.a);
    renumber(triangle.b);
    renumber(triangle.c);
  }
  result.usedPoints = count;
  for (const Vec3& point : points)
    if (count < points.size() && !PlaceMark::isSet(point)) result.points[count++] = point;
  result.spare = SpareMemory(std::move(points));
  return result;
}

std::size_t windAndPartition(std::span<const Vec3> points, std::span<Triangle> triangles, const RunPieces& run) {
  std::atomic<bool> hasFlat = false;
  eachStretch(run, triangles.size(), [&](std::size_t first, std::size_t end) {
    for (std::size_t t = first; t < end; ++t) {
      Triangle& triangle = triangles[t];
      const auto at = [&](std::int32_t corner) { return plan(points[static_cast<std::size_t>(corner)]); };
      const double area = signedSide(at(triangle.a), at(triangle.b), at(triangle.c));
      if (area < 0.0) std::swap(triangle.b, triangle.c);
      if (area == 0.0) hasFlat = true;
    }
  });
  if (!hasFlat) return triangles.size();
  const auto ground = std::stable_partition(triangles.begin(), triangles.end(), [&](const Triangle& triangle) {
    const auto at = [&](std::int32_t corner) { return plan(points[static_cast<std::size_t>(corner)]); };
    return signedSide(at(triangle.a), at(triangle.b), at(triangle.c)) != 0.0;
  });
  return static_cast<std::size_t>(ground - triangles.begin());
}

}  // namespace lvx::civil::detail
