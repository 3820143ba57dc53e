#include <cmath>
#include <string>
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
using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<double> stationsOf(const std::vector<SectionStop>& stops) {
  std::vector<double> stations;
  for (const SectionStop& stop : stops) stations.push_back(stop.station);
  return stations;
}

const civil::Drawing& example() {
  static const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  return drawing;
}

TEST(SectionStops, AreTheSampleLinesAndTheSectionsOfCorridorsBetweenThem) {
  SectionDrawing drawing;
  drawing.addLine("L2", 170);
  drawing.addCorridor(
      {"120..180 | 120 Pave(-3/1 3/1) | 130 Pave(-3/1 3/1) | 150 Pave(-3/1 3/1) | 170.0000001 Pave(-3/1 3/1) | 180 "
       "Pave(-3/1 3/1)"});
  const auto stops = sectionStops(drawing.drawing(), 1, 3);
  EXPECT_THAT(stationsOf(stops), ElementsAre(120, 130, 150, 170, 180));
  EXPECT_EQ(stops[2].sampleLine, SectionDrawing::kLine);
  EXPECT_EQ(stops[2].name, "L1");
  EXPECT_EQ(stops[0].sampleLine, 0U);
  EXPECT_EQ(stops[0].name, "Road");
}

TEST(SectionStops, LeaveOutOtherAlignmentsOtherGroupsAndWhatLiesBeyondTheEnds) {
  SectionDrawing drawing;
  drawing.addCorridor({"120..280 | 120 Pave(-3/1 3/1) | 280 Pave(-3/1 3/1)"});
  EXPECT_THAT(stationsOf(sectionStops(drawing.drawing(), 1, 0)), ElementsAre(120));
  EXPECT_THAT(stationsOf(sectionStops(drawing.drawing(), 1, 99)), ElementsAre(120));
  EXPECT_THAT(sectionStops(drawing.drawing(), 4, 3), IsEmpty());
  EXPECT_THAT(sectionStops(drawing.drawing(), 77, 3), IsEmpty());
  SectionDrawing other;
  other.addCorridor({"120..180 | 120 Pave(-3/1 3/1) | 180 Pave(-3/1 3/1)"}, false);
  EXPECT_THAT(stationsOf(sectionStops(other.drawing(), 1, 3)), ElementsAre(150));
}

TEST(SectionStops, StandOnceWhereRegionsMeet) {
  SectionDrawing drawing;
  drawing.addCorridor(
      {"120..150 | 120 Pave(-3/1 3/1) | 140 Pave(-3/1 3/1)", "140..180 | 140 Pave(-4/1 4/1) | 180 Pave(-4/1 4/1)"});
  EXPECT_THAT(stationsOf(sectionStops(drawing.drawing(), 1, 0)), ElementsAre(120, 140, 180));
}

TEST(SectionStops, HaveANearestOne) {
  const std::vector<SectionStop> stops{{10, 0, {}}, {20, 0, {}}, {40, 0, {}}};
  EXPECT_EQ(nearestStop(stops, -5), 0U);
  EXPECT_EQ(nearestStop(stops, 15), 0U);
  EXPECT_EQ(nearestStop(stops, 15.1), 1U);
  EXPECT_EQ(nearestStop(stops, 39), 2U);
  EXPECT_EQ(nearestStop(stops, 400), 2U);
  EXPECT_FALSE(nearestStop({}, 1));
}

TEST(SectionStops, OfTheExampleHoldEverySectionOfItsCorridor) {
  const civil::AlignmentObject& road = *example().sites[0].alignments[0];
  const auto stops = sectionStops(example(), road.handle, road.sampleLineGroups[0].handle);
  std::size_t sections = 0;
  for (const civil::Corridor& corridor : example().corridors)
    for (const civil::Baseline& baseline : corridor.baselines)
      if (baseline.alignment == &road)
        for (const civil::Region& region : baseline.regions)
          for (const civil::CorridorSection& section : region.sections) {
            ++sections;
            const auto near = nearestStop(stops, section.station);
            ASSERT_TRUE(near);
            EXPECT_NEAR(stops[*near].station, section.station, civil::kSameStation);
          }
  EXPECT_GT(sections, 100U);
  EXPECT_GT(stops.size(), road.sampleLineGroups[0].lines.size());
  EXPECT_TRUE(std::is_sorted(stops.begin(), stops.end(),
                             [](const SectionStop& a, const SectionStop& b) { return a.station < b.station; }));
}

