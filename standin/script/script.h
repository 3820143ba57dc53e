#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/user_interface.h"
#include "runtime/raised_by_host.h"

namespace lvx::script {

/// A script can't be read. The text names the file, the action by its number from 1, and what is wrong with it.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A script doesn't fit what the command waits for. The text names the action and what waits.
class ScriptMismatch : public std::runtime_error, public runtime::RaisedByHost {
 public:
  using std::runtime_error::runtime_error;
};

/// One thing that a user does. Texts are UTF-8.
struct ScriptAction {
  enum class Kind : std::uint8_t {
    Command,
    Select,
    Type,
    Tick,
    Click,
    Close,
    Pick,
    PickPoints,
    Escape,
    File,
    Answer,
    Snapshot,
  };

  Kind kind = Kind::Snapshot;
  /// Position in the script, from 1.
  std::size_t number = 0;
  /// Of Select, Type, Tick and Click: the control.
  int id = 0;
  /// Of Select: the row by its position, or by its text.
  std::optional<int> row;
  /// Command name, row text, typed text, handle text or name of what is picked, chosen path.
  std::string text;
  /// Of Pick by name: the class of the object ("QMT_ALIGNMENT"); empty where `text` is a handle.
  std::string pickClass;
  /// Of Tick.
  bool on = true;
  /// Of File: Cancel instead of a path.
  bool cancelled = false;
  host::BoxAnswer answer = host::BoxAnswer::Ok;
  std::vector<std::int32_t> points;
};

/// The action as messages name it: "action 3 (click)".
[[nodiscard]] std::string describe(const ScriptAction& action);

/// What a JSON reader complains of, without the reader's own name in front.
[[nodiscard]] std::string jsonProblem(std::string_view words);

/// Reads a script: a JSON array of actions. `name` stands for the file in messages. Throws ScriptError.
[[nodiscard]] std::vector<ScriptAction> parseScript(std::string_view json, const std::string& name);

}  // namespace lvx::script
