#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "host/user_interface.h"
#include "runtime/file_journal.h"
#include "windowless/worked_dialog.h"

namespace lvx::script {

/// What happened while a script ran: JSON Lines, one event a line.
class Transcript {
 public:
  /// `write` gets each line as it happens, with its line end.
  explicit Transcript(std::function<void(std::string_view line)> write) : write_(std::move(write)) {}

  /// The whole state of an open dialog: title, and each control's text, rows, row, ticked, enabled, as far as its kind
  /// has them.
  void dialog(std::string_view name, int opening, const windowless::WorkedDialog& state);
  /// The controls of the open dialog that differ from what the transcript showed last; nothing where none does.
  void changes(const windowless::WorkedDialog& state);
  void closed(std::string_view name, int code);
  void box(const host::CString& text, host::BoxButtons buttons, host::BoxIcon icon);
  void prompt(const host::CString& text);
  /// The two prompts of a point selection.
  void prompt(const host::CString& add, const host::CString& remove);
  void console(const host::CString& text);
  void fileBox(const host::CString& filter);
  void help(const host::CString& topic);
  /// Written, removed, or not written and why.
  void file(const runtime::FileEvent& event);
  void exception(const std::string& text);
  void misuse(const std::string& text);
  void end(const std::string& command);

 private:
  using Json = nlohmann::ordered_json;
  void write(const Json& event);
  static Json controlState(const windowless::Control& control);

  std::function<void(std::string_view)> write_;
  std::map<int, Json> shown_;
};

}  // namespace lvx::script
