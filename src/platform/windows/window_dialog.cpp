#include "native/window_dialog.h"

#include <algorithm>
#include <array>
#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

// clang-format off
#include <windows.h>
#include <commctrl.h>
// clang-format on

#include "detail/dialog_data.h"
#include "detail/themes.h"
#include "framework/exceptions.h"
#include "host/picture_bits.h"

namespace lvx::native {

using host::ControlKind;

namespace {

/// As many characters as a tip of the system's takes, with its end.
constexpr std::size_t kLongestTip = 1024;

CString windowText(HWND window) {
  // The text may change between the two questions only by this thread.
  CString text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

LPARAM textParameter(const CString& text) { return reinterpret_cast<LPARAM>(text.c_str()); }

HBITMAP makeBitmap(const host::PictureBits& picture) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = host::kPictureSide;
  info.bmiHeader.biHeight = -host::kPictureSide;  // rows from the top
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap != nullptr) std::copy(picture.bytes.begin(), picture.bytes.end(), static_cast<std::uint8_t*>(bits));
  return bitmap;
}

}  // namespace

bool hasWindows() { return true; }

/// The window and what belongs to it.
struct WindowDialog::Window {
  struct Control {
    const host::ControlTemplate* made = nullptr;
    HWND window = nullptr;
    HBITMAP bitmap = nullptr;
    std::string_view picture;
    bool hasTip = false;
  };

  WindowDialog* self = nullptr;
  host::DialogBehaviour* behaviour = nullptr;
  HWND parent = nullptr;
  HWND dialog = nullptr;
  HWND tips = nullptr;
  std::vector<Control> controls;
  std::optional<int> closedWith;
  std::exception_ptr failure;
  bool isOpening = true;
  bool wasParentEnabled = false;

  [[nodiscard]] const Control* find(int id) const {
    const auto found =
        std::find_if(controls.begin(), controls.end(), [id](const Control& each) { return each.made->id == id; });
    return found == controls.end() ? nullptr : &*found;
  }
  [[nodiscard]] Control* find(int id) { return const_cast<Control*>(std::as_const(*this).find(id)); }
  /// The control's window where it is of that kind; else null.
  [[nodiscard]] HWND find(int id, ControlKind kind) const {
    const Control* control = find(id);
    return control != nullptr && control->made->kind == kind ? control->window : nullptr;
  }
  [[nodiscard]] bool isOver() const { return closedWith.has_value() || failure != nullptr; }

  /// Runs an event of the behaviour's; nothing that it raises passes through the system.
  template <class Event>
  void run(Event event) {
    if (isOver()) return;
    try {
      event();
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  }

  void make();
  void fill(HWND made);
  void close();
  /// After an event that was caused from here: the window goes where the dialog is over, and what was raised goes on.
  void afterEvent() {
    if (!isOver()) return;
    close();
    if (failure) std::rethrow_exception(std::exchange(failure, nullptr));
  }
  void command(unsigned id, unsigned notification, HWND control);
  void dispatch(MSG& message);
  static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);
};

// ---------------------------------------------------------------- the window's life

INT_PTR CALLBACK WindowDialog::Window::procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, GWLP_USERDATA, second);
    reinterpret_cast<Window*>(second)->fill(window);
    return TRUE;  // the system gives the focus to the first control that takes it
  }
  auto* const own = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (own == nullptr) return FALSE;
  switch (message) {
    case WM_COMMAND:
      own->command(LOWORD(first), HIWORD(first), reinterpret_cast<HWND>(second));
      return TRUE;
    case WM_CLOSE:
      own->run([&] { own->behaviour->onClick(*own->self, host::kIdCancel); });
      return TRUE;
    case WM_NOTIFY: {
      const auto* const header = reinterpret_cast<const NMHDR*>(second);
      if (header->code != NM_CUSTOMDRAW) return FALSE;
      const auto control = std::find_if(own->controls.begin(), own->controls.end(), [&](const Control& each) {
        return each.window == header->hwndFrom && each.made->kind == ControlKind::PictureButton;
      });
      if (control == own->controls.end()) return FALSE;
      SetWindowLongPtrW(window, DWLP_MSGRESULT,
                        detail::drawPictureButton(*reinterpret_cast<const NMCUSTOMDRAW*>(second)));
      return TRUE;
    }
    default:
      return FALSE;
  }
}

