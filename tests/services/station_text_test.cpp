#include "services/station_text.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace lvx::services {
namespace {

TEST(StationText, SplitsIntoKilometresAndMetres) {
  struct Row {
    double station;
    const wchar_t* text;
  };
  const std::vector<Row> rows = {
      {0.0, L"0+000.000"},
      {-0.0, L"0+000.000"},
      {5.0, L"0+005.000"},
      {1234.5, L"1+234.500"},
      {12345.678, L"12+345.678"},
      {1000.0, L"1+000.000"},
      {123456789.012, L"123456+789.012"},
  };
  for (const Row& row : rows) EXPECT_EQ(stationText(row.station), row.text) << row.station;
}

TEST(StationText, RoundsToTheMillimetreBeforeItSplits) {
  EXPECT_EQ(stationText(999.9994), L"0+999.999");
  EXPECT_EQ(stationText(999.9996), L"1+000.000");
  EXPECT_EQ(stationText(1999.99951), L"2+000.000");
  EXPECT_EQ(stationText(-999.9996), L"-1-000.000");
}

TEST(StationText, KeepsBothMinusSignsBelowZero) {
  EXPECT_EQ(stationText(-1000.0), L"-1-000.000");
  EXPECT_EQ(stationText(-1234.5), L"-1-234.500");
  EXPECT_EQ(stationText(-0.5), L"-0-000.500");
  EXPECT_EQ(stationText(-0.001), L"-0-000.001");
}

TEST(StationText, WhatRoundsToMinusZeroIsZero) { EXPECT_EQ(stationText(-0.0004), L"0+000.000"); }

TEST(StationText, EveryMillimetreOfAKilometreReadsBack) {
  for (int sign : {1, -1})
    for (int millimetres = 1; millimetres < 2'000'000; millimetres += 997) {
      const CString text = stationText(sign * (millimetres / 1000.0));
      const CString digits{text[text.size() - 3], text[text.size() - 2], text[text.size() - 1]};
      ASSERT_EQ(text.size(), sign > 0 ? 9U : 10U) << millimetres;
      ASSERT_EQ(std::stoi(digits), millimetres % 1000) << millimetres;
      ASSERT_EQ(text[sign > 0 ? 0 : 1], millimetres < 1'000'000 ? L'0' : L'1') << millimetres;
    }
}

TEST(StationText, StaysDefinedBeyondAnyRoad) {
  constexpr double kInf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(stationText(5e12), L"5000000000+000.000");
  EXPECT_EQ(stationText(-5e12), L"-5000000000-000.000");
  EXPECT_EQ(stationText(2147483648000.5), L"2147483648+000.500");
  EXPECT_EQ(stationText(kInf), L"0+0000inf");
  EXPECT_EQ(stationText(-kInf), L"-0-0000inf");
  EXPECT_EQ(stationText(std::numeric_limits<double>::quiet_NaN()), L"-0-0000nan");
  EXPECT_FALSE(stationText(std::numeric_limits<double>::max()).empty());
  EXPECT_FALSE(stationText(std::numeric_limits<double>::lowest()).empty());
}

}  // namespace
}  // namespace lvx::services