TEST(SectionAcross, IsTheSectionOfASampleLineThatStandsSquareThere) {
  SectionDrawing drawing;
  drawing.addStrips({{{-30, 400}, {-10, 402}}, {{-10, 402}, {30, 410}}});
  drawing.addCorridor({"120..180 | 120 Pave(-3/1 3/1) | 150 Pave(-3/1 3/1) | 180 Pave(-3/1 3/1)"});
  const auto line = drawing.section();
  const auto across = sectionAcross(drawing.drawing(), 1, 150, {20, 20});
  ASSERT_TRUE(line && across);
  EXPECT_EQ(across->sampleLine, 0U);
  EXPECT_EQ(across->alignmentName, "Axis");
  EXPECT_EQ(across->station, 150);
  EXPECT_NEAR(across->leastOffset, -20, 1e-9);
  EXPECT_NEAR(across->greatestOffset, 20, 1e-9);
  ASSERT_EQ(across->corridors.size(), 1U);
  EXPECT_EQ(across->corridors[0].lines(), line->corridors[0].lines());
  for (double offset = -19.5; offset < 20; offset += 1.3)
    EXPECT_NEAR(*elevationAt(across->grounds[0].lines, offset), *elevationAt(line->grounds[0].lines, offset), 1e-9);
}

TEST(SectionAcross, StandsOnlyOnTheAlignment) {
  const SectionDrawing drawing;
  EXPECT_FALSE(sectionAcross(drawing.drawing(), 1, 99, {5, 5}));
  EXPECT_FALSE(sectionAcross(drawing.drawing(), 4, 150, {5, 5})) << "an alignment without geometry";
  EXPECT_FALSE(sectionAcross(drawing.drawing(), 55, 150, {5, 5}));
}

TEST(SectionReach, TakesInWhatTheCorridorBuildsAndReachesAsFarAsTheLinesBeside) {
  SectionDrawing drawing;
  const SectionReach lines = reachAt(drawing.drawing(), 1, 3, 160);
  EXPECT_THAT(lines.left, DoubleNear(20, 1e-9));
  EXPECT_THAT(lines.right, DoubleNear(20, 1e-9));
  drawing.addCorridor({"120..180 | 120 Pave(-40/1 3/1) | 160 Pave(-40/1 3/1) | 180 Pave(-40/1 3/1)"});
  const SectionReach wide = reachAt(drawing.drawing(), 1, 3, 160);
  EXPECT_THAT(wide.left, DoubleNear(50, 1e-9));
  EXPECT_THAT(wide.right, DoubleNear(20, 1e-9));
  drawing.axis().sampleLineGroups.clear();
  EXPECT_EQ(reachAt(drawing.drawing(), 1, 0, 110).left, kLeastReach);
  EXPECT_EQ(reachAt(drawing.drawing(), 99, 0, 110).right, kLeastReach);
}

TEST(SectionCorridor, HasTheUpperEdgeOfItsPartsForItsTop) {
  SectionCorridor corridor;
  corridor.parts.push_back({{"Pave"}, {{{-3, 1}, {}}, {{3, 1}, {}}}, false});
  corridor.parts.push_back({{"Base"}, {{{-3, 1}, {}}, {{3, 1}, {}}, {{3, 0}, {}}, {{-3, 0}, {}}}, true});
  corridor.parts.push_back({{"Slope"}, {{{3, 1}, {}}, {{9, -2}, {}}}, false});
  EXPECT_THAT(corridor.top(), ElementsAre(ElementsAre(Vec2{-3, 1}, Vec2{3, 1}, Vec2{9, -2})));
}

}  // namespace
}  // namespace lvx::view
