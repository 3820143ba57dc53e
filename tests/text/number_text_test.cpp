#include "text/number_text.h"

#include <limits>

#include <gtest/gtest.h>

#include "platform/utf8.h"
#include "services/formatted_text.h"
#include "services/station_text.h"

namespace lvx::text {
namespace {

TEST(NumberText, NeverHasAMinusBeforeZero) {
  EXPECT_EQ(fixedText(-0.0004), "0.000");
  EXPECT_EQ(fixedText(-0.0006), "-0.001");
  EXPECT_EQ(fixedText(12.5, 0), "12");
  EXPECT_EQ(fixedText(std::numeric_limits<double>::quiet_NaN()), "-");
}

TEST(NumberText, TakesNoMoreThanNineDecimals) {
  EXPECT_EQ(fixedText(0.5, 40), "0.500000000");
  EXPECT_EQ(fixedText(0.5, -1), "0");
}

TEST(NumberText, IsThatOfTheReportsButForTheMinusBeforeZero) {
  std::size_t rows = 0;
  for (const double value : {0.0, 0.0005, 1.0005, 2.5, -2.5, 123456789.1234, 1e300, -0.0006}) {
    EXPECT_EQ(fixedText(value), platform::toUtf8(services::fixedText(value, 3))) << value;
    ++rows;
  }
  EXPECT_EQ(rows, 8U);
  EXPECT_EQ(services::fixedText(-0.0004, 3), L"-0.000");
}

TEST(NumberText, DropsZerosBehindThePointOnly) {
  EXPECT_EQ(shortText(300.0), "300");
  EXPECT_EQ(shortText(87.5), "87.5");
  EXPECT_EQ(shortText(100.0, 0), "100");
  EXPECT_EQ(shortText(0.0), "0");
}

TEST(StationText, IsThatOfTheReports) {
  std::size_t rows = 0;
  for (const double station : {0.0, 1.5, 999.9994, 999.9996, 1000.0, 1234.5678, 1'234'567.891, -0.0004, -0.5, -1234.5,
                               -999.9996, 1.0005, 2.0005}) {
    EXPECT_EQ(stationText(station), platform::toUtf8(services::stationText(station))) << station;
    ++rows;
  }
  EXPECT_EQ(rows, 13U);
}

TEST(StationText, HasAsManyDecimalsAsItsAxisNeeds) {
  EXPECT_EQ(stationText(1200.0, 0), "1+200");
  EXPECT_EQ(stationText(20.25, 1), "0+020.2");
  EXPECT_EQ(stationText(999.6, 0), "1+000");
}

TEST(CountText, TakesTheWordForManyButForOne) {
  EXPECT_EQ(countText(0, "sample line"), "0 sample lines");
  EXPECT_EQ(countText(1, "sample line"), "1 sample line");
  EXPECT_EQ(countText(100'000, "point"), "100000 points");
}

}  // namespace
}  // namespace lvx::text
