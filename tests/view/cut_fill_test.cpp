#include "view/cut_fill.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/random_numbers.h"

namespace lvx::view {
namespace {

using civil::Vec2;
using testing::ElementsAre;
using testing::IsEmpty;

double areaOf(const Line& outline) {
  double twice = 0.0;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const Vec2 a = outline[i];
    const Vec2 b = outline[(i + 1) % outline.size()];
    twice += a.x * b.y - b.x * a.y;
  }
  return std::abs(twice) / 2.0;
}

/// The highest of all pieces, looked at one by one.
std::optional<double> highest(const Lines& lines, double x) {
  std::optional<double> best;
  for (const Line& line : lines)
    for (std::size_t i = 1; i < line.size(); ++i) {
      const Vec2 a = line[i - 1].x < line[i].x ? line[i - 1] : line[i];
      const Vec2 b = line[i - 1].x < line[i].x ? line[i] : line[i - 1];
      if (x < a.x || x > b.x || a.x == b.x) continue;
      const double y = a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x);
      best = std::max(best.value_or(y), y);
    }
  return best;
}

TEST(UpperEdge, IsTheLineItselfWhereNothingLiesAboveIt) {
  EXPECT_THAT(upperEdge({{{0, 1}, {5, 2}, {9, 1}}}), ElementsAre(ElementsAre(Vec2{0, 1}, Vec2{5, 2}, Vec2{9, 1})));
  EXPECT_THAT(upperEdge({{{9, 1}, {5, 2}, {0, 1}}}), ElementsAre(ElementsAre(Vec2{0, 1}, Vec2{5, 2}, Vec2{9, 1})));
}

TEST(UpperEdge, KeepsGapsAndStepsAndTurnsWhereLinesCross) {
  EXPECT_THAT(upperEdge({{{0, 1}, {2, 1}}, {{3, 5}, {4, 5}}}),
              ElementsAre(ElementsAre(Vec2{0, 1}, Vec2{2, 1}), ElementsAre(Vec2{3, 5}, Vec2{4, 5})));
  EXPECT_THAT(upperEdge({{{0, 1}, {2, 1}, {2, 3}, {4, 3}}}),
              ElementsAre(ElementsAre(Vec2{0, 1}, Vec2{2, 1}, Vec2{2, 3}, Vec2{4, 3})));
  EXPECT_THAT(upperEdge({{{0, 0}, {4, 4}}, {{0, 4}, {4, 0}}}),
              ElementsAre(ElementsAre(Vec2{0, 4}, Vec2{2, 2}, Vec2{4, 4})));
  EXPECT_THAT(upperEdge({{{0, 0}, {10, 0}}, {{2, 1}, {3, 1}}}),
              ElementsAre(ElementsAre(Vec2{0, 0}, Vec2{2, 0}, Vec2{2, 1}, Vec2{3, 1}, Vec2{3, 0}, Vec2{10, 0})));
}

TEST(UpperEdge, HasNothingForPointsAndForWhatIsNoNumber) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THAT(upperEdge({}), IsEmpty());
  EXPECT_THAT(upperEdge({{}, {{1, 2}}, {{1, 2}, {1, 5}}, {{0, none}, {1, 1}}}), IsEmpty());
}

TEST(UpperEdge, AgreesWithTheHighestOfAllPiecesInRandomHeaps) {
  std::mt19937 generator = test::seededByTestName();
  const auto randomIn = [&](double from, double to) { return std::uniform_real_distribution(from, to)(generator); };
  for (int heap = 0; heap < 200; ++heap) {
    Lines lines;
    for (int i = 0; i < 6; ++i) {
      Line& line = lines.emplace_back();
      for (int j = 0; j < 4; ++j)
        line.push_back({std::round(randomIn(-5, 5) * 2) / 2, std::round(randomIn(0, 6) * 2) / 2});
    }
    const Lines edge = upperEdge(lines);
    for (double x = -5.013; x < 5.0; x += 0.217) {
      const auto expected = highest(lines, x);
      const auto found = highest(edge, x);
      ASSERT_EQ(found.has_value(), expected.has_value()) << "heap " << heap << " at " << x;
      ASSERT_NEAR(found.value_or(0.0), expected.value_or(0.0), 1e-9) << "heap " << heap << " at " << x;
    }
  }
}

TEST(CutAndFill, LieBetweenTheLinesAndEndWhereTheyCross) {
  const CutFill between = cutFillBetween({{{0, 10}, {10, 10}}}, {{{0, 8}, {10, 12}}});
  ASSERT_EQ(between.areas.size(), 2U);
  EXPECT_TRUE(between.areas[0].isFill);
  EXPECT_FALSE(between.areas[1].isFill);
  EXPECT_THAT(between.areas[0].outline, ElementsAre(Vec2{0, 10}, Vec2{5, 10}, Vec2{0, 8}));
  EXPECT_THAT(between.areas[1].outline, ElementsAre(Vec2{5, 10}, Vec2{10, 10}, Vec2{10, 12}));
  EXPECT_DOUBLE_EQ(between.fill, 5.0);
  EXPECT_DOUBLE_EQ(between.cut, 5.0);
}

TEST(CutAndFill, StandOnlyWhereBothLinesAre) {
  const CutFill between = cutFillBetween({{{2, 1}, {8, 1}}}, {{{0, 0}, {4, 0}}, {{5, 0}, {9, 0}}});
  ASSERT_EQ(between.areas.size(), 2U);
  EXPECT_DOUBLE_EQ(between.fill, 2.0 + 3.0);
  EXPECT_DOUBLE_EQ(between.cut, 0.0);
  EXPECT_TRUE(cutFillBetween({{{0, 1}, {1, 1}}}, {{{2, 0}, {3, 0}}}).isEmpty());
  EXPECT_TRUE(cutFillBetween({}, {{{2, 0}, {3, 0}}}).isEmpty());
}

