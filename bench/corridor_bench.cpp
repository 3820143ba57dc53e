// Adding a report's stations to corridors, rebuilding them and reading their sections, in the report's own order: for
// each region its stations are read, the missing ones added, and the corridor is rebuilt.
//
//   bench_corridor [corridors=20 baselines=5 regions=1 sections=10000 rows=10000 runs=3]
//
// `sections` are given for each baseline, `rows` are the report's stations. Runs the asked size and twice of it (twice
// the sections and twice the rows) and prints one JSON object with seconds of processor time; `ratio` is the second
// time by the first. Checks first, on a small corridor, that what was computed lies between its neighbours as a plain
// search finds them.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <time.h>

#include "civil/corridor.h"
#include "measuring.h"

using namespace lvx::civil;

namespace {

struct Size {
  std::size_t corridors = 20;
  std::size_t baselines = 5;
  std::size_t regions = 1;
  std::size_t sections = 10000;
  std::size_t rows = 10000;
};

constexpr double kLength = 10000.0;

double spread(std::size_t i, std::size_t count) {
  return kLength * static_cast<double>(i) / static_cast<double>(count - 1);
}

/// A road of two lanes and a kerb whose edges and cross-falls swing along the way. All sections share their codes and lie in
/// common memory, as those that are read from a drawing do.
CorridorSection makeSection(double station) {
  static const CodeList kPave{"Pave", "Top"};
  static const CodeList kKerb{"Kerb"};
  static const CodeList kEdge{"ETW"};
  static const CodeList kCrown{"Crown"};
  static const CodeList kTopKerb{"Top_Curb"};
  const double left = -4.0 + 0.5 * std::sin(station / 97.0);
  const double right = 4.0 + 0.5 * std::cos(station / 71.0);
  CorridorSection section{station, {}, SectionOrigin::Given, {}};
  section.parts.push_back(
      {kPave,
       {{left, 0.03 * left * std::sin(station / 211.0), kEdge}, {0.0, 0.0, kCrown}, {right, -0.025 * right, kEdge}}});
  section.parts.push_back({kKerb, {{right, -0.025 * right, {}}, {right, 0.12 - 0.025 * right, kTopKerb}}});
  return section;
}

Corridor makeCorridor(const Size& size) {
  Corridor corridor;
  corridor.name = "road";
  for (std::size_t b = 0; b < size.baselines; ++b) {
    Baseline& baseline = corridor.baselines.emplace_back();
    baseline.regions.resize(size.regions);
    for (std::size_t r = 0; r < size.regions; ++r) {
      baseline.regions[r].startStation = kLength * static_cast<double>(r) / static_cast<double>(size.regions);
      baseline.regions[r].endStation = kLength * static_cast<double>(r + 1) / static_cast<double>(size.regions);
    }
    SectionMemory memory;
    for (std::size_t i = 0; i < size.sections; ++i) {
      const std::size_t r = std::min(i * size.regions / size.sections, size.regions - 1);
      const double station = spread(i, size.sections);
      baseline.regions[r].stations.insert(baseline.regions[r].stations.end(), station);
      CorridorSection section = makeSection(station);
      section.parts = SectionParts(section.parts, memory);
      baseline.regions[r].sections.push_back(std::move(section));
    }
  }
  return corridor;
}

/// Between the given stations, and rarely on one.
std::vector<double> makeRows(std::size_t count) {
  std::vector<double> rows(count);
  for (std::size_t i = 0; i < count; ++i) rows[i] = 0.37 + (kLength - 1.0) * spread(i, count) / kLength;
  return rows;
}

struct Times {
  double add = 0.0;
  double rebuild = 0.0;
  double read = 0.0;
  std::size_t added = 0;
  std::size_t computed = 0;
  std::size_t found = 0;
  double offsets = 0.0;  ///< sum of all first offsets read
  [[nodiscard]] double total() const { return add + rebuild + read; }
};

/// The processor's time for this program, which what else the machine does stretches least.
class Clock {
 public:
  /// Adds the seconds since the last call.
  void into(double& sum) {
    const double time = now();
    sum += time - last_;
    last_ = time;
  }

 private:
  static double now() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  }
  double last_ = now();
};

