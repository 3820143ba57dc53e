#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "generator/scaled_drawing.h"
#include "generator/text_output.h"
#include "landxml/reader.h"
#include "support/places.h"

/// Generated drawings as the stand-in reads them.
namespace lvx {
namespace {

std::vector<std::string> textsOf(const std::vector<civil::Diagnostic>& diagnostics) {
  std::vector<std::string> texts;
  for (const civil::Diagnostic& diagnostic : diagnostics) texts.push_back(diagnostic.text);
  return texts;
}

template <class List>
std::vector<std::string> namesOf(const List& list) {
  std::vector<std::string> names;
  for (const auto& item : list) names.push_back(item.name);
  return names;
}

TEST(ExampleReading, FindsTheJobAndNothingOdd) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  // The orchard's hidden triangles are worth a note; nothing is worth a warning.
  ASSERT_THAT(textsOf(drawing.diagnostics), testing::ElementsAre(testing::HasSubstr("499 invisible faces")));
  EXPECT_EQ(drawing.diagnostics[0].severity, civil::Severity::Note);

  ASSERT_THAT(namesOf(drawing.sites), testing::ElementsAre("Valley road upgrade"));
  ASSERT_EQ(drawing.sites[0].alignments.size(), 2U);
  const civil::AlignmentObject& road = *drawing.sites[0].alignments[0];
  EXPECT_EQ(road.name, "Valley road");
  EXPECT_EQ(road.geometry.startStation(), 1000.0);
  EXPECT_NEAR(road.geometry.endStation(), 2093.0, 1e-5);
  EXPECT_THAT(namesOf(road.profiles), testing::UnorderedElementsAre("Valley road design", "Valley road ground"));
  // The sections of the corridor are no sample line groups.
  EXPECT_THAT(namesOf(road.sampleLineGroups), testing::ElementsAre("Cross sections 20 m", "Bridge 5 m"));
  EXPECT_EQ(road.sampleLineGroups[0].lines.size(), 55U);
  EXPECT_EQ(drawing.sites[0].alignments[1]->name, "Mill lane");
  ASSERT_EQ(drawing.siteless.alignments.size(), 1U);
  EXPECT_EQ(drawing.siteless.alignments[0]->name, "Forest track");

  ASSERT_THAT(namesOf(drawing.surfaces), testing::ElementsAre("Existing ground"));
  EXPECT_EQ(drawing.surfaces[0].surface.counts().triangles, 22'525U);
  EXPECT_EQ(drawing.points.size(), 324U);
  EXPECT_THAT(namesOf(drawing.pointGroups), testing::ElementsAre("Control points", "Road edge", "Trees", "Drainage",
                                                                 "Utilities", "Boundary stones", "Mill"));

  ASSERT_THAT(namesOf(drawing.corridors), testing::ElementsAre("Valley road"));
  ASSERT_EQ(drawing.corridors[0].baselines.size(), 1U);
  const civil::Baseline& baseline = drawing.corridors[0].baselines[0];
  EXPECT_EQ(baseline.alignment, &road);
  ASSERT_NE(baseline.profile, nullptr);
  EXPECT_EQ(baseline.profile->name, "Valley road design");
  EXPECT_THAT(namesOf(baseline.regions), testing::ElementsAre("Open road", "Village"));
  for (const civil::Region& region : baseline.regions) EXPECT_EQ(region.sections.size(), region.stations.size());
}

TEST(ExampleReading, CodesOfTheVillageFallApart) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  const civil::CorridorSection& section = drawing.corridors.at(0).baselines.at(0).regions.at(1).sections.at(0);
  const civil::SectionPart& paved = section.parts[0];
  EXPECT_THAT(paved.codes, testing::ElementsAre("Pave", "Top", "Belag"));
  ASSERT_EQ(paved.points.size(), 3U);
  EXPECT_THAT(paved.points[2].codes, testing::ElementsAre("ETW", "Fahrspurrand_Außen"));
  // The crown lies on the profile, so its elevation over it is nothing but rounding.
  EXPECT_NEAR(paved.points[1].elevation, 0.0, 0.6e-4);
}

TEST(ScaledReading, FindsWhatWasAskedForAndNothingOdd) {
  for (const bool shuffled : {false, true}) {
    generator::DrawingSize size;
    size.triangles = 5001;
    size.sampleLines = 40;
    size.points = 77;
    size.elements = 150;
    size.verticalCurves = 20;
    size.corridors = 2;
    size.baselines = 2;
    size.corridorSections = 30;
    size.shuffled = shuffled;
    generator::TextOutput out;
    generator::writeScaledDrawing(out, size);
    const civil::Drawing drawing = landxml::readDrawingText(out.text(), "generated.xml");
    EXPECT_THAT(textsOf(drawing.diagnostics), testing::IsEmpty());
    const civil::AlignmentObject& road = *drawing.sites.at(0).alignments.at(0);
    EXPECT_EQ(road.geometry.elements().size(), 150U);
    EXPECT_EQ(road.sampleLineGroups.at(0).lines.size(), 40U);
    EXPECT_EQ(drawing.surfaces.at(0).surface.counts().triangles, 5001U);
    EXPECT_EQ(drawing.pointGroups.at(0).numbers.size(), 77U);
    ASSERT_EQ(drawing.corridors.size(), 2U);
    EXPECT_EQ(drawing.corridors[1].baselines.at(1).regions.at(0).sections.size(), 30U);
    // Every sample line lies on the ground from end to end.
    for (const civil::SampleLine& line : road.sampleLineGroups[0].lines) {
      for (const civil::Vec2& vertex : line.vertices) {
        EXPECT_TRUE(drawing.surfaces[0].surface.elevationAt(vertex).has_value()) << line.name;
      }
    }
  }
}

}  // namespace
}  // namespace lvx
