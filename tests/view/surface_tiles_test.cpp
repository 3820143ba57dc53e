#include "view/surface_tiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "civil/tin_surface.h"
#include "gtest/gtest.h"
#include "support/random_numbers.h"
#include "view/surface_border.h"
#include "view/tile_cache.h"

namespace lvx::view {
namespace {

using civil::Box;
using civil::TinSurface;
using civil::Triangle;
using civil::Vec2;
using civil::Vec3;

constexpr int kSize = Tile::kSize;

/// A grid of `columns` by `rows` squares in two triangles each, from the place `from`, without those squares that
/// `isHole` names.
template <class IsHole>
TinSurface gridSurface(int columns, int rows, double cell, Vec2 from, IsHole isHole) {
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  for (int r = 0; r <= rows; ++r)
    for (int c = 0; c <= columns; ++c)
      // Eighths: places that are exact in 256ths of a pixel at the scales below.
      points.push_back({from.x + cell * c + 0.125 * ((7 * c + 3 * r) % 4),
                        from.y + cell * r + 0.125 * ((5 * c + r) % 3), std::sin(0.7 * c) * 4 + std::cos(0.4 * r) * 3});
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < columns; ++c) {
      if (isHole(c, r)) continue;
      const int a = r * (columns + 1) + c;
      const int d = a + columns + 1;
      triangles.push_back({a, a + 1, d + 1});
      triangles.push_back({a, d + 1, d});
    }
  return {std::move(points), std::move(triangles)};
}

TinSurface gridSurface(int columns, int rows, double cell, Vec2 from = {}) {
  return gridSurface(columns, rows, cell, from, [](int, int) { return false; });
}

std::vector<std::uint32_t> rendered(const SurfaceTiles& tiles, const PixelArea& area, const SurfaceLook& look = {}) {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height));
  EXPECT_TRUE(tiles.render(area, look, pixels.data()));
  return pixels;
}

/// The centre of a pixel in the drawing.
Vec2 centreOf(const SurfaceTiles& tiles, const PixelArea& area, int x, int y) {
  return {tiles.origin().x + (static_cast<double>(area.left + x) + 0.5) / area.scale,
          tiles.origin().y - (static_cast<double>(area.top + y) + 0.5) / area.scale};
}

std::uint32_t pixelAt(const std::vector<std::uint32_t>& pixels, const PixelArea& area, int x, int y) {
  return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(area.width) + static_cast<std::size_t>(x)];
}

/// The triangles that hold a place, borders included, by their signed areas.
std::vector<std::size_t> trianglesAt(const TinSurface& surface, Vec2 p) {
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i < surface.triangles().size(); ++i) {
    const auto corner = [&](std::int32_t n) {
      const Vec3& q = surface.points()[static_cast<std::size_t>(n)];
      return Vec2{q.x, q.y};
    };
    const Vec2 a = corner(surface.triangles()[i].a);
    const Vec2 b = corner(surface.triangles()[i].b);
    const Vec2 c = corner(surface.triangles()[i].c);
    if (cross(b - a, p - a) >= 0 && cross(c - b, p - b) >= 0 && cross(a - c, p - c) >= 0) found.push_back(i);
  }
  return found;
}

