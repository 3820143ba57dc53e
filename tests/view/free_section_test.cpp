#include "view/free_section.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "landxml/reader.h"
#include "section_drawings.h"
#include "support/places.h"
#include "view/section_model.h"

namespace lvx::view {
namespace {

using civil::Vec2;
using testing::ElementsAre;
using testing::IsEmpty;

FreeSection cut(const civil::Drawing& drawing, const std::vector<Vec2>& points) {
  FreeSectionWork work(drawing, FreeLine(points));
  while (work.step()) {
  }
  return work.section();
}

const civil::Drawing& example() {
  static const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  return drawing;
}

TEST(FreeLine, LeavesOutRepeatedPlacesAndThoseThatAreNone) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  const FreeLine line({{0, 0}, {0, 0}, {none, 1}, {3, 4}, {3, 4}, {3, 10}});
  EXPECT_THAT(line.vertices(), ElementsAre(Vec2{0, 0}, Vec2{3, 4}, Vec2{3, 10}));
  EXPECT_THAT(line.distances(), ElementsAre(0, 5, 11));
  EXPECT_EQ(line.placeAt(8), (Vec2{3, 7}));
  EXPECT_EQ(line.placeAt(-1), (Vec2{0, 0}));
  EXPECT_EQ(line.placeAt(99), (Vec2{3, 10}));
  EXPECT_TRUE(FreeLine({{5, 5}, {5, 5}}).isEmpty());
  EXPECT_TRUE(FreeLine().isEmpty());
}

TEST(FreeSection, HasTheGroundOfEverySurfaceOverTheDistance) {
  SectionDrawing drawing;
  drawing.addStrip({-30, 400}, {30, 412});
  drawing.addStrips({{{-30, 1}, {-10, 1}}, {{10, 2}, {30, 2}}});
  const FreeSection section = cut(drawing.drawing(), {{20, -20}, {20, 20}, {60, 20}});
  ASSERT_EQ(section.parts.size(), 2U);
  EXPECT_EQ(section.parts[0].name, "Surface 1");
  EXPECT_FALSE(section.parts[0].isCorridor);
  EXPECT_NEAR(*elevationAt(section.parts[0].lines, 10), 400 + 20 * 0.2, 1e-9);
  EXPECT_NEAR(*elevationAt(section.parts[0].lines, 70), 410, 1e-9);
  EXPECT_EQ(section.parts[1].lines.size(), 2U) << "a gap between the strips";
  EXPECT_NEAR(section.parts[1].lines[0].back().x, 10, 1e-9);
  EXPECT_NEAR(section.parts[1].lines[1].back().x, 80, 1e-9);
}

TEST(FreeSection, OffEverySurfaceAndOfNoLengthHasNoLines) {
  SectionDrawing drawing;
  drawing.addStrip({-30, 400}, {30, 412});
  drawing.addCorridor({"100..200 | 100 Pave(-3/1 3/1) | 200 Pave(-3/1 3/1)"});
  for (const auto& points : {std::vector<Vec2>{{0, 900}, {50, 900}}, std::vector<Vec2>{{5, 5}, {5, 5}}}) {
    const FreeSection section = cut(drawing.drawing(), points);
    ASSERT_EQ(section.parts.size(), 2U);
    EXPECT_THAT(section.parts[0].lines, IsEmpty());
    EXPECT_THAT(section.parts[1].lines, IsEmpty());
  }
}

TEST(FreeSection, RunsOverTheCorridorBetweenItsSections) {
  SectionDrawing drawing;
  drawing.addCorridor({"100..200 | 100 Pave(-4/1 0/1.2 4/1) Slope(4/1 6/0) | 200 Pave(-4/3 0/3.2 4/3) Slope(4/3 6/2)"});
  // The profile rises from 400 to 403 over the axis, the sections by 2 more; slantwise across.
  const FreeSection section = cut(drawing.drawing(), {{40, 10}, {60, -10}});
  ASSERT_EQ(section.parts.size(), 1U);
  EXPECT_TRUE(section.parts[0].isCorridor);
  const Lines& top = section.parts[0].lines;
  ASSERT_EQ(top.size(), 1U);
  const double root = std::sqrt(2.0);
  EXPECT_NEAR(top[0].front().x, 6 * root, 1e-3);
  EXPECT_NEAR(top[0].back().x, 16 * root, 1e-3);
  for (double along = 6.1; along < 15.9; along += 0.1) {
    const double share = (40 + along) / 100;
    const double offset = along - 10;
    const double shape = offset <= 4 ? 1.2 - std::abs(offset) * 0.05 : 1 - (offset - 4) * 0.5;
    EXPECT_NEAR(*elevationAt(top, along * root), 400 + 3 * share + 2 * share + shape, 0.0021) << along;
  }
}

TEST(FreeSection, KeepsTheFormerSectionWhereTheNextHasAnotherShape) {
  SectionDrawing drawing;
  drawing.addCorridor({"100..200 | 100 Pave(-4/1 4/1) | 200 Pave(-4/9 0/9 4/9)"});
  const FreeSection section = cut(drawing.drawing(), {{50, 10}, {50, -10}});
  EXPECT_NEAR(*elevationAt(section.parts[0].lines, 10), 400 + 1.5 + 1, 1e-9);
}

TEST(FreeSection, SquareToAnAlignmentIsItsCrossSectionThere) {
  const civil::AlignmentObject& road = *example().sites[0].alignments[0];
  constexpr double kStation = 1300.0;
  const auto expected = sectionAcross(example(), road.handle, kStation, {20, 20});
  ASSERT_TRUE(expected);
  ASSERT_FALSE(expected->corridors.empty());
  const FreeSection section = cut(
      example(), {road.geometry.pointLocation(kStation, -20)->point, road.geometry.pointLocation(kStation, 20)->point});
  std::size_t compared = 0;
  for (double distance = 0.3; distance < 40.0; distance += 0.17) {
    for (const FreeSectionPart& part : section.parts) {
      const Lines there = part.isCorridor ? expected->corridors[0].top() : expected->grounds[0].lines;
      const auto elevation = elevationAt(there, distance - 20);
      const auto found = elevationAt(part.lines, distance);
      ASSERT_EQ(found.has_value(), elevation.has_value()) << part.name << " at " << distance;
      if (!elevation) continue;
      ++compared;
      EXPECT_NEAR(*found, *elevation, part.isCorridor ? 0.002 : 1e-6) << part.name << " at " << distance;
    }
  }
  EXPECT_GT(compared, 250U);
}

TEST(FreeSection, IsMadeStepByStep) {
  SectionDrawing drawing;
  for (int i = 0; i < 3; ++i) drawing.addStrip({-30, 400 + i}, {30, 412 + i});
  FreeSectionWork work(drawing.drawing(), FreeLine({{20, -20}, {20, 20}}));
  EXPECT_EQ(work.section().parts.size(), 3U);
  EXPECT_TRUE(work.step());
  EXPECT_EQ(work.done(), 1U);
  EXPECT_FALSE(work.section().parts[0].lines.empty());
  EXPECT_TRUE(work.section().parts[1].lines.empty());
  EXPECT_TRUE(work.step());
  EXPECT_FALSE(work.step());
  EXPECT_TRUE(work.isDone());
  EXPECT_FALSE(work.step());
}

TEST(FreeSectionTable, HasARowWhereverAPartTurns) {
  SectionDrawing drawing;
  drawing.addStrips({{{-30, 400}, {0, 403}}, {{0, 403}, {30, 400}}});
  drawing.addStrip({-10, 1}, {10, 2});
  const FreeSection section = cut(drawing.drawing(), {{20.5, -20}, {20.5, 20}});
  const auto rows = tableOf(section, {0, 1});
  ASSERT_GE(rows.size(), 5U);
  EXPECT_EQ(rows.front().distance, 0);
  EXPECT_EQ(rows.front().place, (Vec2{20.5, -20}));
  EXPECT_NEAR(*rows.front().elevations.at(0), 401, 1e-9);
  EXPECT_FALSE(rows.front().elevations.at(1));
  EXPECT_NEAR(rows.back().distance, 40, 1e-9);
  bool hasTop = false;
  for (const FreeSectionRow& row : rows) {
    ASSERT_EQ(row.elevations.size(), 2U);
    EXPECT_NEAR(row.elevations[0].value_or(0.0), *elevationAt(section.parts[0].lines, row.distance), 1e-9);
    EXPECT_EQ(row.elevations[1].has_value(), row.distance > 10 - 1e-6 && row.distance < 30 + 1e-6) << row.distance;
    hasTop = hasTop || std::abs(row.distance - 20) < 1e-9;
  }
  EXPECT_TRUE(hasTop);
  EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end(),
                             [](const FreeSectionRow& a, const FreeSectionRow& b) { return a.distance < b.distance; }));
  EXPECT_THAT(tableOf(FreeSection(), {}), IsEmpty());
}

