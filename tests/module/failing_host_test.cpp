// Hosts that fail: what the module tells, and that it gives back everything all the same.
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/recording_excel.h"
#include "host/roadway_model.h"
#include "module_host.h"
#include "platform/utf8.h"
#include "support/run_program.h"

namespace lvx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The transcript's events of a kind.
template <class Host>
std::vector<std::string> events(const test::ModuleHostOf<Host>& process, const std::string& kind) {
  std::vector<std::string> found;
  for (const std::string& line : process.lines)
    if (line.find("\"event\":\"" + kind + "\"") != std::string::npos) found.push_back(line);
  return found;
}

// ---------------------------------------------------------------- no roadway side

/// An application that has nothing but itself.
class BareApplication final : public host::VantorApplication {
 public:
  void setFlag(std::int16_t) override {}
  [[nodiscard]] host::Ref<host::QmtObject> interfaceObject(const host::CString&) override { return {}; }
};

class NotRunning : public runtime::StandinHost {
 public:
  using StandinHost::StandinHost;
  host::ActiveApplication activeApplication(const host::CString&) override { return {}; }
};

class GivesNothing : public runtime::StandinHost {
 public:
  using StandinHost::StandinHost;
  host::ActiveApplication activeApplication(const host::CString&) override { return {true, {}}; }
};

class WithoutRoadways : public runtime::StandinHost {
 public:
  using StandinHost::StandinHost;
  host::ActiveApplication activeApplication(const host::CString&) override {
    return {true, std::make_shared<BareApplication>()};
  }
};

template <class Host>
void expectRoadwayBox(const std::string& step) {
  test::ModuleHostOf<Host> process(R"([{"command": "lvx_Report_GLS"}, {"answer": "ok"}, {"click": 2}])");
  {
    const runtime::LoadedModule module = process.host.loadModule(test::kModuleFile);
    // A dialog that isn't attached gives nothing back at its end, the companion's references among it; the checks tell.
    EXPECT_THAT(process.playAll(), ElementsAre("companion library: its references were not given up"));
    EXPECT_FALSE(process.lastException.has_value());
    EXPECT_EQ(process.lastRaisedByHost, nullptr);
  }
  const std::vector<std::string> boxes = events(process, "box");
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_NE(boxes.front().find(step + "\",\"icon\":\"stop\""), std::string::npos) << boxes.front();
  EXPECT_EQ(process.host.openDrawing()->liveObjects().description(), "");
}

TEST(HostWithoutRoadways, IsToldByTheStepThatFailedAndTheDialogCanBeLeft) {
  expectRoadwayBox<NotRunning>(" (3)");
  expectRoadwayBox<GivesNothing>(" (2)");
  expectRoadwayBox<WithoutRoadways>(" (1)");
}

// ---------------------------------------------------------------- an object that can't be opened

TEST(PickedObject, ThatCannotBeOpenedIsAskedForAgainWithoutABox) {
  test::ModuleHost process(R"([{"command": "lvx_Report_Que"},
    {"click": 126}, {"pick": {"name": "A", "class": "QMT_ALIGNMENT"}}, {"pick": {"name": "A", "class": "QMT_ALIGNMENT"}},
    {"click": 2}])");
  runtime::StandinRunTime& runTime = process.host.standinRunTime();
  const auto checks = runTime.callObserver;
  int clicks = 0;
  bool isPicking = false;
  // Another program erases the first object that is clicked, before it is opened, and puts it back.
  runTime.callObserver = [&](const char* function) {
    checks(function);
    const std::string_view name = function;
    if (name == "vnedEntSel") ++clicks;
    const bool isOpening = name == "vndbOpenObject" && isPicking;
    isPicking = name == "vnedEntSel" || name == "vndbGetObjectId";
    runTime.setDrawing(isOpening && clicks == 1 ? nullptr : process.host.openDrawing());
  };
  {
    const runtime::LoadedModule module = process.host.loadModule(test::kModuleFile);
    EXPECT_THAT(process.playAll(), IsEmpty());
    EXPECT_FALSE(process.lastException.has_value());
  }
  EXPECT_EQ(clicks, 2);
  EXPECT_EQ(events(process, "prompt").size(), 2U);
  EXPECT_THAT(events(process, "box"), IsEmpty());
  runTime.callObserver = checks;
}

