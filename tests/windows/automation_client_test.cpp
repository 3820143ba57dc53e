// Programs worked by the system's own automation: what crosses to a server of this process and of another one, what is
// given back, and what a user is told when a server fails, goes away or isn't there.
#include "native/automation_client.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "doubles/recording_excel.h"
#include "platform/utf8.h"
#include "recording_server.h"
#include "services/excel_driver.h"
#include "support/places.h"

namespace lvx::native {
namespace {

using host::AutomationValue;
using test::ExcelRecord;
using test::ServerLog;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

// Not the name of the real program: a machine with one keeps it.
constexpr wchar_t kProgramId[] = L"LvxRecordingProgram.Application";

/// What the words of a failed call are, or "" for one that didn't fail.
template <class Work>
std::string wordsOf(Work work) {
  try {
    work();
  } catch (const framework::AutomationException& error) {
    return error.what();
  }
  return {};
}

/// A report of one text and one number.
bool writeTinyReport() {
  services::ExcelLink link;
  if (!services::startExcel(link)) return false;
  services::writeCell(link, L"A1", L"* Stra\u00DFe \u20AC");
  services::writeNumberCell(link, L"B12", L"-12.500");
  services::finishExcel(link, L"C:\\out\\road.xls");
  return true;
}

const Lines kTinyReport{
    "start app",
    "app.Workbooks -> books",
    "books.Add(missing) -> book",
    "book.Worksheets -> sheets",
    "sheets.Item(1) -> sheet",
    "sheet.Range(\"A1\", \"A1\") -> range",
    "range.Value = \"* Stra\xC3\x9F"
    "e \xE2\x82\xAC\"",
    "sheet.Range(\"B12\", \"B12\") -> range",
    "release range",
    "range.NumberFormatLocal = \"0,000\"",
    "range.Value = \"-12.500\"",
    "sheet.SaveAs(\"C:\\out\\road.xls\", missing, missing, missing, missing, missing, missing, missing, missing)",
    "app.Quit",
    "release app",
    "release range",
    "release sheet",
    "release sheets",
    "release book",
    "release books",
};
constexpr std::size_t kCallsOfTinyReport = 11;

/// The same report as the protocol carries it.
const Lines kTinyReportOnTheWire{
    "get 572",
    "call 181: ERROR not found",
    "get 485",
    "get 170: I2 1",
    "get 197: BSTR \"A1\", BSTR \"A1\"",
    "put 6 named -3: BSTR \"* Stra\xC3\x9F"
    "e \xE2\x82\xAC\"",
    "get 197: BSTR \"B12\", BSTR \"B12\"",
    "put 1097 named -3: BSTR \"0,000\"",
    "put 6 named -3: BSTR \"-12.500\"",
    "call 284: ERROR not found, ERROR not found, ERROR not found, ERROR not found, ERROR not found, ERROR not found, "
    "ERROR not found, ERROR not found, BSTR \"C:\\out\\road.xls\"",
    "call 302",
};

class Automation : public testing::Test {
 protected:
  Automation() {
    host_.setAutomationFactory([](const CString&) { return createAutomationObject(kProgramId); });
  }

  const AutomationScope scope_;
  test::FakeHost host_;
};

// ---------------------------------------------------------------- a server of this process

class AutomationInProcess : public Automation {
 protected:
  void start() { server_ = std::make_unique<test::RunningServer>(registered_.classId(), record_, log_); }

