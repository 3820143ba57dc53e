#include "civil/drawing_edit.h"

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
  axis->profiles[0].name = "ground";
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

}  // namespace
}  // namespace lvx::civil
