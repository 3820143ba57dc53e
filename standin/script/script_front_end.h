#pragma once

#include <deque>
#include <functional>
#include <memory>

#include "host/dialog_window.h"
#include "runtime/front_end.h"
#include "script/script.h"
#include "script/transcript.h"
#include "windowless/worked_dialog.h"

namespace lvx::script {

/// Opens a dialog for the script to work.
using DialogOpener = std::function<std::unique_ptr<windowless::WorkedDialog>(host::DialogBehaviour&)>;

/// A user who does what a script says, one action after the other, each taken by whatever waits. Everything that the user
/// would see goes into the transcript. An action that doesn't fit what waits, and a script that ends while something
/// waits, raise ScriptMismatch, which ends the command.
class ScriptFrontEnd final : public runtime::FrontEnd, private host::DialogRunner {
 public:
  /// `opener` opens the dialogs; without one they have no window.
  ScriptFrontEnd(std::vector<ScriptAction> actions, Transcript& transcript, DialogOpener opener = {});

  /// Picks refer to this drawing.
  void setDrawing(const civil::Drawing* drawing) { drawing_ = drawing; }

  /// The next action must be a command: its name; empty at the end of the script. Forgets how often dialogs were opened.
  [[nodiscard]] std::optional<std::string> nextCommand();

  // ---- the host's front end
  [[nodiscard]] host::DialogRunner& dialogs() override { return *this; }
  [[nodiscard]] void* mainWindow() override { return this; }
  void console(const host::CString& text) override { transcript_.console(text); }
  [[nodiscard]] std::optional<civil::Handle> pickEntity(const host::CString& prompt) override;
  [[nodiscard]] std::optional<std::vector<civil::Handle>> selectEntities(const host::CString& addPrompt,
                                                                         const host::CString& removePrompt,
                                                                         const host::CString& classTag) override;
  host::BoxAnswer messageBox(const host::CString& text, host::BoxButtons buttons, host::BoxIcon icon) override;
  [[nodiscard]] std::optional<host::CString> saveFileBox(const host::CString& filter, std::uint32_t flags) override;
  void showHelp(const host::CString& topic) override { transcript_.help(topic); }
  [[nodiscard]] std::uint32_t buttonFaceColour() override;

 private:
  int runModal(host::DialogBehaviour& behaviour, void* parent) override;

  /// Takes the next action for `waiter`, or raises ScriptMismatch at the script's end.
  ScriptAction take(const std::string& waiter);
  [[noreturn]] static void mismatch(const ScriptAction& action, const std::string& waiter);
  void act(windowless::WorkedDialog& dialog, const ScriptAction& action, const std::string& waiter);
  [[nodiscard]] civil::Handle handleOf(const ScriptAction& action) const;

  std::deque<ScriptAction> actions_;
  Transcript& transcript_;
  DialogOpener opener_;
  const civil::Drawing* drawing_ = nullptr;
  std::map<std::string, int, std::less<>> openings_;
};

}  // namespace lvx::script
