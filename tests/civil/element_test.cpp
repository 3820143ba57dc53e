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

// ---------------------------------------------------------------- the other transitions

constexpr ElementKind kLaws[] = {ElementKind::Bloss, ElementKind::Cosine, ElementKind::Biquadratic,
                                 ElementKind::Sinusoid};

Element transition(ElementKind law, Vec2 start, double direction, double length, double startCurvature,
                   double endCurvature) {
  return {law, start, direction, length, startCurvature, endCurvature, {}};
}

// Tables of positions as railways publish them: 100 m to the left, from radius to radius.
TEST(Transition, PassesThroughPublishedPositions) {
  const struct {
    ElementKind law;
    double startRadius, endRadius, distance, x, y;
  } rows[] = {
      {ElementKind::Bloss, kInfinity, 300, 1, 0.9999999999999920, 0.0000000830000000},
      {ElementKind::Bloss, kInfinity, 300, 33, 32.9997522645090000, 0.0857810379405941},
      {ElementKind::Bloss, kInfinity, 300, 50, 49.9962110370024000, 0.4166387925376010},
      {ElementKind::Bloss, kInfinity, 300, 51, 50.9956960244912000, 0.4487249469273380},
      {ElementKind::Bloss, kInfinity, 300, 100, 99.7468064174602000, 4.9898110423849500},
      {ElementKind::Bloss, 300, 1000, 1, 0.9999981483040800, 0.0016666070236725},
      {ElementKind::Bloss, 300, 1000, 33, 32.9386125714163000, 1.7533514555347500},
      {ElementKind::Bloss, 300, 1000, 50, 49.8053597780260000, 3.8677538356523700},
      {ElementKind::Bloss, 300, 1000, 51, 50.7947395317034000, 4.0131062284831600},
      {ElementKind::Bloss, 300, 1000, 100, 98.9341998449655000, 13.1041208021889000},
      {ElementKind::Cosine, kInfinity, 300, 1, 0.9999999999999950, 0.0000000685366647},
      {ElementKind::Cosine, kInfinity, 300, 33, 32.9997895254430000, 0.0784244588213045},
      {ElementKind::Cosine, kInfinity, 300, 50, 49.9965364029406000, 0.3946222864040520},
      {ElementKind::Cosine, kInfinity, 300, 51, 50.9960519789311000, 0.4257410032525220},
      {ElementKind::Cosine, kInfinity, 300, 100, 99.7484553577365000, 4.9458206877227200},
      {ElementKind::Cosine, 300, 1000, 1, 0.9999981482771090, 0.0016666171479698},
      {ElementKind::Cosine, 300, 1000, 33, 32.9381992104856000, 1.7584836970910100},
      {ElementKind::Cosine, 300, 1000, 50, 49.8036538655621000, 3.8830677560884300},
      {ElementKind::Cosine, 300, 1000, 51, 50.7929349095389000, 4.0290904646374100},
      {ElementKind::Cosine, 300, 1000, 100, 98.9298874350011000, 13.1346246946288000},
      {ElementKind::Biquadratic, kInfinity, 300, 1, 0.9999999999999970, 0.0000000555555556},
      {ElementKind::Biquadratic, kInfinity, 300, 33, 32.9998496708253000, 0.0658842198763726},
      {ElementKind::Biquadratic, kInfinity, 300, 50, 49.9972443634885000, 0.3472043614274750},
      {ElementKind::Biquadratic, kInfinity, 300, 51, 50.9968346568973000, 0.3758226167931420},
      {ElementKind::Biquadratic, kInfinity, 300, 100, 99.7517634462451000, 4.8510605228736400},
      {ElementKind::Biquadratic, 300, 1000, 1, 0.9999981482528790, 0.0016666262347125},
      {ElementKind::Biquadratic, 300, 1000, 33, 32.9374695682884000, 1.7672303533900000},
      {ElementKind::Biquadratic, 300, 1000, 50, 49.7998035122387000, 3.9160314532925500},
      {ElementKind::Biquadratic, 300, 1000, 51, 50.7888273393673000, 4.0637862721508900},
      {ElementKind::Biquadratic, 300, 1000, 100, 98.9204802175707000, 13.2003138962093000},
      {ElementKind::Sinusoid, kInfinity, 300, 1, 1.0000000000000000, 0.0000000010965196},
      {ElementKind::Sinusoid, kInfinity, 300, 33, 32.9999385601198000, 0.0387759773679903},
      {ElementKind::Sinusoid, kInfinity, 300, 50, 49.9980741364418000, 0.2722616866324760},
      {ElementKind::Sinusoid, kInfinity, 300, 51, 50.9977457330320000, 0.2978831255580100},
      {ElementKind::Sinusoid, kInfinity, 300, 100, 99.7569805097155000, 4.7013207024844200},
      {ElementKind::Sinusoid, 300, 1000, 1, 0.9999981481513090, 0.0016666643558967},
      {ElementKind::Sinusoid, 300, 1000, 33, 32.9359318940993000, 1.7861405732851800},
      {ElementKind::Sinusoid, 300, 1000, 50, 49.7939732141883000, 3.9681515234718900},
      {ElementKind::Sinusoid, 300, 1000, 51, 50.7826847937442000, 4.1179815258911900},
      {ElementKind::Sinusoid, 300, 1000, 100, 98.9056108357451000, 13.3041082336709000},
  };
  for (const auto& row : rows) {
    const Element curve = transition(row.law, {0, 0}, 0.0, 100.0, 1 / row.startRadius, 1 / row.endRadius);
    const Vec2 point = curve.poseAt(row.distance).point;
    EXPECT_NEAR(point.x, row.x, 3e-13) << kindName(row.law) << " at " << row.distance;
    EXPECT_NEAR(point.y, row.y, 3e-13) << kindName(row.law) << " at " << row.distance;
  }
  EXPECT_EQ(std::size(rows), 40u);
}

