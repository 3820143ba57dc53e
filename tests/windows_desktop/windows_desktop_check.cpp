// The desktop of another system, worked by a person's keyboard: it shows the example, writes its three reports with the
// bytes of this system's lvxhost, and closes.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop_user/desktop_user.h"
#include "desktop_user/foreign_windows.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

bool waitUntil(const std::function<bool()>& holds, std::chrono::seconds longest = 20s) {
  const auto end = std::chrono::steady_clock::now() + longest;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(50ms);
  }
  return true;
}

/// Keeps the screen as NAME.png in the folder that LVX_PICTURES names.
void picture(const std::string& name) {
  std::this_thread::sleep_for(400ms);
  const char* const folder = std::getenv("LVX_PICTURES");
  if (folder == nullptr) return;
  EXPECT_TRUE(DesktopUser::screenshot((fs::path(folder) / (name + ".png")).string())) << name;
}

/// A list or a field of a dialog, and what is done there once the tabulator has led to it.
struct Stop {
  int tabs = 1;
  std::string text;  ///< in a list: how its row begins
};

class WindowsDesktop : public testing::Test {
 protected:
  void SetUp() override {
    const char* const command = std::getenv("LVX_DESKTOP_COMMAND");
    ASSERT_NE(command, nullptr) << "LVX_DESKTOP_COMMAND names the program that starts the desktop";
    fs::create_directory(folder_ / "reports");
    // The reports tell under which names they were written.
    fs::create_directories(folder_ / "expected" / "reports");
    for (const fs::path& place : {folder_.path(), folder_ / "expected"})
      fs::copy_file(inSource("/examples/valley-road.xml"), place / "valley-road.xml");
    program_ = std::async(std::launch::async, [this, command] {
      RunRequest request;
      request.program = command;
      request.arguments = {"valley-road.xml"};
      request.environment["LVX_WINE_DISPLAY"] = std::getenv("DISPLAY");
      request.folder = folder_.path();
      return runProgram(request);
    });
    ASSERT_NE(waitForForeignWindow("valley-road.xml"), 0U);
  }

  void report(Qt::Key key, const std::string& title, const std::vector<Stop>& stops, const std::string& name) {
    user_.key(key, Qt::ControlModifier);
    ASSERT_NE(waitForForeignWindow(title), 0U) << title;
    picture(name + "-empty");
    for (const Stop& stop : stops) {
      for (int i = 0; i < stop.tabs; ++i) user_.key(Qt::Key_Tab);
      user_.type(stop.text);
    }
    picture(name);
    user_.key(Qt::Key_Return);
  }

  /// The files that this system's program writes, by their names.
  void expect(const std::string& command, const std::vector<std::string>& arguments, const std::string& name) {
    RunRequest request;
    request.program = inBuild("/bin/lvxhost");
    request.folder = folder_ / "expected";
    request.arguments = {command, "valley-road.xml"};
    request.arguments.insert(request.arguments.end(), arguments.begin(), arguments.end());
    request.arguments.insert(request.arguments.end(), {"--out", "reports/" + name});
    const RunResult run = runProgram(request);
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    for (const char* const form : {".txt", ".xls", ".html"}) {
      const fs::path file = fs::path("reports") / (name + form);
      ASSERT_TRUE(waitUntil([&] { return fs::exists(folder_ / file); })) << file;
      const std::string expected = fileBytes(folder_ / "expected" / file);
      EXPECT_TRUE(waitUntil([&] { return fileBytes(folder_ / file) == expected; }, 10s)) << file;
    }
  }

  TemporaryFolder folder_;
  DesktopUser user_;
  std::future<RunResult> program_;
};

TEST_F(WindowsDesktop, WritesTheThreeReportsByKeyboardAndCloses) {
  std::this_thread::sleep_for(3s);
  picture("main");
  report(Qt::Key_1, "Profile projection", {{2, "V"}, {10, "reports/projection"}}, "projection");
  expect("projection", {"--alignment", "Valley road", "--group", "Cross sections 20 m", "--surface", "Existing ground"},
         "projection");
  ASSERT_TRUE(waitUntil([] { return findWindow("Profile projection") == 0; }));
  std::this_thread::sleep_for(1s);
  report(Qt::Key_2, "Points", {{2, "V"}, {9, "reports/points"}}, "points");
  expect("points", {"--alignment", "Valley road", "--point-group", "Control points"}, "points");
  ASSERT_TRUE(waitUntil([] { return findWindow("Points") == 0; }));
  std::this_thread::sleep_for(1s);
  report(Qt::Key_3, "GLS report", {{2, "V"}, {2, "V"}, {9, "reports/gls"}}, "gls");
  std::this_thread::sleep_for(2s);
  picture("gls-question");
  user_.key(Qt::Key_Escape);
  expect("gls", {"--alignment", "Valley road", "--profile", "Valley road design", "--group", "Cross sections 20 m"},
         "gls");
  ASSERT_TRUE(waitUntil([] { return findWindow("GLS report") == 0; }));
  std::this_thread::sleep_for(1s);
  picture("end");
  user_.key(Qt::Key_Q, Qt::ControlModifier);
  ASSERT_EQ(program_.wait_for(60s), std::future_status::ready);
  const RunResult run = program_.get();
  EXPECT_EQ(run.exitCode, 0) << run.errors;
  EXPECT_EQ(run.errors, "");
}

}  // namespace
}  // namespace lvx::test
