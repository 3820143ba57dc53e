#include "civil/alignment.h"

#include <atomic>
#include <latch>
#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "civil_makers.h"

namespace lvx::civil {
namespace {

using test::IsPose;
using testing::HasSubstr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(AlignmentText, ContinuesOneElementWithTheNext) {
  const auto axis =
      Alignment::fromText("start 1000 at 10 20 heading 90; line 100; arc 78.53981633974483 R 50 right; line 10");
  ASSERT_EQ(axis.elements().size(), 3u);
  EXPECT_EQ(axis.startStation(), 1000.0);
  EXPECT_NEAR(axis.endStation(), 1188.5398163397448, 1e-10);
  EXPECT_THAT(axis.poseAt(1050), IsPose(60, 20, 90, 1e-12));
  EXPECT_THAT(axis.poseAt(1178.5398163397448), IsPose(160, -30, 180, 1e-12));
  EXPECT_THAT(axis.poseAt(axis.endStation()), IsPose(160, -40, 180, 1e-12));
}

TEST(AlignmentText, MakesTheAxisOfTheWorkedExample) {
  const auto axis =
      Alignment::fromText("start 1000 at 0 0 heading 90; line 100; clothoid 60 R inf..300 right; arc 80 R 300 right");
  EXPECT_DOUBLE_EQ(axis.endStation(), 1240.0);
  ASSERT_TRUE(axis.poseAt(1120.0));
  EXPECT_LT(axis.poseAt(1120.0)->point.y, 0.0) << "on the clothoid, which turns to the right";
  const auto found = axis.stationOffset({12.5, -4.0});
  ASSERT_TRUE(found);
  EXPECT_DOUBLE_EQ(found->station, 1012.5);
  EXPECT_DOUBLE_EQ(found->offset, 4.0);
}

TEST(AlignmentText, ReadsEveryWord) {
  const auto axis = Alignment::fromText(
      "at 0 0 heading 0;line 10;clothoid 20 R inf..50 left;clothoid 20 R 50..30 left; to 5 80 ; at 7 90; heading 45; "
      "line 0");
  ASSERT_EQ(axis.elements().size(), 5u);
  EXPECT_EQ(axis.elements()[1].startCurvature, 0.0);
  EXPECT_DOUBLE_EQ(axis.elements()[1].endCurvature, 0.02);
  EXPECT_DOUBLE_EQ(axis.elements()[2].endCurvature, 1.0 / 30);
  EXPECT_EQ(axis.elements()[3].givenEnd, (Vec2{5, 80}));
  EXPECT_EQ(axis.elements()[4].start, (Vec2{7, 90}));
  EXPECT_DOUBLE_EQ(axis.elements()[4].direction, kPi / 4);
}

TEST(AlignmentText, NamesTheWordItCantRead) {
  const struct {
    const char* text;
    const char* word;
  } rows[] = {
      {"line", "''"},
      {"line ten", "'ten'"},
      {"line 10x", "'10x'"},
      {"line -1", "'-1'"},
      {"line nan", "'nan'"},
      {"curve 10", "'curve'"},
      {"arc 10 r 5 left", "'r'"},
      {"arc 10 R inf left", "'inf'"},
      {"arc 10 R 0 left", "'0'"},
      {"arc 10 R 5 up", "'up'"},
      {"clothoid 10 R 5 left", "'5'"},
      {"clothoid 10 R 5..x left", "'5..x'"},
      {"to 1", "''"},
  };
  for (const auto& row : rows) {
    try {
      (void)Alignment::fromText(row.text);
      ADD_FAILURE() << row.text;
    } catch (const std::invalid_argument& e) {
      EXPECT_THAT(e.what(), HasSubstr(row.word)) << row.text;
    }
  }
  EXPECT_EQ(std::size(rows), 13u);
}

TEST(Alignment, AnswersNothingWithoutLength) {
  for (const char* text : {"", "line 0", "start 5 at 1 2; line 0; arc 0 R 5 left"}) {
    const auto axis = Alignment::fromText(text);
    EXPECT_EQ(axis.length(), 0.0);
    EXPECT_FALSE(axis.poseAt(axis.startStation()));
    EXPECT_FALSE(axis.pointLocation(axis.startStation(), 1.0, 10.0));
    EXPECT_FALSE(axis.stationOffset({1, 2}));
  }
  EXPECT_TRUE(Alignment().isEmpty());
}

TEST(Alignment, TakesAnEndForAStationThatMissesItByAThousandth) {
  const auto axis = Alignment::fromText("start 1000 heading 90; line 100");
  EXPECT_THAT(axis.poseAt(999.9991), IsPose(0, 0, 90, 1e-12));
  EXPECT_THAT(axis.poseAt(1100.0009), IsPose(100, 0, 90, 1e-12));
  EXPECT_FALSE(axis.poseAt(999.998));
  EXPECT_FALSE(axis.poseAt(1100.002));
  EXPECT_THAT(axis.poseAt(1100.4, 0.5), IsPose(100, 0, 90, 1e-12));
  EXPECT_FALSE(axis.poseAt(1100.6, 0.5));
  EXPECT_FALSE(axis.poseAt(1100.002, -1.0)) << "a negative tolerance is none";
  EXPECT_TRUE(axis.poseAt(1100.0009, kNaN));
  EXPECT_FALSE(axis.poseAt(kNaN));
  EXPECT_FALSE(axis.poseAt(kInfinity));
}

TEST(Alignment, LetsTheLaterElementAnswerAtAJoint) {
  const auto corner = Alignment::fromText("heading 90; line 100; heading 0; line 0; heading 45; line 50; line 0");
  EXPECT_THAT(corner.poseAt(100), IsPose(100, 0, 45, 1e-12)) << "passing over the element without length";
  EXPECT_THAT(corner.poseAt(99.999999), IsPose(99.999999, 0, 90, 1e-12));
  EXPECT_THAT(corner.poseAt(150), IsPose(100 + std::sqrt(1250.0), std::sqrt(1250.0), 45, 1e-12));

  const auto gap = Alignment::fromText("heading 90; line 100; at 200 5; line 50");
  EXPECT_THAT(gap.poseAt(100), IsPose(200, 5, 90, 1e-12));
}

TEST(Alignment, PutsPositiveOffsetsToTheRight) {
  const auto axis = Alignment::fromText("heading 90; line 100; arc 157.07963267948966 R 50 left");
  EXPECT_THAT(axis.pointLocation(40, 7), IsPose(40, -7, 90, 1e-12));
  EXPECT_THAT(axis.pointLocation(40, -7), IsPose(40, 7, 90, 1e-12));
  EXPECT_THAT(axis.pointLocation(100 + 25 * kPi, 10), IsPose(160, 50, 0, 1e-12));
  EXPECT_THAT(axis.pointLocation(100 + 50 * kPi, -50), IsPose(100, 50, 270, 1e-12));
  EXPECT_FALSE(axis.pointLocation(-1, 0));
}

TEST(Alignment, PassesOverElementsThatAreNoGeometry) {
  std::vector<Element> elements;
  elements.push_back(makeLine({0, 0}, {10, 0}));
  elements.push_back(makeLine({kNaN, 0}, {10, 0}));
  elements.push_back(makeLine({10, 0}, {20, 0}));
  Element negative = makeLine({0, 0}, {10, 0});
  negative.length = -10;
  elements.push_back(negative);
  const Alignment axis(kNaN, elements);
  EXPECT_EQ(axis.startStation(), 0.0);
  EXPECT_EQ(axis.endStation(), 20.0);
  EXPECT_THAT(axis.poseAt(15), IsPose(15, 0, 90, 1e-12));
  EXPECT_THAT(axis.stationOffset({15, 2}), test::IsStationOffset(15, -2, 1e-12));
}

TEST(Alignment, IsAValue) {
  Alignment axis = Alignment::fromText("heading 90; line 100");
  const Alignment copy = axis;
  axis = Alignment::fromText("heading 0; line 5");
  EXPECT_THAT(copy.stationOffset({20, 1}), test::IsStationOffset(20, -1, 1e-12));
  EXPECT_THAT(axis.stationOffset({1, 2}), test::IsStationOffset(2, 1, 1e-12));
  const Alignment moved = std::move(axis);
  EXPECT_EQ(moved.endStation(), 5.0);
  EXPECT_EQ(moved.stationOfElement(1), 5.0);
  EXPECT_THAT(moved.stationOffset({1, 2}), test::IsStationOffset(2, 1, 1e-12)) << "what was searched in moved along";
}

// Which of them finds that nobody has asked before is up to chance, so there are many rounds.
TEST(Alignment, AnswersTheFirstQuestionOfSeveralThreadsAtOnce) {
  const auto made = [] {
    return Alignment::fromText(
        "start 1000 at 0 0 heading 90; line 100; clothoid 60 R inf..300 right; arc 80 R 300 right; line 500");
  };
  const Alignment asked = made();
  std::vector<Vec2> points;
  std::vector<StationOffset> wanted;
  for (int i = 0; i < 40; ++i) {
    points.push_back({20.0 * i - 30.0, 7.0 - 11.0 * i});
    wanted.push_back(*asked.stationOffset(points.back()));
  }
  constexpr std::size_t kThreads = 4;
  for (int round = 0; round < 100; ++round) {
    const Alignment axis = made();
    std::latch start(kThreads);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        start.arrive_and_wait();
        for (std::size_t i = 0; i < points.size(); ++i) {
          const std::size_t at = (i + 10 * t) % points.size();
          const auto found = axis.stationOffset(points[at]);
          if (!found || found->station != wanted[at].station || found->offset != wanted[at].offset) ++wrong;
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    ASSERT_EQ(wrong, 0);
  }
}

}  // namespace
}  // namespace lvx::civil
