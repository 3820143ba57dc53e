// lvxhost batch as the real program: journals, batches that go on, interruptions, summaries.
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/batch_progress.h"
#include "journal/journal.h"
#include "journal/summary.h"
#include "support/golden.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using journal::JobRecord;
using journal::Summary;
using test::fileBytes;
using test::RunResult;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(BatchProgress, TellsRateAndTimeLeft) {
  EXPECT_EQ(progressText(1, 0, 0, 3.0), "0 of 1 job");
  EXPECT_EQ(progressText(300, 120, 0, 60.0), "120 of 300 jobs, 2.0 a second, 1:30 left");
  EXPECT_EQ(progressText(300, 120, 2, 7200.0), "120 of 300 jobs, 0.0 a second, 3:00:00 left, 2 failed");
  EXPECT_EQ(progressText(300, 300, 0, 60.0), "300 of 300 jobs, 5.0 a second, 0:00 left");
}

std::string pointsJob(const std::string& drawing, const std::string& out, const std::string& more = {}) {
  return R"({"command": "points", "drawing": ")" + drawing + R"(", "alignment": "Valley road", "points": "1-5", )" +
         R"("out": "out/)" + out + "\"" + (more.empty() ? "" : ", " + more) + "}\n";
}
std::string glsJob(const std::string& drawing, const std::string& out, const std::string& more = {}) {
  return R"({"command": "gls", "drawing": ")" + drawing + R"(", "alignment": "Mill lane", )" +
         R"("profile": "Mill lane design", "group": "Mill lane 25 m", "out": "out/)" + out + "\"" +
         (more.empty() ? "" : ", " + more) + "}\n";
}
std::string savingJob(const std::string& drawing, const std::string& out) {
  return glsJob(drawing, out, R"("add-sections": true, "save": ")" + drawing + "\"");
}

/// Everything that stands in a folder, by its path from there.
std::map<std::string, std::string> contentOf(const fs::path& folder) {
  std::map<std::string, std::string> content;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file()) content[entry.path().lexically_relative(folder).string()] = fileBytes(entry.path());
  return content;
}

class BatchJournalTest : public testing::Test {
 protected:
  BatchJournalTest() { enter("here"); }

  /// Another folder with two drawings, to run in.
  void enter(const std::string& name) {
    place_ = folder_ / name;
    fs::create_directories(place_ / "out");
    for (const char* drawing : {"road.xml", "other.xml"})
      fs::copy_file(test::inSource("/examples/valley-road.xml"), place_ / drawing);
  }
  void writeJobs(const std::string& jobs) const { std::ofstream(place_ / "jobs.jsonl") << jobs; }

  [[nodiscard]] RunResult run(std::vector<std::string> more, const std::string& program = {}) const {
    test::RunRequest request;
    request.program = program.empty() ? test::inBuild("/bin/lvxhost") : program;
    request.folder = place_;
    request.arguments = {"batch", "jobs.jsonl"};
    request.arguments.insert(request.arguments.end(), more.begin(), more.end());
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    return test::runProgram(request);
  }
  /// With a journal, where nothing may go wrong.
  std::string resume(std::vector<std::string> more = {}, const std::string& program = {}) const {
    more.insert(more.end(), {"--journal", "j", "--resume"});
    const RunResult result = run(std::move(more), program);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result.errors;
  }
  /// The batch is the shell's child $pid.
  [[nodiscard]] RunResult shell(const std::string& script, const std::string& more) const {
    test::RunRequest request;
    request.program = "/bin/sh";
    request.folder = place_;
    request.arguments = {"-c", "\"$0\" batch jobs.jsonl " + more + " & pid=$!; " + script,
                         test::inBuild("/bin/lvxhost")};
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    return test::runProgram(request);
  }
  /// A shell's words that wait until a test holds, but not for ever.
  static std::string waitFor(const std::string& condition) {
    return "i=0; while [ ! " + condition + " ] && [ $i -lt 3000 ]; do sleep 0.01; i=$((i + 1)); done; ";
  }
  /// The lines of the journal.
  [[nodiscard]] std::vector<JobRecord> journal() const {
    std::vector<JobRecord> records;
    if (fs::exists(place_ / "j"))
      journal::readJournal(place_ / "j", [&](JobRecord record) { records.push_back(std::move(record)); });
    return records;
  }
  [[nodiscard]] Summary summary() const {
    const std::optional<Summary> read = journal::summaryOf(fileBytes(place_ / "s"));
    EXPECT_TRUE(read.has_value());
    return read.value_or(Summary());
  }

