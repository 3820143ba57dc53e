#include "view/contours.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/random_numbers.h"
#include "view/surface_tiles.h"

namespace lvx::view {
namespace {

using civil::TinSurface;
using civil::Triangle;
using civil::Vec2;
using civil::Vec3;

/// A grid of points 1 apart, each square in two triangles; the height by column and row.
template <class Height>
TinSurface grid(int columns, int rows, const Height& height) {
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column)
      points.push_back({double(column), double(row), height(column, row)});
  for (int row = 0; row + 1 < rows; ++row)
    for (int column = 0; column + 1 < columns; ++column) {
      const int corner = row * columns + column;
      triangles.push_back({corner, corner + 1, corner + columns});
      triangles.push_back({corner + 1, corner + columns + 1, corner + columns});
    }
  return {std::move(points), std::move(triangles)};
}

double lengthOf(const Line& line) {
  double sum = 0.0;
  for (std::size_t i = 1; i < line.size(); ++i) sum += std::hypot(line[i].x - line[i - 1].x, line[i].y - line[i - 1].y);
  return sum;
}

TEST(Contours, RunStraightAcrossAPlaneAtEveryMultipleOfTheInterval) {
  const TinSurface plane = grid(5, 4, [](int column, int) { return 10.0 + column * 0.9; });
  const std::vector<Contour> found = contours(plane, {.interval = 0.5});
  ASSERT_EQ(found.size(), 7U);  // 10.5 to 13.5; 10 lies on the border, on no side of anything lower
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_DOUBLE_EQ(found[i].elevation, 10.5 + 0.5 * static_cast<double>(i));
    EXPECT_FALSE(found[i].isClosed);
    EXPECT_NEAR(lengthOf(found[i].line), 3.0, 1e-12);
    for (const Vec2 place : found[i].line) EXPECT_NEAR(10.0 + place.x * 0.9, found[i].elevation, 1e-12);
    // Ground rises to the east, which lies on the left of a line to the south.
    EXPECT_GT(found[i].line.front().y, found[i].line.back().y);
  }
  EXPECT_TRUE(found[4].isIndex);  // 12.5, the 25th
  EXPECT_EQ(std::count_if(found.begin(), found.end(), [](const Contour& one) { return one.isIndex; }), 1);
}

TEST(Contours, CloseAroundAHillAndAroundAPit) {
  for (const double sign : {1.0, -1.0}) {
    const TinSurface hill =
        grid(9, 9, [&](int column, int row) { return sign * (8.3 - std::hypot(column - 4, row - 4)); });
    const std::vector<Contour> found = contours(hill, {.interval = 1.0});
    const auto closed = std::count_if(found.begin(), found.end(), [](const Contour& one) { return one.isClosed; });
    EXPECT_GE(closed, 4);
    for (const Contour& one : found) {
      if (!one.isClosed) continue;
      EXPECT_EQ(one.line.front().x, one.line.back().x);
      EXPECT_EQ(one.line.front().y, one.line.back().y);
      double area = 0.0;
      for (std::size_t i = 1; i < one.line.size(); ++i)
        area += one.line[i - 1].x * one.line[i].y - one.line[i].x * one.line[i - 1].y;
      EXPECT_GT(sign * area, 0.0) << "a hill lies on the left of its contours, a pit on their right";
    }
  }
}

TEST(Contours, HaveNothingWithinLevelGroundAndGoRoundItOnTheLowSide) {
  // A terrace of height 5 just at the level, ground falling away from it.
  const TinSurface terrace = grid(7, 7, [](int column, int row) {
    const int away = std::max(std::abs(column - 3), std::abs(row - 3));
    return away <= 1 ? 5.0 : 5.0 - (away - 1);
  });
  const std::vector<Contour> found = contours(terrace, {.interval = 5.0});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_TRUE(found.front().isClosed);
  EXPECT_DOUBLE_EQ(found.front().elevation, 5.0);
  for (const Vec2 place : found.front().line)
    EXPECT_EQ(std::max(std::abs(place.x - 3), std::abs(place.y - 3)), 1.0) << place.x << ", " << place.y;
  EXPECT_NEAR(lengthOf(found.front().line), 8.0, 1e-12) << "once around, on the terrace's edge";
}

TEST(Contours, HaveNoLineAroundALevelPitFloorThatLiesAboveNothing) {
  const TinSurface floor = grid(5, 5, [](int column, int row) {
    return 5.0 + std::max(0, std::max(std::abs(column - 2), std::abs(row - 2)) - 1);
  });
  for (const Contour& one : contours(floor, {.interval = 5.0})) EXPECT_NE(one.elevation, 5.0);
}

