#include "civil/profile.h"

#include <limits>

#include <gtest/gtest.h>

#include "civil_makers.h"
#include "support/random_numbers.h"

namespace lvx::civil {
namespace {

using test::designProfile;
using test::groundProfile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Profile, AnswersAsItsWorkedExampleSays) {
  const auto road = Profile::design({{0, 100.0}, {200, 104.0, VerticalCurveKind::Parabola, 80}, {400, 102.0}});
  EXPECT_NEAR(*road.elevationAt(200), 103.7, 1e-12);
  EXPECT_NEAR(*road.gradeAt(100), 0.02, 1e-15);
}

TEST(DesignProfile, RunsAlongItsTangentsAndBeyondItsEnds) {
  const Profile profile = designProfile("100 50; 200 54; 300 52");
  const struct {
    double station, elevation;
  } rows[] = {{100, 50}, {150, 52}, {200, 54}, {250, 53}, {300, 52}, {50, 48}, {400, 50}, {-900, 10}};
  for (const auto& row : rows) EXPECT_NEAR(*profile.elevationAt(row.station), row.elevation, 1e-12) << row.station;
  EXPECT_EQ(std::size(rows), 8u);
  EXPECT_EQ(profile.startStation(), 100);
  EXPECT_EQ(profile.endStation(), 300);
  EXPECT_FALSE(profile.isGround());
  EXPECT_THAT(profile.warnings(), IsEmpty());
}

TEST(DesignProfile, RoundsOffByAParabola) {
  const Profile profile = designProfile("0 10; 100 12; 100 12; 300 4");
  EXPECT_NEAR(*profile.elevationAt(100), 12, 1e-12);
  // From +2 % to -4 % over 60 m: y = z0 + 0.02 d - 0.0005 d^2.
  const Profile rounded = designProfile("0 10; 100 12 parabola 60; 300 4");
  for (const double d : {0.0, 10.0, 30.0, 45.0, 60.0}) {
    EXPECT_NEAR(*rounded.elevationAt(70 + d), 11.4 + 0.02 * d - 0.0005 * d * d, 1e-12) << d;
  }
  EXPECT_NEAR(*rounded.elevationAt(69), 11.38, 1e-12);
  EXPECT_NEAR(*rounded.elevationAt(131), 10.76, 1e-12);
}

TEST(DesignProfile, RoundsOffByAnUnsymmetricParabolaThatIsTwoSymmetricOnes) {
  // +3 % over 20 m and -2 % over 30 m: the pieces meet at grade (0.03 * 20 - 0.02 * 30) / 50 = 0.
  const Profile profile = designProfile("0 10; 100 13 unsymmetric 20 30; 200 11");
  EXPECT_NEAR(*profile.elevationAt(80), 12.4, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(90), 12.4 + 0.3 - 0.075, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(100), 12.7, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(115), 12.7 - 0.075, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(130), 12.4, 1e-12);
  EXPECT_THAT(profile.warnings(), IsEmpty());

  const auto records = profile.records();
  ASSERT_EQ(records.size(), 4u);
  EXPECT_NEAR(records[1].station, 90, 1e-12);
  EXPECT_NEAR(records[1].elevation, 12.7, 1e-12);
  EXPECT_NEAR(records[1].halfLength, 10, 1e-12);
  EXPECT_NEAR(records[1].gradeIn, 0.03, 1e-15);
  EXPECT_NEAR(records[1].gradeOut, 0.0, 1e-15);
  EXPECT_NEAR(records[1].radius, 20 / 0.03, 1e-9);
  EXPECT_NEAR(records[2].station, 115, 1e-12);
  EXPECT_NEAR(records[2].elevation, 12.7, 1e-12);
  EXPECT_NEAR(records[2].halfLength, 15, 1e-12);
  EXPECT_NEAR(records[2].gradeOut, -0.02, 1e-15);
  EXPECT_NEAR(records[2].radius, 1500, 1e-9);
}

// The circle itself: a point of it lies a radius from the centre, which lies square to both tangents.
TEST(DesignProfile, RoundsOffByTheTrueCircle) {
  const struct {
    const char* what;
    const char* text;
    double station, elevation, gradeIn, gradeOut, radius;
  } rows[] = {
      {"crest", "0 0; 100 3 circle 800; 200 1", 100, 3, 0.03, -0.02, 800},
      {"crest with a negative radius", "0 0; 100 3 circle -800; 200 1", 100, 3, 0.03, -0.02, 800},
      {"sag with a negative radius", "0 0; 100 -3 circle -800; 200 1", 100, -3, -0.03, 0.04, 800},
      {"steep", "0 0; 100 100 circle 50; 200 50", 100, 100, 1, -0.5, 50},
      {"steep sag", "0 100; 100 0 circle 60; 200 80", 100, 0, -1, 0.8, 60},
      {"flat", "0 0; 1000 1 circle 1e6; 3000 4", 1000, 1, 0.001, 0.0015, 1e6},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const Profile profile = designProfile(row.text);
    EXPECT_THAT(profile.warnings(), IsEmpty());
    const long double in = std::atan(static_cast<long double>(row.gradeIn));
    const long double out = std::atan(static_cast<long double>(row.gradeOut));
    const long double tangent = row.radius * std::tan(std::abs(out - in) / 2);
    const long double start = row.station - tangent * std::cos(in);
    const long double end = row.station + tangent * std::cos(out);
    const long double side = out > in ? 1 : -1;
    const long double centreStation = start - side * row.radius * std::sin(in);
    const long double centre = row.elevation - tangent * std::sin(in) + side * row.radius * std::cos(in);
    for (const long double share : {0.0L, 0.1L, 0.5L, 0.8L, 1.0L}) {
      const auto station = static_cast<double>(start + share * (end - start));
      const long double d = station - centreStation;
      const long double wanted = centre - side * std::sqrt(row.radius * static_cast<long double>(row.radius) - d * d);
      EXPECT_NEAR(*profile.elevationAt(station), static_cast<double>(wanted), 1e-11) << station;
    }
    EXPECT_NEAR(*profile.elevationAt(static_cast<double>(start) - 1),
                row.elevation + row.gradeIn * static_cast<double>(start - 1 - row.station), 1e-11);
    EXPECT_NEAR(*profile.elevationAt(static_cast<double>(end) + 1),
                row.elevation + row.gradeOut * static_cast<double>(end + 1 - row.station), 1e-11);

    const auto records = profile.records();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_DOUBLE_EQ(records[1].radius, row.radius);
    EXPECT_NEAR(records[1].halfLength, row.radius * std::abs(row.gradeOut - row.gradeIn) / 2, 1e-9);
  }
  EXPECT_EQ(std::size(rows), 6u);
}

TEST(DesignProfile, GivesRecordsOfParabolasOnly) {
  const auto records = designProfile("0 10; 100 12 parabola 60; 200 8; 300 4 parabola 40; 400 0").records();
  ASSERT_EQ(records.size(), 5u);
  EXPECT_NEAR(records[0].gradeIn, 0.02, 1e-15) << "an end takes the grade of its other side";
  EXPECT_NEAR(records[0].gradeOut, 0.02, 1e-15);
  EXPECT_NEAR(records[1].radius, 1000, 1e-9);
  EXPECT_NEAR(records[1].halfLength, 30, 1e-12);
  EXPECT_EQ(records[2].radius, 0);
  EXPECT_EQ(records[2].halfLength, 0);
  EXPECT_NEAR(records[3].halfLength, 20, 1e-12) << "between equal grades";
  EXPECT_EQ(records[3].radius, 0);
  EXPECT_NEAR(records[4].gradeOut, -0.04, 1e-15);
  EXPECT_EQ(records[4].station, 400);
}

// Elevations again from the records, as a reader of them would compute.
TEST(DesignProfile, SaysTheSameByRecordsAndByElevations) {
  auto random = lvx::test::seededByTestName();
  const auto between = [&](double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / static_cast<double>(std::mt19937::max()));
  };
  for (int round = 0; round < 200; ++round) {
    std::vector<VerticalPoint> points;
    for (int i = 0; i < 8; ++i) {
      VerticalPoint point{100.0 * i,      between(0, 6),  static_cast<VerticalCurveKind>(random() % 3),
                          between(1, 49), between(1, 49), 0};
      if (i == 0 || i == 7) point.kind = VerticalCurveKind::None;
      points.push_back(point);
    }
    const Profile profile = Profile::design(points);
    EXPECT_THAT(profile.warnings(), IsEmpty());
    const auto records = profile.records();
    for (int k = 0; k < 50; ++k) {
      const double station = between(0, 700);
      double wanted = kNaN;
      for (std::size_t i = 0; i < records.size(); ++i) {
        const VerticalRecord& r = records[i];
        const double d = station - (r.station - r.halfLength);
        if (d >= 0 && d <= 2 * r.halfLength && r.halfLength > 0) {
          wanted = r.elevation - r.gradeIn * r.halfLength + r.gradeIn * d +
                   (r.gradeOut - r.gradeIn) / (4 * r.halfLength) * d * d;
        }
      }
      for (std::size_t i = 1; std::isnan(wanted) && i < records.size(); ++i) {
        if (station <= records[i].station)
          wanted = records[i].elevation + records[i].gradeIn * (station - records[i].station);
      }
      ASSERT_NEAR(*profile.elevationAt(station), wanted, 1e-10) << station;
    }
  }
}

