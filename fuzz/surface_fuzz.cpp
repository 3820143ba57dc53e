// Any triangles over a small grid of whole numbers against sampling by its definition in whole numbers, numbered and turned
// as given and at will. The input's bytes: how many points and triangles, then a byte for each coordinate and elevation and
// three for each triangle, then segments of four.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <utility>
#include <vector>

#include "../tests/civil/reference_tin.h"

namespace {

using namespace lvx::civil;
using lvx::civil::test::ReferenceTin;
using lvx::civil::test::Tin;

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  [[nodiscard]] bool isAtEnd() const { return at_ >= size_; }
  unsigned next() { return isAtEnd() ? 0U : data_[at_++]; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

constexpr unsigned kGrid = 16;

double coordinate(Bytes& bytes) { return static_cast<double>(bytes.next() % kGrid); }

/// Renumbers points and triangles and turns triangles, by a seed.
Tin turned(const Tin& tin, std::uint32_t seed) {
  std::mt19937 random(seed);
  std::vector<std::int32_t> numbers(tin.points.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<std::int32_t>(i);
  for (std::size_t i = numbers.size(); i > 1; --i) std::swap(numbers[i - 1], numbers[random() % i]);
  Tin result = tin;
  for (std::size_t i = 0; i < numbers.size(); ++i) result.points[static_cast<std::size_t>(numbers[i])] = tin.points[i];
  for (Triangle& triangle : result.triangles) {
    const auto number = [&](std::int32_t corner) { return numbers[static_cast<std::size_t>(corner)]; };
    triangle = {number(triangle.a), number(triangle.b), number(triangle.c)};
    for (std::uint32_t turns = random() % 3; turns > 0; --turns) triangle = {triangle.b, triangle.c, triangle.a};
    if (random() % 2 == 0) std::swap(triangle.a, triangle.b);
  }
  for (std::size_t i = result.triangles.size(); i > 1; --i)
    std::swap(result.triangles[i - 1], result.triangles[random() % i]);
  return result;
}

[[noreturn]] void fail(const Tin& tin, Vec2 a, Vec2 b, const std::vector<Vec3>& found,
                       const std::vector<Vec3>& wanted) {
  for (const Vec3& p : tin.points) std::fprintf(stderr, "point %g %g %g\n", p.x, p.y, p.z);
  for (const Triangle& t : tin.triangles)
    std::fprintf(stderr, "triangle %d %d %d\n", static_cast<int>(t.a), static_cast<int>(t.b), static_cast<int>(t.c));
  std::fprintf(stderr, "from %g %g to %g %g\n", a.x, a.y, b.x, b.y);
  for (const Vec3& p : found) std::fprintf(stderr, "found %.12g %.12g %.12g\n", p.x, p.y, p.z);
  for (const Vec3& p : wanted) std::fprintf(stderr, "wanted %.12g %.12g %.12g\n", p.x, p.y, p.z);
  std::abort();
}

bool isNear(const Vec3& a, const Vec3& b) {
  constexpr double kTolerance = 1e-9;
  return std::abs(a.x - b.x) < kTolerance && std::abs(a.y - b.y) < kTolerance && std::abs(a.z - b.z) < 1e-6;
}

void compare(const Tin& tin, const TinSurface& surface, Vec2 a, Vec2 b) {
  std::vector<Vec3> wanted;
  for (const auto& [place, best] : ReferenceTin(tin).sample(a, b)) {
    const double part = static_cast<double>(place.above) / static_cast<double>(place.below);
    wanted.push_back({a.x + part * (b.x - a.x), a.y + part * (b.y - a.y), best.z});
  }
  std::vector<Vec3> found;
  surface.sample(a, b, found);
  if (found.size() != wanted.size() || !std::equal(found.begin(), found.end(), wanted.begin(), isNear))
    fail(tin, a, b, found, wanted);
  const auto elevation = surface.elevationAt(a);
  const auto best = ReferenceTin(tin).elevationAt(a);
  constexpr int kNone = 9;
  if (elevation.has_value() != (best.rank < kNone) || (elevation && std::abs(*elevation - best.z) > 1e-6))
    fail(tin, a, a, {{a.x, a.y, elevation.value_or(-1.0)}}, {{a.x, a.y, best.z}});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes(data, size);
  Tin tin;
  const unsigned points = 3 + bytes.next() % 30;
  const unsigned triangles = 1 + bytes.next() % 40;
  const std::uint32_t seed = bytes.next();
  for (unsigned i = 0; i < points; ++i) {
    const double x = coordinate(bytes);
    const double y = coordinate(bytes);
    tin.points.push_back({x, y, static_cast<double>(bytes.next() % 8)});
  }
  const auto corner = [&] { return static_cast<std::int32_t>(bytes.next() % points); };
  for (unsigned i = 0; i < triangles; ++i) {
    const std::int32_t a = corner();
    const std::int32_t b = corner();
    tin.triangles.push_back({a, b, corner()});
  }
  const TinSurface surface(tin.points, tin.triangles);
  const Tin other = turned(tin, seed);
  const TinSurface turnedSurface(other.points, other.triangles);
  do {
    const Vec2 a{coordinate(bytes), coordinate(bytes)};
    const Vec2 b{coordinate(bytes), coordinate(bytes)};
    // A segment without length is a rule of its own.
    if (a.x == b.x && a.y == b.y) continue;
    compare(tin, surface, a, b);
    compare(tin, turnedSurface, a, b);
  } while (!bytes.isAtEnd());
  return 0;
}
