#include "workbook/workbook_sheet.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "framework/exceptions.h"
#include "platform/posix/posix_platform.h"
#include "support/workbook_reader.h"

namespace {

namespace fs = std::filesystem;
using lvx::framework::AutomationException;
using lvx::test::readWorkbook;
using lvx::test::WorkbookCell;
using lvx::workbook::WorkbookSheet;

class WorkbookSheetTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = fs::temp_directory_path() / "lvx-workbook-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    ASSERT_TRUE(sheet_.start());
  }
  void TearDown() override { fs::remove_all(folder_); }

  [[nodiscard]] std::wstring wide(const std::string& name) const {
    return lvx::platform::fromUtf8((folder_ / name).string());
  }
  [[nodiscard]] std::map<std::string, WorkbookCell> finished() {
    sheet_.finish(wide("road.xls"));
    return readWorkbook(folder_ / "road.xls");
  }
  [[nodiscard]] std::size_t filesInFolder() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }

  fs::path folder_;
  WorkbookSheet sheet_;
};

const WorkbookCell kNumber{"-12.5", true, "0.000"};

TEST_F(WorkbookSheetTest, KeepsTextsAsStringsAndNumbersAsNumbers) {
  sheet_.writeCell(L"A1", L"title");
  sheet_.writeCell(L"B1", L"1234.5");
  sheet_.writeNumberCell(L"C1", L"-12.500");
  const auto cells = finished();
  ASSERT_EQ(cells.size(), 3U);
  EXPECT_EQ(cells.at("A1"), (WorkbookCell{"title"}));
  EXPECT_EQ(cells.at("B1"), (WorkbookCell{"1234.5"}));
  EXPECT_EQ(cells.at("C1"), kNumber);
}

TEST_F(WorkbookSheetTest, NeverMakesAFormula) {
  const std::wstring texts[] = {
      L"=1+1", L"{=A1}", L"+1", L"-1", L"@x", L"'quoted", L"*******************", L"http://x.example", L"#N/A"};
  int row = 0;
  for (const auto& text : texts) sheet_.writeCell(L"A" + std::to_wstring(++row), text);
  const auto cells = finished();
  ASSERT_EQ(cells.size(), std::size(texts));
  row = 0;
  for (const auto& text : texts)
    EXPECT_EQ(cells.at("A" + std::to_string(++row)).text, std::string(text.begin(), text.end()));
}

TEST_F(WorkbookSheetTest, KeepsControlCharactersMarkupAndBlanks) {
  sheet_.writeCell(L"A3", L"* Vantor Lorvix 2021\r\n");
  sheet_.writeCell(L"A4", L"  <a href=\"x\">&amp;</a>  ");
  sheet_.writeCell(L"A5", L"\x01\x1B\t\x7F");
  sheet_.writeCell(L"A6", L"_x0041_ _x005F_x0041_");
  sheet_.writeCell(L"A7", L"\u00C4\u20AC\U0001F6E3");
  const auto cells = finished();
  EXPECT_EQ(cells.at("A3").text, "* Vantor Lorvix 2021\r\n");
  EXPECT_EQ(cells.at("A4").text, "  <a href=\"x\">&amp;</a>  ");
  EXPECT_EQ(cells.at("A5").text, "\x01\x1B\t\x7F");
  EXPECT_EQ(cells.at("A6").text, "_x0041_ _x005F_x0041_");
  EXPECT_EQ(cells.at("A7").text, "\xC3\x84\xE2\x82\xAC\xF0\x9F\x9B\xA3");
}

TEST_F(WorkbookSheetTest, SurvivesTextsThatNoFileCanHold) {
  sheet_.writeCell(L"A1", std::wstring{L'a', L'\xDC80', L'\xD800', L'\xFFFF'});
  sheet_.writeCell(L"A2", std::wstring(100000, L'\r'));
  sheet_.writeCell(L"A3", std::wstring(100000, L'\xFFFE'));
  const auto cells = finished();
  EXPECT_EQ(cells.at("A1").text, "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBF");
  EXPECT_EQ(cells.at("A2").text, std::string(32767, '\r'));
  EXPECT_EQ(cells.at("A3").text.size(), 32767U / 7 * 3);
}

