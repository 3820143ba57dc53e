// What the golden files don't show: columns one by one, failures, the parts of the page.
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "doubles/recording_excel.h"
#include "framework/exceptions.h"
#include "platform/utf8.h"
#include "points/points_ascii.h"
#include "points/points_columns.h"
#include "points/points_excel.h"
#include "points/points_html.h"
#include "support/golden.h"

namespace lvx::points {
namespace {

class PointsWriters : public testing::Test {
 protected:
  PointsWriters() : host_({.fixedMoment = 0}) { useCaptions({}); }

  /// Captions of one letter each, but for those given by their column from 1.
  void useCaptions(const std::map<int, std::string>& captions) {
    std::string bytes = "118 File\n119 Date\n120 Time\n201 Points\n";
    for (int column = 1; column <= 10; ++column) {
      const auto given = captions.find(column);
      bytes += std::to_string(209 + column) + " " + (given == captions.end() ? "x" : given->second) + "\n";
    }
    host_.useMessageBytes(bytes);
  }

  /// Good until the next one is added.
  tpoint& addRow() { return rows_.emplace_back(); }

  [[nodiscard]] PointList list() const {
    PointList list;
    for (const tpoint& row : rows_) list.add(row);
    return list;
  }

  /// The row of the text form's example.
  tpoint& addExample() {
    tpoint& row = addRow();
    row.number = 17;
    row.easting = 1000.5;
    row.northing = 2000.25;
    row.elevation = 312.1;
    row.name = L"A";
    row.description = L"BK";
    row.fullDescription = L"BK 1";
    row.alignmentName = L"Axis 1";
    row.station = 1234.5;
    row.offset = -2.5;
    return row;
  }

  /// Lines of the text form below its header, without their ends.
  std::vector<std::string> textLines() {
    const CString name = host_.folder() + L"report.txt";
    writePointsAscii(name, list());
    const std::string bytes = test::readBytes(platform::toUtf8(name));
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < bytes.size();) {
      const std::size_t end = bytes.find("\r\n", start);
      if (end == std::string::npos) {
        ADD_FAILURE() << "a line without its end: " << bytes.substr(start);
        break;
      }
      lines.push_back(bytes.substr(start, end - start));
      start = end + 2;
    }
    if (lines.size() < 9) return {};
    lines.erase(lines.begin(), lines.begin() + 9);
    return lines;
  }

  std::string page() {
    const CString name = host_.folder() + L"report.html";
    EXPECT_TRUE(writePointsHtml(name, list()));
    return test::readBytes(platform::toUtf8(name));
  }

  test::FakeHost host_;
  std::vector<tpoint> rows_;
};

TEST_F(PointsWriters, FillsTheTenColumnsFromTheRight) {
  addExample();
  const std::vector<std::string> lines = textLines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[1],
            "            17"
            "      1000.500"
            "      2000.250"
            "       312.100"
            "             A"
            "            BK"
            "          BK 1"
            "                Axis 1"
            "       1+234.500"
            "        -2.500");
  EXPECT_EQ(lines[1].size(), 150U);
  EXPECT_EQ(lines[0].size(), 150U);
}

TEST_F(PointsWriters, WidensAColumnFromTheThirteenthCharacterOfItsCaptionOn) {
  struct Row {
    int column;
    std::size_t captionLength;
    std::size_t width;
  };
  const std::vector<Row> table{{1, 12, 14}, {1, 13, 15}, {7, 12, 14}, {7, 20, 22},  {8, 12, 22}, {8, 13, 23},
                               {8, 40, 50}, {9, 12, 16}, {9, 13, 17}, {10, 12, 14}, {10, 13, 15}};
  addExample();
  for (const Row& entry : table) {
    SCOPED_TRACE("column " + std::to_string(entry.column) + ", " + std::to_string(entry.captionLength) + " characters");
    useCaptions({{entry.column, std::string(entry.captionLength, 'C')}});
    const std::vector<std::string> lines = textLines();
    ASSERT_EQ(lines.size(), 2U);
    std::size_t start = 0;
    for (int column = 1; column < entry.column; ++column)
      start += kPointColumns[static_cast<std::size_t>(column - 1)].leastWidth;
    EXPECT_EQ(lines[0].substr(start, entry.width),
              std::string(entry.width - entry.captionLength, ' ') + std::string(entry.captionLength, 'C'));
    const std::size_t total = 150 - kPointColumns[static_cast<std::size_t>(entry.column - 1)].leastWidth + entry.width;
    EXPECT_EQ(lines[0].size(), total);
    EXPECT_EQ(lines[1].size(), total) << "rows have the widths of their captions";
  }
}

TEST_F(PointsWriters, TakesAMissingCaptionForAShortOne) {
  host_.useMessageBytes("201 Points\n");
  const std::vector<std::string> lines = textLines();
  ASSERT_EQ(lines.size(), 1U) << "without rows the caption line alone follows the header";
  EXPECT_EQ(lines[0].substr(0, 14), "         *210*");
  EXPECT_EQ(lines[0].size(), 150U);
}

TEST_F(PointsWriters, PushesTheRestOfALineToTheRightWhereATextOverflows) {
  addExample().name = L"twenty characters ok";
  addExample();
  const std::vector<std::string> lines = textLines();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[1].substr(42, 34), "       312.100twenty characters ok");
  EXPECT_EQ(lines[1].size(), 156U);
  EXPECT_EQ(lines[2].size(), 150U) << "the lines of the other rows keep their places";
}

TEST_F(PointsWriters, PutsNoBlankBeforeATextThatFillsItsColumn) {
  addExample().description = L"14 characters!";
  EXPECT_EQ(textLines()[1].substr(56, 28), "             A14 characters!");
}