  const test::RegisteredServer registered_{kProgramId};
  std::shared_ptr<ExcelRecord> record_ = std::make_shared<ExcelRecord>();
  std::shared_ptr<ServerLog> log_ = std::make_shared<ServerLog>();
  std::unique_ptr<test::RunningServer> server_;
};

TEST_F(AutomationInProcess, CarriesAReportCallByCallAndGivesEveryReferenceBack) {
  start();
  ASSERT_TRUE(isAutomationProgram(kProgramId));
  EXPECT_TRUE(writeTinyReport());
  EXPECT_EQ(record_->calls, kTinyReport);
  EXPECT_EQ(log_->calls, kTinyReportOnTheWire);
  EXPECT_EQ(record_->finishedAs, L"C:\\out\\road.xls");
  EXPECT_EQ(record_->liveObjects, 0);
  EXPECT_EQ(log_->references, 0);
}

TEST_F(AutomationInProcess, HoldsOneReferenceToEachObject) {
  start();
  {
    const auto app = createAutomationObject(kProgramId);
    EXPECT_EQ(log_->references, 1);
    const auto books = app->get(572, {}).takeObject();
    EXPECT_EQ(log_->references, 2);
    const auto sameBooks = books;
    EXPECT_EQ(log_->references, 2);
  }
  EXPECT_EQ(log_->references, 0);
}

TEST_F(AutomationInProcess, TellsTheServersOwnWordsAndReleasesAllWhateverCallFails) {
  start();
  for (std::size_t failing = 0; failing < kCallsOfTinyReport; ++failing) {
    *record_ = ExcelRecord();
    record_->failAtCall = failing;
    EXPECT_EQ(wordsOf(writeTinyReport),
              "automation: Recording program: recording program: told to fail at this call (0x800a03ec)")
        << failing;
    EXPECT_EQ(record_->callCount, failing + 1) << failing;
    EXPECT_EQ(record_->finishedAs, std::nullopt) << failing;
    EXPECT_EQ(record_->liveObjects, 0) << failing;
    EXPECT_EQ(log_->references, 0) << failing;
    EXPECT_TRUE(host_.users().boxes.empty()) << failing;
  }
  record_->failAtCall = ExcelRecord::kNever;
  EXPECT_TRUE(writeTinyReport()) << "the next report begins anew";
}

TEST_F(AutomationInProcess, TellsTheErrorsNumberWhereTheServerHasNoWords) {
  start();
  const auto app = createAutomationObject(kProgramId);
  log_->plainError = static_cast<long>(0x80020003);
  EXPECT_THAT(wordsOf([&] { app->call(302, {}); }), testing::EndsWith(" (0x80020003)"));
  log_->plainError = static_cast<long>(0xA0000123);  // of no system
  EXPECT_EQ(wordsOf([&] { app->call(302, {}); }), "automation: the call failed (0xa0000123)");
}

TEST_F(AutomationInProcess, HandsObjectsOverAsArguments) {
  start();
  const auto app = createAutomationObject(kProgramId);
  const auto books = app->get(572, {}).takeObject();
  const std::vector<AutomationValue> argument{AutomationValue::ofObject(app)};
  // The recording program takes none.
  EXPECT_THAT(wordsOf([&] { books->call(181, argument); }), HasSubstr("an argument that no caller should give"));
  EXPECT_EQ(log_->calls.back(), "call 181: DISPATCH");
  EXPECT_EQ(log_->references, 2);
}

TEST_F(AutomationInProcess, CarriesTextsOfAnyLengthAndContent) {
  start();
  services::ExcelLink link;
  ASSERT_TRUE(services::startExcel(link));
  const CString withZero(L"a\0b", 3);
  const CString all[] = {L"", L"=1+1", L"* line\r\n", withZero, L"\U0001F6A7", CString(40000, L'\u00E4')};
  int row = 0;
  for (const CString& text : all) services::writeCell(link, services::cellName(L'A', ++row), text);
  row = 0;
  for (const CString& text : all) EXPECT_EQ(record_->texts.at(services::cellName(L'A', ++row)), text) << row;
}

TEST_F(AutomationInProcess, WritesFiveThousandCells) {
  start();
  const auto begin = std::chrono::steady_clock::now();
  services::ExcelLink link;
  ASSERT_TRUE(services::startExcel(link));
  for (int row = 1; row <= 5000; ++row) services::writeNumberCell(link, services::cellName(L'C', row), L"12.345");
  services::finishExcel(link, L"C:\\many.xls");
  const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
  std::cout << "5,000 cells in " << took.count() << " ms, " << log_->calls.size() << " calls\n";
  EXPECT_EQ(record_->writes.size(), 5000U);
  EXPECT_EQ(record_->liveObjects, 5) << "the driver still holds all but the application";
}

// ---------------------------------------------------------------- a server that isn't there

TEST_F(Automation, SaysInTheFixedBoxThatNoProgramIsRegistered) {
  EXPECT_FALSE(isAutomationProgram(kProgramId));
  EXPECT_FALSE(writeTinyReport());
  ASSERT_EQ(host_.users().boxes.size(), 1U);
  EXPECT_EQ(host_.users().boxes[0], (test::FakeUserInterface::Box{L"Couldn't start Excel and get Application object.",
                                                                  host::BoxButtons::Ok, host::BoxIcon::None}));
}

TEST_F(Automation, SaysTheSameWhereTheRegisteredProgramIsMissing) {
  const test::RegisteredServer registered(kProgramId, L"C:\\no such folder\\no such program.exe");
  EXPECT_TRUE(isAutomationProgram(kProgramId));
  EXPECT_FALSE(writeTinyReport());
  EXPECT_EQ(host_.users().boxes.size(), 1U);
}

TEST_F(Automation, SaysTheSameWhereTheServerRefusesToStart) {
  const test::RegisteredServer registered(kProgramId);
  const auto record = std::make_shared<ExcelRecord>();
  record->failStart = true;
  const auto log = std::make_shared<ServerLog>();
  const test::RunningServer server(registered.classId(), record, log);
  EXPECT_FALSE(writeTinyReport());
  EXPECT_EQ(host_.users().boxes.size(), 1U);
  EXPECT_EQ(log->references, 0);
}

// ---------------------------------------------------------------- a server of another process

class AutomationAcrossProcesses : public Automation {
 protected:
  AutomationAcrossProcesses() { std::remove(logFile_.c_str()); }
  ~AutomationAcrossProcesses() override { std::remove(logFile_.c_str()); }

