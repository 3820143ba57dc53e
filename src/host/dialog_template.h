#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// Dialogs as data: what controls there are and where they lie, so that every front end builds its window from the same
/// table.
namespace lvx::host {

enum class ControlKind : std::uint8_t {
  PushButton,
  DefaultButton,
  PictureButton,
  GroupBox,
  Label,
  Picture,
  DropDownList,
  CheckBox,
  EditBox,
};

/// A rectangle in dialog units: a quarter of the average character width of the dialog's font across, an eighth of its
/// height down. For a drop-down list the height is that of the opened list.
struct DialogUnits {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// One control. A caption that begins with a star is a placeholder: the message file's text replaces it at each opening.
/// `&` marks an access key, `&&` is one ampersand.
struct ControlTemplate {
  int id = 0;
  ControlKind kind = ControlKind::Label;
  std::wstring_view text;
  DialogUnits rectangle;
  bool startsEnabled = true;
};

/// A dialog; its controls stand in tab order.
struct DialogTemplate {
  /// Name of the dialog's class, for transcripts and reports of misuse.
  std::string_view name;
  std::wstring_view title;
  int width = 0;
  int height = 0;
  std::span<const ControlTemplate> controls;
  std::wstring_view fontName = L"MS Shell Dlg";
  int fontPoints = 8;

  /// The control of that number, or null.
  [[nodiscard]] constexpr const ControlTemplate* find(int id) const {
    for (const ControlTemplate& control : controls)
      if (control.id == id) return &control;
    return nullptr;
  }
};

}  // namespace lvx::host
