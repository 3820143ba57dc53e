#pragma once

#include <optional>
#include <vector>

#include "civil/drawing.h"
#include "host/user_interface.h"

namespace lvx::host {
class DialogRunner;
}

namespace lvx::runtime {

/// Who answers for the user: the command line, a script, the desktop. It must outlive the host.
class FrontEnd : public host::UserInterface {
 public:
  /// Runs a module's dialogs.
  [[nodiscard]] virtual host::DialogRunner& dialogs() = 0;
  /// False where modules are to show dialogs, boxes and help in windows of their own, over the main window.
  [[nodiscard]] virtual bool hasWindows() const { return true; }
  /// The host's main window for dialogs to stand over; only the front end itself understands it.
  [[nodiscard]] virtual void* mainWindow() = 0;
  /// Prints on the command line.
  virtual void console(const host::CString& text) = 0;
  /// Lets the user pick one object; empty when nothing was picked.
  [[nodiscard]] virtual std::optional<civil::Handle> pickEntity(const host::CString& prompt) = 0;
  /// Lets the user select any number of objects of the class `classTag` (empty: of any class); empty when given up.
  [[nodiscard]] virtual std::optional<std::vector<civil::Handle>> selectEntities(const host::CString& addPrompt,
                                                                                 const host::CString& removePrompt,
                                                                                 const host::CString& classTag) = 0;
};

}  // namespace lvx::runtime
