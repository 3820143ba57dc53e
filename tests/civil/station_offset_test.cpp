#include <limits>

#include <gtest/gtest.h>

#include "civil/alignment.h"
#include "civil_makers.h"
#include "reference_axis.h"
#include "support/random_numbers.h"

namespace lvx::civil {
namespace {

using test::IsStationOffset;
using test::ReferenceAxis;
using test::ReferenceFoot;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---------------------------------------------------------------- the rules, by hand

struct Row {
  const char* what;
  const char* axis;
  Vec2 point;
  double station;
  double offset;
};

class Rules : public testing::TestWithParam<Row> {};

TEST_P(Rules, Hold) {
  const Row& row = GetParam();
  EXPECT_THAT(Alignment::fromText(row.axis).stationOffset(row.point), IsStationOffset(row.station, row.offset, 1e-11))
      << row.what;
}

const char* const kSquare = "to 100 0; to 100 100";
const char* const kWinding =
    "start 500 at 4512.3456 1234.5678 heading 47; line 40; clothoid 50 R inf..150 left; arc 60 R 150 left; clothoid 50 "
    "R "
    "150..inf left; bloss 45 R inf..110 right; arc 70 R 110 right; sinusoid 60 R 110..inf right; line 35; arc 50 R 400 "
    "left; line 45";
const char* const kCircle = "at 50 0 heading 0; arc 157.07963267948966 R 50 left; arc 157.07963267948966 R 50 left";

const Row kRows[] = {
    {"left is negative", "heading 90; line 100", {30, 4}, 30, -4},
    {"right is positive", "heading 90; line 100", {30, -4}, 30, 4},
    {"on the axis", "heading 90; line 100", {30, 0}, 30, 0},
    {"before the start", "start 1000 heading 90; line 100", {-10, 5}, 990, -5},
    {"beyond the end", "start 1000 heading 90; line 100", {107, -5}, 1107, 5},
    {"straight before the start", "heading 90; line 100", {-10, 0}, -10, 0},
    {"far beyond", "heading 90; line 100", {5e6, -3e6}, 5e6, 3e6},
    {"beyond an arc's end, by its tangent",
     "heading 90; arc 78.53981633974483 R 50 left",
     {53, 57},
     78.53981633974483 + 7,
     3},
    {"inside an arc",
     "heading 90; arc 78.53981633974483 R 50 left",
     {20 * 0.6, 50 - 20 * 0.8},
     50 * 0.6435011087932844,
     -30},
    {"outside an arc",
     "heading 90; arc 78.53981633974483 R 50 left",
     {60 * 0.6, 50 - 60 * 0.8},
     50 * 0.6435011087932844,
     10},
    {"across the centre of a long arc",
     "heading 90; arc 200 R 50 left",
     {-6, 58},
     50 * (kPi + 0.6435011087932844),
     -40},
    {"centre of an arc: all equally near", "start 7 heading 90; arc 60 R 50 left", {0, 50}, 7, -50},
    {"centre of an arc to the right", "start 7 heading 90; arc 60 R 50 right", {0, -50}, 7, 50},
    {"centre of an arc after a line", "heading 90; line 10; arc 300 R 50 left", {10, 50}, 10, -50},
    {"opposite a short arc: both ends equally near",
     "at -30 40 heading 53.13010235415598; arc 64.35011087932844 R 50 right",
     {0, -1000},
     -600,
     850},
    {"between two parallels: the smaller station", "to 100 0; to 100 50; to 0 50", {20, 25}, 20, -25},
    {"inside a corner on its bisector", kSquare, {95, 5}, 95, -5},
    {"outside a corner", kSquare, {110, -10}, 100, 14.142135623730951},
    {"outside a corner, square to the first side", kSquare, {100, -10}, 100, 10},
    {"outside a corner, ahead of it", kSquare, {110, 0}, 100, 10},
    {"tip of a hairpin: left of the first side, right of the bisector",
     "to 100 0; to 0 10",
     {110, 1},
     100,
     10.04987562112089},
    {"tip of a hairpin to the right", "to 100 0; to 0 -10", {110, 1}, 100, -10.04987562112089},
    {"straight back, beyond the tip", "to 100 0; to 0 0", {110, 3}, 100, 10.44030650891055},
    {"straight back, beside it", "to 100 0; to 0 0", {40, 3}, 40, -3},
    {"closed circle, outside on the seam", kCircle, {60, 0}, 0, 10},
    {"closed circle, just before the seam",
     kCircle,
     {60 * std::cos(0.1), -60 * std::sin(0.1)},
     50 * (2 * kPi - 0.1),
     10},
    {"closed circle, its centre", kCircle, {0, 0}, 0, -50},
    {"closed square, outside its seam's corner: the start's tangent",
     "to 10 0; to 10 10; to 0 10; to 0 0",
     {-3, -2},
     -3,
     2},
    {"elements without length are passed over",
     "heading 90; line 0; line 50; heading 10; arc 0 R 5 left; heading 90; line 50; line 0",
     {50, 3},
     50,
     -3},
    {"gap: a foot on the later side", "heading 90; line 100; at 200 5; line 50", {210, 10}, 110, -5},
    {"gap: the end before it is nearer", "heading 90; line 100; at 200 5; line 50", {120, 5}, 100, -20.615528128088304},
    {"gap: the start behind it is nearer",
     "heading 90; line 100; at 200 5; line 50",
     {190, 5 - 1e-3},
     100,
     std::sqrt(100 + 1e-6)},
    {"overlap: the nearer foot", "heading 90; line 100; at 80 4; line 50", {90, 3}, 110, 1},
};

INSTANTIATE_TEST_SUITE_P(StationOffset, Rules, testing::ValuesIn(kRows),
                         [](const auto& row) { return "Row" + std::to_string(row.index); });

TEST(StationOffset, HasNoAnswerForAPointThatIsNone) {
  const auto axis = Alignment::fromText("heading 90; line 100; arc 50 R 20 left");
  EXPECT_FALSE(axis.stationOffset({kNaN, 0}));
  EXPECT_FALSE(axis.stationOffset({0, kInfinity}));
  EXPECT_FALSE(axis.stationOffset({1e300, 0}));
}

TEST(StationOffset, HasNoAnswerWhereTheOnlyElementIsTooFarToMeasure) {
  // The first one turns too often to be searched.
  const Alignment axis(0.0, {Element{ElementKind::Clothoid, {0, 0}, 0.0, 1.0, 0.0, 1e9, {}},
                             Element{ElementKind::Arc, {1e200, 2}, 1e15, 1e200, 1e-300, 0.0, {}}});
  EXPECT_FALSE(axis.stationOffset({0, 1}));
}

TEST(StationOffset, IsZeroWithoutASignForPointsOnTheAxis) {
  const auto axis = Alignment::fromText(
      "at 2543210.123 6712345.678 heading 33; line 77; clothoid 60 R inf..200 right; arc 90 R 200 right; clothoid 60 R "
      "200..inf right; line 40");
  for (double station = 0.0; station <= axis.length(); station += 3.7) {
    const auto found = axis.stationOffset(axis.poseAt(station)->point);
    ASSERT_TRUE(found);
    EXPECT_NEAR(found->station, station, 1e-8);
    EXPECT_EQ(found->offset, 0.0) << station;
    EXPECT_FALSE(std::signbit(found->offset)) << station;
  }
}

TEST(StationOffset, KeepsOffsetsOfAMicrometre) {
  const auto axis = Alignment::fromText("at 543210.123 712345.678 heading 33; line 77; clothoid 60 R inf..200 right");
  for (const double offset : {1e-6, -1e-6}) {
    for (double station = 1.0; station < axis.length(); station += 11.0) {
      EXPECT_NEAR(axis.stationOffset(axis.pointLocation(station, offset)->point)->offset, offset, 5e-10);
    }
  }
}

// ---------------------------------------------------------------- against looking everywhere

struct Shape {
  const char* name;
  Alignment axis;
};

Alignment withInflection(double startCurvature, double endCurvature, double length,
                         ElementKind law = ElementKind::Clothoid) {
  return {100.0, {Element{law, {10, 20}, 0.4, length, startCurvature, endCurvature, {}}}};
}

// As drawings give elements: starts and directions rounded, so that each misses the next by a little.
Alignment rounded(const Alignment& axis, double place, double direction) {
  std::vector<Element> elements(axis.elements().begin(), axis.elements().end());
  for (Element& element : elements) {
    element.start = {std::round(element.start.x / place) * place, std::round(element.start.y / place) * place};
    element.direction = std::round(element.direction / direction) * direction;
  }
  return {axis.startStation(), std::move(elements)};
}

std::vector<Shape> shapes() {
  const auto text = [](const char* t) { return Alignment::fromText(t); };
  return {
      {"road", text("start 1000 at 0 0 heading 90; line 100; clothoid 60 R inf..300 right; arc 80 R 300 right; "
                    "clothoid 60 R 300..inf right; line 50")},
      {"S curve", text("at 50 60 heading 20; clothoid 50 R inf..80 left; arc 60 R 80 left; clothoid 50 R 80..inf left; "
                       "clothoid 40 R inf..60 right; arc 50 R 60 right; clothoid 40 R 60..inf right")},
      {"compound", text("heading 300; arc 100 R 200 left; clothoid 70 R 200..60 left; arc 50 R 60 left; clothoid 60 R "
                        "60..150 left; line 20")},
      {"hairpin of more than half a circle",
       text("line 80; clothoid 40 R inf..15 right; arc 40 R 15 right; clothoid 40 R 15..inf right; line 80")},
      {"one clothoid of more than half a circle", text("line 20; clothoid 300 R 200..20 left; line 10")},
      {"coiled inwards", text("clothoid 200 R inf..5 left")},
      {"coiled outwards", text("clothoid 250 R 4..100 right; line 30")},
      {"through the straight", withInflection(-1.0 / 60.0, 1.0 / 40.0, 180.0)},
      {"double coil", withInflection(0.1, -0.12, 250.0)},
      {"clothoid meets clothoid", text("clothoid 60 R inf..40 left; clothoid 60 R 40..inf left; clothoid 60 R inf..30 "
                                       "left; clothoid 80 R 30..inf left")},
      {"corners", text("to 100 0; to 100 100; to 90 20; to 0 120; to 60 60; to 60 61")},
      {"corners of arcs", text("arc 60 R 40 left; heading 200; arc 90 R 30 right; heading 10; clothoid 50 R 20..inf "
                               "left; heading 280; line 30")},
      {"reversed", text("to 100 0; to 0 0; to 100 0.001")},
      {"closed circle", text(kCircle)},
      {"nearly closed arc", text("arc 310 R 50 right")},
      {"without length in between", text("line 0; line 30; arc 0 R 5 left; arc 30 R 20 left; clothoid 0 R 5..10 left; "
                                         "clothoid 30 R 20..inf left; line 0")},
      {"gaps", text("line 50; at 0.0005 50.0003; heading 0.05; arc 40 R 60 left; at -30 90; clothoid 60 R inf..50 "
                    "right; at 0 160; line 40")},
      {"loop over itself", text("heading 90; line 220; clothoid 40 R inf..60 left; arc 242.7 R 60 left; clothoid 40 R "
                                "60..inf left; line 220")},
      {"many short elements",
       text("heading 20; arc 3 R 40 left; arc 2 R 90 right; line 1; clothoid 4 R inf..70 left; "
            "arc 3 R 70 left; arc 2 R 40 left; line 3; arc 4 R 80 right; bloss 5 R 80..inf right; "
            "line 60; arc 2 R 300 left; arc 2 R 200 left; arc 2 R 100 left; arc 70 R 120 left")},
      {"rounded to micrometres", rounded(text(kWinding), 1e-6, 1e-9)},
      {"rounded to millimetres", rounded(text(kWinding), 1e-3, 1e-5)},
      {"rounded to centimetres", rounded(text(kWinding), 1e-2, 1e-4)},
      {"flat", text("heading 80; line 500; clothoid 300 R inf..1e7 left; arc 300 R 1e7 left; clothoid 300 R 1e7..2000 "
                    "left; arc 400 R 1e9 left")},
      {"bloss road", text("start 1000 heading 90; line 100; bloss 60 R inf..300 right; arc 80 R 300 right; bloss 60 R "
                          "300..inf right; line 50")},
      {"four laws", text("at 50 60 heading 20; bloss 50 R inf..80 left; arc 60 R 80 left; cosine 50 R 80..inf left; "
                         "biquadratic 40 R inf..60 right; arc 50 R 60 right; sinusoid 60 R 60..inf right")},
      {"compound of four laws", text("heading 300; bloss 70 R 200..60 left; cosine 60 R 60..150 left; biquadratic 50 R "
                                     "150..40 left; sinusoid 70 R 40..400 left")},
      {"bloss coiled inwards", text("bloss 200 R inf..8 left")},
      {"cosine of more than half a circle", text("line 20; cosine 300 R 200..20 left; line 10")},
      {"biquadratic coiled outwards", text("biquadratic 150 R 8..100 right; line 30")},
      {"sinusoid through the straight", withInflection(-1.0 / 60.0, 1.0 / 40.0, 180.0, ElementKind::Sinusoid)},
      {"biquadratic through the straight", withInflection(-1.0 / 60.0, 1.0 / 60.0, 180.0, ElementKind::Biquadratic)},
      {"bloss through the straight", withInflection(0.05, -0.01, 150.0, ElementKind::Bloss)},
      {"cosine double coil", withInflection(0.05, -0.06, 250.0, ElementKind::Cosine)},
      {"rail",
       text("start 5e4 at 2543210.123 6712345.678 heading 33; bloss 250 R inf..2000 right; arc 300 R 2000 right; "
            "sinusoid 250 R 2000..inf right")},
      {"tiny", text("line 0.001; arc 0.002 R 0.001 left; clothoid 0.003 R 0.001..inf left; line 0.001")},
      {"far from the origin",
       text("start 12345.678 at 2543210.123 6712345.678 heading 33; line 77; clothoid 60 R inf..200 right; arc 190 R "
            "200 right; "
            "clothoid 60 R 200..inf right; clothoid 45 R inf..90 left; arc 200 R 90 left; line 40")},
  };
}

class Comparison {
 public:
  Comparison(const Shape& shape, std::mt19937 random) : shape_(shape), reference_(shape.axis), random_(random) {}

