// What the mouse measures with: the ground below it, what it snaps to, lengths and areas.
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "support/random_numbers.h"
#include "view/ground_place.h"
#include "view/measurement.h"
#include "view/snap.h"

namespace lvx::view {
namespace {

using civil::Drawing;
using civil::kPi;
using civil::TinSurface;
using civil::Vec2;
using civil::Vec3;

constexpr civil::Handle kAxis = 1;
constexpr civil::Handle kLine = 2;
constexpr civil::Handle kLower = 3;
constexpr civil::Handle kUpper = 4;
constexpr civil::Handle kNumbered = 5;
constexpr civil::Handle kFlat = 6;

/// An axis to the north at x = 50 in two elements of 40 and 60; a sample line across it at 20. Ground from 0 to 100 that
/// falls by a tenth to the east; upon it a square from 60 to 80 that rises by a fifth to the north. Two points.
Drawing drawing() {
  Drawing made;
  auto axis = std::make_unique<civil::AlignmentObject>();
  axis->handle = kAxis;
  axis->name = "Axis";
  axis->geometry = civil::Alignment::fromText("start 1000 at 50 0; line 40; line 60");
  axis->sampleLineGroups.push_back({9, "Sections", "", {{kLine, "1+020", 1020, {{30, 20}, {70, 20}}}}});
  made.siteless.alignments.push_back(std::move(axis));
  made.surfaces.push_back(
      {kLower, "Lower", "",
       TinSurface({{0, 0, 110}, {100, 0, 100}, {100, 100, 100}, {0, 100, 110}}, {{0, 1, 2}, {0, 2, 3}})});
  made.surfaces.push_back(
      {kUpper, "Upper", "", TinSurface({{60, 60, 1}, {80, 60, 1}, {80, 80, 5}, {60, 80, 5}}, {{0, 1, 2}, {0, 2, 3}})});
  made.points.push_back({kNumbered, 7, 0, {10, 30, 55.5}, {}, true});
  made.points.push_back({kFlat, 8, 0, {10, 40, 0}, {}, false});
  return made;
}

class MeasuringTest : public testing::Test {
 protected:
  MeasuringTest() : drawing_(drawing()), scene_(drawing_) {}
  Drawing drawing_;
  PlanScene scene_;
};

// ---------------------------------------------------------------- the ground at a place

using GroundAtTest = MeasuringTest;

TEST_F(GroundAtTest, TellsElevationAndSlopeOfTheUppermostSurface) {
  const auto lower = groundAt(scene_, {30, 50});
  ASSERT_TRUE(lower);
  EXPECT_EQ(lower->surface->handle, kLower);
  EXPECT_NEAR(lower->elevation, 107.0, 1e-12);
  EXPECT_NEAR(lower->slope, 0.1, 1e-12);
  EXPECT_NEAR(lower->downhill, kPi / 2, 1e-12) << "to the east";
  // The upper one is drawn above, though it lies lower.
  const auto upper = groundAt(scene_, {70, 65});
  ASSERT_TRUE(upper);
  EXPECT_EQ(upper->surface->handle, kUpper);
  EXPECT_NEAR(upper->elevation, 2.0, 1e-12);
  EXPECT_NEAR(upper->slope, 0.2, 1e-12);
  EXPECT_NEAR(upper->downhill, kPi, 1e-12) << "to the south";
}

TEST_F(GroundAtTest, IsThereOnBordersAndCornersAndNowhereElse) {
  for (const Vec2 place : {Vec2{0, 0}, Vec2{0, 50}, Vec2{100, 100}, Vec2{50, 50}, Vec2{60, 60}})
    EXPECT_TRUE(groundAt(scene_, place)) << place.x << ' ' << place.y;
  const double none = std::numeric_limits<double>::quiet_NaN();
  for (const Vec2 place : {Vec2{-1, 50}, Vec2{50, 100.5}, Vec2{1e300, 0}, Vec2{none, 0}})
    EXPECT_FALSE(groundAt(scene_, place)) << place.x << ' ' << place.y;
}

TEST_F(GroundAtTest, HasNoDirectionWhereItIsLevel) {
  Drawing level;
  level.surfaces.push_back({kLower, "Level", "", TinSurface({{0, 0, 3}, {9, 0, 3}, {0, 9, 3}}, {{0, 1, 2}})});
  const PlanScene scene(level);
  const auto ground = groundAt(scene, {2, 2});
  ASSERT_TRUE(ground);
  EXPECT_EQ(ground->slope, 0.0);
  EXPECT_EQ(ground->downhill, 0.0);
}

TEST(GroundAt, AgreesWithTheSurfaceItself) {
  std::mt19937 random = test::seededByTestName();
  std::uniform_real_distribution<double> part(0.0, 1.0);
  std::vector<Vec3> points;
  std::vector<civil::Triangle> triangles;
  constexpr int kCells = 40;
  for (int row = 0; row <= kCells; ++row)
    for (int column = 0; column <= kCells; ++column)
      points.push_back({3e6 + column + 0.2 * part(random), 5e6 + row + 0.2 * part(random), 10 * part(random)});
  for (int row = 0; row < kCells; ++row)
    for (int column = 0; column < kCells; ++column) {
      const std::int32_t a = row * (kCells + 1) + column;
      if (part(random) < 0.9) triangles.push_back({a, a + 1, a + kCells + 2});
      if (part(random) < 0.9) triangles.push_back({a, a + kCells + 2, a + kCells + 1});
    }
  Drawing made;
  made.surfaces.push_back({kLower, "Rough", "", TinSurface(points, triangles)});
  const PlanScene scene(made);
  for (int i = 0; i < 5000; ++i) {
    const Vec2 place{3e6 + 42 * part(random) - 1, 5e6 + 42 * part(random) - 1};
    const auto wanted = made.surfaces.front().surface.elevationAt(place);
    const auto ground = groundAt(scene, place);
    ASSERT_EQ(ground.has_value(), wanted.has_value()) << place.x << ' ' << place.y;
    if (ground) {
      EXPECT_NEAR(ground->elevation, *wanted, 1e-6);
    }
  }
}

TEST_F(GroundAtTest, PassesOverSurfacesThatAreHidden) {
  Visibility visibility;
  visibility.hide(std::vector<civil::Handle>{kUpper});
  scene_.setVisibility(visibility);
  ASSERT_TRUE(groundAt(scene_, {70, 65}));
  EXPECT_EQ(groundAt(scene_, {70, 65})->surface->handle, kLower);
  visibility.hide(std::vector<civil::Handle>{kLower});
  scene_.setVisibility(visibility);
  EXPECT_FALSE(groundAt(scene_, {70, 65}));
}

// ---------------------------------------------------------------- snapping

class SnapTest : public MeasuringTest {
 protected:
  /// "end Axis 50,40": what a place within 3 is taken for.
  [[nodiscard]] std::string at(Vec2 place, SnapKinds kinds = {}) const {
    const auto snap = snapAt(scene_, place, 3.0, kinds);
    if (!snap) return "nothing";
    const std::vector<std::string> names{"point", "end", "vertex", "axis"};
    const auto whole = [](double value) { return std::to_string(std::lround(value)); };
    std::string text = names[static_cast<std::size_t>(snap->kind)] + " " + snap->name + " " + whole(snap->place.x) +
                       "," + whole(snap->place.y);
    if (snap->elevation) text += " z" + whole(10 * *snap->elevation);
    if (snap->station) text += " s" + whole(*snap->station);
    return text;
  }
};

TEST_F(SnapTest, FindsPointsVerticesEndsAndTheAxis) {
  EXPECT_EQ(at({11, 31}), "point 7 10,30 z555");
  EXPECT_EQ(at({11, 39}), "point 8 10,40") << "a point without elevation";
  EXPECT_EQ(at({61, 59}), "vertex Upper 60,60 z10");
  EXPECT_EQ(at({99, 1}), "vertex Lower 100,0 z1000");
  EXPECT_EQ(at({51, 41}), "end Axis 50,40 s1040");
  EXPECT_EQ(at({51, -1}), "end Axis 50,0 s1000") << "before the start";
  EXPECT_EQ(at({48, 102}), "end Axis 50,100 s1100") << "beyond the end";
  EXPECT_EQ(at({71, 21}), "end 1+020 70,20");
  EXPECT_EQ(at({52, 25}), "axis Axis 50,25 s1025");
  EXPECT_EQ(at({20, 60}), "nothing");
}

TEST_F(SnapTest, TakesTheNearestOfAllAndTheFootOnlyWhereNothingElseIs) {
  EXPECT_EQ(at({50, 38}), "end Axis 50,40 s1040") << "the axis itself is nearer";
  EXPECT_EQ(at({50, 36}), "axis Axis 50,36 s1036");
  drawing_.points.push_back({20, 9, 0, {61, 60, 3}, {}, true});
  const PlanScene scene(drawing_);
  EXPECT_EQ(snapAt(scene, {60.7, 60}, 3.0)->kind, SnapKind::Point);
  EXPECT_EQ(snapAt(scene, {60.3, 60}, 3.0)->kind, SnapKind::Vertex);
}

TEST_F(SnapTest, PrefersAPointWhereAVertexHasTheSamePlace) {
  drawing_.points.push_back({20, 9, 0, {60, 60, 3}, {}, true});
  const PlanScene scene(drawing_);
  EXPECT_EQ(snapAt(scene, {61, 60}, 3.0)->kind, SnapKind::Point);
}

TEST_F(SnapTest, LooksForTheKindsThatAreWantedAlone) {
  SnapKinds kinds;
  kinds.set(SnapKind::Point, false);
  EXPECT_EQ(at({11, 31}, kinds), "nothing");
  kinds.set(SnapKind::End, false);
  EXPECT_EQ(at({51, 41}, kinds), "axis Axis 50,41 s1041");
  kinds.set(SnapKind::Axis, false);
  EXPECT_EQ(at({51, 41}, kinds), "nothing");
  kinds.set(SnapKind::Vertex, false);
  EXPECT_EQ(at({61, 59}, kinds), "nothing");
  kinds.set(SnapKind::Vertex, true);
  EXPECT_EQ(at({61, 59}, kinds), "vertex Upper 60,60 z10");
}

TEST_F(SnapTest, FindsNoObjectThatIsHidden) {
  Visibility visibility;
  visibility.hide(std::vector<civil::Handle>{kAxis, kLine, kUpper, kNumbered});
  scene_.setVisibility(visibility);
  for (const Vec2 place : {Vec2{11, 31}, Vec2{51, 41}, Vec2{71, 21}, Vec2{61, 59}, Vec2{52, 25}})
    EXPECT_EQ(at(place), "nothing") << place.x << ' ' << place.y;
  EXPECT_EQ(at({99, 1}), "vertex Lower 100,0 z1000");
}

TEST_F(SnapTest, FindsNothingAtWhatIsNoPlace) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(snapAt(scene_, {none, 0}, 3.0));
  EXPECT_FALSE(snapAt(scene_, {0, 0}, none));
  EXPECT_FALSE(snapAt(scene_, {0, 0}, -1.0));
  EXPECT_TRUE(snapAt(scene_, {0, 0}, 0.0)) << "right on a vertex";
}

TEST(SnapAt, FindsTheEndsOfALongPolylineAndNoVertexWhereTheyAreTooMany) {
  std::string text = "at 0 0";
  for (int i = 1; i <= 3000; ++i) text += "; to " + std::to_string(i) + " " + std::to_string(i % 2);
  Drawing made;
  auto axis = std::make_unique<civil::AlignmentObject>();
  axis->handle = kAxis;
  axis->name = "Zigzag";
  axis->geometry = civil::Alignment::fromText(text);
  made.siteless.alignments.push_back(std::move(axis));
  std::vector<Vec3> points;
  std::vector<civil::Triangle> triangles;
  constexpr int kCells = 200;
  for (int row = 0; row <= kCells; ++row)
    for (int column = 0; column <= kCells; ++column) points.push_back({column + 0.5, row + 100.0, 0.0});
  for (int row = 0; row < kCells; ++row)
    for (int column = 0; column < kCells; ++column) {
      const std::int32_t a = row * (kCells + 1) + column;
      triangles.push_back({a, a + 1, a + kCells + 2});
      triangles.push_back({a, a + kCells + 2, a + kCells + 1});
    }
  made.surfaces.push_back({kLower, "Dense", "", TinSurface(points, triangles)});
  const PlanScene scene(made);
  for (const int i : {0, 1, 1500, 2999, 3000}) {
    const auto snap = snapAt(scene, {i + 0.1, i % 2 + 0.05}, 0.3);
    ASSERT_TRUE(snap) << i;
    EXPECT_EQ(snap->kind, SnapKind::End);
    EXPECT_EQ(snap->place, (Vec2{static_cast<double>(i), static_cast<double>(i % 2)}));
  }
  EXPECT_EQ(snapAt(scene, {50.4, 150.1}, 0.5)->kind, SnapKind::Vertex);
  EXPECT_FALSE(snapAt(scene, {100.5, 200.0}, 90.0)) << "80,000 triangles around";
}

// ---------------------------------------------------------------- measuring

TEST(Measure, TellsEachLegAndItsSums) {
  const std::vector<MeasuredPoint> points{{{0, 0}, 10.0}, {{3, 4}, 22.0}, {{3, 14}, 21.0}};
  const Measurement all = measure(points);
  ASSERT_EQ(all.legs.size(), 2U);
  EXPECT_DOUBLE_EQ(all.legs[0].horizontal, 5.0);
  EXPECT_DOUBLE_EQ(all.legs[0].slopeDistance.value(), 13.0);
  EXPECT_DOUBLE_EQ(all.legs[0].rise.value(), 12.0);
  EXPECT_DOUBLE_EQ(all.legs[0].slope.value(), 2.4);
  EXPECT_DOUBLE_EQ(all.legs[0].azimuth.value(), std::atan2(3.0, 4.0));
  EXPECT_DOUBLE_EQ(all.legs[1].azimuth.value(), 0.0);
  EXPECT_DOUBLE_EQ(all.legs[1].slope.value(), -0.1);
  EXPECT_DOUBLE_EQ(all.horizontal, 15.0);
  EXPECT_DOUBLE_EQ(all.slopeDistance.value(), 13.0 + std::sqrt(101.0));
  EXPECT_DOUBLE_EQ(all.rise.value(), 11.0);
  EXPECT_DOUBLE_EQ(all.area.value(), 15.0);
  EXPECT_DOUBLE_EQ(all.perimeter.value(), 15.0 + std::hypot(3.0, 14.0));
}

TEST(Measure, GivesDistancesOffEverySurface) {
  const std::vector<MeasuredPoint> points{{{0, 0}, 10.0}, {{3, 4}, {}}, {{3, 14}, 21.0}};
  const Measurement all = measure(points);
  EXPECT_DOUBLE_EQ(all.horizontal, 15.0);
  for (const MeasuredLeg& leg : all.legs) {
    EXPECT_FALSE(leg.rise || leg.slope || leg.slopeDistance);
    EXPECT_TRUE(leg.azimuth);
  }
  EXPECT_FALSE(all.slopeDistance);
  EXPECT_DOUBLE_EQ(all.rise.value(), 11.0) << "from the first to the last, which have one";
}

TEST(Measure, HasNoDirectionOfALegWithoutLength) {
  const std::vector<MeasuredPoint> points{{{5, 5}, 1.0}, {{5, 5}, 3.0}};
  const Measurement all = measure(points);
  EXPECT_FALSE(all.legs[0].azimuth);
  EXPECT_FALSE(all.legs[0].slope);
  EXPECT_DOUBLE_EQ(all.legs[0].slopeDistance.value(), 2.0);
  EXPECT_FALSE(all.area);
}

TEST(Measure, IsNothingOfOnePointOrNone) {
  EXPECT_TRUE(measure({}).legs.empty());
  const std::vector<MeasuredPoint> one{{{5, 5}, 1.0}};
  EXPECT_TRUE(measure(one).legs.empty());
  EXPECT_EQ(measure(one).horizontal, 0.0);
}

TEST(Measure, LosesNothingOfAnAreaFarFromTheOrigin) {
  std::vector<MeasuredPoint> points;
  for (const Vec2 p : {Vec2{0, 0}, Vec2{0.25, 0}, Vec2{0.25, 0.5}, Vec2{0, 0.5}})
    points.push_back({{3e6 + p.x, 5e6 + p.y}, {}});
  EXPECT_DOUBLE_EQ(measure(points).area.value(), 0.125);
  EXPECT_DOUBLE_EQ(measure(points).perimeter.value(), 1.5);
}

}  // namespace
}  // namespace lvx::view