TEST(DesignProfile, LeavesOutACurveThatCantBeDrawnAndSaysSo) {
  const struct {
    const char* text;
    const char* warning;
  } rows[] = {
      {"0 0; 50 1 parabola 0; 100 0", "parabola at 50: length 0"},
      {"0 0; 50 1 parabola -3; 100 0", "parabola at 50: length -3"},
      {"0 0; 50 1 circle 0; 100 0", "circular curve at 50: radius 0"},
      {"0 0; 50 1 unsymmetric 10 0; 100 0", "unsymmetric parabola at 50: lengths 10 and 0"},
      {"0 0 parabola 10; 50 1; 100 0", "parabola at 0: no tangent on one side"},
      {"0 0; 50 1; 100 0 circle 50", "circular curve at 100: no tangent on one side"},
      {"0 0; 50 1 circle -500; 50 1; 100 0", "circular curve at 50: no tangent on one side"},
      {"0 0; 50 1; 50 1 parabola 10; 100 0", "parabola at 50: no tangent on one side"},
  };
  for (const auto& row : rows) {
    const Profile profile = designProfile(row.text);
    EXPECT_THAT(profile.warnings(), ElementsAre(HasSubstr(row.warning))) << row.text;
    EXPECT_NEAR(*profile.elevationAt(48), 0.96, 1e-12) << row.text;
    EXPECT_NEAR(*profile.elevationAt(52), 0.96, 1e-12) << row.text;
    for (const VerticalRecord& record : profile.records()) EXPECT_EQ(record.halfLength, 0) << row.text;
  }
  EXPECT_EQ(std::size(rows), 8u);
}

