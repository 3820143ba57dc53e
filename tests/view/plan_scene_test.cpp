#include "view/plan_scene.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "civil/corridor.h"
#include "gtest/gtest.h"
#include "support/corridor_makers.h"
#include "support/random_numbers.h"

namespace lvx::view {
namespace {

using civil::Alignment;
using civil::AlignmentObject;
using civil::Box;
using civil::Drawing;
using civil::Handle;
using civil::ObjectKind;
using civil::TinSurface;
using civil::Vec2;

// Handles of the drawing below.
constexpr Handle kSite = 10;
constexpr Handle kAxis = 11;
constexpr Handle kProfile = 12;
constexpr Handle kGroup = 13;
constexpr Handle kFirstLine = 14;
constexpr Handle kSecondLine = 15;
constexpr Handle kBranch = 16;
constexpr Handle kLower = 20;
constexpr Handle kUpper = 21;
constexpr Handle kPoint = 30;
constexpr Handle kNamedPoint = 31;
constexpr Handle kPointGroup = 40;
constexpr Handle kCorridor = 50;

std::unique_ptr<AlignmentObject> alignment(Handle handle, const std::string& name, const std::string& text) {
  auto object = std::make_unique<AlignmentObject>();
  object->handle = handle;
  object->name = name;
  object->geometry = Alignment::fromText(text);
  return object;
}

TinSurface square(double from, double to) {
  return {{{from, from, 0}, {to, from, 0}, {to, to, 0}, {from, to, 0}}, {{0, 1, 2}, {0, 2, 3}}};
}

/// A ring: ground from 0 to 300 with a hole from 100 to 200.
TinSurface ring() {
  return {
      {{0, 0, 0}, {300, 0, 0}, {300, 300, 0}, {0, 300, 0}, {100, 100, 0}, {200, 100, 0}, {200, 200, 0}, {100, 200, 0}},
      {{0, 1, 5}, {0, 5, 4}, {1, 2, 6}, {1, 6, 5}, {2, 3, 7}, {2, 7, 6}, {3, 0, 4}, {3, 4, 7}}};
}

/// An axis to the north at x = 50 from y = 0 to 400, with lines across at 20 and 40; a branch to the east at y = 350;
/// ground in a ring and a square upon it; two points; a corridor 6 to the left and 8 to the right of the axis.
Drawing drawing() {
  Drawing made;
  made.sites.emplace_back();
  civil::Site& site = made.sites.back();
  site.handle = kSite;
  site.name = "Valley";
  auto axis = alignment(kAxis, "Axis", "at 50 0; line 400");
  axis->profiles.push_back({kProfile, "Design", "", {}});
  axis->sampleLineGroups.push_back(
      {kGroup,
       "Sections",
       "",
       {{kFirstLine, "0+020", 20, {{30, 20}, {70, 20}}}, {kSecondLine, "0+040", 40, {{30, 40}, {70, 40}}}}});
  const AlignmentObject* base = axis.get();
  site.alignments.push_back(std::move(axis));
  site.alignments.push_back(alignment(kBranch, "Branch", "at 50 350 heading 90; line 50; arc 100 R 100 right"));
  made.surfaces.push_back({kLower, "Ground", "", ring()});
  made.surfaces.push_back({kUpper, "Plot", "", square(250, 290)});
  made.points.push_back({kPoint, 7, 0, {270, 270, 1}, {}, true});
  made.points.push_back({kNamedPoint, 8, 0, {500, -20, 1}, {"FP8", "", ""}, true});
  made.pointGroups.push_back({kPointGroup, "Survey", "", {8, 9}});
  civil::Corridor corridor;
  corridor.handle = kCorridor;
  corridor.name = "Road";
  civil::Region region = civil::test::regionFrom("100..200 | 100 Pave(-6 0 4) Slope(4 8) | 200 Pave(-6 0 8)");
  corridor.baselines.push_back({"Base", base, nullptr, {std::move(region)}});
  made.corridors.push_back(std::move(corridor));
  return made;
}

std::string nameAt(const PlanScene& scene, Vec2 place, double radius, KindSet kinds = {}) {
  const auto hit = scene.hit(place, radius, kinds);
  if (!hit) return "";
  const auto description = scene.describe(hit->handle);
  EXPECT_EQ(description, (Description{hit->kind, hit->name}));
  return hit->name;
}

TEST(PlanScene, FindsAllThatLiesOneAboveTheOtherInTheOrderOfHits) {
  const Drawing made = drawing();
  const PlanScene scene(made);
  std::size_t several = 0;
  for (double x = -600; x <= 600; x += 10)
    for (double y = -300; y <= 300; y += 10) {
      const auto first = scene.hit({x, y}, 8.0);
      const std::vector<Hit> hits = scene.hits({x, y}, 8.0);
      ASSERT_EQ(hits.empty(), !first) << x << ' ' << y;
      if (hits.empty()) continue;
      EXPECT_EQ(hits.front(), *first) << x << ' ' << y;
      if (hits.size() > 1) ++several;
      for (std::size_t i = 0; i < hits.size(); ++i)
        for (std::size_t k = i + 1; k < hits.size(); ++k) EXPECT_NE(hits[i].handle, hits[k].handle);
    }
  EXPECT_GT(several, 10U);
  EXPECT_TRUE(scene.hits({0, 0}, -1.0).empty());
}

TEST(PlanScene, NamesEveryObject) {
  const Drawing made = drawing();
  const PlanScene scene(made);
  EXPECT_EQ(scene.describe(kSite), (Description{ObjectKind::Site, "Valley"}));
  EXPECT_EQ(scene.describe(kAxis), (Description{ObjectKind::Alignment, "Axis"}));
  EXPECT_EQ(scene.describe(kProfile), (Description{ObjectKind::Profile, "Design"}));
  EXPECT_EQ(scene.describe(kGroup), (Description{ObjectKind::SampleLineGroup, "Sections"}));
  EXPECT_EQ(scene.describe(kSecondLine), (Description{ObjectKind::SampleLine, "0+040"}));
  EXPECT_EQ(scene.describe(kLower), (Description{ObjectKind::Surface, "Ground"}));
  EXPECT_EQ(scene.describe(kPoint), (Description{ObjectKind::Point, "7"}));
  EXPECT_EQ(scene.describe(kNamedPoint), (Description{ObjectKind::Point, "FP8"}));
  EXPECT_EQ(scene.describe(kPointGroup), (Description{ObjectKind::PointGroup, "Survey"}));
  EXPECT_EQ(scene.describe(kCorridor), (Description{ObjectKind::Corridor, "Road"}));
  EXPECT_FALSE(scene.describe(0));
  EXPECT_FALSE(scene.describe(999));
}

void expectBox(const std::optional<Box>& box, const Box& expected, const char* what) {
  ASSERT_TRUE(box) << what;
  EXPECT_NEAR(box->minX, expected.minX, 1e-9) << what;
  EXPECT_NEAR(box->minY, expected.minY, 1e-9) << what;
  EXPECT_NEAR(box->maxX, expected.maxX, 1e-9) << what;
  EXPECT_NEAR(box->maxY, expected.maxY, 1e-9) << what;
}

TEST(PlanScene, KnowsWhereEveryObjectLies) {
  const Drawing made = drawing();
  const PlanScene scene(made);
  const double east = 100 + 100 * std::sin(1.0);
  const double south = 350 - 100 * (1 - std::cos(1.0));
  expectBox(scene.boxOf(kAxis), {50, 0, 50, 400}, "axis");
  expectBox(scene.boxOf(kProfile), {50, 0, 50, 400}, "profile");
  expectBox(scene.boxOf(kBranch), {50, south, east, 350}, "branch");
  expectBox(scene.boxOf(kSite), {50, 0, east, 400}, "site");
  expectBox(scene.boxOf(kGroup), {30, 20, 70, 40}, "group");
  expectBox(scene.boxOf(kFirstLine), {30, 20, 70, 20}, "line");
  expectBox(scene.boxOf(kLower), {0, 0, 300, 300}, "surface");
  expectBox(scene.boxOf(kPoint), {270, 270, 270, 270}, "point");
  expectBox(scene.boxOf(kPointGroup), {500, -20, 500, -20}, "point group");
  expectBox(scene.boxOf(kCorridor), {44, 100, 58, 200}, "corridor");
  expectBox(scene.box(), {0, -20, 500, 400}, "all");
  EXPECT_FALSE(scene.boxOf(0));
  EXPECT_FALSE(scene.boxOf(999));
}

TEST(PlanScene, TakesListsOverThatWereEdited) {
  Drawing edited = drawing();
  PlanScene scene(edited);
  AlignmentObject& axis = *edited.sites.front().alignments.front();
  axis.sampleLineGroups.push_back({70, "New", "", {{71, "far", 100.0, {{-500.0, 100.0}, {600.0, 100.0}}}}});
  axis.sampleLineGroups.erase(axis.sampleLineGroups.begin());
  edited.pointGroups.clear();
  scene.refreshLists();
  EXPECT_EQ(scene.describe(71), (Description{ObjectKind::SampleLine, "far"}));
  EXPECT_EQ(scene.hit({-490.0, 100.0}, 1.0)->handle, 71U);
  EXPECT_EQ(scene.sampleLines().size(), 1U);
  EXPECT_EQ(scene.box().minX, -500.0);
  EXPECT_FALSE(scene.describe(kFirstLine).has_value());
  EXPECT_FALSE(scene.describe(kPointGroup).has_value());
  EXPECT_TRUE(scene.describe(kPoint).has_value());
  EXPECT_EQ(scene.surfaces().size(), edited.surfaces.size());
}

TEST(PlanScene, HitsPointsBeforeLinesBeforeSurfaces) {
  const Drawing made = drawing();
  const PlanScene scene(made);
  EXPECT_EQ(nameAt(scene, {271, 271}, 3), "7");
  EXPECT_EQ(nameAt(scene, {275, 275}, 3), "Plot");  // the upper of two surfaces
  EXPECT_EQ(nameAt(scene, {240, 275}, 3), "Ground");
  EXPECT_EQ(nameAt(scene, {51, 60}, 3), "Axis");
  EXPECT_EQ(nameAt(scene, {60, 21}, 3), "0+020");
  EXPECT_EQ(nameAt(scene, {51, 21.5}, 3), "Axis");  // the nearer of two lines
  EXPECT_EQ(nameAt(scene, {52, 21}, 3), "0+020");
  EXPECT_EQ(nameAt(scene, {57, 150}, 3), "Road");     // its edge lies 8 from the axis
  EXPECT_EQ(nameAt(scene, {50, 150}, 3), "Axis");     // the axis before the corridor's baseline upon it
  EXPECT_EQ(nameAt(scene, {150, 99}, 3), "Ground");   // beside the hole
  EXPECT_EQ(nameAt(scene, {150, 102}, 3), "Ground");  // its border, from within the hole
  EXPECT_EQ(nameAt(scene, {150, 150}, 3), "");        // the hole
  EXPECT_EQ(nameAt(scene, {700, 700}, 3), "");
  EXPECT_EQ(nameAt(scene, {50, 402}, 3), "");  // beyond the axis' end
  EXPECT_EQ(nameAt(scene, {std::nan(""), 0}, 3), "");
  EXPECT_EQ(nameAt(scene, {50, 150}, -1), "");
}

TEST(PlanScene, HitsOnlyTheKindsAskedFor) {
  const Drawing made = drawing();
  const PlanScene scene(made);
  EXPECT_EQ(nameAt(scene, {270, 270}, 3, {ObjectKind::Surface}), "Plot");
  EXPECT_EQ(nameAt(scene, {50, 150}, 3, {ObjectKind::Corridor}), "Road");
  EXPECT_EQ(nameAt(scene, {50, 150}, 3, {ObjectKind::Surface}), "Ground");
  EXPECT_EQ(nameAt(scene, {50, 20}, 3, {ObjectKind::SampleLine, ObjectKind::Point}), "0+020");
  EXPECT_EQ(nameAt(scene, {50, 150}, 3, {ObjectKind::Point}), "");
  EXPECT_EQ(nameAt(scene, {50, 150}, 3, {ObjectKind::Profile}), "");
}

TEST(PlanScene, SelectsWhatAWindowHoldsAndWhatItCrosses) {
  const Drawing made = drawing();
  const PlanScene scene(made);
  using Handles = std::vector<Handle>;
  const Box around{20, 10, 80, 50};
  EXPECT_EQ(scene.inside(around, false), (Handles{kFirstLine, kSecondLine}));
  EXPECT_EQ(scene.inside(around, true), (Handles{kAxis, kFirstLine, kSecondLine, kLower}));
  EXPECT_EQ(scene.inside(around, true, {ObjectKind::SampleLine}), (Handles{kFirstLine, kSecondLine}));
  EXPECT_EQ(scene.inside({40, 90, 60, 210}, false), (Handles{kCorridor}));
  EXPECT_EQ(scene.inside({40, 90, 60, 150}, false), Handles());
  EXPECT_EQ(scene.inside({57, 110, 59, 120}, true), (Handles{kLower, kCorridor}));
  EXPECT_EQ(scene.inside({-1000, -1000, 1000, 1000}, false),
            (Handles{kAxis, kFirstLine, kSecondLine, kBranch, kLower, kUpper, kPoint, kNamedPoint, kCorridor}));
  EXPECT_EQ(scene.inside({120, 120, 180, 180}, true), Handles());          // within the hole
  EXPECT_EQ(scene.inside({210, 120, 220, 130}, true), (Handles{kLower}));  // ground all over
  EXPECT_EQ(scene.inside({265, 265, 275, 275}, false, {ObjectKind::Point}), (Handles{kPoint}));
  EXPECT_EQ(scene.inside({265, 265, 275, 275}, true), (Handles{kLower, kUpper, kPoint}));
  EXPECT_EQ(scene.inside(Box{}, true), Handles());
}

TEST(PlanScene, CrossesTheArcAndNotItsChord) {
  Drawing made;
  made.siteless.alignments.push_back(alignment(1, "Arc", "at 0 0; arc 314.159 R 100 right"));  // half a circle
  const PlanScene scene(made);
  const Vec2 top{100, 100};
  EXPECT_EQ(scene.inside({top.x - 1, top.y - 1, top.x + 1, top.y + 1}, true).size(), 1U);
  EXPECT_EQ(scene.inside({99, 50, 101, 51}, true).size(), 0U);
  EXPECT_EQ(scene.inside({-1, -1, 201, 101}, false).size(), 1U);
  EXPECT_EQ(scene.inside({-1, -1, 201, 99}, false).size(), 0U);
  EXPECT_EQ(scene.inside({100, 100, 100, 100}, true).size(), 0U);  // no window at all
}

TEST(PlanScene, DrawsCorridorsThroughTheirOutermostPoints) {
  const Drawing made = drawing();
  const PlanScene scene(made);
  ASSERT_EQ(scene.corridors().size(), 1U);
  const CorridorShape& shape = scene.corridors()[0];
  const Lines edges = shape.edges.lines(scene.box(), 0.0);
  ASSERT_EQ(edges.size(), 2U);
  const auto expectLine = [](const Line& line, const Line& expected) {
    ASSERT_EQ(line.size(), expected.size());
    for (std::size_t i = 0; i < line.size(); ++i) EXPECT_NEAR(length(line[i] - expected[i]), 0.0, 1e-9) << i;
  };
  expectLine(edges[0], {{44, 100}, {44, 200}});
  expectLine(edges[1], {{58, 100}, {58, 200}});
  const Lines baselines = shape.baselines.lines(scene.box(), 0.0);
  ASSERT_EQ(baselines.size(), 1U);
  expectLine(baselines[0], {{50, 100}, {50, 200}});
}

TEST(PlanScene, ShowsARebuiltCorridorAfterRefreshing) {
  Drawing made = drawing();
  PlanScene scene(made);
  civil::Region& region = made.corridors[0].baselines[0].regions[0];
  region = civil::test::regionFrom("100..300 | 100 Pave(-9 0 4) | 200 Pave(-9 0 4) | 300 Pave(-9 0 4)");
  scene.refreshCorridors();
  expectBox(scene.boxOf(kCorridor), {41, 100, 54, 300}, "corridor");
  EXPECT_EQ(nameAt(scene, {41, 250}, 1), "Road");
}

TEST(PlanScene, HitsAnAlignmentBeforeTheCorridorOnItInCurvesToo) {
  Drawing made = drawing();
  const AlignmentObject* const branch = made.sites[0].alignments[1].get();
  made.corridors[0].baselines = {{"Base", branch, nullptr, {civil::test::regionFrom("0..150 | 0 Pave(-6 0 4)")}}};
  const PlanScene scene(made);
  for (double station = 0.5; station < 150.0; station += 0.5) {
    const auto place = branch->geometry.pointLocation(station, station > 75.0 ? 0.4 : -0.4);
    EXPECT_EQ(nameAt(scene, place->point, 1), "Branch") << station;
  }
}

TEST(PlanScene, StandsCorridorsWithoutPlace) {
  Drawing made = drawing();
  civil::Corridor& corridor = made.corridors[0];
  corridor.baselines.push_back({"Lost", nullptr, nullptr, corridor.baselines[0].regions});
  corridor.baselines[0].regions = {civil::test::regionFrom("5000..6000 | 5000 Pave(-9 0 4)"), civil::Region{}};
  const PlanScene scene(made);
  EXPECT_FALSE(scene.boxOf(kCorridor));
  EXPECT_EQ(nameAt(scene, {44, 150}, 1), "Ground");
}

TEST(PlanScene, IsEmptyForAnEmptyDrawing) {
  const Drawing made;
  std::vector<double> told;
  const PlanScene scene(made, [&](double done) {
    told.push_back(done);
    return true;
  });
  EXPECT_TRUE(scene.box().isEmpty());
  EXPECT_FALSE(scene.hit({0, 0}, 1e9));
  EXPECT_TRUE(scene.inside({-1e9, -1e9, 1e9, 1e9}, true).empty());
  EXPECT_EQ(scene.visiblePoints({-1e9, -1e9, 1e9, 1e9}, 10).count, 0U);
  EXPECT_EQ(told.front(), 0.0);
  EXPECT_EQ(told.back(), 1.0);
}

TEST(PlanScene, StandsObjectsWithoutGeometry) {
  Drawing made;
  made.siteless.alignments.push_back(alignment(1, "None", ""));
  made.siteless.alignments.push_back(nullptr);
  made.siteless.alignments[0]->sampleLineGroups.push_back(
      {2, "Group", "", {{3, "Line", 0, {}}, {4, "Dot", 0, {{5, 5}}}}});
  made.surfaces.push_back({5, "No ground", "", TinSurface()});
  made.points.push_back({6, 1, 0, {std::nan(""), 3, 0}, {}, true});
  const PlanScene scene(made);
  for (const Handle handle : {1, 2, 3, 4, 5, 6}) EXPECT_TRUE(scene.describe(handle)) << handle;
  EXPECT_FALSE(scene.boxOf(1));
  EXPECT_FALSE(scene.boxOf(3));
  expectBox(scene.boxOf(2), {5, 5, 5, 5}, "group");
  EXPECT_FALSE(scene.boxOf(5));
  EXPECT_FALSE(scene.boxOf(6));
  EXPECT_FALSE(scene.hit({0, 0}, 1));
  EXPECT_EQ(scene.inside({0, 0, 10, 10}, true), (std::vector<Handle>{4}));
}

TEST(PlanScene, GivesUpWhereverItIsAskedTo) {
  const Drawing made = drawing();
  int calls = 0;
  const PlanScene whole(made, [&](double) { return ++calls > 0; });
  ASSERT_GT(calls, 3);
  for (int last = 1; last <= calls; ++last) {
    int call = 0;
    EXPECT_THROW(PlanScene(made, [&](double) { return ++call < last; }), Cancelled) << last;
  }
}

TEST(PlanScene, TellsProgressThatNeverGoesBack) {
  const Drawing made = drawing();
  double before = 0.0;
  const PlanScene scene(made, [&](double done) {
    EXPECT_GE(done, before);
    EXPECT_LE(done, 1.0 + 1e-12);
    before = done;
    return true;
  });
  EXPECT_EQ(before, 1.0);
}

// ---------------------------------------------------------------- many points

Drawing manyPoints(int count, std::mt19937& random) {
  Drawing made;
  std::normal_distribution<double> spread(0, 300);
  for (int i = 0; i < count; ++i)
    made.points.push_back(
        {static_cast<Handle>(100 + i), i, 0, {2'600'000 + spread(random), 1'200'000 + spread(random), 0}, {}, true});
  made.points[17].position = {0, 0, 0};  // a slip: far off the others
  return made;
}

TEST(PlanPoints, AreThoseInTheWindow) {
  auto random = test::seededByTestName();
  const Drawing made = manyPoints(20'000, random);
  const PlanScene scene(made);
  for (const double size : {1.0, 20.0, 150.0, 5000.0, 5e6}) {
    const Box window{2'600'050 - size, 1'199'970 - size, 2'600'050 + size, 1'199'970 + size};
    std::vector<const civil::Point*> expected;
    for (const civil::Point& point : made.points)
      if (holds(window, Vec2{point.position.x, point.position.y})) expected.push_back(&point);
    const auto all = scene.visiblePoints(window, made.points.size());
    EXPECT_EQ(all.points, expected) << size;
    EXPECT_EQ(all.count, expected.size()) << size;
    const auto some = scene.visiblePoints(window, 500);
    EXPECT_EQ(some.count, expected.size()) << size;
    EXPECT_LE(some.points.size(), 500U) << size;
    EXPECT_GE(some.points.size(), std::min<std::size_t>(expected.size(), 100)) << size;
    EXPECT_TRUE(std::includes(expected.begin(), expected.end(), some.points.begin(), some.points.end()));
  }
  EXPECT_TRUE(scene.visiblePoints({0, 0, 3e6, 3e6}, 0).points.empty());
}

TEST(PlanPoints, StayWhileTheViewMoves) {
  auto random = test::seededByTestName();
  const Drawing made = manyPoints(20'000, random);
  const PlanScene scene(made);
  const auto chosen = [&](double left) {
    const auto visible = scene.visiblePoints({left, 1'199'800, left + 400, 1'200'200}, 600);
    return std::set<const civil::Point*>(visible.points.begin(), visible.points.end());
  };
  const auto before = chosen(2'599'800);
  const auto after = chosen(2'599'810);
  std::size_t common = 0;
  std::size_t possible = 0;
  for (const civil::Point* point : before) {
    if (point->position.x < 2'599'810) continue;
    ++possible;
    common += after.contains(point) ? 1U : 0U;
  }
  EXPECT_GT(possible, 200U);
  EXPECT_EQ(common, possible);
}

TEST(PlanPoints, AreHitAtTheNearest) {
  auto random = test::seededByTestName();
  const Drawing made = manyPoints(5000, random);
  const PlanScene scene(made);
  std::uniform_real_distribution<double> any(-400, 400);
  for (int i = 0; i < 200; ++i) {
    const Vec2 place{2'600'000 + any(random), 1'200'000 + any(random)};
    double least = std::numeric_limits<double>::infinity();
    Handle nearest = 0;
    for (const civil::Point& point : made.points)
      if (const double d = length(Vec2{point.position.x, point.position.y} - place); d < least) {
        least = d;
        nearest = point.handle;
      }
    const auto hit = scene.hit(place, 10);
    EXPECT_EQ(hit ? hit->handle : 0, least <= 10 ? nearest : 0);
  }
}

TEST(PlanPoints, AllThatLieThereAreFoundTheNearestFirst) {
  auto random = test::seededByTestName();
  const Drawing made = manyPoints(3000, random);
  const PlanScene scene(made);
  std::uniform_real_distribution<double> any(-400, 400);
  for (int i = 0; i < 200; ++i) {
    const Vec2 place{2'600'000 + any(random), 1'200'000 + any(random)};
    std::vector<std::pair<double, Handle>> near;
    for (const civil::Point& point : made.points) {
      const double d = length(Vec2{point.position.x, point.position.y} - place);
      if (d <= 40) near.emplace_back(d, point.handle);
    }
    std::sort(near.begin(), near.end());
    const std::vector<Hit> hits = scene.hits(place, 40);
    ASSERT_EQ(hits.size(), near.size());
    for (std::size_t at = 0; at < hits.size(); ++at) EXPECT_EQ(hits[at].handle, near[at].second);
    const auto first = scene.hit(place, 40);
    EXPECT_EQ(hits.empty(), !first);
    if (first && !hits.empty()) {
      EXPECT_EQ(hits.front(), *first);
    }
  }
}

TEST(PlanPoints, AreFoundByHandleInAnyOrder) {
  auto random = test::seededByTestName();
  Drawing made = manyPoints(100, random);
  std::reverse(made.points.begin(), made.points.end());
  made.points.push_back({100, 77, 0, {1, 1, 1}, {"again", "", ""}, true});
  const PlanScene scene(made);
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(scene.describe(static_cast<Handle>(100 + i)), (Description{ObjectKind::Point, std::to_string(i)}));
  EXPECT_FALSE(scene.describe(99));
  EXPECT_FALSE(scene.describe(200));
}

}  // namespace
}  // namespace lvx::view
