#pragma once

#include <exception>
#include <string>
#include <vector>

#include "runtime/standin_host.h"

namespace lvx::runtime {

/// How a command ended.
struct CommandOutcome {
  /// False: no command of that name is registered, and nothing ran.
  bool found = false;
  /// What left the command; empty where it ended by itself. The host lives on.
  std::exception_ptr exception;
  /// What the module did wrong, a sentence each; filled where checks are on.
  std::vector<std::string> misuse;
};

/// What an exception that left a command says, for its user. One that isn't the command's own doing goes on: Interrupted.
[[nodiscard]] std::string wordsOf(const std::exception_ptr& exception);

/// Runs commands from the host's command stack. With checks on, it compares what is held before and after each: a model
/// object not released, a lock left over, an object left open, a selection set or filter list not freed, a reference of
/// the companion library not given up, other resources in force than before. It also tells what the module asks of the
/// host outside any command.
class CommandRunner {
 public:
  CommandRunner(StandinHost& host, bool checks);
  CommandRunner(const CommandRunner&) = delete;
  CommandRunner& operator=(const CommandRunner&) = delete;
  ~CommandRunner();

  CommandOutcome run(const host::CString& name);
  /// Calls outside a command since the last question.
  [[nodiscard]] std::vector<std::string> takeOutsideCalls();

 private:
  StandinHost& host_;
  bool checks_;
  bool running_ = false;
  std::vector<std::string> outsideCalls_;
};

}  // namespace lvx::runtime
