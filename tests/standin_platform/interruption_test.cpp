#include "standin_platform/interruption.h"

#include <csignal>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "standin_platform/standard_streams.h"

namespace lvx::standin_platform {
namespace {

TEST(Interruption, IsTakenOnceAsAFlagThenEndsTheProcess) {
  EXPECT_EXIT(
      {
        watchInterruption();
        if (isInterrupted()) std::_Exit(1);
        std::raise(SIGTERM);
        if (!isInterrupted()) std::_Exit(2);
        std::raise(SIGTERM);
      },
      testing::KilledBySignal(SIGTERM), "");
}

TEST(Interruption, SignalsOfWritingBecomeErrors) {
  EXPECT_EXIT(
      {
        turnSignalsOfWritingIntoErrors();
        std::raise(SIGPIPE);
        std::raise(SIGXFSZ);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST(InterruptionListener, HearsEachEndingSignalOnAnotherThread) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    std::promise<std::thread::id> heard;
    const InterruptionListener listener([&] { heard.set_value(std::this_thread::get_id()); });
    std::raise(signal);
    EXPECT_NE(heard.get_future().get(), std::this_thread::get_id());
  }
}

TEST(InterruptionListener, EndsWithoutAnInterruptionAndLetsTheNextOneEndTheProcess) {
  EXPECT_EXIT(
      {
        {
          const InterruptionListener listener([] { std::_Exit(1); });
        }
        std::raise(SIGINT);
      },
      testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptionListener, ASecondInterruptionEndsTheProcess) {
  EXPECT_EXIT(
      {
        std::promise<void> heard;
        const InterruptionListener listener([&] { heard.set_value(); });
        std::raise(SIGTERM);
        heard.get_future().get();
        std::raise(SIGTERM);
      },
      testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace lvx::standin_platform
