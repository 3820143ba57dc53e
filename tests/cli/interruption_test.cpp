// Ctrl-C while a report is written, as the real program has it.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using test::RunResult;
using testing::HasSubstr;

class InterruptionTest : public testing::Test {
 protected:
  InterruptionTest() { fs::create_directory(folder_ / "out"); }

  void putOlder(const std::vector<std::string>& names) const {
    for (const std::string& name : names) std::ofstream(folder_ / ("out/" + name)) << "older";
  }
  /// The report is the shell's child $pid; `before` runs ahead of it, `behind` beside it.
  [[nodiscard]] RunResult shell(const std::string& before, const std::string& report, const std::string& behind) const {
    test::RunRequest request;
    request.program = "/bin/sh";
    request.folder = folder_.path();
    request.arguments = {"-c", before + "\"$0\" " + report + " --out out/r --overwrite & pid=$!; " + behind,
                         test::inBuild("/bin/lvxhost")};
    return test::runProgram(request);
  }
  /// Waits until a test of the shell holds, but not for ever.
  static std::string waitFor(const std::string& test) {
    return "i=0; until " + test + " || [ $i -gt 3000 ]; do sleep 0.01; i=$((i + 1)); done; ";
  }
  [[nodiscard]] std::string content(const std::string& name) const { return fileBytes(folder_ / ("out/" + name)); }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_ / "out")) names.push_back(entry.path().filename().string());
    return names;
  }

  test::TemporaryFolder folder_;
  std::string road_ = test::inSource("/examples/valley-road.xml");
};

TEST_F(InterruptionTest, InTheTextFormLeavesTheOlderWorkbookAndPage) {
  const std::vector<std::string> reports{
      "projection " + road_ + " --alignment 'Mill lane' --group 'Mill lane 25 m' --surface 'Existing ground'",
      "points " + road_ + " --alignment 'Valley road' --points all",
      "gls " + road_ + " --alignment 'Mill lane' --profile 'Mill lane design' --group 'Mill lane 25 m'"};
  for (const std::string& report : reports) {
    fs::remove_all(folder_ / "out");
    fs::create_directory(folder_ / "out");
    putOlder({"r.xls", "r.html"});
    // A full pipe, so that the report waits in its text form until somebody reads.
    const RunResult result =
        shell("mkfifo out/r.txt; exec 3<>out/r.txt; head -c 65536 /dev/zero >&3; ", report,
              waitFor("ls -l /proc/$pid/fd 2>/dev/null | grep -v ' 3 ->' | grep -q 'out/r.txt'") +
                  "kill -INT $pid; cat <&3 >/dev/null & reader=$!; wait $pid; code=$?; kill $reader; exit $code");
    EXPECT_EQ(result.exitCode, 130) << report << "\n" << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("interrupted; no unfinished file was left")) << report;
    EXPECT_EQ(content("r.xls"), "older") << report;
    EXPECT_EQ(content("r.html"), "older") << report;
    EXPECT_THAT(names(), testing::UnorderedElementsAre("r.txt", "r.xls", "r.html")) << report;
  }
}

TEST_F(InterruptionTest, InTheWorkbookLeavesTheOlderOneBesideTheNewText) {
  putOlder({"r.xls", "r.html"});
  const RunResult result = shell("",
                                 "projection " + road_ +
                                     " --alignment 'Valley road' --surface 'Existing ground' "
                                     "--lines every=0.2,left=30,right=30",
                                 waitFor("[ -e out/r.txt ]") + "kill -INT $pid; wait $pid");
  EXPECT_EQ(result.exitCode, 130) << result.errors;
  EXPECT_GT(content("r.txt").size(), 100'000U);
  EXPECT_EQ(content("r.xls"), "older");
  EXPECT_EQ(content("r.html"), "older");
  EXPECT_THAT(names(), testing::UnorderedElementsAre("r.txt", "r.xls", "r.html"));
}

}  // namespace
}  // namespace lvx::cli
