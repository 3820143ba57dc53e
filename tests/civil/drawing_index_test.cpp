#include <algorithm>
#include <iterator>
#include <optional>

#include <gtest/gtest.h>

#include "civil/drawing.h"

namespace lvx::civil {
namespace {

Point point(Handle handle, std::int32_t number) {
  Point p;
  p.handle = handle;
  p.number = number;
  return p;
}

Drawing drawingOfEveryKind() {
  Drawing drawing;
  drawing.siteless.handle = 0x100;
  auto alignment = std::make_unique<AlignmentObject>();
  alignment->handle = 0x102;
  alignment->profiles.resize(1);
  alignment->profiles[0].handle = 0x103;
  alignment->sampleLineGroups.resize(1);
  alignment->sampleLineGroups[0].handle = 0x104;
  alignment->sampleLineGroups[0].lines.resize(2);
  alignment->sampleLineGroups[0].lines[0].handle = 0x105;
  alignment->sampleLineGroups[0].lines[1].handle = 0x9;
  drawing.sites.resize(1);
  drawing.sites[0].handle = 0x101;
  drawing.sites[0].alignments.push_back(std::move(alignment));
  drawing.surfaces.resize(1);
  drawing.surfaces[0].handle = 0x107;
  drawing.points = {point(0x108, 5), point(0, -3), point(0x10A, 5)};
  drawing.pointGroups.resize(1);
  drawing.pointGroups[0].handle = 0x10B;
  drawing.corridors.resize(1);
  drawing.corridors[0].handle = 0xFFFFFFFFFFFFFFFF;
  return drawing;
}

TEST(DrawingIndex, FindsEveryKindByItsHandle) {
  const Drawing drawing = drawingOfEveryKind();
  const DrawingIndex index(drawing);
  const AlignmentObject& alignment = *drawing.sites[0].alignments[0];
  const struct {
    Handle handle;
    ObjectKind kind;
    DrawingEntry entry;
  } rows[] = {
      {0x100, ObjectKind::Site, {&drawing.siteless}},
      {0x101, ObjectKind::Site, {&drawing.sites[0]}},
      {0x102, ObjectKind::Alignment, {&alignment, &alignment}},
      {0x103, ObjectKind::Profile, {&alignment.profiles[0], &alignment}},
      {0x104, ObjectKind::SampleLineGroup, {&alignment.sampleLineGroups[0], &alignment}},
      {0x105, ObjectKind::SampleLine, {&alignment.sampleLineGroups[0].lines[0], &alignment}},
      {0x9, ObjectKind::SampleLine, {&alignment.sampleLineGroups[0].lines[1], &alignment}},
      {0x107, ObjectKind::Surface, {&drawing.surfaces[0]}},
      {0x108, ObjectKind::Point, {&drawing.points[0]}},
      {0x10A, ObjectKind::Point, {&drawing.points[2]}},
      {0x10B, ObjectKind::PointGroup, {&drawing.pointGroups[0]}},
      {0xFFFFFFFFFFFFFFFF, ObjectKind::Corridor, {&drawing.corridors[0]}},
  };
  for (const auto& row : rows) {
    const auto entry = index.byHandle(row.handle);
    ASSERT_TRUE(entry) << row.handle;
    EXPECT_EQ(entry->kind(), row.kind) << row.handle;
    EXPECT_EQ(entry->object, row.entry.object) << row.handle;
    EXPECT_EQ(entry->alignment, row.entry.alignment) << row.handle;
  }
  EXPECT_EQ(std::size(rows), 12u);
}

TEST(DrawingIndex, GivesAnObjectOnlyAsItsOwnKind) {
  const Drawing drawing = drawingOfEveryKind();
  const auto entry = DrawingIndex(drawing).byHandle(0x107);
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->as<SurfaceObject>(), &drawing.surfaces[0]);
  EXPECT_EQ(entry->as<AlignmentObject>(), nullptr);
}

TEST(DrawingIndex, FindsNothingForNoHandleAndForOthers) {
  const Drawing drawing = drawingOfEveryKind();
  const DrawingIndex index(drawing);
  EXPECT_FALSE(index.byHandle(0));
  EXPECT_FALSE(index.byHandle(0x106));
  EXPECT_FALSE(DrawingIndex(Drawing()).byHandle(0x100));
}

TEST(DrawingIndex, GivesTheFirstPointOfANumber) {
  const Drawing drawing = drawingOfEveryKind();
  const DrawingIndex index(drawing);
  EXPECT_EQ(index.pointByNumber(5), &drawing.points[0]);
  EXPECT_EQ(index.pointByNumber(-3), &drawing.points[1]);
  EXPECT_EQ(index.pointByNumber(6), nullptr);
}

TEST(DrawingIndex, GivesTheFirstObjectOfAHandle) {
  // In the order of the lists: points stand behind sites and surfaces, and in front of groups and corridors.
  for (const Handle handle : {Handle{0x101}, Handle{0x107}, Handle{0x108}, Handle{0x10B}, Handle{0xFFFFFFFFFFFFFFFF}}) {
    Drawing drawing = drawingOfEveryKind();
    const ObjectKind alone = DrawingIndex(drawing).byHandle(handle)->kind();
    drawing.points[1].handle = handle;
    const auto entry = DrawingIndex(drawing).byHandle(handle);
    EXPECT_EQ(entry->kind(), std::min(alone, ObjectKind::Point)) << handle;
    if (alone == ObjectKind::Point) {
      EXPECT_EQ(entry->as<Point>(), &drawing.points[0]);
    }
  }
}

TEST(DrawingIndex, FindsPointsInNoOrder) {
  Drawing drawing;
  for (int i = 0; i < 1000; ++i)
    drawing.points.push_back(point(static_cast<Handle>(1 + i * 7919 % 10007), i * 7919 % 10007));
  const DrawingIndex index(drawing);
  for (const Point& p : drawing.points) {
    ASSERT_EQ(index.pointByNumber(p.number), &p);
    ASSERT_EQ(index.byHandle(p.handle)->as<Point>(), &p);
  }
}

}  // namespace
}  // namespace lvx::civil
