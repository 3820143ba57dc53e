#include "native/window_interface.h"

#include <algorithm>
#include <array>
#include <vector>

// clang-format off
#include <windows.h>
#include <commdlg.h>
// clang-format on

namespace lvx::native {

using host::BoxAnswer;
using host::BoxButtons;
using host::BoxIcon;

namespace {

/// As long as a path of the system's can be.
constexpr std::size_t kLongestPath = 32768;

HWND ownerOf(void* mainWindow) {
  const HWND active = GetActiveWindow();
  return active != nullptr ? active : static_cast<HWND>(mainWindow);
}

UINT styleOf(BoxButtons buttons, BoxIcon icon) {
  UINT style = 0;
  switch (buttons) {
    case BoxButtons::Ok:
      style |= MB_OK;
      break;
    case BoxButtons::YesNo:
      style |= MB_YESNO;
      break;
    case BoxButtons::RetryCancel:
      style |= MB_RETRYCANCEL;
      break;
  }
  switch (icon) {
    case BoxIcon::None:
      break;
    case BoxIcon::Stop:
      style |= MB_ICONHAND;
      break;
    case BoxIcon::Question:
      style |= MB_ICONQUESTION;
      break;
    case BoxIcon::Warning:
      style |= MB_ICONEXCLAMATION;
      break;
  }
  return style;
}

/// What a box answers that couldn't be shown at all.
BoxAnswer weakestAnswer(BoxButtons buttons) {
  if (buttons == BoxButtons::YesNo) return BoxAnswer::No;
  return buttons == BoxButtons::Ok ? BoxAnswer::Ok : BoxAnswer::Cancel;
}

/// The viewer of compiled help. Its windows may stand open longer than whoever opened them, so it is never let go.
class HelpViewer {
 public:
  HelpViewer() {
    HMODULE library = nullptr;
    if (const CString path = registeredPath(); !path.empty()) library = LoadLibraryW(path.c_str());
    if (library == nullptr) library = LoadLibraryW(L"hhctrl.ocx");
    if (library == nullptr) return;
    constexpr WORD kHtmlHelpW = 15;  // this function has a number alone
    show_ = reinterpret_cast<Show>(
        reinterpret_cast<void*>(GetProcAddress(library, reinterpret_cast<const char*>(MAKEINTRESOURCEA(kHtmlHelpW)))));
  }
  void show(HWND owner, const CString& topic) const {
    constexpr UINT kDisplayTopic = 0;
    if (show_ != nullptr) show_(owner, topic.c_str(), kDisplayTopic, 0);
  }

 private:
  using Show = HWND(WINAPI*)(HWND, const wchar_t*, UINT, DWORD_PTR);

  static CString registeredPath() {
    constexpr const wchar_t* kServer = L"CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
    std::vector<wchar_t> path(kLongestPath);
    auto size = static_cast<DWORD>(path.size() * sizeof(wchar_t));
    // Environment variables in the entry are expanded on the way.
    const LSTATUS error = RegGetValueW(HKEY_CLASSES_ROOT, kServer, nullptr, RRF_RT_REG_SZ, nullptr, path.data(), &size);
    return error == ERROR_SUCCESS ? CString(path.data()) : CString();
  }

  Show show_ = nullptr;
};

}  // namespace

BoxAnswer WindowInterface::messageBox(const CString& text, BoxButtons buttons, BoxIcon icon) {
  const int pressed = MessageBoxW(ownerOf(mainWindow_), text.c_str(), title_.c_str(), styleOf(buttons, icon));
  const auto answer = static_cast<BoxAnswer>(pressed);
  return pressed > 0 && host::offers(buttons, answer) ? answer : weakestAnswer(buttons);
}

std::optional<CString> WindowInterface::saveFileBox(const CString& filter, std::uint32_t flags) {
  // The framework's bars are the system's zeros; the text's own end is the second one behind the last pair.
  CString zeros = filter;
  std::replace(zeros.begin(), zeros.end(), L'|', L'\0');
  zeros.append(2, L'\0');
  std::vector<wchar_t> path(kLongestPath);

  OPENFILENAMEW box{};
  box.lStructSize = sizeof box;
  box.hwndOwner = ownerOf(mainWindow_);
  box.lpstrFilter = filter.empty() ? nullptr : zeros.c_str();
  box.nFilterIndex = 1;
  box.lpstrFile = path.data();
  box.nMaxFile = static_cast<DWORD>(path.size());
  box.Flags = flags | OFN_EXPLORER | OFN_ENABLESIZING | OFN_NOCHANGEDIR;
  if (GetSaveFileNameW(&box) == FALSE) return std::nullopt;
  return CString(path.data());
}

void WindowInterface::showHelp(const CString& topic) {
  static const HelpViewer viewer;
  viewer.show(ownerOf(mainWindow_), topic);
}

std::uint32_t WindowInterface::buttonFaceColour() { return GetSysColor(COLOR_BTNFACE); }

}  // namespace lvx::native