TEST_F(PointsWriters, LeavesAColumnOfBlanksForAnEmptyText) {
  addExample().description.clear();
  EXPECT_EQ(textLines()[1].substr(70, 14), std::string(14, ' '));
}

TEST_F(PointsWriters, StopALineOfTextAtALetterThatTheReportsCannotExpress) {
  addExample().description = L"\u0416";
  addExample();
  const CString name = host_.folder() + L"report.txt";
  writePointsAscii(name, list());
  const std::string bytes = test::readBytes(platform::toUtf8(name));
  // The line loses its rest and its end, so that the next one follows on it.
  EXPECT_NE(bytes.find("       312.100             A                         17      1000.500"), std::string::npos);
}

TEST_F(PointsWriters, LoseTheRestOfThePageBehindALetterThatTheReportsCannotExpress) {
  addExample();
  addExample().name = L"before\u0416after";
  addExample();
  const std::string bytes = page();
  EXPECT_TRUE(bytes.ends_with("<td>312.100</td> <td>before")) << bytes;
}

TEST_F(PointsWriters, KeepTheTableWhereTheHeaderHoldsSuchALetter) {
  addExample();
  const CString name = host_.folder() + L"\u0416.html";
  EXPECT_TRUE(writePointsHtml(name, list()));
  const std::string bytes = test::readBytes(platform::toUtf8(name));
  EXPECT_NE(bytes.find(static_cast<char>(host_.folder().back()) + std::string("<table border='1'")), std::string::npos)
      << "the header ends within the path, the table is a write of its own: " << bytes;
  EXPECT_TRUE(bytes.ends_with("</Body></HTML>"));
}

TEST_F(PointsWriters, MakeOneOddByteOfTheTableTag) {
  addExample();
  const std::string bytes = page();
  EXPECT_NE(bytes.find("<table border='1' width='50&#37' ellpadding='2'RULES = ALL id='table1'><b><tr><td>x</td>"),
            std::string::npos)
      << bytes;
}

TEST_F(PointsWriters, PutTheWholeTableOnOneLineOfThePage) {
  addExample();
  addExample().station = -1234.5;
  const std::string bytes = page();
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 3);
  EXPECT_TRUE(bytes.ends_with("<td>-1-234.500</td> <td>-2.500</td></tr></table>\n</br>\n</Body></HTML>"));
  EXPECT_EQ(bytes.find("<title"), std::string::npos);
  EXPECT_EQ(bytes.find("<head"), std::string::npos);
}

TEST_F(PointsWriters, GiveEmptyTextsEmptyCells) {
  tpoint& row = addRow();
  row.number = 5;
  EXPECT_NE(page().find("<tr><td>5</td> <td>0.000</td> <td>0.000</td> <td>0.000</td> <td></td> <td></td> <td></td> "
                        "<td></td> <td>0+000.000</td> <td>0.000</td></tr></table>"),
            std::string::npos);
}

TEST_F(PointsWriters, WriteTheFirstPointInRow11AndTheThirdInRow13) {
  for (int i = 0; i < 3; ++i) addExample().number = 100 + i;
  const auto record = std::make_shared<test::ExcelRecord>();
  host_.setAutomationFactory(test::recordedBy(record));
  EXPECT_TRUE(writePointsExcel(L"report.xls", list()));
  EXPECT_EQ(record->texts.at(L"A11"), L"100");
  EXPECT_EQ(record->texts.at(L"A13"), L"102");
  EXPECT_FALSE(record->texts.contains(L"A8"));
  EXPECT_FALSE(record->texts.contains(L"A9"));
  EXPECT_FALSE(record->texts.contains(L"A14"));
  EXPECT_EQ(record->finishedAs, L"report.xls");
}

TEST_F(PointsWriters, HandTextsToTheSheetAsTheyAre) {
  tpoint& row = addRow();
  row.name = L"=1+1";
  row.description = L"100 % c";
  const auto record = std::make_shared<test::ExcelRecord>();
  host_.setAutomationFactory(test::recordedBy(record));
  EXPECT_TRUE(writePointsExcel(L"report.xls", list()));
  EXPECT_EQ(record->texts.at(L"E11"), L"=1+1");
  EXPECT_EQ(record->texts.at(L"F11"), L"100 % c");
  EXPECT_EQ(record->texts.at(L"G11"), L"");
}

TEST_F(PointsWriters, TellThatTheSpreadsheetProgramIsMissing) {
  addExample();
  EXPECT_FALSE(writePointsExcel(L"report.xls", list()));
  ASSERT_EQ(host_.users().boxes.size(), 1U);
  EXPECT_EQ(host_.users().boxes[0].text, L"Couldn't start Excel and get Application object.");
}

TEST_F(PointsWriters, LetAFailureOfTheSpreadsheetProgramThrough) {
  addExample();
  const auto record = std::make_shared<test::ExcelRecord>();
  record->failAtWrite = 20;
  host_.setAutomationFactory(test::recordedBy(record));
  EXPECT_THROW(writePointsExcel(L"report.xls", list()), framework::AutomationException);
  EXPECT_EQ(record->givenUp, 1);
}

TEST_F(PointsWriters, WriteNothingAndSayNothingWhereAFileCannotBeOpened) {
  addExample();
  const CString name = host_.folder() + L"missing/report";
  EXPECT_FALSE(writePointsAscii(name + L".txt", list()));
  EXPECT_FALSE(writePointsHtml(name + L".html", list()));
  EXPECT_FALSE(std::filesystem::exists(platform::toUtf8(host_.folder()) + "missing"));
  EXPECT_TRUE(host_.users().boxes.empty());
}

}  // namespace
}  // namespace lvx::points
