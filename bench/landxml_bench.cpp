// Reading a large drawing: the numbers of its points and faces alone, and the whole load with the surfaces' indices.
//
//   bench_landxml file=tin.xml [task=extract|load] [threads=N]
//
// One run a process, so that the peak memory is the task's own. `extract` prints the sums of all numbers, by which other
// readers of the same file can be compared; `load` opens the drawing as the host does.
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "landxml/detail/scanner.h"
#include "landxml/reader.h"
#include "measuring.h"

namespace {

using lvx::bench::Stopwatch;

void extract(const std::string& path, double megabytes, const lvx::landxml::ReadOptions& options) {
  using namespace lvx::landxml;
  const Stopwatch watch;
  const detail::ScannedDocument scanned = detail::scanDocument(detail::openFile(path, path), path, options);
  const double seconds = watch.seconds();

  double north = 0.0;
  double east = 0.0;
  double elevation = 0.0;
  std::int64_t ids = 0;
  std::int64_t corners = 0;
  std::size_t points = 0;
  std::size_t faces = 0;
  std::size_t hidden = 0;
  for (const auto& [offset, tin] : scanned.definitions) {
    std::vector<std::int64_t> idOf(tin.points.size());
    tin.eachId([&](std::int64_t id, std::size_t index) { idOf[index] = id; });
    for (const auto& p : tin.points) north += p.y, east += p.x, elevation += p.z;
    for (const std::int64_t id : idOf) ids += id;
    for (const auto* const list : {&tin.faces.triangles, &tin.faces.invisible}) {
      for (const auto& t : *list) {
        corners += idOf[static_cast<std::size_t>(t.a)] + idOf[static_cast<std::size_t>(t.b)] +
                   idOf[static_cast<std::size_t>(t.c)];
      }
    }
    points += tin.points.size();
    faces += tin.faces.triangles.size() + tin.faces.invisible.size();
    hidden += tin.faces.invisible.size();
  }
  std::printf(
      "{\"peer\":\"lvx\",\"task\":\"xml_extract\",\"data\":\"%s\",\"mb\":%.6g,\"seconds\":%.6g,\"mb_per_s\":%.6g,"
      "\"points\":%zu,\"faces\":%zu,\"sum_north\":%.17g,\"sum_east\":%.17g,\"sum_z\":%.17g,\"sum_id\":%lld,"
      "\"sum_corner\":%lld,\"hidden\":%zu,\"rss_mb\":%.6g}\n",
      path.c_str(), megabytes, seconds, megabytes / seconds, points, faces, north, east, elevation,
      static_cast<long long>(ids), static_cast<long long>(corners), hidden, lvx::bench::peakMegabytes());
}

void load(const std::string& path, double megabytes, const lvx::landxml::ReadOptions& options) {
  const Stopwatch watch;
  const lvx::civil::Drawing drawing = lvx::landxml::readDrawing(path, options);
  const double seconds = watch.seconds();
  std::size_t triangles = 0;
  std::size_t sections = 0;
  for (const auto& corridor : drawing.corridors)
    for (const auto& baseline : corridor.baselines)
      for (const auto& region : baseline.regions) sections += region.sections.size();
  for (const auto& surface : drawing.surfaces) triangles += surface.surface.counts().triangles;
  std::printf(
      "{\"peer\":\"lvx\",\"task\":\"load\",\"data\":\"%s\",\"mb\":%.6g,\"seconds\":%.6g,\"mb_per_s\":%.6g,"
      "\"surfaces\":%zu,\"faces\":%zu,\"sections\":%zu,\"rss_mb\":%.6g,\"rss_to_file\":%.4g}\n",
      path.c_str(), megabytes, seconds, megabytes / seconds, drawing.surfaces.size(), triangles, sections,
      lvx::bench::peakMegabytes(), lvx::bench::peakMegabytes() * 1.048576 / megabytes);
}

}  // namespace

int main(int argc, char** argv) {
  std::string path;
  std::string task = "extract";
  lvx::landxml::ReadOptions options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument.starts_with("file=")) path = argument.substr(5);
    if (argument.starts_with("task=")) task = argument.substr(5);
    if (argument.starts_with("threads=")) options.threads = static_cast<unsigned>(std::stoul(argument.substr(8)));
  }
  if (path.empty() || (task != "extract" && task != "load")) {
    std::fprintf(stderr, "usage: bench_landxml file=DRAWING [task=extract|load] [threads=N]\n");
    return 2;
  }
  try {
    const double megabytes = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
    if (task == "extract")
      extract(path, megabytes, options);
    else
      load(path, megabytes, options);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
  return 0;
}