TEST(DesignProfile, LetsTheFirstOfTwoOverlappingCurvesAnswer) {
  const Profile profile = designProfile("0 0; 100 2 parabola 120; 200 0 parabola 120; 300 2");
  EXPECT_THAT(profile.warnings(), ElementsAre(HasSubstr("parabola at 200: overlaps the curve before it")));
  const auto first = [](double s) { return 0.8 + 0.02 * (s - 40) - 0.04 / 240 * (s - 40) * (s - 40); };
  const auto second = [](double s) { return 1.2 - 0.02 * (s - 140) + 0.04 / 240 * (s - 140) * (s - 140); };
  EXPECT_NEAR(*profile.elevationAt(150), first(150), 1e-12);
  EXPECT_NEAR(*profile.elevationAt(160), first(160), 1e-12);
  EXPECT_NEAR(*profile.elevationAt(161), second(161), 1e-12);
  EXPECT_EQ(profile.records().size(), 4u) << "both stay";
}

TEST(DesignProfile, KeepsCurvesThatTouchWithoutAWord) {
  EXPECT_THAT(designProfile("0 0; 100 2 parabola 100; 200 0 parabola 100.0005; 300 2").warnings(), IsEmpty());
}

TEST(DesignProfile, KeepsACurveLongerThanItsTangentsAndSaysSo) {
  const Profile profile = designProfile("80 1.6; 100 2 parabola 60; 200 0");
  EXPECT_THAT(profile.warnings(), ElementsAre(HasSubstr("longer than its tangents")));
  EXPECT_NEAR(*profile.elevationAt(70), 1.4, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(100), 2 - 0.04 * 60 / 8, 1e-12);
}

