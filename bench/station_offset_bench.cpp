// Station and offset of many points against one alignment.
//
//   bench_station_offset                  a road and points of its own, checked against a plain search first
//   bench_station_offset law=bloss              the same road with other transitions than clothoids
//   bench_station_offset data=DIR [runs=5 limit=0]
//
// DIR/alignment.f64 holds 8 words an element: kind (int64: 0 line, 1 arc, 2 clothoid), then doubles: distance from the
// start, length, x, y, direction (counter-clockwise from east), curvature at start and end (positive to the left).
// DIR/probes.f64 holds points, two doubles each. Stations start at 1000. Prints one JSON object.

#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "civil/alignment.h"
#include "measuring.h"

using namespace lvx::civil;

namespace {

constexpr double kStartStation = 1000.0;

std::vector<double> readDoubles(const std::string& path) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) throw std::runtime_error("can't read " + path);
  std::vector<double> values(static_cast<std::size_t>(in.tellg()) / sizeof(double));
  in.seekg(0);
  in.read(static_cast<char*>(static_cast<void*>(values.data())),
          static_cast<std::streamsize>(values.size() * sizeof(double)));
  if (!in) throw std::runtime_error("can't read " + path);
  return values;
}

Alignment readAlignment(const std::string& directory) {
  const std::vector<double> words = readDoubles(directory + "/alignment.f64");
  std::vector<Element> elements;
  for (std::size_t i = 0; i + 8 <= words.size(); i += 8) {
    Element element;
    element.kind = static_cast<ElementKind>(std::bit_cast<std::int64_t>(words[i]));
    element.length = words[i + 2];
    element.start = {words[i + 3], words[i + 4]};
    element.direction = words[i + 5];
    element.startCurvature = words[i + 6];
    element.endCurvature = words[i + 7];
    element.givenEnd = element.endPose().point;
    elements.push_back(element);
  }
  return {kStartStation, std::move(elements)};
}

ElementKind lawNamed(const std::string& name) {
  for (const ElementKind law : {ElementKind::Clothoid, ElementKind::Bloss, ElementKind::Cosine,
                                ElementKind::Biquadratic, ElementKind::Sinusoid})
    if (name == kindName(law)) return law;
  throw std::runtime_error("no transition is named '" + name + "'");
}

/// A road of bends with transitions, right and left in turn, over about `kilometres`.
Alignment makeRoad(int kilometres, ElementKind law) {
  std::mt19937_64 random(20);
  const auto between = [&](double low, double high) {
    return low + (high - low) * (static_cast<double>(random() >> 11) * 0x1p-53);
  };
  std::vector<Element> elements;
  Pose pen{{4500000.0, 5400000.0}, 0.3};
  double run = 0.0;
  const auto add = [&](ElementKind kind, double length, double from, double to) {
    Element element{kind, pen.point, pen.direction, length, from, to, {}};
    pen = element.endPose();
    element.givenEnd = pen.point;
    elements.push_back(element);
    run += length;
  };
  for (double sign = 1.0; run < 1000.0 * kilometres; sign = -sign) {
    const double curvature = sign / between(200.0, 900.0);
    const double transition = between(40.0, 80.0);
    add(ElementKind::Line, between(20.0, 120.0), 0.0, 0.0);
    add(law, transition, 0.0, curvature);
    add(ElementKind::Arc, between(20.0, 100.0), curvature, curvature);
    add(law, transition, curvature, 0.0);
  }
  return {kStartStation, std::move(elements)};
}

std::vector<Vec2> makeProbes(const Alignment& axis, std::size_t count) {
  std::mt19937_64 random(21);
  const auto unitRandom = [&] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  std::vector<Vec2> probes;
  while (probes.size() < count) {
    const double station = axis.startStation() + axis.length() * unitRandom();
    probes.push_back(axis.pointLocation(station, 160.0 * unitRandom() - 80.0)->point);
  }
  return probes;
}

