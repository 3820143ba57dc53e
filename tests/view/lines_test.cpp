#include "view/lines.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::view {
namespace {

using civil::Vec2;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Lines, AreNearWithinOneReachOnly) {
  const Lines lines{{{0, 0}, {10, 0}}, {{20, 5}}};
  EXPECT_NEAR(*distanceTo(lines, {5, 1}, {2, 2}), 0.5, 1e-12);
  EXPECT_FALSE(distanceTo(lines, {5, 3}, {2, 2}));
  EXPECT_FALSE(distanceTo(lines, {15, 0}, {2, 2})) << "the gap isn't bridged";
  EXPECT_NEAR(*distanceTo(lines, {20, 5}, {2, 2}), 0.0, 1e-12) << "a single point counts";
  EXPECT_FALSE(distanceTo({}, {0, 0}, {1, 1}));
  EXPECT_FALSE(distanceTo({{}}, {0, 0}, {1, 1}));
}

TEST(Lines, MeasureHeightsByTheirOwnReach) {
  const Lines lines{{{0, 0}, {10, 0}}};
  EXPECT_NEAR(*distanceTo(lines, {5, 0.5}, {10, 1}), 0.5, 1e-12);
  EXPECT_FALSE(distanceTo(lines, {5, 1.5}, {10, 1}));
}

TEST(Lines, GiveTheirNearestPoint) {
  const Lines lines{{{0, 0}, {1, 0}}, {{1.4, 0}}};
  EXPECT_EQ(nearestPoint(lines, {1.3, 0}, {1, 1})->place, (Vec2{1.4, 0}));
  EXPECT_EQ(nearestPoint(lines, {1.1, 0}, {1, 1})->place, (Vec2{1, 0}));
  EXPECT_FALSE(nearestPoint(lines, {5, 5}, {1, 1}));
}

TEST(Lines, HaveNoElevationInAGap) {
  const Lines lines{{{0, 10}, {10, 20}}, {{20, 30}, {30, 20}}};
  EXPECT_NEAR(*elevationAt(lines, 2.5), 12.5, 1e-12);
  EXPECT_EQ(elevationAt(lines, 10), 20);
  EXPECT_FALSE(elevationAt(lines, 15));
  EXPECT_NEAR(*elevationAt(lines, 25), 25, 1e-12);
  EXPECT_FALSE(elevationAt(lines, 31));
}

TEST(Lines, AreCutAtABoxAndGoOnWhereTheyComeBack) {
  const Lines lines{{{-5, 5}, {5, 5}, {5, 15}, {8, 15}, {8, 5}}};
  EXPECT_THAT(clipped(lines, {0, 0, 10, 10}),
              ElementsAre(ElementsAre(Vec2{0, 5}, Vec2{5, 5}, Vec2{5, 10}), ElementsAre(Vec2{8, 10}, Vec2{8, 5})));
  EXPECT_THAT(clipped(lines, {20, 20, 30, 30}), IsEmpty());
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_THAT(clipped({{{1, 1}, {2, 1}, {3, nan}, {4, 1}, {infinity, 1}, {5, 1}, {6, 1}}}, {0, 0, 10, 10}),
              ElementsAre(ElementsAre(Vec2{1, 1}, Vec2{2, 1}), ElementsAre(Vec2{5, 1}, Vec2{6, 1})));
  civil::Box box;
  extend(box, Vec2{nan, 1});
  extend(box, Vec2{1, infinity});
  EXPECT_TRUE(box.isEmpty());
  EXPECT_THAT(clipped({{{3, 3}}, {{30, 3}}}, {0, 0, 10, 10}), ElementsAre(ElementsAre(Vec2{3, 3})));
}

}  // namespace
}  // namespace lvx::view