TEST(SurfaceTiles, GivesAPixelToTheTriangleThatHoldsItsCentre) {
  const TinSurface surface =
      gridSurface(7, 5, 5, {2'600'000, 1'200'000}, [](int c, int r) { return c == 3 && r == 2; });
  const SurfaceTiles tiles(surface);
  const PixelArea area{4.0, -8, -8, 170, 130};
  const SurfaceLook look{SurfaceStyle::Relief, false, false};
  const auto pixels = rendered(tiles, area, look);
  // One colour per triangle: learn it from its pixels, and find it nowhere else.
  std::vector<std::uint32_t> colours(surface.triangles().size());
  int ground = 0;
  for (int y = 0; y < area.height; ++y)
    for (int x = 0; x < area.width; ++x) {
      const auto at = trianglesAt(surface, centreOf(tiles, area, x, y));
      const std::uint32_t pixel = pixelAt(pixels, area, x, y);
      ASSERT_LE(at.size(), 6U);
      if (at.empty()) {
        ASSERT_EQ(pixel, 0U) << x << ' ' << y;
      } else if (at.size() == 1) {
        ++ground;
        ASSERT_EQ(pixel >> 24, 0xffU) << x << ' ' << y;
        std::uint32_t& colour = colours[at[0]];
        if (colour == 0) colour = pixel;
        ASSERT_EQ(pixel, colour) << x << ' ' << y;
      }
    }
  EXPECT_GT(ground, 10'000);
  EXPECT_EQ(std::count(colours.begin(), colours.end(), 0U), 0);
  EXPECT_FALSE(surface.elevationAt({2'600'000 + 17.6, 1'200'000 + 12.6}));
}

TEST(SurfaceTiles, GivesACentreOnAnEdgeToTheTriangleOnItsRightOrBelow) {
  // Edges through the centres of pixels: the square from 0.5 to 2.5 has them on all sides.
  const TinSurface square({{0.5, 0.5, 0}, {2.5, 0.5, 0}, {2.5, 2.5, 0}, {0.5, 2.5, 0}, {0, 3, 0}, {-1, 3, 0}},
                          {{0, 1, 2}, {0, 2, 3}, {3, 4, 5}});
  const SurfaceTiles tiles(square);
  ASSERT_EQ(tiles.origin(), (Vec2{-1, 3}));
  const PixelArea area{1.0, 1, 0, 4, 4};  // x from 0, y from 3 down
  const auto pixels = rendered(tiles, area);
  const auto has = [&](int x, int y) { return pixelAt(pixels, area, x, y) != 0; };
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x)
      EXPECT_EQ(has(x, y), x <= 1 && y <= 1) << x << ' ' << y;  // left and upper sides belong to it, the others don't
}

/// Each tile of the surface against the same pixels of one picture of all of them.
void expectNoSeams(const TinSurface& surface, int level, const SurfaceLook& look) {
  const SurfaceTiles tiles(surface);
  const TileRange range = tiles.tilesIn(surface.box(), level);
  const PixelArea whole{SurfaceTiles::scaleOf(level), range.left * kSize, range.top * kSize,
                        static_cast<int>(range.right - range.left + 1) * kSize,
                        static_cast<int>(range.bottom - range.top + 1) * kSize};
  const auto picture = rendered(tiles, whole, look);
  int ground = 0;
  for (std::int64_t row = range.top; row <= range.bottom; ++row)
    for (std::int64_t column = range.left; column <= range.right; ++column) {
      const auto tile = tiles.render({level, column, row}, look);
      ASSERT_TRUE(tile);
      for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x) {
          const std::uint32_t expected = pixelAt(picture, whole, static_cast<int>(column - range.left) * kSize + x,
                                                 static_cast<int>(row - range.top) * kSize + y);
          const std::uint32_t pixel = tile->isEmpty() ? 0 : tile->pixels[static_cast<std::size_t>(y * kSize + x)];
          if (pixel != expected) FAIL() << level << ": " << column << ' ' << row << ", " << x << ' ' << y;
          ground += pixel != 0 ? 1 : 0;
        }
    }
  EXPECT_GT(ground, 0);
}

TEST(SurfaceTiles, FitWithoutSeamIntoOneLargePicture) {
  const TinSurface surface =
      gridSurface(60, 40, 5, {2'600'000, 1'200'000}, [](int c, int r) { return c % 13 == 7 && r > 9; });
  for (const int level : {-4, -2, 0, 1, 3})
    for (const SurfaceStyle style : {SurfaceStyle::Relief, SurfaceStyle::Heights})
      expectNoSeams(surface, level, {style, true, false});
}

