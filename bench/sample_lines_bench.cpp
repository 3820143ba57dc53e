// Sample lines made by rules: how long 25,000 to 200,000 of them take, of fixed widths and out to the border of a
// surface, so that a road that isn't linear shows.
//
//   bench_sample_lines [runs=5]
//
// A road of bends with transitions, a line at each half metre and at the ends of its elements. Before anything is
// timed, lines are checked against the poses of the alignment. Prints seconds and microseconds a line, the best of the
// runs.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "civil/sample_line_rules.h"
#include "measuring.h"
#include "text/number_text.h"

using namespace lvx::civil;

namespace {

/// About `metres` of bends right and left in turn.
Alignment makeRoad(double metres) {
  std::string text = "start 1000 at 0 0 heading 60";
  constexpr double kBend = 680.0;
  for (int i = 0; i * kBend < metres; ++i) {
    const std::string side = i % 2 == 0 ? " right" : " left";
    text += "; line 120; clothoid 80 R inf..400" + side + "; arc 400 R 400" + side + "; clothoid 80 R 400..inf" + side;
  }
  return Alignment::fromText(text);
}

/// Ground of squares of 50 over everything that the road needs.
TinSurface makeGround(const Alignment& axis) {
  Box box;
  for (double station = axis.startStation(); station < axis.endStation(); station += 10.0) {
    const Vec2 at = axis.poseAt(station)->point;
    box.minX = std::min(box.minX, at.x);
    box.minY = std::min(box.minY, at.y);
    box.maxX = std::max(box.maxX, at.x);
    box.maxY = std::max(box.maxY, at.y);
  }
  constexpr double kSquare = 50.0;
  constexpr double kMargin = 60.0;
  const auto columns = static_cast<std::int32_t>((box.maxX - box.minX + 2.0 * kMargin) / kSquare) + 2;
  const auto rows = static_cast<std::int32_t>((box.maxY - box.minY + 2.0 * kMargin) / kSquare) + 2;
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  for (std::int32_t row = 0; row < rows; ++row)
    for (std::int32_t column = 0; column < columns; ++column) {
      const double x = box.minX - kMargin + kSquare * column;
      const double y = box.minY - kMargin + kSquare * row;
      points.push_back({x, y, 100.0 + 5.0 * std::sin(x / 300.0) + 5.0 * std::cos(y / 200.0)});
      if (row + 1 == rows || column + 1 == columns) continue;
      const std::int32_t corner = row * columns + column;
      triangles.push_back({corner, corner + 1, corner + columns + 1});
      triangles.push_back({corner, corner + columns + 1, corner + columns});
    }
  return {std::move(points), std::move(triangles)};
}

void check(const Alignment& axis, const std::vector<MadeSampleLine>& lines) {
  for (std::size_t i = 0; i < lines.size(); i += 997) {
    const MadeSampleLine& line = lines[i];
    const auto pose = axis.poseAt(line.station);
    const Vec2 along = line.right - line.left;
    const double onAxis = std::hypot(line.center.x - pose->point.x, line.center.y - pose->point.y);
    const double square = along.x * std::cos(pose->direction) + along.y * std::sin(pose->direction);
    if (onAxis > 1e-9 || std::abs(square) > 1e-6 || std::hypot(along.x, along.y) < 1.0)
      throw std::runtime_error("line " + std::to_string(i) + " doesn't stand square on the alignment");
    if (i > 0 && !(lines[i].station > lines[i - 1].station)) throw std::runtime_error("stations don't ascend");
  }
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 5;
  for (int i = 1; i < argc; ++i) runs = lvx::bench::valueOf(argv[i], "runs=", runs, "bench_sample_lines [runs=5]");
  lvx::bench::printMachine();
  std::printf("%-10s %10s %10s %12s\n", "widths", "lines", "seconds", "us a line");
  for (const char* widths : {"left=25,right=25", "border=Ground,largest=40"}) {
    for (const double metres : {12'500.0, 25'000.0, 50'000.0, 100'000.0}) {
      const Alignment axis = makeRoad(metres);
      const TinSurface ground = makeGround(axis);
      const SampleLineRules rules = parseSampleLineRules(std::string("every=0.5,elements,ends,") + widths);
      std::size_t count = 0;
      double best = std::numeric_limits<double>::infinity();
      for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        const auto lines = makeSampleLines(rules, {.axis = axis, .border = &ground, .stationText = [](double at) {
                                                     return lvx::text::stationText(at);
                                                   }});
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        if (run == 0) check(axis, lines);
        count = lines.size();
      }
      std::printf("%-10s %10zu %10.3f %12.3f\n", rules.border.empty() ? "fixed" : "to border", count, best,
                  1e6 * best / static_cast<double>(count));
    }
  }
  return 0;
}
