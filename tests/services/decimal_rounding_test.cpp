#include "services/decimal_rounding.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "services/formatted_text.h"
#include "support/random_numbers.h"

namespace lvx::services {
namespace {

std::string printed(double value, int decimals) {
  std::array<char, 400> digits{};
  return {digits.data(),
          std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals).ptr};
}

void expectAsPrinted(double value, int decimals) {
  const std::string expected = printed(value, decimals);
  const auto text = fixedText(value, decimals);
  ASSERT_EQ(std::string(text.begin(), text.end()), expected) << decimals;
  const auto rounded = roundedToDecimals(value, decimals);
  if (!rounded || decimals != 3) return;
  // What the text stands for is the quotient.
  double read = 0.0;
  std::from_chars(expected.data(), expected.data() + expected.size(), read);
  ASSERT_EQ(std::copysign(static_cast<double>(*rounded) / 1000.0, value), read) << expected;
}

TEST(DecimalRounding, RoundsAsPrintingDoes) {
  auto generator = test::seededByTestName();
  const auto random = [&generator] { return static_cast<double>(generator()) / 4294967296.0 - 0.5; };
  for (int i = 0; i < 100000; ++i) {
    const double size = std::pow(10.0, static_cast<double>(generator() % 16));
    const int decimals = static_cast<int>(generator() % 10);
    expectAsPrinted(random() * size, decimals);
    // At, and a hair beside, what lies half-way between two texts.
    const double tie = (std::floor(random() * size) + 0.5) / std::pow(10.0, decimals);
    expectAsPrinted(tie, decimals);
    expectAsPrinted(std::nextafter(tie, 0.0), decimals);
    expectAsPrinted(std::nextafter(tie, 1e300), decimals);
  }
}

TEST(DecimalRounding, KeepsSignsAndZerosAsPrintingDoes) {
  for (const double value :
       {0.0, -0.0, -0.0001, 0.0001, -0.0005, 0.9996, 999.9996, 1e-300, -1e11, 1e12, 1e15, 1e22, 1e300})
    for (int decimals = 0; decimals <= kMostDecimals; ++decimals) expectAsPrinted(value, decimals);
}

TEST(DecimalRounding, LeavesToPrintingWhatDoublesDontDecide) {
  EXPECT_EQ(roundedToDecimals(1234.5674, 3), 1234567);
  EXPECT_EQ(roundedToDecimals(-1234.5676, 3), 1234568);
  for (const double value : {0.5, 2.5, 1e12, std::numeric_limits<double>::infinity(), std::nan("")})
    EXPECT_EQ(roundedToDecimals(value, 0), std::nullopt) << value;
}

}  // namespace
}  // namespace lvx::services
