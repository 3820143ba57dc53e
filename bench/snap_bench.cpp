// What a move of the mouse costs while the user measures: the search of what it snaps to, and the ground below it.
//
//   bench_snap [triangles=5000000] [moves=2000]
//
// Over a surface and an alignment of 500 short lines. The radius is the mouse's in drawing units, so a large one is a plan
// that shows much. Before anything is timed the ground is held against the surface's own elevations.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "measuring.h"
#include "view/ground_place.h"
#include "view/snap.h"

namespace {

using lvx::civil::Vec2;

lvx::civil::Drawing drawing(int triangles) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> part(0.0, 0.4);
  const int cells = std::max(2, static_cast<int>(std::sqrt(triangles / 2.0)));
  std::vector<lvx::civil::Vec3> points;
  std::vector<lvx::civil::Triangle> faces;
  for (int row = 0; row <= cells; ++row)
    for (int column = 0; column <= cells; ++column)
      points.push_back({column + part(random), row + part(random), 10.0 * part(random)});
  for (int row = 0; row < cells; ++row)
    for (int column = 0; column < cells; ++column) {
      const std::int32_t a = row * (cells + 1) + column;
      const std::int32_t c = a + cells + 2;
      faces.push_back({a, a + 1, c});
      faces.push_back({a, c, c - 1});
    }
  lvx::civil::Drawing made;
  auto axis = std::make_unique<lvx::civil::AlignmentObject>();
  axis->handle = 1;
  axis->name = "Axis";
  std::string text = "at 0 " + std::to_string(cells / 2);
  constexpr int kLines = 500;
  for (int i = 1; i <= kLines; ++i)
    text += "; to " + std::to_string(i * cells / kLines) + " " + std::to_string(cells / 2 + i % 2);
  axis->geometry = lvx::civil::Alignment::fromText(text);
  made.siteless.alignments.push_back(std::move(axis));
  made.surfaces.push_back({2, "Ground", "", lvx::civil::TinSurface(std::move(points), std::move(faces))});
  return made;
}

}  // namespace

int main(int argc, char** argv) {
  const char* const usage = "bench_snap [triangles=5000000] [moves=2000]";
  int triangles = 5'000'000;
  int moves = 2'000;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    triangles = lvx::bench::valueOf(argument, "triangles=", triangles, usage);
    moves = lvx::bench::valueOf(argument, "moves=", moves, usage);
  }
  lvx::bench::printMachine();
  const lvx::civil::Drawing made = drawing(triangles);
  const lvx::view::PlanScene scene(made);
  const double side = scene.box().maxX;

  std::mt19937 random(2);
  std::uniform_real_distribution<double> place(0.0, side);
  for (int i = 0; i < moves; ++i) {
    const Vec2 at{place(random), place(random)};
    const auto ground = lvx::view::groundAt(scene, at);
    const auto wanted = made.surfaces.front().surface.elevationAt(at);
    if (ground.has_value() != wanted.has_value() || (ground && std::abs(ground->elevation - *wanted) > 1e-9)) {
      std::fprintf(stderr, "another ground than the surface's at %.6f %.6f\n", at.x, at.y);
      return 1;
    }
  }
  for (const double radius : {0.1, 1.0, 10.0, 40.0, 100.0, 1000.0}) {
    std::vector<double> times;
    std::size_t found = 0;
    for (int i = 0; i < moves; ++i) {
      const Vec2 at{place(random), place(random)};
      const lvx::bench::Stopwatch watch;
      if (lvx::view::snapAt(scene, at, radius)) ++found;
      static_cast<void>(lvx::view::groundAt(scene, at));
      times.push_back(1e3 * watch.seconds());
    }
    std::sort(times.begin(), times.end());
    std::printf("radius %7.1f: median %.4f ms, 99 of 100 below %.4f ms, %zu of %d snapped\n", radius,
                times[times.size() / 2], times[times.size() * 99 / 100], found, moves);
  }
}