void WindowDialog::Window::fill(HWND made) {
  dialog = made;
  HWND child = GetWindow(dialog, GW_CHILD);
  for (const host::ControlTemplate& control : behaviour->dialogTemplate().controls) {
    Control& own = controls.emplace_back();
    own.made = &control;
    own.window = child;
    child = GetWindow(child, GW_HWNDNEXT);
  }
  // As the dialog framework makes it: it shows whether the window is active or not, and keeps an ampersand in a path.
  tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                         CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, nullptr, nullptr);
  if (tips != nullptr) SendMessageW(tips, TTM_ACTIVATE, TRUE, 0);
  run([this] { behaviour->onOpening(*self); });
  isOpening = false;
}

void WindowDialog::Window::make() {
  const std::vector<std::uint16_t> data = detail::dialogData(behaviour->dialogTemplate());
  if (parent != nullptr) wasParentEnabled = EnableWindow(parent, FALSE) == FALSE;
  {
    const detail::ThemedControls themed;
    CreateDialogIndirectParamW(GetModuleHandleW(nullptr), reinterpret_cast<const DLGTEMPLATE*>(data.data()), parent,
                               &Window::procedure, reinterpret_cast<LPARAM>(this));
  }
  if (dialog == nullptr) {
    close();
    throw std::runtime_error("the system makes no window for the dialog " +
                             std::string(behaviour->dialogTemplate().name));
  }
  afterEvent();
}

void WindowDialog::Window::close() {
  // The parent takes input again before the dialog goes, or another program's window would come to the front.
  if (wasParentEnabled) EnableWindow(parent, TRUE);
  wasParentEnabled = false;
  if (tips != nullptr) DestroyWindow(std::exchange(tips, nullptr));
  if (dialog != nullptr) DestroyWindow(std::exchange(dialog, nullptr));
  for (Control& control : controls) {
    control.window = nullptr;
    if (control.bitmap != nullptr) DeleteObject(std::exchange(control.bitmap, nullptr));
  }
}

// ---------------------------------------------------------------- what a user does

void WindowDialog::Window::command(unsigned id, unsigned notification, HWND control) {
  if (isOpening) return;
  const auto found =
      std::find_if(controls.begin(), controls.end(), [&](const Control& each) { return each.window == control; });
  // Enter and Escape name the button alone.
  const int number = static_cast<std::int16_t>(id);
  const Control* const named = control != nullptr && found != controls.end() ? &*found : find(number);
  const ControlKind kind = named == nullptr ? ControlKind::PushButton : named->made->kind;
  if (named != nullptr && IsWindowEnabled(named->window) == FALSE) return;
  switch (kind) {
    case ControlKind::PushButton:
    case ControlKind::DefaultButton:
    case ControlKind::PictureButton:
      if (notification == BN_CLICKED) run([&] { behaviour->onClick(*self, number); });
      break;
    case ControlKind::DropDownList:
      if (notification == CBN_SELCHANGE) run([&] { behaviour->onSelectionChanged(*self, number); });
      break;
    case ControlKind::EditBox:
      if (notification == EN_CHANGE) run([&] { behaviour->onTextChanged(*self, number); });
      break;
    case ControlKind::CheckBox:
    case ControlKind::GroupBox:
    case ControlKind::Label:
    case ControlKind::Picture:
      break;
  }
}

/// Hands a message to whom it is for.
void WindowDialog::Window::dispatch(MSG& message) {
  if (message.message == WM_MOUSEMOVE && tips != nullptr) {
    // The tip hears of the mouse over a control, whatever window within the control it is over.
    MSG relayed = message;
    for (HWND above = GetParent(relayed.hwnd); above != nullptr && above != dialog; above = GetParent(above))
      relayed.hwnd = above;
    SendMessageW(tips, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&relayed));
  }
  if (IsDialogMessageW(dialog, &message) != FALSE) return;
  TranslateMessage(&message);
  DispatchMessageW(&message);
}

WindowDialog::WindowDialog(host::DialogBehaviour& behaviour, void* parent) : window_(std::make_unique<Window>()) {
  window_->self = this;
  window_->behaviour = &behaviour;
  window_->parent = static_cast<HWND>(parent);
}

WindowDialog::~WindowDialog() { window_->close(); }

void WindowDialog::open() {
  window_->make();
  if (window_->isOver()) return;
  ShowWindow(window_->dialog, SW_SHOW);
  settle();
}

