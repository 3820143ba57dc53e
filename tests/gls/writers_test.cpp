#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "doubles/recording_excel.h"
#include "framework/exceptions.h"
#include "gls/gls_ascii.h"
#include "gls/gls_excel.h"
#include "gls/gls_html.h"
#include "platform/utf8.h"
#include "support/golden.h"

namespace lvx::gls {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

/// Lines of the head of every text file, and of the table's head below it.
constexpr std::size_t kHeaderLines = 9;
constexpr std::size_t kHeadLines = 5;

class GlsWriters : public testing::Test {
 protected:
  GlsWriters() { host_.useMessages("en"); }

  /// Adds a station row; between two of them a distance row.
  tglsRow& station(const CString& name, double at) {
    if (!report_.rows.isEmpty()) {
      auto* distance = new tglsRow;
      distance->distance = at - report_.rows[report_.rows.size() - 1]->station;
      report_.rows.add(distance);
    }
    auto* row = new tglsRow;
    row->name = name;
    row->station = at;
    row->curveX = kOutsideCurves;
    report_.rows.add(row);
    return *row;
  }
  tglsRow& row(ArrayIndex index) { return *report_.rows[index]; }

  [[nodiscard]] CString path(const CString& name) { return host_.folder() + name; }
  [[nodiscard]] std::string written(const CString& name) { return test::readBytes(platform::toUtf8(path(name))); }
  [[nodiscard]] std::string page() {
    EXPECT_TRUE(writeGlsHtml(path(L"r.html"), L"", report_));
    return written(L"r.html");
  }
  /// The text file's lines without their line ends.
  [[nodiscard]] std::vector<std::string> lines() {
    writeGlsAscii(path(L"r.txt"), L"", report_);
    const std::string text = written(L"r.txt");
    std::vector<std::string> all;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = text.find("\r\n", at);
      if (end == std::string::npos) {
        ADD_FAILURE() << "the last line has no end";
        break;
      }
      all.push_back(text.substr(at, end - at));
      at = end + 2;
    }
    return all;
  }
  /// The text line of a row, and the rule under it.
  [[nodiscard]] std::string textLine(std::size_t row) { return lines().at(kHeaderLines + kHeadLines + 2 * row); }
  [[nodiscard]] std::string ruleLine(std::size_t row) { return lines().at(kHeaderLines + kHeadLines + 2 * row + 1); }

  std::shared_ptr<test::ExcelRecord> recordSheets() {
    auto record = std::make_shared<test::ExcelRecord>();
    host_.setAutomationFactory(test::recordedBy(record));
    return record;
  }
  std::shared_ptr<test::ExcelRecord> sheet() {
    auto record = recordSheets();
    EXPECT_TRUE(writeGlsExcel(path(L"r.xls"), L"", report_));
    return record;
  }
  [[nodiscard]] static std::size_t count(const std::string& text, const std::string& what) {
    std::size_t found = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++found;
    return found;
  }
  /// Places of the bars of a text line, or of bars and joints of a rule.
  [[nodiscard]] static std::vector<std::size_t> bars(const std::string& line, const std::string& letters) {
    std::vector<std::size_t> places;
    for (std::size_t i = line.find_first_of(letters); i != std::string::npos; i = line.find_first_of(letters, i + 1))
      places.push_back(i);
    return places;
  }

  test::FakeHost host_{{.fixedMoment = 0}};
  tglsReport report_;
};

// ---------------------------------------------------------------- all forms

TEST_F(GlsWriters, ReturnQuietlyWhereTheirFileCannotBeOpened) {
  station(L"A", 0);
  EXPECT_FALSE(writeGlsAscii(path(L"no such folder/r.txt"), L"", report_));
  EXPECT_FALSE(writeGlsHtml(path(L"no such folder/r.html"), L"", report_));
  EXPECT_FALSE(std::filesystem::exists(platform::toUtf8(path(L"no such folder"))));
  EXPECT_THAT(host_.users().boxes, IsEmpty());
  EXPECT_THAT(host_.run().console, IsEmpty());
}