// ---------------------------------------------------------------- the spreadsheet program

/// Starts a recording program for each workbook, one after another.
class WithRecordedExcel : public runtime::StandinHost {
 public:
  using StandinHost::StandinHost;
  host::Ref<host::AutomationObject> createAutomationObject(const host::CString& programId) override {
    return test::recordedBy(programs.at(started++))(programId);
  }

  std::vector<std::shared_ptr<test::ExcelRecord>> programs;
  std::size_t started = 0;
};

/// Two runs of the projection report, of which the first meets a program that fails.
class FailingExcel : public testing::Test {
 protected:
  using Process = test::ModuleHostOf<WithRecordedExcel>;

  /// `answer`: what the user does between the runs, ", {…}".
  void play(const std::string& answer = "") {
    process_ = std::make_unique<Process>(R"([{"command": "lvx_Report_Que"}, {"type": 100, "text": ")" +
                                         (folder_ / "first").string() + R"("}, {"click": 1})" + answer +
                                         R"(, {"command": "lvx_Report_Que"}, {"type": 100, "text": ")" +
                                         (folder_ / "second").string() + R"("}, {"click": 1}])");
    process_->host.programs = {failing_, second_};
    const runtime::LoadedModule module = process_->host.loadModule(test::kModuleFile);
    EXPECT_THAT(process_->playAll(), IsEmpty());
    EXPECT_EQ(process_->lastRaisedByHost, nullptr);
  }
  [[nodiscard]] bool wrote(const std::string& name) const { return std::filesystem::exists(folder_ / name); }
  void expectAWholeSecondRun() const {
    EXPECT_EQ(second_->finishedAs, platform::fromUtf8((folder_ / "second.xls").string()));
    EXPECT_EQ(second_->liveObjects, 0);
    for (const char* form : {"second.txt", "second.html"}) EXPECT_TRUE(wrote(form)) << form;
    EXPECT_EQ(process_->host.openDrawing()->liveObjects().description(), "");
  }

  test::TemporaryFolder folder_;
  std::shared_ptr<test::ExcelRecord> failing_ = std::make_shared<test::ExcelRecord>();
  std::shared_ptr<test::ExcelRecord> second_ = std::make_shared<test::ExcelRecord>();
  std::unique_ptr<Process> process_;
};

TEST_F(FailingExcel, ThatDoesNotStartIsToldInABoxAndTheOtherFormsAreWritten) {
  failing_->failStart = true;
  play(R"(, {"answer": "ok"})");
  ASSERT_EQ(events(*process_, "box").size(), 1U);
  EXPECT_NE(events(*process_, "box").front().find("Couldn't start Excel"), std::string::npos);
  EXPECT_FALSE(process_->lastException.has_value());
  for (const char* form : {"first.txt", "first.html"}) EXPECT_TRUE(wrote(form)) << form;
  expectAWholeSecondRun();
}

TEST_F(FailingExcel, OnACellEndsTheCommandWithoutQuitAndWithEverythingReleased) {
  failing_->failAtWrite = 5;
  play();
  EXPECT_THAT(events(*process_, "box"), IsEmpty());
  ASSERT_TRUE(process_->lastException.has_value());
  EXPECT_EQ(failing_->finishedAs, std::nullopt);
  EXPECT_EQ(failing_->givenUp, 1);
  EXPECT_EQ(failing_->liveObjects, 0);
  EXPECT_TRUE(wrote("first.txt"));
  EXPECT_FALSE(wrote("first.html")) << "it would have come behind the workbook";
  expectAWholeSecondRun();
}

TEST_F(FailingExcel, OnSavingEndsTheCommandLikewise) {
  failing_->failFinish = true;
  play();
  ASSERT_TRUE(process_->lastException.has_value());
  EXPECT_EQ(failing_->givenUp, 1);
  EXPECT_EQ(failing_->liveObjects, 0);
  EXPECT_FALSE(wrote("first.html"));
  expectAWholeSecondRun();
}

}  // namespace
}  // namespace lvx
