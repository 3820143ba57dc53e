#include "civil/detail/tin_build.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <utility>

#include "civil/detail/predicates.h"

namespace lvx::civil::detail {
namespace {

Box planBox(std::span<const Vec3> points) {
  Box box;
  for (const Vec3& p : points) {
    box.minX = std::min(box.minX, p.x);
    box.minY = std::min(box.minY, p.y);
    box.maxX = std::max(box.maxX, p.x);
    box.maxY = std::max(box.maxY, p.y);
  }
  return box;
}

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
  CurveKeys(std::span<const Vec3> points, std::span<const Triangle> triangles, const Box& box)
      : points_(points), triangles_(triangles), minX_(box.minX), minY_(box.minY) {
    const double size = std::max(box.maxX - box.minX, box.maxY - box.minY);
    scale_ = size > 0.0 ? 65535.0 / size : 0.0;
  }
  [[nodiscard]] std::uint32_t operator()(std::size_t t) const {
    const auto at = [&](std::int32_t corner) { return plan(points_[static_cast<std::size_t>(corner)]); };
    const Vec2 p = at(triangles_[t].a);
    const Vec2 q = at(triangles_[t].b);
    const Vec2 r = at(triangles_[t].c);
    const auto x = static_cast<std::uint32_t>((std::min({p.x, q.x, r.x}) - minX_) * scale_);
    const auto y = static_cast<std::uint32_t>((std::min({p.y, q.y, r.y}) - minY_) * scale_);
    return spread(x) | spread(y) << 1;
  }

 private:
  std::span<const Vec3> points_;
  std::span<const Triangle> triangles_;
  double minX_;
  double minY_;
  double scale_ = 0.0;
};

/// The triangles in the order of their keys, of equal ones in the order given.
std::vector<Triangle> alongCurve(std::span<const Vec3> points, std::span<const Triangle> triangles,
                                 const RunPieces& run) {
  const CurveKeys keyOf(points, triangles, boxAround(run, points.size(), [&](std::size_t first, std::size_t end) {
                          return planBox(points.subspan(first, end - first));
                        }));
  // First into buckets by the upper bits of the keys, then each bucket for itself.
  constexpr unsigned kLower = 21;
  constexpr std::size_t kBuckets = std::size_t{1} << (32 - kLower);
  constexpr std::size_t kStretches = 16;
  const std::size_t stretch = triangles.size() / kStretches + 1;
  using Counts = std::array<std::uint32_t, kBuckets>;
  std::vector<Counts> counts(kStretches);
  std::vector<Keyed> items(triangles.size());
  const auto eachOf = [&](std::size_t number, auto use) {
    for (std::size_t t = number * stretch; t < std::min((number + 1) * stretch, triangles.size()); ++t) use(t);
  };
  run(kStretches, [&](std::size_t number) {
    Counts& here = counts[number];
    here.fill(0);
    eachOf(number, [&](std::size_t t) { ++here[keyOf(t) >> kLower]; });
  });
  std::vector<std::size_t> ends(kBuckets);
  std::uint32_t before = 0;
  for (std::size_t bucket = 0; bucket < kBuckets; ++bucket) {
    for (Counts& here : counts) before += std::exchange(here[bucket], before);
    ends[bucket] = before;
  }
  run(kStretches, [&](std::size_t number) {
    eachOf(number, [&](std::size_t t) {
      const std::uint32_t key = keyOf(t);
      items[counts[number][key >> kLower]++] = {key, static_cast<std::int32_t>(t)};
    });
  });
  std::vector<Triangle> ordered(triangles.size());
  constexpr std::size_t kAtOnce = 16;
  run(kBuckets / kAtOnce, [&](std::size_t group) {
    std::vector<Keyed> bucket;
    std::vector<Keyed> other;
    for (std::size_t i = group * kAtOnce; i < (group + 1) * kAtOnce; ++i) {
      const std::size_t first = i == 0 ? 0 : ends[i - 1];
      bucket.assign(items.begin() + static_cast<std::ptrdiff_t>(first),
                    items.begin() + static_cast<std::ptrdiff_t>(ends[i]));
      constexpr std::size_t kFew = 2000;
      if (bucket.size() > kFew)
        sortByKey(bucket, other);
      else
        std::stable_sort(bucket.begin(), bucket.end(), [](const Keyed& p, const Keyed& q) { return p.key < q.key; });
      for (std::size_t j = 0; j < bucket.size(); ++j)
        ordered[first + j] = triangles[static_cast<std::size_t>(bucket[j].triangle)];
    }
  });
  return ordered;
}

}  // namespace

