#pragma once

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "runtime/standin_host.h"

namespace lvx::runtime {

/// What a module's code raised. Only its words are kept, taken while the library that they lie in is loaded: the exception
/// itself could be neither looked at nor destroyed once its module has gone.
struct ModuleException {
  /// Empty for one of a kind that has no words.
  std::string words;
};

/// How a command ended. Nothing in it belongs to a module, so it may be kept when the module has gone.
struct CommandOutcome {
  /// False: no command of that name is registered, and nothing ran.
  bool found = false;
  /// What the module raised to end it; empty where it ended otherwise. The host lives on.
  std::optional<ModuleException> exception;
  /// What the host's own side raised to end it, see RaisedByHost; whoever runs commands decides what becomes of it.
  std::exception_ptr raisedByHost;
  /// What the module did wrong, a sentence each; filled where checks are on.
  std::vector<std::string> misuse;
};

/// What the exception that ended a command says, for its user; empty where none did. Throws what the host's own side
/// raised: that isn't the command's doing.
[[nodiscard]] std::string wordsOf(const CommandOutcome& outcome);

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