  test::TemporaryFolder folder_;
  fs::path place_;
};

TEST_F(BatchJournalTest, HasALineForEachJobWithItsFilesAsTheyStand) {
  writeJobs(pointsJob("road.xml", "a") + pointsJob("road.xml", "b", R"("site": "Nowhere")") +
            glsJob("other.xml", "c", R"("forms": "txt,html")"));
  const RunResult result = run({"--journal", "j", "--summary", "s"});
  EXPECT_EQ(result.exitCode, 1);
  std::vector<JobRecord> records = journal();
  ASSERT_EQ(records.size(), 3U);
  std::sort(records.begin(), records.end(), [](const auto& a, const auto& b) { return a.line < b.line; });
  EXPECT_EQ(records[0].command, "points");
  EXPECT_EQ(records[0].drawing, "road.xml");
  EXPECT_EQ(records[0].out, "out/a");
  EXPECT_EQ(records[0].exitCode, 0);
  EXPECT_GT(records[0].seconds, 0.0);
  EXPECT_EQ(records[0].key.program, records[2].key.program);
  EXPECT_EQ(records[1].exitCode, 4);
  EXPECT_THAT(records[1].files, IsEmpty());
  ASSERT_EQ(records[1].diagnostics.size(), 1U);
  EXPECT_THAT(records[1].diagnostics[0], HasSubstr("Nowhere"));
  std::vector<std::string> paths;
  for (const JobRecord& record : records)
    for (const journal::OutputFile& file : record.files) {
      EXPECT_EQ(file.bytes, fs::file_size(place_ / file.path)) << file.path;
      EXPECT_EQ(file.hash.size(), 64U);
      paths.push_back(file.path);
    }
  EXPECT_THAT(paths, ElementsAre("out/a.txt", "out/a.xls", "out/a.html", "out/c.txt", "out/c.html"));
  EXPECT_FALSE(fs::exists(place_ / "j.running"));

  const Summary end = summary();
  EXPECT_EQ(end.count, 3U);
  EXPECT_EQ(end.done, 2U);
  EXPECT_EQ(end.exitCode, 1);
  EXPECT_EQ(end.files, 5U);
  ASSERT_EQ(end.failed.size(), 1U);
  EXPECT_EQ(end.failed[0].line, 2U);
  EXPECT_EQ(end.failed[0].diagnostics, records[1].diagnostics);
}

TEST_F(BatchJournalTest, RunsNothingAgainThatIsDoneAndUnchanged) {
  writeJobs(pointsJob("road.xml", "a") + glsJob("road.xml", "b") + savingJob("road.xml", "c") +
            glsJob("road.xml", "d"));
  EXPECT_THAT(resume(), HasSubstr("4 run since they weren't begun (lines 1, 2, 3, 4)"));
  const auto before = contentOf(place_);
  const std::string errors = resume({"--summary", "s"});
  EXPECT_THAT(errors, HasSubstr("journal 'j': 4 of 4 jobs are done and aren't run again"));
  EXPECT_THAT(errors, HasSubstr("4 jobs: 4 done (4 before), 0 failed"));
  EXPECT_EQ(summary().doneBefore, 4U);
  EXPECT_EQ(summary().files, 13U) << "the saved drawing too";
  fs::remove(place_ / "s");
  EXPECT_TRUE(contentOf(place_) == before) << "its own save is no change, though the jobs before read another state";
}

