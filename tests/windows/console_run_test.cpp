// Ctrl-C and Ctrl-Break of the console that lvxhost.exe runs in.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "started_program.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

namespace fs = std::filesystem;
using testing::ContainsRegex;
using testing::Each;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

/// Takes part in another process's console, whose interruptions this process doesn't hear meanwhile.
class PartInConsole {
 public:
  explicit PartInConsole(const Started& program) {
    FreeConsole();
    SetConsoleCtrlHandler(nullptr, TRUE);
    // It has one when its start is over.
    while (!isIn_ && program.runs()) {
      isIn_ = AttachConsole(program.number()) != 0;
      if (!isIn_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  PartInConsole(const PartInConsole&) = delete;
  PartInConsole& operator=(const PartInConsole&) = delete;
  ~PartInConsole() {
    FreeConsole();
    SetConsoleCtrlHandler(nullptr, FALSE);
  }

  [[nodiscard]] bool isIn() const { return isIn_; }
  /// Presses Ctrl-C: everybody in the console hears it.
  [[nodiscard]] static bool interrupt() { return GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) != 0; }

 private:
  bool isIn_ = false;
};

class WindowsConsole : public testing::Test {
 protected:
  WindowsConsole() { fs::create_directory(out()); }

  [[nodiscard]] fs::path out() const { return folder_ / "out"; }
  void putOlder(const std::vector<std::string>& names) const {
    for (const std::string& name : names) std::ofstream(out() / name) << "older";
  }
  [[nodiscard]] std::string content(const std::string& name) const { return test::fileBytes(out() / name); }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(out())) names.push_back(entry.path().filename().string());
    return names;
  }