TEST_F(WorkbookSheetTest, PutsATextThatIsNoNumberIntoANumberCellAsAString) {
  int row = 0;
  for (const wchar_t* text : {L"nan", L"-inf", L"---"}) sheet_.writeNumberCell(L"B" + std::to_wstring(++row), text);
  const auto cells = finished();
  EXPECT_EQ(cells.at("B1"), (WorkbookCell{"nan", false, "0.000"}));
  EXPECT_EQ(cells.at("B2"), (WorkbookCell{"-inf", false, "0.000"}));
  EXPECT_EQ(cells.at("B3"), (WorkbookCell{"---", false, "0.000"}));
}

TEST_F(WorkbookSheetTest, KeepsEveryDigitOfACoordinate) {
  sheet_.writeNumberCell(L"A1", L"480012345.678");
  sheet_.writeNumberCell(L"A2", L"-0.000");
  sheet_.writeNumberCell(L"A3", L"0.001");
  const auto cells = finished();
  EXPECT_EQ(cells.at("A1").text, "480012345.678");
  EXPECT_EQ(cells.at("A2").text, "0");
  EXPECT_EQ(cells.at("A3").text, "0.001");
}

TEST_F(WorkbookSheetTest, LeavesEmptyTextsOutAndLetsThemEmptyACell) {
  sheet_.writeCell(L"A1", L"");
  sheet_.writeCell(L"B1", L"gone");
  sheet_.writeCell(L"B1", L"");
  sheet_.writeCell(L"C1", L"stays");
  EXPECT_EQ(finished(), (std::map<std::string, WorkbookCell>{{"C1", {"stays"}}}));
}

TEST_F(WorkbookSheetTest, TakesTheLastWordOnACellAndKeepsItsFormat) {
  sheet_.writeNumberCell(L"A1", L"-12.500");
  sheet_.writeCell(L"A1", L"text");
  sheet_.writeCell(L"B1", L"text");
  sheet_.writeNumberCell(L"B1", L"-12.500");
  const auto cells = finished();
  EXPECT_EQ(cells.at("A1"), (WorkbookCell{"text", false, "0.000"}));
  EXPECT_EQ(cells.at("B1"), kNumber);
}

TEST_F(WorkbookSheetTest, TakesColumnsOfARowInAnyOrder) {
  for (const wchar_t* name : {L"D12", L"Q12", L"A12", L"AA12", L"B12"}) sheet_.writeCell(name, name);
  const auto cells = finished();
  ASSERT_EQ(cells.size(), 5U);
  for (const auto& [name, cell] : cells) EXPECT_EQ(cell.text, name);
}

TEST_F(WorkbookSheetTest, TakesCellsOfEarlierRows) {
  sheet_.writeCell(L"A10", L"ten");
  sheet_.writeNumberCell(L"B10", L"1.000");
  sheet_.writeCell(L"A20", L"twenty");
  sheet_.writeCell(L"C10", L"late");
  sheet_.writeCell(L"B10", L"later");
  sheet_.writeCell(L"A5", L"passed over");
  sheet_.writeCell(L"A15", L"between");
  sheet_.writeCell(L"A10", L"");
  sheet_.writeCell(L"B20", L"still here");
  const std::map<std::string, WorkbookCell> expected{{"A5", {"passed over"}}, {"B10", {"later", false, "0.000"}},
                                                     {"C10", {"late"}},       {"A15", {"between"}},
                                                     {"A20", {"twenty"}},     {"B20", {"still here"}}};
  EXPECT_EQ(finished(), expected);
}