TEST_F(BatchJournalTest, RunsAgainWhatChangedAndSaysWhy) {
  struct Row {
    const char* what;
    std::function<void(const fs::path&)> change;
    const char* words;
    std::vector<std::string> options = {};
  };
  const auto append = [](const fs::path& path) { std::ofstream(path, std::ios::app) << "<!-- -->\n"; };
  const std::vector<Row> table{
      {"nothing", [](const fs::path&) {}, "4 of 4 jobs are done"},
      {"drawing", [&](const fs::path& place) { append(place / "other.xml"); },
       "2 run since their drawing changed (lines 2, 3)"},
      {"added drawing", [&](const fs::path& place) { append(place / "added.xml"); },
       "1 runs since its drawing changed (line 3)"},
      {"messages", [&](const fs::path& place) { append(place / "messages.txt"); },
       "1 runs since the message file changed (line 4)"},
      {"options", [](const fs::path&) {}, "3 run since their options changed (lines 1, 2, 3)", {"--forms", "txt"}},
      {"what is told", [](const fs::path&) {}, "4 of 4 jobs are done", {"--progress", "never", "--overwrite"}},
      {"output", [&](const fs::path& place) { append(place / "out/a.html"); },
       "1 runs since files of it hold something else (line 1)"},
      {"output gone", [&](const fs::path& place) { fs::remove(place / "out/d.txt"); },
       "1 runs since files of it are missing (line 4)"},
  };
  for (const Row& row : table) {
    enter(row.what);
    fs::copy_file(test::inSource("/examples/valley-road/points.xml"), place_ / "added.xml");
    fs::copy_file(test::inSource("/messages/en/LVX_MIRELREPORT.txt"), place_ / "messages.txt");
    writeJobs(pointsJob("road.xml", "a") + pointsJob("other.xml", "b") +
              pointsJob("other.xml", "c", R"("with": "added.xml")") +
              pointsJob("road.xml", "d", R"("forms": "txt", "messages": "messages.txt")"));
    resume();
    const auto before = contentOf(place_ / "out");
    row.change(place_);
    EXPECT_THAT(resume(row.options), HasSubstr(row.words)) << row.what;
    EXPECT_TRUE(contentOf(place_ / "out") == before) << row.what << ": the same reports are made again";
    EXPECT_THAT(resume(row.options), HasSubstr("4 of 4 jobs are done")) << row.what;
  }
}

TEST_F(BatchJournalTest, RunsAgainWhatAnotherProgramMade) {
  fs::create_directories(folder_ / "program/bin");
  fs::create_directory_symlink(test::inBuild("/share"), folder_ / "program/share");
  for (const char* name : {"lvxhost", "LVX_MirelReport.vmx", "LVX_MIRELLIB.vmx"})
    fs::copy_file(test::inBuild("/bin/") + name, folder_ / "program/bin" / name);
  const std::string program = (folder_ / "program/bin/lvxhost").string();
  writeJobs(pointsJob("road.xml", "a"));
  resume({}, program);
  EXPECT_THAT(resume({}, program), HasSubstr("1 of 1 job is done"));
  std::ofstream(folder_ / "program/bin/LVX_MirelReport.vmx", std::ios::app) << "another build";
  EXPECT_THAT(resume({}, program), HasSubstr("1 runs since the program changed (line 1)"));
}

TEST_F(BatchJournalTest, KnowsJobsByWhatTheyAreAskedNotByTheirLines) {
  writeJobs(pointsJob("road.xml", "a") + pointsJob("road.xml", "b"));
  resume();
  writeJobs("\n" + pointsJob("road.xml", "new") + pointsJob("road.xml", "b") + pointsJob("road.xml", "a"));
  EXPECT_THAT(resume(), HasSubstr("2 of 3 jobs are done and aren't run again\nlvxhost: 1 runs since it wasn't begun "
                                  "(line 2)"));
}

TEST_F(BatchJournalTest, RunsWhatStandsBehindASaveThatIsMadeAnew) {
  writeJobs(glsJob("road.xml", "a") + savingJob("road.xml", "b") + glsJob("road.xml", "c"));
  resume();
  fs::remove(place_ / "out/b.xls");
  const std::string errors = resume();
  EXPECT_THAT(errors, HasSubstr("1 of 3 jobs are done"));
  EXPECT_THAT(errors, HasSubstr("1 runs since files of it are missing (line 2)"));
  EXPECT_THAT(errors, HasSubstr("1 runs since a job before saves the drawing anew (line 3)"));
  EXPECT_THAT(resume(), HasSubstr("3 of 3 jobs are done"));
}

