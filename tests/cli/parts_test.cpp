// lvxhost batch --part: the shares of a job file, as the real program.
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

// ---------------------------------------------------------------- one summary of all parts

class MergeTest : public PartsTest {
 protected:
  MergeTest() { clear(); }
  RunResult part(int number, int count, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"batch",     "jobs.jsonl",
                                       "--part",    std::to_string(number) + "/" + std::to_string(count),
                                       "--journal", journal(number)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }
  static std::string journal(int number) { return "part-" + std::to_string(number) + ".jsonl"; }
  /// What --json tells of the journals of these parts.
  [[nodiscard]] nlohmann::json merged(const std::vector<int>& parts, int code) const {
    std::vector<std::string> arguments{"batch",     "jobs.jsonl", "--json",     "--quiet",
                                       "--summary", "sum.json",   "--overwrite"};
    for (const int number : parts) arguments.insert(arguments.end(), {"--merge", journal(number)});
    const RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, code) << result.errors;
    auto answer = nlohmann::json::parse(result.output);
    const auto file = nlohmann::json::parse(fileBytes(folder_ / "sum.json"));
    for (const auto& [name, value] : file.items())
      if (name != "seconds") {
        EXPECT_EQ(answer[name], value) << name;
      }
    return answer;
  }
};

TEST_F(MergeTest, CountsTheJobsOfAllParts) {
  for (int number = 1; number <= 3; ++number) ASSERT_EQ(part(number, 3).exitCode, 0);
  const auto answer = merged({1, 2, 3}, 0);
  EXPECT_EQ(answer["count"], 13);
  EXPECT_EQ(answer["done"], 13);
  EXPECT_EQ(answer["files"], reports().size());
  std::size_t bytes = 0;
  for (const auto& [name, content] : reports()) bytes += content.size();
  EXPECT_EQ(answer["bytes"], bytes);
  EXPECT_TRUE(answer["diagnostics"].empty() || answer["diagnostics"][0]["severity"] == "note");
}

TEST_F(MergeTest, TellsWhatIsNotBegunAndWhatFailed) {
  std::ofstream(folder_ / "jobs.jsonl", std::ios::app) << job("missing.xml", 0);
  for (int number = 1; number <= 3; ++number) static_cast<void>(part(number, 3));
  const auto answer = merged({1, 2, 3}, 1);
  EXPECT_EQ(answer["count"], 14);
  EXPECT_EQ(answer["done"], 13);
  EXPECT_EQ(answer["failed"], 1);
  EXPECT_EQ(answer["notBegun"], 0);
  EXPECT_EQ(answer["failedJobs"][0]["line"], 14);
  const auto less = merged({1, 3}, 1);
  EXPECT_EQ(less["done"].get<int>() + less["failed"].get<int>() + less["notBegun"].get<int>(), 14);
  EXPECT_GT(less["notBegun"], 0);
}

TEST_F(MergeTest, TakesTheLastLineOfAJobAndTellsThoseOfSeveralJournals) {
  fs::rename(folder_ / "road3.xml", folder_ / "away.xml");
  EXPECT_EQ(part(1, 1).exitCode, 1);
  EXPECT_EQ(merged({1}, 1)["failed"], 1);
  fs::rename(folder_ / "away.xml", folder_ / "road3.xml");
  EXPECT_EQ(part(1, 1, {"--resume"}).exitCode, 0);
  EXPECT_EQ(merged({1}, 0)["done"], 13);
  fs::copy_file(folder_ / journal(1), folder_ / journal(2));
  const auto twice = merged({1, 2}, 0);
  EXPECT_EQ(twice["done"], 13);
  EXPECT_THAT(twice["diagnostics"][0]["text"].get<std::string>(), HasSubstr("13 jobs stand in several journals"));
}

TEST_F(MergeTest, RefusesWhatIsNoJournalOfTheseJobs) {
  ASSERT_EQ(part(1, 1).exitCode, 0);
  std::ofstream(folder_ / "other.jsonl") << job("road5.xml", 7);
  const RunResult other = run({"batch", "other.jsonl", "--merge", journal(1)});
  EXPECT_EQ(other.exitCode, 2);
  EXPECT_THAT(other.errors, HasSubstr("is of other jobs"));
  EXPECT_EQ(run({"batch", "jobs.jsonl", "--merge", "road1.xml"}).exitCode, 2);
  EXPECT_EQ(run({"batch", "jobs.jsonl", "--merge", "missing.jsonl"}).exitCode, 1);
  EXPECT_EQ(run({"batch", "jobs.jsonl", "--merge", journal(1), "--journal", "x"}).exitCode, 2);
  EXPECT_EQ(run({"batch", "jobs.jsonl", "--merge", journal(1), "--summary", journal(1)}).exitCode, 2);
}

// ---------------------------------------------------------------- the answer of a batch

TEST_F(PartsTest, AnswerForAllTheirJobs) {
  clear();
  std::ofstream(folder_ / "few.jsonl") << job("small.xml", 0) << job("small.xml", 1, R"(, "site": "Nowhere")");
  const RunResult result = run({"batch", "few.jsonl", "--json", "--quiet"});
  EXPECT_EQ(result.exitCode, 1);
  const auto answer = nlohmann::json::parse(result.output);
  EXPECT_EQ(answer["count"], 2);
  EXPECT_EQ(answer["done"], 1);
  ASSERT_EQ(answer["written"].size(), 3U);
  EXPECT_EQ(answer["written"][0]["bytes"], fs::file_size(folder_ / answer["written"][0]["path"].get<std::string>()));
  EXPECT_EQ(answer["failedJobs"][0]["line"], 2);
  bool isTold = false;
  for (const auto& diagnostic : answer["diagnostics"])
    isTold |= diagnostic["line"] == 2 && diagnostic["file"] == "few.jsonl" && diagnostic["severity"] == "error";
  EXPECT_TRUE(isTold) << answer["diagnostics"];
}

// ---------------------------------------------------------------- the example for programs

TEST_F(PartsTest, AreTheNightRunOfTheExample) {
  fs::create_directories(folder_ / "drawings/south");
  fs::copy_file(test::inSource("/examples/valley-road.xml"), folder_ / "drawings/south/valley.xml");
  std::ofstream(folder_ / "drawings/broken.xml") << "<LandXML";
  test::RunRequest request;
  request.program = "/usr/bin/python3";
  request.folder = folder_.path();
  request.arguments = {test::inSource("/examples/pipeline.py"), "drawings", "reports", "--lvxhost",
                       test::inBuild("/bin/lvxhost")};
  const RunResult first = test::runProgram(request);
  EXPECT_EQ(first.exitCode, 1) << "a drawing can't be read" << first.errors;
  EXPECT_THAT(first.output, testing::StartsWith("Subject: Road reports: "));
  EXPECT_THAT(first.output, HasSubstr("done, 0 failed, 1 drawings not read"));
  EXPECT_THAT(first.output, HasSubstr("broken.xml can't be read:"));
  EXPECT_TRUE(fs::exists(folder_ / "reports/south/valley/Valley road Control points points.txt"));
  fs::remove(folder_ / "drawings/broken.xml");
  const RunResult second = test::runProgram(request);
  EXPECT_EQ(second.exitCode, 0) << second.errors << second.output;
  EXPECT_THAT(second.output, HasSubstr("This run wrote 1 files")) << "the summary alone";
}

}  // namespace
}  // namespace lvx::cli