TEST(DesignProfile, HalvesAnUnsymmetricParabolaWhoseLengthsAreDoubled) {
  // Drawn over 100 m and 80 m, written 200 and 160: so it would pass the points before and after it.
  const Profile doubled = designProfile("0 0; 120 3 unsymmetric 200 160; 240 1 unsymmetric 80 160; 400 4");
  const Profile right = designProfile("0 0; 120 3 unsymmetric 100 80; 240 1 unsymmetric 40 80; 400 4");
  EXPECT_THAT(doubled.warnings(), ElementsAre(HasSubstr("at 120: lengths 200 and 160 run into a neighbour, taken half"),
                                              HasSubstr("at 240:")));
  EXPECT_THAT(right.warnings(), IsEmpty());
  for (double s = 0; s < 400; s += 7) EXPECT_NEAR(*doubled.elevationAt(s), *right.elevationAt(s), 1e-12) << s;
}

TEST(DesignProfile, LeavesAnUnsymmetricParabolaThatHalvingDoesntHelp) {
  const Profile profile = designProfile("0 0; 120 3 unsymmetric 600 20; 240 1");
  EXPECT_THAT(profile.warnings(), ElementsAre(HasSubstr("longer than its tangents")));
  EXPECT_EQ(profile.points()[1].length, 600);
}

TEST(DesignProfile, SortsItsPointsAndKeepsTheOrderOfEqualOnes) {
  const Profile profile = designProfile("200 4; 0 0; 100 2; 100 3");
  EXPECT_EQ(profile.startStation(), 0);
  EXPECT_NEAR(*profile.elevationAt(99.5), 1.99, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(100), 3, 1e-12) << "of two points at one station the later answers";
  EXPECT_NEAR(*profile.elevationAt(150), 3.5, 1e-12);
  const auto records = profile.records();
  ASSERT_EQ(records.size(), 4u);
  EXPECT_NEAR(records[1].gradeOut, 0.01, 1e-15) << "across the step, that of the next tangent";
}

TEST(DesignProfile, DropsPointsThatAreNoNumbers) {
  std::vector<VerticalPoint> points = test::verticalPoints("0 0; 50 5; 100 0");
  points[1].elevation = kNaN;
  const Profile profile = Profile::design(points);
  EXPECT_THAT(profile.warnings(), ElementsAre(HasSubstr("1 point without a finite")));
  EXPECT_EQ(*profile.elevationAt(50), 0);
}

TEST(Profile, OfOnePointIsLevel) {
  const Profile profile = designProfile("50 7");
  for (const double s : {-1e6, 50.0, 1e6}) EXPECT_EQ(*profile.elevationAt(s), 7);
  ASSERT_EQ(profile.records().size(), 1u);
  EXPECT_EQ(profile.records()[0].gradeOut, 0);
}

TEST(Profile, WithoutPointsHasNoElevation) {
  const Profile profiles[] = {Profile(), Profile::design({}), Profile::ground({}), Profile::ground({{}, {}})};
  for (const Profile& profile : profiles) {
    EXPECT_TRUE(profile.isEmpty());
    EXPECT_FALSE(profile.elevationAt(0));
    EXPECT_THAT(profile.records(), IsEmpty());
    EXPECT_EQ(profile.startStation(), 0);
  }
  EXPECT_FALSE(designProfile("0 1; 2 3").elevationAt(kNaN));
}

TEST(GroundProfile, PassesItsGapsByTheStraightLine) {
  const Profile profile = groundProfile("100 50; 180 51.2; 260 50.6 | 300 50.2; 400 51");
  EXPECT_TRUE(profile.isGround());
  EXPECT_EQ(profile.gapCount(), 1u);
  EXPECT_NEAR(*profile.elevationAt(140), 50.6, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(280), 50.4, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(350), 50.6, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(90), 49.85, 1e-12);
  const auto records = profile.records();
  ASSERT_EQ(records.size(), 5u);
  for (const VerticalRecord& record : records) EXPECT_EQ(record.radius + record.halfLength, 0);
  EXPECT_NEAR(records[2].gradeOut, -0.01, 1e-15) << "across the gap";
}

TEST(GroundProfile, TakesItsListsInAnyOrder) {
  const Profile profile = groundProfile("40 9; 60 8 | 20 12; 0 10 | 60 8; 70 8");
  EXPECT_EQ(profile.gapCount(), 1u) << "lists that meet leave no gap";
  EXPECT_NEAR(*profile.elevationAt(10), 11, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(30), 10.5, 1e-12);
  EXPECT_THAT(groundProfile("0 1; 50 2 | 40 3; 60 4").warnings(), ElementsAre(HasSubstr("ground lines overlap at 40")));
}