/// The nearest of the axis' points every `step`, then a golden-section search around it.
double plainDistance(const Alignment& axis, Vec2 probe, double step) {
  const auto distance = [&](double station) { return length(axis.poseAt(station)->point - probe); };
  double best = axis.startStation();
  double least = distance(best);
  for (double s = best; s < axis.endStation(); s += step) {
    if (const double d = distance(s); d < least) {
      least = d;
      best = s;
    }
  }
  double low = std::max(best - step, axis.startStation());
  double high = std::min(best + step, axis.endStation());
  const double ratio = 0.5 * (std::sqrt(5.0) - 1.0);
  while (high - low > 1e-7) {
    const double a = high - ratio * (high - low);
    const double b = low + ratio * (high - low);
    (distance(a) < distance(b) ? high : low) = distance(a) < distance(b) ? b : a;
  }
  return distance(0.5 * (low + high));
}

void check(const Alignment& axis, std::span<const Vec2> probes) {
  double worst = 0.0;
  for (const Vec2 probe : probes) {
    const auto found = axis.stationOffset(probe);
    if (!found) throw std::runtime_error("a probe has no station");
    worst = std::max(worst, std::abs(std::abs(found->offset) - plainDistance(axis, probe, 0.5)));
  }
  if (!(worst < 1e-7)) throw std::runtime_error("offsets differ from a plain search by " + std::to_string(worst));
  std::fprintf(stderr, "%zu probes agree with a plain search within %.1e\n", probes.size(), worst);
}

}  // namespace

int main(int argc, char** argv) try {
  std::map<std::string, std::string> arguments;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos) throw std::runtime_error("arguments have the form key=value: " + argument);
    arguments[argument.substr(0, equals)] = argument.substr(equals + 1);
  }
  const auto count = [&](const std::string& key, std::size_t otherwise) {
    return arguments.contains(key) ? static_cast<std::size_t>(std::stoull(arguments[key])) : otherwise;
  };
  const std::string data = arguments["data"];

  Alignment axis;
  std::vector<Vec2> probes;
  if (data.empty()) {
    axis = makeRoad(10, lawNamed(arguments.contains("law") ? arguments["law"] : "clothoid"));
    probes = makeProbes(axis, 200000);
    check(axis, std::span(probes).first(200));
  } else {
    axis = readAlignment(data);
    const std::vector<double> words = readDoubles(data + "/probes.f64");
    for (std::size_t i = 0; i + 2 <= words.size(); i += 2) probes.push_back({words[i], words[i + 1]});
  }
  if (const std::size_t limit = count("limit", 0); limit > 0 && limit < probes.size()) probes.resize(limit);

  std::vector<StationOffset> results(probes.size());
  std::vector<double> times;
  for (std::size_t run = 0; run < std::max<std::size_t>(count("runs", 5), 1); ++run) {
    const auto begin = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < probes.size(); ++i)
      results[i] = axis.stationOffset(probes[i]).value_or(StationOffset{});
    times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
  }
  std::sort(times.begin(), times.end());
  const double seconds = times[times.size() / 2];
  double stations = 0.0;
  double offsets = 0.0;
  for (const StationOffset& result : results) {
    stations += result.station;
    offsets += std::abs(result.offset);
  }
  std::printf(
      "{\"peer\": \"lvx\", \"task\": \"station_offset\", \"data\": \"%s\", \"elements\": %zu, \"points\": %zu, "
      "\"seconds\": %.6g, \"fastest\": %.6g, \"points_per_s\": %.6g, \"sum_station\": %.12g, \"sum_abs_offset\": "
      "%.12g, "
      "\"rss_mb\": %.1f}\n",
      data.empty() ? "own" : data.c_str(), axis.elements().size(), probes.size(), seconds, times.front(),
      static_cast<double>(probes.size()) / seconds, stations, offsets, lvx::bench::peakMegabytes());
  return 0;
} catch (const std::exception& e) {
  std::fprintf(stderr, "bench_station_offset: %s\n", e.what());
  return 1;
}
