#pragma once

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/resource.h>

/// What the benchmarks share around what they time.
namespace lvx::bench {

/// Compiler, flags and processor, before the first figure.
inline void printMachine() {
  std::string processor = "unknown";
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);)
    if (line.starts_with("model name")) {
      processor = line.substr(line.find(':') + 2);
      break;
    }
  std::printf("compiler %s\nflags %s\nprocessor %s\n\n", LVX_COMPILER, LVX_FLAGS, processor.c_str());
}

/// The number behind `name` ("rounds=") where `argument` begins so, else `otherwise`. Ends the program with `usage` and
/// code 2 where it isn't a number above 0.
inline int valueOf(std::string_view argument, std::string_view name, int otherwise, const char* usage) {
  if (!argument.starts_with(name)) return otherwise;
  int value = 0;
  const char* end = argument.data() + argument.size();
  const auto [rest, error] = std::from_chars(argument.data() + name.size(), end, value);
  if (error != std::errc() || rest != end || value < 1) {
    std::fprintf(stderr, "usage: %s\n", usage);
    std::exit(2);
  }
  return value;
}

/// The most memory that the process has had so far, in units of 1,048,576 bytes.
inline double peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

}  // namespace lvx::bench
