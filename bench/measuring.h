#pragma once

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// What the benchmarks share around what they time.
namespace lvx::bench {

/// Runs from where it is made.
class Stopwatch {
 public:
  [[nodiscard]] double seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

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

/// What a program took that ran to its end.
struct Run {
  double peakBytes = 0.0;
  double processorSeconds = 0.0;
  bool isGood = false;  ///< it ended with code 0
};

/// Runs a program with its output thrown away. `arguments` begin with its path.
inline Run measured(std::vector<std::string> arguments) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  Run run;
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    if (std::freopen("/dev/null", "w", stdout) != nullptr) execv(pointers.front(), pointers.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child) return run;
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  run.peakBytes = static_cast<double>(usage.ru_maxrss) * 1024.0;
  run.processorSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  run.isGood = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  return run;
}

}  // namespace lvx::bench