TEST_F(WorkbookSheetTest, AgreesWithAPlainMapOnRandomWrites) {
  const unsigned seed = 20401;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::map<std::string, WorkbookCell> expected;
  for (int i = 0; i < 20000; ++i) {
    // Mostly forward with excursions back, long texts so that the rows go to the temporary file.
    const unsigned row = 1 + (random() % 10 == 0 ? random() % 2000 : static_cast<unsigned>(i) / 10);
    std::string name(1, static_cast<char>('A' + random() % 12));
    name += std::to_string(row);
    const std::wstring wideName(name.begin(), name.end());
    auto& cell = expected[name];
    if (random() % 2 == 0) {
      const auto value = std::to_string(random() % 1000);
      sheet_.writeNumberCell(wideName, std::wstring(value.begin(), value.end()) + L".000");
      cell = {value, true, "0.000"};
    } else {
      const std::string text(random() % 300, static_cast<char>('a' + random() % 26));
      sheet_.writeCell(wideName, std::wstring(text.begin(), text.end()));
      cell.text = text;
      cell.number = false;
    }
  }
  std::erase_if(expected,
                [](const auto& entry) { return entry.second.text.empty() && entry.second.format == "General"; });
  EXPECT_EQ(finished(), expected);
}

TEST_F(WorkbookSheetTest, SavesAnEmptySheet) { EXPECT_TRUE(finished().empty()); }

TEST_F(WorkbookSheetTest, HoldsALastRowAndNoFurther) {
  sheet_.writeCell(L"XFD1048576", L"corner");
  EXPECT_THROW(sheet_.writeCell(L"A1048577", L"beyond"), AutomationException);
  EXPECT_EQ(finished().at("XFD1048576").text, "corner");
}

TEST_F(WorkbookSheetTest, RefusesANameThatIsNoCell) {
  EXPECT_THROW(sheet_.writeCell(L"A-1", L"x"), AutomationException);
  EXPECT_THROW(sheet_.writeNumberCell(L"", L"1.000"), AutomationException);
}

TEST_F(WorkbookSheetTest, TakesNothingBeforeStartOrAfterFinish) {
  WorkbookSheet idle;
  EXPECT_THROW(idle.writeCell(L"A1", L"x"), AutomationException);
  EXPECT_THROW(idle.finish(wide("x.xls")), AutomationException);
  (void)finished();
  EXPECT_THROW(sheet_.writeNumberCell(L"A1", L"1.000"), AutomationException);
  EXPECT_THROW(sheet_.finish(wide("road.xls")), AutomationException);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(WorkbookSheetTest, StartsAnewAfterItsEnd) {
  sheet_.writeCell(L"A1", L"first");
  (void)finished();
  ASSERT_TRUE(sheet_.start());
  sheet_.writeCell(L"B2", L"second");
  EXPECT_EQ(finished(), (std::map<std::string, WorkbookCell>{{"B2", {"second"}}}));
}

TEST_F(WorkbookSheetTest, LeavesNothingWhenGivenUp) {
  {
    WorkbookSheet unfinished;
    ASSERT_TRUE(unfinished.start());
    unfinished.writeCell(L"A1", L"x");
  }
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(WorkbookSheetTest, FailsCleanlyWhereItsPlaceIsTakenOrMissing) {
  fs::create_directories(folder_ / "road.xls" / "inside");
  sheet_.writeCell(L"A1", L"x");
  EXPECT_THROW(sheet_.finish(wide("road.xls")), AutomationException);
  EXPECT_EQ(filesInFolder(), 1U);
  ASSERT_TRUE(sheet_.start());
  EXPECT_THROW(sheet_.finish(wide("nowhere/road.xls")), AutomationException);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(WorkbookSheetTest, TakesAnOddFileName) {
  sheet_.writeCell(L"A1", L"x");
  sheet_.finish(
      wide("stra\xC3\x9F"
           "e 100% \"q\".xls"));
  EXPECT_EQ(readWorkbook(folder_ / "stra\xC3\x9F"
                                   "e 100% \"q\".xls")
                .size(),
            1U);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(WorkbookSheetTest, GivesTheSameBytesForTheSameMoment) {
  ::setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
  std::string bytes[2];
  for (auto& copy : bytes) {
    ASSERT_TRUE(sheet_.start());
    sheet_.writeCell(L"A1", L"x");
    sheet_.finish(wide("road.xls"));
    std::ifstream file(folder_ / "road.xls", std::ios::binary);
    copy.assign(std::istreambuf_iterator<char>(file), {});
  }
  ::unsetenv("SOURCE_DATE_EPOCH");
  EXPECT_EQ(bytes[0], bytes[1]);
  EXPECT_NE(lvx::test::readWorkbookParts(folder_ / "road.xls").at("docProps/core.xml").find("2023-11-14T22:13:20Z"),
            std::string::npos);
}

/// Files can't grow beyond `bytes` while this stands, as on a disk that fills up.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    before_ = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &limit_);
    rlimit small = limit_;
    small.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &small);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &limit_);
    std::signal(SIGXFSZ, before_);
  }

 private:
  rlimit limit_{};
  void (*before_)(int) = nullptr;
};

