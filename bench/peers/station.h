#pragma once

#include "peer.h"

/// Station and offset of many points: what the programs that answer it share.
namespace lvx::peers {

struct StationOffset {
  double station = 0.0;
  double offset = 0.0;  ///< negative to the left
};

/// Times `solve(i)` for every probe and prints the line.
template <class Solve>
void measureStations(Line line, const Arguments& arguments, std::size_t probes, Solve solve) {
  std::vector<StationOffset> results(probes);
  std::vector<double> times;
  for (std::size_t run = std::max<std::size_t>(1, arguments.count("runs", 3)); run > 0; --run) {
    const Stopwatch watch;
    for (std::size_t i = 0; i < probes; ++i) results[i] = solve(i);
    times.push_back(watch.seconds());
  }
  double stations = 0.0;
  double offsets = 0.0;
  for (const StationOffset& result : results) {
    stations += result.station;
    offsets += std::abs(result.offset);
  }
  line.add("points", probes).add("sum_station", stations).add("sum_abs_offset", offsets).addTimes(times).print();
}

}  // namespace lvx::peers
