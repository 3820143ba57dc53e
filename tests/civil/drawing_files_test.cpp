#include "civil/drawing_files.h"

#include <limits>

#include <gmock/gmock.h>

#include "civil_makers.h"

namespace lvx::civil {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Point point(Handle handle, std::int32_t number) {
  Point made;
  made.handle = handle;
  made.number = number;
  return made;
}

std::unique_ptr<AlignmentObject> alignmentNamed(const std::string& name, Handle handle) {
  auto made = std::make_unique<AlignmentObject>();
  made->handle = handle;
  made->name = name;
  made->geometry = Alignment::fromText("start 100 at 10 20 heading 90; line 50; arc 30 R 60 left");
  return made;
}

/// A drawing of one file with a site, an alignment in it, a corridor over that, a surface, a group of its two points.
Drawing fileWith(const std::string& site, const std::string& alignment) {
  Drawing drawing;
  drawing.path = alignment + ".xml";
  drawing.sites.resize(1);
  drawing.sites[0].handle = 0x100;
  drawing.sites[0].name = site;
  drawing.sites[0].alignments.push_back(alignmentNamed(alignment, 0x101));
  AlignmentObject& axis = *drawing.sites[0].alignments[0];
  axis.profiles.resize(1);
  axis.profiles[0].handle = 0x102;
  axis.profiles[0].profile = Profile::design(test::verticalPoints("0 10; 50 12 parabola 20; 100 11"));
  axis.sampleLineGroups.resize(1);
  axis.sampleLineGroups[0].handle = 0x103;
  axis.sampleLineGroups[0].lines = {{0x104, "line", 110.0, {{0, 1}, {2, 3}}}};
  drawing.surfaces.resize(1);
  drawing.surfaces[0].handle = 0x105;
  drawing.surfaces[0].name = alignment;
  drawing.points = {point(0x106, 1), point(0x107, 2)};
  drawing.pointGroups.resize(1);
  drawing.pointGroups[0].handle = 0x108;
  drawing.pointGroups[0].name = alignment;
  drawing.pointGroups[0].numbers = {2, 1};
  drawing.corridors.resize(1);
  drawing.corridors[0].handle = 0x109;
  drawing.corridors[0].baselines.resize(1);
  drawing.corridors[0].baselines[0].alignment = &axis;
  drawing.corridors[0].baselines[0].profile = &axis.profiles[0];
  drawing.diagnostics.push_back({.severity = Severity::Warning, .text = "odd", .line = 7, .object = 0x103});
  return drawing;
}

AddedFile named(const std::string& path) {
  AddedFile file;
  file.path = path;
  return file;
}

TEST(DrawingFiles, GivesEveryObjectAHandleOfItsOwnAndItsFile) {
  Drawing whole = fileWith("Valley", "A");
  addDrawing(whole, fileWith("Hill", "B"), named("b.xml"));
  addDrawing(whole, fileWith("Coast", "C"), named("c.xml"));

  const DrawingIndex index(whole);
  for (FileNumber file = 0; file < 3; ++file) {
    const Handle base = file == 0 ? 0 : whole.addedFiles[file - 1].handleBase;
    for (Handle own = 0x100; own <= 0x109; ++own)
      EXPECT_TRUE(index.byHandle(base + own).has_value()) << "file " << file << ", handle " << std::hex << own;
    EXPECT_EQ(whole.sites[file].file, file);
    EXPECT_EQ(whole.sites[file].alignments[0]->file, file);
    EXPECT_EQ(whole.sites[file].alignments[0]->profiles[0].file, file);
    EXPECT_EQ(whole.sites[file].alignments[0]->sampleLineGroups[0].file, file);
    EXPECT_EQ(whole.surfaces[file].file, file);
    EXPECT_EQ(whole.points[2 * file].file, file);
    EXPECT_EQ(whole.pointGroups[file].file, file);
    EXPECT_EQ(whole.corridors[file].file, file);
    EXPECT_EQ(whole.diagnostics[file == 0 ? 0 : 3 * file].file, file);
  }
  EXPECT_LT(whole.addedFiles[0].handleBase, whole.addedFiles[1].handleBase);
  EXPECT_EQ(pathOf(whole, 0), "A.xml");
  EXPECT_EQ(pathOf(whole, 2), "c.xml");
  EXPECT_EQ(pathOf(whole, 3), "");
  EXPECT_EQ(pathOf(whole, kNoFile), "");
}

TEST(DrawingFiles, DiagnosticsGoOnKnowingTheirObject) {
  Drawing whole = fileWith("Valley", "A");
  Drawing added = fileWith("Hill", "B");
  added.diagnostics.push_back({Severity::Note, "odd as a whole", 8});
  addDrawing(whole, std::move(added), named("b.xml"));
  std::vector<Handle> objects;
  for (const Diagnostic& diagnostic : whole.diagnostics) objects.push_back(diagnostic.object);
  const Handle base = whole.addedFiles[0].handleBase;
  EXPECT_THAT(objects, ElementsAre(0x103, base + 0x103, 0, base + 0x106, base + 0x107))
      << "the last two are the points that got new numbers";
}

TEST(DrawingFiles, MakesOneOfSitesOfOneName) {
  Drawing whole = fileWith("Valley", "A");
  addDrawing(whole, fileWith("Valley", "B"), named("b.xml"));
  ASSERT_EQ(whole.sites.size(), 1U);
  ASSERT_EQ(whole.sites[0].alignments.size(), 2U);
  EXPECT_EQ(whole.sites[0].alignments[1]->name, "B");
  EXPECT_EQ(whole.sites[0].file, 0U);
}

TEST(DrawingFiles, KeepsWhatCorridorsLieOn) {
  Drawing whole = fileWith("Valley", "A");
  addDrawing(whole, fileWith("Hill", "B"), named("b.xml"));
  const Baseline& baseline = whole.corridors[1].baselines[0];
  EXPECT_EQ(baseline.alignment, whole.sites[1].alignments[0].get());
  EXPECT_EQ(baseline.profile, &whole.sites[1].alignments[0]->profiles[0]);
}

TEST(DrawingFiles, GivesTheLaterOfTwoEqualPointNumbersANewOne) {
  Drawing whole = fileWith("Valley", "A");
  Drawing added = fileWith("Hill", "B");
  added.points.push_back(point(0x110, 9));
  addDrawing(whole, std::move(added), named("b.xml"));

  std::vector<std::int32_t> numbers;
  for (const Point& each : whole.points) numbers.push_back(each.number);
  EXPECT_THAT(numbers, ElementsAre(1, 2, 10, 11, 9));
  EXPECT_EQ(whole.points[2].texts.name(), "1") << "the file's own name is not lost";
  EXPECT_THAT(whole.pointGroups[0].numbers, ElementsAre(2, 1));
  EXPECT_THAT(whole.pointGroups[1].numbers, ElementsAre(11, 10));
  ASSERT_EQ(whole.diagnostics.size(), 4U);
  EXPECT_EQ(whole.diagnostics[2].text, "point 1: its number stands in another file of the drawing; it gets 10");
}

TEST(DrawingFiles, ChangesNothingWhereNoHandlesAreLeft) {
  Drawing whole = fileWith("Valley", "A");
  whole.points[0].handle = std::numeric_limits<Handle>::max();
  EXPECT_THROW(addDrawing(whole, fileWith("Hill", "B"), named("b.xml")), std::overflow_error);
  EXPECT_EQ(whole.sites.size(), 1U);
  EXPECT_TRUE(whole.addedFiles.empty());
}

TEST(DrawingFiles, ScalesEveryLength) {
  Drawing drawing = fileWith("Valley", "A");
  drawing.points[0].position = {1, 2, 3};
  Region& region = drawing.corridors[0].baselines[0].regions.emplace_back();
  region.startStation = 100;
  region.endStation = 150;
  region.stations = {100, 120};
  region.pendingLabels = {{120, "here"}};
  region.sections.resize(1);
  region.sections[0].station = 100;
  region.sections[0].parts = {{{"Top"}, {{-4, 0.5, {}}, {4, 0.25, {}}}}};
  const Alignment& axis = drawing.sites[0].alignments[0]->geometry;
  const Pose before = *axis.poseAt(165);

  scaleLengths(drawing, 2.0);

  EXPECT_EQ(axis.startStation(), 200);
  EXPECT_DOUBLE_EQ(axis.endStation(), 360);
  const Pose after = *axis.poseAt(330);
  EXPECT_NEAR(after.point.x, 2 * before.point.x, 1e-9);
  EXPECT_NEAR(after.point.y, 2 * before.point.y, 1e-9);
  EXPECT_NEAR(after.direction, before.direction, 1e-12);
  const AlignmentObject& object = *drawing.sites[0].alignments[0];
  EXPECT_DOUBLE_EQ(*object.profiles[0].profile.elevationAt(100), 2 * 11.85);
  EXPECT_EQ(object.sampleLineGroups[0].lines[0].station, 220);
  EXPECT_EQ(object.sampleLineGroups[0].lines[0].vertices[1].y, 6);
  EXPECT_EQ(drawing.points[0].position.z, 6);
  EXPECT_THAT(region.stations, ElementsAre(200, 240));
  EXPECT_EQ(region.pendingLabels.begin()->first, 240);
  EXPECT_EQ(region.sections[0].parts[0].points[0].offset, -8);
  EXPECT_EQ(region.sections[0].parts[0].points[1].elevation, 0.5);
}

TEST(DrawingFiles, KeepsTheGapsOfAScaledGroundProfile) {
  Drawing drawing = fileWith("Valley", "A");
  ProfileObject& profile = drawing.sites[0].alignments[0]->profiles[0];
  profile.profile = Profile::ground(
      {test::groundPoints("0 10; 5 11"), test::groundPoints("8 12; 9 13; 12 14"), test::groundPoints("20 1; 30 2")});
  scaleLengths(drawing, 3.0);
  ASSERT_EQ(profile.profile.gapCount(), 2U);
  EXPECT_EQ(profile.profile.gaps()[0].startStation, 15);
  EXPECT_EQ(profile.profile.gaps()[0].endStation, 24);
  EXPECT_EQ(profile.profile.gaps()[1].endStation, 60);
  EXPECT_EQ(profile.profile.elevationAt(27), 39);
}

TEST(DrawingFiles, KnowsTheUnitsExactly) {
  EXPECT_EQ(metresPerUnit("foot"), 0.3048);
  EXPECT_EQ(metresPerUnit("USSurveyFoot"), 1200.0 / 3937.0);
  EXPECT_EQ(metresPerUnit(""), 1.0);
  EXPECT_EQ(metresPerUnit("cubit"), std::nullopt);
}

}  // namespace
}  // namespace lvx::civil