TEST(Transition, AgreesWithQuadratureFromFlatToCoiled) {
  const struct {
    double length, startRadius, endRadius;  // signed; infinity straight
  } rows[] = {
      {100, kInfinity, 300}, {100, 300, kInfinity}, {60, 300, 120},    {60, -120, -300},  {1000, kInfinity, 500},
      {1000, 80, 1000},      {1000, kInfinity, 15}, {200, -5, 40},     {300, 100, -80},   {50, 1e8, kInfinity},
      {1e-3, 5, 2},          {1000, 2, kInfinity},  {1000, -300, 300}, {1000, 333, -400},
  };
  for (const ElementKind law : kLaws) {
    for (const auto& row : rows) {
      const Element curve = transition(law, {12.0, -7.0}, 2.3, row.length, 1 / row.startRadius, 1 / row.endRadius);
      const ReferenceElement reference(curve);
      for (const double share : {0.0, 0.001, 0.3, 0.4999, 0.5, 0.5001, 0.77, 1.0}) {
        const double s = share * row.length;
        EXPECT_LT(distanceTo(curve.poseAt(s).point, reference.pointAt(s)), 2e-12 + 1e-13 * row.length)
            << kindName(law) << ", " << row.length << " m from R " << row.startRadius << " to " << row.endRadius
            << " at " << s;
        EXPECT_NEAR(curve.directionAt(s), static_cast<double>(reference.angleAt(s)), 1e-12);
        EXPECT_EQ(curve.directionAt(s), curve.poseAt(s).direction);
        EXPECT_NEAR(curve.curvatureAt(s), static_cast<double>(reference.curvatureAt(s)), 1e-14);
      }
    }
  }
  EXPECT_EQ(std::size(rows), 14u);
}

TEST(Transition, TurnsByTheSameAngleWhateverItsLaw) {
  for (const ElementKind law : kLaws) {
    const Element curve = transition(law, {3, 4}, 0.5, 120.0, -1.0 / 90.0, 1.0 / 250.0);
    EXPECT_NEAR(curve.endPose().direction, 0.5 + 60.0 * (-1.0 / 90.0 + 1.0 / 250.0), 1e-14) << kindName(law);
  }
}

TEST(Transition, GoesOnBeyondItsEndsWithTheCurvatureThere) {
  for (const ElementKind law : kLaws) {
    const Element curve = transition(law, {3, 4}, 0.5, 120.0, -1.0 / 90.0, 1.0 / 250.0);
    EXPECT_EQ(curve.curvatureAt(-5.0), -1.0 / 90.0);
    EXPECT_DOUBLE_EQ(curve.curvatureAt(125.0), 1.0 / 250.0);
    const Element before{ElementKind::Arc, curve.start, curve.direction, 0.0, -1.0 / 90.0, -1.0 / 90.0, {}};
    const Pose end = curve.endPose();
    const Element behind{ElementKind::Arc, end.point, end.direction, 0.0, 1.0 / 250.0, 1.0 / 250.0, {}};
    for (const double beyond : {0.001, 10.0, 700.0}) {
      EXPECT_LT(length(curve.poseAt(-beyond).point - before.poseAt(-beyond).point), 1e-12);
      EXPECT_LT(length(curve.poseAt(120.0 + beyond).point - behind.poseAt(beyond).point), 1e-11);
      EXPECT_NEAR(curve.poseAt(120.0 + beyond).direction, behind.poseAt(beyond).direction, 1e-14);
    }
  }
}

