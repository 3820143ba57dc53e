#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "cli/drawing_worker.h"
#include "cli/job_file.h"
#include "standin_platform/process_copy.h"

namespace lvx::cli {

/// What a batch does beside its jobs.
struct BatchRunOptions {
  /// Reports, and readings of drawings, at a time.
  std::size_t atOnce = 1;
  WorkerOptions worker;
  /// By the place of a job: it isn't run. Empty: all are.
  std::vector<bool> skipped;
  /// By the place of a job: ToldJob::replaces. Empty: none does.
  std::vector<bool> replaces;
};

/// Runs the jobs of a job file: a process for each drawing, which reads it once, and in that a process for each report. The
/// jobs of a drawing start in the order of the file; one that saves its drawing runs alone on it, and those behind one
/// that saved it in place read it anew. Drawings come in the order of the file too, and as few as possible are open.
///
/// This side has one thread, and holds one open file for each drawing that is open. Where the system has no process or file
/// for a further one it waits until one ends.
class BatchRun {
 public:
  /// `jobs` lives longer.
  BatchRun(const JobFile& jobs, BatchRunOptions options);
  BatchRun(const BatchRun&) = delete;
  BatchRun& operator=(const BatchRun&) = delete;
  ~BatchRun();

  /// Called as jobs end, in whatever order, and once in a while without one.
  struct Listener {
    std::function<void(JobResult)> ended;
    std::function<void()> meanwhile;
    /// Told before a job is begun; what it throws begins no further one, and `run` throws it when those that run have
    /// ended. So does what `ended` throws.
    std::function<void(std::size_t job)> begins;
  };
  /// Runs all of them. After an interruption, which those that run hear of too, it waits for these and begins no other.
  void run(const Listener& listener);

  /// Whether a job was begun.
  [[nodiscard]] bool isBegun(std::size_t job) const { return begun_[job]; }

 private:
  /// A drawing with its jobs.
  struct Drawing;

  void startJobs(const Listener& listener);
  bool startJob(Drawing& drawing, const Listener& listener);
  void clearOutputFolders(const Drawing& drawing) const;
  [[nodiscard]] std::string told(std::size_t job) const;
  bool openDrawing(Drawing& drawing, const Listener& listener);
  void hear(const Listener& listener);
  static void close(Drawing& drawing);
  void tellEnd(JobResult result, const Listener& listener);
  void take(Drawing& drawing, const std::string& bytes, const Listener& listener);
  void ended(Drawing& drawing, const Listener& listener);
  void failAll(Drawing& drawing, int exitCode, const std::string& words, const Listener& listener);

  const JobFile& jobs_;
  BatchRunOptions options_;
  std::vector<std::vector<std::uint32_t>> jobsOf_;
  /// Those that weren't opened yet, in their order.
  std::size_t nextDrawing_ = 0;
  std::list<std::unique_ptr<Drawing>> open_;
  std::size_t running_ = 0;
  std::vector<bool> begun_;
  bool isInterrupted_ = false;
  std::exception_ptr failure_;
};

}  // namespace lvx::cli
