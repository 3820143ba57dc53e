#include "version/version.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

RunResult run(const std::string& program, std::vector<std::string> arguments) {
  RunRequest request;
  request.program = program;
  request.arguments = std::move(arguments);
  return runProgram(request);
}

/// What stands behind `mark` in a file, up to `end`.
std::string behind(const std::string& path, const std::string& mark, char end) {
  const std::string text = fileBytes(path);
  const auto at = text.find(mark);
  if (at == std::string::npos) return {};
  const auto from = at + mark.size();
  return text.substr(from, text.find(end, from) - from);
}

TEST(Version, IsThatOfTheProjectAlone) {
  EXPECT_EQ(version::number(), behind(inSource("/CMakeLists.txt"), "project(LVX_MirelReport VERSION ", ' '));
  EXPECT_EQ(version::number(), behind(inSource("/CHANGELOG.md"), "\n## ", ',')) << "the newest of the change log";
}

TEST(Version, IsShownWithCommitAndDayByTheProgram) {
  EXPECT_THAT(version::text(), MatchesRegex("[0-9.]+( \\(commit [0-9a-f]+, [0-9]+-[0-9]+-[0-9]+\\))?"));
  EXPECT_EQ(run(inBuild("/bin/lvxhost"), {"--version"}).output, "lvxhost " + version::text() + "\n");
}

/// Runs the script that writes the stamp over a folder of sources.
std::string stampOf(const std::string& sources, const std::string& output) {
  const RunResult written = run("/usr/bin/env", {"cmake", "-D", "GIT=git", "-D", "SOURCE=" + sources, "-D",
                                                 "OUTPUT=" + output, "-P", inSource("/cmake/WriteStamp.cmake")});
  EXPECT_EQ(written.exitCode, 0) << written.errors;
  return fileBytes(output);
}

TEST(VersionStamp, IsEmptyForSourcesWithoutTheirHistory) {
  const TemporaryFolder folder;
  EXPECT_THAT(stampOf(folder.path().string(), folder / "stamp.cpp"), HasSubstr("kCommit = \"\";"));
}

TEST(VersionStamp, HasTheCommitsOwnDayAndStaysWhileTheCommitDoes) {
  const TemporaryFolder folder;
  const std::string place = folder.path().string();
  const std::string script = "set -e; cd '" + place +
                             "'; git init -q .; GIT_COMMITTER_DATE='2020-02-03T12:00:00Z' git -c user.name=a "
                             "-c user.email=a@b commit -q --allow-empty -m first; git rev-parse HEAD";
  const RunResult commit = run("/bin/sh", {"-c", script});
  ASSERT_EQ(commit.exitCode, 0) << commit.errors;
  const std::string stamp = stampOf(place, folder / "stamp.cpp");
  EXPECT_THAT(stamp, HasSubstr("kCommit = \"" + commit.output.substr(0, 12) + "\";"));
  EXPECT_THAT(stamp, HasSubstr("kCommitDate = \"2020-02-03\";"));
  const auto written = std::filesystem::last_write_time(folder / "stamp.cpp");
  EXPECT_EQ(stampOf(place, folder / "stamp.cpp"), stamp);
  EXPECT_EQ(std::filesystem::last_write_time(folder / "stamp.cpp"), written);
}

}  // namespace
}  // namespace lvx::test