int WindowDialog::runModal() {
  open();
  while (!window_->isOver()) {
    MSG message;
    const BOOL received = GetMessageW(&message, nullptr, 0, 0);
    if (received <= 0) {
      // The program ends: the dialog is given up, and whoever runs the program hears of it again.
      if (received == 0) PostQuitMessage(static_cast<int>(message.wParam));
      window_->run([this] { window_->behaviour->onClick(*this, host::kIdCancel); });
      if (!window_->isOver()) window_->closedWith = host::kIdCancel;
    } else {
      window_->dispatch(message);
    }
  }
  window_->afterEvent();
  return *window_->closedWith;
}

std::optional<int> WindowDialog::closedWith() const { return window_->closedWith; }

void WindowDialog::settle() {
  MSG message;
  while (window_->dialog != nullptr && !window_->isOver() &&
         PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      break;
    }
    window_->dispatch(message);
  }
  window_->afterEvent();
}

void WindowDialog::userSelects(int id, int row) {
  const HWND list = window_->find(id, ControlKind::DropDownList);
  SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
  SendMessageW(window_->dialog, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(id), CBN_SELCHANGE),
               reinterpret_cast<LPARAM>(list));
  window_->afterEvent();
}

void WindowDialog::userTypes(int id, const CString& text) {
  SendMessageW(window_->find(id, ControlKind::EditBox), WM_SETTEXT, 0, textParameter(text));
  window_->afterEvent();
}

void WindowDialog::userTicks(int id, bool on) {
  if (isTicked(id) != on) SendMessageW(window_->find(id, ControlKind::CheckBox), BM_CLICK, 0, 0);
  window_->afterEvent();
}

void WindowDialog::userClicks(int id) {
  if (const Window::Control* control = window_->find(id)) {
    SetActiveWindow(window_->dialog);  // a click on a button of another window may be lost
    SendMessageW(control->window, BM_CLICK, 0, 0);
  }
  window_->afterEvent();
}

void WindowDialog::userCloses() {
  SendMessageW(window_->dialog, WM_CLOSE, 0, 0);
  window_->afterEvent();
}

void WindowDialog::userPresses(int key) {
  const HWND focused = GetFocus();
  const HWND target = focused != nullptr && IsChild(window_->dialog, focused) != FALSE ? focused : window_->dialog;
  for (const UINT kind : {static_cast<UINT>(WM_KEYDOWN), static_cast<UINT>(WM_KEYUP)}) {
    if (window_->isOver()) break;
    MSG message{};
    message.hwnd = target;
    message.message = kind;
    message.wParam = static_cast<WPARAM>(key);
    message.lParam = kind == WM_KEYUP ? static_cast<LPARAM>(0xC0000001) : 1;
    window_->dispatch(message);
  }
  settle();
}

void* WindowDialog::handle() const { return window_->dialog; }

// ---------------------------------------------------------------- what the dialog shows

CString WindowDialog::title() const { return windowText(window_->dialog); }

void WindowDialog::setTitle(const CString& title) { SetWindowTextW(window_->dialog, title.c_str()); }

void WindowDialog::setText(int id, const CString& text) {
  // An edit box tells its dialog of the change by itself.
  const Window::Control* control = window_->find(id);
  if (control != nullptr && control->made->kind != ControlKind::DropDownList)
    SetWindowTextW(control->window, text.c_str());
}

CString WindowDialog::text(int id) const {
  const Window::Control* control = window_->find(id);
  const bool hasText = control != nullptr && control->made->kind != ControlKind::DropDownList;
  return hasText ? windowText(control->window) : CString();
}

void WindowDialog::enable(int id, bool enabled) {
  if (const Window::Control* control = window_->find(id)) EnableWindow(control->window, enabled ? TRUE : FALSE);
}

bool WindowDialog::isEnabled(int id) const {
  const Window::Control* control = window_->find(id);
  return control != nullptr && IsWindowEnabled(control->window) != FALSE;
}

void WindowDialog::tick(int id, bool ticked) {
  if (const HWND box = window_->find(id, ControlKind::CheckBox))
    SendMessageW(box, BM_SETCHECK, ticked ? BST_CHECKED : BST_UNCHECKED, 0);
}