TEST(SurfaceTiles, FitWithoutSeamWhereTrianglesAreSmallerThanAPixel) {
  auto random = test::seededByTestName();
  std::uniform_real_distribution<double> any(-0.1, 0.1);
  // A strip along the seam between the first two columns of tiles, across that of their rows.
  constexpr int kColumns = 40;
  constexpr int kRows = 1200;
  constexpr double kCell = 0.25;
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  for (int r = 0; r <= kRows; ++r)
    for (int c = 0; c <= kColumns; ++c)
      points.push_back({kSize + kCell * (c - kColumns / 2) + any(random), kCell * r + any(random), 4 * any(random)});
  for (int r = 0; r < kRows; ++r)
    for (int c = 0; c < kColumns; ++c) {
      const int a = r * (kColumns + 1) + c;
      triangles.push_back({a, a + 1, a + kColumns + 2});
      triangles.push_back({a, a + kColumns + 2, a + kColumns + 1});
    }
  const auto corner = static_cast<std::int32_t>(points.size());
  points.insert(points.end(), {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});  // from where tiles are counted
  triangles.push_back({corner, corner + 1, corner + 2});
  const TinSurface surface(std::move(points), std::move(triangles));
  ASSERT_EQ(SurfaceTiles(surface).origin().x, 0.0);
  for (const SurfaceStyle style : {SurfaceStyle::Relief, SurfaceStyle::Heights})
    expectNoSeams(surface, 0, {style, true, true});
}

TEST(SurfaceTiles, LeaveNoGapInGroundOfTrianglesSmallerThanAPixel) {
  const TinSurface surface = gridSurface(200, 200, 1, {480'000, 4'810'000});
  const SurfaceTiles tiles(surface);
  for (const double scale : {0.03, 0.11, 0.25, 0.6, 1.0}) {
    const auto size = static_cast<int>(std::floor(199 * scale));
    const PixelArea area{scale, 1, 1, size - 1, size - 1};
    const auto pixels = rendered(tiles, area);
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0U), 0) << scale;
  }
}

TEST(SurfaceTiles, AverageTrianglesSmallerThanAPixel) {
  // A washboard: slopes to the north-west and to the south-east by turns, as light as both together from afar.
  constexpr int kCells = 400;
  const TinSurface fine = [] {
    std::vector<Vec3> p;
    std::vector<Triangle> t;
    for (int r = 0; r <= kCells; ++r)
      for (int c = 0; c <= kCells; ++c) p.push_back({double(c), double(r), c % 2 * 0.4});
    for (int r = 0; r < kCells; ++r)
      for (int c = 0; c < kCells; ++c) {
        const int a = r * (kCells + 1) + c;
        t.push_back({a, a + 1, a + kCells + 2});
        t.push_back({a, a + kCells + 2, a + kCells + 1});
      }
    return TinSurface(std::move(p), std::move(t));
  }();
  const SurfaceTiles tiles(fine);
  const PixelArea area{1.0 / 16.0, 1, 1, 22, 22};
  const auto pixels = rendered(tiles, area);
  const auto [least, most] = std::minmax_element(pixels.begin(), pixels.end());
  const auto green = [](std::uint32_t pixel) { return static_cast<int>(pixel >> 8 & 0xff); };
  EXPECT_LE(std::abs(green(*least) - green(*most)), 2);
  const PixelArea near{4.0, 0, 0, 100, 100};
  const auto slopes = rendered(tiles, near, {SurfaceStyle::Relief, false, false});
  const auto [dark, bright] = std::minmax_element(slopes.begin(), slopes.end());
  EXPECT_GT(green(*bright) - green(*dark), 20);
  EXPECT_LT(green(*dark), green(*least));
  EXPECT_GT(green(*bright), green(*most));
}

TEST(SurfaceTiles, ShowSlopesToTheNorthWestLight) {
  const auto colourOf = [](double east, double north) {
    const TinSurface plane({{0, 0, 0}, {10, 0, 10 * east}, {10, 10, 10 * (east + north)}, {0, 10, 10 * north}},
                           {{0, 1, 2}, {0, 2, 3}});
    const SurfaceTiles tiles(plane);
    const PixelArea area{10.0, 50, 50, 1, 1};
    return rendered(tiles, area, {SurfaceStyle::Relief, false, false})[0] & 0xff;
  };
  const auto level = colourOf(0, 0);
  EXPECT_GT(colourOf(0.2, -0.2), level);  // rises to the south-east: faces the light
  EXPECT_LT(colourOf(-0.2, 0.2), level);
}

