// What a batch costs beyond its reports.
//
//   bench_batch [reports=200] [megabytes=53] [jobs=10000]
//
// First so many reports over one large drawing: the processor time of `lvxhost batch` with all its processes against that
// of one process that reads the drawing once and writes the same reports one after the other. And the memory that a
// report's process has for itself, beside the drawing that it shares.
// Then so many jobs over a tenth as many small drawings, in the same way.
//
// Ends with code 1 where the one costs more than 1.2 times, or the other comes to less than 0.9 of the rate.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "cli/drawing_file.h"
#include "cli/job_file.h"
#include "cli/report_commands.h"
#include "generator/scaled_drawing.h"
#include "measuring.h"

namespace {

namespace fs = std::filesystem;
using namespace lvx;

constexpr const char* kUsage = "bench_batch [reports=200] [megabytes=53] [jobs=10000]";
constexpr double kMostCost = 1.2;
constexpr double kLeastRate = 0.9;

void writeDrawing(const fs::path& path, std::uint64_t triangles, std::uint64_t seed) {
  generator::TextOutput out(path.string());
  generator::DrawingSize size;
  size.triangles = triangles;
  size.sampleLines = 20;
  size.seed = seed;
  generator::writeScaledDrawing(out, size);
  out.finish();
}

/// A report of one of the three kinds.
std::string jobOf(int number, const fs::path& drawing, const fs::path& out) {
  static const std::vector<std::string> kinds{
      R"("command": "projection", "alignment": "Road", "group": "Sections", "surface": "Ground")",
      R"("command": "points", "alignment": "Road", "point-group": "All points")",
      R"("command": "gls", "alignment": "Road", "profile": "Design", "group": "Sections")"};
  const auto index = static_cast<std::size_t>(number);
  return "{" + kinds[index % kinds.size()] + R"(, "drawing": ")" + drawing.string() + R"(", "out": ")" +
         (out / std::to_string(number)).string() + "\"}\n";
}

/// What a process takes with all those that it starts and waits for.
struct Cost {
  double processorSeconds = 0.0;
  double seconds = 0.0;
  /// Most memory that one of the processes two below it had for itself, bytes.
  double ownBytes = 0.0;
};

std::vector<pid_t> childrenOf(pid_t process) {
  const std::string number = std::to_string(process);
  std::ifstream list("/proc/" + number + "/task/" + number + "/children");
  std::vector<pid_t> children;
  for (pid_t child = 0; list >> child;) children.push_back(child);
  return children;
}

double ownBytesOf(pid_t process) {
  std::ifstream map("/proc/" + std::to_string(process) + "/smaps_rollup");
  double kilobytes = 0.0;
  for (std::string word; map >> word;) {
    double value = 0.0;
    if ((word == "Private_Clean:" || word == "Private_Dirty:") && map >> value) kilobytes += value;
  }
  return kilobytes * 1024.0;
}

Cost costOf(const std::function<int()>& work) {
  const auto start = std::chrono::steady_clock::now();
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const bool isQuiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    const int code = isQuiet ? work() : 127;
    std::fflush(nullptr);
    _exit(code);
  }
  Cost cost;
  int status = 0;
  rusage usage{};
  while (wait4(child, &status, WNOHANG, &usage) == 0) {
    for (const pid_t drawing : childrenOf(child))
      for (const pid_t report : childrenOf(drawing)) cost.ownBytes = std::max(cost.ownBytes, ownBytesOf(report));
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error("the reports weren't all written");
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  cost.processorSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return cost;
}

Cost batch(const fs::path& jobs) {
  return costOf([&] {
    return execl(LVX_BIN_DIR "/lvxhost", "lvxhost", "batch", jobs.c_str(), "--overwrite", "--quiet", nullptr);
  });
}