  double between(double low, double high) {
    return low + (high - low) * (static_cast<double>(random_()) / static_cast<double>(std::mt19937::max()));
  }
  double anyStation() { return between(shape_.axis.startStation(), shape_.axis.endStation()); }

  void compare(Vec2 point) {
    const ReferenceFoot wanted = reference_.nearest(point);
    const auto found = shape_.axis.stationOffset(point);
    const auto where = [&] {
      std::ostringstream text;
      text.imbue(std::locale::classic());
      text.precision(17);
      text << shape_.name << ", point " << point.x << " " << point.y << ", margin "
           << static_cast<double>(wanted.margin) << ", conditioning " << static_cast<double>(wanted.conditioning);
      return text.str();
    };
    ASSERT_TRUE(found) << where();
    const auto station = static_cast<double>(wanted.station);
    const auto offset = static_cast<double>(wanted.offset);
    ++points_;
    // Which of two places is meant is open where they are equally near, and where on a circle near its centre.
    const double rounding = 1e-12 + 1e-15 * (std::abs(point.x) + std::abs(point.y));
    if (wanted.margin < 1e-8L || wanted.marginBeside < rounding || wanted.conditioning < 1e-2L) {
      // Beyond an end the offset isn't the distance.
      const bool isBeyond = found->station < shape_.axis.startStation() || found->station > shape_.axis.endStation();
      const bool wasBeyond = station < shape_.axis.startStation() || station > shape_.axis.endStation();
      if (!isBeyond && !wasBeyond) {
        EXPECT_NEAR(std::abs(found->offset), static_cast<double>(wanted.distance), 1e-8) << where();
      }
      return;
    }
    ++decided_;
    const double stationTolerance = 1e-8 / std::min(1.0, static_cast<double>(wanted.conditioning));
    ASSERT_NEAR(found->station, station, stationTolerance) << where();
    ASSERT_NEAR(found->offset, offset, 1e-8) << where();
  }

