#include "civil/detail/predicates.h"

#include <random>

#include <gtest/gtest.h>

namespace lvx::civil::detail {
namespace {

int signOf(double value) { return (value > 0.0) - (value < 0.0); }

TEST(Predicates, SeeOneUnitInTheLastPlaceOffALine) {
  const Vec2 a{0.5, 0.5};
  const Vec2 b{12.0, 12.0};
  const double next = std::nextafter(24.0, 25.0);
  EXPECT_EQ(signedSide(a, b, {24.0, 24.0}), 0.0);
  EXPECT_GT(signedSide(a, b, {24.0, next}), 0.0);
  EXPECT_LT(signedSide(a, b, {next, 24.0}), 0.0);
}

TEST(Predicates, AgreeWithWideIntegersOnNearlyCollinearMultiplesOfATinyStep) {
  // Places far out in steps of 2^-27: the differences are no longer doubles of few bits, and plain products fail.
  std::mt19937_64 random(20260101);
  constexpr double kStep = 0x1p-27;
  int uncertain = 0;
  for (int i = 0; i < 20'000; ++i) {
    const auto far = [&] { return static_cast<std::int64_t>(random() % (1ULL << 52)) - (1LL << 51); };
    const std::int64_t ax = far(), ay = far(), dx = far() >> 26, dy = far() >> 26;
    const std::int64_t times = static_cast<std::int64_t>(random() % 1000);
    const std::int64_t bx = ax + dx, by = ay + dy;
    const std::int64_t px = ax + times * dx + static_cast<std::int64_t>(random() % 3) - 1;
    const std::int64_t py = ay + times * dy + static_cast<std::int64_t>(random() % 3) - 1;
    const auto at = [&](std::int64_t x, std::int64_t y) {
      return Vec2{static_cast<double>(x) * kStep, static_cast<double>(y) * kStep};
    };
    __extension__ using Wide = __int128;
    const Wide exact = static_cast<Wide>(bx - ax) * (py - ay) - static_cast<Wide>(by - ay) * (px - ax);
    const int expected = (exact > 0) - (exact < 0);
    const Vec2 a = at(ax, ay), b = at(bx, by), p = at(px, py);
    ASSERT_EQ(signOf(signedSide(a, b, p)), expected) << "case " << i;
    ASSERT_EQ(signOf(exactSide(a, b, p)), expected) << "case " << i;
    ASSERT_NEAR(exactSide(a, b, p), static_cast<double>(exact) * kStep * kStep,
                1e-15 * std::abs(static_cast<double>(exact)) * kStep * kStep);
    const RoughSide rough = roughSide(a, b - a, p);
    ASSERT_TRUE(!rough.isLeft() || expected == 1) << "case " << i;
    ASSERT_TRUE(!rough.isRight() || expected == -1) << "case " << i;
    if (!rough.isLeft() && !rough.isRight()) ++uncertain;
  }
  EXPECT_GT(uncertain, 1000);
}

TEST(Predicates, StayExactWhereDifferencesOfCoordinatesRound) {
  // A huge and a tiny coordinate: their difference has no room in a double.
  const Vec2 a{1e-30, 1e-30};
  const Vec2 b{3e7, 3e7};
  EXPECT_EQ(signedSide(a, b, {1.0, 1.0}), 0.0);
  EXPECT_GT(signedSide(a, b, {1.0, std::nextafter(1.0, 2.0)}), 0.0);
  EXPECT_LT(signedSide({1e-30, 2e-30}, b, {1.0, 1.0}), 0.0);
}

TEST(Predicates, ChangeSignWithTheOrderOfThePoints) {
  const Vec2 a{0.1, 0.1};
  const Vec2 b{0.3, 0.3};
  const Vec2 p{0.7, 0.7};
  const int side = signOf(signedSide(a, b, p));
  EXPECT_EQ(signOf(signedSide(b, p, a)), side);
  EXPECT_EQ(signOf(signedSide(p, a, b)), side);
  EXPECT_EQ(signOf(signedSide(b, a, p)), -side);
}

}  // namespace
}  // namespace lvx::civil::detail
