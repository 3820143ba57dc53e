#include "cli/batch_progress.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "cli/terminal.h"
#include "standin_platform/standard_streams.h"

namespace lvx::cli {

namespace {

/// "0:13", "2:05:09".
std::string durationText(double seconds) {
  constexpr std::uint64_t kMinute = 60;
  constexpr std::uint64_t kHour = 3600;
  constexpr double kMost = 1e9;
  const auto whole = static_cast<std::uint64_t>(std::ceil(std::min(seconds, kMost)));
  const auto twoDigits = [](std::uint64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  const std::string minutes = std::to_string(whole % kHour / kMinute);
  if (whole < kHour) return minutes + ":" + twoDigits(whole % kMinute);
  return std::to_string(whole / kHour) + ":" + twoDigits(whole % kHour / kMinute) + ":" + twoDigits(whole % kMinute);
}

std::string rateText(double rate) {
  std::array<char, 32> digits{};
  const auto [end, error] =
      std::to_chars(digits.data(), digits.data() + digits.size(), rate, std::chars_format::fixed, 1);
  return {digits.data(), end};
}

}  // namespace

std::string progressText(std::size_t jobs, std::size_t ended, std::size_t failed, double seconds) {
  std::string text = std::to_string(ended) + " of " + std::to_string(jobs) + (jobs == 1 ? " job" : " jobs");
  if (ended > 0 && seconds > 0.0) {
    const double rate = static_cast<double>(ended) / seconds;
    text += ", " + rateText(rate) + " a second, " + durationText(static_cast<double>(jobs - ended) / rate) + " left";
  }
  if (failed > 0) text += ", " + std::to_string(failed) + " failed";
  return text;
}

BatchProgress::BatchProgress(options::ProgressMode mode, std::size_t jobs)
    : mode_(mode),
      jobs_(jobs),
      terminal_(standin_platform::isTerminal(standin_platform::StandardStream::Errors)),
      start_(Clock::now()),
      lastShown_(start_) {}

void BatchProgress::update(std::size_t ended, std::size_t failed) {
  // The first one after a moment, so that a short batch shows none.
  constexpr std::chrono::milliseconds kBetween{400};
  constexpr std::size_t kTenths = 10;
  if (mode_ == options::ProgressMode::Never || jobs_ == 0) return;
  if (mode_ == options::ProgressMode::Auto && !terminal_) return;
  const Clock::time_point now = Clock::now();
  const std::chrono::duration<double> seconds = now - start_;
  if (terminal_) {
    if (now - lastShown_ < kBetween) return;
    lastShown_ = now;
    hide();
    std::fflush(stdout);  // results stand above it
    tell("lvxhost: " + progressText(jobs_, ended, failed, seconds.count()));
    std::fflush(stderr);
    isShown_ = true;
    return;
  }
  const std::size_t tenth = ended * kTenths / jobs_;
  if (tenth <= lastTenth_) return;
  lastTenth_ = tenth;
  say(progressText(jobs_, ended, failed, seconds.count()));
}

void BatchProgress::hide() {
  if (isShown_) tell("\r\x1b[K");
  isShown_ = false;
}

}  // namespace lvx::cli