TEST(CutAndFill, AreNoneWhereTheDesignLiesOnTheGround) {
  EXPECT_TRUE(cutFillBetween({{{0, 1}, {4, 3}}}, {{{0, 1}, {2, 2}, {4, 3}}}).isEmpty());
  const CutFill between = cutFillBetween({{{0, 1}, {2, 1}, {4, 3}}}, {{{0, 1}, {4, 1}}});
  ASSERT_EQ(between.areas.size(), 1U);
  EXPECT_DOUBLE_EQ(between.fill, 2.0);
}

TEST(CutAndFill, CountTheTopOfARoadAgainstTheGroundNotItsLayers) {
  const Lines road{{{-5, 1}, {5, 1}}, {{-5, 0.5}, {5, 0.5}}, {{-5, 1}, {5, 1}, {5, 0.2}, {-5, 0.2}, {-5, 1}}};
  const CutFill between = cutFillBetween(road, {{{-20, 0}, {20, 0}}});
  ASSERT_EQ(between.areas.size(), 1U);
  EXPECT_DOUBLE_EQ(between.fill, 10.0);
}

TEST(CutAndFill, AddUpToTheDifferenceOfRandomLines) {
  std::mt19937 generator = test::seededByTestName();
  const auto randomIn = [&](double from, double to) { return std::uniform_real_distribution(from, to)(generator); };
  for (int round = 0; round < 100; ++round) {
    const auto make = [&] {
      Line line;
      double x = randomIn(-10, 0);
      for (int i = 0; i < 30; ++i) {
        line.push_back({x, randomIn(400, 404)});
        x += randomIn(0.01, 2);
      }
      return Lines{line};
    };
    const Lines design = make();
    const Lines ground = make();
    const CutFill between = cutFillBetween(design, ground);
    double outlines = 0.0;
    for (const CutFillArea& area : between.areas) {
      EXPECT_NEAR(areaOf(area.outline), area.area, 1e-9);
      EXPECT_GT(area.area, 0.0);
      outlines += area.area;
    }
    EXPECT_NEAR(outlines, between.cut + between.fill, 1e-9);
    // Against a sum over strips: fill less cut is the integral of the difference.
    const double from = std::max(design[0].front().x, ground[0].front().x);
    const double to = std::min(design[0].back().x, ground[0].back().x);
    constexpr int kStrips = 20000;
    double sum = 0.0;
    double absolute = 0.0;
    for (int i = 0; i < kStrips; ++i) {
      const double x = from + (to - from) * (i + 0.5) / kStrips;
      const double height = *highest(design, x) - *highest(ground, x);
      sum += height * (to - from) / kStrips;
      absolute += std::abs(height) * (to - from) / kStrips;
    }
    EXPECT_NEAR(between.fill - between.cut, sum, 1e-3);
    EXPECT_NEAR(between.fill + between.cut, absolute, 1e-3);
  }
}

TEST(CutAndFill, TellTheHeightAtAPlace) {
  EXPECT_EQ(heightOver({{{0, 3}, {2, 5}}}, {{{0, 1}, {2, 1}}}, 1.0), 3.0);
  EXPECT_FALSE(heightOver({{{0, 3}, {2, 5}}}, {{{3, 1}, {4, 1}}}, 1.0));
}

TEST(ClippedOutline, IsThePartInTheBox) {
  const Line square{{0, 0}, {4, 0}, {4, 4}, {0, 4}};
  EXPECT_DOUBLE_EQ(areaOf(clippedOutline(square, {1, 1, 9, 3})), 6.0);
  EXPECT_THAT(clippedOutline(square, {5, 5, 9, 9}), IsEmpty());
  EXPECT_DOUBLE_EQ(areaOf(clippedOutline(square, {-9, -9, 9, 9})), 16.0);
}

TEST(Hatching, FillsAnAreaByStrokesOfOneDistance) {
  const Line square{{0, 0}, {4, 0}, {4, 4}, {0, 4}};
  const Lines level = hatched(square, 1.0, 0.0);
  EXPECT_EQ(level.size(), 4U);  // a stroke on the upper side belongs to the area above
  for (const Line& stroke : level) {
    ASSERT_EQ(stroke.size(), 2U);
    EXPECT_NEAR(stroke[1].x - stroke[0].x, 4.0, 1e-12);
  }
  double length = 0.0;
  for (const Line& stroke : hatched(square, 0.01, 0.7)) length += civil::length(stroke[1] - stroke[0]);
  EXPECT_NEAR(length * 0.01, 16.0, 0.05);
}

TEST(Hatching, LeavesHolesOfACrossingOutlineFreeAndTakesNoSpacingOfNothing) {
  EXPECT_THAT(hatched({{0, 0}, {1, 0}, {1, 1}}, 0.0, 0.0), IsEmpty());
  EXPECT_THAT(hatched({{0, 0}, {1, 0}}, 0.1, 0.0), IsEmpty());
  EXPECT_THAT(hatched({{0, 0}, {1, 0}, {1, 1e9}}, 1e-6, 0.0), IsEmpty());
  EXPECT_THAT(hatched({{0, 1e17}, {1, 1e17}, {1, 1e17 + 64}}, 1.0, 0.0), IsEmpty());
  // Twice around the same square: odd-even leaves nothing.
  EXPECT_THAT(hatched({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}, {1, 0}, {1, 1}, {0, 1}}, 0.25, 0.0),
              testing::Each(testing::ResultOf([](const Line& s) { return civil::length(s[1] - s[0]); }, 0.0)));
}

}  // namespace
}  // namespace lvx::view
