#include "properties/report_table.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::properties {
namespace {

namespace fs = std::filesystem;

/// The text form of a golden report; its bytes are characters of the same value.
std::string golden(const std::string& name) {
  std::string text;
  for (const char byte : test::fileBytes(test::inSource("/tests/golden/" + name + "/expected.txt"))) {
    const auto value = static_cast<unsigned char>(byte);
    constexpr unsigned char kPlain = 0x80;
    if (value < kPlain) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0U | (value >> 6U));
      text += static_cast<char>(0x80U | (value & 0x3FU));
    }
  }
  return text;
}

std::string shown(const ReportTable& report, std::size_t row, std::size_t column) {
  return textOf(report.table.cell(row, column), report.table.columns[column].form, {});
}

TEST(ReportTable, HasTheColumnsOfThePointsReport) {
  const auto report = reportTableOf(golden("points/two-points"));
  ASSERT_TRUE(report);
  EXPECT_THAT(report->headings, testing::ElementsAre("Number", "Easting", "Northing", "Elevation", "Name", "Raw descr.",
                                                     "Full descr.", "Alignment", "Station", "Offset"));
  ASSERT_EQ(report->table.rowCount, 2U);
  EXPECT_EQ(report->table.cell(0, 0), Value(17.0));
  EXPECT_EQ(report->table.cell(0, 8), Value(1234.5));
  EXPECT_EQ(report->table.cell(0, 9), Value(-2.5));
  EXPECT_EQ(report->table.cell(1, 4), Value());
  EXPECT_EQ(report->table.cell(1, 6), Value(std::string("top of bank")));
  EXPECT_EQ(shown(*report, 0, 8), "1+234.500");
  EXPECT_EQ(shown(*report, 0, 0), "17");
}

TEST(ReportTable, KeepsTheNumbersAroundTextsThatOverflow) {
  const auto report = reportTableOf(golden("points/texts-that-overflow"));
  ASSERT_TRUE(report);
  ASSERT_EQ(report->table.rowCount, 2U);
  EXPECT_EQ(report->table.cell(0, 0), Value(2147483647.0));
  EXPECT_EQ(report->table.cell(0, 1), Value(1234567890.125));
  EXPECT_EQ(shown(*report, 1, 0), "17");
  EXPECT_EQ(shown(*report, 1, 9), "-2.500");
  EXPECT_EQ(shown(*report, 1, 8), "1+234.500");
}

TEST(ReportTable, HasWhatStandsBetweenTheBarsOfTheGlsReport) {
  const auto report = reportTableOf(golden("gls/compound-clothoids"));
  ASSERT_TRUE(report);
  ASSERT_EQ(report->headings.size(), 20U);
  EXPECT_EQ(report->headings[0], "Point");
  EXPECT_EQ(report->headings[4], "Vertical curve x [m]");
  EXPECT_EQ(report->headings[6], "Elevation [m] Tangent");
  EXPECT_EQ(report->headings[19], "Angle [gon]");
  EXPECT_EQ(report->table.cell(0, 0), Value(std::string("SL1")));
  EXPECT_EQ(report->table.cell(0, 1), Value(25.0));
  EXPECT_EQ(report->table.cell(0, 6), Value(300.5));
  EXPECT_EQ(report->table.cell(0, 8), Value(std::string("n/a")));
  EXPECT_EQ(report->table.cell(1, 1), Value()) << "a row with a distance";
  EXPECT_EQ(report->table.cell(1, 2), Value(25.0));
  EXPECT_EQ(shown(*report, 1, 18), "50.00");
}

TEST(ReportTable, HasARowForEachPointOfTheProjection) {
  const auto report = reportTableOf(golden("projection/sl1"));
  ASSERT_TRUE(report);
  EXPECT_TRUE(report->headings.empty());
  ASSERT_GE(report->table.rowCount, 10U);
  EXPECT_EQ(report->table.cell(0, 0), Value(std::string("SL1")));
  EXPECT_EQ(report->table.cell(0, 1), Value(120.0));
  EXPECT_EQ(report->table.cell(0, 2), Value(-5.0));
  EXPECT_EQ(report->table.cell(0, 3), Value(100.0));
  EXPECT_EQ(report->table.cell(5, 0), Value(std::string("SL2")));
  EXPECT_EQ(report->table.cell(5, 1), Value(1234.5));
}

TEST(ReportTable, ReadsEveryGoldenReportWithoutLosingALine) {
  std::size_t read = 0;
  for (const char* const kind : {"points", "gls", "projection"})
    for (const fs::directory_entry& entry :
         fs::directory_iterator(test::inSource(std::string("/tests/golden/") + kind))) {
      const std::string name = std::string(kind) + "/" + entry.path().filename().string();
      if (!fs::exists(entry.path() / "expected.txt")) continue;
      const std::string text = golden(name);
      const auto report = reportTableOf(text);
      if (!report) continue;
      ++read;
      SCOPED_TRACE(name);
      // Each number of the report stands in the table: what is cut wrong would lose some.
      for (std::size_t row = 0; row < report->table.rowCount; ++row)
        for (std::size_t column = 0; column < report->table.columns.size(); ++column) {
          std::string cell = shown(*report, row, column);
          // Of a column with several counts of decimals all have the most.
          if (report->table.columns[column].form == Form::Factor) {
            cell.erase(cell.find_last_not_of('0') + 1);
            if (cell.ends_with('.')) cell.pop_back();
          }
          const bool isWhole = report->table.columns[column].form == Form::Text || text.find(cell) != std::string::npos;
          EXPECT_TRUE(isWhole) << cell;
        }
    }
  EXPECT_GE(read, 30U);
}

TEST(ReportTable, IsNoneOfAnythingElse) {
  for (const char* const text :
       {"", "\n", "road", "*****\n* Points\n", "*****\n*****\n", "*****\n*****\n\nhead\nno numbers\n",
        "*****\n*****\n\n/---\\\n|\n|\n|\n", "*****\n*****\n\n/---\\\n|  |\n|--|\n|  |\n+\n"})
    EXPECT_FALSE(reportTableOf(text)) << text;
}

}  // namespace
}  // namespace lvx::properties
