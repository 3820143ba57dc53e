// The calls that reach the spreadsheet program: their order and arguments, what is released when, and what stays away
// after a failure.
#include "services/excel_driver.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "doubles/recording_excel.h"
#include "framework/exceptions.h"

namespace lvx::services {
namespace {

using host::AutomationValue;
using test::ExcelRecord;
using Lines = std::vector<std::string>;

class ExcelDriver : public testing::Test {
 protected:
  ExcelDriver() { host_.setAutomationFactory(test::recordedBy(record_)); }

  /// A report of one text and one number.
  bool writeTinyReport() {
    ExcelLink link;
    if (!startExcel(link)) return false;
    writeCell(link, L"A1", L"* Road");
    writeNumberCell(link, L"B12", L"-12.500");
    finishExcel(link, L"out/road.xls");
    return true;
  }

  test::FakeHost host_;
  std::shared_ptr<ExcelRecord> record_ = std::make_shared<ExcelRecord>();
};

const Lines kTinyReport{
    "start app",
    "app.Workbooks -> books",
    "books.Add(missing) -> book",
    "book.Worksheets -> sheets",
    "sheets.Item(1) -> sheet",
    "sheet.Range(\"A1\", \"A1\") -> range",
    "range.Value = \"* Road\"",
    "sheet.Range(\"B12\", \"B12\") -> range",
    "release range",
    "range.NumberFormatLocal = \"0,000\"",
    "range.Value = \"-12.500\"",
    "sheet.SaveAs(\"out/road.xls\", missing, missing, missing, missing, missing, missing, missing, missing)",
    "app.Quit",
    "release app",
    "release range",
    "release sheet",
    "release sheets",
    "release book",
    "release books",
};

bool isCall(const std::string& line) { return !line.starts_with("release ") && line != "start app"; }

/// What a program is released of when it is left after the first `calls` calls of the tiny report, in order.
Lines releasesAfter(std::size_t calls) {
  static constexpr const char* kHeld[] = {"app", "books", "book", "sheets", "sheet", "range"};
  Lines releases;
  for (std::size_t i = std::min<std::size_t>(calls, 5) + 1; i-- > 0;)
    releases.push_back(std::string("release ") + kHeld[i]);
  return releases;
}

TEST_F(ExcelDriver, MakesTheCallsOfAReportInOrderAndReleasesTheApplicationFirst) {
  EXPECT_TRUE(writeTinyReport());
  EXPECT_EQ(record_->calls, kTinyReport);
  EXPECT_EQ(record_->liveObjects, 0);
  EXPECT_EQ(record_->givenUp, 0);
  EXPECT_EQ(record_->finishedAs, L"out/road.xls");
  EXPECT_TRUE(host_.users().boxes.empty());
}

TEST_F(ExcelDriver, StartsAProgramOfItsOwnForEachReport) {
  EXPECT_TRUE(writeTinyReport());
  EXPECT_TRUE(writeTinyReport());
  EXPECT_EQ(std::count(record_->calls.begin(), record_->calls.end(), "start app"), 2);
  EXPECT_EQ(record_->calls.size(), 2 * kTinyReport.size());
}

TEST_F(ExcelDriver, HoldsEveryReferenceUntilTheReportIsLeft) {
  ExcelLink link;
  ASSERT_TRUE(startExcel(link));
  EXPECT_EQ(record_->liveObjects, 5);
  EXPECT_EQ(link.range, nullptr);
  writeCell(link, L"A1", L"x");
  EXPECT_EQ(record_->liveObjects, 6);
  writeCell(link, L"A2", L"y");
  EXPECT_EQ(record_->liveObjects, 6) << "the next cell's range takes the place of the last one's";
  finishExcel(link, L"road.xls");
  EXPECT_EQ(link.app, nullptr);
  EXPECT_EQ(record_->liveObjects, 5);
}

/// The arguments of the call under way that aren't empty.
std::string filledArguments(const ExcelLink& link) {
  const auto isFilled = [](const AutomationValue& value) { return value.kind() != AutomationValue::Kind::Empty; };
  std::string filled;
  if (isFilled(link.arguments.index)) filled += "index ";
  if (isFilled(link.arguments.cells[0])) filled += "first ";
  if (isFilled(link.arguments.cells[1])) filled += "last ";
  if (isFilled(link.arguments.numberFormat)) filled += "format ";
  if (isFilled(link.arguments.value)) filled += "value ";
  return filled;
}

TEST_F(ExcelDriver, ClearsEachArgumentBeforeTheNextCall) {
  ExcelLink link;
  Lines filled;
  record_->onCall = [&](const std::string& line) {
    filled.push_back(line.substr(0, line.find_first_of(" (")) + ": " + filledArguments(link));
  };
  ASSERT_TRUE(startExcel(link));
  EXPECT_EQ(filledArguments(link), "");
  writeCell(link, L"A1", L"x");
  EXPECT_EQ(filledArguments(link), "");
  writeNumberCell(link, L"A2", L"1.000");
  EXPECT_EQ(filledArguments(link), "");
  finishExcel(link, L"road.xls");
  EXPECT_EQ(filled, (Lines{"app.Workbooks: ", "books.Add: ", "book.Worksheets: ", "sheets.Item: index ",
                           "sheet.Range: first last ", "range.Value: value ", "sheet.Range: first last ",
                           "range.NumberFormatLocal: format ", "range.Value: value ", "sheet.SaveAs: ", "app.Quit: "}));
}

TEST_F(ExcelDriver, ClearsTheArgumentsOfACallThatRaises) {
  for (const std::size_t call : {std::size_t{4}, std::size_t{5}, std::size_t{6}}) {
    auto record = std::make_shared<ExcelRecord>();
    host_.setAutomationFactory(test::recordedBy(record));
    record->failAtCall = call;
    ExcelLink link;
    ASSERT_TRUE(startExcel(link));
    EXPECT_THROW(writeNumberCell(link, L"A1", L"1.000"), framework::AutomationException);
    EXPECT_EQ(filledArguments(link), "") << call;
  }
}

TEST_F(ExcelDriver, HandsTextsOverAsTheyAre) {
  ExcelLink link;
  ASSERT_TRUE(startExcel(link));
  for (const wchar_t* text : {L"=1+1", L"", L"50 %", L"* Vantor Lorvix 2021\r\n"}) writeCell(link, L"A1", text);
  writeNumberCell(link, L"A2", L"nan");
  ASSERT_EQ(record_->writes.size(), 5U);
  EXPECT_EQ(record_->writes[0], (ExcelRecord::Write{L"A1", L"=1+1", false}));
  EXPECT_EQ(record_->writes[1], (ExcelRecord::Write{L"A1", L"", false}));
  EXPECT_EQ(record_->writes[3], (ExcelRecord::Write{L"A1", L"* Vantor Lorvix 2021\r\n", false}));
  EXPECT_EQ(record_->writes[4], (ExcelRecord::Write{L"A2", L"nan", true}));
}

TEST_F(ExcelDriver, TellsTheUserInOneBoxWhereTheProgramCannotBeStarted) {
  record_->failStart = true;
  EXPECT_FALSE(writeTinyReport());
  EXPECT_EQ(host_.users().boxes,
            (std::vector<test::FakeUserInterface::Box>{
                {L"Couldn't start Excel and get Application object.", host::BoxButtons::Ok, host::BoxIcon::None}}));
  EXPECT_TRUE(record_->calls.empty());
  EXPECT_EQ(record_->liveObjects, 0);
}

TEST_F(ExcelDriver, LeavesAfterAFailureAtEachCallWithoutQuitAndWithEveryReferenceReleased) {
  const std::size_t calls = static_cast<std::size_t>(std::count_if(kTinyReport.begin(), kTinyReport.end(), isCall));
  ASSERT_EQ(calls, 11U);
  for (std::size_t failing = 0; failing < calls; ++failing) {
    const auto record = std::make_shared<ExcelRecord>();
    host_.setAutomationFactory(test::recordedBy(record));
    record->failAtCall = failing;
    EXPECT_THROW(writeTinyReport(), framework::AutomationException) << failing;

    // What a report without a failure does up to that call, then nothing but the releases.
    Lines wanted;
    std::size_t seen = 0;
    for (const std::string& line : kTinyReport) {
      wanted.push_back(line);
      if (isCall(line) && seen++ == failing) break;
    }
    for (std::string& release : releasesAfter(failing)) wanted.push_back(std::move(release));
    EXPECT_EQ(record->calls, wanted) << failing;
    EXPECT_EQ(record->liveObjects, 0) << failing;
    EXPECT_EQ(record->finishedAs, std::nullopt) << failing;
    EXPECT_EQ(record->givenUp, 1) << failing;
    EXPECT_TRUE(host_.users().boxes.empty()) << "a program that was started and fails is no matter for the box";
  }
}

/// A program that answers its first question with nothing.
class EmptyProgram final : public host::AutomationObject {
 public:
  AutomationValue get(host::DispatchId, host::AutomationArguments) override { return answer; }
  void put(host::DispatchId, const AutomationValue&) override { throw std::logic_error("nothing to put"); }
  AutomationValue call(host::DispatchId, host::AutomationArguments) override { throw std::logic_error("no call"); }
  AutomationValue answer;
};

TEST_F(ExcelDriver, FailsWhereAnOperationGivesNoObject) {
  const auto program = std::make_shared<EmptyProgram>();
  host_.setAutomationFactory([program](const CString&) { return program; });
  for (const AutomationValue& answer :
       {AutomationValue(), AutomationValue::ofObject(nullptr), AutomationValue::ofInteger(1)}) {
    program->answer = answer;
    EXPECT_THROW(writeTinyReport(), framework::AutomationException);
    EXPECT_EQ(program.use_count(), 2) << "the test and its factory";
  }
}

TEST(CellName, JoinsColumnAndRow) {
  EXPECT_EQ(cellName(L'B', 12), L"B12");
  EXPECT_EQ(cellName(L'A', 1), L"A1");
  EXPECT_EQ(cellName(L'T', 1048576), L"T1048576");
  EXPECT_EQ(cellName(L'C', std::numeric_limits<int>::max()), L"C2147483647");
  EXPECT_EQ(cellName(L'C', std::numeric_limits<int>::min()), L"C-2147483648");
}

}  // namespace
}  // namespace lvx::services
