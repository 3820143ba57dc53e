#include "view/profile_model.h"

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "landxml/reader.h"
#include "support/places.h"

namespace lvx::view {
namespace {

using civil::Vec2;
using civil::VerticalCurveKind;
using testing::ElementsAre;
using testing::IsEmpty;

civil::Drawing withProfile(civil::Profile profile, civil::Alignment axis = civil::Alignment::fromText("line 1000")) {
  civil::Drawing drawing;
  auto alignment = std::make_unique<civil::AlignmentObject>();
  alignment->handle = 1;
  alignment->name = "Axis";
  alignment->geometry = std::move(axis);
  civil::ProfileObject object;
  object.handle = 2;
  object.name = "Profile";
  object.profile = std::move(profile);
  alignment->profiles.push_back(std::move(object));
  drawing.siteless.alignments.push_back(std::move(alignment));
  return drawing;
}

/// Tangents of +2 %, -3 %, +1 %, -2 % and +4 % with one curve of each kind between them.
civil::Profile curved() {
  return civil::Profile::design({{0, 100},
                                 {200, 104, VerticalCurveKind::Parabola, 100},
                                 {400, 98, VerticalCurveKind::UnsymmetricParabola, 60, 90},
                                 {600, 100, VerticalCurveKind::Circle, 0, 0, 3000},
                                 {800, 96},
                                 {900, 100}});
}

void expectDrawnAsItIs(const ProfileLine& picture) {
  ASSERT_EQ(picture.lines.size(), 1U);
  const Line& line = picture.lines[0];
  for (std::size_t i = 0; i < line.size(); ++i) {
    EXPECT_NEAR(line[i].y, *picture.profile->elevationAt(line[i].x), 1e-9) << line[i].x;
    if (i == 0) continue;
    ASSERT_GE(line[i].x, line[i - 1].x);
    for (const double part : {0.25, 0.5, 0.75}) {
      const Vec2 chord = line[i - 1] + part * (line[i] - line[i - 1]);
      EXPECT_NEAR(chord.y, *picture.profile->elevationAt(chord.x), kProfileChordError) << chord.x;
    }
  }
  EXPECT_EQ(line.front().x, picture.profile->startStation());
  EXPECT_EQ(line.back().x, picture.profile->endStation());
}

TEST(ProfileModel, DrawsCurvesWithinHalfAMillimetreOfTheProfile) {
  const civil::Drawing drawing = withProfile(curved());
  expectDrawnAsItIs(profilesOf(drawing, 1)->profiles.at(0));
}

TEST(ProfileModel, DrawsTheDesignsOfTheExampleAsTheyAre) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  std::size_t designs = 0;
  for (const auto& alignment : drawing.sites[0].alignments) {
    const auto model = profilesOf(drawing, alignment->handle);
    for (const ProfileLine& picture : model->profiles) {
      if (picture.isGround) continue;
      expectDrawnAsItIs(picture);
      ++designs;
    }
  }
  EXPECT_EQ(designs, 2U);
}

TEST(ProfileModel, TellsOfEachPointOfIntersection) {
  const civil::Drawing drawing = withProfile(curved());
  const auto model = profilesOf(drawing, 1);
  const auto& marks = model->profiles[0].marks;
  ASSERT_EQ(marks.size(), 6U);
  EXPECT_EQ(marks[0].kind, VerticalCurveKind::None);
  EXPECT_EQ(marks[0].curveStart, marks[0].place);

  EXPECT_EQ(marks[1].kind, VerticalCurveKind::Parabola);
  EXPECT_EQ(marks[1].place, (Vec2{200, 104}));
  EXPECT_NEAR(marks[1].gradeIn, 0.02, 1e-12);
  EXPECT_NEAR(marks[1].gradeOut, -0.03, 1e-12);
  EXPECT_NEAR(marks[1].length, 100, 1e-9);
  EXPECT_NEAR(marks[1].radius, 100 / 0.05, 1e-6);
  EXPECT_NEAR(marks[1].curveStart.x, 150, 1e-9);
  EXPECT_NEAR(marks[1].curveStart.y, 103, 1e-9);
  EXPECT_NEAR(marks[1].curveEnd.y, 102.5, 1e-9);
  EXPECT_TRUE(marks[1].isCrest());

  EXPECT_EQ(marks[2].kind, VerticalCurveKind::UnsymmetricParabola);
  EXPECT_EQ(marks[2].length, 60);
  EXPECT_EQ(marks[2].lengthOut, 90);
  EXPECT_EQ(marks[2].radius, 0);
  EXPECT_FALSE(marks[2].isCrest());

  EXPECT_EQ(marks[3].kind, VerticalCurveKind::Circle);
  EXPECT_EQ(marks[3].radius, 3000);
  EXPECT_NEAR(marks[3].length, 90, 0.1);
  EXPECT_EQ(marks[4].length, 0);
}

TEST(ProfileModel, HasTangentsBetweenTheCurvesOnly) {
  const civil::Drawing drawing = withProfile(curved());
  const auto model = profilesOf(drawing, 1);
  const auto& tangents = model->profiles[0].tangents;
  ASSERT_EQ(tangents.size(), 5U);
  const double grades[] = {0.02, -0.03, 0.01, -0.02, 0.04};
  for (std::size_t i = 0; i < tangents.size(); ++i) {
    EXPECT_NEAR(tangents[i].grade, grades[i], 1e-12);
    const Vec2 run = tangents[i].end - tangents[i].start;
    EXPECT_NEAR(run.y / run.x, grades[i], 1e-9);
  }
  EXPECT_NEAR(tangents[0].end.x, 150, 1e-9);
  EXPECT_NEAR(tangents[1].start.x, 250, 1e-9);
}

TEST(ProfileModel, SurvivesCurvesThatOverlap) {
  const civil::Drawing drawing = withProfile(civil::Profile::design({{0, 0},
                                                                     {100, 5, VerticalCurveKind::Parabola, 180},
                                                                     {150, 2, VerticalCurveKind::Parabola, 400},
                                                                     {200, 6, VerticalCurveKind::Circle, 0, 0, 500},
                                                                     {210, 6}}));
  const auto model = profilesOf(drawing, 1);
  const Line& line = model->profiles[0].lines.at(0);
  for (std::size_t i = 0; i < line.size(); ++i) {
    EXPECT_NEAR(line[i].y, *model->profiles[0].profile->elevationAt(line[i].x), 1e-9);
    if (i > 0) {
      EXPECT_GE(line[i].x, line[i - 1].x);
    }
  }
}

TEST(ProfileModel, KeepsTheGapsOfTheGround) {
  const civil::Drawing drawing = withProfile(
      civil::Profile::ground({{{0, 10}, {20, 11}, {40, 12}}, {{60, 9}, {60, 7}, {80, 8}}, {{80, 8}, {100, 9}}}));
  const auto model = profilesOf(drawing, 1);
  const ProfileLine& ground = model->profiles[0];
  EXPECT_TRUE(ground.isGround);
  EXPECT_THAT(ground.lines, ElementsAre(ElementsAre(Vec2{0, 10}, Vec2{20, 11}, Vec2{40, 12}),
                                        ElementsAre(Vec2{60, 9}, Vec2{60, 7}, Vec2{80, 8}, Vec2{80, 8}, Vec2{100, 9})));
  EXPECT_THAT(ground.marks, IsEmpty());
  EXPECT_TRUE(ground.covers(40));
  EXPECT_FALSE(ground.covers(50));
  EXPECT_TRUE(ground.covers(60));
  EXPECT_FALSE(ground.covers(101));
}

TEST(ProfileModel, StandsEmptyForAnEmptyProfile) {
  const civil::Drawing design = withProfile(civil::Profile::design({}));
  const auto model = profilesOf(design, 1);
  ASSERT_EQ(model->profiles.size(), 1U);
  EXPECT_THAT(model->profiles[0].lines, IsEmpty());
  EXPECT_FALSE(model->profiles[0].covers(0));
  EXPECT_TRUE(model->box().isEmpty());
  EXPECT_FALSE(model->hit({0, 0}, {1e9, 1e9}));

  const civil::Drawing point = withProfile(civil::Profile::design({{50, 3}}));
  EXPECT_THAT(profilesOf(point, 1)->profiles[0].lines, ElementsAre(ElementsAre(Vec2{50, 3})));
}

TEST(ProfileModel, StandsWithoutProfilesAndIsNoneForOtherThings) {
  civil::Drawing drawing = withProfile(civil::Profile());
  drawing.siteless.alignments[0]->profiles.clear();
  EXPECT_THAT(profilesOf(drawing, 1)->profiles, IsEmpty());
  EXPECT_FALSE(profilesOf(drawing, 0));
  EXPECT_FALSE(profilesOf(drawing, 2));
}

TEST(ProfileModel, FindsTheProfileThatIsMeant) {
  civil::Drawing drawing = withProfile(civil::Profile::ground({{{0, 10}, {100, 10}}, {{200, 10}, {300, 10}}}));
  civil::ProfileObject design;
  design.handle = 3;
  design.profile = civil::Profile::design({{0, 12}, {300, 10}});
  drawing.siteless.alignments[0]->profiles.push_back(std::move(design));
  const auto model = profilesOf(drawing, 1);
  ASSERT_EQ(model->profiles[0].handle, 3U) << "designs come first";
  EXPECT_EQ(model->hit({50, 10.1}, {5, 0.5}), 1U);
  EXPECT_EQ(model->hit({0, 11.8}, {5, 0.5}), 0U);
  EXPECT_EQ(model->hit({300, 10}, {5, 0.5}), 0U) << "of equals the first";
  EXPECT_FALSE(model->hit({150, 10}, {5, 0.5})) << "a gap is no line";
  EXPECT_FALSE(model->hit({50, 15}, {5, 0.5}));
  EXPECT_EQ(model->hit({300, 10}, {5, 0.5}, [](std::size_t index) { return index == 1; }), 1U);
}

TEST(ProfileModel, ListsTheElementsOfTheAxis) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  const auto model = profilesOf(drawing, drawing.sites[0].alignments[0]->handle);
  ASSERT_EQ(model->elements.size(), 11U);
  EXPECT_EQ(model->elements[0].parameter(), 0.0);
  EXPECT_NEAR(model->elements[1].parameter(), 150.0, 1e-6);
  EXPECT_NEAR(1.0 / model->elements[2].startCurvature, -300.0, 1e-6);
  EXPECT_NEAR(model->elements[2].length(), 168.3, 1e-6);
  EXPECT_EQ(model->elementAt(1203.4)->kind, civil::ElementKind::Arc);
  EXPECT_EQ(model->elementAt(2093.0), &model->elements.back());
  EXPECT_EQ(model->elementAt(999.0), nullptr);
  EXPECT_EQ(model->elementAt(2094.0), nullptr);
}