TEST_F(GlsWriters, ReplaceWhatStoodInTheirFile) {
  const std::vector<std::pair<CString, std::function<void(const CString&)>>> writers{
      {L"r.txt", [&](const CString& name) { writeGlsAscii(name, L"", report_); }},
      {L"r.html", [&](const CString& name) { writeGlsHtml(name, L"", report_); }},
  };
  for (const auto& [name, write] : writers) {
    write(path(name));
    const std::string once = written(name);
    std::filesystem::resize_file(platform::toUtf8(path(name)), 100000);
    write(path(name));
    EXPECT_TRUE(test::sameBytes(written(name), once));
  }
}

TEST_F(GlsWriters, ShowTheMarkOfAMissingCorridorByTheLeftCrossFallAlone) {
  struct Row {
    double crossFall;
    bool marked;
  };
  const Row rows[] = {{-1000.0, true},        {-1000.0000009, true}, {-999.9999991, true},
                      {-1000.0000011, false}, {-999.9999989, false}, {-2.5, false}};
  for (const Row& wanted : rows) {
    tglsReport report;
    auto* row = new tglsRow;
    row->crossFallLeft = wanted.crossFall;
    row->widthRight = 3.25;
    report.rows.add(row);
    writeGlsAscii(path(L"r.txt"), L"", report);
    writeGlsHtml(path(L"r.html"), L"", report);
    const auto record = recordSheets();
    EXPECT_TRUE(writeGlsExcel(path(L"r.xls"), L"", report));
    EXPECT_EQ(count(written(L"r.txt"), "n/a|"), wanted.marked ? 8U : 0U) << wanted.crossFall;
    EXPECT_EQ(count(written(L"r.html"), "<td align=\"right\">n/a</td>"), wanted.marked ? 8U : 0U) << wanted.crossFall;
    EXPECT_EQ(record->texts.at(L"L12"), wanted.marked ? L"n/a" : L"3.250") << wanted.crossFall;
  }
}

TEST_F(GlsWriters, ShowValuesThatAreNoNumbersWithoutHarm) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  tglsRow& row = station(L"odd", kNaN);
  row.curveX = kNaN;
  row.elevation = 1e300;
  row.crossFallLeft = kInfinity;
  row.horType = 1;
  row.horParameter = -kInfinity;
  EXPECT_THAT(textLine(0), HasSubstr("|    nan|   0.00|     0.000|1000000000|   inf|"));
  EXPECT_THAT(textLine(0), HasSubstr("|  Arc   | -inf | 0.00  | 0.000 |"));
  EXPECT_THAT(page(), HasSubstr("<td align=\"right\">inf</td>"));
  EXPECT_EQ(sheet()->texts.at(L"I12"), L"inf");
}

// ---------------------------------------------------------------- text

TEST_F(GlsWriters, TextHasTheHeadAloneForAnEmptyReport) { EXPECT_THAT(lines(), SizeIs(kHeaderLines + kHeadLines)); }

TEST_F(GlsWriters, TextWidensTheNamesForTheWholeTable) {
  station(L"a name of twenty six letters", 0);
  station(L"b", 10);
  const std::vector<std::string> all = lines();
  ASSERT_THAT(all, SizeIs(kHeaderLines + kHeadLines + 6));
  for (std::size_t i = kHeaderLines; i < all.size(); ++i) EXPECT_EQ(all[i].size(), all[kHeaderLines].size()) << all[i];
  EXPECT_THAT(all[kHeaderLines + kHeadLines], StartsWith("|a name of twenty six letters|"));
}

