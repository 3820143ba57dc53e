#include "view/plan_shapes.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "gtest/gtest.h"
#include "view/box_tree.h"

namespace lvx::view {
namespace {

using civil::Box;
using civil::ObjectKind;
using civil::Vec2;

TEST(KindSet, StandsForAllKindsWhenEmpty) {
  EXPECT_TRUE(KindSet().has(ObjectKind::Corridor));
  const KindSet some{ObjectKind::Point, ObjectKind::Alignment};
  EXPECT_TRUE(some.has(ObjectKind::Point));
  EXPECT_FALSE(some.has(ObjectKind::Surface));
}

TEST(Boxes, MeetSegmentsThatPassThrough) {
  const Box box{0, 0, 10, 10};
  EXPECT_TRUE(meets(box, {-5, 5}, {15, 5}));
  EXPECT_TRUE(meets(box, {-5, 5}, {5, 15}));  // through the corner
  EXPECT_FALSE(meets(box, {-6, 5}, {5, 16}));
  EXPECT_TRUE(meets(box, {5, 5}, {5, 5}));
  EXPECT_FALSE(meets(box, {15, 5}, {15, 6}));
  EXPECT_FALSE(meets(Box{}, {-5, 5}, {15, 5}));
  EXPECT_TRUE(meets({5, -20, 5, 20}, {0, 0}, {10, 0}));
}

TEST(Boxes, HoldWhatLiesOnTheirBorders) {
  EXPECT_TRUE(holds(Box{0, 0, 1, 1}, Box{0, 0, 1, 1}));
  EXPECT_FALSE(holds(Box{0, 0, 1, 1}, Box{}));
  EXPECT_FALSE(holds(Box{0, 0, 1, 1}, Box{0, 0, 1.1, 1}));
  EXPECT_TRUE(boxAround(std::vector<Vec2>{{std::nan(""), 1}}).isEmpty());
}

Line wave(int count) {
  Line line;
  for (int i = 0; i < count; ++i) line.push_back({i * 1.0, 20 * std::sin(i * 0.1)});
  return line;
}

TEST(LineSet, GivesLinesBackWhole) {
  for (const int count : {1, 2, 64, 65, 66, 128, 129, 130, 1000}) {
    LineSet set;
    const Line line = wave(count);
    set.add(line);
    const auto lines = set.lines(set.box(), 0.0);
    ASSERT_EQ(lines.size(), 1U) << count;
    EXPECT_EQ(lines[0], line) << count;
  }
}

TEST(LineSet, GivesOnlyPiecesNearTheWindow) {
  LineSet set;
  set.add(wave(100'000));
  set.add(wave(10));
  const auto lines = set.lines({50'000, -30, 50'100, 30}, 0.0);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_LT(lines[0].size(), 400U);
  EXPECT_LE(lines[0].front().x, 50'000);
  EXPECT_GE(lines[0].back().x, 50'100);
}

TEST(LineSet, LeavesOutWhatLiesCloserThanItsTolerance) {
  LineSet set;
  const Line line = wave(10'000);
  set.add(line);
  const auto lines = set.lines(set.box(), 50.0);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_LT(lines[0].size(), 500U);
  EXPECT_EQ(lines[0].front(), line.front());
  EXPECT_EQ(lines[0].back(), line.back());
}

TEST(LineSet, FindsItsNearestLine) {
  LineSet set;
  set.add(wave(1000));
  set.add(Line{{0, 100}, {1000, 100}});
  std::mt19937 random(7);
  std::uniform_real_distribution<double> across(0, 999);
  std::uniform_real_distribution<double> up(-40, 120);
  for (int i = 0; i < 200; ++i) {
    const Vec2 place{across(random), up(random)};
    double expected = std::abs(place.y - 100);
    const Line line = wave(1000);
    for (std::size_t k = 1; k < line.size(); ++k)
      expected = std::min(expected, distanceTo(line[k - 1], line[k], place));
    EXPECT_DOUBLE_EQ(set.distance(place, 1000), expected);
    EXPECT_EQ(std::isfinite(set.distance(place, 10)), expected <= 10);
  }
  EXPECT_FALSE(std::isfinite(set.distance({std::nan(""), 0}, 10)));
  EXPECT_FALSE(std::isfinite(LineSet().distance({0, 0}, 10)));
}

TEST(LineSet, TouchesBoxesThatALinePassesThrough) {
  LineSet set;
  set.add(Line{{0, 0}, {100, 0}, {100, 100}});
  EXPECT_TRUE(set.touches({50, -1, 51, 1}));
  EXPECT_FALSE(set.touches({50, 1, 51, 2}));
  EXPECT_TRUE(set.touches({-10, -10, 200, 200}));
}

TEST(LineSet, LeavesOutWhatIsNoPlace) {
  LineSet set;
  set.add(Line{{0, 0}, {std::numeric_limits<double>::infinity(), 5}, {1, 1}, {std::nan(""), 0}});
  EXPECT_EQ(set.vertexCount(), 2U);
  set.add({});
  EXPECT_EQ(set.lines(set.box(), 0).size(), 1U);
}

TEST(BoxTree, VisitsWhatMeetsTheBoxInOrder) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> any(0, 100);
  std::vector<Vec2> places(5000);
  for (Vec2& place : places) place = {any(random), any(random)};
  std::sort(places.begin(), places.end(), [](Vec2 a, Vec2 b) { return a.x < b.x; });
  const BoxTree tree(places.size(), 8, [&](std::size_t first, std::size_t end) {
    return boxAround(std::span(places).subspan(first, end - first));
  });
  const Box all = tree.box();
  EXPECT_TRUE(holds(all, boxAround(places)) && holds(boxAround(places), all));
  const Box wanted{20, 30, 25, 90};
  std::size_t found = 0;
  std::size_t last = 0;
  EXPECT_TRUE(tree.visit(wanted, [&](std::size_t first, std::size_t end, bool isInside) {
    EXPECT_GE(first, last);
    last = end;
    for (std::size_t i = first; i < end; ++i) {
      EXPECT_TRUE(!isInside || holds(wanted, places[i]));
      found += holds(wanted, places[i]) ? 1U : 0U;
    }
    return true;
  }));
  std::size_t expected = 0;
  for (const Vec2 place : places) expected += holds(wanted, place) ? 1U : 0U;
  EXPECT_EQ(found, expected);
  int visits = 0;
  EXPECT_FALSE(tree.visit(wanted, [&](std::size_t, std::size_t, bool) { return ++visits < 3; }));
  EXPECT_EQ(visits, 3);
  EXPECT_TRUE(BoxTree().visit(wanted, [](std::size_t, std::size_t, bool) { return false; }));
}

}  // namespace
}  // namespace lvx::view
