#include "host/image_button.h"

#include <algorithm>

namespace lvx::host {

namespace {

PushButtonState pushButtonState(const ButtonState& state) {
  if (state.disabled) return PushButtonState::Disabled;
  if (state.selected) return PushButtonState::Pressed;
  if (state.hot) return PushButtonState::Hot;
  if (state.isDefault) return PushButtonState::Defaulted;
  return PushButtonState::Normal;
}

Rectangle pictureRectangle(const ButtonState& state) {
  const int width = state.image.width;
  // An icon's mask holds the picture twice, one above the other.
  const int height = state.image.maskOnly ? state.image.height / 2 : state.image.height;
  int left = state.content.left;
  if (width <= state.content.width()) {
    if ((state.alignment & kAlignRight) != 0 && (state.alignment & kAlignLeft) == 0)
      left = state.content.right - width;
    else if ((state.alignment & kAlignLeft) == 0 || (state.alignment & kAlignRight) != 0)
      left += (state.content.width() - width) / 2;
  }
  // Vertically a picture taller than the space is placed as if it were as tall as the space.
  const int placedHeight = std::min(height, state.content.height());
  int top = state.content.top;
  if ((state.alignment & kAlignBottom) != 0 && (state.alignment & kAlignTop) == 0)
    top = state.content.bottom - placedHeight;
  else if ((state.alignment & kAlignTop) == 0 || (state.alignment & kAlignBottom) != 0)
    top += (state.content.height() - placedHeight) / 2;
  return {left, top, left + width, top + height};
}

}  // namespace

ButtonDrawing imageButtonDrawing(DrawStage stage, const ButtonState& state) {
  ButtonDrawing drawing;
  if (state.image.kind == ImageKind::None || !state.themesActive || stage == DrawStage::Other) return drawing;
  drawing.parentBackground = stage == DrawStage::PreErase;
  if (!state.themeOpens) return drawing;
  drawing.custom = true;
  drawing.state = pushButtonState(state);
  drawing.picture = pictureRectangle(state);
  drawing.pictureDisabled = state.disabled;
  drawing.focusRectangle = state.focused;
  drawing.focus = state.content;
  return drawing;
}

}  // namespace lvx::host
