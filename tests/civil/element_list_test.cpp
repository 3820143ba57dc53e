#include "civil/element_list.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "civil/alignment.h"
#include "civil_makers.h"
#include "support/random_numbers.h"

namespace lvx::civil {
namespace {

bool areSame(const Element& a, const Element& b) {
  return a.kind == b.kind && a.start == b.start && a.direction == b.direction && a.length == b.length &&
         a.startCurvature == b.startCurvature && a.endCurvature == b.endCurvature && a.givenEnd == b.givenEnd;
}

/// Polylines of many lengths between elements that are none, and the same elements one by one.
struct Mixed {
  ElementList list;
  std::vector<Element> plain;

  Mixed() {
    auto random = lvx::test::seededByTestName();
    const auto number = [&] { return static_cast<double>(random() % 1'000'000) / 1000.0; };
    for (int i = 0; i < 60; ++i) {
      if (random() % 3 == 0) {
        const Vec2 start{number(), number()};
        add(makeArc(start, start + Vec2{0.0, 300.0}, start + Vec2{300.0, 300.0}, Turn::Left));
      } else if (random() % 3 == 0) {
        add(makeLine({number(), number()}, {number(), number()}));
      } else {
        std::vector<Vec2> points;
        for (std::size_t k = 2 + random() % 20; k > 0; --k) points.push_back({number(), number()});
        list.addPolyline(points);
        for (std::size_t k = 0; k + 1 < points.size(); ++k) plain.push_back(makeLine(points[k], points[k + 1]));
      }
    }
  }
  void add(const Element& element) {
    list.add(element);
    plain.push_back(element);
  }
};

TEST(ElementList, GivesElementsOfPolylinesToTheBit) {
  const Mixed mixed;
  ASSERT_EQ(mixed.list.size(), mixed.plain.size());
  for (std::size_t i = 0; i < mixed.plain.size(); ++i) {
    EXPECT_TRUE(areSame(mixed.list.at(i), mixed.plain[i])) << i;
    EXPECT_EQ(mixed.list.lengthAt(i), mixed.plain[i].length) << i;
  }
  for (const ElementKind kind : {ElementKind::Line, ElementKind::Arc, ElementKind::Clothoid}) {
    EXPECT_EQ(mixed.list.count(kind),
              static_cast<std::size_t>(std::count_if(mixed.plain.begin(), mixed.plain.end(),
                                                     [&](const Element& element) { return element.kind == kind; })));
  }
}

TEST(ElementList, ScalesLikeItsElements) {
  Mixed mixed;
  ElementList plain(mixed.plain);
  for (const double factor : {1200.0 / 3937.0, 0.3048}) {
    mixed.list.scale(factor);
    plain.scale(factor);
    ASSERT_EQ(mixed.list.size(), plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
      EXPECT_TRUE(areSame(mixed.list.at(i), plain.at(i))) << i;
      EXPECT_EQ(mixed.list.lengthAt(i), plain.lengthAt(i)) << i;
    }
  }
}

TEST(ElementList, TakesPolylinesOfAnyLength) {
  ElementList list;
  list.addPolyline({});
  list.addPolyline(std::vector<Vec2>{{1, 2}});
  EXPECT_TRUE(list.isEmpty());
  list.addPolyline(std::vector<Vec2>{{1, 2}, {1, 5}});
  EXPECT_EQ(list.size(), 1U);
  EXPECT_EQ(list.lengthAt(0), 3.0);
}

// Stations and places don't tell which elements are kept whole.
TEST(ElementList, MakesTheSameAlignmentAsItsElements) {
  const Mixed mixed;
  const Alignment packed(100.0, mixed.list);
  const Alignment plain(100.0, mixed.plain);
  ASSERT_EQ(packed.endStation(), plain.endStation());
  double sum = 100.0;
  for (std::size_t i = 0; i <= mixed.plain.size(); ++i) {
    EXPECT_EQ(packed.stationOfElement(i), sum) << i;
    EXPECT_EQ(plain.stationOfElement(i), sum) << i;
    if (i < mixed.plain.size()) sum += mixed.plain[i].length;
  }
  for (double station = 100.0; station <= plain.endStation(); station += 97.0) {
    const auto a = packed.poseAt(station);
    const auto b = plain.poseAt(station);
    ASSERT_TRUE(a && b);
    EXPECT_EQ(a->point, b->point) << station;
    EXPECT_EQ(a->direction, b->direction) << station;
    const auto foot = packed.stationOffset(a->point + Vec2{3.0, 1.0});
    const auto other = plain.stationOffset(a->point + Vec2{3.0, 1.0});
    ASSERT_TRUE(foot && other);
    EXPECT_EQ(foot->station, other->station);
    EXPECT_EQ(foot->offset, other->offset);
  }
}

TEST(ElementList, PassesOverManyElementsWithoutLengthAtAStation) {
  for (const int empty : {0, 1, 7, 8, 9, 30}) {
    std::vector<Element> elements{makeLine({0, 0}, {10, 0})};
    elements.insert(elements.end(), static_cast<std::size_t>(empty), makeLine({10, 0}, {10, 0}));
    const Alignment ends(0.0, elements);
    EXPECT_EQ(ends.poseAt(10.0)->point, (Vec2{10, 0})) << empty;
    elements.push_back(makeLine({10, 0}, {10, 5}));
    const Alignment goesOn(0.0, elements);
    EXPECT_NEAR(goesOn.poseAt(10.0)->direction, kPi / 2, 1e-15) << empty;
    EXPECT_EQ(goesOn.poseAt(12.0)->point.y, 2.0) << empty;
    EXPECT_EQ(goesOn.stationOfElement(elements.size() - 1), 10.0) << empty;
  }
}

}  // namespace
}  // namespace lvx::civil