bool WindowDialog::isTicked(int id) const {
  const HWND box = window_->find(id, ControlKind::CheckBox);
  return box != nullptr && SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void WindowDialog::end(int code) {
  if (!window_->closedWith) window_->closedWith = code;
}

// ---------------------------------------------------------------- lists

void WindowDialog::emptyList(int id) {
  if (const HWND list = window_->find(id, ControlKind::DropDownList)) SendMessageW(list, CB_RESETCONTENT, 0, 0);
}

void WindowDialog::insertRow(int id, int position, const CString& text) {
  const HWND list = window_->find(id, ControlKind::DropDownList);
  if (list == nullptr || position < 0 || position > rowCount(id)) return;
  SendMessageW(list, CB_INSERTSTRING, static_cast<WPARAM>(position), textParameter(text));
}

int WindowDialog::rowCount(int id) const {
  const HWND list = window_->find(id, ControlKind::DropDownList);
  return list == nullptr ? 0 : static_cast<int>(SendMessageW(list, CB_GETCOUNT, 0, 0));
}

CString WindowDialog::rowText(int id, int row) const {
  if (row < 0 || row >= rowCount(id)) throw framework::InvalidArgumentException();
  const HWND list = window_->find(id, ControlKind::DropDownList);
  const LRESULT length = SendMessageW(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(row), 0);
  CString text(static_cast<std::size_t>(std::max<LRESULT>(length, 0)) + 1, L'\0');
  const LRESULT copied =
      SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(std::max<LRESULT>(copied, 0)));
  return text;
}

void WindowDialog::select(int id, int row) {
  const HWND list = window_->find(id, ControlKind::DropDownList);
  const bool isRow = row >= 0 && row < rowCount(id);
  if (list != nullptr) SendMessageW(list, CB_SETCURSEL, isRow ? static_cast<WPARAM>(row) : static_cast<WPARAM>(-1), 0);
}

int WindowDialog::selection(int id) const {
  const HWND list = window_->find(id, ControlKind::DropDownList);
  if (list == nullptr) return kNone;
  const LRESULT row = SendMessageW(list, CB_GETCURSEL, 0, 0);
  return row == CB_ERR ? kNone : static_cast<int>(row);
}

// ---------------------------------------------------------------- pictures and tips

void WindowDialog::setPicture(int id, const host::PictureBits& picture) {
  Window::Control* const control = window_->find(id);
  if (control == nullptr) return;
  const bool isStatic = control->made->kind == ControlKind::Picture;
  if (!isStatic && control->made->kind != ControlKind::PictureButton) return;
  const HBITMAP bitmap = makeBitmap(picture);
  if (bitmap == nullptr) return;
  SendMessageW(control->window, isStatic ? STM_SETIMAGE : BM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap));
  if (control->bitmap != nullptr) DeleteObject(control->bitmap);
  control->bitmap = bitmap;
  control->picture = picture.name;
}

std::string_view WindowDialog::picture(int id) const {
  const Window::Control* const control = window_->find(id);
  if (control == nullptr || control->bitmap == nullptr) return {};
  const UINT question = control->made->kind == ControlKind::Picture ? STM_GETIMAGE : BM_GETIMAGE;
  return SendMessageW(control->window, question, IMAGE_BITMAP, 0) != 0 ? control->picture : std::string_view();
}

namespace {

/// A tool of the dialog's tooltip: a control by its window.
TTTOOLINFOW toolOf(HWND dialog, HWND control, wchar_t* text) {
  TTTOOLINFOW tool{};
  tool.cbSize = TTTOOLINFOW_V1_SIZE;  // both generations of the controls know it
  tool.uFlags = TTF_IDISHWND;
  tool.hwnd = dialog;
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  tool.lpszText = text;
  return tool;
}

}  // namespace

void WindowDialog::setTip(int id, const CString& text) {
  Window::Control* const control = window_->find(id);
  if (control == nullptr || window_->tips == nullptr) return;
  CString shown = text.substr(0, kLongestTip - 1);
  TTTOOLINFOW tool = toolOf(window_->dialog, control->window, shown.data());
  SendMessageW(window_->tips, control->hasTip ? TTM_UPDATETIPTEXTW : TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  control->hasTip = true;
}

CString WindowDialog::tip(int id) const {
  const Window::Control* const control = window_->find(id);
  if (control == nullptr || !control->hasTip) return {};
  std::array<wchar_t, kLongestTip + 1> text{};
  TTTOOLINFOW tool = toolOf(window_->dialog, control->window, text.data());
  SendMessageW(window_->tips, TTM_GETTEXTW, kLongestTip, reinterpret_cast<LPARAM>(&tool));
  return text.data();
}

}  // namespace lvx::native