  void registerServer(const std::string& wish) {
    registered_.reset();
    std::string command =
        '"' + test::inBuild("/tests/windows/recording-server.exe") + "\" \"" + logFile_ + "\" " + wish;
    std::replace(command.begin(), command.end(), '/', '\\');
    registered_ = std::make_unique<test::RegisteredServer>(kProgramId, platform::fromUtf8(command));
  }

  /// What the server wrote at its end. It ends by itself once nobody holds anything of it.
  [[nodiscard]] Lines log() const {
    for (int i = 0; i < 200; ++i) {
      std::ifstream file(logFile_);
      Lines lines;
      for (std::string line; std::getline(file, line);) lines.push_back(line);
      if (!lines.empty() && lines.back().starts_with("objects ")) return lines;
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return {"the server never ended"};
  }

  std::string logFile_ =
      std::string("recording-server-") + testing::UnitTest::GetInstance()->current_test_info()->name() + ".log";
  std::unique_ptr<test::RegisteredServer> registered_;
};

TEST_F(AutomationAcrossProcesses, CarriesAReportCallByCallAndTheServerEnds) {
  registerServer("normal");
  EXPECT_TRUE(writeTinyReport());
  Lines lines = log();
  EXPECT_EQ(lines.back(), "objects 0, references 0");
  lines.pop_back();
  // When a reference is given back across processes is the system's business; the calls stand in their order.
  const auto isRelease = [](const std::string& line) { return line.starts_with("release "); };
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isRelease),
            std::count_if(kTinyReport.begin(), kTinyReport.end(), isRelease));
  Lines wanted = kTinyReport;
  std::erase_if(lines, isRelease);
  std::erase_if(wanted, isRelease);
  EXPECT_EQ(lines, wanted);
}

TEST_F(AutomationAcrossProcesses, TellsTheServersOwnWordsAndTheServerEndsWhateverCallFails) {
  for (const std::size_t failing : {std::size_t{0}, std::size_t{5}, kCallsOfTinyReport - 1}) {
    registerServer("fail=" + std::to_string(failing));
    EXPECT_THAT(wordsOf(writeTinyReport), HasSubstr("told to fail at this call")) << failing;
    EXPECT_EQ(log().back(), "objects 0, references 0") << failing;
    std::remove(logFile_.c_str());
  }
}

TEST_F(AutomationAcrossProcesses, RaisesWhereTheServerVanishesAtAnyCall) {
  for (std::size_t vanishing = 0; vanishing < kCallsOfTinyReport; ++vanishing) {
    registerServer("vanish=" + std::to_string(vanishing));
    const std::string words = wordsOf(writeTinyReport);
    EXPECT_THAT(words, HasSubstr("automation: ")) << vanishing;
    EXPECT_THAT(words, HasSubstr("(0x80")) << vanishing;
    EXPECT_TRUE(host_.users().boxes.empty()) << vanishing;
  }
}

TEST_F(AutomationAcrossProcesses, SaysInTheFixedBoxThatTheServerQuitsAtOnce) {
  registerServer("quit-at-once");
  EXPECT_FALSE(writeTinyReport());
  EXPECT_EQ(host_.users().boxes.size(), 1U);
}

}  // namespace
}  // namespace lvx::native
