// Jobs of the geometry alone, small enough to be counted instruction by instruction:
//
//   work_jobs index|sampling|lattice|stations|transitions|corridors
//
// What comes before the job itself is outside of lvxMeasuredPart, where the counting begins and ends.
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "civil/alignment.h"
#include "civil/corridor.h"
#include "civil/tin_surface.h"

using namespace lvx::civil;

/// The counting follows its name: no copy of it under another one, and no jump into the job in place of a call.
extern "C" [[gnu::noipa]] double lvxMeasuredPart(const std::function<double()>& job) {
  volatile double result = job();
  return result;
}

namespace {

constexpr double kCell = 5.0;

/// Numbers without pattern, the same in every run.
class Noise {
 public:
  /// From -0.5 to 0.5.
  double next() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state_ >> 11U) * 0x1p-53 - 0.5;
  }

 private:
  unsigned long long state_ = 1;
};

struct Grid {
  int rows = 60;
  int columns = 180;
  double jitter = 0.4 * kCell;
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;

  void make() {
    Noise noise;
    for (int row = 0; row <= rows; ++row)
      for (int column = 0; column <= columns; ++column) {
        const double x = kCell * column + jitter * noise.next();
        const double y = kCell * row + jitter * noise.next();
        points.push_back({x, y, 100.0 + 10.0 * std::sin(x / 60.0) * std::cos(y / 40.0)});
      }
    for (int row = 0; row < rows; ++row)
      for (int column = 0; column < columns; ++column) {
        const int a = row * (columns + 1) + column;
        const int d = a + columns + 1;
        triangles.push_back({a, a + 1, d + 1});
        triangles.push_back({a, d + 1, d});
      }
  }
};

double index() {
  Grid grid;
  grid.make();
  return lvxMeasuredPart([&grid] {
    const TinSurface surface(std::move(grid.points), std::move(grid.triangles));
    return static_cast<double>(surface.counts().triangles);
  });
}

double sampling(double jitter) {
  Grid grid;
  grid.jitter = jitter;
  grid.make();
  const TinSurface surface(std::move(grid.points), std::move(grid.triangles));
  const double top = kCell * (grid.rows - 5);
  return lvxMeasuredPart([&] {
    double sum = 0.0;
    std::vector<Vec3> samples;
    for (int column = 2; column < grid.columns - 2; ++column)
      for (int part = 0; part < 4; ++part) {
        const double x = kCell * column + (jitter > 0.0 ? 1.25 * part : 0.0);
        samples.clear();
        surface.sample({x, 5.0 * kCell}, {x, top}, samples);
        for (const Vec3& sample : samples) sum += sample.z;
      }
    return sum;
  });
}

Alignment road(ElementKind law) {
  std::vector<Element> elements;
  Pose pen{{4500000.0, 5400000.0}, 0.3};
  const auto add = [&](ElementKind kind, double length, double from, double to) {
    Element element{kind, pen.point, pen.direction, length, from, to, {}};
    pen = element.endPose();
    element.givenEnd = pen.point;
    elements.push_back(element);
  };
  Noise noise;
  for (int bend = 0; bend < 50; ++bend) {
    const double curvature = (bend % 2 == 0 ? 1.0 : -1.0) / (500.0 + 600.0 * noise.next());
    add(ElementKind::Line, 70.0, 0.0, 0.0);
    add(law, 60.0, 0.0, curvature);
    add(ElementKind::Arc, 80.0, curvature, curvature);
    add(law, 60.0, curvature, 0.0);
  }
  return {1000.0, std::move(elements)};
}

double stations(const std::vector<ElementKind>& laws) {
  double sum = 0.0;
  for (const ElementKind law : laws) {
    const Alignment axis = road(law);
    Noise noise;
    std::vector<Vec2> places;
    for (int i = 0; i < 4000; ++i) {
      const double station = axis.startStation() + axis.length() * (0.5 + noise.next());
      places.push_back(axis.pointLocation(station, 160.0 * noise.next())->point);
    }
    (void)axis.stationOffset(places.front());  // makes what is searched
    sum += lvxMeasuredPart([&] {
      double all = 0.0;
      for (const Vec2 place : places) all += axis.stationOffset(place)->station;
      return all;
    });
  }
  return sum;
}

double corridors() {
  Corridor corridor;
  Region& region = corridor.baselines.emplace_back().regions.emplace_back();
  constexpr int kSections = 1000;
  constexpr double kLength = 10000.0;
  region.endStation = kLength;
  for (int i = 0; i < kSections; ++i) {
    const double station = kLength * i / (kSections - 1);
    const double left = -4.0 + 0.5 * std::sin(station / 97.0);
    CorridorSection section{station, {}, SectionOrigin::Given, {}};
    section.parts.push_back(
        {{"Pave", "Top"}, {{left, 0.03 * left, {"ETW"}}, {0.0, 0.0, {"Crown"}}, {4.0, -0.1, {"ETW"}}}});
    region.stations.insert(region.stations.end(), station);
    region.sections.push_back(section);
  }
  return lvxMeasuredPart([&corridor, &region] {
    for (int i = 0; i < kSections; ++i) (void)addStation(region, 0.37 + (kLength - 1.0) * i / (kSections - 1), "SL");
    Rebuilt done;
    rebuild(corridor, done);
    double sum = 0.0;
    for (const double station : region.stations)
      if (const CorridorSection* const section = sectionAt(corridor.baselines[0], station))
        sum += section->parts[0].points[0].offset;
    return sum;
  });
}

}  // namespace

int main(int argc, char** argv) {
  const std::map<std::string, std::function<double()>> jobs{
      {"index", index},
      {"sampling", [] { return sampling(0.4 * kCell); }},
      {"lattice", [] { return sampling(0.0); }},
      {"stations", [] { return stations({ElementKind::Clothoid}); }},
      {"transitions",
       [] {
         return stations({ElementKind::Bloss, ElementKind::Cosine, ElementKind::Biquadratic, ElementKind::Sinusoid});
       }},
      {"corridors", corridors}};
  const auto job = jobs.find(argc == 2 ? argv[1] : "");
  if (job == jobs.end()) {
    std::fputs("usage: work_jobs index|sampling|lattice|stations|transitions|corridors\n", stderr);
    return 2;
  }
  std::printf("%.17g\n", job->second());
  return 0;
}
