#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "host/dialog_window.h"

namespace lvx::windowless {

using framework::CString;

/// Why a user can't do what was asked of a dialog.
enum class Refusal : std::uint8_t { None, NoSuchControl, WrongKind, Disabled, NoSuchRow };

/// What a user sees of a control.
struct Control {
  const host::ControlTemplate* made = nullptr;
  CString text;
  bool enabled = true;
  bool ticked = false;
  std::vector<CString> rows;
  int row = host::DialogWindow::kNone;
  std::string_view picture;
  CString tip;
};

/// An open dialog that a program works as a user would: the state without a window (DialogState), or a window.
class WorkedDialog {
 public:
  WorkedDialog() = default;
  WorkedDialog(const WorkedDialog&) = delete;
  WorkedDialog& operator=(const WorkedDialog&) = delete;
  virtual ~WorkedDialog() = default;

  // ---- what the user sees
  [[nodiscard]] virtual CString title() const = 0;
  /// The controls in the template's order. They last until the next call.
  [[nodiscard]] virtual std::vector<const Control*> controls() const = 0;
  /// The code with which the dialog closed, once it did.
  [[nodiscard]] virtual std::optional<int> closedWith() const = 0;

  // ---- what the user does; each answers why it couldn't be done
  virtual Refusal userSelects(int id, int row) = 0;
  /// The first row of exactly that text.
  virtual Refusal userSelects(int id, const CString& text) = 0;
  virtual Refusal userTypes(int id, const CString& text) = 0;
  virtual Refusal userTicks(int id, bool on) = 0;
  virtual Refusal userClicks(int id) = 0;
  /// Escape or the close mark.
  virtual void userCloses() = 0;
};

}  // namespace lvx::windowless