TEST_F(WorkbookSheetTest, LeavesTheOlderFileAndNothingElseWhenTheDiskFillsUp) {
  std::ofstream(folder_ / "road.xls") << "older";
  int failures = 0;
  // The rows take about 190,000 bytes: limits below, just around and above that size, the archive's own included.
  for (rlim_t limit = 8000; limit <= 240000; limit += 2900) {
    ASSERT_TRUE(sheet_.start());
    bool failed = false;
    {
      const FileSizeLimit full(limit);
      try {
        for (int row = 1; row <= 1500; ++row) {
          sheet_.writeCell(L"A" + std::to_wstring(row), L"a text of the row " + std::to_wstring(row));
          sheet_.writeNumberCell(L"B" + std::to_wstring(row), std::to_wstring(row * 7919 % 1000));
        }
        sheet_.finish(wide("road.xls"));
      } catch (const AutomationException&) {
        failed = true;
      }
    }
    ASSERT_EQ(filesInFolder(), 1U) << limit;
    if (failed) {
      ++failures;
      ASSERT_EQ(fs::file_size(folder_ / "road.xls"), 5U) << limit;
    } else {
      ASSERT_EQ(readWorkbook(folder_ / "road.xls").size(), 3000U) << limit;
      std::ofstream(folder_ / "road.xls") << "older";
    }
  }
  EXPECT_GT(failures, 20);
  EXPECT_LT(failures, 80);
}

TEST_F(WorkbookSheetTest, SaysWhenTheTemporaryFolderIsFull) {
  const FileSizeLimit full(500000);
  const std::wstring text(30000, L'x');
  EXPECT_THROW(
      {
        for (int row = 1; row <= 200; ++row) sheet_.writeCell(L"A" + std::to_wstring(row), text);
        sheet_.finish(wide("road.xls"));
      },
      AutomationException);
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(WorkbookSheetTest, HoldsAHundredThousandRowsInConstantMemory) {
  const auto peak = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
  };
  const auto before = peak();
  for (int row = 1; row <= 100000; ++row) {
    const auto number = std::to_wstring(row);
    sheet_.writeCell(L"A" + number, L"survey point " + number);
    for (const wchar_t column : {L'B', L'C', L'D'}) sheet_.writeNumberCell(column + number, number + L".125");
  }
  sheet_.finish(wide("road.xls"));
#ifndef __SANITIZE_ADDRESS__  // which keeps freed memory for a while
  EXPECT_LT(peak() - before, 40) << "MB more than before";
#else
  (void)before;
#endif
  const auto cells = readWorkbook(folder_ / "road.xls");
  ASSERT_EQ(cells.size(), 400000U);
  for (int row = 1; row <= 100000; ++row) {
    const auto number = std::to_string(row);
    ASSERT_EQ(cells.at("A" + number).text, "survey point " + number);
    for (const char column : {'B', 'C', 'D'}) ASSERT_EQ(cells.at(column + number).text, number + ".125");
  }
}

}  // namespace
