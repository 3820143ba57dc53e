#include "view/difference_tiles.h"

#include <cstdint>

#include "gtest/gtest.h"

namespace lvx::view {
namespace {

using civil::TinSurface;

/// From 0 to 64, level at `west` along x = 0 and at `east` along x = 64.
TinSurface tilted(double west, double east) {
  return {{{0, 0, west}, {64, 0, east}, {64, 64, east}, {0, 64, west}}, {{0, 1, 2}, {0, 2, 3}}};
}

std::uint32_t alphaOf(std::uint32_t colour) { return colour >> 24U; }
std::uint32_t redOf(std::uint32_t colour) { return colour >> 16U & 0xFFU; }
std::uint32_t blueOf(std::uint32_t colour) { return colour & 0xFFU; }

TEST(DifferenceColour, IsRedBelowBlueAboveAndClearAtZero) {
  EXPECT_EQ(differenceColour(0.0), 0U);
  for (const double part : {0.3, 0.6, 1.0, 7.0}) {
    EXPECT_GT(redOf(differenceColour(-part)), blueOf(differenceColour(-part))) << part;
    EXPECT_LT(redOf(differenceColour(part)), blueOf(differenceColour(part))) << part;
  }
  EXPECT_EQ(differenceColour(7.0), differenceColour(1.0));
  EXPECT_LT(alphaOf(differenceColour(0.01)), 12U);
  EXPECT_LT(alphaOf(differenceColour(0.1)), alphaOf(differenceColour(0.2)));
}

TEST(DifferenceColour, IsMultipliedByItsAlpha) {
  for (int step = -40; step <= 40; ++step) {
    const std::uint32_t colour = differenceColour(step / 40.0);
    for (const unsigned shift : {0U, 8U, 16U}) EXPECT_LE(colour >> shift & 0xFFU, alphaOf(colour)) << step;
  }
}

TEST(DifferenceTiles, ShowTheDifferenceAtThePixelsCentre) {
  const TinSurface level = tilted(10, 10);
  const TinSurface next = tilted(6, 14);
  const DifferenceTiles tiles(level, next);
  EXPECT_EQ(tiles.range(), 5.0) << "4 at most, nineteen of twenty below 3.8";
  const TileRange range = tiles.tilesIn(tiles.box(), 2);
  EXPECT_EQ(range.left, 0);
  EXPECT_EQ(range.top, 0);
  const auto tile = tiles.render({2, 0, 0});
  ASSERT_TRUE(tile);
  ASSERT_FALSE(tile->isEmpty());
  const auto at = [&](int column, int row) {
    return tile->pixels[static_cast<std::size_t>(row * Tile::kSize + column)];
  };
  for (const int column : {0, 30, 100, 140, 255}) {
    const double x = (column + 0.5) / 4.0;
    EXPECT_EQ(at(column, 17), differenceColour((x / 8.0 - 4.0) / 5.0)) << column;
  }
}

TEST(DifferenceTiles, AreClearOffOneOfTheSurfaces) {
  const TinSurface level = tilted(10, 10);
  const TinSurface part({{0, 0, 12}, {32, 0, 12}, {0, 32, 12}}, {{0, 1, 2}});
  const DifferenceTiles tiles(level, part);
  EXPECT_EQ(tiles.box().maxX, 32.0);
  const auto tile = tiles.render({2, 0, 0});
  ASSERT_TRUE(tile);
  const auto at = [&](int column, int row) {
    return tile->pixels[static_cast<std::size_t>(row * Tile::kSize + column)];
  };
  EXPECT_NE(at(4, 120), 0U);
  EXPECT_EQ(at(120, 4), 0U) << "beyond the slanted side";
  EXPECT_EQ(at(200, 100), 0U);
}

TEST(DifferenceTiles, HaveNoPixelsWithoutDifferenceOrCommonGround) {
  const TinSurface level = tilted(10, 10);
  const TinSurface same = tilted(10, 10);
  EXPECT_TRUE(DifferenceTiles(level, same).render({2, 0, 0})->isEmpty());
  const TinSurface none;
  const DifferenceTiles nothing(level, none);
  EXPECT_TRUE(nothing.box().isEmpty());
  EXPECT_TRUE(nothing.tilesIn({0, 0, 64, 64}, 2).isEmpty());
  EXPECT_TRUE(nothing.render({2, 0, 0})->isEmpty());
  EXPECT_GT(nothing.range(), 0.0);
}

TEST(DifferenceTiles, GiveUpWhenCancelled) {
  const TinSurface level = tilted(10, 10);
  const TinSurface next = tilted(6, 14);
  const CancelFlag cancel = true;
  EXPECT_FALSE(DifferenceTiles(level, next).render({2, 0, 0}, &cancel));
}

}  // namespace
}  // namespace lvx::view