TEST_F(GlsWriters, TextKeepsItsBarsInLineWhereNothingIsTooLong) {
  tglsRow& first = station(L"BC1", 0);
  first.notes = L"Rise 3.25%";
  first.crossFallLeft = -2.5;
  first.horType = 1;
  first.horParameter = 80;
  first.horLength = 75;
  station(L"PVI1, SL2", 50);
  row(1).notes = L"Length 250.00 m";
  station(L"", 100);
  report_.verBreakRows.add(2);
  report_.horBreakRows.add(2);
  const std::vector<std::string> all = lines();
  const std::vector<std::size_t> wanted = bars(textLine(0), "|");
  EXPECT_THAT(wanted, SizeIs(21));
  for (std::size_t r = 0; r < 5; ++r) {
    SCOPED_TRACE(r);
    EXPECT_EQ(textLine(r).size(), all[kHeaderLines].size());
    EXPECT_EQ(bars(textLine(r), "|"), wanted);
    if (r < 4) {
      EXPECT_EQ(bars(ruleLine(r), "|+"), wanted);
    }
  }
}

TEST_F(GlsWriters, TextRulesNotesUnderIntersectionsAndElementsUnderTheirEndsOnly) {
  for (int i = 0; i < 5; ++i) station(L"r", 10.0 * i);
  report_.verBreakRows.add(2);
  report_.horBreakRows.add(4);
  report_.verBreakRows.add(6);
  report_.horBreakRows.add(6);
  struct Rule {
    bool notes;
    bool elements;
  };
  const Rule wanted[] = {{false, false}, {false, false}, {true, false}, {false, false},
                         {false, true},  {false, false}, {true, true},  {false, false}};
  for (std::size_t r = 0; r < std::size(wanted); ++r) {
    SCOPED_TRACE(r);
    const std::string rule = ruleLine(r);
    EXPECT_THAT(rule, StartsWith(wanted[r].notes ? "|------+-----------+---------+----------+-------+"
                                                 : "|------+-----------+---------|          |-------+"));
    EXPECT_THAT(rule, testing::EndsWith(wanted[r].elements ? "-+--------+------+-------+-------|"
                                                           : "-|        |      |       |       |"));
  }
  EXPECT_THAT(ruleLine(8), StartsWith("\\------------------"));
}

TEST_F(GlsWriters, TextClosesTheTableUnderALastRowThatIsABreakRowToo) {
  station(L"a", 0);
  report_.verBreakRows.add(0);
  report_.horBreakRows.add(0);
  EXPECT_THAT(ruleLine(0), StartsWith("\\------------------"));
}

TEST_F(GlsWriters, TextCutsNumbersAndLeavesElementsWhole) {
  tglsRow& row = station(L"A", 0);
  row.elevation = 12345678.9;
  row.crossFallLeft = -100.25;
  row.widthLeft = 12345.678;
  row.horType = 2;
  row.horParameter = 1000.0;
  row.horLength = 12345678.0;
  EXPECT_THAT(textLine(0), HasSubstr("|12345678.9|-100.2|   0.0|12345.|  0.00|"));
  EXPECT_THAT(textLine(0), testing::EndsWith("|Clothoid|1000.000|12345678.00| 0.000 |"));
}

TEST_F(GlsWriters, TextShowsOrdinatesOnCurvesAndBlanksOutsideByTheExactMark) {
  station(L"A", 0).curveX = 0.0;
  EXPECT_THAT(textLine(0), HasSubstr("|   0.00|   0.00|     0.000|"));
  row(0).curveX = -1.0;
  EXPECT_THAT(textLine(0), HasSubstr("|       |       |     0.000|"));
  row(0).curveX = -1.0000005;
  EXPECT_THAT(textLine(0), HasSubstr("|  -1.00|   0.00|     0.000|"));
}

TEST_F(GlsWriters, TextMovesItsBarsWhereAPercentSignGoesAndNotWhereItStays) {
  station(L"A", 0).notes = L"Rise 3.25% ,L 9.00 m";
  station(L"B", 10).notes = L"Rise 3.25%";
  const std::size_t width = lines()[kHeaderLines].size();
  EXPECT_THAT(textLine(0), HasSubstr("|Rise 3.25,L 9.00 m|"));
  EXPECT_EQ(textLine(0).size(), width - 2);
  EXPECT_THAT(textLine(2), HasSubstr("|     Rise 3.25%     |"));
  EXPECT_EQ(textLine(2).size(), width);
}