TEST(GroundProfile, TellsWhereItsGapsAre) {
  const Profile profile = groundProfile("200 9; 260 8 | 100 50; 180 51 | 260 8; 300 8 | 400 1; 410 1");
  const auto gaps = profile.gaps();
  ASSERT_EQ(gaps.size(), 2u);
  EXPECT_EQ(gaps[0].startStation, 180);
  EXPECT_EQ(gaps[0].endStation, 200);
  EXPECT_EQ(gaps[1].startStation, 300);
  EXPECT_EQ(gaps[1].endStation, 400);
  EXPECT_TRUE(designProfile("0 1; 2 3").gaps().empty());
}

TEST(Profile, HasTheGradeThatItsElevationsRiseBy) {
  const Profile profile = designProfile(
      "0 100; 200 104 parabola 100; 400 98 unsymmetric 60 90; 600 100 circle 3000; 800 96 circle 900; 900 99");
  constexpr double kStep = 1e-3;
  for (double station = -20.5; station < 930.0; station += 7.0) {
    const double rise = (*profile.elevationAt(station + kStep) - *profile.elevationAt(station - kStep)) / (2 * kStep);
    EXPECT_NEAR(*profile.gradeAt(station), rise, 1e-7) << station;
  }
  EXPECT_NEAR(*designProfile("0 0; 10 1; 20 -1").gradeAt(10), -0.2, 1e-12) << "behind the station";
  EXPECT_EQ(designProfile("5 1").gradeAt(7), 0.0);
  EXPECT_FALSE(Profile().gradeAt(0));
  EXPECT_FALSE(profile.gradeAt(kNaN));
  EXPECT_NEAR(*groundProfile("0 0; 10 1 | 20 3; 30 3").gradeAt(15), 0.2, 1e-12);
}

TEST(DesignProfile, TellsWhereItsCurvesAre) {
  const Profile profile = designProfile("0 100; 200 104 parabola 100; 400 98 unsymmetric 60 90; 500 99; 800 96");
  const auto curves = profile.curves();
  ASSERT_EQ(curves.size(), 2u);
  EXPECT_EQ(curves[0].point, 1u);
  EXPECT_NEAR(curves[0].startStation, 150, 1e-12);
  EXPECT_NEAR(curves[0].endStation, 250, 1e-12);
  EXPECT_NEAR(curves[0].gradeIn, 0.02, 1e-12);
  EXPECT_NEAR(curves[0].gradeOut, -0.03, 1e-12);
  EXPECT_EQ(curves[1].point, 2u);
  EXPECT_NEAR(curves[1].startStation, 340, 1e-12);
  EXPECT_NEAR(curves[1].endStation, 490, 1e-12);
  EXPECT_TRUE(Profile().curves().empty());
}

TEST(GroundProfile, StandsUprightAtAWall) {
  const Profile profile = groundProfile("0 10; 20 10; 20 14; 40 14");
  EXPECT_NEAR(*profile.elevationAt(19.999), 10, 1e-12);
  EXPECT_NEAR(*profile.elevationAt(20), 14, 1e-12);
}

TEST(Profile, SurvivesWhatNoDrawingShouldHold) {
  auto random = lvx::test::seededByTestName();
  const auto pick = [&](std::initializer_list<double> values) { return *(values.begin() + random() % values.size()); };
  for (int round = 0; round < 2000; ++round) {
    std::vector<VerticalPoint> points;
    for (std::size_t i = random() % 6; i-- > 0;) {
      points.push_back({pick({0, 1, 1, 50, 1e308, -1e308, kNaN}), pick({0, 1, -1e308, 1e308, kInfinity}),
                        static_cast<VerticalCurveKind>(random() % 4), pick({0, 1, 1e308, -2, kNaN, kInfinity}),
                        pick({0, 1, 70, kNaN}), pick({0, 1, -1e9, 1e308, kNaN, kInfinity})});
    }
    const Profile profile = Profile::design(points);
    for (const double s : {-1e308, 0.0, 1.0, 25.0, kInfinity}) (void)profile.elevationAt(s);
    EXPECT_GE(profile.records().size(), profile.points().size());
    std::vector<ProfilePoint> ground;
    for (const VerticalPoint& point : points) ground.push_back({point.station, point.elevation});
    (void)Profile::ground({ground, ground});
  }
}

}  // namespace
}  // namespace lvx::civil
