// lvxhost batch as the real program: several reports from one job file.
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/failure.h"
#include "cli/job_file.h"
#include "support/golden.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using test::RunResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// ---------------------------------------------------------------- the job file

std::string failureOf(const std::string& text) {
  try {
    static_cast<void>(parseJobs(text, "jobs.jsonl", {}));
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), kUsage);
    return failure.what();
  }
  return "no failure";
}

TEST(JobFile, TurnsEachLineIntoTheArgumentsOfOneReport) {
  options::CommonOptions common;
  common.forms = "txt";
  common.overwrite = true;
  const std::vector<Job> jobs = parseJobs(
      "\n{\"command\": \"points\", \"drawing\": \"-a.xml\", \"alignment\": \"-A\", \"site\": \"\", \"points\": "
      "\"1-3\", "
      "\"out\": \"x/a\", \"quiet\": true, \"keep\": false}\r\n  \n"
      "{\"command\": \"projection\", \"drawing\": \"b.xml\", \"out\": \"x/b\", \"forms\": \"xls\"}",
      "jobs.jsonl", common);
  ASSERT_EQ(jobs.size(), 2U);
  EXPECT_EQ(jobs[0].line, 2U);
  EXPECT_EQ(jobs[0].label, "points -a.xml, x/a");
  EXPECT_THAT(jobs[0].arguments, ElementsAre("points", "--alignment=-A", "--site", "", "--points=1-3", "--out=x/a",
                                             "--quiet", "--forms=txt", "--lang=en", "--release=R24.3",
                                             "--message-code-page=WINDOWS-1252", "--progress=never", "--", "-a.xml"));
  EXPECT_EQ(jobs[1].line, 4U);
  EXPECT_THAT(jobs[1].arguments,
              ElementsAre("projection", "--out=x/b", "--forms=xls", "--lang=en", "--release=R24.3",
                          "--message-code-page=WINDOWS-1252", "--overwrite", "--progress=never", "--", "b.xml"));
}

TEST(JobFile, IsEmptyWhereItHoldsNoJobs) {
  EXPECT_TRUE(parseJobs("", "jobs.jsonl", {}).empty());
  EXPECT_TRUE(parseJobs("\n \r\n\n", "jobs.jsonl", {}).empty());
}

TEST(JobFile, NamesTheLineThatIsNoJob) {
  const std::string good = R"({"command": "points", "drawing": "a.xml", "out": "a"})";
  struct Row {
    const char* line;
    const char* words;
  };
  const std::vector<Row> table{
      {"{", "jobs.jsonl:2: no JSON object"},
      {"[]", "jobs.jsonl:2: no JSON object"},
      {R"({"command": "gls", "drawing": "x", "out": 1e999})", "jobs.jsonl:2: no JSON object"},
      {R"({"drawing": "b.xml", "out": "b"})", "jobs.jsonl:2: a job needs a text \"command\""},
      {R"({"command": "info", "drawing": "b.xml", "out": "b"})", "jobs.jsonl:2: \"info\" is no report command"},
      {R"({"command": "points", "out": "b"})", "a job needs a text \"drawing\""},
      {R"({"command": "points", "drawing": "b.xml"})", "a job needs a text \"out\""},
      {R"({"command": "points", "drawing": "b.xml", "out": "b", "points": [1]})", "\"points\" is neither a text"},
      {R"({"command": "points", "drawing": "b.xml", "out": "./a"})", "jobs.jsonl:2: writes the same files as line 1"},
  };
  for (const Row& row : table) EXPECT_THAT(failureOf(good + "\n" + row.line), HasSubstr(row.words)) << row.line;
}

// ---------------------------------------------------------------- the program

class BatchTest : public testing::Test {
 protected:
  [[nodiscard]] RunResult run(std::vector<std::string> arguments) {
    test::RunRequest request;
    request.program = fs::path(test::inBuild("/bin/lvxhost"));
    request.folder = place_;
    request.arguments = std::move(arguments);
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    return test::runProgram(request);
  }
  /// Reports of both commands into `folder`, the second of them failing.
  void writeJobs(const std::string& name, const std::string& folder) const {
    fs::create_directory(place_ / folder);
    const std::string drawing = test::inSource("/examples/valley-road.xml");
    std::ofstream(place_ / name) << R"({"command": "points", "drawing": ")" << drawing
                                 << R"(", "alignment": "Valley road", "point-group": )"
                                 << R"("Control points", "out": ")" << folder << "/control\"}\n"
                                 << R"({"command": "points", "drawing": ")" << drawing
                                 << R"(", "alignment": "Nowhere", "points": "1", "out": ")" << folder
                                 << "/failing\"}\n\n"
                                 << R"({"command": "projection", "drawing": ")" << drawing
                                 << R"(", "alignment": "Mill lane", "group": )"
                                 << R"("Mill lane 25 m", "surface": "Existing ground", "out": ")" << folder
                                 << "/mill\"}\n"
                                 << R"({"command": "points", "drawing": ")" << drawing
                                 << R"(", "alignment": "Mill lane", "points": "1-3", )"
                                 << R"("forms": "html", "lang": "de", "out": ")" << folder << "/some\"}\n";
  }

  test::TemporaryFolder folder_;
  /// Where the program runs.
  fs::path place_ = folder_.path();
};

