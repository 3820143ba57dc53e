// Many runs in one process.
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "module_host.h"
#include "support/run_program.h"

namespace lvx {
namespace {

std::size_t openFiles() {
  namespace fs = std::filesystem;
  return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

/// Resident pages of this process, in bytes.
std::size_t residentBytes() {
  std::ifstream file("/proc/self/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  file >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

TEST(ModuleLifetime, TwoHundredRunsLeaveNoGrowthInMemoryHandlesOrOpenFiles) {
  constexpr int kRuns = 200;
  constexpr int kWarmUp = 40;
  const test::TemporaryFolder folder;
  const std::string run =
      R"({"command": "lvx_Report_Que"}, {"click": 126}, {"pick": {"name": "A", "class": "QMT_ALIGNMENT"}},
    {"type": 100, "text": ")" +
      (folder / "road").string() + R"("}, {"click": 1})";
  const std::string first = "[" + run;
  const std::string next = ", " + run + R"(, {"answer": "yes"}, {"answer": "yes"}, {"answer": "yes"})";
  std::string script = first;
  for (int i = 1; i < kRuns; ++i) script += next;
  test::ModuleHost process(script + "]");
  const runtime::LoadedModule module = process.host.loadModule(test::kModuleFile);

  // The script as read is taken along the way, so a run can but lower what the process holds.
  std::size_t files = 0;
  std::size_t memory = 0;
  int done = 0;
  process.host.journal().listener = [&](const runtime::FileEvent& event) {
    if (event.path.find(".html") == std::string::npos) return;
    process.lines.clear();
    if (++done == kWarmUp) {
      files = openFiles();
      memory = residentBytes();
    }
  };
  EXPECT_THAT(process.playAll(), testing::IsEmpty());
  EXPECT_EQ(done, kRuns);
  EXPECT_LE(openFiles(), files);
  EXPECT_EQ(process.host.openDrawing()->liveObjects().total(), 0U);
#if !defined(__SANITIZE_ADDRESS__)
  // A leak of one report's text alone (4 KB a run) would show as 640 KB.
  EXPECT_LT(residentBytes(), memory + 512 * 1024);
#endif
}

}  // namespace
}  // namespace lvx