TEST(Contours, AreNothingOnLevelGroundAndAtASingleSummitThatLiesJustAtALevel) {
  EXPECT_TRUE(contours(grid(4, 4, [](int, int) { return 3.0; }), {.interval = 1.0}).empty());
  const TinSurface cone = grid(3, 3, [](int column, int row) { return column == 1 && row == 1 ? 1.0 : 0.5; });
  EXPECT_TRUE(contours(cone, {.interval = 1.0}).empty()) << "a point has no line around it";
}

TEST(Contours, RefuseAnIntervalThatIsNotAboveZero) {
  const TinSurface plane = grid(2, 2, [](int column, int) { return double(column); });
  EXPECT_THROW((void)contours(plane, {.interval = 0.0}), std::invalid_argument);
  EXPECT_THROW((void)contours(plane, {.interval = -1.0}), std::invalid_argument);
}

// ---------------------------------------------------------------- against a count by brute force

struct Rough {
  const char* name;
  int steps;  ///< heights are whole numbers of so many parts of the interval, so that many vertices lie at levels
  bool hasHoles;
};

class ContoursOfRoughGround : public testing::TestWithParam<Rough> {
 protected:
  static TinSurface ground(const Rough& rough, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    const TinSurface whole = grid(24, 18, [&](int, int) { return static_cast<double>(random() % 40) / rough.steps; });
    std::vector<Vec3> points(whole.points().begin(), whole.points().end());
    std::vector<Triangle> triangles;
    for (const Triangle& triangle : whole.triangles())
      if (!rough.hasHoles || random() % 8 != 0) triangles.push_back(triangle);
    return {std::move(points), std::move(triangles)};
  }
};

/// Of every triangle and level: where the level's line crosses its sides, by the same rule told in other words.
std::map<std::int64_t, double> lengthsByTriangles(const TinSurface& ground, double interval) {
  std::map<std::int64_t, double> lengths;
  for (const Triangle& triangle : ground.triangles()) {
    const auto corner = [&](std::int32_t index) { return ground.points()[static_cast<std::size_t>(index)]; };
    const std::vector<Vec3> corners{corner(triangle.a), corner(triangle.b), corner(triangle.c)};
    for (std::int64_t step = -100; step <= 100; ++step) {
      const double level = static_cast<double>(step) * interval;
      std::vector<Vec2> crossings;
      for (std::size_t i = 0; i < 3; ++i) {
        Vec3 a = corners[i];
        Vec3 b = corners[(i + 1) % 3];
        if ((a.z < level) == (b.z < level)) continue;
        const double part = (level - a.z) / (b.z - a.z);
        crossings.push_back({a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)});
      }
      if (crossings.empty()) continue;
      lengths[step] += std::hypot(crossings[1].x - crossings[0].x, crossings[1].y - crossings[0].y);
    }
  }
  return lengths;
}

TEST_P(ContoursOfRoughGround, AreAsLongAsTheirPiecesInEveryTriangle) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const TinSurface surface = ground(GetParam(), seed);
    std::map<std::int64_t, double> lengths;
    for (const Contour& one : contours(surface, {.interval = 1.0})) lengths[one.step] += lengthOf(one.line);
    for (const auto& [step, length] : lengthsByTriangles(surface, 1.0))
      ASSERT_NEAR(lengths[step], length, 1e-9) << "seed " << seed << ", level " << step;
  }
}

TEST_P(ContoursOfRoughGround, LieOnEdgesOfTrianglesAtTheirLevel) {
  const TinSurface surface = ground(GetParam(), 7);
  for (const Contour& one : contours(surface, {.interval = 1.0})) {
    for (const Vec2 place : one.line) {
      double nearest = 1.0;
      double off = 1.0;
      for (const Triangle& triangle : surface.triangles()) {
        const std::int32_t corners[] = {triangle.a, triangle.b, triangle.c};
        for (int i = 0; i < 3; ++i) {
          const Vec3& a = surface.points()[static_cast<std::size_t>(corners[i])];
          const Vec3& b = surface.points()[static_cast<std::size_t>(corners[(i + 1) % 3])];
          const double length = std::hypot(b.x - a.x, b.y - a.y);
          const double along = ((place.x - a.x) * (b.x - a.x) + (place.y - a.y) * (b.y - a.y)) / (length * length);
          if (along < -1e-9 || along > 1.0 + 1e-9) continue;
          const double aside = std::abs((place.x - a.x) * (b.y - a.y) - (place.y - a.y) * (b.x - a.x)) / length;
          const double height = std::abs(a.z + along * (b.z - a.z) - one.elevation);
          if (aside < 1e-9 && height < off) {
            nearest = aside;
            off = height;
          }
        }
      }
      ASSERT_LT(nearest, 1e-9) << place.x << ", " << place.y;
      ASSERT_LT(off, 1e-9) << place.x << ", " << place.y;
    }
  }
}

