#include "host/image_button.h"

#include <gtest/gtest.h>

namespace lvx::host {
namespace {

/// A themed bitmap button of 24 by 20 with a picture of 16 by 16 and two pixels of frame.
ButtonState plainButton() {
  ButtonState state;
  state.themesActive = true;
  state.image = {ImageKind::Bitmap, 16, 16, false};
  state.content = {2, 2, 22, 18};
  return state;
}

TEST(ImageButton, DrawsItselfAsUsualWithoutThemesOrWithoutAPicture) {
  ButtonState withoutThemes = plainButton();
  withoutThemes.themesActive = false;
  EXPECT_FALSE(imageButtonDrawing(DrawStage::PrePaint, withoutThemes).custom);
  ButtonState withoutPicture = plainButton();
  withoutPicture.image.kind = ImageKind::None;
  EXPECT_FALSE(imageButtonDrawing(DrawStage::PreErase, withoutPicture).custom);
  EXPECT_FALSE(imageButtonDrawing(DrawStage::PreErase, withoutPicture).parentBackground);
  EXPECT_FALSE(imageButtonDrawing(DrawStage::Other, plainButton()).custom);
}

TEST(ImageButton, DrawsTheParentsBackgroundOnlyBeforeErasing) {
  EXPECT_TRUE(imageButtonDrawing(DrawStage::PreErase, plainButton()).parentBackground);
  EXPECT_FALSE(imageButtonDrawing(DrawStage::PrePaint, plainButton()).parentBackground);
}

TEST(ImageButton, FallsBackToItsUsualDrawingWhereTheThemeDoesNotOpen) {
  ButtonState state = plainButton();
  state.themeOpens = false;
  const ButtonDrawing drawing = imageButtonDrawing(DrawStage::PreErase, state);
  EXPECT_FALSE(drawing.custom);
  EXPECT_TRUE(drawing.parentBackground);
}

TEST(ImageButton, ChoosesItsStateByAFixedOrder) {
  struct Row {
    bool disabled, selected, hot, isDefault;
    PushButtonState expected;
  };
  const Row rows[] = {
      {true, true, true, true, PushButtonState::Disabled},   {false, true, true, true, PushButtonState::Pressed},
      {false, false, true, true, PushButtonState::Hot},      {false, false, false, true, PushButtonState::Defaulted},
      {false, false, false, false, PushButtonState::Normal},
  };
  for (const Row& row : rows) {
    ButtonState state = plainButton();
    state.disabled = row.disabled;
    state.selected = row.selected;
    state.hot = row.hot;
    state.isDefault = row.isDefault;
    const ButtonDrawing drawing = imageButtonDrawing(DrawStage::PrePaint, state);
    EXPECT_EQ(drawing.state, row.expected);
    EXPECT_EQ(drawing.pictureDisabled, row.disabled);
  }
}

TEST(ImageButton, PlacesThePictureByTheAlignmentFlags) {
  struct Row {
    std::uint32_t alignment;
    int left, top;
  };
  const Row rows[] = {
      {0, 4, 2},
      {kAlignLeft, 2, 2},
      {kAlignRight, 6, 2},
      {kAlignLeft | kAlignRight, 4, 2},
      {kAlignTop, 4, 2},
      {kAlignBottom, 4, 6},
      {kAlignTop | kAlignBottom, 4, 4},
  };
  for (const Row& row : rows) {
    ButtonState state = plainButton();
    state.content.bottom = (row.alignment & (kAlignTop | kAlignBottom)) != 0 ? 22 : 18;
    state.alignment = row.alignment;
    EXPECT_EQ(imageButtonDrawing(DrawStage::PrePaint, state).picture,
              (Rectangle{row.left, row.top, row.left + 16, row.top + 16}))
        << std::hex << row.alignment;
  }
}

TEST(ImageButton, RoundsTheCentringTowardsZero) {
  ButtonState state = plainButton();
  state.content = {0, 0, 19, 19};
  EXPECT_EQ(imageButtonDrawing(DrawStage::PrePaint, state).picture, (Rectangle{1, 1, 17, 17}));
}

TEST(ImageButton, LeavesAPictureWiderThanTheSpaceAtTheLeft) {
  ButtonState state = plainButton();
  state.content = {2, 2, 12, 18};
  state.alignment = kAlignRight;
  EXPECT_EQ(imageButtonDrawing(DrawStage::PrePaint, state).picture.left, 2);
}

TEST(ImageButton, PlacesAPictureTallerThanTheSpaceAtItsTopButDrawsItWhole) {
  ButtonState state = plainButton();
  state.content = {2, 2, 22, 10};
  state.alignment = kAlignBottom;
  EXPECT_EQ(imageButtonDrawing(DrawStage::PrePaint, state).picture, (Rectangle{4, 2, 20, 18}));
}

TEST(ImageButton, HalvesTheHeightOfAnIconThatHasOnlyItsMask) {
  ButtonState state = plainButton();
  state.image = {ImageKind::Icon, 16, 32, true};
  EXPECT_EQ(imageButtonDrawing(DrawStage::PrePaint, state).picture, (Rectangle{4, 2, 20, 18}));
}

TEST(ImageButton, DrawsTheFocusAroundTheContent) {
  ButtonState state = plainButton();
  EXPECT_FALSE(imageButtonDrawing(DrawStage::PrePaint, state).focusRectangle);
  state.focused = true;
  const ButtonDrawing drawing = imageButtonDrawing(DrawStage::PrePaint, state);
  EXPECT_TRUE(drawing.focusRectangle);
  EXPECT_EQ(drawing.focus, state.content);
}

}  // namespace
}  // namespace lvx::host
