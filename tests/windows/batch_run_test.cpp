// lvxhost.exe batch: what ends its processes from outside, and what is left then.
#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// clang-format off
#include <windows.h>
#include <tlhelp32.h>
// clang-format on

#include "started_program.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

namespace fs = std::filesystem;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// Processes of that program.
std::vector<DWORD> processesOf(const std::wstring& program) {
  std::vector<DWORD> numbers;
  const HANDLE list = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32FirstW(list, &entry); more != 0; more = Process32NextW(list, &entry))
    if (program == static_cast<const wchar_t*>(entry.szExeFile)) numbers.push_back(entry.th32ProcessID);
  CloseHandle(list);
  return numbers;
}

class WindowsBatch : public testing::Test {
 protected:
  WindowsBatch() {
    // A name of its own, so that its processes can be told from those of other tests.
    program_ = folder_ / "bin/lvxhost-of-this-test.exe";
    fs::create_directory(folder_ / "bin");
    fs::create_directories(folder_ / "share/lvxhost");
    for (const char* name : {"LVX_MirelReport.vmx", "LVX_MIRELLIB.vmx"})
      fs::copy_file(test::inBuild("/bin/") + name, folder_ / "bin" / name);
    fs::copy_file(test::inBuild("/bin/lvxhost.exe"), program_);
    fs::copy(test::inSource("/messages"), folder_ / "share/lvxhost/messages", fs::copy_options::recursive);
    SetEnvironmentVariableW(L"SOURCE_DATE_EPOCH", L"86400");
    fs::create_directory(place());
    fs::copy_file(test::inSource("/examples/valley-road.xml"), place() / L"Stra\u00DFe.xml");
  }

  [[nodiscard]] fs::path place() const { return folder_ / "a place"; }

  void writeJobs(int count) const {
    std::ofstream jobs(place() / "jobs.jsonl", std::ios::binary);
    for (int i = 0; i < count; ++i)
      jobs << R"({"command": "points", "drawing": "Straße.xml", "alignment": "Valley road", "points": "1", )"
           << R"("forms": "txt", "out": "out)" << i << "/a\"}\n";
    for (int i = 0; i < count; ++i) fs::create_directory(place() / ("out" + std::to_string(i)));
  }

  [[nodiscard]] Started start(const std::wstring& options) const {
    return {L'"' + program_.native() + L"\" batch jobs.jsonl " + options, place()};
  }

  /// False where it ended before that.
  [[nodiscard]] static bool waitFor(const fs::path& file, const Started& batch) {
    while (!fs::exists(file))
      if (!batch.runs())
        return false;
      else
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return true;
  }

  /// Files whose names no finished file has.
  [[nodiscard]] std::vector<std::string> unfinished() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(place()))
      if (entry.path().filename().string().starts_with(".lvx-")) names.push_back(entry.path().string());
    return names;
  }

  test::TemporaryFolder folder_;
  fs::path program_;
};

TEST_F(WindowsBatch, EndsWhenItIsAskedToAndGoesOnLater) {
  writeJobs(20);
  {
    const Started batch = start(L"--jobs 2 --journal j");
    ASSERT_TRUE(waitFor(place() / "out1/a.txt", batch)) << batch.errors();
    EXPECT_TRUE(batch.ask());
    EXPECT_EQ(batch.code(), 130) << batch.errors();
    EXPECT_THAT(batch.errors(), ContainsRegex("20 jobs: \\d+ done, 0 failed.* not begun\n"));
    EXPECT_THAT(batch.errors(), HasSubstr("interrupted; no unfinished file was left"));
    EXPECT_FALSE(fs::exists(place() / "out19/a.txt"));
    EXPECT_THAT(unfinished(), testing::IsEmpty());
  }
  const Started later = start(L"--jobs 2 --journal j --resume");
  EXPECT_EQ(later.code(), 0) << later.errors();
  EXPECT_THAT(later.errors(), ContainsRegex("20 jobs: 20 done \\(\\d+ before\\), 0 failed\n"));
}

TEST_F(WindowsBatch, LeavesNoProcessWhenItIsKilledAndGoesOnLater) {
  writeJobs(20);
  {
    const Started batch = start(L"--jobs 2 --journal j");
    ASSERT_TRUE(waitFor(place() / "out4/a.txt", batch)) << batch.errors();
    EXPECT_GE(processesOf(program_.filename().native()).size(), 2U) << "or this shows nothing";
    batch.kill();
    EXPECT_EQ(batch.code(), 9);
  }
  for (int i = 0; i < 400 && !processesOf(program_.filename().native()).empty(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  EXPECT_THAT(processesOf(program_.filename().native()), testing::IsEmpty());
  const Started later = start(L"--jobs 2 --journal j --resume");
  EXPECT_EQ(later.code(), 0) << later.errors();
  EXPECT_THAT(later.errors(), ContainsRegex("20 jobs: 20 done \\(\\d+ before\\), 0 failed\n"));
  EXPECT_THAT(unfinished(), testing::IsEmpty());
  const auto rows = [&](int i) {
    const std::string report = test::fileBytes(place() / ("out" + std::to_string(i)) / "a.txt");
    return report.substr(std::min(report.find("* Date"), report.size()));
  };
  for (int i = 1; i < 20; ++i) EXPECT_EQ(rows(i), rows(0));
}

TEST_F(WindowsBatch, LosesOneReportAndNoOtherByAKilledProcess) {
  writeJobs(8);
  const Started batch = start(L"--jobs 1");
  ASSERT_TRUE(waitFor(place() / "out1/a.txt", batch)) << batch.errors();
  // All that it began; it goes on with new ones.
  for (const DWORD number : processesOf(program_.filename().native())) {
    if (number == batch.number()) continue;
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, number);
    TerminateProcess(process, 0xC0000005);
    CloseHandle(process);
  }
  EXPECT_EQ(batch.code(), 1);
  EXPECT_THAT(batch.errors(), ContainsRegex("8 jobs: 7 done, 1 failed \\(line \\d+\\)\n"));
  EXPECT_TRUE(fs::exists(place() / "out7/a.txt"));
}

}  // namespace
}  // namespace lvx
