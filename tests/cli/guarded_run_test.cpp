#include "cli/guarded_run.h"

#include <csignal>
#include <new>

#include <gtest/gtest.h>

namespace lvx::cli {
namespace {

/// Ends the process as a function does that lets no exception out, before anybody has taken hold of it.
struct EndsInMidFlight {
  ~EndsInMidFlight() { endWithoutMemory(); }
};

TEST(EndWithoutMemoryDeathTest, TellsItInMidFlightToo) {
  EXPECT_EXIT(
      {
        const EndsInMidFlight end;
        throw std::bad_alloc();
      },
      testing::ExitedWithCode(70), "there is not enough memory");
}

TEST(EndWithoutMemoryDeathTest, TellsItOfAnExceptionThatIsHeld) {
  EXPECT_EXIT(
      {
        try {
          throw std::bad_alloc();
        } catch (...) {
          endWithoutMemory();
        }
      },
      testing::ExitedWithCode(70), "there is not enough memory");
}

TEST(EndWithoutMemoryDeathTest, LeavesOtherEndsToTheSystem) {
  EXPECT_EXIT(endWithoutMemory(), testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
}  // namespace lvx::cli
