#include "standin_platform/isolated_work.h"

#include <chrono>
#include <exception>
#include <future>
#include <new>
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

}  // namespace lvx::standin_platform
