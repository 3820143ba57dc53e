#include "journal/summary.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/run_program.h"

namespace lvx::journal {
namespace {

Summary someSummary() {
  Summary summary;
  summary.jobs = "jobs.jsonl";
  summary.program = "1.0.0";
  summary.part = "2/5";
  summary.count = 300;
  summary.done = 290;
  summary.doneBefore = 120;
  summary.notBegun = 8;
  summary.exitCode = 130;
  summary.interrupted = true;
  summary.seconds = 81.25;
  summary.files = 894;
  summary.bytes = 3'120'044;
  JobRecord job;
  job.line = 7;
  job.command = "points";
  job.exitCode = 4;
  job.diagnostics = {"lvxhost: no alignment 'A1'"};
  summary.failed = {job};
  job.line = 8;
  job.exitCode = 130;
  job.files = {{"out/a.txt", 20, "9f"}};
  summary.broken = {job};
  return summary;
}

TEST(Summary, GivesBackWhatWasWritten) {
  const test::TemporaryFolder folder;
  const std::filesystem::path path = folder / "summary.json";
  std::ofstream(path) << "older";
  writeSummary(path, someSummary());
  const std::optional<Summary> read = summaryOf(test::fileBytes(path));
  ASSERT_TRUE(read.has_value());
  const Summary written = someSummary();
  EXPECT_EQ(read->jobs, written.jobs);
  EXPECT_EQ(read->program, written.program);
  EXPECT_EQ(read->part, written.part);
  EXPECT_EQ(read->count, written.count);
  EXPECT_EQ(read->done, written.done);
  EXPECT_EQ(read->doneBefore, written.doneBefore);
  EXPECT_EQ(read->notBegun, written.notBegun);
  EXPECT_EQ(read->exitCode, written.exitCode);
  EXPECT_TRUE(read->interrupted);
  EXPECT_DOUBLE_EQ(read->seconds, written.seconds);
  EXPECT_EQ(read->files, written.files);
  EXPECT_EQ(read->bytes, written.bytes);
  ASSERT_EQ(read->failed.size(), 1U);
  EXPECT_EQ(read->failed.front().line, 7U);
  EXPECT_EQ(read->failed.front().diagnostics, written.failed.front().diagnostics);
  ASSERT_EQ(read->broken.size(), 1U);
  EXPECT_EQ(read->broken.front().files, written.broken.front().files);
}

TEST(Summary, HasTheFormThatItsReadersKnow) {
  Summary summary;
  summary.jobs = "jobs.jsonl";
  summary.program = "1.0.0";
  summary.seconds = 0.5;
  EXPECT_EQ(textOf(summary),
            "{\n  \"jobs\": \"jobs.jsonl\",\n  \"program\": \"1.0.0\",\n  \"count\": 0,\n  \"done\": 0,\n"
            "  \"doneBefore\": 0,\n  \"failed\": 0,\n  \"broken\": 0,\n  \"notBegun\": 0,\n  \"exit\": 0,\n"
            "  \"interrupted\": false,\n  \"seconds\": 0.5,\n  \"files\": 0,\n  \"bytes\": 0,\n  \"failedJobs\": [],\n"
            "  \"brokenJobs\": []\n}\n");
}

TEST(Summary, IsNoneOfAnotherText) {
  for (const char* text : {"", "{", "[]", "{}", "{\"jobs\": 1}"}) EXPECT_FALSE(summaryOf(text).has_value()) << text;
}

}  // namespace
}  // namespace lvx::journal