// ---------------------------------------------------------------- surfaces along the axis

TEST(GroundAlong, LiesOnTheSurfaceUnderTheAxis) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  const civil::TinSurface& surface = drawing.surfaces[0].surface;
  std::size_t points = 0;
  for (const auto& alignment : drawing.sites[0].alignments) {
    const Lines lines = groundAlong(alignment->geometry, surface);
    ASSERT_FALSE(lines.empty());
    for (const Line& line : lines) {
      for (const Vec2 place : line) {
        const auto pose = alignment->geometry.poseAt(place.x, 0.001);
        ASSERT_TRUE(pose) << place.x;
        const auto elevation = surface.elevationAt(pose->point);
        ASSERT_TRUE(elevation) << place.x;
        EXPECT_NEAR(*elevation, place.y, 0.02) << place.x;
        ++points;
      }
      EXPECT_TRUE(std::is_sorted(line.begin(), line.end(), [](Vec2 a, Vec2 b) { return a.x < b.x; }));
    }
  }
  EXPECT_GT(points, 300U);
}

TEST(GroundAlong, LeavesGapsWhereTheAxisLeavesTheSurface) {
  const civil::Alignment axis = civil::Alignment::fromText("start 1000 at 0 0 heading 90; line 100; line 100");
  std::vector<civil::Vec3> points;
  std::vector<civil::Triangle> triangles;
  for (const double from : {-10.0, 150.0}) {
    const auto first = static_cast<std::int32_t>(points.size());
    points.insert(points.end(), {{from, -5, 10}, {from + 60, -5, 16}, {from + 60, 5, 16}, {from, 5, 10}});
    triangles.push_back({first, first + 1, first + 2});
    triangles.push_back({first, first + 2, first + 3});
  }
  const Lines lines = groundAlong(axis, civil::TinSurface(std::move(points), std::move(triangles)));
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NEAR(lines[0].front().x, 1000, 1e-9);
  EXPECT_NEAR(lines[0].front().y, 11, 1e-9);
  EXPECT_NEAR(lines[0].back().x, 1050, 1e-9);
  EXPECT_NEAR(lines[1].front().x, 1150, 1e-9);
  EXPECT_NEAR(lines[1].back().x, 1200, 1e-9);
  EXPECT_THAT(groundAlong(axis, civil::TinSurface()), IsEmpty());
  EXPECT_THAT(groundAlong(civil::Alignment(), civil::TinSurface()), IsEmpty());
}

}  // namespace
}  // namespace lvx::view
