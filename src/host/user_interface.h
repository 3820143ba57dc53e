#pragma once

#include <cstdint>
#include <optional>

#include "framework/text.h"

namespace lvx::host {

using framework::CString;

enum class BoxButtons : std::uint8_t { Ok, YesNo, RetryCancel };
enum class BoxIcon : std::uint8_t { None, Stop, Question, Warning };
/// The values are the codes with which a dialog closes.
enum class BoxAnswer : std::uint8_t { Ok = 1, Cancel = 2, Retry = 4, Yes = 6, No = 7 };

/// True where a box with these buttons can be answered so.
[[nodiscard]] constexpr bool offers(BoxButtons buttons, BoxAnswer answer) {
  switch (buttons) {
    case BoxButtons::Ok:
      return answer == BoxAnswer::Ok;
    case BoxButtons::YesNo:
      return answer == BoxAnswer::Yes || answer == BoxAnswer::No;
    case BoxButtons::RetryCancel:
      return answer == BoxAnswer::Retry || answer == BoxAnswer::Cancel;
  }
  return false;
}

// Flags of the file box.
inline constexpr std::uint32_t kHideReadOnly = 4;
inline constexpr std::uint32_t kPromptCreate = 8192;

/// How the module speaks to the user outside its dialogs. The front end of the host answers: a person, a script, the
/// command line.
class UserInterface {
 public:
  UserInterface() = default;
  UserInterface(const UserInterface&) = delete;
  UserInterface& operator=(const UserInterface&) = delete;
  virtual ~UserInterface() = default;

  /// Shows a message box and waits for its answer, which is one that `buttons` offers.
  virtual BoxAnswer messageBox(const CString& text, BoxButtons buttons, BoxIcon icon) = 0;
  /// Opens the standard file box in its save form, without a default extension or name: the full path that the user
  /// chose, or empty on Cancel. `filter` is in the framework's format: pairs of label and pattern, each closed by "|",
  /// and one more "|" at the end.
  [[nodiscard]] virtual std::optional<CString> saveFileBox(const CString& filter, std::uint32_t flags) = 0;
  /// Shows a page of a help file: "path::/page". Silently does nothing where there is no help viewer.
  virtual void showHelp(const CString& topic) = 0;
  /// The colour of buttons and dialogs in the user's scheme: 0x00BBGGRR.
  [[nodiscard]] virtual std::uint32_t buttonFaceColour() = 0;
};

}  // namespace lvx::host
