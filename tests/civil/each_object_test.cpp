#include "civil/each_object.h"

#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::civil {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAreArray;

/// One object of every kind and two alignments; handles from 1 on.
Drawing ofEveryKind() {
  Drawing drawing;
  const auto alignment = [](Handle first) {
    auto made = std::make_unique<AlignmentObject>();
    made->handle = first;
    made->profiles.resize(1);
    made->profiles[0].handle = first + 1;
    made->sampleLineGroups.resize(1);
    made->sampleLineGroups[0].handle = first + 2;
    made->sampleLineGroups[0].lines.resize(2);
    made->sampleLineGroups[0].lines[0].handle = first + 3;
    made->sampleLineGroups[0].lines[1].handle = first + 4;
    return made;
  };
  drawing.siteless.alignments.push_back(alignment(1));
  drawing.sites.resize(1);
  drawing.sites[0].handle = 6;
  drawing.sites[0].alignments.push_back(alignment(7));
  drawing.surfaces.resize(1);
  drawing.surfaces[0].handle = 12;
  drawing.points.resize(1);
  drawing.points[0].handle = 13;
  drawing.pointGroups.resize(1);
  drawing.pointGroups[0].handle = 14;
  drawing.corridors.resize(1);
  drawing.corridors[0].handle = 15;
  return drawing;
}

TEST(EachObject, MeetsEveryObjectOnceAndNoSampleLine) {
  const Drawing drawing = ofEveryKind();
  std::vector<Handle> met;
  eachObject(drawing, [&](const auto& object) { met.push_back(object.handle); });
  EXPECT_THAT(met, ElementsAre(0, 1, 2, 3, 6, 7, 8, 9, 12, 13, 14, 15)) << "0: the site of those outside any";
}

TEST(EachObject, MayChangeThem) {
  Drawing drawing = ofEveryKind();
  eachObject(drawing, [](auto& object) { object.file = 4; });
  EXPECT_EQ(drawing.sites[0].alignments[0]->sampleLineGroups[0].file, 4U);
  EXPECT_EQ(drawing.corridors[0].file, 4U);
}

TEST(EachHandle, MeetsWhatAnIndexFinds) {
  Drawing drawing = ofEveryKind();
  std::vector<Handle> met;
  eachHandle(drawing, [&](Handle handle) { met.push_back(handle); });
  EXPECT_THAT(met, UnorderedElementsAreArray({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
  const DrawingIndex index(drawing);
  for (const Handle handle : met) EXPECT_EQ(index.byHandle(handle).has_value(), handle != 0) << handle;
  eachHandle(drawing, [](Handle& handle) { handle += 100; });
  EXPECT_EQ(drawing.siteless.alignments[0]->sampleLineGroups[0].lines[1].handle, 105U);
}

}  // namespace
}  // namespace lvx::civil
