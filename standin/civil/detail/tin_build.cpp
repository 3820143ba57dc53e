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

/// Stable, by the lower `bits`, in passes of `kDigit` of them.
template <unsigned kDigit>
void sortByKey(std::vector<Keyed>& items, std::vector<Keyed>& other, unsigned bits) {
  constexpr std::uint32_t kMask = (1U << kDigit) - 1;
  other.resize(items.size());
  for (unsigned shift = 0; shift < bits; shift += kDigit) {
    std::array<std::uint32_t, kMask + 2> first{};
    for (const Keyed& item : items) ++first[(item.key >> shift & kMask) + 1];
    for (std::size_t i = 1; i < first.size(); ++i) first[i] += first[i - 1];
    for (const Keyed& item : items) other[first[item.key >> shift & kMask]++] = item;
    items.swap(other);
  }
}

/// The triangles' places along a Morton curve, by their first corners. Where the ground is a strip, as along a road, curves
/// through squares follow each other along it; so no part of a key is the same for all of it.
class CurveKeys {
 public:
  static constexpr unsigned kBucketBits = 11;

  CurveKeys(std::span<const Vec3> points, const Box& box) : points_(points), minX_(box.minX), minY_(box.minY) {
    const double width = box.maxX - box.minX;
    const double height = box.maxY - box.minY;
    isUpright_ = height > width;
    const double longer = std::max(width, height);
    const double shorter = std::min(width, height);
    scale_ = longer > 0.0 ? 65535.0 / longer : 0.0;
    while (squareBits_ > kBucketBits / 2 && shorter * scale_ < static_cast<double>(1U << (squareBits_ - 1)))
      --squareBits_;
    // The upper bits of a key are those of both coordinates.
    const unsigned bitsInSquare = kBucketBits - (kCoordinateBits - squareBits_);
    shiftX_ = squareBits_ - bitsInSquare / 2;
    shiftY_ = squareBits_ - (bitsInSquare - bitsInSquare / 2);
    stride_ = std::size_t{1} << ((isUpright_ ? kCoordinateBits : squareBits_) - shiftY_);
    buckets_.resize(stride_ << ((isUpright_ ? squareBits_ : kCoordinateBits) - shiftX_));
    for (std::size_t i = 0; i < buckets_.size(); ++i) {
      const auto x = static_cast<std::uint32_t>(i / stride_ << shiftX_);
      const auto y = static_cast<std::uint32_t>(i % stride_ << shiftY_);
      buckets_[i] = static_cast<std::uint16_t>(keyAt(x, y) >> lowerBits());
    }
  }
  [[nodiscard]] std::uint32_t operator()(const Triangle& t) const {
    const auto [x, y] = placeOf(t);
    return keyAt(x, y);
  }
  /// Of a key, below those that tell its bucket.
  [[nodiscard]] unsigned lowerBits() const { return kCoordinateBits + squareBits_ - kBucketBits; }
  [[nodiscard]] std::size_t bucketOf(const Triangle& t) const {
    const auto [x, y] = placeOf(t);
    return buckets_[(x >> shiftX_) * stride_ + (y >> shiftY_)];
  }

 private:
  static constexpr unsigned kCoordinateBits = 16;
  struct Place {
    std::uint32_t x;
    std::uint32_t y;
  };
  [[nodiscard]] Place placeOf(const Triangle& t) const {
    const Vec3& p = points_[static_cast<std::size_t>(t.a)];
    // By way of numbers with a sign, which processors convert in one step.
    return {static_cast<std::uint32_t>(static_cast<std::int32_t>((p.x - minX_) * scale_)),
            static_cast<std::uint32_t>(static_cast<std::int32_t>((p.y - minY_) * scale_))};
  }
  [[nodiscard]] std::uint32_t keyAt(std::uint32_t x, std::uint32_t y) const {
    const std::uint32_t square = (isUpright_ ? y : x) >> squareBits_;
    const std::uint32_t within = (1U << squareBits_) - 1;
    // Of one square alone the shift takes all 32 bits away.
    return static_cast<std::uint32_t>(std::uint64_t{square} << 2 * squareBits_) | spread(x & within) |
           spread(y & within) << 1;
  }