TEST(SurfaceTiles, DrawEdgesOfLargeTrianglesOnly) {
  const TinSurface surface = gridSurface(8, 8, 4);
  const SurfaceTiles tiles(surface);
  const auto changed = [&](double scale) {
    const auto size = static_cast<int>(32 * scale);
    const PixelArea area{scale, 0, 0, size, size};
    const auto with = rendered(tiles, area, {SurfaceStyle::Relief, true, false});
    const auto without = rendered(tiles, area, {SurfaceStyle::Relief, false, false});
    int count = 0;
    for (std::size_t i = 0; i < with.size(); ++i) count += with[i] != without[i] ? 1 : 0;
    return count;
  };
  EXPECT_EQ(changed(1.0), 0);
  EXPECT_GT(changed(8.0), 1000);
}

TEST(SurfaceTiles, ColourHeightsFromLowToHigh) {
  const TinSurface slope({{0, 0, 100}, {100, 0, 200}, {100, 100, 200}, {0, 100, 100}}, {{0, 1, 2}, {0, 2, 3}});
  const SurfaceTiles tiles(slope);
  EXPECT_EQ(tiles.lowElevation(), 100);
  EXPECT_EQ(tiles.highElevation(), 200);
  for (const bool isDark : {false, true}) {
    const PixelArea area{1.0, 0, 50, 100, 1};
    const auto pixels = rendered(tiles, area, {SurfaceStyle::Heights, false, isDark});
    for (std::size_t x = 10; x < 100; x += 10) EXPECT_GT(pixels[x] >> 8 & 0xff, pixels[x - 10] >> 8 & 0xff) << x;
  }
}

TEST(SurfaceTiles, KeepHeightColoursForTheGroundThatIsNoOutlier) {
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  for (int i = 0; i < 3000; ++i) {
    const auto first = static_cast<std::int32_t>(points.size());
    const double x = i;
    points.insert(points.end(), {{x, 0, 400}, {x + 1, 0, i == 7 ? 0.0 : 410.0}, {x, 1, 405}});
    triangles.push_back({first, first + 1, first + 2});
  }
  const TinSurface surface(std::move(points), std::move(triangles));
  const SurfaceTiles tiles(surface);
  EXPECT_EQ(tiles.lowElevation(), 400);
  EXPECT_EQ(tiles.highElevation(), 410);
}

TEST(SurfaceTiles, StandTheDeepestZoomAndTheFarthest) {
  const TinSurface surface = gridSurface(3, 3, 1000, {2'600'000, 1'200'000});
  const SurfaceTiles tiles(surface);
  const Box all = surface.box();
  const TileRange one = tiles.tilesIn(all, SurfaceTiles::kLeastLevel);
  EXPECT_EQ(one.left, one.right);
  EXPECT_EQ(one.top, one.bottom);
  ASSERT_TRUE(tiles.render({SurfaceTiles::kLeastLevel, one.left, one.top}, {}));
  // Deep within one triangle: all ground, of one colour.
  const Vec2 place{2'601'300, 1'201'100};
  const TileRange deep = tiles.tilesIn({place.x, place.y, place.x, place.y}, SurfaceTiles::kMostLevel);
  const auto tile = tiles.render({SurfaceTiles::kMostLevel, deep.left, deep.top}, {});
  ASSERT_TRUE(tile);
  ASSERT_FALSE(tile->isEmpty());
  EXPECT_EQ(std::count(tile->pixels.begin(), tile->pixels.end(), tile->pixels[0]), kSize * kSize);
  const Box box = tiles.boxOf({SurfaceTiles::kMostLevel, deep.left, deep.top});
  EXPECT_NEAR(box.minX, place.x, 0.002);
  EXPECT_LE(box.minX, place.x);
  EXPECT_GE(box.maxX, place.x);
  EXPECT_LE(box.minY, place.y);
  EXPECT_GE(box.maxY, place.y);
}

