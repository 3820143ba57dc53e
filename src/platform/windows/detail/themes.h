#pragma once

// clang-format off
#include <windows.h>
#include <commctrl.h>
// clang-format on

namespace lvx::native::detail {

/// Makes controls that are created while it lives those that follow themes, where this code brings the system's manifest
/// for them as resource 2 (src/platform/windows/common_controls.rc). Elsewhere they are the classic ones.
class ThemedControls {
 public:
  ThemedControls();
  ThemedControls(const ThemedControls&) = delete;
  ThemedControls& operator=(const ThemedControls&) = delete;
  ~ThemedControls();

 private:
  ULONG_PTR cookie_ = 0;
  bool isActive_ = false;
};

/// True where the user's windows follow a theme.
[[nodiscard]] bool areThemesActive();

/// Answers the drawing notification of a button with a picture by the theme. Gives what the notification wants as its
/// result: CDRF_DODEFAULT where the button draws itself.
[[nodiscard]] LRESULT drawPictureButton(const NMCUSTOMDRAW& drawing);

}  // namespace lvx::native::detail
