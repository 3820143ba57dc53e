// lvxhost.exe with a spreadsheet program that is registered on the machine: which one writes the workbook, what reaches it,
// what a user is told.
#include <algorithm>
#include <array>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// clang-format off
#include <windows.h>
#include <process.h>
// clang-format on

#include "host/excel_operations.h"
#include "native/automation_client.h"
#include "platform/utf8.h"
#include "recording_server.h"
#include "support/places.h"

namespace lvx {
namespace {

using Lines = std::vector<std::string>;
using testing::Contains;
using testing::StartsWith;

std::string backslashes(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

class SpreadsheetRun : public testing::Test {
 protected:
  SpreadsheetRun() {
    std::array<wchar_t, MAX_PATH> temporary{};
    GetTempPathW(static_cast<DWORD>(temporary.size()), temporary.data());
    folder_ = framework::CString(temporary.data()) + L"lvx spreadsheet " + std::to_wstring(GetCurrentProcessId());
    if (CreateDirectoryW(folder_.c_str(), nullptr) == FALSE) throw std::runtime_error("no folder for the test");
  }
  ~SpreadsheetRun() override {
    for (const wchar_t* name : {L"\\road.xls", L"\\road.txt", L"\\server.log"}) DeleteFileW((folder_ + name).c_str());
    RemoveDirectoryW(folder_.c_str());
  }

  void SetUp() override {
    const native::AutomationScope scope;
    if (native::isAutomationProgram(host::kExcelProgramId))
      GTEST_SKIP() << "this machine has a spreadsheet program of its own";
  }

  [[nodiscard]] framework::CString serverCommand(const framework::CString& wish) const {
    const std::string program = backslashes(test::inBuild("/tests/windows/recording-server.exe"));
    return L'"' + platform::fromUtf8(program) + L"\" \"" + folder_ + L"\\server.log\" " + wish;
  }

  /// Runs a report with these options behind it and gives the exit code.
  [[nodiscard]] int run(const std::vector<framework::CString>& options) const {
    const framework::CString program = platform::fromUtf8(backslashes(test::inBuild("/bin/lvxhost.exe")));
    const framework::CString drawing =
        L'"' + platform::fromUtf8(backslashes(test::inSource("/examples/valley-road.xml"))) + L'"';
    std::vector<framework::CString> words{
        L"lvxhost",       L"points",   drawing,    L"--quiet", L"--alignment",
        L"\"Mill lane\"", L"--points", L"1,5,7-9", L"--out",   L'"' + folder_ + L"\\road\""};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<const wchar_t*> arguments;
    for (const framework::CString& word : words) arguments.push_back(word.c_str());
    arguments.push_back(nullptr);
    return static_cast<int>(_wspawnv(_P_WAIT, program.c_str(), arguments.data()));
  }

  [[nodiscard]] bool stands(const wchar_t* name) const {
    return GetFileAttributesW((folder_ + L"\\" + name).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  /// What the server wrote at its end.
  [[nodiscard]] Lines log() const {
    for (int i = 0; i < 200; ++i) {
      std::ifstream file(platform::toUtf8(folder_ + L"\\server.log"));
      Lines lines;
      for (std::string line; std::getline(file, line);) lines.push_back(line);
      if (!lines.empty() && lines.back().starts_with("objects ")) return lines;
      Sleep(50);
    }
    return {"the server never ended"};
  }

  framework::CString folder_;
};

TEST_F(SpreadsheetRun, TheRegisteredProgramWritesTheWorkbookWithoutBeingAskedFor) {
  const test::RegisteredServer registered(host::kExcelProgramId, serverCommand(L"normal"));
  EXPECT_EQ(run({L"--forms", L"txt,xls"}), 0);
  EXPECT_TRUE(stands(L"road.txt"));
  EXPECT_TRUE(stands(L"road.xls"));
  const Lines lines = log();
  EXPECT_EQ(lines.front(), "start app");
  EXPECT_EQ(lines.back(), "objects 0, references 0");
  EXPECT_THAT(lines, Contains("range.Value = \"* Points\""));
  EXPECT_THAT(lines, Contains("range.NumberFormatLocal = \"0,000\""));
  EXPECT_THAT(lines, Contains(StartsWith("sheet.SaveAs(\"" + platform::toUtf8(folder_) + "\\road.xls\", missing")));
  EXPECT_THAT(lines, Contains("app.Quit"));
}

TEST_F(SpreadsheetRun, ThisProgramWritesItWhereThatIsAskedFor) {
  const test::RegisteredServer registered(host::kExcelProgramId, serverCommand(L"normal"));
  EXPECT_EQ(run({L"--forms", L"xls", L"--workbook", L"file"}), 0);
  EXPECT_TRUE(stands(L"road.xls"));
  EXPECT_FALSE(stands(L"server.log"));
}

TEST_F(SpreadsheetRun, AFailureOfTheProgramIsAnErrorAndNoWorkbook) {
  const test::RegisteredServer registered(host::kExcelProgramId, serverCommand(L"fail=7"));
  EXPECT_NE(run({L"--forms", L"txt,xls"}), 0);
  EXPECT_TRUE(stands(L"road.txt")) << "written before";
  EXPECT_FALSE(stands(L"road.xls"));
  EXPECT_EQ(log().back(), "objects 0, references 0");
}

TEST_F(SpreadsheetRun, WithoutAProgramTheOtherFormsAreWritten) {
  EXPECT_NE(run({L"--forms", L"txt,xls", L"--workbook", L"excel"}), 0);
  EXPECT_TRUE(stands(L"road.txt"));
  EXPECT_FALSE(stands(L"road.xls"));
}

}  // namespace
}  // namespace lvx