TEST_F(BatchJournalTest, TakesASaveForDoneThatWasWrittenDownBeforeAKill) {
  writeJobs(glsJob("road.xml", "a") + savingJob("road.xml", "b") + glsJob("road.xml", "c"));
  resume();
  const auto whole = contentOf(place_);
  // As if killed behind the save and before the job's end was written down.
  std::string lines;
  for (const JobRecord& record : journal())
    if (record.line == 1 || record.isSaving) lines += journal::lineOf(record);
  std::ofstream(place_ / "j") << lines;
  for (const char* form : {"txt", "xls", "html"}) fs::remove(place_ / ("out/c." + std::string(form)));
  EXPECT_THAT(resume(), HasSubstr("2 of 3 jobs are done and aren't run again\nlvxhost: 1 runs since it wasn't begun "
                                  "(line 3)"));
  // As if killed before the save: what was to be saved isn't there.
  for (const char* form : {"txt", "xls", "html"}) fs::remove(place_ / ("out/c." + std::string(form)));
  fs::copy_file(test::inSource("/examples/valley-road.xml"), place_ / "road.xml", fs::copy_options::overwrite_existing);
  std::ofstream(place_ / "j") << lines;
  EXPECT_THAT(resume(), HasSubstr("1 runs since it was broken off (line 2)"));
  auto now = contentOf(place_);
  now["j"] = whole.at("j");
  EXPECT_TRUE(now == whole);
}

TEST_F(BatchJournalTest, RunsFailedJobsAgain) {
  writeJobs(pointsJob("road.xml", "a") + pointsJob("none.xml", "b"));
  EXPECT_EQ(run({"--journal", "j"}).exitCode, 1);
  fs::copy_file(place_ / "road.xml", place_ / "none.xml");
  EXPECT_THAT(resume(), HasSubstr("1 runs since it failed (line 2)"));
}

