#include "view/alignment_shape.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "gtest/gtest.h"

namespace lvx::view {
namespace {

using civil::Alignment;
using civil::Box;
using civil::Element;
using civil::ElementKind;
using civil::Vec2;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const Box kEverywhere{-1e7, -1e7, 1e7, 1e7};

Alignment road() {
  return Alignment::fromText(
      "start 1000 at 2600000 1200000 heading 90; line 100; clothoid 60 R inf..300 right; arc 400 R 300 right; clothoid "
      "60 R 300..80 right; arc 100 R 80 right; clothoid 40 R 80..inf right; line 250");
}

double distanceToLines(const Lines& lines, Vec2 place) {
  double least = kInfinity;
  for (const Line& line : lines)
    for (std::size_t i = 1; i < line.size(); ++i) least = std::min(least, distanceTo(line[i - 1], line[i], place));
  return least;
}

TEST(AlignmentPolyline, KeepsWithinItsToleranceOfTheAlignment) {
  const Alignment axis = road();
  for (const double tolerance : {10.0, 1.0, 0.1, 0.01}) {
    const Lines lines = polylines(axis, kEverywhere, tolerance);
    ASSERT_EQ(lines.size(), 1U) << tolerance;
    for (double station = 1000.0; station <= axis.endStation(); station += 1.5)
      ASSERT_LE(distanceToLines(lines, axis.poseAt(station)->point), tolerance * 1.000001 + 1e-8) << station;
    for (const Vec2 vertex : lines[0]) ASSERT_NEAR(axis.stationOffset(vertex)->offset, 0.0, 1e-7);
    EXPECT_EQ(lines[0].front(), axis.poseAt(axis.startStation())->point);
    EXPECT_EQ(lines[0].back(), axis.poseAt(axis.endStation())->point);
  }
  EXPECT_LT(polylines(axis, kEverywhere, 1.0)[0].size(), 40U);
}

TEST(AlignmentPolyline, DrawsALineByItsEnds) {
  const Lines lines = polylines(Alignment::fromText("line 5000; arc 100 R 50 left"), {-10, -10, 10, 10}, 0.1);
  ASSERT_EQ(lines.size(), 1U);
  ASSERT_EQ(lines[0].size(), 2U);
  EXPECT_EQ(lines[0][0], (Vec2{0, 0}));
  EXPECT_LT(lines[0][1].y, 100.0);  // cut near the window: pixels stay countable
}

TEST(AlignmentPolyline, ShowsAllThatTheWindowShows) {
  const Alignment axis = road();
  for (double at = 1010.0; at < axis.endStation(); at += 37.0)
    for (const double size : {2.0, 30.0, 400.0}) {
      const Vec2 middle = axis.poseAt(at)->point;
      const Box window{middle.x - size, middle.y - size, middle.x + size, middle.y + size};
      const Lines lines = polylines(axis, window, 0.01);
      for (double station = 1000.0; station <= axis.endStation(); station += 0.25) {
        const Vec2 place = axis.poseAt(station)->point;
        if (!holds(window, place)) continue;
        ASSERT_LE(distanceToLines(lines, place), 0.0101) << at << ' ' << size << ' ' << station;
      }
      for (const Line& line : lines)
        for (const Vec2 vertex : line)
          ASSERT_LE(length(vertex - middle), 8 * size) << "far outside the window " << at << ' ' << size;
    }
}

TEST(AlignmentPolyline, KeepsGapsAndBeginsWhereItIsAsked) {
  const Alignment axis = Alignment::fromText("line 100; at 0 150; line 100");
  EXPECT_EQ(polylines(axis, kEverywhere, 0.1).size(), 2U);
  EXPECT_EQ(polylines(axis, kEverywhere, 60.0).size(), 1U);  // a gap that nobody sees
  const Lines part = polylines(axis, kEverywhere, 0.1, 25.0, 75.0);
  ASSERT_EQ(part.size(), 1U);
  EXPECT_NEAR(length(part[0].front() - Vec2{0, 25}), 0.0, 1e-9);
  EXPECT_NEAR(length(part[0].back() - Vec2{0, 75}), 0.0, 1e-9);
  EXPECT_TRUE(polylines(axis, kEverywhere, 0.1, 80.0, 20.0).empty());
}

TEST(AlignmentPolyline, IsEmptyWithoutElementsWindowOrTolerance) {
  EXPECT_TRUE(polylines(Alignment(), kEverywhere, 1.0).empty());
  EXPECT_TRUE(polylines(road(), Box{}, 1.0).empty());
  EXPECT_TRUE(polylines(road(), kEverywhere, 0.0).empty());
  EXPECT_TRUE(polylines(road(), {0, 0, 10, 10}, 0.1).empty());  // elsewhere
  EXPECT_TRUE(ticks(Alignment(), kEverywhere, 1.0).empty());
  EXPECT_TRUE(boxAround(Alignment()).isEmpty());
}

TEST(AlignmentPolyline, PassesOverElementsWithoutGeometry) {
  Element broken;
  broken.start = {std::numeric_limits<double>::quiet_NaN(), 0};
  broken.length = 10;
  const Alignment axis(0.0, {civil::makeLine({0, 0}, {0, 50}), broken, civil::makeLine({0, 50}, {0, 50}),
                             civil::makeLine({0, 50}, {0, 80})});
  for (const Line& line : polylines(axis, kEverywhere, 0.1))
    for (const Vec2 vertex : line) EXPECT_TRUE(std::isfinite(vertex.x) && std::isfinite(vertex.y));
  EXPECT_EQ(boxAround(axis).maxY, 80.0);
}

TEST(AlignmentBox, TouchesTheCurveOnAllSides) {
  for (const char* text : {"arc 250 R 50 left",
                           "heading 30; clothoid 200 R inf..30 right; arc 150 R 30 right; clothoid 100 R 30..inf right",
                           "heading 200; clothoid 300 R 20..inf left",
                           "heading 30; bloss 200 R inf..30 right; arc 150 R 30 right; sinusoid 100 R 30..inf right",
                           "heading 200; cosine 300 R 20..inf left", "heading 10; biquadratic 250 R 40..15 right",
                           "heading 45; line 100", "arc 314.159 R 50 right"}) {
    const Alignment axis = Alignment::fromText(text);
    Box expected;
    for (double station = 0.0; station <= axis.endStation(); station += 0.01)
      extend(expected, axis.poseAt(station)->point);
    extend(expected, axis.poseAt(axis.endStation())->point);
    const Box box = boxAround(axis);
    EXPECT_NEAR(box.minX, expected.minX, 1e-6) << text;
    EXPECT_NEAR(box.minY, expected.minY, 1e-6) << text;
    EXPECT_NEAR(box.maxX, expected.maxX, 1e-6) << text;
    EXPECT_NEAR(box.maxY, expected.maxY, 1e-6) << text;
    EXPECT_LE(box.minX, expected.minX + 1e-9) << text;
    EXPECT_GE(box.maxY, expected.maxY - 1e-9) << text;
  }
}

TEST(AlignmentBox, TouchesATransitionThatTurnsToBothSides) {
  for (const ElementKind law : {ElementKind::Clothoid, ElementKind::Bloss, ElementKind::Cosine,
                                ElementKind::Biquadratic, ElementKind::Sinusoid}) {
    const Alignment axis(0.0, {Element{law, {3, 4}, 0.7, 200.0, 0.03, -0.02, {}}});
    Box expected;
    for (double station = 0.0; station <= 200.0; station += 0.01) extend(expected, axis.poseAt(station)->point);
    const Box box = boxAround(axis);
    EXPECT_NEAR(box.minX, expected.minX, 1e-6) << kindName(law);
    EXPECT_NEAR(box.minY, expected.minY, 1e-6) << kindName(law);
    EXPECT_NEAR(box.maxX, expected.maxX, 1e-6) << kindName(law);
    EXPECT_NEAR(box.maxY, expected.maxY, 1e-6) << kindName(law);
  }
}

TEST(AlignmentPolyline, KeepsWithinItsToleranceOfEveryTransition) {
  for (const ElementKind law : {ElementKind::Clothoid, ElementKind::Bloss, ElementKind::Cosine,
                                ElementKind::Biquadratic, ElementKind::Sinusoid}) {
    const Alignment axis(0.0, {Element{law, {3, 4}, 0.7, 200.0, 0.03, -0.02, {}}});
    for (const double tolerance : {1.0, 0.01}) {
      const Lines lines = polylines(axis, kEverywhere, tolerance);
      ASSERT_EQ(lines.size(), 1U);
      ASSERT_GT(lines[0].size(), 4U);
      for (std::size_t i = 0; i + 1 < lines[0].size(); ++i) {
        for (const double share : {0.25, 0.5, 0.75}) {
          const auto foot = axis.stationOffset(lines[0][i] + share * (lines[0][i + 1] - lines[0][i]));
          ASSERT_TRUE(foot);
          EXPECT_LT(std::abs(foot->offset), tolerance * 1.0001) << kindName(law);
        }
      }
      EXPECT_EQ(lines[0].back(), axis.poseAt(200.0)->point);
    }
  }
}

TEST(TickSteps, GoByOneTwoAndFive) {
  struct Row {
    double scale;
    double minor;
    double major;
    int decimals;
  };
  const std::vector<Row> rows{{100'000, 0.001, 0.001, 3},
                              {20'000, 0.001, 0.005, 3},
                              {1000, 0.01, 0.1, 1},
                              {500, 0.02, 0.2, 1},
                              {100, 0.1, 1, 0},
                              {70, 0.2, 1, 0},
                              {35, 0.5, 2, 0},
                              {14, 1, 5, 0},
                              {10, 1, 10, 0},
                              {1, 10, 100, 0},
                              {0.7, 20, 100, 0},
                              {0.5, 20, 200, 0},
                              {0.2, 50, 500, 0},
                              {0.07, 200, 1000, 0},
                              {0.01, 1000, 10000, 0}};
  for (const Row& row : rows) {
    const TickSteps steps = tickSteps(row.scale);
    EXPECT_DOUBLE_EQ(steps.minor, row.minor) << row.scale;
    EXPECT_DOUBLE_EQ(steps.major, row.major) << row.scale;
    EXPECT_EQ(steps.decimals, row.decimals) << row.scale;
  }
}

TEST(TickSteps, KeepMarksAndLabelsApartAtEveryScale) {
  for (double scale = 1e-7; scale < 1e4; scale *= 1.1) {
    const TickSteps steps = tickSteps(scale);
    EXPECT_GE(steps.minor * scale, 8.0 - 1e-9) << scale;
    EXPECT_GE(steps.major * scale, 70.0 - 1e-9) << scale;
    EXPECT_LT(steps.major * scale, 70.0 * 2.5 + 1e-9) << scale;
    const double per = steps.major / steps.minor;
    EXPECT_NEAR(per, std::round(per), 1e-9) << scale;
    EXPECT_GE(per, 1.0);
    EXPECT_LE(per, 10.0 + 1e-9);
  }
  EXPECT_GT(tickSteps(0.0).minor, 0.0);
  EXPECT_GT(tickSteps(std::nan("")).minor, 0.0);
}

TEST(Ticks, StandAtRoundStationsOnTheAlignment) {
  const Alignment axis = road();
  const auto marks = ticks(axis, kEverywhere, 1.0);
  ASSERT_EQ(marks.size(), 102U);  // 1000 to 2010 every 10
  for (std::size_t i = 0; i < marks.size(); ++i) {
    EXPECT_DOUBLE_EQ(marks[i].station, 1000.0 + 10.0 * static_cast<double>(i));
    const auto pose = axis.poseAt(marks[i].station);
    EXPECT_NEAR(length(marks[i].place - pose->point), 0.0, 1e-8);
    EXPECT_NEAR(marks[i].direction, pose->direction, 1e-9);
    EXPECT_EQ(marks[i].isMajor, i % 10 == 0);
    EXPECT_EQ(marks[i].text.empty(), i % 10 != 0);
  }
  EXPECT_EQ(marks[0].text, "1+000");
  EXPECT_EQ(marks[20].text, "1+200");
}

TEST(Ticks, AreMadeWhereTheyShowOnly) {
  const Alignment axis = Alignment::fromText("line 1000000");
  const auto marks = ticks(axis, {-5, 500'000, 5, 500'010}, 100.0);
  ASSERT_FALSE(marks.empty());
  EXPECT_LT(marks.size(), 200U);
  EXPECT_EQ(std::count_if(marks.begin(), marks.end(), [](const Tick& tick) { return tick.text == "500+005"; }), 1);
  EXPECT_TRUE(ticks(axis, {50, 0, 60, 10}, 100.0).empty());
}

TEST(Ticks, CountAJointOnceAndGoBelowZero) {
  const Alignment axis = Alignment::fromText("start -200; line 100; line 100; arc 100 R 100 left; line 100");
  const auto marks = ticks(axis, kEverywhere, 1.0);
  ASSERT_EQ(marks.size(), 41U);
  for (std::size_t i = 1; i < marks.size(); ++i) EXPECT_NEAR(marks[i].station - marks[i - 1].station, 10.0, 1e-9);
  EXPECT_EQ(marks[0].text, "-0-200");
  EXPECT_EQ(marks[20].text, "0+000");
}

TEST(Ticks, ShowDecimalsWhereStepsHaveThem) {
  const auto marks = ticks(Alignment::fromText("start 1020; line 10"), kEverywhere, 1000.0);
  ASSERT_EQ(marks.size(), 1001U);
  EXPECT_EQ(marks[50].text, "1+020.5");
  EXPECT_EQ(marks[0].text, "1+020.0");
}

}  // namespace
}  // namespace lvx::view
