#include "detail/themes.h"

#include "detail/library.h"
#include "host/image_button.h"

namespace lvx::native::detail {

namespace {

/// Themes are a library that a system may lack or a user switch off. It is loaded at the first question and let go when
/// this code is unloaded.
class Themes {
 public:
  [[nodiscard]] bool areThere() const { return static_cast<bool>(library_); }
  [[nodiscard]] bool areActive() const {
    return isAppThemed_ != nullptr && isThemeActive_ != nullptr && open_ != nullptr && close_ != nullptr &&
           drawBackground_ != nullptr && contentRectangle_ != nullptr && isAppThemed_() != FALSE &&
           isThemeActive_() != FALSE;
  }
  [[nodiscard]] HANDLE open(HWND window) const { return open_(window, L"BUTTON"); }
  void close(HANDLE theme) const { close_(theme); }
  void drawParentBackground(HWND window, HDC context, const RECT& rectangle) const {
    if (drawParentBackground_ != nullptr) drawParentBackground_(window, context, &rectangle);
  }
  void drawBackground(HANDLE theme, HDC context, int state, const RECT& rectangle) const {
    drawBackground_(theme, context, kPushButton, state, &rectangle, nullptr);
  }
  [[nodiscard]] RECT contentRectangle(HANDLE theme, HDC context, int state, const RECT& rectangle) const {
    RECT content = rectangle;
    contentRectangle_(theme, context, kPushButton, state, &rectangle, &content);
    return content;
  }

 private:
  static constexpr int kPushButton = 1;

  Library library_{L"UxTheme.dll"};
  BOOL(WINAPI* isAppThemed_)() = library_.find<BOOL(WINAPI*)()>("IsAppThemed");
  BOOL(WINAPI* isThemeActive_)() = library_.find<BOOL(WINAPI*)()>("IsThemeActive");
  HANDLE(WINAPI* open_)(HWND, const wchar_t*) = library_.find<HANDLE(WINAPI*)(HWND, const wchar_t*)>("OpenThemeData");
  HRESULT(WINAPI* close_)(HANDLE) = library_.find<HRESULT(WINAPI*)(HANDLE)>("CloseThemeData");
  HRESULT(WINAPI* drawParentBackground_)
  (HWND, HDC, const RECT*) = library_.find<HRESULT(WINAPI*)(HWND, HDC, const RECT*)>("DrawThemeParentBackground");
  HRESULT(WINAPI* drawBackground_)
  (HANDLE, HDC, int, int, const RECT*, const RECT*) =
      library_.find<HRESULT(WINAPI*)(HANDLE, HDC, int, int, const RECT*, const RECT*)>("DrawThemeBackground");
  HRESULT(WINAPI* contentRectangle_)
  (HANDLE, HDC, int, int, const RECT*,
   RECT*) = library_.find<HRESULT(WINAPI*)(HANDLE, HDC, int, int, const RECT*, RECT*)>("GetThemeBackgroundContentRect");
};

const Themes& themes() {
  static const Themes all;
  return all;
}

HMODULE ownModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(reinterpret_cast<const void*>(&ownModule)), &module);
  return module;
}

/// The controls that the manifest names, kept for as long as this code is loaded.
class ControlsContext {
 public:
  ControlsContext() {
    ACTCTXW wanted{};
    wanted.cbSize = sizeof wanted;
    wanted.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    wanted.hModule = ownModule();
    wanted.lpResourceName = MAKEINTRESOURCEW(2);
    context_ = CreateActCtxW(&wanted);
  }
  ControlsContext(const ControlsContext&) = delete;
  ControlsContext& operator=(const ControlsContext&) = delete;
  ~ControlsContext() {
    if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
  }
  [[nodiscard]] HANDLE get() const { return context_; }

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
};

/// Both generations of controls have the tooltip's class in one library; which one is loaded depends on the context.
void registerControls() {
  static const Library themed(L"comctl32.dll");
  using Register = BOOL(WINAPI*)(const INITCOMMONCONTROLSEX*);
  if (const auto initialize = themed.find<Register>("InitCommonControlsEx")) {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
    if (initialize(&classes) == FALSE) {
      const INITCOMMONCONTROLSEX fewer{sizeof fewer, ICC_WIN95_CLASSES};  // the classic library knows no more
      initialize(&fewer);
    }
  }
}

host::Rectangle rectangleOf(const RECT& rectangle) {
  return {static_cast<int>(rectangle.left), static_cast<int>(rectangle.top), static_cast<int>(rectangle.right),
          static_cast<int>(rectangle.bottom)};
}

RECT rectOf(const host::Rectangle& rectangle) {
  return {rectangle.left, rectangle.top, rectangle.right, rectangle.bottom};
}