TEST_F(BatchJournalTest, KeepsFilesThatAreNotItsOwn) {
  writeJobs(pointsJob("road.xml", "a", R"("forms": "txt")"));
  std::ofstream(place_ / "out/a.txt") << "a user's own";
  for (int i = 0; i < 2; ++i) {
    const RunResult result = run({"--journal", "j", "--resume"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("kept 'out/a.txt', which exists"));
    EXPECT_EQ(fileBytes(place_ / "out/a.txt"), "a user's own");
  }
  resume({"--overwrite"});
  std::ofstream(place_ / "out/a.txt") << "changed";
  EXPECT_EQ(run({"--journal", "j", "--resume", "--keep"}).exitCode, 1) << "as asked for";
  EXPECT_EQ(fileBytes(place_ / "out/a.txt"), "changed");
}

TEST_F(BatchJournalTest, BeginsNoJournalAnewWithoutBeingAsked) {
  writeJobs(pointsJob("road.xml", "a"));
  EXPECT_EQ(run({"--journal", "j"}).exitCode, 0);
  const std::string before = fileBytes(place_ / "j");
  const RunResult result = run({"--journal", "j"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("--resume goes on with it"));
  EXPECT_EQ(fileBytes(place_ / "j"), before);
  EXPECT_EQ(run({"--journal", "j", "--overwrite"}).exitCode, 0);
  EXPECT_EQ(journal().size(), 1U);
}

TEST_F(BatchJournalTest, RefusesFilesThatAreNoJournals) {
  writeJobs(pointsJob("road.xml", "a"));
  std::ofstream(place_ / "notes.txt") << "buy bread\n";
  const auto before = contentOf(place_);
  struct Row {
    std::vector<std::string> options;
    int code;
    const char* words;
  };
  const std::vector<Row> table{
      {{"--journal", "notes.txt", "--resume"}, 2, "'notes.txt' is no journal of a batch"},
      {{"--journal", "notes.txt", "--overwrite"}, 2, "'notes.txt' is no journal of a batch"},
      {{"--journal", "notes.txt"}, 2, "'notes.txt' is no journal of a batch"},
      {{"--summary", "road.xml"}, 2, "jobs.jsonl:1: reads the summary itself"},
      {{"--journal", "./road.xml", "--overwrite"}, 2, "jobs.jsonl:1: reads the journal itself"},
      {{"--journal", "jobs.jsonl", "--resume"}, 2, "JOBS and --journal name one file"},
      {{"--journal", "j", "--summary", "./j"}, 2, "--journal and --summary name one file"},
      {{"--journal", "none/j"}, 1, "can't write 'none/j.running': No such file"},
      {{"--summary", "none/s"}, 1, "the summary 'none/s' can't be written"},
      {{"--resume"}, 2, "--resume requires --journal"},
      {{"--journal", "out/a.txt"}, 2, "jobs.jsonl:1: writes the journal itself"},
      {{"--summary", "out/a.html"}, 2, "jobs.jsonl:1: writes the summary itself"},
  };
  for (const Row& row : table) {
    const RunResult result = run(row.options);
    EXPECT_EQ(result.exitCode, row.code) << row.words;
    EXPECT_THAT(result.errors, HasSubstr(row.words));
    EXPECT_TRUE(contentOf(place_) == before) << row.words;
  }
}

TEST_F(BatchJournalTest, GoesOnBehindACutLine) {
  writeJobs(pointsJob("road.xml", "a") + pointsJob("road.xml", "b"));
  EXPECT_EQ(run({"--journal", "j", "--jobs", "1"}).exitCode, 0);
  fs::resize_file(place_ / "j", fs::file_size(place_ / "j") - 30);
  const std::string errors = resume();
  EXPECT_THAT(errors, HasSubstr("1 of 2 jobs are done"));
  EXPECT_THAT(errors, HasSubstr("1 line of the journal can't be read (line 2)"));
  EXPECT_THAT(errors, HasSubstr("1 runs since it was broken off (line 2)"));
  EXPECT_THAT(resume(), HasSubstr("2 of 2 jobs are done"));
  // Nothing is left that tells the job.
  const std::string first = journal::lineOf(journal().front());
  std::ofstream(place_ / "j") << first << "{\"li";
  EXPECT_THAT(resume(), HasSubstr("1 of 2 jobs are done"));
}

TEST_F(BatchJournalTest, StopsWhereTheJournalTakesNoMore) {
  std::string jobs;
  for (int i = 0; i < 40; ++i) jobs += pointsJob("road.xml", std::to_string(i), R"("forms": "txt")");
  writeJobs(jobs);
  test::RunRequest request;
  request.program = "/bin/sh";
  request.folder = place_;
  // No file may grow beyond that: the reports are smaller, the journal isn't.
  request.arguments = {"-c", "ulimit -f 8; exec \"$0\" batch jobs.jsonl --journal j --jobs 1",
                       test::inBuild("/bin/lvxhost")};
  request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
  const RunResult result = test::runProgram(request);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("can't write the journal 'j': "));
  EXPECT_THAT(result.errors, testing::ContainsRegex("40 jobs: [0-9]+ done, 0 failed, [0-9]+ not begun"));
  const std::size_t written = journal().size();
  EXPECT_GT(written, 2U);
  EXPECT_LT(written, 40U);
  EXPECT_THAT(resume(), HasSubstr(std::to_string(written) + " of 40 jobs are done"));
}

TEST_F(BatchJournalTest, WritesNoJournalThatAnotherBatchWrites) {
  std::string jobs;
  for (int i = 0; i < 400; ++i) jobs += pointsJob("road.xml", std::to_string(i));
  writeJobs(jobs);
  const RunResult result =
      shell(waitFor("-s j.running") +
                "\"$0\" batch jobs.jsonl --journal j --resume --jobs 1 & second=$!; sleep 0.3; kill -TERM $second; "
                "wait $second; echo code $?; kill -TERM $pid; wait $pid",
            "--journal j --quiet");
  EXPECT_THAT(result.errors, HasSubstr("another batch writes the journal 'j'"));
  EXPECT_THAT(result.output, HasSubstr("code 1\n"));
}

// ---------------------------------------------------------------- kills and interruptions

/// Jobs of two drawings; one of them saves its drawing in the middle.
std::string nightOfJobs() {
  std::string jobs;
  for (int i = 0; i < 6; ++i) {
    const std::string number = std::to_string(i);
    jobs += pointsJob("other.xml", "p" + number) + glsJob("road.xml", "g" + number);
    if (i == 2) jobs += savingJob("road.xml", "s" + number);
    if (i == 4) jobs += savingJob("road.xml", "s" + number);
  }
  return jobs;
}

TEST_F(BatchJournalTest, LosesNothingByKillsAndMakesTheSameBytes) {
  enter("undisturbed");
  writeJobs(nightOfJobs());
  EXPECT_EQ(run({"--journal", "j"}).exitCode, 0);
  auto undisturbed = contentOf(place_);
  const std::size_t jobCount = journal().size() - 2;  // two of them saved, with a line before that
  constexpr int kRounds = 4;
  constexpr int kMostKills = 12;
  std::mt19937 random(std::hash<std::string>()("LosesNothingByKillsAndMakesTheSameBytes"));
  int kills = 0;
  for (int round = 0; round < kRounds; ++round) {
    enter("round" + std::to_string(round));
    writeJobs(nightOfJobs());
    std::string moments;
    for (int i = 0; i < kMostKills; ++i) {
      const std::string moment = "0." + std::to_string(100 + random() % 350);
      moments += " " + moment;
      const RunResult result =
          shell("sleep " + moment + "; kill -KILL $pid; wait $pid", "--journal j --resume --quiet");
      ASSERT_THAT(result.exitCode, AnyOf(0, 137)) << result.errors << moments;
      if (result.exitCode == 0) break;
      ++kills;
    }
    resume();
    std::map<std::size_t, int> timesDone;
    for (const JobRecord& record : journal())
      if (record.exitCode == 0 && !record.isSaving) ++timesDone[record.line];
    for (const auto& [line, times] : timesDone)
      EXPECT_EQ(times, 1) << "line " << line << " was done and ran again; killed after" << moments;
    EXPECT_GE(timesDone.size() + 2, jobCount) << "but for those that were killed behind their save";
    auto now = contentOf(place_);
    now["j"] = undisturbed.at("j");
    std::vector<std::string> others;
    for (const auto& [path, bytes] : now)
      if (!undisturbed.contains(path) || undisturbed.at(path) != bytes) others.push_back(path);
    EXPECT_THAT(others, IsEmpty()) << "killed after" << moments;
    EXPECT_EQ(now.size(), undisturbed.size());
  }
  EXPECT_GT(kills, 0) << "or this shows nothing";
}

TEST_F(BatchJournalTest, EndsAnInterruptionWithASummaryAndGoesOn) {
  std::string jobs;
  for (int i = 0; i < 200; ++i) jobs += pointsJob("road.xml", std::to_string(i));
  writeJobs(jobs);
  const RunResult result =
      shell(waitFor("-e out/3.html") + "kill -INT $pid; wait $pid", "--journal j --summary s --jobs 2");
  EXPECT_EQ(result.exitCode, 130) << result.errors;
  EXPECT_THAT(result.errors, testing::ContainsRegex("200 jobs: [0-9]+ done, 0 failed.*, [0-9]+ not begun\n"));
  const Summary end = summary();
  EXPECT_TRUE(end.interrupted);
  EXPECT_EQ(end.exitCode, 130);
  EXPECT_EQ(end.count, 200U);
  EXPECT_EQ(end.done + end.failed.size() + end.broken.size() + end.notBegun, 200U);
  EXPECT_GT(end.notBegun, 0U);
  std::size_t done = 0;
  for (const JobRecord& record : journal()) done += record.exitCode == 0 ? 1 : 0;
  EXPECT_EQ(done, end.done);
  for (const JobRecord& job : end.broken) {
    EXPECT_THAT(result.errors, HasSubstr("line " + std::to_string(job.line) + ": broken off; of its files "));
    for (const journal::OutputFile& file : job.files) EXPECT_TRUE(fs::exists(place_ / file.path)) << file.path;
  }
  EXPECT_FALSE(fs::exists(place_ / "j.running"));
  EXPECT_THAT(resume({"--summary", "s"}), HasSubstr(std::to_string(end.done) + " of 200 jobs are done"));
  EXPECT_EQ(summary().done, 200U);
  EXPECT_EQ(summary().doneBefore, end.done);
  EXPECT_EQ(summary().files, 600U);
}

// ---------------------------------------------------------------- progress

TEST_F(BatchJournalTest, ShowsHowFarItIsWhereAskedFor) {
  std::string jobs;
  for (int i = 0; i < 10; ++i) jobs += pointsJob("road.xml", std::to_string(i), R"("forms": "txt")");
  writeJobs(jobs);
  const RunResult plain = run({});
  EXPECT_THAT(plain.errors, Not(HasSubstr("a second")));
  const RunResult asked = run({"--overwrite", "--progress", "always"});
  EXPECT_THAT(asked.errors, testing::ContainsRegex("lvxhost: 10 of 10 jobs, [0-9]+\\.[0-9] a second, 0:00 left\n"));
}

}  // namespace
}  // namespace lvx::cli
