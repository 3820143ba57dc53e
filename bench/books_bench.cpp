// Section books: how long books of 1,000 to 50,000 cross sections take, and their memory, which doesn't grow with them.
//
//   bench_books [most=50000]
//
// The example drawing's Valley road with sample lines at equal steps, 40 to each side, as one PDF on A3. Each book is a run
// of lvxhost of its own, from the start of the process to its end. Before a figure counts, the file is looked at: it begins
// and ends as a PDF does.
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "measuring.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  constexpr const char* kUsage = "bench_books [most=50000]";
  int most = 50'000;
  for (int i = 1; i < argc; ++i) most = lvx::bench::valueOf(argv[i], "most=", most, kUsage);
  lvx::bench::printMachine();
  const std::string drawing = std::string(LVX_SOURCE_DIR) + "/examples/valley-road.xml";
  const fs::path book = fs::temp_directory_path() / "lvx-bench-book.pdf";
  constexpr double kLength = 1093.0;  // of the alignment
  std::printf("%10s %10s %14s %10s %12s\n", "sections", "seconds", "ms a section", "MB", "MB of memory");
  for (const int count : {1000, 5000, 10'000, 50'000}) {
    if (count > most) break;
    char rules[96];
    std::snprintf(rules, sizeof rules, "every=%.6f,left=40,right=40,tolerance=0.0001", kLength / count);
    std::fflush(stdout);
    const lvx::bench::Stopwatch watch;
    const pid_t child = fork();
    if (child == 0) {
      execl(LVX_BIN_DIR "/lvxhost", "lvxhost", "--overwrite", "--quiet", "sections", drawing.c_str(), "--alignment",
            "Valley road", "--lines", rules, "--out", book.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    const double seconds = watch.seconds();
    std::string bytes(fs::exists(book) ? fs::file_size(book) : 0, '\0');
    std::ifstream(book, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (status != 0 || !bytes.starts_with("%PDF") || bytes.find("%%EOF", bytes.size() - 16) == std::string::npos) {
      std::fprintf(stderr, "the book of %d sections isn't whole\n", count);
      return 1;
    }
    std::printf("%10d %10.2f %14.3f %10.1f %12.0f\n", count, seconds, 1000.0 * seconds / count,
                static_cast<double>(bytes.size()) / 1048576.0, static_cast<double>(usage.ru_maxrss) / 1024.0);
    fs::remove(book);
  }
  return 0;
}