TEST(SurfaceTiles, StandCoordinatesBeyondAnyMap) {
  const TinSurface huge({{-1e100, -1e100, 0}, {1e100, -1e100, 5}, {0, 1e100, 1e100}}, {{0, 1, 2}});
  const SurfaceTiles tiles(huge);
  for (const int level : {SurfaceTiles::kLeastLevel, 0, SurfaceTiles::kMostLevel}) {
    const TileRange range = tiles.tilesIn({-10, -10, 10, 10}, level);
    ASSERT_FALSE(range.isEmpty());
    EXPECT_TRUE(tiles.render({level, range.left, range.top}, {}));
  }
  const TinSurface tiny({{0, 0, 0}, {1e-90, 0, 0}, {0, 1e-90, 1e-90}}, {{0, 1, 2}});
  EXPECT_TRUE(SurfaceTiles(tiny).render({0, 0, 0}, {}));
}

TEST(SurfaceTiles, AreEmptyWithoutTriangles) {
  const TinSurface none;
  const SurfaceTiles tiles(none);
  EXPECT_TRUE(tiles.tilesIn({-1e9, -1e9, 1e9, 1e9}, 0).isEmpty());
  const auto tile = tiles.render({0, 0, 0}, {});
  ASSERT_TRUE(tile);
  EXPECT_TRUE(tile->isEmpty());
  EXPECT_EQ(rendered(tiles, {1.0, 0, 0, 3, 3}), std::vector<std::uint32_t>(9));
  // Walls alone hold no ground.
  const TinSurface walls({{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}, {{0, 1, 2}});
  EXPECT_TRUE(SurfaceTiles(walls).render({0, 0, 0}, {})->isEmpty());
}

TEST(SurfaceTiles, EndEarlyWhenCancelled) {
  const TinSurface surface = gridSurface(50, 50, 1);
  const SurfaceTiles tiles(surface);
  const CancelFlag cancel{true};
  EXPECT_FALSE(tiles.render({0, 0, 0}, {}, &cancel));
  EXPECT_THROW(SurfaceTiles(surface, [](double) { return false; }), Cancelled);
}

TEST(SurfaceTiles, ChooseTheLevelThatIsNoCoarserThanAskedFor) {
  struct Row {
    double scale;
    int level;
  };
  for (const Row& row : {Row{1.0, 0}, {1.01, 1}, {2.0, 1}, {0.5, -1}, {0.51, 0}, {0.26, -1}, {1e9, 18}, {0.0, -30}})
    EXPECT_EQ(SurfaceTiles::levelFor(row.scale), row.level) << row.scale;
}

// ---------------------------------------------------------------- cache

std::shared_ptr<const Tile> fullTile() {
  auto tile = std::make_shared<Tile>();
  tile->pixels.resize(std::size_t{kSize} * kSize);
  return tile;
}

TEST(TileCache, DropsTheTilesUsedLongestAgo) {
  TileCache cache(3 * fullTile()->bytes());
  const auto key = [](std::int64_t column) { return TileKey{0, {0, column, 0}, {}}; };
  for (std::int64_t column = 0; column < 3; ++column) cache.insert(key(column), fullTile());
  EXPECT_TRUE(cache.find(key(0)));
  cache.insert(key(3), fullTile());
  EXPECT_TRUE(cache.find(key(0)));
  EXPECT_FALSE(cache.find(key(1)));
  EXPECT_EQ(cache.count(), 3U);
  EXPECT_LE(cache.bytes(), 3 * fullTile()->bytes());
  cache.insert(key(3), fullTile());
  EXPECT_EQ(cache.count(), 3U);
  cache.clear();
  EXPECT_EQ(cache.bytes(), 0U);
  EXPECT_FALSE(cache.find(key(0)));
}

TEST(TileCache, TellsLooksAndSurfacesApart) {
  TileCache cache;
  const TileKey key{0, {2, 5, 7}, {}};
  cache.insert(key, fullTile());
  TileKey other = key;
  other.surface = 1;
  EXPECT_FALSE(cache.find(other));
  other = key;
  other.look.isDark = true;
  EXPECT_FALSE(cache.find(other));
  EXPECT_TRUE(cache.find(key));
}

TEST(TileCache, FindsTheSquareOfACoarserTile) {
  TileCache cache;
  cache.insert({0, {0, 1, -1}, {}}, fullTile());
  // Two levels finer a tile is a quarter as wide.
  const auto found = cache.findCoarser({0, {2, 6, -3}, {}});
  ASSERT_TRUE(found);
  EXPECT_EQ(found->size, 64);
  EXPECT_EQ(found->left, 128);
  EXPECT_EQ(found->top, 64);
  EXPECT_FALSE(cache.findCoarser({0, {2, 3, -3}, {}}));
  EXPECT_FALSE(cache.findCoarser({0, {2, 6, -3}, {}}, 1));
}

TEST(TileCache, ServesTwoThreads) {
  TileCache cache(8 * fullTile()->bytes());
  std::thread drawing([&] {
    for (std::int64_t i = 0; i < 2000; ++i) cache.insert({0, {0, i % 20, 0}, {}}, fullTile());
  });
  std::size_t found = 0;
  for (std::int64_t i = 0; i < 20'000; ++i) found += cache.find({0, {0, i % 20, 0}, {}}) ? 1 : 0;
  drawing.join();
  EXPECT_LE(found, 20'000U);
  EXPECT_EQ(cache.count(), 8U);
}

// ---------------------------------------------------------------- border

TEST(SurfaceBorder, RunsAroundTheGroundAndItsHoles) {
  const TinSurface surface = gridSurface(6, 5, 10, {0, 0}, [](int c, int r) { return c == 2 && r == 2; });
  const LineSet border = surfaceBorder(surface);
  const auto lines = border.lines(surface.box(), 0.0);
  ASSERT_EQ(lines.size(), 2U);
  double area = 0.0;
  for (const Line& line : lines) {
    EXPECT_EQ(line.front(), line.back());
    for (std::size_t i = 1; i < line.size(); ++i) area += 0.5 * cross(line[i - 1] - line[0], line[i] - line[0]);
  }
  double ground = 0.0;
  for (const Triangle& t : surface.triangles()) {
    const auto corner = [&](std::int32_t n) {
      const Vec3& p = surface.points()[static_cast<std::size_t>(n)];
      return Vec2{p.x, p.y};
    };
    ground += 0.5 * cross(corner(t.b) - corner(t.a), corner(t.c) - corner(t.a));
  }
  EXPECT_NEAR(area, ground, 1e-9);  // holes count negative: the ground lies on the left of every line
  const std::size_t outer = std::max(lines[0].size(), lines[1].size());
  const std::size_t inner = std::min(lines[0].size(), lines[1].size());
  EXPECT_EQ(outer, 2U * (6 + 5) + 1);
  EXPECT_EQ(inner, 5U);
}

TEST(SurfaceBorder, HasEachEdgeOfOneTriangleOnce) {
  const TinSurface surface = gridSurface(90, 70, 1, {0, 0}, [](int c, int r) { return (c * 7 + r * 5) % 11 == 0; });
  std::vector<std::pair<std::int32_t, std::int32_t>> edges;
  for (const Triangle& t : surface.triangles())
    for (const auto& [a, b] : {std::pair(t.a, t.b), std::pair(t.b, t.c), std::pair(t.c, t.a)})
      edges.push_back(std::minmax(a, b));
  std::sort(edges.begin(), edges.end());
  std::size_t single = 0;
  for (std::size_t i = 0; i < edges.size();) {
    const auto end = std::upper_bound(edges.begin(), edges.end(), edges[i]) - edges.begin();
    single += static_cast<std::size_t>(end) - i == 1 ? 1 : 0;
    i = static_cast<std::size_t>(end);
  }
  std::size_t drawn = 0;
  for (const Line& line : surfaceBorder(surface).lines(surface.box(), 0.0)) drawn += line.size() - 1;
  EXPECT_EQ(drawn, single);
}

TEST(SurfaceBorder, IsEmptyWithoutGroundAndEndsWhenCancelled) {
  EXPECT_TRUE(surfaceBorder(TinSurface()).isEmpty());
  EXPECT_THROW((void)surfaceBorder(gridSurface(2, 2, 1), [](double) { return false; }), Cancelled);
}

}  // namespace
}  // namespace lvx::view