  /// lvxhost.exe in a console of its own, without a window.
  [[nodiscard]] Started start(const std::wstring& arguments, DWORD more = 0) const {
    const std::wstring program = fs::path(test::inBuild("/bin/lvxhost.exe")).make_preferred().native();
    return {L'"' + program + L"\" " + arguments, folder_.path(), CREATE_NO_WINDOW | more};
  }
  /// A report of more than 1,000 lines across, which takes seconds.
  [[nodiscard]] Started startLongReport(DWORD more = 0) const {
    return start(L"projection \"" + fs::path(test::inSource("/examples/valley-road.xml")).native() +
                     L"\" --alignment \"Valley road\" --surface \"Existing ground\" "
                     L"--lines every=0.2,left=30,right=30 --out out/r --overwrite",
                 more);
  }
  /// False where the program ended before.
  [[nodiscard]] static bool waitFor(const std::function<bool()>& isSo, const Started& program) {
    while (!isSo()) {
      if (!program.runs()) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
  }

  test::TemporaryFolder folder_;
};

TEST_F(WindowsConsole, CtrlCInTheWorkbookLeavesTheOlderOneBesideTheNewText) {
  putOlder({"r.xls", "r.html"});
  const Started report = startLongReport();
  const PartInConsole console(report);
  ASSERT_TRUE(console.isIn());
  ASSERT_TRUE(waitFor([&] { return fs::exists(out() / "r.txt"); }, report)) << report.errors();
  ASSERT_TRUE(console.interrupt());
  EXPECT_EQ(report.code(), 130) << report.errors();
  EXPECT_THAT(report.errors(), HasSubstr("interrupted; no unfinished file was left"));
  EXPECT_GT(content("r.txt").size(), 100'000U);
  EXPECT_EQ(content("r.xls"), "older");
  EXPECT_EQ(content("r.html"), "older");
  EXPECT_THAT(names(), UnorderedElementsAre("r.txt", "r.xls", "r.html"));
}

TEST_F(WindowsConsole, CtrlCBeforeTheTextIsWholeLeavesAllOlderFiles) {
  putOlder({"r.txt", "r.xls", "r.html"});
  const Started report = startLongReport();
  const PartInConsole console(report);
  ASSERT_TRUE(console.isIn());
  // The new text grows beside the older one.
  ASSERT_TRUE(waitFor([&] { return names().size() > 3; }, report)) << report.errors();
  ASSERT_TRUE(console.interrupt());
  EXPECT_EQ(report.code(), 130) << report.errors();
  EXPECT_THAT(report.errors(), HasSubstr("interrupted; no unfinished file was left"));
  for (const char* name : {"r.txt", "r.xls", "r.html"}) EXPECT_EQ(content(name), "older") << name;
  EXPECT_THAT(names(), UnorderedElementsAre("r.txt", "r.xls", "r.html"));
}

TEST_F(WindowsConsole, TheSecondCtrlCEndsAtOnceAndTheNextRunClearsUp) {
  putOlder({"r.xls"});
  {
    const Started report = startLongReport();
    const PartInConsole console(report);
    ASSERT_TRUE(console.isIn());
    ASSERT_TRUE(waitFor([&] { return fs::exists(out() / "r.txt"); }, report)) << report.errors();
    ASSERT_TRUE(console.interrupt());
    ASSERT_TRUE(console.interrupt());
    // The first may have been enough by then.
    EXPECT_THAT(report.code(), testing::AnyOf(static_cast<int>(STATUS_CONTROL_C_EXIT), 130)) << report.errors();
    EXPECT_EQ(content("r.xls"), "older");
    EXPECT_FALSE(fs::exists(out() / "r.html"));
  }
  const Started next = startLongReport();
  EXPECT_EQ(next.code(), 0) << next.errors();
  EXPECT_THAT(names(), UnorderedElementsAre("r.txt", "r.xls", "r.html"));
}

TEST_F(WindowsConsole, CtrlCEndsABatchWhichGoesOnLater) {
  {
    std::ofstream jobs(folder_ / "jobs.jsonl", std::ios::binary);
    for (int i = 0; i < 20; ++i)
      jobs << R"({"command": "points", "drawing": ")"
           << fs::path(test::inSource("/examples/valley-road.xml")).generic_string()
           << R"(", "alignment": "Valley road", "points": "1", "out": "out/)" << i << "\"}\n";
  }
  putOlder({"19.txt"});
  {
    const Started batch = start(L"batch jobs.jsonl --jobs 2 --journal j --overwrite");
    const PartInConsole console(batch);
    ASSERT_TRUE(console.isIn());
    ASSERT_TRUE(waitFor([&] { return fs::exists(out() / "1.html"); }, batch)) << batch.errors();
    ASSERT_TRUE(console.interrupt());
    EXPECT_EQ(batch.code(), 130) << batch.errors();
    EXPECT_THAT(batch.errors(), ContainsRegex("20 jobs: \\d+ done, 0 failed.* not begun\n"));
    EXPECT_THAT(batch.errors(), HasSubstr("interrupted; no unfinished file was left"));
    EXPECT_EQ(content("19.txt"), "older");
    EXPECT_THAT(names(), Each(testing::Not(testing::StartsWith(".lvx-"))));
  }
  const Started later = start(L"batch jobs.jsonl --jobs 2 --journal j --resume --overwrite");
  EXPECT_EQ(later.code(), 0) << later.errors();
  EXPECT_THAT(later.errors(), ContainsRegex("20 jobs: 20 done \\(\\d+ before\\), 0 failed\n"));
  EXPECT_EQ(names().size(), 60U);
}

TEST_F(WindowsConsole, CtrlBreakOfItsGroupEndsAReport) {
  putOlder({"r.xls", "r.html"});
  const Started report = startLongReport(CREATE_NEW_PROCESS_GROUP);
  const PartInConsole console(report);
  ASSERT_TRUE(console.isIn());
  ASSERT_TRUE(waitFor([&] { return fs::exists(out() / "r.txt"); }, report)) << report.errors();
  if (GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, report.number()) == 0) {
    ASSERT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    GTEST_SKIP() << "this system has no Ctrl-Break (as Wine 8)";
  }
  EXPECT_EQ(report.code(), 130) << report.errors();
  EXPECT_EQ(content("r.xls"), "older");
  EXPECT_THAT(names(), UnorderedElementsAre("r.txt", "r.xls", "r.html"));
}

}  // namespace
}  // namespace lvx
