#include "civil/section_shape.h"

#include <cmath>
#include <functional>
#include <utility>

#include <gtest/gtest.h>

#include "civil/corridor.h"

namespace lvx::civil {
namespace {

CorridorSection road() {
  CorridorSection section{100.0, "Gate", SectionOrigin::Given, {}};
  section.parts.push_back({{"Pave"}, {{-3.5, -0.1, {"Edge", "Lane"}}, {0.0, 0.0, {}}, {3.5, -0.1, {"Edge"}}}});
  section.parts.push_back({{}, {{3.5, -0.1, {}}, {5.0, -1.0, {"Daylight"}}}});
  return section;
}

TEST(SectionShape, IsPartsPointsAndCodesInTheirOrder) {
  const struct {
    const char* what;
    std::function<void(CorridorSection&)> change;
    bool hasSameShape;
    bool hasSamePoints;
  } rows[] = {
      {"nothing", [](CorridorSection&) {}, true, true},
      {"station", [](CorridorSection& s) { s.station = 101.0; }, true, true},
      {"label", [](CorridorSection& s) { s.label.clear(); }, true, true},
      {"origin", [](CorridorSection& s) { s.origin = SectionOrigin::Computed; }, true, true},
      {"offset in its last digits", [](CorridorSection& s) { s.parts[0].points[0].offset += 4e-10; }, true, true},
      {"elevation in its last digits", [](CorridorSection& s) { s.parts[1].points[1].elevation -= 4e-10; }, true, true},
      {"offset", [](CorridorSection& s) { s.parts[0].points[2].offset += 2e-9; }, true, false},
      {"elevation", [](CorridorSection& s) { s.parts[1].points[0].elevation -= 2e-9; }, true, false},
      {"no number", [](CorridorSection& s) { s.parts[0].points[1].offset = std::nan(""); }, true, false},
      {"code of a point", [](CorridorSection& s) { s.parts[0].points[2].codes = {"Kerb"}; }, false, false},
      {"order of codes",
       [](CorridorSection& s) {
         s.parts[0].points[0].codes = {"Lane", "Edge"};
       },
       false, false},
      {"code of a part", [](CorridorSection& s) { s.parts[1].codes = {"Slope"}; }, false, false},
      {"one point more",
       [](CorridorSection& s) {
         s.parts[1].points.push_back({9.0, 0.0, {}});
       },
       false, false},
      {"one point less",
       [](CorridorSection& s) {
         s.parts[0].points = {s.parts[0].points[0], s.parts[0].points[1]};
       },
       false, false},
      {"one part more", [](CorridorSection& s) { s.parts.push_back({}); }, false, false},
      {"one part less", [](CorridorSection& s) { s.parts = {s.parts[0]}; }, false, false},
      {"order of parts", [](CorridorSection& s) { std::swap(s.parts[0], s.parts[1]); }, false, false},
      {"no parts", [](CorridorSection& s) { s.parts = {}; }, false, false},
  };
  for (const auto& row : rows) {
    CorridorSection other = road();
    row.change(other);
    EXPECT_EQ(haveSameShape(road(), other), row.hasSameShape) << row.what;
    EXPECT_EQ(haveSameShape(other, road()), row.hasSameShape) << row.what;
    EXPECT_EQ(haveSamePoints(road(), other), row.hasSamePoints) << row.what;
    EXPECT_EQ(haveSamePoints(other, road()), row.hasSamePoints) << row.what;
  }
  EXPECT_TRUE(haveSameShape(CorridorSection{}, CorridorSection{}));
}

// What this calls one shape decides whether a rebuild runs on to the next control or copies the one before.
TEST(SectionShape, IsWhatTheRebuildRunsOnBy) {
  for (const bool isAlike : {true, false}) {
    CorridorSection ahead = road();
    ahead.station = 200.0;
    ahead.parts[0].points[0].offset = -5.5;
    if (!isAlike) ahead.parts[0].points[0].codes = {"Edge"};
    ASSERT_EQ(haveSameShape(road(), ahead), isAlike);
    Corridor corridor;
    Region& region = corridor.baselines.emplace_back().regions.emplace_back();
    region.sections = {road(), ahead};
    ASSERT_TRUE(addStation(region, 150.0, ""));
    Rebuilt done;
    rebuild(corridor, done);
    const CorridorSection* const between = sectionAt(region, 150.0);
    ASSERT_NE(between, nullptr);
    EXPECT_DOUBLE_EQ(between->parts[0].points[0].offset, isAlike ? -4.5 : -3.5);
  }
}

}  // namespace
}  // namespace lvx::civil
