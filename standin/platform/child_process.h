#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace lvx::standin_platform {

/// How a process ended and what it said.
struct ChildResult {
  /// As it gave it; 128 and the signal's number where one ended it; 127 where it couldn't be started.
  int exitCode = 127;
  std::string output;
  std::string errors;
  /// Why some of these couldn't be read; none where all could.
  std::error_code unread{};
};

/// A program that runs beside this one, with nothing on its standard input. One run at a time; `interrupt` may come from
/// another thread.
class ChildProcess {
 public:
  ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  /// Runs `program` to its end. Arguments reach it as they are, whatever is in them.
  [[nodiscard]] ChildResult run(const std::filesystem::path& program, const std::vector<std::string>& arguments);
  /// Asks the running program, if any, to stop, as Ctrl-C does.
  void interrupt();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
