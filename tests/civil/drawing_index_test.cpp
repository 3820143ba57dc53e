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
    const void* object;
  } rows[] = {
      {0x100, ObjectKind::Site, &drawing.siteless},
      {0x101, ObjectKind::Site, &drawing.sites[0]},
      {0x102, ObjectKind::Alignment, &alignment},
      {0x103, ObjectKind::Profile, &alignment.profiles[0]},
      {0x104, ObjectKind::SampleLineGroup, &alignment.sampleLineGroups[0]},
      {0x105, ObjectKind::SampleLine, &alignment.sampleLineGroups[0].lines[0]},
      {0x9, ObjectKind::SampleLine, &alignment.sampleLineGroups[0].lines[1]},
      {0x107, ObjectKind::Surface, &drawing.surfaces[0]},
      {0x108, ObjectKind::Point, &drawing.points[0]},
      {0x10A, ObjectKind::Point, &drawing.points[2]},
      {0x10B, ObjectKind::PointGroup, &drawing.pointGroups[0]},
      {0xFFFFFFFFFFFFFFFF, ObjectKind::Corridor, &drawing.corridors[0]},
  };
  for (const auto& row : rows) {
    const auto* entry = index.byHandle(row.handle);
    ASSERT_NE(entry, nullptr) << row.handle;
    EXPECT_EQ(entry->kind, row.kind) << row.handle;
    EXPECT_EQ(entry->object, row.object) << row.handle;
  }
  EXPECT_EQ(std::size(rows), 12u);
}

TEST(DrawingIndex, FindsNothingForNoHandleAndForOthers) {
  const Drawing drawing = drawingOfEveryKind();
  const DrawingIndex index(drawing);
  EXPECT_EQ(index.byHandle(0), nullptr);
  EXPECT_EQ(index.byHandle(0x106), nullptr);
  EXPECT_EQ(DrawingIndex(Drawing()).byHandle(0x100), nullptr);
}

TEST(DrawingIndex, GivesTheFirstPointOfANumber) {
  const Drawing drawing = drawingOfEveryKind();
  const DrawingIndex index(drawing);
  EXPECT_EQ(index.pointByNumber(5), &drawing.points[0]);
  EXPECT_EQ(index.pointByNumber(-3), &drawing.points[1]);
  EXPECT_EQ(index.pointByNumber(6), nullptr);
}

TEST(DrawingIndex, GivesTheFirstObjectOfAHandle) {
  Drawing drawing = drawingOfEveryKind();
  drawing.points[1].handle = 0x101;
  EXPECT_EQ(DrawingIndex(drawing).byHandle(0x101)->kind, ObjectKind::Site);
}

TEST(DrawingIndex, FindsPointsInNoOrder) {
  Drawing drawing;
  for (int i = 0; i < 1000; ++i)
    drawing.points.push_back(point(static_cast<Handle>(1 + i * 7919 % 10007), i * 7919 % 10007));
  const DrawingIndex index(drawing);
  for (const Point& p : drawing.points) {
    ASSERT_EQ(index.pointByNumber(p.number), &p);
    ASSERT_EQ(index.byHandle(p.handle)->object, &p);
  }
}

}  // namespace
}  // namespace lvx::civil