TEST(Transition, MirrorsItselfDrivenBackwards) {
  for (const ElementKind law : kLaws) {
    const Element there = transition(law, {100, 200}, 1.1, 150.0, 1.0 / 400.0, -1.0 / 120.0);
    const Pose end = there.endPose();
    const Element back = transition(law, end.point, end.direction + kPi, 150.0, 1.0 / 120.0, -1.0 / 400.0);
    for (const double s : {0.0, 31.0, 75.0, 110.0, 150.0}) {
      EXPECT_LT(length(back.poseAt(150.0 - s).point - there.poseAt(s).point), 1e-12) << kindName(law) << " at " << s;
    }
  }
}

TEST(Transition, PassesFromOneSideToTheOtherAtItsInflection) {
  EXPECT_NEAR(*clothoid({0, 0}, 0.0, 100.0, -0.01, 0.03).inflection(), 25.0, 1e-12);
  for (const ElementKind law : kLaws) {
    const Element curve = transition(law, {0, 0}, 0.0, 100.0, -0.01, 0.03);
    ASSERT_TRUE(curve.inflection());
    EXPECT_GT(*curve.inflection(), 25.0) << kindName(law) << " starts more gently than a clothoid";
    EXPECT_LT(*curve.inflection(), 50.0);
    EXPECT_NEAR(curve.curvatureAt(*curve.inflection()), 0.0, 1e-16) << kindName(law);
    EXPECT_NEAR(*transition(law, {0, 0}, 0.0, 100.0, 0.02, -0.02).inflection(), 50.0, 1e-12);
    EXPECT_FALSE(transition(law, {0, 0}, 0.0, 100.0, 0.0, 0.02).inflection());
    EXPECT_FALSE(transition(law, {0, 0}, 0.0, 100.0, -0.01, -0.02).inflection());
  }
  EXPECT_FALSE((Element{ElementKind::Arc, {0, 0}, 0.0, 100.0, 0.01, 0.01, {}}.inflection()));
}

TEST(Transition, ComesBackFromWhatADrawingGives) {
  const struct {
    double length;
    std::optional<double> startRadius, endRadius;
    Turn turn;
  } rows[] = {
      {80, std::nullopt, 250, Turn::Left},
      {80, 250, std::nullopt, Turn::Right},
      {60, 400, 150, Turn::Right},
      {200, 100, 30, Turn::Left},
  };
  for (const ElementKind law : kLaws) {
    for (const auto& row : rows) {
      const double sense = row.turn == Turn::Left ? 1.0 : -1.0;
      const Element given =
          transition(law, {4321.5, 8765.25}, 0.7, row.length, row.startRadius ? sense / *row.startRadius : 0.0,
                     row.endRadius ? sense / *row.endRadius : 0.0);
      const Pose end = given.endPose();
      const double t =
          cross(end.point - given.start, unit(end.direction)) / cross(unit(given.direction), unit(end.direction));
      const Vec2 pi = given.start + t * unit(given.direction);
      for (const std::optional<Vec2> corner : {std::optional(pi), std::optional<Vec2>()}) {
        const Element made =
            makeTransition(law, given.start, corner, end.point, row.length, row.startRadius, row.endRadius, row.turn);
        EXPECT_EQ(made.kind, law);
        EXPECT_NEAR(std::remainder(made.direction - given.direction, kTwoPi), 0.0, 1e-9) << kindName(law);
        EXPECT_LT(length(made.endPose().point - end.point), 1e-8) << kindName(law);
      }
    }
    EXPECT_EQ(makeTransition(law, {0, 0}, std::nullopt, {9, 9}, 20, 50, 50, Turn::Left).kind, ElementKind::Arc);
    EXPECT_EQ(makeTransition(law, {0, 0}, std::nullopt, {9, 9}, 20, std::nullopt, 0.0, Turn::Left).kind,
              ElementKind::Line);
  }
}

TEST(Transition, StaysFiniteWhateverItHolds) {
  for (const ElementKind law : kLaws) {
    for (const double size : {0.0, 1e-300, 1e-12, 1e6, 1e300}) {
      const Element curve = transition(law, {0, 0}, 0.0, size, 1e-9, 0.7);
      for (const double distance : {-1.0, 0.0, 0.5 * size, size, 2.0}) {
        EXPECT_TRUE(std::isfinite(curve.poseAt(distance).point.x)) << kindName(law) << " " << size << " " << distance;
      }
    }
  }
}

}  // namespace
}  // namespace lvx::civil
