#include "civil/element.h"

#include <limits>

#include <gtest/gtest.h>

#include "reference_axis.h"

namespace lvx::civil {
namespace {

using test::RealPoint;
using test::ReferenceElement;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double distanceTo(Vec2 a, RealPoint b) { return static_cast<double>(std::hypot(a.x - b.x, a.y - b.y)); }

Element clothoid(Vec2 start, double direction, double length, double startCurvature, double endCurvature) {
  return {ElementKind::Clothoid, start, direction, length, startCurvature, endCurvature, {}};
}

TEST(Angles, AreReducedToOneTurnFromZero) {
  EXPECT_EQ(normalizedAngle(0.0), 0.0);
  EXPECT_FALSE(std::signbit(normalizedAngle(-0.0)));
  EXPECT_EQ(normalizedAngle(kTwoPi), 0.0);
  EXPECT_EQ(normalizedAngle(-1e-20), 0.0) << "a hair below 0 is the full turn once rounded, which isn't below it";
  EXPECT_NEAR(normalizedAngle(-1.0), kTwoPi - 1.0, 1e-15);
  EXPECT_NEAR(normalizedAngle(7.0), 7.0 - kTwoPi, 1e-15);
  EXPECT_TRUE(std::isnan(normalizedAngle(kInfinity)));
}

TEST(Angles, AzimuthRunsClockwiseFromNorthAndIsItsOwnInverse) {
  EXPECT_EQ(azimuthOf(0.5 * kPi), 0.0);
  EXPECT_EQ(azimuthOf(0.0), 0.5 * kPi);
  EXPECT_NEAR(azimuthOf(kPi), 1.5 * kPi, 1e-15);
  for (const double angle : {0.1, 1.7, 3.0, 4.5, 6.2}) EXPECT_NEAR(azimuthOf(azimuthOf(angle)), angle, 1e-15);
}

TEST(Line, RunsFromStartToEndAndBeyond) {
  const Element line = makeLine({10.0, 20.0}, {13.0, 24.0});
  EXPECT_EQ(line.kind, ElementKind::Line);
  EXPECT_DOUBLE_EQ(line.length, 5.0);
  EXPECT_NEAR(line.poseAt(10.0).point.x, 16.0, 1e-14);
  EXPECT_NEAR(line.poseAt(-5.0).point.y, 16.0, 1e-14);
  EXPECT_EQ(line.givenEnd, (Vec2{13.0, 24.0}));
}

TEST(Line, OfNoLengthHasDirectionZero) {
  const Element line = makeLine({-1.0, -2.0}, {-1.0, -2.0});
  EXPECT_EQ(line.length, 0.0);
  EXPECT_EQ(line.direction, 0.0);
}

TEST(Arc, TakesItsAngleInTheSenseOfItsTurn) {
  const double root = std::sqrt(0.5);
  const struct {
    const char* what;
    Vec2 start, center, end;
    Turn turn;
    double length, direction, curvature;
  } rows[] = {
      {"quarter left", {10, 0}, {0, 0}, {0, 10}, Turn::Left, 5 * kPi, 0.5 * kPi, 0.1},
      {"three quarters right", {10, 0}, {0, 0}, {0, 10}, Turn::Right, 15 * kPi, -0.5 * kPi, -0.1},
      {"half left", {10, 0}, {0, 0}, {-10, 0}, Turn::Left, 10 * kPi, 0.5 * kPi, 0.1},
      {"half right", {10, 0}, {0, 0}, {-10, 0}, Turn::Right, 10 * kPi, -0.5 * kPi, -0.1},
      {"an end off the circle counts by its direction",
       {10, 0},
       {0, 0},
       {0, 10.5},
       Turn::Left,
       5 * kPi,
       0.5 * kPi,
       0.1},
      {"nearly full",
       {10, 0},
       {0, 0},
       {10 * std::cos(0.001), -10 * std::sin(0.001)},
       Turn::Left,
       10 * (kTwoPi - 0.001),
       0.5 * kPi,
       0.1},
      {"far from the origin",
       {5000010, 6000000},
       {5000000, 6000000},
       {5000000 + 10 * root, 6000000 + 10 * root},
       Turn::Left,
       2.5 * kPi,
       0.5 * kPi,
       0.1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const Element arc = makeArc(row.start, row.center, row.end, row.turn);
    EXPECT_EQ(arc.kind, ElementKind::Arc);
    EXPECT_NEAR(arc.length, row.length, 1e-8);
    EXPECT_NEAR(arc.direction, row.direction, 1e-14);
    EXPECT_NEAR(arc.startCurvature, row.curvature, 1e-16);
    EXPECT_EQ(arc.endCurvature, arc.startCurvature);
  }
  EXPECT_EQ(std::size(rows), 7u);
}

TEST(Arc, EndsWhereItIsGivenToEnd) {
  const Element arc = makeArc({110, 50}, {60, 50}, {60, 100}, Turn::Right);
  EXPECT_NEAR(arc.length, 75 * kPi, 1e-12);
  EXPECT_NEAR(arc.endPose().point.x, 60.0, 1e-12);
  EXPECT_NEAR(arc.endPose().point.y, 100.0, 1e-12);
  EXPECT_NEAR(normalizedAngle(arc.endPose().direction), 0.0, 1e-14);
}

TEST(Arc, WithOneStartAndEndHasNoLength) {
  EXPECT_EQ(makeArc({10, 0}, {0, 0}, {10, 0}, Turn::Left).length, 0.0);
  EXPECT_EQ(makeArc({10, 0}, {0, 0}, {10, -1e-12}, Turn::Left).length, 0.0) << "not the full circle for a rounding";
}

TEST(Arc, WithoutARadiusHasNoLength) {
  const Element arc = makeArc({3, 4}, {3, 4}, {5, 5}, Turn::Left);
  EXPECT_EQ(arc.length, 0.0);
  EXPECT_EQ(arc.startCurvature, 0.0);
}

TEST(Arc, StaysExactAsItsRadiusGrows) {
  for (const double radius : {1.0, 1e3, 1e6, 1e9, 1e12, 1e15}) {
    const Element arc{ElementKind::Arc, {0, 0}, 0.0, 1000.0, 1 / radius, 1 / radius, {}};
    const Vec2 end = arc.poseAt(0.5).point;
    const long double turn = 0.5L / radius;
    EXPECT_NEAR(end.x, static_cast<double>(radius * std::sin(turn)), 1e-15);
    EXPECT_NEAR(end.y, static_cast<double>(2 * radius * std::sin(turn / 2) * std::sin(turn / 2)), 1e-15);
  }
}

// Fresnel's integrals, as tables print them: the point of the clothoid of rate pi at distance t.
TEST(Clothoid, PassesThroughThePublishedFresnelIntegrals) {
  const struct {
    double t, c, s;
  } rows[] = {
      {0.5, 0.4923442258714464, 0.0647324328599993},
      {1.0, 0.7798934003768228, 0.4382591473903548},
      {2.0, 0.4882534060753408, 0.3434156783636982},
      {5.0, 0.5636311887040122, 0.4991913819171169},
  };
  const Element spiral = clothoid({0, 0}, 0.0, 5.0, 0.0, 5.0 * kPi);
  for (const auto& row : rows) {
    EXPECT_NEAR(spiral.poseAt(row.t).point.x, row.c, 2e-15) << row.t;
    EXPECT_NEAR(spiral.poseAt(row.t).point.y, row.s, 2e-15) << row.t;
    EXPECT_NEAR(spiral.poseAt(-row.t).point.x, -row.c, 2e-15) << row.t;
    EXPECT_NEAR(spiral.poseAt(row.t).direction, 0.5 * kPi * row.t * row.t, 1e-13) << row.t;
  }
  EXPECT_EQ(std::size(rows), 4u);
}

TEST(Clothoid, AgreesWithQuadratureFromFlatToCoiled) {
  const struct {
    double length, startRadius, endRadius;  // signed; infinity straight
  } rows[] = {
      {100, kInfinity, 300},  {100, 300, kInfinity}, {60, 300, 120},        {60, -120, -300},
      {1000, kInfinity, 500}, {1000, 80, 1000},      {1000, kInfinity, 15}, {200, -5, 40},
      {300, 100, -80},        {50, 1e8, kInfinity},  {1e-3, 5, 2},          {1000, 2, kInfinity},
  };
  for (const auto& row : rows) {
    const Element spiral = clothoid({12.0, -7.0}, 2.3, row.length, 1 / row.startRadius, 1 / row.endRadius);
    const ReferenceElement reference(spiral);
    for (const double share : {-0.2, 0.0, 0.001, 0.3, 0.5, 0.77, 1.0, 1.1}) {
      const double s = share * row.length;
      EXPECT_LT(distanceTo(spiral.poseAt(s).point, reference.pointAt(s)), 2e-12 + 2e-15 * row.length)
          << row.length << " m from R " << row.startRadius << " to " << row.endRadius << " at " << s;
      EXPECT_NEAR(spiral.poseAt(s).direction, static_cast<double>(reference.angleAt(s)), 1e-12);
      EXPECT_NEAR(spiral.curvatureAt(s), static_cast<double>(reference.curvatureAt(s)), 1e-14);
    }
  }
  EXPECT_EQ(std::size(rows), 12u);
}

// Builds a clothoid, takes from it what a drawing gives, and wants it back: with its PI, and by its chord.
TEST(Clothoid, ComesBackFromWhatADrawingGives) {
  const struct {
    const char* what;
    double length;
    std::optional<double> startRadius, endRadius;
    Turn turn;
  } rows[] = {
      {"leaves a line", 80, std::nullopt, 250, Turn::Left},
      {"reaches a line", 80, 250, std::nullopt, Turn::Right},
      {"between two radii", 60, 400, 150, Turn::Right},
      {"hairpin of more than half a circle", 200, 100, 30, Turn::Left},
      {"more than half a circle to the right", 200, 30, 100, Turn::Right},
      {"more than a full circle", 200, 10, 40, Turn::Left},
      {"flat", 100, std::nullopt, 1e7, Turn::Left},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const double sense = row.turn == Turn::Left ? 1.0 : -1.0;
    const Element given = clothoid({4321.5, 8765.25}, 0.7, row.length, row.startRadius ? sense / *row.startRadius : 0.0,
                                   row.endRadius ? sense / *row.endRadius : 0.0);
    const ReferenceElement reference(given);
    const RealPoint last = reference.pointAt(reference.length());
    const Vec2 end{static_cast<double>(last.x), static_cast<double>(last.y)};
    // Crossing of the end tangents.
    const long double a = reference.angleAt(reference.length());
    const long double t = ((last.x - given.start.x) * std::sin(a) - (last.y - given.start.y) * std::cos(a)) /
                          std::sin(a - given.direction);
    const Vec2 pi{static_cast<double>(given.start.x + t * std::cos(given.direction)),
                  static_cast<double>(given.start.y + t * std::sin(given.direction))};

    const Element byPi = makeClothoid(given.start, pi, end, row.length, row.startRadius, row.endRadius, row.turn);
    EXPECT_EQ(byPi.kind, ElementKind::Clothoid);
    EXPECT_NEAR(std::remainder(byPi.direction - given.direction, kTwoPi), 0.0, 1e-9);
    EXPECT_NEAR(byPi.endPose().point.x, end.x, 1e-8);
    EXPECT_NEAR(byPi.endPose().point.y, end.y, 1e-8);
    EXPECT_DOUBLE_EQ(byPi.startCurvature, given.startCurvature);

    const Element byChord =
        makeClothoid(given.start, std::nullopt, end, row.length, row.startRadius, row.endRadius, row.turn);
    EXPECT_NEAR(std::remainder(byChord.direction - given.direction, kTwoPi), 0.0, 1e-9);
    EXPECT_NEAR(byChord.endPose().point.x, end.x, 1e-8);
    EXPECT_NEAR(byChord.endPose().point.y, end.y, 1e-8);
  }
  EXPECT_EQ(std::size(rows), 7u);
}

TEST(Clothoid, WithEqualRadiiIsAnArcAndWithoutAnyALine) {
  const Element arc = makeClothoid({0, 0}, Vec2{10, 0}, {20, 5}, 30, 50, 50, Turn::Right);
  EXPECT_EQ(arc.kind, ElementKind::Arc);
  EXPECT_DOUBLE_EQ(arc.startCurvature, -0.02);
  EXPECT_DOUBLE_EQ(arc.length, 30);

  const Element line = makeClothoid({0, 0}, std::nullopt, {0, 31}, 30, std::nullopt, kInfinity, Turn::Right);
  EXPECT_EQ(line.kind, ElementKind::Line);
  EXPECT_DOUBLE_EQ(line.length, 30);
  EXPECT_NEAR(line.endPose().point.y, 30, 1e-14);
  EXPECT_FALSE(std::signbit(line.startCurvature));
}

TEST(Clothoid, PassesOverTheSignOfARadiusAndTakesZeroForStraight) {
  const Element spiral = makeClothoid({0, 0}, Vec2{10, 0}, {60, 3}, 60, 0.0, -300, Turn::Right);
  EXPECT_EQ(spiral.startCurvature, 0.0);
  EXPECT_DOUBLE_EQ(spiral.endCurvature, -1.0 / 300.0);
}

TEST(Clothoid, TakesTheChordWhereItsPiLiesOnTheStart) {
  const Element byChord = makeClothoid({0, 0}, std::nullopt, {60, 3}, 60, std::nullopt, 300, Turn::Left);
  const Element onStart = makeClothoid({0, 0}, Vec2{0, 0}, {60, 3}, 60, std::nullopt, 300, Turn::Left);
  EXPECT_EQ(onStart.direction, byChord.direction);
  const Vec2 end = byChord.endPose().point;
  EXPECT_NEAR(std::atan2(end.y, end.x), std::atan2(3.0, 60.0), 1e-15);
}

TEST(Elements, SurviveWhatNoDrawingShouldHold) {
  for (const double bad : {kNaN, kInfinity, -kInfinity, 1e300, -5.0, 0.0}) {
    for (const Element& element :
         {makeLine({bad, 0}, {1, 1}), makeArc({bad, 0}, {0, 0}, {1, 1}, Turn::Left),
          makeArc({1, 0}, {bad, 0}, {1, 1}, Turn::Left), makeArc({1, 0}, {0, 0}, {1, bad}, Turn::Right),
          makeClothoid({0, 0}, Vec2{bad, 1}, {1, 1}, 10, 5, std::nullopt, Turn::Left),
          makeClothoid({0, 0}, std::nullopt, {1, 1}, bad, 5, std::nullopt, Turn::Left),
          makeClothoid({0, 0}, std::nullopt, {1, bad}, 10, bad, 7, Turn::Left),
          makeClothoid({0, 0}, std::nullopt, {1, 1}, 10, 1e-300, std::nullopt, Turn::Left)}) {
      (void)element.poseAt(bad);
      (void)element.endPose();
      (void)element.curvatureAt(bad);
      EXPECT_FALSE(element.length < 0.0);
    }
  }
}

}  // namespace
}  // namespace lvx::civil
