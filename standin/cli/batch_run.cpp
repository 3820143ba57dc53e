#include "cli/batch_run.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/failure.h"
#include "cli/terminal.h"
#include "standin_platform/interruption.h"
#include "standin_platform/left_overs.h"

namespace lvx::cli {

using standin_platform::ChildResult;
using standin_platform::isInterrupted;
using standin_platform::MessageLine;
using standin_platform::ProcessCopy;

struct BatchRun::Drawing {
  /// Its jobs, in their order, and how many of them were begun.
  std::vector<std::uint32_t> jobs;
  std::size_t begun = 0;
  /// The process that has it in memory; null: it is to be read.
  std::unique_ptr<ProcessCopy> process;
  bool isReading = false;
  std::vector<std::uint32_t> running;
  /// A job that saves runs, so that no other may.
  bool isAlone = false;
  /// It was saved, so that it has to be read anew.
  bool isOutdated = false;

  [[nodiscard]] bool isDone() const { return begun == jobs.size() && running.empty(); }
};

BatchRun::BatchRun(const JobFile& jobs, BatchRunOptions options)
    : jobs_(jobs), options_(std::move(options)), jobsOf_(jobs.drawingCount()), begun_(jobs.entries().size()) {
  for (std::size_t i = 0; i < jobs.entries().size(); ++i)
    if (options_.skipped.empty() || !options_.skipped[i])
      jobsOf_[jobs.entries()[i].drawing].push_back(static_cast<std::uint32_t>(i));
}

// What runs still has no use any more, but is to take away what it began.
BatchRun::~BatchRun() {
  for (const auto& drawing : open_)
    if (drawing->process) drawing->process->interrupt();
  for (const auto& drawing : open_)
    if (drawing->process) drawing->process->stop();
}

void BatchRun::run(const Listener& listener) {
  constexpr std::chrono::milliseconds kLookForInterruption{100};
  for (;;) {
    if (isInterrupted() && !std::exchange(isInterrupted_, true))
      for (const auto& drawing : open_)
        if (drawing->process) drawing->process->interrupt();
    if (!isInterrupted_ && !failure_) startJobs(listener);
    if (open_.empty()) break;
    std::vector<MessageLine*> lines;
    for (const auto& drawing : open_)
      if (drawing->process) lines.push_back(&drawing->process->line());
    waitForMessages(lines, kLookForInterruption);
    hear(listener);
    if (listener.meanwhile) listener.meanwhile();
  }
  if (failure_) std::rethrow_exception(failure_);
}

void BatchRun::startJobs(const Listener& listener) {
  const auto isFull = [this] { return running_ >= options_.atOnce; };
  // What is read already first, so that few drawings are in memory.
  for (const auto& drawing : open_)
    while (!isFull() && startJob(*drawing, listener)) {
    }
  for (auto drawing = open_.begin(); drawing != open_.end() && !isFull();) {
    if ((*drawing)->process || openDrawing(**drawing, listener)) {
      ++drawing;
    } else {
      if (!(*drawing)->isDone()) return;  // the system has nothing left: wait
      drawing = open_.erase(drawing);
    }
  }
  while (!isFull() && nextDrawing_ < jobsOf_.size()) {
    if (jobsOf_[nextDrawing_].empty()) {
      ++nextDrawing_;
      continue;
    }
    auto drawing = std::make_unique<Drawing>();
    drawing->jobs = std::move(jobsOf_[nextDrawing_++]);
    const bool isOpen = openDrawing(*drawing, listener);
    const bool isOver = drawing->isDone();
    if (!isOver) open_.push_back(std::move(drawing));
    if (!isOpen && !isOver) return;
  }
}

/// Here once, so that the processes of the reports needn't list folders that fill up as the batch goes on.
void BatchRun::clearOutputFolders(const Drawing& drawing) const {
  for (std::size_t i = drawing.begun; i < drawing.jobs.size(); ++i) {
    const Job job = jobs_.read(jobs_.entries()[drawing.jobs[i]]);
    const std::filesystem::path folder = std::filesystem::path(job.options.report.stem).parent_path();
    standin_platform::clearLeftOvers(folder.empty() ? "." : folder);
  }
}

std::string BatchRun::told(std::size_t job) const {
  const JobFile::Entry& entry = jobs_.entries()[job];
  return packed(ToldJob{job, entry.line, std::string(jobs_.textOf(entry)), entry.savesInPlace,
                        !options_.replaces.empty() && options_.replaces[job]});
}

bool BatchRun::openDrawing(Drawing& drawing, const Listener& listener) {
  clearOutputFolders(drawing);
  try {
    drawing.process = std::make_unique<ProcessCopy>(
        kDrawingWork, told(drawing.jobs[drawing.begun]),
        [&](const std::string& first, MessageLine& line) { return serveDrawing(jobs_, first, options_.worker, line); },
        ProcessCopy::Streams::Shared);
  } catch (const std::system_error& error) {
    // One that ends makes room; without one there is nothing to wait for.
    if (running_ == 0)
      failAll(drawing, kNotWritten,
              "lvxhost: the system has no process for this drawing: " + error.code().message() + "\n", listener);
    return false;
  }
  drawing.isReading = true;
  drawing.isOutdated = false;
  ++running_;
  return true;
}

bool BatchRun::startJob(Drawing& drawing, const Listener& listener) {
  if (failure_ || !drawing.process || drawing.isReading || drawing.isAlone || drawing.isOutdated) return false;
  if (drawing.begun == drawing.jobs.size()) return false;
  const std::uint32_t job = drawing.jobs[drawing.begun];
  const bool saves = jobs_.entries()[job].saves;
  if (saves && !drawing.running.empty()) return false;
  try {
    if (listener.begins) listener.begins(job);
  } catch (const std::exception&) {
    failure_ = std::current_exception();
    return false;
  }
  drawing.isAlone = saves;
  ++drawing.begun;
  begun_[job] = true;
  drawing.running.push_back(job);
  ++running_;
  drawing.process->line().send(told(job));  // where it is gone, `hear` finds that out
  return true;
}

void BatchRun::hear(const Listener& listener) {
  for (auto at = open_.begin(); at != open_.end();) {
    Drawing& drawing = **at;
    if (drawing.process) {
      std::vector<std::string> messages;
      const bool isThere = drawing.process->line().take(messages);
      for (const std::string& message : messages) take(drawing, message, listener);
      if (!isThere)
        ended(drawing, listener);
      else if (drawing.running.empty() && !drawing.isReading &&
               (drawing.isOutdated || drawing.isDone() || isInterrupted_ || failure_))
        close(drawing);
    }
    const bool isOver = drawing.isDone() || ((isInterrupted_ || failure_) && !drawing.process);
    at = isOver ? open_.erase(at) : std::next(at);
  }
}

void BatchRun::take(Drawing& drawing, const std::string& bytes, const Listener& listener) {
  WorkerMessage message = unpackedMessage(bytes);
  JobResult& result = message.result;
  switch (message.kind) {
    case WorkerMessage::Kind::Ready:
      drawing.isReading = false;
      --running_;
      return;
    case WorkerMessage::Kind::NoDrawing:
      drawing.isReading = false;
      --running_;
      if (result.exitCode != kInterrupted) failAll(drawing, result.exitCode, result.errors, listener);
      return;
    case WorkerMessage::Kind::Result:
      std::erase(drawing.running, static_cast<std::uint32_t>(result.job));
      --running_;
      if (std::exchange(drawing.isAlone, false)) drawing.isOutdated = jobs_.entries()[result.job].savesInPlace;
      tellEnd(std::move(result), listener);
      return;
  }
}

void BatchRun::tellEnd(JobResult result, const Listener& listener) {
  try {
    listener.ended(std::move(result));
  } catch (const std::exception&) {
    if (!failure_) failure_ = std::current_exception();
  }
}

/// Lets the process of a drawing end, with those that it has.
void BatchRun::close(Drawing& drawing) {
  drawing.process->line().close();
  (void)drawing.process->wait();
  drawing.process.reset();
}

/// The process of a drawing is gone.
void BatchRun::ended(Drawing& drawing, const Listener& listener) {
  const int code = drawing.process->wait().exitCode;
  drawing.process.reset();
  const std::string words = "lvxhost: the process of the drawing ended with " + std::to_string(code) + "\n";
  for (const std::uint32_t job : std::exchange(drawing.running, {})) {
    --running_;
    JobResult result;
    result.job = job;
    result.exitCode = isInterrupted() || code == kInterrupted ? kInterrupted : std::max<int>(code, kNotWritten);
    result.errors = words;
    tellEnd(std::move(result), listener);
  }
  drawing.isAlone = false;
  if (!std::exchange(drawing.isReading, false)) return;
  --running_;
  // It would end so again.
  if (!isInterrupted()) failAll(drawing, std::max<int>(code, kNotWritten), words, listener);
}

void BatchRun::failAll(Drawing& drawing, int exitCode, const std::string& words, const Listener& listener) {
  while (drawing.begun < drawing.jobs.size()) {
    JobResult result;
    result.job = drawing.jobs[drawing.begun++];
    result.exitCode = exitCode;
    result.errors = words;
    begun_[result.job] = true;
    tellEnd(std::move(result), listener);
  }
}

}  // namespace lvx::cli
