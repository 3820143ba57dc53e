// Cut and fill between two surfaces over one rectangle, by triangles and threads.
//
//   bench_surface_difference [triangles=1000000] [threads=2] [rounds=3]
//
// Before anything is timed the net volume is held against that of both surfaces down to elevation 0, each summed by itself.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <random>
#include <string_view>
#include <vector>

#include "civil/surface_difference.h"
#include "measuring.h"
#include "standin_platform/crew.h"

namespace {

using lvx::civil::TinSurface;
using lvx::civil::Triangle;
using lvx::civil::Vec3;

/// A rectangle of 2 by 1 kilometres far from the origin, its points moved at random but for the border's.
TinSurface ground(int triangles, unsigned seed, double height) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> part(-0.2, 0.2);
  const int rows = std::max(1, static_cast<int>(std::sqrt(triangles / 4.0)));
  const int columns = std::max(1, triangles / 2 / rows);
  const double stepX = 2000.0 / columns;
  const double stepY = 1000.0 / rows;
  std::vector<Vec3> points;
  std::vector<Triangle> faces;
  for (int row = 0; row <= rows; ++row)
    for (int column = 0; column <= columns; ++column) {
      const double x = stepX * (column + (column > 0 && column < columns ? part(random) : 0.0));
      const double y = stepY * (row + (row > 0 && row < rows ? part(random) : 0.0));
      points.push_back({3e6 + x, 5e6 + y, height + 20.0 * std::sin(x / 150.0) * std::cos(y / 90.0) + part(random)});
    }
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column) {
      const std::int32_t a = row * (columns + 1) + column;
      const std::int32_t c = a + columns + 2;
      faces.push_back({a, a + 1, c});
      faces.push_back({a, c, c - 1});
    }
  return {std::move(points), std::move(faces)};
}

/// Above elevation 0.
double volumeOf(const TinSurface& surface) {
  long double sum = 0;
  for (const Triangle& t : surface.triangles()) {
    const Vec3& a = surface.points()[static_cast<std::size_t>(t.a)];
    const Vec3& b = surface.points()[static_cast<std::size_t>(t.b)];
    const Vec3& c = surface.points()[static_cast<std::size_t>(t.c)];
    sum += ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x)) * static_cast<long double>(a.z + b.z + c.z) / 6;
  }
  return static_cast<double>(sum);
}

}  // namespace

int main(int argc, char** argv) {
  const char* const usage = "bench_surface_difference [triangles=1000000] [threads=2] [rounds=3]";
  int triangles = 1'000'000;
  int threads = 2;
  int rounds = 3;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    triangles = lvx::bench::valueOf(argument, "triangles=", triangles, usage);
    threads = lvx::bench::valueOf(argument, "threads=", threads, usage);
    rounds = lvx::bench::valueOf(argument, "rounds=", rounds, usage);
  }
  lvx::bench::printMachine();
  const TinSurface existing = ground(triangles, 1, 400.0);
  const TinSurface next = ground(triangles, 2, 400.5);
  const double wanted = volumeOf(next) - volumeOf(existing);

  for (const int count : {1, threads}) {
    lvx::standin_platform::Crew crew(static_cast<unsigned>(count));
    double best = 1e9;
    lvx::civil::SurfaceDifference difference;
    for (int round = 0; round < rounds; ++round) {
      const lvx::bench::Stopwatch watch;
      difference = *lvx::civil::surfaceDifference(
          existing, next,
          [&](std::size_t pieces, const std::function<void(std::size_t)>& piece) { crew.run(pieces, piece); });
      best = std::min(best, watch.seconds());
    }
    if (std::abs(difference.net() - wanted) > 1e-9 * (difference.cut + difference.fill + std::abs(wanted))) {
      std::fprintf(stderr, "net %.6f, but the surfaces' own volumes differ by %.6f\n", difference.net(), wanted);
      return 1;
    }
    std::printf("%d x %d triangles, threads %d: %.2f s  cut %.3f fill %.3f net %.3f\n", triangles, triangles, count,
                best, difference.cut, difference.fill, difference.net());
    if (count == threads) break;
  }
}