/// The image of a button and what is to be handed to the system to draw it.
struct Image {
  host::ButtonImage measures;
  LPARAM handle = 0;
};

Image imageOf(HWND button, LONG_PTR style) {
  Image image;
  if ((style & BS_BITMAP) != 0) {
    image.handle = SendMessageW(button, BM_GETIMAGE, IMAGE_BITMAP, 0);
    BITMAP bitmap{};
    if (image.handle != 0 && GetObjectW(reinterpret_cast<HBITMAP>(image.handle), sizeof bitmap, &bitmap) != 0)
      image.measures = {host::ImageKind::Bitmap, static_cast<int>(bitmap.bmWidth), static_cast<int>(bitmap.bmHeight)};
  } else if ((style & BS_ICON) != 0) {
    image.handle = SendMessageW(button, BM_GETIMAGE, IMAGE_ICON, 0);
    ICONINFO icon{};
    if (image.handle != 0 && GetIconInfo(reinterpret_cast<HICON>(image.handle), &icon) != FALSE) {
      BITMAP bitmap{};
      const bool maskOnly = icon.hbmColor == nullptr;
      if (GetObjectW(maskOnly ? icon.hbmMask : icon.hbmColor, sizeof bitmap, &bitmap) != 0)
        image.measures = {host::ImageKind::Icon, static_cast<int>(bitmap.bmWidth), static_cast<int>(bitmap.bmHeight),
                          maskOnly};
      if (icon.hbmColor != nullptr) DeleteObject(icon.hbmColor);
      if (icon.hbmMask != nullptr) DeleteObject(icon.hbmMask);
    }
  }
  return image;
}

}  // namespace

ThemedControls::ThemedControls() {
  static const ControlsContext context;
  // The themed controls can't do without the library of themes; without it the classic ones do.
  isActive_ =
      themes().areThere() && context.get() != INVALID_HANDLE_VALUE && ActivateActCtx(context.get(), &cookie_) != FALSE;
  registerControls();
}

ThemedControls::~ThemedControls() {
  if (isActive_) DeactivateActCtx(0, cookie_);
}

bool areThemesActive() { return themes().areActive(); }

LRESULT drawPictureButton(const NMCUSTOMDRAW& drawing) {
  const HWND button = drawing.hdr.hwndFrom;
  const LONG_PTR style = GetWindowLongPtrW(button, GWL_STYLE);
  const auto stage = drawing.dwDrawStage == CDDS_PREPAINT   ? host::DrawStage::PrePaint
                     : drawing.dwDrawStage == CDDS_PREERASE ? host::DrawStage::PreErase
                                                            : host::DrawStage::Other;
  const Image image = imageOf(button, style);
  host::ButtonState state;
  state.themesActive = areThemesActive();
  state.disabled = IsWindowEnabled(button) == FALSE;
  state.selected = (drawing.uItemState & CDIS_SELECTED) != 0;
  state.hot = (drawing.uItemState & CDIS_HOT) != 0;
  state.isDefault = (style & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
  state.focused = (drawing.uItemState & CDIS_FOCUS) != 0;
  state.alignment = static_cast<std::uint32_t>(style) & 0xF00U;
  state.image = image.measures;
  const HANDLE theme = state.themesActive ? themes().open(button) : nullptr;
  state.themeOpens = theme != nullptr;
  host::ButtonDrawing wanted = imageButtonDrawing(stage, state);
  if (wanted.custom) {
    state.content =
        rectangleOf(themes().contentRectangle(theme, drawing.hdc, static_cast<int>(wanted.state), drawing.rc));
    wanted = imageButtonDrawing(stage, state);
  }
  if (wanted.parentBackground) themes().drawParentBackground(button, drawing.hdc, drawing.rc);
  if (wanted.custom) {
    themes().drawBackground(theme, drawing.hdc, static_cast<int>(wanted.state), drawing.rc);
    const bool isIcon = image.measures.kind == host::ImageKind::Icon;
    DrawStateW(drawing.hdc, nullptr, nullptr, image.handle, 0, wanted.picture.left, wanted.picture.top,
               wanted.picture.width(), wanted.picture.height(),
               static_cast<UINT>(isIcon ? DST_ICON : DST_BITMAP) |
                   static_cast<UINT>(wanted.pictureDisabled ? DSS_DISABLED : DSS_NORMAL));
    if (wanted.focusRectangle) {
      const RECT focus = rectOf(wanted.focus);
      DrawFocusRect(drawing.hdc, &focus);
    }
  }
  if (theme != nullptr) themes().close(theme);
  return wanted.custom ? CDRF_SKIPDEFAULT : CDRF_DODEFAULT;
}

}  // namespace lvx::native::detail
