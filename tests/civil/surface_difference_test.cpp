#include "civil/surface_difference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reference_tin.h"
#include "standin_platform/crew.h"
#include "support/random_numbers.h"

namespace lvx::civil {
namespace {

using test::Tin;

// ---------------------------------------------------------------- makers

using Height = std::function<double(double x, double y)>;

/// A rectangle in two triangles; `turned` lays the diagonal the other way.
Tin rectangle(const Box& box, const Height& height, bool turned = false) {
  Tin tin;
  for (const Vec2 p :
       {Vec2{box.minX, box.minY}, Vec2{box.maxX, box.minY}, Vec2{box.maxX, box.maxY}, Vec2{box.minX, box.maxY}})
    tin.points.push_back({p.x, p.y, height(p.x, p.y)});
  if (turned)
    tin.triangles = {{0, 1, 3}, {1, 2, 3}};
  else
    tin.triangles = {{0, 1, 2}, {0, 2, 3}};
  return tin;
}

/// Rough ground over a square grid whose points are moved, its diagonals at random, in 1024ths of a unit, so that it can
/// be moved far away without a change. Of all triangles `holes` are left out.
Tin rough(std::mt19937& random, int cells, double step, Vec2 corner, double holes = 0.0) {
  std::uniform_real_distribution<double> part(0.0, 1.0);
  const auto whole = [](double value) { return std::round(value * 1024.0) / 1024.0; };
  Tin tin;
  for (int row = 0; row <= cells; ++row)
    for (int column = 0; column <= cells; ++column)
      tin.points.push_back({whole(corner.x + step * (column + 0.4 * part(random))),
                            whole(corner.y + step * (row + 0.4 * part(random))), whole(10.0 * part(random))});
  for (int row = 0; row < cells; ++row)
    for (int column = 0; column < cells; ++column) {
      const std::int32_t a = row * (cells + 1) + column;
      const std::int32_t b = a + 1;
      const std::int32_t c = b + cells + 1;
      const std::int32_t d = c - 1;
      // Moved by less than half a cell every cell stays convex enough for both diagonals or one of them.
      const auto isLeft = [&](std::int32_t p, std::int32_t q, std::int32_t r) {
        const Vec3& u = tin.points[static_cast<std::size_t>(p)];
        const Vec3& v = tin.points[static_cast<std::size_t>(q)];
        const Vec3& w = tin.points[static_cast<std::size_t>(r)];
        return (v.x - u.x) * (w.y - u.y) - (v.y - u.y) * (w.x - u.x) > 0.0;
      };
      std::array<Triangle, 2> pair{Triangle{a, b, c}, Triangle{a, c, d}};
      const bool canTurn = isLeft(a, b, d) && isLeft(b, c, d);
      if (canTurn && (part(random) < 0.5 || !isLeft(a, b, c) || !isLeft(a, c, d)))
        pair = {Triangle{a, b, d}, Triangle{b, c, d}};
      for (const Triangle& t : pair)
        if (part(random) >= holes) tin.triangles.push_back(t);
    }
  return tin;
}

Tin moved(Tin tin, Vec3 by) {
  for (Vec3& p : tin.points) p = {p.x + by.x, p.y + by.y, p.z + by.z};
  return tin;
}

Tin together(Tin tin, const Tin& more) {
  const auto first = static_cast<std::int32_t>(tin.points.size());
  tin.points.insert(tin.points.end(), more.points.begin(), more.points.end());
  for (const Triangle& t : more.triangles) tin.triangles.push_back({t.a + first, t.b + first, t.c + first});
  return tin;
}

TinSurface surfaceOf(const Tin& t) { return TinSurface(t.points, t.triangles); }

SurfaceDifference differenceOf(const Tin& existing, const Tin& next) {
  return surfaceDifference(surfaceOf(existing), surfaceOf(next)).value();
}

/// Every figure within `error` of its counterpart.
void expectNear(const SurfaceDifference& got, const SurfaceDifference& wanted, double error) {
  struct Row {
    std::string_view name;
    double SurfaceDifference::*figure;
  };
  constexpr std::array kRows{Row{"cut", &SurfaceDifference::cut},
                             Row{"fill", &SurfaceDifference::fill},
                             Row{"cutArea", &SurfaceDifference::cutArea},
                             Row{"fillArea", &SurfaceDifference::fillArea},
                             Row{"equalArea", &SurfaceDifference::equalArea},
                             Row{"onlyExisting", &SurfaceDifference::onlyExisting},
                             Row{"onlyNew", &SurfaceDifference::onlyNew},
                             Row{"lowest", &SurfaceDifference::lowest},
                             Row{"highest", &SurfaceDifference::highest}};
  for (const Row& row : kRows) EXPECT_NEAR(got.*row.figure, wanted.*row.figure, error) << row.name;
}

// ---------------------------------------------------------------- another way to reckon it

/// All pairs of triangles, each clipped by the other's edges as lines in long double, planes by their normals, and each
/// polygon cut at the line where both planes meet before it is integrated. For surfaces of one layer.
class AllPairs {
 public:
  using Real = long double;
  struct Place {
    Real x, y;
  };
  using Polygon = std::vector<Place>;

