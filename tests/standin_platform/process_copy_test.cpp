#include "standin_platform/process_copy.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin_platform/interruption.h"

namespace lvx::standin_platform {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using Streams = ProcessCopy::Streams;

/// Everything that comes until nobody is at the other end.
std::vector<std::string> allOf(MessageLine& line) {
  std::vector<std::string> messages;
  MessageLine* const lines[] = {&line};
  while (line.take(messages)) waitForMessages(lines, milliseconds(1000));
  return messages;
}

TEST(ProcessCopy, SeesTheMemoryOfThisProcessAndChangesItsOwnAlone) {
  std::string shared = "before";
  ProcessCopy copy(
      "work", "",
      [&](const std::string& /*request*/, MessageLine& line) {
        line.send(shared);
        shared = "after";
        line.send(shared);
        return 7;
      },
      Streams::Shared);
  EXPECT_THAT(allOf(copy.line()), ElementsAre("before", "after"));
  EXPECT_EQ(copy.wait().exitCode, 7);
  EXPECT_EQ(shared, "before");
}

TEST(ProcessCopy, KeepsWhatItSaysAndHasNothingToRead) {
  ProcessCopy copy(
      "work", "",
      [](const std::string& /*request*/, MessageLine&) {
        std::printf("out %d\n", std::getchar());
        std::fputs("err\n", stderr);
        return 0;
      },
      Streams::Kept);
  const ChildResult result = copy.wait();
  EXPECT_EQ(result.output, "out -1\n");
  EXPECT_EQ(result.errors, "err\n");
}

TEST(ProcessCopy, TakesWhatItSaidPieceByPiece) {
  ProcessCopy copy(
      "work", "",
      [](const std::string& /*request*/, MessageLine& line) {
        for (const char* const piece : {"first", "", "last"}) {
          std::printf("%s", piece);
          std::fputs(*piece == 'l' ? "oops" : "", stderr);
          KeptWords said;
          const bool isAll = takeKeptWords(said);
          line.send(said.output + "/" + said.errors + (isAll ? "" : ", not all"));
        }
        std::puts("rest");
        return 0;
      },
      Streams::Kept);
  EXPECT_THAT(allOf(copy.line()), ElementsAre("first/", "/", "last/oops"));
  const ChildResult result = copy.wait();
  EXPECT_EQ(result.output, "rest\n");
  EXPECT_EQ(result.errors, "");
}

TEST(ProcessCopy, EndsAloneByACrash) {
  ProcessCopy copy(
      "work", "",
      [](const std::string& /*request*/, MessageLine& line) {
        line.send("last words");
        std::raise(SIGKILL);
        return 0;
      },
      Streams::Kept);
  EXPECT_THAT(allOf(copy.line()), ElementsAre("last words"));
  EXPECT_EQ(copy.wait().exitCode, 137);
}

TEST(ProcessCopy, AnswersMessagesOfAnyLengthUntilTheLineIsClosed) {
  ProcessCopy echo(
      "work", "",
      [](const std::string& /*request*/, MessageLine& line) {
        for (const std::string& message : allOf(line)) line.send(message);
        return 0;
      },
      Streams::Shared);
  ProcessCopy counter(
      "work", "",
      [](const std::string& /*request*/, MessageLine& line) { return static_cast<int>(allOf(line).size()); },
      Streams::Shared);
  for (const std::string& message : {std::string(), std::string("a\0b\n", 4), std::string(3'000'000, 'x')})
    EXPECT_TRUE(counter.line().send(message));
  counter.line().close();
  EXPECT_EQ(counter.wait().exitCode, 3);
  // A copy that began later doesn't hold the line of an earlier one.
  echo.line().close();
  EXPECT_EQ(echo.wait().exitCode, 0);
}

TEST(ProcessCopy, HearsOfAnInterruption) {
  ProcessCopy copy(
      "work", "",
      [](const std::string& /*request*/, MessageLine& line) {
        watchInterruption();
        line.send("ready");
        while (!isInterrupted()) std::this_thread::sleep_for(milliseconds(1));
        return 130;
      },
      Streams::Shared);
  std::vector<std::string> messages;
  MessageLine* const lines[] = {&copy.line()};
  while (messages.empty() && copy.line().take(messages)) waitForMessages(lines, milliseconds(10));
  copy.interrupt();
  copy.interrupt();  // the second one isn't sent, which would end it at once
  EXPECT_EQ(copy.wait().exitCode, 130);
}

// A report that is begun while the user's Ctrl-C comes in hears the wish to stop twice.
TEST(ProcessCopyDeathTest, TakesItsFirstInterruptionForTheFirstThoughItsModelHadOneBefore) {
  EXPECT_EXIT(
      {
        watchInterruption();
        (void)std::raise(SIGTERM);
        ProcessCopy copy(
            "work", "",
            [](const std::string& /*request*/, MessageLine&) {
              std::this_thread::sleep_for(milliseconds(100));
              return isInterrupted() ? 7 : 8;
            },
            Streams::Kept);
        copy.interrupt();
        std::_Exit(copy.wait().exitCode);
      },
      testing::ExitedWithCode(7), "");
}

TEST(ProcessCopy, GoesWithTheObject) {
  const auto start = std::chrono::steady_clock::now();
  {
    ProcessCopy copy(
        "work", "",
        [](const std::string& /*request*/, MessageLine&) {
          std::this_thread::sleep_for(std::chrono::hours(1));
          return 0;
        },
        Streams::Shared);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::minutes(1));
}

}  // namespace
}  // namespace lvx::standin_platform
