#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "host/dialog_window.h"

/// Dialogs as windows of the system.
namespace lvx::native {

using framework::CString;

/// True where dialogs can be windows on this system.
[[nodiscard]] bool hasWindows();

/// The window of any dialog, made from its template: it knows controls, not dialogs. It keeps to the rules of
/// host::DialogWindow; what it is asked for it reads back from its controls. One object is one opening, worked by one
/// thread.
///
///     int code = WindowDialog(behaviour, mainWindow).runModal();         // a person works it
///
///     WindowDialog window(behaviour, nullptr);                            // the program itself does
///     window.open();
///     window.userTypes(host::kIdOutputStem, L"C:\\out\\road");
///     window.userClicks(host::kIdOk);
///
/// - Tab order is that of the template; Enter presses the default button, Escape and the close mark arrive as Cancel.
/// - A control with a tip shows it while the mouse rests on it.
/// - Buttons with pictures are drawn by the theme where one is active, and by the system's classic edge where not. Themes
///   are looked for when the first dialog opens and given up when the program's or module's code is unloaded.
/// - What the behaviour raises in an event closes the window and is raised again by the call that caused the event.
///
/// On a system without windows open() and runModal() raise std::logic_error.
class WindowDialog final : public host::DialogWindow {
 public:
  /// `parent` is a window of the system or null; it takes no input while the dialog is open.
  WindowDialog(host::DialogBehaviour& behaviour, void* parent);
  ~WindowDialog() override;

  /// Opens the window, lets a person work it and gives the code with which it closed.
  int runModal();

  // ---- for who works the dialog without a person
  /// Makes the window, lets the behaviour fill it and shows it.
  void open();
  /// The code with which the dialog closed, once it did.
  [[nodiscard]] std::optional<int> closedWith() const;
  [[nodiscard]] CString title() const;
  [[nodiscard]] CString tip(int id) const;
  /// Name of the control's picture; empty where it shows none.
  [[nodiscard]] std::string_view picture(int id) const;
  /// The window itself; null while there is none.
  [[nodiscard]] void* handle() const;

  // Each as the system tells the dialog of a user's doing. The control is there, of a fitting kind and enabled; a row is
  // one of the list's.
  void userSelects(int id, int row);
  void userTypes(int id, const CString& text);
  void userTicks(int id, bool on);
  void userClicks(int id);
  /// The close mark.
  void userCloses();
  /// A key goes to whatever has the focus, by its number of the system's (27 is Escape).
  void userPresses(int key);
  /// Lets the window do what it has put off: drawing.
  void settle();

  // ---- what the behaviour does
  void setTitle(const CString& title) override;
  void setText(int id, const CString& text) override;
  [[nodiscard]] CString text(int id) const override;
  void enable(int id, bool enabled) override;
  [[nodiscard]] bool isEnabled(int id) const override;
  void emptyList(int id) override;
  void insertRow(int id, int position, const CString& text) override;
  [[nodiscard]] int rowCount(int id) const override;
  [[nodiscard]] CString rowText(int id, int row) const override;
  void select(int id, int row) override;
  [[nodiscard]] int selection(int id) const override;
  void tick(int id, bool ticked) override;
  [[nodiscard]] bool isTicked(int id) const override;
  void setPicture(int id, const host::PictureBits& picture) override;
  void setTip(int id, const CString& text) override;
  void end(int code) override;

 private:
  struct Window;
  std::unique_ptr<Window> window_;
};

/// Opens every dialog as such a window.
class WindowDialogs final : public host::DialogRunner {
 public:
  int runModal(host::DialogBehaviour& dialog, void* parent) override { return WindowDialog(dialog, parent).runModal(); }
};

}  // namespace lvx::native