  static SurfaceDifference reckon(const Tin& existing, const Tin& next) {
    Real common = 0;
    std::array<Real, 3> areas{};    // cut, fill, equal
    std::array<Real, 2> volumes{};  // cut, fill
    Real existingArea = 0;
    Real nextArea = 0;
    SurfaceDifference result;
    bool isFirst = true;
    for (const Triangle& t : existing.triangles) existingArea += areaOf(polygonOf(existing, t));
    for (const Triangle& t : next.triangles) nextArea += areaOf(polygonOf(next, t));
    for (const Triangle& t : existing.triangles)
      for (const Triangle& u : next.triangles) {
        Polygon shape = polygonOf(existing, t);
        const Polygon outline = polygonOf(next, u);
        for (std::size_t i = 0; i < 3; ++i) {
          const Place& from = outline[i];
          const Place& to = outline[(i + 1) % 3];
          shape = kept(shape, {from.y - to.y, to.x - from.x, (to.y - from.y) * from.x - (to.x - from.x) * from.y});
        }
        const Real area = areaOf(shape);
        if (area <= 1e-15L) continue;
        common += area;
        const std::array<Real, 3> one = planeOf(existing, t);
        const std::array<Real, 3> other = planeOf(next, u);
        const std::array<Real, 3> plane{other[0] - one[0], other[1] - one[1], other[2] - one[2]};
        for (const Place& p : shape) {
          const auto d = static_cast<double>(valueOf(plane, p));
          result.lowest = isFirst ? d : std::min(result.lowest, d);
          result.highest = isFirst ? d : std::max(result.highest, d);
          isFirst = false;
        }
        const Polygon above = kept(shape, plane);
        const Polygon below = kept(shape, {-plane[0], -plane[1], -plane[2]});
        volumes[1] += volumeOf(above, plane);
        volumes[0] -= volumeOf(below, plane);
        areas[1] += areaOf(above);
        areas[0] += areaOf(below);
      }
    result.cut = static_cast<double>(volumes[0]);
    result.fill = static_cast<double>(volumes[1]);
    result.cutArea = static_cast<double>(areas[0]);
    result.fillArea = static_cast<double>(areas[1]);
    result.onlyExisting = static_cast<double>(existingArea - common);
    result.onlyNew = static_cast<double>(nextArea - common);
    return result;
  }

