#include "cli/batch_command.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/job_file.h"
#include "cli/terminal.h"
#include "runtime/installation.h"
#include "runtime/open_drawing.h"
#include "standin_platform/child_process.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

using standin_platform::ChildProcess;
using standin_platform::ChildResult;
using standin_platform::isInterrupted;

namespace {

/// Jobs that several workers take one after the other.
class Workers {
 public:
  Workers(const std::vector<Job>& jobs, std::size_t count)
      : jobs_(jobs), program_(runtime::programFile()), results_(jobs.size()), children_(count) {
    for (ChildProcess& child : children_) threads_.emplace_back([this, &child] { work(child); });
  }
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  ~Workers() {
    stop();
    for (std::thread& thread : threads_) thread.join();
  }

  /// The result of a job, once it is there. Throws runtime::Interrupted when the user wants to stop.
  ChildResult resultOf(std::size_t index) {
    constexpr std::chrono::milliseconds kLookForInterruption{100};
    std::unique_lock lock(mutex_);
    while (!results_[index]) {
      ready_.wait_for(lock, kLookForInterruption);
      if (isInterrupted()) throw runtime::Interrupted();
    }
    return std::move(*results_[index]);
  }

 private:
  void work(ChildProcess& child) {
    for (;;) {
      const std::size_t index = next_++;
      if (index >= jobs_.size() || stopped_) return;
      ChildResult result = child.run(program_, jobs_[index].arguments);
      const std::lock_guard guard(mutex_);
      results_[index] = std::move(result);
      ready_.notify_one();
    }
  }
  void stop() {
    stopped_ = true;
    if (isInterrupted())
      for (ChildProcess& child : children_) child.interrupt();
  }

  const std::vector<Job>& jobs_;
  std::filesystem::path program_;
  std::mutex mutex_;
  std::condition_variable ready_;
  std::vector<std::optional<ChildResult>> results_;
  std::atomic<std::size_t> next_{0};
  std::atomic<bool> stopped_{false};
  std::deque<ChildProcess> children_;
  std::vector<std::thread> threads_;
};

/// What a job said on standard error, each line with the job's own in front.
void tellLines(const Job& job, const std::string& errors) {
  for (std::size_t start = 0; start < errors.size();) {
    const std::size_t end = std::min(errors.find('\n', start), errors.size());
    tell("line " + std::to_string(job.line) + ": " + errors.substr(start, end - start) + "\n");
    start = end + 1;
  }
}

std::string summary(std::size_t jobs, const std::vector<std::size_t>& failed) {
  std::string text = std::to_string(jobs) + (jobs == 1 ? " job: " : " jobs: ") + std::to_string(jobs - failed.size()) +
                     " done, " + std::to_string(failed.size()) + " failed";
  for (std::size_t i = 0; i < failed.size(); ++i)
    text += (i > 0 ? ", " : failed.size() == 1 ? " (line " : " (lines ") + std::to_string(failed[i]);
  return failed.empty() ? text : text + ")";
}

}  // namespace

ExitCode runBatch(const options::Options& options) {
  const std::vector<Job> jobs =
      parseJobs(readSteeringFile(options.batch.jobs, "batch"), options.batch.jobs, options.common);
  const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
  const std::size_t atOnce = options.batch.atOnce ? static_cast<std::size_t>(*options.batch.atOnce) : processors;

  std::vector<std::size_t> failed;
  Workers workers(jobs, std::min(atOnce, jobs.size()));
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    const ChildResult result = workers.resultOf(i);
    print(result.output);
    tellLines(jobs[i], result.errors);
    if (result.exitCode == kDone) continue;
    failed.push_back(jobs[i].line);
    tell("line " + std::to_string(jobs[i].line) + ": ended with " + std::to_string(result.exitCode) + ": " +
         jobs[i].label + "\n");
  }
  if (!options.common.quiet || !failed.empty()) say(summary(jobs.size(), failed));
  return failed.empty() ? kDone : kNotWritten;
}

}  // namespace lvx::cli
