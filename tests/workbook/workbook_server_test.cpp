#include "workbook/workbook_server.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "doubles/fake_host.h"
#include "framework/exceptions.h"
#include "host/excel_operations.h"
#include "platform/utf8.h"
#include "services/excel_driver.h"
#include "support/workbook_reader.h"

namespace {

namespace fs = std::filesystem;
using lvx::framework::AutomationException;
using lvx::test::readWorkbook;
using lvx::test::WorkbookCell;
using lvx::workbook::startWorkbookServer;

/// One workbook after another through the module's driver, as a report's writer makes them.
class DrivenSheet {
 public:
  [[nodiscard]] bool start() {
    link_ = std::make_unique<lvx::services::ExcelLink>();
    return lvx::services::startExcel(*link_);
  }
  void writeCell(const std::wstring& cell, const std::wstring& text) { lvx::services::writeCell(*link_, cell, text); }
  void writeNumberCell(const std::wstring& cell, const std::wstring& text) {
    lvx::services::writeNumberCell(*link_, cell, text);
  }
  void finish(const std::wstring& path) { lvx::services::finishExcel(*link_, path); }

 private:
  std::unique_ptr<lvx::services::ExcelLink> link_;
};

class WorkbookServerTest : public testing::Test {
 protected:
  void SetUp() override {
    host_.setAutomationFactory([](const std::wstring&) { return startWorkbookServer(); });
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
  lvx::test::FakeHost host_;
  DrivenSheet sheet_;
};

const WorkbookCell kNumber{"-12.5", true, "0.000"};

TEST_F(WorkbookServerTest, KeepsTextsAsStringsAndNumbersAsNumbers) {
  sheet_.writeCell(L"A1", L"title");
  sheet_.writeCell(L"B1", L"1234.5");
  sheet_.writeNumberCell(L"C1", L"-12.500");
  const auto cells = finished();
  ASSERT_EQ(cells.size(), 3U);
  EXPECT_EQ(cells.at("A1"), (WorkbookCell{"title"}));
  EXPECT_EQ(cells.at("B1"), (WorkbookCell{"1234.5"}));
  EXPECT_EQ(cells.at("C1"), kNumber);
}

TEST_F(WorkbookServerTest, NeverMakesAFormula) {
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

TEST_F(WorkbookServerTest, KeepsControlCharactersMarkupAndBlanks) {
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

TEST_F(WorkbookServerTest, SurvivesTextsThatNoFileCanHold) {
  sheet_.writeCell(L"A1", std::wstring{L'a', L'\xDC80', L'\xD800', L'\xFFFF'});
  sheet_.writeCell(L"A2", std::wstring(100000, L'\r'));
  sheet_.writeCell(L"A3", std::wstring(100000, L'\xFFFE'));
  const auto cells = finished();
  EXPECT_EQ(cells.at("A1").text, "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBF");
  EXPECT_EQ(cells.at("A2").text, std::string(32767, '\r'));
  EXPECT_EQ(cells.at("A3").text.size(), 32767U / 7 * 3);
}

TEST_F(WorkbookServerTest, PutsATextThatIsNoNumberIntoANumberCellAsAString) {
  int row = 0;
  for (const wchar_t* text : {L"nan", L"-inf", L"---"}) sheet_.writeNumberCell(L"B" + std::to_wstring(++row), text);
  const auto cells = finished();
  EXPECT_EQ(cells.at("B1"), (WorkbookCell{"nan", false, "0.000"}));
  EXPECT_EQ(cells.at("B2"), (WorkbookCell{"-inf", false, "0.000"}));
  EXPECT_EQ(cells.at("B3"), (WorkbookCell{"---", false, "0.000"}));
}

TEST_F(WorkbookServerTest, KeepsEveryDigitOfACoordinate) {
  sheet_.writeNumberCell(L"A1", L"480012345.678");
  sheet_.writeNumberCell(L"A2", L"-0.000");
  sheet_.writeNumberCell(L"A3", L"0.001");
  const auto cells = finished();
  EXPECT_EQ(cells.at("A1").text, "480012345.678");
  EXPECT_EQ(cells.at("A2").text, "0");
  EXPECT_EQ(cells.at("A3").text, "0.001");
}

TEST_F(WorkbookServerTest, LeavesEmptyTextsOutAndLetsThemEmptyACell) {
  sheet_.writeCell(L"A1", L"");
  sheet_.writeCell(L"B1", L"gone");
  sheet_.writeCell(L"B1", L"");
  sheet_.writeCell(L"C1", L"stays");
  EXPECT_EQ(finished(), (std::map<std::string, WorkbookCell>{{"C1", {"stays"}}}));
}

TEST_F(WorkbookServerTest, TakesTheLastWordOnACellAndKeepsItsFormat) {
  sheet_.writeNumberCell(L"A1", L"-12.500");
  sheet_.writeCell(L"A1", L"text");
  sheet_.writeCell(L"B1", L"text");
  sheet_.writeNumberCell(L"B1", L"-12.500");
  const auto cells = finished();
  EXPECT_EQ(cells.at("A1"), (WorkbookCell{"text", false, "0.000"}));
  EXPECT_EQ(cells.at("B1"), kNumber);
}

TEST_F(WorkbookServerTest, TakesColumnsOfARowInAnyOrder) {
  for (const wchar_t* name : {L"D12", L"Q12", L"A12", L"AA12", L"B12"}) sheet_.writeCell(name, name);
  const auto cells = finished();
  ASSERT_EQ(cells.size(), 5U);
  for (const auto& [name, cell] : cells) EXPECT_EQ(cell.text, name);
}

TEST_F(WorkbookServerTest, TakesCellsOfEarlierRows) {
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

TEST_F(WorkbookServerTest, AgreesWithAPlainMapOnRandomWrites) {
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

TEST_F(WorkbookServerTest, SavesAnEmptySheet) { EXPECT_TRUE(finished().empty()); }

TEST_F(WorkbookServerTest, HoldsALastRow) {
  sheet_.writeCell(L"XFD1048576", L"corner");
  EXPECT_EQ(finished().at("XFD1048576").text, "corner");
}

TEST_F(WorkbookServerTest, FailsToSaveRowsBelowTheSheetWhereNobodyIsToldOfIt) {
  sheet_.writeCell(L"A1048577", L"below");
  EXPECT_THROW(sheet_.finish(wide("road.xls")), AutomationException);
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(WorkbookServerTest, RefusesANameThatIsNoCell) {
  EXPECT_THROW(sheet_.writeCell(L"A-1", L"x"), AutomationException);
  EXPECT_THROW(sheet_.writeNumberCell(L"", L"1.000"), AutomationException);
}

TEST_F(WorkbookServerTest, TakesNothingAfterItsEnd) {
  (void)finished();
  EXPECT_THROW(sheet_.writeCell(L"A1", L"x"), AutomationException);
  EXPECT_THROW(sheet_.writeNumberCell(L"A1", L"1.000"), AutomationException);
  EXPECT_THROW(sheet_.finish(wide("road.xls")), AutomationException);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(WorkbookServerTest, StartsAnewAfterItsEnd) {
  sheet_.writeCell(L"A1", L"first");
  (void)finished();
  ASSERT_TRUE(sheet_.start());
  sheet_.writeCell(L"B2", L"second");
  EXPECT_EQ(finished(), (std::map<std::string, WorkbookCell>{{"B2", {"second"}}}));
}

TEST_F(WorkbookServerTest, LeavesNothingWhenGivenUp) {
  {
    DrivenSheet unfinished;
    ASSERT_TRUE(unfinished.start());
    unfinished.writeCell(L"A1", L"x");
  }
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(WorkbookServerTest, FailsCleanlyWhereItsPlaceIsTakenOrMissing) {
  fs::create_directories(folder_ / "road.xls" / "inside");
  sheet_.writeCell(L"A1", L"x");
  EXPECT_THROW(sheet_.finish(wide("road.xls")), AutomationException);
  EXPECT_EQ(filesInFolder(), 1U);
  ASSERT_TRUE(sheet_.start());
  EXPECT_THROW(sheet_.finish(wide("nowhere/road.xls")), AutomationException);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(WorkbookServerTest, TakesAnOddFileName) {
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

TEST_F(WorkbookServerTest, GivesTheSameBytesForTheSameMoment) {
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

TEST_F(WorkbookServerTest, LeavesTheOlderFileAndNothingElseWhenTheDiskFillsUp) {
  std::ofstream(folder_ / "road.xls") << "older";
  int failures = 0;
  // The archive takes about 27,000 bytes, most of them its sheet: limits below, just around and above that size.
  for (rlim_t limit = 500; limit <= 40000; limit += 500) {
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

TEST_F(WorkbookServerTest, SaysWhenTheTemporaryFolderIsFull) {
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

TEST_F(WorkbookServerTest, HoldsAHundredThousandRowsInConstantMemory) {
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

// ---------------------------------------------------------------- the server's objects

namespace excel = lvx::host::excel;
using lvx::host::AutomationObject;
using lvx::host::AutomationValue;
using Object = lvx::host::Ref<AutomationObject>;
using Values = std::vector<AutomationValue>;

AutomationValue text(const std::wstring& value) { return AutomationValue::ofText(value); }

Object addBook(AutomationObject& app) {
  const Object books = app.get(excel::kApplicationWorkbooks, {}).takeObject();
  return books->call(excel::kWorkbooksAdd, Values{AutomationValue::missing()}).takeObject();
}

Object firstSheet(AutomationObject& book) {
  return book.get(excel::kWorkbookWorksheets, {})
      .takeObject()
      ->get(excel::kWorksheetsItem, Values{AutomationValue::ofInteger(1)})
      .takeObject();
}

Object cell(AutomationObject& sheet, const std::wstring& name) {
  return sheet.get(excel::kWorksheetRange, Values{text(name), text(name)}).takeObject();
}

void save(AutomationObject& sheet, const std::wstring& path) {
  Values arguments(lvx::host::kSaveAsArguments, AutomationValue::missing());
  arguments[0] = text(path);
  sheet.call(excel::kWorksheetSaveAs, arguments);
}

TEST_F(WorkbookServerTest, KeepsEveryRangeOnItsCellForAsLongAsItIsHeld) {
  const Object sheet = firstSheet(*addBook(*startWorkbookServer()));
  std::vector<Object> ranges;
  for (const wchar_t* name : {L"A1", L"B1", L"C1", L"D1"}) ranges.push_back(cell(*sheet, name));
  ranges[1]->put(excel::kRangeNumberFormatLocal, text(L"0,000"));
  for (std::size_t i = 0; i < ranges.size(); ++i) ranges[i]->put(excel::kRangeValue, text(std::to_wstring(i) + L".5"));
  ranges.clear();
  cell(*sheet, L"E1")->put(excel::kRangeValue, text(L"4.5"));
  save(*sheet, wide("road.xls"));
  EXPECT_EQ(readWorkbook(folder_ / "road.xls"),
            (std::map<std::string, WorkbookCell>{
                {"A1", {"0.5"}}, {"B1", {"1.5", true, "0.000"}}, {"C1", {"2.5"}}, {"D1", {"3.5"}}, {"E1", {"4.5"}}}));
}

TEST_F(WorkbookServerTest, GivesACellItsFormatWhetherOrNotAValueFollows) {
  const Object sheet = firstSheet(*addBook(*startWorkbookServer()));
  const auto format = [&sheet](const wchar_t* name) {
    cell(*sheet, name)->put(excel::kRangeNumberFormatLocal, text(L"0,000"));
  };
  cell(*sheet, L"A2")->put(excel::kRangeValue, text(L"stays"));
  format(L"A2");
  format(L"B2");
  format(L"A1");
  const Object last = cell(*sheet, L"A3");
  last->put(excel::kRangeValue, text(L"first"));
  last->put(excel::kRangeNumberFormatLocal, text(L"0,000"));
  last->put(excel::kRangeValue, text(L"2.000"));
  last->put(excel::kRangeValue, text(L"3.000"));
  format(L"A4");
  save(*sheet, wide("road.xls"));
  EXPECT_EQ(readWorkbook(folder_ / "road.xls"), (std::map<std::string, WorkbookCell>{{"A1", {"", false, "0.000"}},
                                                                                     {"A2", {"stays", false, "0.000"}},
                                                                                     {"B2", {"", false, "0.000"}},
                                                                                     {"A3", {"3", true, "0.000"}},
                                                                                     {"A4", {"", false, "0.000"}}}));
}

TEST_F(WorkbookServerTest, KeepsTwoWorkbooksApart) {
  const Object app = startWorkbookServer();
  const Object first = firstSheet(*addBook(*app));
  const Object second = firstSheet(*addBook(*app));
  cell(*first, L"A1")->put(excel::kRangeValue, text(L"first"));
  cell(*second, L"A1")->put(excel::kRangeValue, text(L"second"));
  save(*first, wide("first.xls"));
  save(*second, wide("second.xls"));
  EXPECT_EQ(readWorkbook(folder_ / "first.xls").at("A1").text, "first");
  EXPECT_EQ(readWorkbook(folder_ / "second.xls").at("A1").text, "second");
}

TEST_F(WorkbookServerTest, RefusesOperationsThatAnObjectHasNot) {
  const Object app = startWorkbookServer();
  const Object books = app->get(excel::kApplicationWorkbooks, {}).takeObject();
  const Object book = addBook(*app);
  const Object sheets = book->get(excel::kWorkbookWorksheets, {}).takeObject();
  const Object sheet = firstSheet(*book);
  const Object range = cell(*sheet, L"A1");
  constexpr lvx::host::DispatchId kNone = 1;
  for (const Object& object : {app, books, book, sheets, sheet, range}) {
    EXPECT_THROW((void)object->get(kNone, {}), AutomationException);
    EXPECT_THROW(object->put(kNone, text(L"x")), AutomationException);
    EXPECT_THROW(object->call(kNone, {}), AutomationException);
  }
}

TEST_F(WorkbookServerTest, RefusesArgumentsThatItWouldHaveToPassOver) {
  const Object app = startWorkbookServer();
  const Object books = app->get(excel::kApplicationWorkbooks, {}).takeObject();
  const Object book = addBook(*app);
  const Object sheets = book->get(excel::kWorkbookWorksheets, {}).takeObject();
  const Object sheet = firstSheet(*book);
  const Object range = cell(*sheet, L"A1");
  EXPECT_THROW((void)app->get(excel::kApplicationWorkbooks, Values(1)), AutomationException);
  EXPECT_THROW(books->call(excel::kWorkbooksAdd, {}), AutomationException);
  EXPECT_THROW(books->call(excel::kWorkbooksAdd, Values{text(L"road.xlt")}), AutomationException);
  EXPECT_THROW((void)sheets->get(excel::kWorksheetsItem, Values{AutomationValue::ofInteger(2)}), AutomationException);
  EXPECT_THROW((void)sheets->get(excel::kWorksheetsItem, Values{text(L"1")}), AutomationException);
  EXPECT_THROW((void)sheet->get(excel::kWorksheetRange, Values{text(L"A1"), text(L"B2")}), AutomationException);
  EXPECT_THROW((void)sheet->get(excel::kWorksheetRange, Values{text(L"A1")}), AutomationException);
  EXPECT_THROW(range->put(excel::kRangeValue, AutomationValue::ofInteger(1)), AutomationException);
  EXPECT_THROW(range->put(excel::kRangeNumberFormatLocal, text(L"0.00")), AutomationException);
  Values arguments(lvx::host::kSaveAsArguments, AutomationValue::missing());
  arguments[0] = text(wide("road.xls"));
  arguments[1] = AutomationValue::ofInteger(51);
  EXPECT_THROW(sheet->call(excel::kWorksheetSaveAs, arguments), AutomationException);
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(WorkbookServerTest, EndsItsApplicationAtQuit) {
  const Object app = startWorkbookServer();
  app->call(excel::kApplicationQuit, {});
  EXPECT_THROW((void)app->get(excel::kApplicationWorkbooks, {}), AutomationException);
  EXPECT_THROW(app->call(excel::kApplicationQuit, {}), AutomationException);
}

/// Writes down what it is told and stops the writing where it is asked to.
class Follower final : public lvx::workbook::WorkbookObserver {
 public:
  Follower(std::vector<std::wstring>& told, std::uint64_t& bytes) : told_(told), bytes_(bytes) {}
  void beforeWriting() override {
    told_.emplace_back(L"before");
    if (told_.size() == stopAt) throw std::runtime_error("stop");
  }
  void beforeSaving(const std::wstring& path) override { told_.push_back(L"saving " + path); }
  void saved(const std::wstring& path, std::uint64_t bytes) noexcept override {
    told_.push_back(L"saved " + path);
    bytes_ = bytes;
  }
  void notSaved(const std::wstring& path, const char* reason) noexcept override {
    told_.push_back(L"not saved " + path + L": " + std::wstring(reason, reason + std::strlen(reason)));
  }
  std::size_t stopAt = 3;

 private:
  std::vector<std::wstring>& told_;
  std::uint64_t& bytes_;
};

TEST_F(WorkbookServerTest, AsksItsObserverBeforeEachCellAndSavingAndTellsItTheOutcome) {
  std::vector<std::wstring> told;
  std::uint64_t bytes = 0;
  const Object app = startWorkbookServer(std::make_unique<Follower>(told, bytes));
  const Object sheet = firstSheet(*addBook(*app));
  const Object range = cell(*sheet, L"A1");
  range->put(excel::kRangeNumberFormatLocal, text(L"0,000"));
  range->put(excel::kRangeValue, text(L"1.000"));
  save(*sheet, wide("road.xls"));
  const std::vector<std::wstring> wanted{L"before", L"before", L"saving " + wide("road.xls"),
                                         L"saved " + wide("road.xls")};
  EXPECT_EQ(told, wanted);
  EXPECT_EQ(bytes, fs::file_size(folder_ / "road.xls"));
  told.resize(2);  // the third question is answered by an exception

  const Object other = firstSheet(*addBook(*app));
  EXPECT_THROW(cell(*other, L"A1")->put(excel::kRangeValue, text(L"x")), std::runtime_error);
  cell(*other, L"B1")->put(excel::kRangeValue, text(L"y"));
  EXPECT_THROW(save(*other, wide("missing/road.xls")), AutomationException);
  EXPECT_EQ(told.back(), L"not saved " + wide("missing/road.xls") + L": workbook: no file can be made in its folder");
}

TEST_F(WorkbookServerTest, EndsAWorkbookOfMoreRowsThanASheetHasWithoutAFileOrAFailure) {
  std::vector<std::wstring> told;
  std::uint64_t bytes = 0;
  auto follower = std::make_unique<Follower>(told, bytes);
  follower->stopAt = 1000;
  const Object app = startWorkbookServer(std::move(follower));
  const Object sheet = firstSheet(*addBook(*app));
  cell(*sheet, L"A1")->put(excel::kRangeValue, text(L"first"));
  const Object number = cell(*sheet, L"B2000000");
  number->put(excel::kRangeNumberFormatLocal, text(L"0,000"));
  number->put(excel::kRangeValue, text(L"1.000"));
  cell(*sheet, L"A1048577")->put(excel::kRangeValue, text(L"below"));
  cell(*sheet, L"A2")->put(excel::kRangeValue, text(L"within"));
  told.clear();
  save(*sheet, wide("road.xls"));
  const std::vector<std::wstring> wanted{
      L"before", L"saving " + wide("road.xls"),
      L"not saved " + wide("road.xls") +
          L": workbook: the report needs 2000000 rows, and a sheet ends at row 1048576; leave the workbook out, or "
          L"report less at a time"};
  EXPECT_EQ(told, wanted);
  EXPECT_EQ(filesInFolder(), 0U);
  EXPECT_THROW(cell(*sheet, L"A1")->put(excel::kRangeValue, text(L"again")), AutomationException);
  app->call(excel::kApplicationQuit, {});
}

}  // namespace
