// Files that grow at their end, and files that one program has at a time.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin_platform/append_file.h"
#include "standin_platform/locked_file.h"
#include "standin_platform/process_copy.h"
#include "support/run_program.h"

namespace lvx::standin_platform {
namespace {

using test::fileBytes;
using testing::Eq;

bool never() { return false; }

class KeptFilesTest : public testing::Test {
 protected:
  test::TemporaryFolder folder_;
  std::filesystem::path path_ = folder_ / "file";
};

TEST_F(KeptFilesTest, GrowAtTheirEndAlsoFromACopyOfTheProcess) {
  std::ofstream(path_) << "before\n";
  AppendFile file(path_, false);
  file.append("one\n");
  ProcessCopy copy(
      "work", "",
      [&](const std::string& /*request*/, MessageLine&) {
        file.append("two\n");
        return 0;
      },
      ProcessCopy::Streams::Shared);
  EXPECT_EQ(copy.wait().exitCode, 0);
  file.append("three\n");
  EXPECT_EQ(fileBytes(path_), "before\none\ntwo\nthree\n");
}

TEST_F(KeptFilesTest, KnowWhetherTheirLastLineIsCut) {
  AppendFile file(path_, false);
  EXPECT_TRUE(file.endsWithLine()) << "an empty file";
  file.append("half");
  EXPECT_FALSE(file.endsWithLine());
  file.append(" a line\n");
  EXPECT_TRUE(file.endsWithLine());
  const AppendFile anew(path_, true);
  EXPECT_TRUE(anew.endsWithLine());
  EXPECT_EQ(fileBytes(path_), "");
}

TEST_F(KeptFilesTest, AreFilesAndNothingElse) {
  for (const std::filesystem::path& path :
       {folder_.path(), folder_ / "none/file", std::filesystem::path("/dev/null")}) {
    EXPECT_THROW(AppendFile(path, false), std::system_error) << path;
    EXPECT_THROW(LockedFile(path, never), std::system_error) << path;
  }
}

TEST_F(KeptFilesTest, HoldWhatWasPutLast) {
  {
    LockedFile file(path_, never);
    EXPECT_EQ(file.content(), "");
    file.put("a long content\n");
    file.put("short\n");
  }
  LockedFile file(path_, never);
  EXPECT_THAT(file.content(), testing::MatchesRegex("short\n *"));
  file.remove();
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(KeptFilesTest, BelongToOneProgramAtATime) {
  const LockedFile file(path_, never);
  try {
    const LockedFile other(path_, never);
    FAIL() << "two have it";
  } catch (const std::system_error& error) {
    EXPECT_THAT(error.code() == std::errc::resource_unavailable_try_again, Eq(true)) << error.what();
  }
}

TEST_F(KeptFilesTest, AreHeldByCopiesOfTheProcessUntilTheyEnd) {
  auto file = std::make_unique<LockedFile>(path_, never);
  ProcessCopy copy(
      "work", "",
      [](const std::string& /*request*/, MessageLine& line) {
        std::vector<std::string> messages;
        MessageLine* const lines[] = {&line};
        while (line.take(messages) && messages.empty()) waitForMessages(lines, std::chrono::milliseconds(1000));
        return 0;
      },
      ProcessCopy::Streams::Shared);
  file.reset();
  EXPECT_THROW(LockedFile(path_, never), std::system_error);
  copy.line().send("end");
  const LockedFile other(path_, [] { return true; });
  EXPECT_EQ(copy.wait().exitCode, 0);
}

TEST_F(KeptFilesTest, AreMadeAnewForWhoWaitedWhileTheirNameWent) {
  auto file = std::make_unique<LockedFile>(path_, never);
  const LockedFile other(path_, [&] {
    if (file) file->remove();
    file.reset();
    return true;
  });
  EXPECT_TRUE(std::filesystem::exists(path_));
  EXPECT_THROW(LockedFile(path_, never), std::system_error);
}

}  // namespace
}  // namespace lvx::standin_platform
