#include "view/visibility.h"

#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "view/plan_scene.h"

namespace lvx::view {
namespace {

using civil::Handle;
using civil::Vec2;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Visibility, HidesAndShowsHandlesInAnyOrderOnce) {
  Visibility visibility;
  EXPECT_TRUE(visibility.hide(std::vector<Handle>{9, 3, 9, 5}));
  EXPECT_THAT(visibility.hidden(), ElementsAre(3, 5, 9));
  EXPECT_FALSE(visibility.hide(std::vector<Handle>{5}));
  EXPECT_TRUE(visibility.isHidden(5));
  EXPECT_FALSE(visibility.isHidden(4));
  EXPECT_TRUE(visibility.show(std::vector<Handle>{5, 4}));
  EXPECT_FALSE(visibility.show(std::vector<Handle>{5, 4}));
  EXPECT_THAT(visibility.hidden(), ElementsAre(3, 9));
  EXPECT_TRUE(visibility.showAll());
  EXPECT_FALSE(visibility.showAll());
  EXPECT_THAT(visibility.hidden(), IsEmpty());
}

TEST(Visibility, TellsOfSeveralWhetherAllSomeOrNoneAreShown) {
  Visibility visibility;
  visibility.hide(std::vector<Handle>{1, 2});
  EXPECT_EQ(shownOf(visibility, std::vector<Handle>{3, 4}), Shown::All);
  EXPECT_EQ(shownOf(visibility, std::vector<Handle>{1, 3}), Shown::Some);
  EXPECT_EQ(shownOf(visibility, std::vector<Handle>{2, 1}), Shown::None);
  EXPECT_EQ(shownOf(visibility, {}), Shown::All);
}

/// A road with two sample lines over a square of ground, points 1 to 100 in rows, a corridor.
civil::Drawing drawing() {
  civil::Drawing made;
  auto road = std::make_unique<civil::AlignmentObject>();
  road->handle = 10;
  road->name = "Road";
  road->geometry = civil::Alignment::fromText("at 0 0 heading 90; line 100");
  civil::SampleLineGroup group;
  group.handle = 11;
  group.lines.push_back({.handle = 12, .name = "0+020", .station = 20.0, .vertices = {{20, 10}, {20, -10}}});
  group.lines.push_back({.handle = 13, .name = "0+040", .station = 40.0, .vertices = {{40, 10}, {40, -10}}});
  road->sampleLineGroups.push_back(std::move(group));
  made.siteless.alignments.push_back(std::move(road));
  for (int number = 1; number <= 100; ++number) {
    civil::Point point;
    point.handle = 100 + static_cast<Handle>(number);
    point.number = number;
    point.position = {static_cast<double>(number % 10) * 10.0, -20.0 - static_cast<double>(number) / 10.0, 0.0};
    made.points.push_back(std::move(point));
  }
  for (const Handle handle : {Handle{20}, Handle{21}}) {
    civil::SurfaceObject ground;
    ground.handle = handle;
    ground.name = "Ground";
    ground.surface =
        civil::TinSurface({{-50, -50, 0}, {150, -50, 0}, {150, 50, 0}, {-50, 50, 0}}, {{0, 1, 2}, {0, 2, 3}});
    made.surfaces.push_back(std::move(ground));
  }
  return made;
}

class HiddenObjects : public testing::Test {
 protected:
  void hide(std::vector<Handle> handles) {
    Visibility visibility = scene.visibility();
    visibility.hide(handles);
    scene.setVisibility(visibility);
  }
  [[nodiscard]] Handle hitAt(Vec2 place) const {
    const auto hit = scene.hit(place, 1.0);
    return hit ? hit->handle : 0;
  }
  civil::Drawing model = drawing();
  PlanScene scene{model};
};

TEST_F(HiddenObjects, AreNotHitAndLetWhatLiesBelowBeHit) {
  EXPECT_EQ(hitAt({60, 0}), 10U);
  hide({10});
  EXPECT_EQ(hitAt({60, 0}), 21U);
  hide({21});
  EXPECT_EQ(hitAt({60, 0}), 20U);
  hide({20});
  EXPECT_EQ(hitAt({60, 0}), 0U);
  EXPECT_THAT(scene.hits({60, 0}, 1.0), IsEmpty());
  EXPECT_EQ(hitAt({40, 5}), 13U);
  hide({13});
  EXPECT_EQ(hitAt({40, 5}), 0U);
  EXPECT_EQ(hitAt({20, 5}), 12U) << "the other line of the group is there still";
}

TEST_F(HiddenObjects, AreNotInsideAWindow) {
  const std::vector<Handle> all = scene.inside(scene.box(), false);
  EXPECT_EQ(all.size(), 105U);
  hide({12, 20, 101, 150});
  const std::vector<Handle> left = scene.inside(scene.box(), false);
  EXPECT_EQ(left.size(), 101U);
  for (const Handle handle : {12, 20, 101, 150}) EXPECT_THAT(left, testing::Not(testing::Contains(handle)));
}

TEST_F(HiddenObjects, AreNotAmongTheVisiblePointsAndDoNotCount) {
  hide({101, 102, 103});
  const VisiblePoints points = scene.visiblePoints(scene.box(), 1000);
  EXPECT_EQ(points.count, 97U);
  EXPECT_EQ(points.points.size(), 97U);
  EXPECT_EQ(points.points.front()->number, 4);
  const VisiblePoints few = scene.visiblePoints(scene.box(), 20);
  EXPECT_EQ(few.count, 97U);
  EXPECT_LE(few.points.size(), 20U);
  EXPECT_FALSE(few.points.empty());
  for (const civil::Point* const point : few.points) EXPECT_GT(point->number, 3);
}

TEST_F(HiddenObjects, AreThereAgainWhenAllIsShown) {
  hide({10, 12, 20, 21, 101});
  scene.setVisibility({});
  EXPECT_EQ(hitAt({60, 0}), 10U);
  EXPECT_EQ(scene.visiblePoints(scene.box(), 1000).count, 100U);
}

TEST_F(HiddenObjects, KeepTheirPlaceAndTheirName) {
  hide({10, 101});
  EXPECT_TRUE(scene.boxOf(10));
  EXPECT_EQ(scene.describe(10)->name, "Road");
  EXPECT_TRUE(scene.boxOf(101));
}

}  // namespace
}  // namespace lvx::view