void runReport(Corridor& corridor, const std::vector<double>& rows, Times& times) {
  Rebuilt done;
  Clock clock;
  for (Baseline& baseline : corridor.baselines) {
    std::vector<double> stations;
    for (Region& region : baseline.regions) {
      for (const double row : rows) times.added += addStation(region, row, "SL") ? 1 : 0;
      clock.into(times.add);
      rebuild(corridor, done);
      clock.into(times.rebuild);
      stations.insert(stations.end(), region.stations.begin(), region.stations.end());
    }
    for (const double station : stations) {
      const CorridorSection* section = sectionAt(baseline, station);
      if (section == nullptr) continue;
      ++times.found;
      times.offsets += section->parts[0].points[0].offset;
    }
    clock.into(times.read);
  }
  times.computed += done.computed;
}

Times run(const Size& size) {
  Times times;
  const std::vector<double> rows = makeRows(size.rows);
  // One after the other, as the report takes them, so that many large ones fit in memory.
  for (std::size_t c = 0; c < size.corridors; ++c) {
    Corridor corridor = makeCorridor(size);
    runReport(corridor, rows, times);
  }
  return times;
}

void check() {
  const Size size{1, 1, 1, 101, 333};
  Corridor corridor = makeCorridor(size);
  const std::vector<double> rows = makeRows(size.rows);
  Times times;
  runReport(corridor, rows, times);
  double worst = 0.0;
  for (const double row : rows) {
    const CorridorSection* const found = sectionAt(corridor.baselines[0], row);
    if (found == nullptr) throw std::runtime_error("a row has no section");
    std::size_t after = 1;
    while (after + 1 < size.sections && spread(after, size.sections) <= row) ++after;
    const double from = spread(after - 1, size.sections);
    const double to = spread(after, size.sections);
    const CorridorSection a = makeSection(from);
    const CorridorSection b = makeSection(to);
    const double ratio = (row - from) / (to - from);
    for (std::size_t p = 0; p < a.parts.size(); ++p) {
      for (std::size_t k = 0; k < a.parts[p].points.size(); ++k) {
        const SectionPoint& here = found->parts[p].points[k];
        const SectionPoint& first = a.parts[p].points[k];
        const SectionPoint& second = b.parts[p].points[k];
        worst = std::max(worst, std::abs(here.offset - (1.0 - ratio) * first.offset - ratio * second.offset));
        worst = std::max(worst, std::abs(here.elevation - (1.0 - ratio) * first.elevation - ratio * second.elevation));
      }
    }
  }
  if (!(worst < 1e-9)) throw std::runtime_error("computed sections are off by " + std::to_string(worst));
  std::fprintf(stderr, "%zu computed sections agree with a plain search within %.1e\n", times.computed, worst);
}

}  // namespace

int main(int argc, char** argv) try {
  std::map<std::string, std::size_t> arguments;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos) throw std::runtime_error("arguments have the form key=value: " + argument);
    arguments[argument.substr(0, equals)] = static_cast<std::size_t>(std::stoull(argument.substr(equals + 1)));
  }
  const auto number = [&](const char* key, std::size_t otherwise, std::size_t least) {
    return std::max(arguments.contains(key) ? arguments[key] : otherwise, least);
  };
  const Size once{number("corridors", 20, 1), number("baselines", 5, 1), number("regions", 1, 1),
                  number("sections", 10000, 2), number("rows", 10000, 2)};
  Size twice = once;
  twice.sections *= 2;
  twice.rows *= 2;

  check();
  const auto median = [runs = number("runs", 3, 1)](const Size& size) {
    std::vector<Times> results;
    for (std::size_t i = 0; i < runs; ++i) results.push_back(run(size));
    std::sort(results.begin(), results.end(), [](const Times& a, const Times& b) { return a.total() < b.total(); });
    return results[results.size() / 2];
  };
  const Times first = median(once);
  const Times second = median(twice);
  std::printf(
      "{\"peer\": \"lvx\", \"task\": \"corridor\", \"corridors\": %zu, \"baselines\": %zu, \"regions\": %zu, "
      "\"sections\": %zu, \"rows\": %zu, \"added\": %zu, \"computed\": %zu, \"found\": %zu, \"seconds\": %.4g, "
      "\"add\": %.4g, \"rebuild\": %.4g, \"read\": %.4g, \"sections_per_s\": %.4g, \"seconds_twice\": %.4g, \"ratio\": "
      "%.3f, \"sum_offset\": %.12g, \"rss_mb\": %.1f}\n",
      once.corridors, once.baselines, once.regions, once.sections, once.rows, first.added, first.computed, first.found,
      first.total(), first.add, first.rebuild, first.read, static_cast<double>(first.computed) / first.total(),
      second.total(), second.total() / first.total(), first.offsets, lvx::bench::peakMegabytes());
  return 0;
} catch (const std::exception& e) {
  std::fprintf(stderr, "bench_corridor: %s\n", e.what());
  return 1;
}