/// The same reports in one process, one after the other; each drawing is read once.
Cost bare(const std::string& text) {
  return costOf([&] {
    cli::JobFileSettings settings{"jobs", {}, {}, {}, {}};
    settings.common.overwrite = true;
    settings.common.quiet = true;
    settings.common.host.bin = LVX_BIN_DIR;
    const cli::JobFile jobs(text, settings);
    cli::ReportRun run;
    std::uint32_t drawing = 0;
    for (const cli::JobFile::Entry& entry : jobs.entries()) {
      const cli::Job job = jobs.read(entry);
      if (entry.drawing != drawing) run.drawing.reset();
      drawing = entry.drawing;
      if (runReportCommand(job.command, job.options, run) != options::kDone) return 1;
    }
    return 0;
  });
}

struct Both {
  Cost batch;
  Cost bare;
};

Both measure(const fs::path& folder, const std::string& jobs) {
  const fs::path file = folder / "jobs.jsonl";
  std::ofstream(file) << jobs;
  Both both;
  // Both into an empty folder: replacing a file costs more than making one.
  const auto empty = [&] {
    fs::remove_all(folder / "out");
    fs::create_directories(folder / "out");
  };
  empty();
  both.bare = bare(jobs);
  empty();
  both.batch = batch(file);
  return both;
}

int run(int reports, int megabytes, int jobs) {
  const fs::path folder = fs::temp_directory_path() / ("lvx-batch-bench-" + std::to_string(getpid()));
  fs::create_directories(folder / "out");
  constexpr std::uint64_t kTrianglesPerMegabyte = 19'200;
  const fs::path large = folder / "large.xml";
  writeDrawing(large, static_cast<std::uint64_t>(megabytes) * kTrianglesPerMegabyte, 1);
  std::string text;
  for (int i = 0; i < reports; ++i) text += jobOf(i, large, folder / "out");
  const Both one = measure(folder, text);
  const double cost = one.batch.processorSeconds / one.bare.processorSeconds;
  std::printf("%d reports of a drawing of %.1f MB\n", reports, static_cast<double>(fs::file_size(large)) * 1e-6);
  std::printf("  one reading and the reports: %8.2f s of a processor\n", one.bare.processorSeconds);
  std::printf("  batch:                       %8.2f s of a processor, %.2f times (at most %.1f), in %.2f s\n",
              one.batch.processorSeconds, cost, kMostCost, one.batch.seconds);
  std::printf("  a report's process has at most %.1f MB for itself\n\n", one.batch.ownBytes * 1e-6);

  text.clear();
  constexpr int kJobsOfADrawing = 10;
  for (int i = 0; i < jobs; ++i) {
    const fs::path drawing = folder / ("small" + std::to_string(i / kJobsOfADrawing) + ".xml");
    if (i % kJobsOfADrawing == 0) writeDrawing(drawing, 500, static_cast<std::uint64_t>(i));
    text += jobOf(i, drawing, folder / "out");
  }
  const Both many = measure(folder, text);
  const double rate = many.bare.processorSeconds / many.batch.processorSeconds;
  std::printf("%d jobs over %d drawings\n", jobs, (jobs + kJobsOfADrawing - 1) / kJobsOfADrawing);
  std::printf("  the reports alone: %8.1f a second of a processor\n", jobs / many.bare.processorSeconds);
  std::printf(
      "  batch:             %8.1f a second of a processor, %.2f times (at least %.1f), %.1f a second of the clock\n",
      jobs / many.batch.processorSeconds, rate, kLeastRate, jobs / many.batch.seconds);
  fs::remove_all(folder);
  return cost > kMostCost || rate < kLeastRate ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  int reports = 200;
  int megabytes = 53;
  int jobs = 10'000;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    reports = bench::valueOf(argument, "reports=", reports, kUsage);
    megabytes = bench::valueOf(argument, "megabytes=", megabytes, kUsage);
    jobs = bench::valueOf(argument, "jobs=", jobs, kUsage);
  }
  bench::printMachine();
  try {
    return run(reports, megabytes, jobs);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_batch: %s\n", error.what());
    return 2;
  }
}
