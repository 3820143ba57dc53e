#include "view/viewport.h"

#include <gtest/gtest.h>

namespace lvx::view {
namespace {

TEST(Viewport, ShowsAWholeBoxAroundItsMiddle) {
  Viewport port(800, 600);
  port.show({0, 0, 100, 50}, 0.1);
  EXPECT_DOUBLE_EQ(port.scale(), 6.4);
  EXPECT_EQ(port.toPixels({50, 25}), (civil::Vec2{400, 300}));
  const civil::Box visible = port.visible();
  EXPECT_LT(visible.minX, 0);
  EXPECT_GT(visible.maxX, 100);
  EXPECT_LT(visible.minY, 0);
  EXPECT_GT(visible.maxY, 50);
}

TEST(Viewport, KeepsWhatLiesUnderTheMouseWhileItZooms) {
  Viewport port(640, 480);
  port.setCentre({2'600'000, 1'200'000});
  const civil::Vec2 mouse{100, 50};
  const civil::Vec2 before = port.toDrawing(mouse);
  port.zoomAt(mouse, 3.7);
  EXPECT_NEAR(port.toDrawing(mouse).x, before.x, 1e-6);
  EXPECT_NEAR(port.toDrawing(mouse).y, before.y, 1e-6);
}

TEST(Viewport, StopsZoomingAtItsLimits) {
  Viewport port(640, 480);
  for (int turn = 0; turn < 200; ++turn) port.zoomAt({0, 0}, 10.0);
  EXPECT_EQ(port.scale(), Viewport::kMostScale);
  for (int turn = 0; turn < 200; ++turn) port.zoomAt({0, 0}, 0.1);
  EXPECT_EQ(port.scale(), Viewport::kLeastScale);
}

TEST(Viewport, MovesTheDrawingWithTheMouse) {
  Viewport port(100, 100);
  port.setScale(2);
  port.setExaggeration(5);
  const civil::Vec2 before = port.toDrawing({50, 50});
  port.panBy({10, 20});
  EXPECT_EQ(port.toDrawing({60, 70}), before);
}

TEST(Viewport, DrawsHeightsLarger) {
  Viewport port(1000, 500);
  port.setExaggeration(10);
  port.show({0, 400, 100, 402}, 0.0);
  EXPECT_DOUBLE_EQ(port.scale(), 10);
  EXPECT_EQ(port.toPixels({0, 402}), (civil::Vec2{0, 150}));
}

TEST(Viewport, IsLeftAloneByAnEmptyBoxAndCentredOnAPlace) {
  Viewport port(100, 100);
  port.setScale(3);
  const Viewport before = port;
  port.show({});
  EXPECT_EQ(port, before);
  port.show({7, 8, 7, 8});
  EXPECT_EQ(port.centre(), (civil::Vec2{7, 8}));
  EXPECT_EQ(port.scale(), 3);
}

}  // namespace
}  // namespace lvx::view
