#pragma once

#include <optional>
#include <utility>

#include "framework/text.h"
#include "host/user_interface.h"

namespace lvx::native {

using framework::CString;

/// Message boxes, the file box, help and colours as the system gives them. All stand over the active window of the calling
/// thread, which takes no input meanwhile: an open dialog, else the main window.
///
/// - A message box has the title given here, the buttons and the icon that are asked for, and the system's words on its
///   buttons. A box with one button answers Ok whatever closes it; where Retry and Cancel are offered, Escape is Cancel;
///   between Yes and No there is no way out but one of them.
/// - The file box is that for saving, without a default extension or name; the program's working folder stays what it is.
/// - Help pages are shown by the system's viewer for compiled help, which is looked for at the first page: by its entry in
///   the registry, then by its name. Without a viewer nothing happens, then and later; a page or file that isn't there is
///   the viewer's affair.
///
/// On a system without windows every box is given up: the message box answers its weakest button (Ok, No, Cancel).
class WindowInterface final : public host::UserInterface {
 public:
  /// `mainWindow` is a window of the system or null.
  WindowInterface(void* mainWindow, CString title) : mainWindow_(mainWindow), title_(std::move(title)) {}

  host::BoxAnswer messageBox(const CString& text, host::BoxButtons buttons, host::BoxIcon icon) override;
  [[nodiscard]] std::optional<CString> saveFileBox(const CString& filter, std::uint32_t flags) override;
  void showHelp(const CString& topic) override;
  [[nodiscard]] std::uint32_t buttonFaceColour() override;

 private:
  [[maybe_unused]] void* mainWindow_;  // where the system has no such windows, nobody asks
  CString title_;
};

}  // namespace lvx::native
