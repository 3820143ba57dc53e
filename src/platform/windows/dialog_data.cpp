#include "detail/dialog_data.h"

#include <string_view>

// clang-format off
#include <windows.h>
// clang-format on

namespace lvx::native::detail {

namespace {

using host::ControlKind;

/// The extended form of the system's dialog templates.
class Writer {
 public:
  void word(unsigned value) { words_.push_back(static_cast<std::uint16_t>(value)); }
  void doubleWord(std::uint32_t value) {
    word(value & 0xFFFFU);
    word(value >> 16);
  }
  void text(std::wstring_view text) {
    for (const wchar_t character : text) word(static_cast<std::uint16_t>(character));
    word(0);
  }
  void align() {
    if (words_.size() % 2 != 0) word(0);
  }
  [[nodiscard]] std::vector<std::uint16_t> take() { return std::move(words_); }

 private:
  std::vector<std::uint16_t> words_;
};

// The system's numbers of its window classes in templates.
constexpr unsigned kButton = 0x80;
constexpr unsigned kEdit = 0x81;
constexpr unsigned kStatic = 0x82;
constexpr unsigned kComboBox = 0x85;

struct WindowKind {
  unsigned windowClass = kStatic;
  DWORD style = 0;
  DWORD extendedStyle = 0;
};

WindowKind windowKind(ControlKind kind) {
  switch (kind) {
    case ControlKind::PushButton:
      return {kButton, BS_PUSHBUTTON | WS_TABSTOP};
    case ControlKind::DefaultButton:
      return {kButton, BS_DEFPUSHBUTTON | WS_TABSTOP};
    case ControlKind::PictureButton:
      return {kButton, BS_PUSHBUTTON | BS_BITMAP | WS_TABSTOP};
    case ControlKind::GroupBox:
      return {kButton, BS_GROUPBOX};
    case ControlKind::Label:
      return {kStatic, SS_LEFT};
    case ControlKind::Picture:
      return {kStatic, SS_BITMAP};
    case ControlKind::DropDownList:
      return {kComboBox, CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP};
    case ControlKind::CheckBox:
      return {kButton, BS_AUTOCHECKBOX | WS_TABSTOP};
    case ControlKind::EditBox:
      return {kEdit, ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE};
  }
  return {};
}

void writeRectangle(Writer& writer, const host::DialogUnits& rectangle) {
  for (const int edge : {rectangle.x, rectangle.y, rectangle.width, rectangle.height})
    writer.word(static_cast<std::uint16_t>(edge));
}

}  // namespace

std::vector<std::uint16_t> dialogData(const host::DialogTemplate& made) {
  Writer writer;
  writer.word(1);       // version of the extended form
  writer.word(0xFFFF);  // its mark
  writer.doubleWord(0);
  writer.doubleWord(0);
  writer.doubleWord(DS_SETFONT | DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU);
  writer.word(static_cast<unsigned>(made.controls.size()));
  writeRectangle(writer, {0, 0, made.width, made.height});
  writer.word(0);  // no menu
  writer.word(0);  // the system's own class of dialogs
  writer.text(made.title);
  writer.word(static_cast<unsigned>(made.fontPoints));
  writer.word(FW_NORMAL);
  writer.word(static_cast<unsigned>(DEFAULT_CHARSET) << 8U);  // not italic, any character set
  writer.text(made.fontName);
  for (const host::ControlTemplate& control : made.controls) {
    const WindowKind kind = windowKind(control.kind);
    writer.align();
    writer.doubleWord(0);
    writer.doubleWord(kind.extendedStyle);
    writer.doubleWord(kind.style | WS_CHILD | WS_VISIBLE | (control.startsEnabled ? 0U : WS_DISABLED));
    writeRectangle(writer, control.rectangle);
    writer.doubleWord(static_cast<std::uint32_t>(control.id));
    writer.word(0xFFFF);
    writer.word(kind.windowClass);
    writer.text(control.text);
    writer.word(0);  // no data of its own
  }
  writer.align();
  return writer.take();
}

}  // namespace lvx::native::detail