TEST_F(GlsWriters, TextEndsALineAtALetterThatTheReportHasNoByteForAndGoesOnWithTheNext) {
  station(L"Łódź", 0);
  station(L"B", 10);
  writeGlsAscii(path(L"r.txt"), L"", report_);
  EXPECT_THAT(written(L"r.txt"), HasSubstr("\r\n| |------+"));
  EXPECT_THAT(written(L"r.txt"), HasSubstr("|  B   |  0+010.000|"));
}

// ---------------------------------------------------------------- workbook

TEST_F(GlsWriters, WorkbookWritesOnDistanceRowsDistanceNotesAndElementAlone) {
  station(L"A", 0);
  station(L"B", 12.5);
  row(1).horType = 0;
  row(1).horParameter = 99;
  row(1).horLength = 80;
  std::vector<CString> cells;
  for (const auto& write : sheet()->writes)
    if (write.cell.size() == 3 && write.cell.substr(1) == L"13") cells.push_back(write.cell);
  EXPECT_EQ(cells, (std::vector<CString>{L"D13", L"Q13", L"S13", L"C13"}));
}

TEST_F(GlsWriters, WorkbookLeavesTheOrdinatesOutNearTheMark) {
  station(L"A", 0).curveX = -1.0000005;
  EXPECT_FALSE(sheet()->texts.contains(L"E12"));
  EXPECT_TRUE(sheet()->texts.contains(L"G12"));
  row(0).curveX = -1.000001;
  EXPECT_EQ(sheet()->texts.at(L"E12"), L"-1.000");
}

TEST_F(GlsWriters, WorkbookRepeatsTheLeftEdgeUnderTheRightOnesHead) {
  tglsRow& row = station(L"A", 0);
  row.crossFallLeft = 0;
  row.edgeElevationLeft = 101.5;
  row.edgeElevationRight = 102.5;
  EXPECT_EQ(sheet()->texts.at(L"O12"), L"101.500");
  EXPECT_EQ(sheet()->texts.at(L"P12"), L"101.500");
  EXPECT_THAT(textLine(0), HasSubstr("| 101.500| 102.500|"));
  EXPECT_THAT(page(), HasSubstr("<td align=\"right\">102.500</td>"));
}

TEST_F(GlsWriters, WorkbookTakesNotesAsTheyAre) {
  station(L"50%", 0).notes = L"Rise 3.25% ,Fall 2.00%";
  EXPECT_EQ(sheet()->texts.at(L"D12"), L"Rise 3.25% ,Fall 2.00%");
  EXPECT_EQ(sheet()->texts.at(L"A12"), L"50%");
}

TEST_F(GlsWriters, WorkbookTellsTheUserThatTheSpreadsheetProgramCannotBeStarted) {
  station(L"A", 0);
  EXPECT_FALSE(writeGlsExcel(path(L"r.xls"), L"", report_));
  ASSERT_THAT(host_.users().boxes, SizeIs(1));
  EXPECT_EQ(host_.users().boxes[0].text, L"Couldn't start Excel and get Application object.");
  EXPECT_FALSE(std::filesystem::exists(platform::toUtf8(path(L"r.xls"))));
}

TEST_F(GlsWriters, WorkbookLetsAFailureOfTheSpreadsheetProgramEndTheCommand) {
  station(L"A", 0).horType = 3;
  const std::size_t writes = sheet()->writes.size();
  ASSERT_EQ(writes, 7U + 8U + 20U + 5U + 12U);
  for (std::size_t place = 0; place < writes; ++place) {
    const auto record = recordSheets();
    record->failAtWrite = place;
    EXPECT_THROW(writeGlsExcel(path(L"r.xls"), L"", report_), framework::AutomationException);
    EXPECT_EQ(record->givenUp, 1);
    EXPECT_EQ(record->finishedAs, std::nullopt);
  }
  recordSheets()->failFinish = true;
  EXPECT_THROW(writeGlsExcel(path(L"r.xls"), L"", report_), framework::AutomationException);
}