 private:
  static Polygon polygonOf(const Tin& tin, const Triangle& t) {
    Polygon polygon;
    for (const std::int32_t corner : {t.a, t.b, t.c}) {
      const Vec3& p = tin.points[static_cast<std::size_t>(corner)];
      polygon.push_back({p.x, p.y});
    }
    return polygon;
  }
  static Real valueOf(const std::array<Real, 3>& plane, const Place& p) {
    return plane[0] * p.x + plane[1] * p.y + plane[2];
  }
  /// By the normal of the triangle.
  static std::array<Real, 3> planeOf(const Tin& tin, const Triangle& t) {
    const Vec3& a = tin.points[static_cast<std::size_t>(t.a)];
    const Vec3& b = tin.points[static_cast<std::size_t>(t.b)];
    const Vec3& c = tin.points[static_cast<std::size_t>(t.c)];
    const Real ux = Real{b.x} - a.x, uy = Real{b.y} - a.y, uz = Real{b.z} - a.z;
    const Real vx = Real{c.x} - a.x, vy = Real{c.y} - a.y, vz = Real{c.z} - a.z;
    const Real nx = uy * vz - uz * vy, ny = uz * vx - ux * vz, nz = ux * vy - uy * vx;
    return {-nx / nz, -ny / nz, a.z + (nx * a.x + ny * a.y) / nz};
  }
  static Polygon kept(const Polygon& polygon, const std::array<Real, 3>& plane) {
    Polygon result;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
      const Place& p = polygon[i];
      const Place& q = polygon[(i + 1) % polygon.size()];
      const Real atP = valueOf(plane, p);
      const Real atQ = valueOf(plane, q);
      if (atP >= 0) result.push_back(p);
      if ((atP < 0) != (atQ < 0))
        result.push_back({p.x + atP / (atP - atQ) * (q.x - p.x), p.y + atP / (atP - atQ) * (q.y - p.y)});
    }
    return result;
  }
  static Real areaOf(const Polygon& polygon) {
    Real sum = 0;
    for (std::size_t i = 2; i < polygon.size(); ++i)
      sum += (polygon[i - 1].x - polygon[0].x) * (polygon[i].y - polygon[0].y) -
             (polygon[i - 1].y - polygon[0].y) * (polygon[i].x - polygon[0].x);
    return sum / 2;
  }
  static Real volumeOf(const Polygon& polygon, const std::array<Real, 3>& plane) {
    Real sum = 0;
    for (std::size_t i = 2; i < polygon.size(); ++i) {
      const Polygon part{polygon[0], polygon[i - 1], polygon[i]};
      const Place middle{(part[0].x + part[1].x + part[2].x) / 3, (part[0].y + part[1].y + part[2].y) / 3};
      sum += areaOf(part) * valueOf(plane, middle);
    }
    return sum;
  }
};

/// Column by column over a square grid of `count` by `count`, through the elevations that the surfaces themselves give.
SurfaceDifference byColumns(const TinSurface& existing, const TinSurface& next, const Box& box, int count) {
  SurfaceDifference result;
  const double wide = (box.maxX - box.minX) / count;
  const double high = (box.maxY - box.minY) / count;
  for (int row = 0; row < count; ++row)
    for (int column = 0; column < count; ++column) {
      const Vec2 place{box.minX + (column + 0.5) * wide, box.minY + (row + 0.5) * high};
      const auto below = existing.elevationAt(place);
      const auto above = next.elevationAt(place);
      if (below && above) {
        const double d = *above - *below;
        (d < 0.0 ? result.cut : result.fill) += std::abs(d) * wide * high;
        (d < 0.0 ? result.cutArea : result.fillArea) += wide * high;
      } else if (below) {
        result.onlyExisting += wide * high;
      } else if (above) {
        result.onlyNew += wide * high;
      }
    }
  return result;
}

// ---------------------------------------------------------------- plain shapes

TEST(SurfaceDifference, IsAPrismOverTheAreaOfTwoLevelSurfaces) {
  const Tin low = rectangle({0, 0, 10, 20}, [](double, double) { return 100.0; });
  const Tin high = rectangle(
      {0, 0, 10, 20}, [](double, double) { return 101.5; }, true);
  expectNear(differenceOf(low, high), {.fill = 300.0, .fillArea = 200.0, .lowest = 1.5, .highest = 1.5}, 1e-10);
  expectNear(differenceOf(high, low), {.cut = 300.0, .cutArea = 200.0, .lowest = -1.5, .highest = -1.5}, 1e-10);
}

TEST(SurfaceDifference, PartsCutFromFillWhereSurfacesCross) {
  const Tin level = rectangle({0, 0, 10, 20}, [](double, double) { return 0.0; });
  // Crosses at x = 4, so that neither diagonal helps.
  const Tin tilted = rectangle(
      {0, 0, 10, 20}, [](double x, double) { return x - 4.0; }, true);
  expectNear(differenceOf(level, tilted),
             {.cut = 160.0, .fill = 360.0, .cutArea = 80.0, .fillArea = 120.0, .lowest = -4.0, .highest = 6.0}, 1e-10);
  EXPECT_NEAR(differenceOf(level, tilted).net(), 200.0, 1e-10);
}

TEST(SurfaceDifference, TellsTheAreaThatOneSurfaceHasAlone) {
  const Tin existing = rectangle({0, 0, 10, 10}, [](double, double) { return 1.0; });
  const Tin next = rectangle({6, 5, 16, 25}, [](double, double) { return 3.0; });
  expectNear(differenceOf(existing, next),
             {.fill = 40.0, .fillArea = 20.0, .onlyExisting = 80.0, .onlyNew = 180.0, .lowest = 2.0, .highest = 2.0},
             1e-10);
}

TEST(SurfaceDifference, HasNothingInCommonOfSurfacesApartOrSideBySide) {
  const Tin existing = rectangle({0, 0, 10, 10}, [](double, double) { return 1.0; });
  for (const double at : {10.0, 50.0}) {
    const Tin next = rectangle({at, 0, at + 10, 10}, [](double, double) { return 3.0; });
    EXPECT_EQ(differenceOf(existing, next), (SurfaceDifference{.onlyExisting = 100.0, .onlyNew = 100.0})) << at;
  }
}

TEST(SurfaceDifference, OfNoGroundIsTheOtherOneAlone) {
  const Tin ground = rectangle({0, 0, 10, 10}, [](double, double) { return 1.0; });
  EXPECT_EQ(surfaceDifference(TinSurface(), surfaceOf(ground)), (SurfaceDifference{.onlyNew = 100.0}));
  EXPECT_EQ(surfaceDifference(surfaceOf(ground), TinSurface()), (SurfaceDifference{.onlyExisting = 100.0}));
  EXPECT_EQ(surfaceDifference(TinSurface(), TinSurface()), SurfaceDifference{});
}

TEST(SurfaceDifference, IsExactlyNothingOfASurfaceAndItself) {
  std::mt19937 random = lvx::test::seededByTestName();
  const Tin ground = moved(rough(random, 20, 7.0, {0, 0}, 0.1), {3e6, 5e6, 400.0});
  Tin renumbered = ground;
  std::shuffle(renumbered.triangles.begin(), renumbered.triangles.end(), random);
  for (Triangle& t : renumbered.triangles) t = {t.b, t.a, t.c};
  const SurfaceDifference difference = differenceOf(ground, renumbered);
  EXPECT_EQ(difference, (SurfaceDifference{.equalArea = difference.equalArea}));
  EXPECT_GT(difference.equalArea, 15000.0);
}

TEST(SurfaceDifference, IsEqualWhereOneSurfaceHasMorePointsOfTheSamePlanes) {
  const Height slope = [](double x, double y) { return 0.25 * x - 0.5 * y; };
  const Tin coarse = moved(rectangle({0, 0, 16, 16}, slope), {3e6, 5e6, 0.0});
  Tin fine;
  for (int row = 0; row < 8; ++row)
    for (int column = 0; column < 8; ++column)
      fine = together(fine, rectangle({2.0 * column, 2.0 * row, 2.0 * column + 2, 2.0 * row + 2}, slope, column % 2));
  EXPECT_EQ(differenceOf(coarse, moved(fine, {3e6, 5e6, 0.0})), (SurfaceDifference{.equalArea = 256.0}));
}

TEST(SurfaceDifference, LeavesOutHolesAndWalls) {
  // A ring of four rectangles around a hole of 2 by 2, with a wall across it.
  const Height level = [](double, double) { return 0.0; };
  Tin ring = rectangle({0, 0, 6, 2}, level);
  for (const Box& box : {Box{0, 4, 6, 6}, Box{0, 2, 2, 4}, Box{4, 2, 6, 4}})
    ring = together(ring, rectangle(box, level));
  const auto first = static_cast<std::int32_t>(ring.points.size());
  for (const Vec3 p : {Vec3{0, 3, 0}, Vec3{6, 3, 0}, Vec3{3, 3, 90}}) ring.points.push_back(p);
  ring.triangles.push_back({first, first + 1, first + 2});
  const Tin above = rectangle({0, 0, 6, 6}, [](double, double) { return 2.0; });
  expectNear(differenceOf(ring, above), {.fill = 64.0, .fillArea = 32.0, .onlyNew = 4.0, .lowest = 2.0, .highest = 2.0},
             1e-10);
  expectNear(differenceOf(above, ring),
             {.cut = 64.0, .cutArea = 32.0, .onlyExisting = 4.0, .lowest = -2.0, .highest = -2.0}, 1e-10);
}

// ---------------------------------------------------------------- one layer above another

TEST(SurfaceDifference, TakesTheHighestOfTrianglesThatLieOneAboveAnother) {
  // A roof over part of the ground; the two cross, so that each is the higher one somewhere.
  const Tin ground = rectangle({0, 0, 10, 10}, [](double, double) { return 0.0; });
  const Tin roof = rectangle(
      {2, 2, 6, 8}, [](double x, double) { return x - 4.0; }, true);
  const Tin level = rectangle(
      {0, 0, 10, 10}, [](double, double) { return 5.0; }, true);
  // Over x from 4 to 6 the roof fills up to 2 * 2 / 2 * 6 = 12.
  expectNear(differenceOf(together(ground, roof), level),
             {.fill = 488.0, .fillArea = 100.0, .lowest = 3.0, .highest = 5.0}, 1e-9);
  expectNear(differenceOf(level, together(roof, ground)),
             {.cut = 488.0, .cutArea = 100.0, .lowest = -5.0, .highest = -3.0}, 1e-9);
}

TEST(SurfaceDifference, CountsTrianglesThatAreGivenTwiceOnce) {
  std::mt19937 random = lvx::test::seededByTestName();
  const Tin ground = rough(random, 6, 5.0, {0, 0});
  const Tin level = rectangle({0, 0, 30, 30}, [](double, double) { return 4.0; });
  const SurfaceDifference once = differenceOf(ground, level);
  expectNear(differenceOf(together(together(ground, ground), ground), level), once, 1e-9);
}

TEST(SurfaceDifference, OfManyLayersApproachesTheSumOverColumns) {
  std::mt19937 random = lvx::test::seededByTestName();
  Tin layers = rough(random, 5, 4.0, {0, 0});
  layers = together(layers, rough(random, 4, 4.0, {3, 2}));
  layers = together(layers, rough(random, 3, 4.0, {5, 6}));
  const Tin other = together(rough(random, 6, 3.0, {1, 1}), rough(random, 3, 3.0, {8, 8}));
  const Box box{-1, -1, 24, 24};
  const TinSurface existing = surfaceOf(layers);
  const TinSurface next = surfaceOf(other);
  const SurfaceDifference exact = surfaceDifference(existing, next).value();
  SurfaceDifference columns = byColumns(existing, next, box, 700);
  columns.lowest = exact.lowest;
  columns.highest = exact.highest;
  // Columns that a border cuts are right to their width, along some 150 of borders and lines of zero.
  expectNear(exact, columns, 0.25);
}

// ---------------------------------------------------------------- against other ways

TEST(SurfaceDifference, AgreesWithAllPairsReckonedInLongDouble) {
  std::mt19937 random = lvx::test::seededByTestName();
  for (int round = 0; round < 24; ++round) {
    SCOPED_TRACE(round);
    const double holes = round % 2 == 0 ? 0.0 : 0.2;
    const Tin existing = rough(random, 4 + round % 9, 5.0 + round % 3, {0, 0}, holes);
    const Tin next = rough(random, 3 + round % 7, 4.0 + round % 5, {round - 10.0, 3.0}, holes);
    expectNear(differenceOf(existing, next), AllPairs::reckon(existing, next), 1e-9);
  }
}

TEST(SurfaceDifference, AgreesWhereEdgesAndCornersOfBothFallOnOneAnother) {
  std::mt19937 random = lvx::test::seededByTestName();
  // Lattices of whole numbers, the second one twice as fine: every edge of the first runs along edges of the second.
  const auto lattice = [&](int cells, double step) {
    Tin tin;
    for (int row = 0; row <= cells; ++row)
      for (int column = 0; column <= cells; ++column)
        tin.points.push_back({step * column, step * row, static_cast<double>(random() % 3)});
    for (int row = 0; row < cells; ++row)
      for (int column = 0; column < cells; ++column) {
        const std::int32_t a = row * (cells + 1) + column;
        const std::int32_t d = a + cells + 1;
        if (random() % 2 == 0)
          tin.triangles.insert(tin.triangles.end(), {{a, a + 1, d + 1}, {a, d + 1, d}});
        else
          tin.triangles.insert(tin.triangles.end(), {{a, a + 1, d}, {a + 1, d + 1, d}});
      }
    return tin;
  };
  for (int round = 0; round < 20; ++round) {
    SCOPED_TRACE(round);
    const Tin existing = lattice(6, 2.0);
    const Tin next = lattice(12, 1.0);
    const SurfaceDifference wanted = AllPairs::reckon(existing, next);
    for (const Vec3 far : {Vec3{}, Vec3{3e6, 5e6, 500.0}}) {
      const SurfaceDifference got = differenceOf(moved(existing, far), moved(next, far));
      EXPECT_NEAR(got.cut, wanted.cut, 1e-10);
      EXPECT_NEAR(got.fill, wanted.fill, 1e-10);
      EXPECT_NEAR(got.commonArea(), 144.0, 1e-10);
      EXPECT_EQ(got.onlyExisting, 0.0);
      EXPECT_EQ(got.onlyNew, 0.0);
    }
  }
}

TEST(SurfaceDifference, IsWhatColumnsApproach) {
  std::mt19937 random = lvx::test::seededByTestName();
  const Box box{0, 0, 40, 40};
  const TinSurface existing = surfaceOf(rough(random, 12, 3.0, {0, 0}, 0.1));
  const TinSurface next = surfaceOf(rough(random, 9, 4.0, {0, 0}, 0.1));
  const SurfaceDifference exact = surfaceDifference(existing, next).value();
  double before = 1e9;
  for (const int count : {50, 200, 500}) {
    const SurfaceDifference columns = byColumns(existing, next, box, count);
    const double missed = std::abs(columns.cut - exact.cut) + std::abs(columns.fill - exact.fill);
    EXPECT_LT(missed, before) << count;
    before = missed;
  }
  EXPECT_LT(before, 2e-3 * (exact.cut + exact.fill));
}

TEST(SurfaceDifference, LosesNothingAtLargeCoordinates) {
  std::mt19937 random = lvx::test::seededByTestName();
  const Tin existing = rough(random, 15, 5.0, {0, 0}, 0.1);
  const Tin next = rough(random, 12, 6.0, {2, 1}, 0.1);
  const SurfaceDifference here = differenceOf(existing, next);
  const Vec3 far{3e6, 5e6, 2048.0};
  expectNear(differenceOf(moved(existing, far), moved(next, far)), here, 1e-10);
}

TEST(SurfaceDifference, TurnsCutIntoFillWhenTheSurfacesChangePlaces) {
  std::mt19937 random = lvx::test::seededByTestName();
  const Tin existing = rough(random, 10, 5.0, {0, 0}, 0.1);
  const Tin next = rough(random, 12, 4.0, {2, 1}, 0.1);
  const SurfaceDifference there = differenceOf(existing, next);
  const SurfaceDifference back = differenceOf(next, existing);
  expectNear({.cut = back.fill,
              .fill = back.cut,
              .cutArea = back.fillArea,
              .fillArea = back.cutArea,
              .equalArea = back.equalArea,
              .onlyExisting = back.onlyNew,
              .onlyNew = back.onlyExisting,
              .lowest = -back.highest,
              .highest = -back.lowest},
             there, 1e-9);
}

TEST(SurfaceDifference, SurvivesSlivers) {
  // A fan of a thousand triangles onto one far corner, each a hundred times longer than wide, over two plain ones.
  Tin slivers;
  slivers.points.push_back({3e6 + 100.0, 5e6, 0.0});
  for (int i = 0; i <= 1000; ++i) slivers.points.push_back({3e6, 5e6 + i * 1e-3, i % 2 == 0 ? 0.0 : 50.0});
  for (std::int32_t i = 1; i <= 1000; ++i) slivers.triangles.push_back({0, i, i + 1});
  const Tin level = moved(rectangle({-10, -10, 110, 10}, [](double, double) { return 100.0; }), {3e6, 5e6, 0.0});
  // The triangle has area 50; along its left side the elevation is 25 in the mean, so the mean over it 2/3 of that.
  const SurfaceDifference difference = differenceOf(slivers, level);
  EXPECT_NEAR(difference.fill, 50.0 * (100.0 - 50.0 / 3.0), 1e-5);
  EXPECT_NEAR(difference.fillArea, 50.0, 1e-6);
  EXPECT_NEAR(difference.onlyNew, 2350.0, 1e-6);
  EXPECT_EQ(difference.onlyExisting, 0.0);
}

// ---------------------------------------------------------------- how it works

TEST(SurfaceDifference, IsTheSameForAnyNumberOfThreads) {
  std::mt19937 random = lvx::test::seededByTestName();
  const TinSurface existing =
      surfaceOf(together(rough(random, 60, 5.0, {0, 0}, 0.05), rough(random, 9, 9.0, {40, 50})));
  const TinSurface next = surfaceOf(rough(random, 50, 6.0, {2, 1}, 0.05));
  const auto alone = surfaceDifference(existing, next);
  for (const unsigned threads : {1U, 2U, 3U, 8U}) {
    standin_platform::Crew crew(threads);
    const auto shared = surfaceDifference(
        existing, next,
        [&crew](std::size_t count, const std::function<void(std::size_t)>& piece) { crew.run(count, piece); });
    EXPECT_EQ(shared, alone) << threads;
  }
}

TEST(SurfaceDifference, TellsItsProgressUpToTheEnd) {
  std::mt19937 random = lvx::test::seededByTestName();
  const TinSurface existing = surfaceOf(rough(random, 40, 5.0, {0, 0}));
  const TinSurface next = surfaceOf(rough(random, 40, 5.0, {1, 1}));
  std::vector<double> told;
  EXPECT_TRUE(surfaceDifference(existing, next, inOrder, [&](double done) {
    told.push_back(done);
    return true;
  }));
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_GT(told.size(), 10U);
  EXPECT_EQ(told.back(), 1.0);
}

TEST(SurfaceDifference, GivesNothingOnceItIsGivenUp) {
  std::mt19937 random = lvx::test::seededByTestName();
  const TinSurface existing = surfaceOf(rough(random, 40, 5.0, {0, 0}));
  const TinSurface next = surfaceOf(rough(random, 40, 5.0, {1, 1}));
  for (const double until : {0.0, 0.3, 0.9}) {
    int after = 0;
    EXPECT_EQ(surfaceDifference(existing, next, inOrder,
                                [&](double done) {
                                  if (done > until) ++after;
                                  return done <= until;
                                }),
              std::nullopt);
    EXPECT_EQ(after, 1) << until;
  }
}

}  // namespace
}  // namespace lvx::civil