void renumberAlongCurve(std::vector<Vec3>& points, std::vector<Triangle>& triangles, const RunPieces& run) {
  triangles = alongCurve(points, triangles, run);
  std::vector<std::int32_t> numbers(points.size(), -1);
  std::vector<Vec3> ordered;
  ordered.reserve(points.size());
  const auto renumber = [&](std::int32_t& corner) {
    std::int32_t& number = numbers[static_cast<std::size_t>(corner)];
    if (number < 0) {
      number = static_cast<std::int32_t>(ordered.size());
      ordered.push_back(points[static_cast<std::size_t>(corner)]);
    }
    corner = number;
  };
  for (Triangle& triangle : triangles) {
    renumber(triangle.a);
    renumber(triangle.b);
    renumber(triangle.c);
  }
  for (std::size_t i = 0; i < points.size(); ++i)
    if (numbers[i] < 0) ordered.push_back(points[i]);
  points.swap(ordered);
}

std::size_t windAndPartition(std::span<const Vec3> points, std::vector<Triangle>& triangles, const RunPieces& run) {
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

Links linkTriangles(std::size_t pointCount, std::span<const Triangle> triangles, const RunPieces& run) {
  // Every edge of a triangle waits in a chain at its smaller corner, where it meets its counterpart. The chains run
  // through the links themselves, so that nothing else of their size is needed.
  Links result{std::vector<Link>(3 * triangles.size()), 0};
  std::vector<Link>& links = result.links;
  std::vector<Link> chains(pointCount, kNoLink);
  const auto slot = [](Link link) {
    return 3 * static_cast<std::size_t>(link >> 2) + static_cast<std::size_t>(link & 3);
  };
  for (std::size_t t = 0; t < triangles.size(); ++t) {
    const Triangle& triangle = triangles[t];
    const std::array<std::int32_t, 3> lower{std::min(triangle.b, triangle.c), std::min(triangle.c, triangle.a),
                                            std::min(triangle.a, triangle.b)};
    for (std::size_t i = 0; i < 3; ++i) {
      Link& chain = chains[static_cast<std::size_t>(lower[i])];
      links[3 * t + i] = chain;
      chain = static_cast<Link>(4 * t + i);
    }
  }

  struct Half {
    std::int32_t upper;
    Link link;
    bool isRising;  // runs from the smaller corner to the larger
  };
  const std::int32_t* corners = cornersOf(triangles);
  std::atomic<std::size_t> overlapping = 0;
  // The links of a chain are its own, so chains don't get into each other's way.
  eachStretch(run, pointCount, [&](std::size_t firstPoint, std::size_t endPoint) {
    std::vector<Half> halves;
    for (std::size_t point = firstPoint; point < endPoint; ++point) {
      halves.clear();
      for (Link link = chains[point]; link != kNoLink;) {
        const std::size_t first = static_cast<std::size_t>(link >> 2) * 3;
        const auto edge = static_cast<std::size_t>(link & 3);
        const std::int32_t from = corners[first + (edge == 2 ? 0 : edge + 1)];
        const std::int32_t to = corners[first + (edge == 0 ? 2 : edge - 1)];
        halves.push_back({std::max(from, to), link, from < to});
        link = links[first + edge];
      }
      for (const Half& half : halves) links[slot(half.link)] = kNoLink;
      std::sort(halves.begin(), halves.end(), [](const Half& p, const Half& q) { return p.upper < q.upper; });
      for (std::size_t i = 0; i < halves.size();) {
        std::size_t end = i + 1;
        while (end < halves.size() && halves[end].upper == halves[i].upper) ++end;
        if (end - i == 2 && halves[i].isRising != halves[i + 1].isRising) {
          links[slot(halves[i].link)] = halves[i + 1].link;
          links[slot(halves[i + 1].link)] = halves[i].link;
        }
        if (end - i > 2) ++overlapping;
        i = end;
      }
    }
  });
  result.overlappingEdges = overlapping;
  return result;
}

}  // namespace lvx::civil::detail