TEST_F(BatchTest, WritesEveryReportAndSumsUpPastAFailedOne) {
  writeJobs("jobs.jsonl", "out");
  const RunResult result = run({"batch", "jobs.jsonl", "--forms", "txt"});
  EXPECT_EQ(result.exitCode, 1);
  for (const char* name : {"out/control.txt", "out/mill.txt", "out/some.html"})
    EXPECT_TRUE(fs::exists(folder_ / name)) << name;
  EXPECT_FALSE(fs::exists(folder_ / "out/some.txt")) << "a job's own option holds";
  EXPECT_THAT(result.output, testing::MatchesRegex("out/control.txt  [0-9]+ bytes\nout/mill.txt  [0-9]+ bytes\n"
                                                   "out/some.html  [0-9]+ bytes\n"));
  EXPECT_THAT(result.errors, HasSubstr("line 2: lvxhost: no alignment 'Nowhere'"));
  EXPECT_THAT(result.errors, HasSubstr("line 2: ended with 4: points "));
  EXPECT_THAT(result.errors, HasSubstr("lvxhost: 4 jobs: 3 done, 1 failed (line 2)\n"));
}

TEST_F(BatchTest, GivesTheSameBytesHoweverManyRunAtATime) {
  std::map<std::string, RunResult> results;
  for (const std::string atOnce : {"1", "4"}) {
    fs::create_directory(folder_ / atOnce);
    place_ = folder_ / atOnce;
    writeJobs("jobs.jsonl", "out");
    results[atOnce] = run({"batch", "jobs.jsonl", "--jobs", atOnce});
  }
  EXPECT_EQ(results["4"].output, results["1"].output) << "in the order of the job file";
  EXPECT_EQ(results["4"].errors, results["1"].errors);
  int files = 0;
  for (const auto& entry : fs::directory_iterator(folder_ / "1/out")) {
    EXPECT_TRUE(test::sameBytes(fileBytes(folder_.path() / "4/out" / entry.path().filename()), fileBytes(entry.path())))
        << entry.path();
    ++files;
  }
  EXPECT_EQ(files, 7);
}

TEST_F(BatchTest, StopsItsReportsWhenItIsStopped) {
  writeJobs("jobs.jsonl", "out");
  std::ofstream jobs(place_ / "many.jsonl");
  for (int i = 0; i < 500; ++i)
    jobs << R"({"command": "points", "drawing": ")" << test::inSource("")
         << R"(/examples/valley-road.xml", "alignment": )"
         << R"("Valley road", "points": "1", "forms": "txt", "out": "out/many)" << i << "\"}\n";
  jobs.close();
  // The batch itself, not this shell, gets the signal.
  test::RunRequest request;
  request.program = "/bin/sh";
  request.folder = place_;
  request.arguments = {"-c",
                       "\"$0\" batch many.jsonl --jobs 2 & pid=$!; while [ ! -e out/many1.txt ]; do sleep 0.01; done; "
                       "kill -TERM $pid; wait $pid",
                       (fs::path(test::inBuild("/bin/lvxhost"))).string()};
  const RunResult result = test::runProgram(request);
  EXPECT_EQ(result.exitCode, 130);
  EXPECT_THAT(result.errors, HasSubstr("interrupted"));
  EXPECT_FALSE(fs::exists(place_ / "out/many499.txt"));
  for (const auto& entry : fs::directory_iterator(place_ / "out"))
    EXPECT_EQ(entry.path().extension(), ".txt") << "no unfinished file: " << entry.path();
}

TEST_F(BatchTest, SaysNothingInQuietBatchesThatWentWell) {
  std::ofstream(folder_ / "none.jsonl") << "\n";
  EXPECT_EQ(run({"batch", "none.jsonl", "--quiet"}).errors, "");
  const RunResult result = run({"batch", "none.jsonl"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors, "lvxhost: 0 jobs: 0 done, 0 failed\n");
}

TEST_F(BatchTest, RunsNothingWhereTheJobFileIsWrong) {
  writeJobs("jobs.jsonl", "out");
  std::ofstream(folder_ / "jobs.jsonl", std::ios::app) << "{\n";
  const RunResult result = run({"batch", "jobs.jsonl"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("jobs.jsonl:6: no JSON object"));
  EXPECT_FALSE(fs::exists(folder_ / "out/control.txt"));
  EXPECT_EQ(run({"batch", "nobody.jsonl"}).exitCode, 2);
  EXPECT_EQ(run({"batch", "jobs.jsonl", "--jobs", "0"}).exitCode, 2);
  EXPECT_EQ(run({"batch", "--help"}).exitCode, 0);
}

}  // namespace
}  // namespace lvx::cli
