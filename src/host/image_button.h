#pragma once

#include <cstdint>

/// How a push button with a picture is drawn under visual themes, as a function from state and sizes to what is drawn
/// where: any toolkit can follow it.
namespace lvx::host {

struct Rectangle {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  [[nodiscard]] constexpr int width() const { return right - left; }
  [[nodiscard]] constexpr int height() const { return bottom - top; }
  bool operator==(const Rectangle&) const = default;
};

/// States of the theme's push button part, by the theme's own numbers.
enum class PushButtonState : std::uint8_t { Normal = 1, Hot = 2, Pressed = 3, Disabled = 4, Defaulted = 5 };

// Alignment flags of a button's style.
inline constexpr std::uint32_t kAlignLeft = 0x100;
inline constexpr std::uint32_t kAlignRight = 0x200;
inline constexpr std::uint32_t kAlignTop = 0x400;
inline constexpr std::uint32_t kAlignBottom = 0x800;

/// Stages of the drawing notification.
enum class DrawStage : std::uint8_t { PrePaint = 1, PreErase = 3, Other = 0 };

enum class ImageKind : std::uint8_t { None, Bitmap, Icon };

/// An image on a button: of an icon without a colour bitmap the mask's height counts, and it holds two pictures.
struct ButtonImage {
  ImageKind kind = ImageKind::None;
  int width = 0;
  int height = 0;
  bool maskOnly = false;
};

struct ButtonState {
  bool themesActive = false;
  bool themeOpens = true;
  bool disabled = false;
  bool selected = false;
  bool hot = false;
  bool isDefault = false;
  bool focused = false;
  std::uint32_t alignment = 0;
  ButtonImage image;
  Rectangle content;  ///< what the theme leaves for the picture inside the item rectangle
};

/// What is to be drawn, in the order of the members.
struct ButtonDrawing {
  /// False: the button draws itself as usual (but for the parent's background where that is set).
  bool custom = false;
  bool parentBackground = false;
  PushButtonState state = PushButtonState::Normal;
  Rectangle picture;
  bool pictureDisabled = false;
  bool focusRectangle = false;
  Rectangle focus;
};

/// The drawing of CImageButtonWithStyle at one stage.
[[nodiscard]] ButtonDrawing imageButtonDrawing(DrawStage stage, const ButtonState& state);

}  // namespace lvx::host