// ---------------------------------------------------------------- page

TEST_F(GlsWriters, PageHasOneTallCellForAllRowsWhereNothingBreaks) {
  station(L"A", 0);
  station(L"B", 10);
  EXPECT_EQ(count(page(), "<td align=\"center\"rowspan = \"3\">"), 5U);
  EXPECT_EQ(count(page(), "rowspan = \"3\">"), 5U);
}

TEST_F(GlsWriters, PageHasTallCellsThatFillEveryRowExactly) {
  for (int i = 0; i < 6; ++i) station(L"r", 10.0 * i);
  for (const std::int32_t last : {0, 4, 8}) report_.verBreakRows.add(last);
  for (const std::int32_t last : {2, 9}) report_.horBreakRows.add(last);
  const std::string text = page();
  // Notes: rows 0 to 0, 1 to 4, 5 to 8, 9 to 10. Elements: 0 to 2, 3 to 9, 10 to 10, four cells each.
  for (const auto& [span, cells] :
       std::vector<std::pair<std::string, std::size_t>>{{"1", 1 + 4}, {"4", 2}, {"2", 1}, {"3", 4}, {"7", 4}})
    EXPECT_EQ(count(text, "<td align=\"center\"rowspan = \"" + span + "\">"), cells) << span;
}

TEST_F(GlsWriters, PageOpensOneRowForEachRowAndClosesOneInAll) {
  station(L"A", 0);
  station(L"B", 10);
  const std::string text = page();
  const std::string table = text.substr(text.find("RULES"));
  EXPECT_EQ(count(table, "<tr>"), 2U + 3U);
  EXPECT_EQ(count(table, "</tr>"), 1U);
  EXPECT_THAT(table, HasSubstr("</th></tr><tr><td align=\"center\">A</td>"));
}

TEST_F(GlsWriters, PagePutsTheElementOnItsOwnLineOfTheTallCell) {
  station(L"A", 0);
  station(L"B", 10);
  row(1).horType = 1;
  row(1).horParameter = 300;
  row(1).horLength = 80;
  row(1).horAngle = 16.977;
  const std::string cell = "<td align=\"center\"rowspan = \"3\">";
  EXPECT_THAT(page(), HasSubstr(cell + "<br />Arc<br /><br /></td>" + cell + "<br />300.000<br /><br /></td>" + cell +
                                "<br />80.00<br /><br /></td>" + cell + "<br />16.977<br /><br /></td>"));
}

TEST_F(GlsWriters, PageKeepsThePercentSignAtTheEndOfNotesAndLosesOneInside) {
  station(L"A", 0).notes = L"Rise 3.25% ,Fall 2.00%";
  station(L"B", 10).notes = L"%";
  EXPECT_THAT(page(), HasSubstr(">Rise 3.25,Fall 2.00&#37<br /><br />&#37</td>"));
}

TEST_F(GlsWriters, PageHasAnEmptyCentredCellForARowWithoutAName) {
  station(L"", 0);
  EXPECT_THAT(page(), HasSubstr("<tr><td align=\"center\"></td><td align=\"right\">0+000.000</td> <td></td>"));
}

TEST_F(GlsWriters, PageEndsAtALetterThatTheReportHasNoByteFor) {
  station(L"Łódź", 0);
  EXPECT_THAT(page(), testing::EndsWith("</tr><tr><td align=\"center\">"));
}

TEST_F(GlsWriters, PageRefusesABreakBeyondItsRows) {
  station(L"A", 0);
  report_.verBreakRows.add(5);
  EXPECT_THROW(writeGlsHtml(path(L"r.html"), L"", report_), framework::InvalidArgumentException);
}

}  // namespace
}  // namespace lvx::gls
