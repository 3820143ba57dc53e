#pragma once

#include <cstdint>

#include "framework/text.h"

namespace lvx::host {

using framework::CString;

enum class BoxButtons : std::uint8_t { Ok, YesNo, RetryCancel };
enum class BoxIcon : std::uint8_t { None, Stop, Question, Warning };
/// The values are the codes with which a dialog closes.
enum class BoxAnswer : std::uint8_t { Ok = 1, Cancel = 2, Retry = 4, Yes = 6, No = 7 };

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
};

}  // namespace lvx::host
