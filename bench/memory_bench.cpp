// Memory of the program over drawings that hold next to nothing but one kind of thing: the peak of `lvxhost info`, less
// that over a drawing without any, against the size of the file.
//
//   bench_memory [megabytes=40] [kind=design-sections]
//
// Ends with code 1 where a kind takes more than 1.5 times its file.
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "generator/bulk_drawing.h"
#include "measuring.h"

namespace {

using namespace lvx;

constexpr const char* kUsage = "bench_memory [megabytes=40] [kind=NAME]";
constexpr double kMost = 1.5;

std::uint64_t write(const std::filesystem::path& path, std::string_view kind, std::uint64_t bytes) {
  generator::TextOutput out(path.string());
  generator::writeBulkDrawing(out, kind, bytes);
  out.finish();
  return std::filesystem::file_size(path);
}

bench::Run info(const std::filesystem::path& path) {
  const bench::Run run = bench::measured({LVX_BIN_DIR "/lvxhost", "info", path.string()});
  if (!run.isGood) throw std::runtime_error("lvxhost info " + path.string() + " failed");
  return run;
}

int run(std::uint64_t megabytes, std::string_view only) {
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("lvx-memory-bench-" + std::to_string(getpid()) + ".xml");
  write(path, "surface", 0);
  const double empty = info(path).peakBytes;
  std::printf("%-16s %12s %12s %7s %9s\n", "kind", "file bytes", "peak bytes", "ratio", "seconds");
  int code = 0;
  for (const generator::BulkKind& kind : generator::bulkKinds()) {
    if (!only.empty() && kind.name != only) continue;
    const auto size = static_cast<double>(write(path, kind.name, megabytes * 1'000'000));
    const bench::Run taken = info(path);
    const double peak = taken.peakBytes - empty;
    const bool isMuch = peak > kMost * size;
    std::printf("%-16s %12.0f %12.0f %7.2f %9.2f%s\n", std::string(kind.name).c_str(), size, peak, peak / size,
                taken.processorSeconds, isMuch ? "  more than 1.5 times its file" : "");
    if (isMuch) code = 1;
  }
  std::filesystem::remove(path);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  int megabytes = 40;
  std::string_view only;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    megabytes = bench::valueOf(argument, "megabytes=", megabytes, kUsage);
    if (argument.starts_with("kind=")) only = argument.substr(5);
  }
  bench::printMachine();
  try {
    return run(static_cast<std::uint64_t>(megabytes), only);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_memory: %s\n", error.what());
    return 2;
  }
}