TEST_P(ContoursOfRoughGround, EndNowhereButAtTheBorderOfTheGround) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const TinSurface surface = ground(GetParam(), seed);
    std::map<std::pair<std::int32_t, std::int32_t>, int> uses;
    for (const Triangle& triangle : surface.triangles())
      for (const auto& [a, b] : {std::pair(triangle.a, triangle.b), {triangle.b, triangle.c}, {triangle.c, triangle.a}})
        ++uses[std::minmax(a, b)];
    const auto isOnBorder = [&](Vec2 place) {
      return std::any_of(uses.begin(), uses.end(), [&](const auto& edge) {
        if (edge.second != 1) return false;
        const Vec3& a = surface.points()[static_cast<std::size_t>(edge.first.first)];
        const Vec3& b = surface.points()[static_cast<std::size_t>(edge.first.second)];
        const double around = std::hypot(place.x - a.x, place.y - a.y) + std::hypot(place.x - b.x, place.y - b.y);
        return around < std::hypot(b.x - a.x, b.y - a.y) + 1e-9;
      });
    };
    for (const Contour& one : contours(surface, {.interval = 1.0})) {
      if (one.isClosed) continue;
      ASSERT_TRUE(isOnBorder(one.line.front())) << "seed " << seed;
      ASSERT_TRUE(isOnBorder(one.line.back())) << "seed " << seed;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Contours, ContoursOfRoughGround,
                         testing::Values(Rough{"fractions", 7, false}, Rough{"manyAtLevels", 2, false},
                                         Rough{"wholeNumbers", 1, false}, Rough{"holes", 3, true}),
                         [](const auto& tested) { return std::string(tested.param.name); });

// ---------------------------------------------------------------- intervals, labels, tiles

TEST(RoundInterval, IsTheNextOfOneTwoAndFive) {
  for (const auto& [least, expected] : {std::pair(0.3, 0.5),
                                        {0.5, 0.5},
                                        {0.51, 1.0},
                                        {1.0, 1.0},
                                        {1.2, 2.0},
                                        {7.0, 10.0},
                                        {0.011, 0.02},
                                        {230.0, 500.0}})
    EXPECT_NEAR(roundInterval(least), expected, 1e-12 * expected) << least;
}

TEST(TileContours, AreThoseOfEveryTenthLevelWhereAllWouldTakeTheMemory) {
  const TinSurface teeth = grid(25, 25, [](int column, int) { return column % 2 * 99.0; });
  const SurfaceTiles tiles(teeth);
  const auto levels = [&](const civil::Box& box) {
    std::set<double> elevations;
    for (const Contour& contour : tiles.contours(box, {.interval = 0.01})) elevations.insert(contour.elevation);
    return elevations;
  };
  EXPECT_EQ(levels({0.2, 0.2, 0.8, 0.8}).size(), 9900U);
  const std::set<double> coarse = levels({0.0, 0.0, 24.0, 24.0});
  EXPECT_EQ(coarse.size(), 990U);
  for (const double elevation : coarse) EXPECT_NEAR(elevation, std::round(elevation * 10.0) / 10.0, 1e-9);
}

TEST(ContourLabels, StandWhereALineRunsStraightAndNowhereOnAShortOne) {
  Contour bent{.step = 5, .elevation = 5.0, .isIndex = true, .isClosed = false, .line = {}};
  for (int i = 0; i <= 20; ++i) bent.line.push_back({i * 0.2, i % 2 == 0 ? 0.0 : 0.4});  // a zigzag up to x = 4
  bent.line.push_back({20.0, 0.0});
  const std::vector<ContourLabel> labels = labelPlaces({bent}, {-1, -1, 30, 1}, 4.0);
  ASSERT_EQ(labels.size(), 1U);
  EXPECT_GT(labels.front().place.x, 5.0);
  EXPECT_NEAR(labels.front().place.y, 0.0, 1e-9);
  EXPECT_NEAR(labels.front().direction.x, 1.0, 1e-9);
  EXPECT_TRUE(labelPlaces({bent}, {-1, -1, 30, 1}, 40.0).empty());
  EXPECT_TRUE(labelPlaces({bent}, {100, 100, 130, 110}, 4.0).empty()) << "another part of the plan";
}

}  // namespace
}  // namespace lvx::view
