#include "civil/ground_profile.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "civil_makers.h"

namespace lvx::civil {
namespace {

/// A hilly net of `columns` by `rows` squares of `size`, each in two triangles, its corner at `corner`.
TinSurface hills(Vec2 corner, int columns, int rows, double size, double relief = 3.0) {
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  for (int row = 0; row <= rows; ++row) {
    for (int column = 0; column <= columns; ++column) {
      const double x = corner.x + column * size;
      const double y = corner.y + row * size;
      points.push_back({x, y, 100.0 + relief * std::sin(0.05 * x) * std::cos(0.07 * y) + 0.01 * x});
      if (row == rows || column == columns) continue;
      const int at = row * (columns + 1) + column;
      triangles.push_back({at, at + 1, at + columns + 2});
      triangles.push_back({at, at + columns + 2, at + columns + 1});
    }
  }
  return {std::move(points), std::move(triangles)};
}

/// One square of ground over x from `from` to `to`, 10 wide, that rises by 0.1.
void addSlab(double from, double to, std::vector<Vec3>& points, std::vector<Triangle>& triangles) {
  const auto first = static_cast<std::int32_t>(points.size());
  points.insert(points.end(), {{from, -5, 0.1 * from}, {to, -5, 0.1 * to}, {to, 5, 0.1 * to}, {from, 5, 0.1 * from}});
  triangles.push_back({first, first + 1, first + 2});
  triangles.push_back({first, first + 2, first + 3});
}

TEST(GroundProfile, HasAPointAtEveryEdgeThatALineCrosses) {
  const TinSurface ground = hills({-50, -50}, 30, 12, 10.0);
  const auto axis = Alignment::fromText("start 1000 at 3 2 heading 80; line 180");
  std::vector<Vec3> samples;
  ground.sample(axis.poseAt(1000)->point, axis.poseAt(1180)->point, samples);
  const Profile profile = groundProfile(axis, ground);
  ASSERT_EQ(profile.points().size(), samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    EXPECT_NEAR(profile.points()[i].station, 1000.0 + length(Vec2{samples[i].x, samples[i].y} - Vec2{3, 2}), 1e-9);
    EXPECT_EQ(profile.points()[i].elevation, samples[i].z);
  }
  EXPECT_TRUE(profile.isGround());
  EXPECT_EQ(profile.gapCount(), 0u);
}

TEST(GroundProfile, FollowsTheGroundAlongCurvesOfEveryKind) {
  const TinSurface ground = hills({-400, -400}, 80, 80, 10.0);
  const auto axis = Alignment::fromText(
      "start 50 at -100 -100 heading 30; line 40; bloss 60 R inf..90 right; arc 80 R 90 right; cosine 50 R 90..inf "
      "right; "
      "sinusoid 50 R inf..60 left; arc 30 R 60 left; clothoid 40 R 60..inf left; line 20");
  const Profile profile = groundProfile(axis, ground);
  EXPECT_EQ(profile.startStation(), axis.startStation());
  EXPECT_NEAR(profile.endStation(), axis.endStation(), 1e-9);
  for (double station = axis.startStation(); station <= axis.endStation(); station += 0.37) {
    const auto elevation = ground.elevationAt(axis.poseAt(station)->point);
    ASSERT_TRUE(elevation) << station;
    EXPECT_NEAR(*profile.elevationAt(station), *elevation, 3e-4) << station;
  }
  // Far fewer than chords: about the edges that it crosses.
  std::size_t edges = 0;
  std::size_t all = 0;
  for (const auto& run : groundAlong(axis, ground, 1e-4)) {
    all += run.size();
    for (const GroundPoint& point : run) edges += point.isOnEdge ? 1 : 0;
  }
  EXPECT_GE(profile.points().size(), edges);
  EXPECT_LT(profile.points().size(), all);
}

TEST(GroundProfile, IsExactOnAPlaneUnderAnArc) {
  // Ground z = x / 10 without inner edges on the way: all of its shape comes from the chords.
  std::vector<Vec3> points{{-500, -500, -50}, {500, -500, 50}, {500, 500, 50}, {-500, 500, -50}};
  const TinSurface plane(points, {{0, 1, 2}, {0, 2, 3}});
  const auto axis = Alignment::fromText("at 100 0 heading 0; arc 90 R 30 left");
  const Profile profile = groundProfile(axis, plane);
  for (double station = 0.0; station <= 90.0; station += 0.1) {
    EXPECT_NEAR(*profile.elevationAt(station), 0.1 * axis.poseAt(station)->point.x, 1.2e-4) << station;
  }
}

TEST(GroundProfile, KeepsAGapAsAGap) {
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  addSlab(-10, 50, points, triangles);
  addSlab(150, 210, points, triangles);
  const TinSurface ground(points, triangles);
  const auto axis = Alignment::fromText("start 1000 heading 90; line 60; line 20; line 120");
  for (const double thinning : {0.0, 0.5}) {
    const Profile profile = groundProfile(axis, ground, {.thinning = thinning});
    ASSERT_EQ(profile.gapCount(), 1u);
    EXPECT_NEAR(profile.gaps()[0].startStation, 1050.0, 1e-9);
    EXPECT_NEAR(profile.gaps()[0].endStation, 1150.0, 1e-9);
    EXPECT_NEAR(profile.startStation(), 1000.0, 1e-9);
    EXPECT_NEAR(profile.endStation(), 1200.0, 1e-9);
    EXPECT_NEAR(*profile.elevationAt(1050.0), 5.0, 1e-12);
    EXPECT_NEAR(*profile.elevationAt(1150.0), 15.0, 1e-12);
  }
}

TEST(GroundProfile, IsEmptyWhereTheAlignmentMeetsNoGround) {
  EXPECT_TRUE(groundProfile(Alignment::fromText("at 0 900 heading 90; line 100"), hills({0, 0}, 3, 3, 10)).isEmpty());
  EXPECT_TRUE(groundProfile(Alignment::fromText("line 100"), TinSurface()).isEmpty());
  EXPECT_TRUE(groundProfile(Alignment(), hills({0, 0}, 3, 3, 10)).isEmpty());
}

TEST(GroundProfile, IsThinnedWithinItsTolerance) {
  const TinSurface ground = hills({-20, -500}, 120, 100, 10.0);
  const auto axis =
      Alignment::fromText("heading 75; line 300; arc 400 R 500 right; clothoid 100 R 500..inf right; line 90");
  const Profile full = groundProfile(axis, ground);
  std::size_t before = full.points().size();
  for (const double tolerance : {0.002, 0.02, 0.2, 20.0}) {
    const Profile thin = groundProfile(axis, ground, {.thinning = tolerance});
    EXPECT_LE(thin.points().size(), before) << tolerance;
    before = thin.points().size();
    EXPECT_EQ(thin.startStation(), full.startStation());
    EXPECT_EQ(thin.endStation(), full.endStation());
    for (const VerticalPoint& point : full.points()) {
      EXPECT_NEAR(*thin.elevationAt(point.station), point.elevation, tolerance + 1e-9) << point.station;
    }
  }
  EXPECT_EQ(before, 2u) << "within 20 all of it is one straight line";
}

TEST(GroundProfile, RefusesOptionsThatMeanNothing) {
  const auto axis = Alignment::fromText("line 10");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double thinning : {-0.1, nan, infinity}) {
    EXPECT_THROW((void)groundProfile(axis, TinSurface(), {.thinning = thinning}), std::invalid_argument);
  }
  for (const double chordError : {0.0, -1.0, nan, infinity}) {
    EXPECT_THROW((void)groundProfile(axis, TinSurface(), {.chordError = chordError}), std::invalid_argument);
  }
}

}  // namespace
}  // namespace lvx::civil