  void expectMostDecided() const { EXPECT_GT(decided_, points_ / 3) << shape_.name << " of " << points_; }

 private:
  const Shape& shape_;
  ReferenceAxis reference_;
  std::mt19937 random_;
  int points_ = 0;
  int decided_ = 0;
};

TEST(StationOffset, AgreesWithASearchEverywhereNearTheAxis) {
  for (const Shape& shape : shapes()) {
    Comparison comparison(shape, lvx::test::seededByTestName());
    for (int i = 0; i < 30; ++i) {
      const double reach = std::pow(10.0, comparison.between(-3.0, 2.2));
      comparison.compare(shape.axis.pointLocation(comparison.anyStation(), comparison.between(-reach, reach))->point);
      if (HasFatalFailure()) return;
    }
    comparison.expectMostDecided();
  }
}

TEST(StationOffset, AgreesWithASearchEverywhereFarFromTheAxis) {
  for (const Shape& shape : shapes()) {
    Comparison comparison(shape, lvx::test::seededByTestName());
    const Vec2 start = shape.axis.poseAt(shape.axis.startStation())->point;
    for (int i = 0; i < 40; ++i) {
      const double reach = std::pow(10.0, comparison.between(1.0, 4.5));
      comparison.compare(start + Vec2{comparison.between(-reach, reach), comparison.between(-reach, reach)});
      if (HasFatalFailure()) return;
    }
    comparison.expectMostDecided();
  }
}

TEST(StationOffset, AgreesWithASearchEverywhereNearCentresOfCurvature) {
  for (const Shape& shape : shapes()) {
    Comparison comparison(shape, lvx::test::seededByTestName());
    for (int i = 0; i < 30; ++i) {
      const double station = comparison.anyStation();
      std::size_t element = 0;
      while (shape.axis.stationOfElement(element + 1) < station) ++element;
      const double curvature =
          shape.axis.elements()[element].curvatureAt(station - shape.axis.stationOfElement(element));
      if (std::abs(curvature) < 1e-5) continue;
      const Vec2 center = shape.axis.pointLocation(station, -1.0 / curvature)->point;
      const double reach = std::pow(10.0, comparison.between(-7.0, 1.0));
      comparison.compare(center + Vec2{comparison.between(-reach, reach), comparison.between(-reach, reach)});
      if (HasFatalFailure()) return;
    }
  }
}

TEST(StationOffset, AgreesWithASearchEverywhereAroundJoints) {
  for (const Shape& shape : shapes()) {
    Comparison comparison(shape, lvx::test::seededByTestName());
    for (std::size_t element = 0; element <= shape.axis.elements().size(); ++element) {
      for (int i = 0; i < 25; ++i) {
        const double reach = std::pow(10.0, comparison.between(-6.0, 0.0));
        const double station = shape.axis.stationOfElement(element) + comparison.between(-reach, reach);
        const double offset = comparison.between(-30.0, 30.0);
        if (const auto pose = shape.axis.pointLocation(station, offset, reach)) comparison.compare(pose->point);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(StationOffset, UndoesPointLocation) {
  auto random = lvx::test::seededByTestName();
  const auto between = [&](double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / static_cast<double>(std::mt19937::max()));
  };
  const Shape road = shapes().front();
  for (int i = 0; i < 5000; ++i) {
    const double station = between(road.axis.startStation(), road.axis.endStation());
    const double offset = between(-150.0, 150.0);
    const auto found = road.axis.stationOffset(road.axis.pointLocation(station, offset)->point);
    EXPECT_THAT(found, IsStationOffset(station, offset, 1e-9));
  }
}

TEST(StationOffset, OfAReversedAxisMirrorsThatOfTheAxis) {
  const auto forward = Alignment::fromText(
      "heading 90; line 40; clothoid 60 R inf..50 left; arc 70 R 50 left; clothoid 30 R 50..20 left; line 10");
  std::vector<Element> elements;
  for (std::size_t i = forward.elements().size(); i-- > 0;) {
    const Element& e = forward.elements()[i];
    const Pose end = e.endPose();
    elements.push_back({e.kind, end.point, end.direction + kPi, e.length, -e.endCurvature, -e.startCurvature, e.start});
  }
  const Alignment backward(0.0, elements);
  auto random = lvx::test::seededByTestName();
  const auto between = [&](double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / static_cast<double>(std::mt19937::max()));
  };
  for (int i = 0; i < 3000; ++i) {
    const Vec2 point{between(-100, 250), between(-150, 200)};
    const auto there = forward.stationOffset(point);
    const auto back = backward.stationOffset(point);
    ASSERT_TRUE(there && back);
    EXPECT_THAT(back, IsStationOffset(forward.length() - there->station, -there->offset, 1e-8))
        << point.x << " " << point.y;
  }
}

TEST(StationOffset, AnswersWhateverTheElementsHold) {
  auto random = lvx::test::seededByTestName();
  const auto pick = [&](std::initializer_list<double> values) { return *(values.begin() + random() % values.size()); };
  int answers = 0;
  for (int i = 0; i < 400; ++i) {
    std::vector<Element> elements;
    for (int k = 0; k < 3; ++k) {
      Element element;
      element.kind = static_cast<ElementKind>(random() % 7);
      element.start = {pick({0, 1, 1e9, -1e150, kNaN}), pick({0, 2, -3e7, kInfinity})};
      element.direction = pick({0, 1, -4, 1e9, kNaN});
      element.length = pick({0, 1e-12, 1, 300, 1e7, 1e308, kNaN});
      element.startCurvature = pick({0, 0.01, -5, 1e-300, 1e9, kNaN});
      element.endCurvature = pick({0, -0.02, 3, 1e-9, -1e12, kInfinity});
      elements.push_back(element);
    }
    const Alignment axis(0.0, elements);
    (void)axis.poseAt(0.5 * axis.endStation());
    if (axis.stationOffset({pick({0, 5, 1e8}), pick({1, -7, 1e12})})) ++answers;
  }
  EXPECT_GT(answers, 50);
}

TEST(StationOffset, SearchesAnAxisOfManyElements) {
  std::vector<Element> elements;
  for (int i = 0; i < 5000; ++i)
    elements.push_back(makeLine({i * 2.0, (i % 2) * 1.0}, {(i + 1) * 2.0, ((i + 1) % 2) * 1.0}));
  const Alignment axis(0.0, elements);
  const double root5 = std::sqrt(5.0);
  // Middle of segment 1234, 0.1 to its left.
  const Vec2 middle{1234 * 2.0 + 1.0, 0.5};
  EXPECT_THAT(axis.stationOffset(middle + 0.1 / root5 * Vec2{-1, 2}), IsStationOffset(1234.5 * root5, -0.1, 1e-9));
}

}  // namespace
}  // namespace lvx::civil
