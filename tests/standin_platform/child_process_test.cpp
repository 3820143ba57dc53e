#include "standin_platform/child_process.h"

#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::standin_platform {
namespace {

using testing::HasSubstr;

TEST(ChildProcess, GivesCodeAndBothStreams) {
  ChildProcess child;
  const ChildResult result = child.run("/bin/sh", {"-c", "cat; echo out; echo err >&2; exit 7"});
  EXPECT_EQ(result.exitCode, 7);
  EXPECT_EQ(result.output, "out\n");
  EXPECT_EQ(result.errors, "err\n");
}

TEST(ChildProcess, TellsOfASignalAndOfAProgramThatIsNotThere) {
  ChildProcess child;
  EXPECT_EQ(child.run("/bin/sh", {"-c", "kill -9 $$"}).exitCode, 137);
  const ChildResult missing = child.run("/nowhere/program", {});
  EXPECT_EQ(missing.exitCode, 127);
  EXPECT_THAT(missing.errors, HasSubstr("/nowhere/program"));
  child.interrupt();  // nothing runs: nothing happens
}

TEST(ChildProcess, EndsByAnInterruptionFromAnotherThread) {
  ChildProcess child;
  ChildResult result;
  std::atomic<bool> ended = false;
  std::thread runner([&] {
    result = child.run("/bin/sh", {"-c", "exec sleep 600"});
    ended = true;
  });
  while (!ended) {  // until it runs an interruption does nothing
    child.interrupt();
    std::this_thread::yield();
  }
  runner.join();
  EXPECT_EQ(result.exitCode, 143);
}

TEST(ChildProcess, TakesArgumentsAsTheyAre) {
  ChildProcess child;
  const ChildResult result =
      child.run("/bin/sh", {"-c", "printf '%s|' \"$@\"", "name", "two words", "\"quoted\"", "", "\\"});
  EXPECT_EQ(result.output, "two words|\"quoted\"||\\|");
}

}  // namespace
}  // namespace lvx::standin_platform
