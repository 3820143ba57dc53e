#pragma once

#include <deque>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/dialog_window.h"
#include "options/options.h"
#include "runtime/front_end.h"

namespace lvx::cli {

using options::Overwrite;

/// One thing that the command line does in a dialog, in the order in which a user would.
struct DialogStep {
  enum class Kind : std::uint8_t { SelectRow, Type, Tick, Untick, Click };
  Kind kind = Kind::Click;
  int control = 0;
  /// SelectRow: the row's position, and its text where that is known.
  int row = 0;
  host::CString text;
};

/// Answers dialogs by fixed steps, others for each opening of one name; what the steps leave open, any further opening and
/// every other dialog is cancelled. A step that the dialog refuses throws std::logic_error.
class StepDialogs final : public host::DialogRunner {
 public:
  void expect(std::string dialogName, std::vector<std::vector<DialogStep>> openings);
  int runModal(host::DialogBehaviour& dialog, void* parent) override;

 private:
  std::map<std::string, std::deque<std::vector<DialogStep>>, std::less<>> openings_;
};

/// The command line in place of a user: questions are answered by the options or, on a terminal, by the person there;
/// nothing is ever picked but the points that were named.
class CommandLineFrontEnd final : public runtime::FrontEnd {
 public:
  /// `helpFolder` holds the help pages in the user's language.
  CommandLineFrontEnd(Overwrite overwrite, std::filesystem::path helpFolder)
      : overwrite_(overwrite), helpFolder_(std::move(helpFolder)) {}

  /// The steps for the dialogs that the command opens.
  [[nodiscard]] StepDialogs& steps() { return dialogs_; }

  /// What every selection of points gives from here on.
  void selectPoints(std::vector<civil::Handle> handles) { points_ = std::move(handles); }
  /// How often a question was asked, whoever answered it.
  [[nodiscard]] std::size_t questions() const { return questions_; }

  host::BoxAnswer messageBox(const host::CString& text, host::BoxButtons buttons, host::BoxIcon icon) override;
  [[nodiscard]] std::optional<host::CString> saveFileBox(const host::CString& filter, std::uint32_t flags) override;
  /// Names the page's file, or the topic where there is no such page.
  void showHelp(const host::CString& topic) override;
  [[nodiscard]] std::uint32_t buttonFaceColour() override;
  [[nodiscard]] host::DialogRunner& dialogs() override { return dialogs_; }
  [[nodiscard]] void* mainWindow() override { return nullptr; }
  void console(const host::CString& text) override;
  [[nodiscard]] std::optional<civil::Handle> pickEntity(const host::CString& prompt) override;
  [[nodiscard]] std::optional<std::vector<civil::Handle>> selectEntities(const host::CString& addPrompt,
                                                                         const host::CString& removePrompt,
                                                                         const host::CString& classTag) override;

 private:
  Overwrite overwrite_;
  std::filesystem::path helpFolder_;
  std::optional<std::vector<civil::Handle>> points_;
  std::size_t questions_ = 0;
  StepDialogs dialogs_;
};

}  // namespace lvx::cli
