#include "standin_platform/isolated_work.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <future>
#include <mutex>
#include <new>
#include <string>
#include <system_error>
#include <thread>

namespace lvx::standin_platform {

using End = IsolatedOutcome::End;

namespace {

IsolatedOutcome outcomeOf(const std::function<void()>& work) {
  try {
    work();
    return {End::Done, {}};
  } catch (const std::bad_alloc&) {
    return {End::ShortMemory, {}};
  } catch (const std::exception& error) {
    return {End::Failed, error.what()};
  } catch (...) {
    return {End::Failed, "an exception without words"};
  }
}

/// Raised in work whose caller gave up.
class GivenUp final : public std::exception {};

/// The messages on their way from the work to its caller.
class Conversation {
 public:
  /// Throws GivenUp where nobody hears any more.
  void tell(std::string_view message) {
    constexpr std::size_t kMostWaiting = 16;
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isGivenUp_ || waiting_.size() < kMostWaiting; });
    if (isGivenUp_) throw GivenUp();
    waiting_.emplace_back(message);
    changed_.notify_all();
  }
  void end() {
    const std::lock_guard lock(mutex_);
    isEnded_ = true;
    changed_.notify_all();
  }
  void giveUp() {
    const std::lock_guard lock(mutex_);
    isGivenUp_ = true;
    changed_.notify_all();
  }
  /// Waits for a message or the end, at most so long. Gives the messages that came.
  std::deque<std::string> take(std::chrono::milliseconds longest) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, longest, [this] { return isEnded_ || !waiting_.empty(); });
    std::deque<std::string> taken;
    taken.swap(waiting_);
    changed_.notify_all();
    return taken;
  }
  [[nodiscard]] bool isEnded() {
    const std::lock_guard lock(mutex_);
    return isEnded_ && waiting_.empty();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::string> waiting_;
  bool isEnded_ = false;
  bool isGivenUp_ = false;
};

}  // namespace

// This system doesn't copy processes. The work runs on a thread of this one: what it raises is caught alike, a crash takes
// this process along, and where `meanwhile` throws, the caller waits for the work's end.
IsolatedOutcome runIsolated(const std::function<void()>& work, const std::function<void()>& meanwhile) {
  constexpr std::chrono::milliseconds kTenthOfASecond{100};
  std::future<IsolatedOutcome> outcome;
  try {
    outcome = std::async(std::launch::async, outcomeOf, std::cref(work));
  } catch (const std::system_error& error) {
    return {End::NotStarted, error.code().message()};
  }
  while (outcome.wait_for(kTenthOfASecond) != std::future_status::ready)
    if (meanwhile) meanwhile();
  return outcome.get();
}

IsolatedOutcome runIsolated(const std::function<void(const Tell& tell)>& work,
                            const std::function<void(std::string_view message)>& hear,
                            const std::function<void()>& meanwhile) {
  constexpr std::chrono::milliseconds kTenthOfASecond{100};
  Conversation conversation;
  std::future<IsolatedOutcome> outcome;
  try {
    outcome = std::async(std::launch::async, [&] {
      IsolatedOutcome ended =
          outcomeOf([&] { work([&conversation](std::string_view message) { conversation.tell(message); }); });
      conversation.end();
      return ended;
    });
  } catch (const std::system_error& error) {
    return {End::NotStarted, error.code().message()};
  }
  try {
    while (!conversation.isEnded()) {
      const std::deque<std::string> messages = conversation.take(kTenthOfASecond);
      for (const std::string& message : messages)
        if (hear) hear(message);
      if (messages.empty() && meanwhile) meanwhile();
    }
  } catch (...) {
    conversation.giveUp();
    outcome.wait();
    throw;
  }
  return outcome.get();
}

}  // namespace lvx::standin_platform