  std::span<const Vec3> points_;
  double minX_;
  double minY_;
  double scale_ = 0.0;
  bool isUpright_ = false;
  unsigned squareBits_ = kCoordinateBits;  // of a coordinate within a square
  unsigned shiftX_ = 0;
  unsigned shiftY_ = 0;
  std::size_t stride_ = 0;
  std::vector<std::uint16_t> buckets_;  // by the upper bits of both coordinates
};

/// Whether triangles that follow each other are neighbours nearly always, as most programs write them: told by some of them.
bool followEachOther(std::span<const Triangle> triangles) {
  constexpr std::size_t kEach = 8;
  const auto share = [](const Triangle& p, const Triangle& q) {
    const auto has = [&](std::int32_t corner) { return p.a == corner || p.b == corner || p.c == corner; };
    return has(q.a) || has(q.b) || has(q.c);
  };
  std::size_t asked = 0;
  std::size_t apart = 0;
  // In a lattice written square by square the one before lies across the square's diagonal.
  for (std::size_t i = 2; i < triangles.size(); i += kEach) {
    ++asked;
    apart += share(triangles[i], triangles[i - 1]) || share(triangles[i], triangles[i - 2]) ? 0 : 1;
  }
  return 8 * apart < asked;
}

/// Room for the work on one bucket after the other.
struct Bucket {
  std::vector<Keyed> items;
  std::vector<Keyed> other;
  std::vector<Triangle> triangles;

  /// Puts the triangles into the order of their keys, those with equal ones in the order given. Their upper bits are alike.
  void sort(std::span<Triangle> all, const CurveKeys& keyOf) {
    items.resize(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) items[i] = {keyOf(all[i]), static_cast<std::int32_t>(i)};
    constexpr std::size_t kFew = 20;
    constexpr std::size_t kMany = 8000;
    if (all.size() <= kFew)
      std::stable_sort(items.begin(), items.end(), [](const Keyed& p, const Keyed& q) { return p.key < q.key; });
    else if (all.size() < kMany)
      sortByKey<7>(items, other, keyOf.lowerBits());
    else
      sortByKey<11>(items, other, keyOf.lowerBits());
    triangles.assign(all.begin(), all.end());
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = triangles[static_cast<std::size_t>(items[i].triangle)];
  }
};

/// The triangles in the order of their buckets, which a curve goes through. Within a bucket of a few thousand, which lie
/// close in memory anyway, they stay as they came where they come as neighbours; else they follow the curve too.
PlainArray<Triangle> alongCurve(std::span<const Vec3> points, std::span<const Triangle> triangles, const Box& box,
                                const RunPieces& run) {
  const CurveKeys keyOf(points, box);
  constexpr std::size_t kBuckets = std::size_t{1} << CurveKeys::kBucketBits;
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
    eachOf(number, [&](const Triangle& t) { ++here[keyOf.bucketOf(t)]; });
  });
  std::vector<std::size_t> ends(kBuckets);
  std::uint32_t before = 0;
  for (std::size_t bucket = 0; bucket < kBuckets; ++bucket) {
    for (Counts& here : counts) before += std::exchange(here[bucket], before);
    ends[bucket] = before;
  }
  PlainArray<Triangle> ordered(triangles.size());
  run(kStretches, [&](std::size_t number) {
    eachOf(number, [&](const Triangle& t) { ordered[counts[number][keyOf.bucketOf(t)]++] = t; });
  });
  constexpr std::size_t kAtOnce = 16;
  run(kBuckets / kAtOnce, [&](std::size_t group) {
    Bucket bucket;
    for (std::size_t i = group * kAtOnce; i < (group + 1) * kAtOnce; ++i) {
      const std::size_t first = i == 0 ? 0 : ends[i - 1];
      const std::span<Triangle> here = ordered.all().subspan(first, ends[i] - first);
      if (!followEachOther(here)) bucket.sort(here, keyOf);
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
