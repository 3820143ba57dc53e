#include "standin_platform/isolated_work.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/run_program.h"

namespace lvx::standin_platform {
namespace {

using End = IsolatedOutcome::End;

TEST(IsolatedWork, WritesFilesButNoMemory) {
  const test::TemporaryFolder folder;
  int value = 1;
  const IsolatedOutcome outcome = runIsolated([&] {
    value = 2;
    std::ofstream(folder / "file") << value;
  });
  EXPECT_EQ(outcome.end, End::Done) << outcome.words;
  EXPECT_EQ(value, 1);
  EXPECT_EQ(test::fileBytes(folder / "file"), "2");
}

TEST(IsolatedWork, TellsHowItEnded) {
  struct Row {
    void (*work)();
    End end;
    std::string words;
  };
  const Row table[] = {
      {[] { throw std::runtime_error("no place"); }, End::Failed, "no place"},
      {[] { throw std::runtime_error(std::string(70000, 'x')); }, End::Failed, std::string(70000, 'x')},
      {[] { throw std::bad_alloc(); }, End::ShortMemory, ""},
      {[] { throw 5; }, End::Failed, "an exception without words"},
      {[] { std::_Exit(7); }, End::Crashed, "exit code 7"},
      {[] { std::_Exit(0); }, End::Crashed, "exit code 0"},
      {[] { std::raise(SIGKILL); }, End::Crashed, "SIGKILL"},
      {[] { std::raise(SIGTERM); }, End::Crashed, "SIGTERM"},
  };
  for (const Row& row : table) {
    const IsolatedOutcome outcome = runIsolated(row.work);
    EXPECT_EQ(outcome.end, row.end) << row.words;
    EXPECT_EQ(outcome.words, row.words);
  }
}

TEST(IsolatedWork, EndsWhereItsCallerGivesUp) {
  int asked = 0;
  EXPECT_THROW((void)runIsolated([] { std::this_thread::sleep_for(std::chrono::minutes(2)); },
                                 [&asked] {
                                   if (++asked == 3) throw std::runtime_error("enough");
                                 }),
               std::runtime_error);
  EXPECT_EQ(asked, 3);
}

TEST(IsolatedWork, TellsWholeMessagesInOrderBeforeItsEnd) {
  std::vector<std::string> heard;
  const IsolatedOutcome outcome = runIsolated(
      [](const Tell& tell) {
        tell("first");
        tell("");
        tell(std::string(300'000, 'x'));
        throw std::runtime_error("last");
      },
      [&heard](std::string_view message) { heard.emplace_back(message); }, {});
  EXPECT_EQ(outcome.end, End::Failed);
  EXPECT_EQ(outcome.words, "last");
  EXPECT_EQ(heard, (std::vector<std::string>{"first", "", std::string(300'000, 'x')}));
}

TEST(IsolatedWork, EndsWhereItsHearerGivesUp) {
  int heard = 0;
  const auto tellForEver = [](const Tell& tell) {
    for (;;) tell("again");
  };
  const auto hear = [&heard](std::string_view) {
    if (++heard == 3) throw std::runtime_error("enough");
  };
  EXPECT_THROW((void)runIsolated(tellForEver, hear, {}), std::runtime_error);
  EXPECT_EQ(heard, 3);
}

TEST(IsolatedWork, KeepsUnwrittenTextOfStreamsToItsCaller) {
  const test::TemporaryFolder folder;
  std::FILE* const stream = std::fopen((folder / "file").c_str(), "w");
  std::fputs("once", stream);
  EXPECT_EQ(runIsolated([] {}).end, End::Done);
  std::fclose(stream);
  EXPECT_EQ(test::fileBytes(folder / "file"), "once");
}

}  // namespace
}  // namespace lvx::standin_platform
