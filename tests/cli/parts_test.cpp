// lvxhost batch --part: the shares of a job file, as the real program.
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/job_file.h"
#include "made_drawing.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using test::RunResult;
using testing::HasSubstr;

class PartsTest : public BareDrawingTest {
 protected:
  PartsTest() {
    std::ofstream jobs(folder_ / "jobs.jsonl");
    for (int drawing = 0; drawing < 7; ++drawing) {
      const std::string name = "road" + std::to_string(drawing) + ".xml";
      // Of sizes that differ.
      std::ofstream(folder_ / name) << kBareDrawing << "<!--"
                                    << std::string(40'000 * static_cast<std::size_t>(drawing), 'x') << "-->";
      for (int report = 0; report <= drawing % 3; ++report) jobs << job(name, report);
    }
  }
  static std::string job(const std::string& drawing, int report, const std::string& more = "") {
    return R"({"command": "points", "drawing": ")" + drawing +
           R"(", "alignment": "Axis", "points": "all", "out": "out/)" + drawing.substr(0, drawing.find('.')) + "-" +
           std::to_string(report) + "\"" + more + "}\n";
  }
  [[nodiscard]] std::map<std::string, std::string> reports() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder_ / "out"))
      files[entry.path().filename().string()] = fileBytes(entry.path());
    return files;
  }
  void clear() const {
    fs::remove_all(folder_ / "out");
    fs::create_directory(folder_ / "out");
  }
};

TEST_F(PartsTest, WriteTogetherWhatOneRunWrites) {
  clear();
  ASSERT_EQ(run({"batch", "jobs.jsonl"}).exitCode, 0);
  const auto expected = reports();
  ASSERT_GT(expected.size(), 20U);
  for (const int count : {1, 2, 3, 9}) {
    clear();
    for (int part = 1; part <= count; ++part) {
      const RunResult result =
          run({"batch", "jobs.jsonl", "--keep", "--part", std::to_string(part) + "/" + std::to_string(count)});
      EXPECT_EQ(result.exitCode, 0) << result.errors;  // a file that stands already would be kept, which is 1
    }
    EXPECT_TRUE(reports() == expected) << count;
  }
}

TEST_F(PartsTest, KeepTheJobsOfADrawingTogether) {
  const std::string text = fileBytes(folder_ / "jobs.jsonl");
  const fs::path before = fs::current_path();
  fs::current_path(folder_.path());
  std::map<std::string, std::set<int>> parts;
  std::size_t jobs = 0;
  for (std::size_t part = 1; part <= 3; ++part) {
    JobFileSettings settings{"jobs.jsonl", {}, {}, {}, Share{part, 3}};
    const JobFile file(text, settings);
    for (const JobFile::Entry& entry : file.entries()) {
      parts[file.read(entry).options.drawing].insert(static_cast<int>(part));
      ++jobs;
    }
  }
  fs::current_path(before);
  EXPECT_EQ(jobs, 13U);
  EXPECT_EQ(parts.size(), 7U);
  for (const auto& [drawing, of] : parts) EXPECT_EQ(of.size(), 1U) << drawing;
}

TEST_F(PartsTest, CheckTheJobsOfTheOthersToo) {
  std::ofstream(folder_ / "jobs.jsonl", std::ios::app) << job("road6.xml", 0) << job("other.xml", 1, R"(, "odd": 1)");
  for (const char* part : {"1/2", "2/2"}) {
    const RunResult result = run({"batch", "jobs.jsonl", "--part", part});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.errors, HasSubstr("jobs.jsonl:14: writes the same files as line "));
    EXPECT_THAT(result.errors, HasSubstr("jobs.jsonl:15: \"odd\" is no option"));
  }
}

TEST_F(PartsTest, AreSharesWithinTheirNumber) {
  for (const char* part : {"0/2", "3/2", "1", "a/b", "1/0"}) {
    const RunResult result = run({"batch", "jobs.jsonl", "--part", part});
    EXPECT_EQ(result.exitCode, 2) << part;
    EXPECT_THAT(result.errors, HasSubstr("is no share such as 3/8"));
  }
}

TEST_F(PartsTest, AreNothingToDoWhereDrawingsAreFewer) {
  const RunResult result = run({"batch", "jobs.jsonl", "--part", "9/9"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.errors, HasSubstr("0 jobs: 0 done"));
}

}  // namespace
}  // namespace lvx::cli
