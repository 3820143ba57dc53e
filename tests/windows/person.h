#pragma once

#include <array>
#include <functional>
#include <string>
#include <thread>
#include <utility>

// clang-format off
#include <windows.h>
// clang-format on

/// A person before the windows of this process: a thread of its own, while the one that is tested waits for answers.
namespace lvx::test {

/// The dialog of this process that shows up with that title, or any where it is null, takes input and isn't `other`; null
/// after ten seconds.
inline HWND waitForDialog(const wchar_t* title, HWND other = nullptr) {
  for (int i = 0; i < 1000; ++i) {
    HWND found = nullptr;
    while ((found = FindWindowExW(nullptr, found, L"#32770", title)) != nullptr) {
      DWORD process = 0;
      GetWindowThreadProcessId(found, &process);
      if (process == GetCurrentProcessId() && found != other && IsWindowVisible(found) != FALSE &&
          IsWindowEnabled(found) != FALSE)
        return found;
    }
    Sleep(10);
  }
  return nullptr;
}

inline std::wstring textOf(HWND window) {
  std::array<wchar_t, 1024> text{};
  SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  return text.data();
}

/// Types a name into the file box, as this Wine lays it out, and presses a button.
inline void answerFileBox(HWND box, const std::wstring& name, WPARAM button) {
  HWND edit = GetDlgItem(box, 0x47C);  // the name's list, which has the edit within
  if (edit == nullptr) edit = GetDlgItem(box, 0x480);
  SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
  PostMessageW(box, WM_COMMAND, button, 0);
}

/// Does `work` beside the thread that makes it, which waits for its end when this goes.
class Person {
 public:
  explicit Person(std::function<void()> work) : thread_(std::move(work)) {}
  /// With the dialog of that title, once it is there.
  Person(const wchar_t* title, std::function<void(HWND)> work)
      : Person([title, work = std::move(work)] {
          if (const HWND dialog = waitForDialog(title)) {
            Sleep(50);
            work(dialog);
          }
        }) {}
  ~Person() { thread_.join(); }
  Person(const Person&) = delete;
  Person& operator=(const Person&) = delete;

 private:
  std::thread thread_;
};

}  // namespace lvx::test