TEST(FreeSectionTable, StaysWithinItsSizeForManyParts) {
  FreeSection section;
  section.line = FreeLine({{0, 0}, {100, 0}});
  for (int part = 0; part < 1000; ++part) {
    FreeSectionPart& made = section.parts.emplace_back();
    Line& line = made.lines.emplace_back();
    for (int i = 0; i <= 10; ++i) line.push_back({i * 10 + part * 1e-3, 5.0});
  }
  std::vector<std::size_t> all(section.parts.size());
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
  const auto rows = tableOf(section, all);
  EXPECT_LE(rows.size() * all.size(), kMostCells);
  EXPECT_GT(rows.size(), 100U);
}

struct CrossingRow {
  const char* what;
  std::vector<Vec2> points;
  double station;  ///< 0: none
};

TEST(SampleLineAlongAFreeLine, StandsWhereTheLineCrossesFromLeftToRight) {
  const auto axis = civil::Alignment::fromText("start 100 at 0 0 heading 90; line 100");
  const std::vector<CrossingRow> rows{
      {"square, from left", {{50, 20}, {50, -20}}, 150},
      {"square, from right", {{50, -20}, {50, 20}}, 150},
      {"slantwise", {{40, 10}, {60, -10}}, 150},
      {"with a vertex on the alignment", {{50, 20}, {50, 0}, {60, -20}}, 150},
      {"bent", {{30, 30}, {50, 5}, {70, -30}}, 0},
      {"beside", {{10, 5}, {90, 5}}, 0},
      {"beyond the end", {{150, 20}, {150, -20}}, 0},
      {"ends on the alignment", {{50, 20}, {50, 0}}, 0},
      {"no length", {{50, 0}, {50, 0}}, 0},
      {"twice; the nearer to its middle", {{10, 10}, {10, -10}, {60, -10}, {60, 30}}, 160},
  };
  for (const CrossingRow& row : rows) {
    const auto line = sampleLineAlong(FreeLine(row.points), axis);
    if (row.what == std::string("bent")) {
      ASSERT_TRUE(line);
      EXPECT_NEAR(line->station, 150 + 20 * 5.0 / 35.0, 1e-6);
      EXPECT_EQ(line->vertices.size(), 4U);
      continue;
    }
    ASSERT_EQ(line.has_value(), row.station != 0) << row.what;
    if (!line) continue;
    EXPECT_NEAR(line->station, row.station, 1e-6) << row.what;
    EXPECT_GE(line->vertices.size(), 3U) << row.what;
    EXPECT_TRUE(std::any_of(line->vertices.begin(), line->vertices.end(), [&](Vec2 vertex) {
      return civil::length(vertex - axis.poseAt(row.station)->point) < 1e-6;
    })) << row.what;
    if (row.points.size() == 4) continue;
    EXPECT_LT(axis.stationOffset(line->vertices.front())->offset, axis.stationOffset(line->vertices.back())->offset)
        << row.what;
  }
}

}  // namespace
}  // namespace lvx::view
