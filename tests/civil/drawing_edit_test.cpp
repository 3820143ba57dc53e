#include "civil/drawing_edit.h"

#include <functional>
#include <limits>
#include <memory>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "civil_makers.h"

namespace lvx::civil {
namespace {

/// One alignment with two profiles, the second of which a corridor runs along.
Drawing roadWithCorridor() {
  Drawing drawing;
  auto axis = std::make_unique<AlignmentObject>();
  axis->handle = 0x10;
  axis->name = "A";
  axis->geometry = Alignment::fromText("at 0 0 heading 90; line 100");
  axis->profiles.resize(2);
  axis->profiles[0].handle = 0x11;
  axis->profiles[0].name = "ground";
  axis->profiles[1].handle = 0x12;
  axis->profiles[1].name = "design";
  axis->profiles[1].profile = test::designProfile("0 10; 100 12");
  drawing.corridors.resize(2);
  drawing.corridors[0].baselines.resize(2);
  drawing.corridors[0].baselines[0].alignment = axis.get();
  drawing.corridors[0].baselines[0].profile = &axis->profiles[1];
  drawing.corridors[0].baselines[1].alignment = axis.get();
  drawing.siteless.alignments.push_back(std::move(axis));
  return drawing;
}

TEST(DrawingEdit, LeavesBaselinesTheirProfilesWhenOneIsAdded) {
  Drawing drawing = roadWithCorridor();
  AlignmentObject& axis = *drawing.siteless.alignments[0];
  for (int i = 0; i < 20; ++i) {
    addProfile(drawing, axis, "more " + std::to_string(i), Profile::design(test::verticalPoints("0 1; 100 2")));
    ASSERT_EQ(drawing.corridors[0].baselines[0].profile, &axis.profiles[1]);
  }
  EXPECT_EQ(drawing.corridors[0].baselines[0].profile->name, "design");
  EXPECT_EQ(drawing.corridors[0].baselines[1].profile, nullptr) << "elevations still count from 0";
}

TEST(DrawingEdit, NewObjectsGetHandlesBehindAllOthersAndNoFile) {
  Drawing drawing = roadWithCorridor();
  drawing.points.resize(2);
  drawing.points[0].number = 7;
  drawing.points[1].number = 9;
  drawing.points[1].handle = 0x200;
  AlignmentObject& axis = *drawing.siteless.alignments[0];
  const SampleLineGroup& lines = addSampleLineGroup(drawing, axis, "G", {{0, "a", 1, {}}, {0, "b", 2, {}}});
  EXPECT_EQ(lines.handle, 0x201U);
  EXPECT_EQ(lines.lines[0].handle, 0x202U);
  EXPECT_EQ(lines.lines[1].handle, 0x203U);
  EXPECT_EQ(lines.file, kNoFile);
  const ProfileObject& profile = addProfile(drawing, axis, "P", test::designProfile("0 1; 100 2"));
  EXPECT_EQ(profile.handle, 0x204U);
  EXPECT_EQ(profile.file, kNoFile);
  const PointGroup& points = addPointGroup(drawing, "Trees", {9, 7});
  EXPECT_EQ(points.handle, 0x205U);
  EXPECT_EQ(points.file, kNoFile);
  EXPECT_THAT(points.numbers, testing::ElementsAre(9, 7));
  EXPECT_EQ(largestHandle(drawing), 0x205U);
}

TEST(DrawingEdit, WhatCantBeMadeIsRefusedByNameAndChangesNothing) {
  struct Row {
    std::function<void(Drawing&, AlignmentObject&)> edit;
    const char* why;
  };
  const auto profile = test::designProfile("0 1; 100 2");
  const Row rows[] = {
      {[](Drawing& d, AlignmentObject& a) { addSampleLineGroup(d, a, "", {}); }, "a sample line group needs a name"},
      {[](Drawing& d, AlignmentObject& a) { addSampleLineGroup(d, a, "G", {}); },
       "there is a sample line group 'G' of alignment 'A' already"},
      {[&](Drawing& d, AlignmentObject& a) { addProfile(d, a, "", profile); }, "a profile needs a name"},
      {[&](Drawing& d, AlignmentObject& a) { addProfile(d, a, "design", profile); },
       "there is a profile 'design' of alignment 'A' already"},
      {[](Drawing& d, AlignmentObject& a) { addProfile(d, a, "P", {}); }, "profile 'P' would have no points"},
      {[](Drawing& d, AlignmentObject&) { addPointGroup(d, "", {}); }, "a point group needs a name"},
      {[](Drawing& d, AlignmentObject&) { addPointGroup(d, "A\x1e", {}); },
       "the name of a point group can't hold control characters"},
      {[](Drawing& d, AlignmentObject&) { addPointGroup(d, "Trees", {}); }, "there is a point group 'Trees' already"},
      {[](Drawing& d, AlignmentObject&) { addPointGroup(d, "More", {1}); }, "there is no point 1"},
      {[](Drawing& d, AlignmentObject& a) {
         a.profiles[0].handle = std::numeric_limits<Handle>::max() - 1;
         addSampleLineGroup(d, a, "H", {{}, {}});
       },
       "there are no handles left for new objects"},
  };
  for (const Row& row : rows) {
    Drawing drawing = roadWithCorridor();
    AlignmentObject& axis = *drawing.siteless.alignments[0];
    addSampleLineGroup(drawing, axis, "G", {});
    addPointGroup(drawing, "Trees", {});
    try {
      row.edit(drawing, axis);
      ADD_FAILURE() << "made in spite of: " << row.why;
    } catch (const EditError& error) {
      EXPECT_STREQ(error.what(), row.why);
    }
    EXPECT_EQ(axis.sampleLineGroups.size(), 1U);
    EXPECT_EQ(axis.profiles.size(), 2U);
    EXPECT_EQ(drawing.pointGroups.size(), 1U);
  }
}

}  // namespace
}  // namespace lvx::civil
