#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "options/options.h"

namespace lvx::cli {

/// How far a batch is, for people: "lvxhost: 120 of 300 jobs, 14.2 a second, 0:13 left, 1 failed" on standard error. On a
/// terminal one line that renews itself; elsewhere, and only where asked for, a line for each tenth.
class BatchProgress {
 public:
  BatchProgress(options::ProgressMode mode, std::size_t jobs);
  BatchProgress(const BatchProgress&) = delete;
  BatchProgress& operator=(const BatchProgress&) = delete;
  ~BatchProgress() { hide(); }

  void update(std::size_t ended, std::size_t failed);
  /// Takes a renewing line away, before anything else is said; the next `update` shows it again.
  void hide();

 private:
  using Clock = std::chrono::steady_clock;

  options::ProgressMode mode_;
  std::size_t jobs_;
  bool terminal_;
  bool isShown_ = false;
  Clock::time_point start_;
  Clock::time_point lastShown_;
  std::size_t lastTenth_ = 0;
};

/// "120 of 300 jobs, 14.2 a second, 0:13 left, 1 failed"; no rate before a job has ended.
[[nodiscard]] std::string progressText(std::size_t jobs, std::size_t ended, std::size_t failed, double seconds);

}  // namespace lvx::cli
