#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "civil/geometry.h"
#include "civil/tin_surface.h"

/// Sampling of surfaces by other means than the product's: whole numbers over all triangles. Slow and plain.
namespace lvx::civil::test {

struct Tin {
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
};

/// Sampling by its definition over all triangles, in fractions of integers: for coordinates that are small integers.
class ReferenceTin {
 public:
  explicit ReferenceTin(const Tin& t) : tin_(t) {}

  struct Place {
    std::int64_t above = 0;  // along the segment: above / below
    std::int64_t below = 1;
    bool operator<(const Place& other) const {
      __extension__ using Wide = __int128;
      return Wide{above} * other.below < Wide{other.above} * below;
    }
  };
  struct Best {
    int rank = 9;  // 0 vertex, 1 edge, 2 face
    double z = 0.0;
  };
  using Samples = std::map<Place, Best>;

  [[nodiscard]] Samples sample(Vec2 a, Vec2 b) const {
    Samples samples;
    const std::int64_t square = dotOf(a, b, a, b);
    for (const Triangle& t : tin_.triangles) {
      const std::array<Vec3, 3> c{at(t.a), at(t.b), at(t.c)};
      const std::int64_t area = side(c[0], c[1], c[2]);
      if (area == 0) continue;
      for (std::size_t i = 0; i < 3; ++i) {
        const Vec3& p = c[i];
        const Vec3& q = c[(i + 1) % 3];
        const std::int64_t sideP = side({a.x, a.y, 0}, {b.x, b.y, 0}, p);
        const std::int64_t sideQ = side({a.x, a.y, 0}, {b.x, b.y, 0}, q);
        if (sideP == 0) {
          const std::int64_t place = dotOf(a, b, a, {p.x, p.y});
          if (place >= 0 && place <= square) put(samples, {place, square}, {0, p.z});
        }
        if ((sideP < 0 && sideQ > 0) || (sideP > 0 && sideQ < 0)) {
          // p + (q - p) sideP / (sideP - sideQ), along the segment
          std::int64_t below = sideP - sideQ;
          std::int64_t above = dotOf(a, b, a, {p.x, p.y}) * below + dotOf(a, b, {p.x, p.y}, {q.x, q.y}) * sideP;
          if (below < 0) {
            below = -below;
            above = -above;
          }
          const double part = static_cast<double>(sideP) / static_cast<double>(sideP - sideQ);
          if (above >= 0 && above <= below * square)
            put(samples, {above, below * square}, {1, p.z + part * (q.z - p.z)});
        }
      }
      for (const bool isEnd : {false, true})
        if (const Best here = within(c, isEnd ? b : a); here.rank < 9) put(samples, {isEnd ? 1 : 0, 1}, here);
    }
    raiseToEdgesAlong(samples, a, b);
    return samples;
  }

  [[nodiscard]] Best elevationAt(Vec2 p) const {
    Best best;
    for (const Triangle& t : tin_.triangles) improve(best, within({at(t.a), at(t.b), at(t.c)}, p));
    return best;
  }

 private:
  [[nodiscard]] const Vec3& at(std::int32_t number) const { return tin_.points[static_cast<std::size_t>(number)]; }
  static std::int64_t whole(double v) { return static_cast<std::int64_t>(v); }
  static std::int64_t side(const Vec3& a, const Vec3& b, const Vec3& c) {
    return whole(b.x - a.x) * whole(c.y - a.y) - whole(b.y - a.y) * whole(c.x - a.x);
  }
  static std::int64_t dotOf(Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
    return whole(b.x - a.x) * whole(d.x - c.x) + whole(b.y - a.y) * whole(d.y - c.y);
  }
  /// Where edges cross the segment, those that it runs along count as well.
  void raiseToEdgesAlong(Samples& samples, Vec2 a, Vec2 b) const {
    const std::int64_t square = dotOf(a, b, a, b);
    for (const Triangle& t : tin_.triangles) {
      const std::array<Vec3, 3> c{at(t.a), at(t.b), at(t.c)};
      if (side(c[0], c[1], c[2]) == 0) continue;
      for (std::size_t i = 0; i < 3; ++i) {
        const Vec3& p = c[i];
        const Vec3& q = c[(i + 1) % 3];
        if (side({a.x, a.y, 0}, {b.x, b.y, 0}, p) != 0 || side({a.x, a.y, 0}, {b.x, b.y, 0}, q) != 0) continue;
        const auto placeP = static_cast<double>(dotOf(a, b, a, {p.x, p.y}));
        const auto placeQ = static_cast<double>(dotOf(a, b, a, {q.x, q.y}));
        for (auto& [place, best] : samples) {
          const double here =
              static_cast<double>(place.above) / static_cast<double>(place.below) * static_cast<double>(square);
          const double part = (here - placeP) / (placeQ - placeP);
          if (best.rank == 1 && part > 0.0 && part < 1.0) improve(best, {1, p.z + part * (q.z - p.z)});
        }
      }
    }
  }
  static void improve(Best& best, Best other) {
    if (other.rank < best.rank || (other.rank == best.rank && other.z > best.z)) best = other;
  }
  static void put(Samples& samples, Place place, Best best) { improve(samples[place], best); }

  /// By barycentric coordinates.
  static Best within(const std::array<Vec3, 3>& c, Vec2 p) {
    const Vec3 q{p.x, p.y, 0};
    std::array<std::int64_t, 3> weights{side(c[1], c[2], q), side(c[2], c[0], q), side(c[0], c[1], q)};
    std::int64_t area = weights[0] + weights[1] + weights[2];
    if (area == 0) return {};
    int zeros = 0;
    double z = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
      if ((area < 0 ? -weights[i] : weights[i]) < 0) return {};
      if (weights[i] == 0) ++zeros;
      z += static_cast<double>(weights[i]) / static_cast<double>(area) * c[i].z;
    }
    return {2 - zeros, z};
  }

  const Tin& tin_;
};

}  // namespace lvx::civil::test
