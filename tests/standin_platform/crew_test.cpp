#include "standin_platform/crew.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace lvx::standin_platform {
namespace {

TEST(Crew, DoesEachPieceOnceWithAnyNumberOfThreads) {
  for (const unsigned threads : {0U, 1U, 2U, 3U, 8U}) {
    Crew crew(threads);
    EXPECT_EQ(crew.size(), threads == 0 ? processorCount() : threads);
    for (const std::size_t count : {0U, 1U, 2U, 100U}) {
      std::vector<std::atomic<int>> done(count);
      crew.run(count, [&](std::size_t i) { ++done[i]; });
      for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(done[i], 1) << threads << " threads, piece " << i;
    }
  }
}

TEST(Crew, WorksInSeveralThreads) {
  Crew crew(3);
  std::mutex mutex;
  std::set<std::thread::id> seen;
  // Each piece waits until three are at work.
  std::atomic<int> waiting = 0;
  crew.run(3, [&](std::size_t) {
    ++waiting;
    while (waiting < 3) std::this_thread::yield();
    const std::lock_guard lock(mutex);
    seen.insert(std::this_thread::get_id());
  });
  EXPECT_EQ(seen.size(), 3U);
}

TEST(Crew, DoesTheCallersOwnWorkOnItsThread) {
  for (const unsigned threads : {1U, 2U, 8U}) {
    Crew crew(threads);
    std::thread::id own;
    std::atomic<std::size_t> done = 0;
    crew.run([&] { own = std::this_thread::get_id(); }, 20, [&](std::size_t) { ++done; });
    EXPECT_EQ(own, std::this_thread::get_id());
    EXPECT_EQ(done, 20U);
  }
}

TEST(Crew, ThrowsWhatTheLowestPieceThrewAndWorksOn) {
  for (const unsigned threads : {1U, 2U, 8U}) {
    Crew crew(threads);
    for (int round = 0; round < 50; ++round) {
      std::string told;
      try {
        crew.run(64, [](std::size_t i) {
          if (i % 8 == 3) throw std::runtime_error("piece " + std::to_string(i));
        });
      } catch (const std::runtime_error& error) {
        told = error.what();
      }
      EXPECT_EQ(told, "piece 3") << threads;
    }
    std::atomic<int> done = 0;
    crew.run(9, [&](std::size_t) { ++done; });
    EXPECT_EQ(done, 9);
  }
}

TEST(Crew, ThrowsTheCallersOwnFailureBeforeOthers) {
  Crew crew(4);
  const auto fails = [&] {
    crew.run([] { throw std::logic_error("own"); }, 10, [](std::size_t) { throw std::runtime_error("piece"); });
  };
  EXPECT_THROW(fails(), std::logic_error);
}

}  // namespace
}  // namespace lvx::standin_platform
