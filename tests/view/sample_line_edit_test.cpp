// Single sample lines, pulled and set between others.
#include "view/sample_line_edit.h"

#include <gtest/gtest.h>

#include "civil/sample_line_rules.h"

namespace lvx::view {
namespace {

using civil::Alignment;
using civil::SampleLine;
using civil::SampleLineGroup;
using civil::Vec2;

/// Along x, stations 100 to 200.
Alignment straight() { return Alignment::fromText("start 100 at 0 0 heading 90; line 100"); }

SampleLine square(double station, double left, double right) {
  const double x = station - 100.0;
  return {1, "line", station, {{x, left}, {x, 0.0}, {x, -right}}};
}

TEST(PulledTo, MovesOneEndAlongTheLineWhereverTheMouseIs) {
  const SampleLine line = square(110.0, 5.0, 7.0);
  EXPECT_EQ(pulledTo(line, straight(), true, {13.0, 9.0}), (std::vector<Vec2>{{10.0, 9.0}, {10.0, 0.0}, {10.0, -7.0}}));
  EXPECT_EQ(pulledTo(line, straight(), false, {-4.0, -2.0}),
            (std::vector<Vec2>{{10.0, 5.0}, {10.0, 0.0}, {10.0, -2.0}}));
}

TEST(PulledTo, StopsBeforeTheAlignment) {
  const SampleLine line = square(110.0, 5.0, 7.0);
  EXPECT_EQ(pulledTo(line, straight(), true, {10.0, -3.0}).front(), (Vec2{10.0, kLeastWidth}));
  const SampleLine two{1, "two", 110.0, {{10.0, 5.0}, {10.0, -7.0}}};
  EXPECT_EQ(pulledTo(two, straight(), false, {10.0, 3.0}), (std::vector<Vec2>{{10.0, 5.0}, {10.0, -kLeastWidth}}));
}

TEST(PulledTo, KeepsTheBendsOfALineAsGiven) {
  const SampleLine bent{1, "bent", 110.0, {{0.0, 10.0}, {10.0, 5.0}, {10.0, 0.0}, {10.0, -7.0}}};
  const std::vector<Vec2> pulled = pulledTo(bent, straight(), true, {-20.0, 20.0});
  EXPECT_NEAR(pulled[0].x, -20.0, 1e-9);
  EXPECT_NEAR(pulled[0].y, 20.0, 1e-9);
  EXPECT_EQ(pulled[1], bent.vertices[1]);
  EXPECT_EQ(pulled.back(), bent.vertices.back());
}

TEST(PulledTo, LeavesWhatIsNoLine) {
  const SampleLine none{1, "none", 110.0, {{10.0, 5.0}}};
  EXPECT_EQ(pulledTo(none, straight(), true, {0.0, 0.0}), none.vertices);
  EXPECT_FALSE(widthsOf(none, straight()).has_value());
  EXPECT_FALSE(widthsOf(square(250.0, 1.0, 1.0), straight()).has_value());
}

TEST(WithWidths, SetsTheSidesThatAreGiven) {
  const SampleLine line = square(110.0, 5.0, 7.0);
  EXPECT_EQ(withWidths(line, straight(), 12.0, {}), square(110.0, 12.0, 7.0).vertices);
  EXPECT_EQ(withWidths(line, straight(), {}, 3.0), square(110.0, 5.0, 3.0).vertices);
  EXPECT_EQ(withWidths(line, straight(), {}, {}), line.vertices);
}

TEST(LineAmong, StandsBetweenItsNeighboursAsWideAsTheyAre) {
  SampleLineGroup group;
  group.lines = {square(150.0, 20.0, 10.0), square(110.0, 10.0, 20.0), square(190.0, 1.0, 1.0)};
  const auto line = lineAmong(group, straight(), 120.0, 30.0);
  ASSERT_TRUE(line.has_value());
  EXPECT_EQ(line->name, "0+120.000");
  const auto widths = widthsOf(*line, straight());
  EXPECT_NEAR(widths->left, 12.5, 1e-9);
  EXPECT_NEAR(widths->right, 17.5, 1e-9);
  EXPECT_EQ(line->vertices.size(), 3U);
}

TEST(LineAmong, TakesTheOneNeighbourOrTheGivenWidth) {
  SampleLineGroup group;
  EXPECT_NEAR(widthsOf(*lineAmong(group, straight(), 120.0, 30.0), straight())->left, 30.0, 1e-9);
  group.lines = {square(150.0, 20.0, 10.0)};
  EXPECT_NEAR(widthsOf(*lineAmong(group, straight(), 120.0, 30.0), straight())->left, 20.0, 1e-9);
  EXPECT_NEAR(widthsOf(*lineAmong(group, straight(), 160.0, 30.0), straight())->right, 10.0, 1e-9);
  EXPECT_FALSE(lineAmong(group, straight(), 99.0, 30.0).has_value());
}

TEST(LineAmong, IsAsSkewAsItsNeighbours) {
  const Alignment axis = straight();
  const auto made =
      civil::makeSampleLines(civil::parseSampleLineRules("every=50,left=10,right=10,skew=20"), {.axis = axis});
  SampleLineGroup group;
  group.lines = civil::sampleLinesOf(made);
  const auto wanted =
      civil::makeSampleLines(civil::parseSampleLineRules("stations=125,left=10,right=10,skew=20"), {.axis = axis});
  const auto line = lineAmong(group, axis, 125.0, 30.0);
  ASSERT_TRUE(line.has_value());
  for (std::size_t i = 0; i < 3; ++i) EXPECT_LT(length(line->vertices[i] - wanted.front().vertices()[i]), 1e-9) << i;
}

}  // namespace
}  // namespace lvx::view
