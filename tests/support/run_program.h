#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace lvx::test {

/// How a program is started.
struct RunRequest {
  std::filesystem::path program;
  std::vector<std::string> arguments;
  /// Set beside the test's own environment; an empty value takes the variable away.
  std::map<std::string, std::string> environment;
  /// Current folder; empty: the test's own.
  std::filesystem::path folder;
  /// Where standard output goes in place of `RunResult::output`: "/dev/full".
  std::string outputTo;
  /// Starts the program without a standard output.
  bool closeOutput = false;
};

struct RunResult {
  /// As the program gave it; 128 and the signal's number where one ended it.
  int exitCode = -1;
  std::string output;
  std::string errors;
};

/// Runs a program to its end with nothing on its standard input. Throws std::runtime_error where it can't be started.
[[nodiscard]] RunResult runProgram(const RunRequest& request);

/// The same on a terminal, where a person answers: each time the program waits behind `question`, the next answer is
/// typed. `output` is everything that the terminal showed; `outputTo` and `closeOutput` don't apply.
[[nodiscard]] RunResult runOnTerminal(const RunRequest& request, const std::string& question,
                                      std::vector<std::string> answers);

/// A whole file; throws std::runtime_error where it can't be read.
[[nodiscard]] std::string fileBytes(const std::filesystem::path& path);

/// A folder of its own for the length of a scope.
class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace lvx::test
