#include "civil/detail/tin_build.h"

#include <algorithm>
#include <array>
#include <cmath>

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

/// Stable, by key, in passes of 11 bits.
void sortByKey(std::vector<Keyed>& items) {
  constexpr unsigned kBits = 11;
  constexpr std::uint32_t kMask = (1U << kBits) - 1;
  std::vector<Keyed> other(items.size());
  for (unsigned shift = 0; shift < 32; shift += kBits) {
    std::array<std::size_t, kMask + 2> first{};
    for (const Keyed& item : items) ++first[(item.key >> shift & kMask) + 1];
    for (std::size_t i = 1; i < first.size(); ++i) first[i] += first[i - 1];
    for (const Keyed& item : items) other[first[item.key >> shift & kMask]++] = item;
    items.swap(other);
  }
}

}  // namespace

void renumberAlongCurve(std::vector<Vec3>& points, std::vector<Triangle>& triangles) {
  const Box box = planBox(points);
  const double size = std::max(box.maxX - box.minX, box.maxY - box.minY);
  const double scale = size > 0.0 ? 65535.0 / size : 0.0;
  std::vector<Keyed> order(triangles.size());
  for (std::size_t t = 0; t < triangles.size(); ++t) {
    const auto at = [&](std::int32_t corner) { return plan(points[static_cast<std::size_t>(corner)]); };
    const Vec2 p = at(triangles[t].a);
    const Vec2 q = at(triangles[t].b);
    const Vec2 r = at(triangles[t].c);
    const auto x = static_cast<std::uint32_t>((std::min({p.x, q.x, r.x}) - box.minX) * scale);
    const auto y = static_cast<std::uint32_t>((std::min({p.y, q.y, r.y}) - box.minY) * scale);
    order[t] = {spread(x) | spread(y) << 1, static_cast<std::int32_t>(t)};
  }
  sortByKey(order);
  {
    std::vector<Triangle> ordered(triangles.size());
    for (std::size_t t = 0; t < order.size(); ++t) ordered[t] = triangles[static_cast<std::size_t>(order[t].triangle)];
    triangles.swap(ordered);
    std::vector<Keyed>().swap(order);
  }
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

std::size_t windAndPartition(std::span<const Vec3> points, std::vector<Triangle>& triangles) {
  std::vector<Triangle> flat;
  std::size_t kept = 0;
  for (Triangle triangle : triangles) {
    const auto at = [&](std::int32_t corner) { return plan(points[static_cast<std::size_t>(corner)]); };
    const double area = signedSide(at(triangle.a), at(triangle.b), at(triangle.c));
    if (area == 0.0) {
      flat.push_back(triangle);
      continue;
    }
    if (area < 0.0) std::swap(triangle.b, triangle.c);
    triangles[kept++] = triangle;
  }
  std::copy(flat.begin(), flat.end(), triangles.begin() + static_cast<std::ptrdiff_t>(kept));
  return kept;
}

Links linkTriangles(std::size_t pointCount, std::span<const Triangle> triangles) {
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
  std::vector<Half> halves;
  for (const Link chain : chains) {
    halves.clear();
    for (Link link = chain; link != kNoLink;) {
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
      if (end - i > 2) ++result.overlappingEdges;
      i = end;
    }
  }
  return result;
}

}  // namespace lvx::civil::detail
