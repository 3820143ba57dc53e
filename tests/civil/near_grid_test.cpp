#include "civil/detail/near_grid.h"

#include <limits>
#include <set>

#include <gtest/gtest.h>

#include "support/random_numbers.h"

namespace lvx::civil::detail {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(NearGrid, FindsTheCellThatHoldsAPoint) {
  const NearGrid grid({-20, 5}, {80, 40}, 1.0, 500);
  auto random = lvx::test::seededByTestName();
  const auto between = [&](double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / static_cast<double>(std::mt19937::max()));
  };
  std::set<const NearGrid::Word*> words;
  for (int i = 0; i < 20000; ++i) {
    const double apron = 2.999 * grid.side();
    const Vec2 point{between(-20 - apron, 80 + apron), between(5 - apron, 40 + apron)};
    const NearGrid::Word* const word = grid.wordAt(point);
    ASSERT_NE(word, nullptr);
    words.insert(word);
    const NearGrid::Square square = grid.squareOf(word);
    EXPECT_LE(std::abs(point.x - square.middle.x), square.half * (1 + 1e-12));
    EXPECT_LE(std::abs(point.y - square.middle.y), square.half * (1 + 1e-12));
    EXPECT_DOUBLE_EQ(2 * square.half, grid.side());
  }
  EXPECT_GT(words.size(), 350U) << "cells are as small as 500 of them allow";
  EXPECT_LT(words.size(), 600U);
}

TEST(NearGrid, KeepsWhatIsWrittenAndStartsAtZero) {
  const NearGrid grid({0, 0}, {10, 0}, 2.0, 256);
  NearGrid::Word* const word = grid.wordAt({3, 1});
  ASSERT_NE(word, nullptr);
  EXPECT_EQ(word->load(), 0U);
  word->store(7);
  EXPECT_EQ(grid.wordAt({3, 1})->load(), 7U);
  EXPECT_EQ(grid.wordAt({9, -1})->load(), 0U);
}

TEST(NearGrid, HasNoCellOutside) {
  const NearGrid grid({0, 0}, {100, 100}, 10.0, 200);
  for (const Vec2 point :
       {Vec2{-1e3, 5}, Vec2{1e3, 5}, Vec2{5, -1e3}, Vec2{5, 1e3}, Vec2{1e300, 0}, Vec2{kNaN, 0}, Vec2{0, -kInfinity}})
    EXPECT_EQ(grid.wordAt(point), nullptr) << point.x << " " << point.y;
}

TEST(NearGrid, HasNoCellsOverWhatIsNoRectangle) {
  EXPECT_EQ(NearGrid().wordAt({0, 0}), nullptr);
  EXPECT_EQ(NearGrid({0, 0}, {kInfinity, 1}, 1.0, 256).wordAt({0, 0}), nullptr);
  EXPECT_EQ(NearGrid({0, 0}, {1e200, 1e200}, 1.0, 256).wordAt({0, 0}), nullptr);
  EXPECT_EQ(NearGrid({5, 5}, {5, 5}, 0.0, 256).wordAt({5, 5}), nullptr) << "cells without a side";
}

}  // namespace
}  // namespace lvx::civil::detail
