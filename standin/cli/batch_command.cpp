#include "cli/batch_command.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "cli/answer.h"
#include "cli/batch_journal.h"
#include "cli/batch_merge.h"
#include "cli/batch_progress.h"
#include "cli/batch_resume.h"
#include "cli/batch_run.h"
#include "cli/batch_words.h"
#include "cli/command_line_front_end.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/host_setup.h"
#include "cli/job_file.h"
#include "cli/job_key.h"
#include "cli/terminal.h"
#include "journal/journal.h"
#include "journal/summary.h"
#include "options/option_table.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/interruption.h"
#include "standin_platform/process_copy.h"
#include "standin_platform/standard_input.h"
#include "version/version.h"

namespace lvx::cli {

namespace fs = std::filesystem;
using standin_platform::isInterrupted;

namespace {

JobFileSettings settingsOf(const options::Options& options) {
  const bool isFromInput = options.batch.jobs == options::kStandardInput;
  JobFileSettings settings{steeringName(options.batch.jobs), options.common, options.batch.base, {}, {}};
  if (settings.base == "jobs") {
    if (isFromInput) throw Failure(kUsage, "batch: --base jobs: jobs that come on standard input lie in no folder");
    settings.base = fs::path(options.batch.jobs).parent_path().string();
  }
  if (settings.base && settings.base->empty()) settings.base.reset();
  if (std::error_code error; settings.base && !fs::is_directory(*settings.base, error))
    throw Failure(kUsage, "batch: --base names '" + *settings.base + "', which is no folder");
  settings.taken.emplace_back(isFromInput ? standin_platform::standardInputName().string() : options.batch.jobs,
                              "the job file");
  if (options.batch.part) settings.share = options::shareOf(*options.batch.part);
  if (const auto& journal = options.batch.journal) {
    settings.taken.emplace_back(*journal, "the journal");
    settings.taken.emplace_back(BatchJournal::runningFile(*journal), "the file beside the journal");
  }
  if (const auto& summary = options.batch.summary) settings.taken.emplace_back(*summary, "the summary");
  for (const std::string& journal : options.batch.merge) settings.taken.emplace_back(journal, "a journal");
  return settings;
}

/// The batch's own files.
void requireDifferentFiles(const options::BatchOptions& batch) {
  std::vector<std::pair<std::string, std::string>> files{{"JOBS", batch.jobs}};
  if (batch.journal) {
    files.emplace_back("--journal", *batch.journal);
    files.emplace_back("--journal, with .running behind it,", BatchJournal::runningFile(*batch.journal));
  }
  if (batch.summary) files.emplace_back("--summary", *batch.summary);
  for (const std::string& journal : batch.merge) files.emplace_back("--merge", journal);
  for (std::size_t i = 0; i < files.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (standin_platform::leadToOneFile(files[i].second, files[j].second))
        throw Failure(kUsage, "batch: " + files[j].first + " and " + files[i].first + " name one file, '" +
                                  files[i].second + "'");
}

/// Tries each choice of a host once, so that a wrong one is told before any report runs.
void requireHosts(const JobFile& jobs, const std::string& name) {
  std::vector<std::string> errors;
  for (const JobFile::HostUse& use : jobs.hostUses()) {
    try {
      CommandLineFrontEnd frontEnd(use.common.overwriteMode(), {});
      static_cast<void>(makeHost(frontEnd, use.common));
    } catch (const Failure& failure) {
      errors.push_back(name + ":" + std::to_string(use.line) + ": " + failure.what());
    }
  }
  if (!errors.empty()) throw Failure(kUsage, jobFileErrors(std::move(errors)));
}

/// In a process that does a part of a batch, where it began as this program does.
int serveBatch(standin_platform::BegunCopy& begun, const options::Options& options) {
  answer().release();  // the batch answers for it
  const JobFile jobs(settingsOf(options));
  WorkerOptions worker;
  worker.hashes = options.batch.journal || options.batch.summary;
  if (options.batch.journal)
    worker.saving = [&](const Job& job, const JobResult& result) {
      BatchJournal::savesBeside(*options.batch.journal, job, result);
    };
  return begun.name == kDrawingWork ? serveDrawing(jobs, begun.request, worker, begun.line)
                                    : serveReports(jobs, begun.request, worker, begun.line);
}

/// Before hours of work for nothing.
void requireWritable(const std::string& summary) {
  const fs::path folder = fs::path(summary).parent_path();
  if (const std::error_code reason = standin_platform::whyNoNewFile(folder.empty() ? fs::path(".") : folder))
    throw Failure(kNotWritten, "batch: the summary '" + summary + "' can't be written: " + reason.message());
}

/// What a job said on standard error, each line with the job's own in front.
/// `hasFailed`: of a job that did.
void tellLines(const std::string& jobs, std::size_t line, const std::string& errors, bool hasFailed) {
  for (std::size_t start = 0; start < errors.size();) {
    const std::size_t end = std::min(errors.find('\n', start), errors.size());
    const std::string words = errors.substr(start, end - start);
    if (hasFailed || !answer().isQuiet()) tell("line " + std::to_string(line) + ": " + words + "\n");
    answer().add({hasFailed ? Severity::Error : Severity::Warning, words, jobs, line});
    start = end + 1;
  }
}

bool wasBrokenOff(const JobResult& result) { return isInterrupted() && result.exitCode == kInterrupted; }

/// Tells results in the order of the job file, whatever the order in which they come.
class Teller {
 public:
  /// `skipped` by the place of the job, or empty: those that don't run.
  Teller(const JobFile& jobs, std::string name, BatchProgress& progress, std::vector<bool> skipped)
      : jobs_(jobs), name_(std::move(name)), progress_(progress), skipped_(std::move(skipped)) {}

  void take(JobResult result) {
    ++ended_;
    if (result.exitCode != kDone && result.exitCode != kInterrupted) ++failures_;
    const std::size_t job = result.job;
    waiting_.emplace(job, std::move(result));
    for (;;) {
      while (next_ < skipped_.size() && skipped_[next_]) ++next_;
      const auto first = waiting_.begin();
      if (first == waiting_.end() || first->first != next_) return;
      tellResult(first->second);
      waiting_.erase(first);
      ++next_;
    }
  }
  /// After an interruption, which leaves gaps.
  void tellRest() {
    for (const auto& [job, result] : waiting_) tellResult(result);
    waiting_.clear();
  }

  /// How many have ended by now, told or not, and how many of them failed.
  [[nodiscard]] std::size_t ended() const { return ended_; }
  [[nodiscard]] std::size_t failures() const { return failures_; }

  [[nodiscard]] std::size_t done() const { return done_; }
  [[nodiscard]] const std::vector<std::size_t>& failed() const { return failed_; }
  [[nodiscard]] const std::vector<std::size_t>& broken() const { return broken_; }

 private:
  void tellResult(const JobResult& result) {
    const Job job = jobs_.read(jobs_.entries()[result.job]);
    if (!result.output.empty() || !result.errors.empty() || result.exitCode != kDone) progress_.hide();
    print(result.output);
    tellLines(name_, job.line, result.errors, result.exitCode != kDone);
    for (const OutputFile& file : result.written) answer().addWritten(file.path);
    if (result.exitCode == kDone) {
      ++done_;
      return;
    }
    const bool isBroken = wasBrokenOff(result);
    (isBroken ? broken_ : failed_).push_back(job.line);
    tell("line " + std::to_string(job.line) + ": ended with " + std::to_string(result.exitCode) + ": " + job.label +
         "\n");
    if (isBroken) tellForms(job, result);
  }

  static void tellForms(const Job& job, const JobResult& result) {
    std::string stand;
    for (const OutputFile& file : result.written) stand += (stand.empty() ? "" : ", ") + file.path;
    tell("line " + std::to_string(job.line) + ": broken off; of its files " +
         (stand.empty() ? "none was written" : "these were written: " + stand) + "\n");
  }

  const JobFile& jobs_;
  std::string name_;  ///< of the job file, in messages
  BatchProgress& progress_;
  std::vector<bool> skipped_;
  std::map<std::size_t, JobResult> waiting_;
  std::size_t next_ = 0;
  std::size_t ended_ = 0;
  std::size_t failures_ = 0;
  std::size_t done_ = 0;
  std::vector<std::size_t> failed_;
  std::vector<std::size_t> broken_;
};

/// Before the jobs: which of them don't run, and why the others do.
void tellPlan(const JobFile& jobs, const ResumePlan& plan, const std::string& journal) {
  constexpr std::size_t kMostListed = 20;
  const std::size_t count = jobs.entries().size();
  say("journal '" + journal + "': " + std::to_string(plan.done) + " of " + std::to_string(count) +
          (count == 1 ? " job is done and isn't run again" : " jobs are done and aren't run again"),
      Severity::Note);
  if (!plan.unreadable.empty())
    say(listedLines(
            plan.unreadable.size() == 1 ? " line of the journal can't be read" : " lines of the journal can't be read",
            plan.unreadable, kMostListed),
        Severity::Warning);
  std::map<RunReason, std::vector<std::size_t>> lines;
  for (std::size_t i = 0; i < count; ++i)
    if (plan.reasons[i] != RunReason::Done) lines[plan.reasons[i]].push_back(jobs.entries()[i].line);
  for (const auto& [reason, ofReason] : lines) {
    const bool isOne = ofReason.size() == 1;
    say(listedLines((isOne ? " runs " : " run ") + reasonText(reason, isOne), ofReason, kMostListed), Severity::Note);
  }
}

/// How the batch ended, for the last line and for the file of --summary.
struct End {
  std::size_t count = 0;
  std::size_t done = 0;
  std::size_t doneBefore = 0;
  std::size_t notBegun = 0;
  bool isBroken = false;
};

std::string lastLine(const End& end, const Teller& teller) {
  std::string text =
      std::to_string(end.count) + (end.count == 1 ? " job: " : " jobs: ") + std::to_string(end.done) + " done";
  if (end.doneBefore > 0) text += " (" + std::to_string(end.doneBefore) + " before)";
  text += ", " + listedLines(" failed", teller.failed());
  if (!teller.broken().empty()) text += ", " + listedLines(" broken off", teller.broken());
  return end.isBroken || end.notBegun > 0 ? text + ", " + std::to_string(end.notBegun) + " not begun" : text;
}

/// Takes what the file of --summary tells beside numbers.
class SummaryKeeper {
 public:
  explicit SummaryKeeper(bool isAsked) : isAsked_(isAsked) {}
  void take(const journal::JobRecord& record, bool isBroken) {
    if (record.exitCode == kDone) {
      summary.files += record.files.size();
      for (const OutputFile& file : record.files) summary.bytes += file.bytes;
    } else if (isAsked_) {
      (isBroken ? summary.broken : summary.failed).push_back(record);
    }
  }
  journal::Summary summary;

 private:
  bool isAsked_;
};

/// How the jobs ran.
struct Ran {
  ExitCode code = kDone;
  /// What broke it off beside the user; empty where nothing did.
  std::string words;
};

Ran runJobs(BatchRun& run, const BatchRun::Listener& listener) {
  try {
    run.run(listener);
    return {};
  } catch (const Failure& failure) {
    return {failure.code(), failure.what()};
  }
}

}  // namespace

ExitCode runBatch(const options::Options& options) {
  const auto start = std::chrono::steady_clock::now();
  const options::BatchOptions& batch = options.batch;
  if (auto begun = standin_platform::begunCopy()) return static_cast<ExitCode>(serveBatch(*begun, options));
  requireDifferentFiles(batch);
  const JobFile jobs(readSteeringFile(batch.jobs, "batch"), settingsOf(options));
  if (batch.summary) requireWritable(*batch.summary);
  if (!batch.merge.empty()) return mergeJournals(options, jobs);
  requireHosts(jobs, steeringName(batch.jobs));
  const std::size_t count = jobs.entries().size();
  const bool isSummed = batch.summary || answer().isGathered();

  JobKeys keys;
  std::optional<BatchJournal> journal;
  BatchRunOptions running;
  End end{count};
  SummaryKeeper keeper(isSummed);
  const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
  running.atOnce = batch.atOnce ? static_cast<std::size_t>(*batch.atOnce) : processors;
  running.worker.hashes = batch.journal || batch.summary;
  if (batch.journal) {
    journal.emplace(jobs, keys, options);
    running.worker.saving = [&](const Job& job, const JobResult& result) { journal->saves(job, result); };
  }
  if (journal && journal->plan()) {
    const ResumePlan& plan = *journal->plan();
    for (const RunReason reason : plan.reasons) running.skipped.push_back(reason == RunReason::Done);
    running.replaces = plan.replaces;
    end.doneBefore = plan.done;
    keeper.summary.files = plan.files;
    keeper.summary.bytes = plan.bytes;
    if (!options.common.quiet) tellPlan(jobs, plan, *batch.journal);
  }

  BatchProgress progress(options.common.progressMode(), count - end.doneBefore);
  Teller teller(jobs, steeringName(batch.jobs), progress, running.skipped);
  BatchRun run(jobs, std::move(running));
  BatchRun::Listener listener;
  listener.ended = [&](JobResult result) {
    if (journal || isSummed) {
      const journal::JobRecord record = recordOf(jobs, keys, result);
      keeper.take(record, wasBrokenOff(result));
      // Written down before anything is told, and before a job behind it begins.
      if (journal) journal->ended(record);
    }
    teller.take(std::move(result));
  };
  listener.meanwhile = [&] { progress.update(teller.ended(), teller.failures()); };
  if (journal) listener.begins = [&](std::size_t job) { journal->begins(job); };
  const Ran ran = runJobs(run, listener);
  progress.hide();
  teller.tellRest();
  if (journal && ran.words.empty()) journal->close();

  end.isBroken = isInterrupted();
  end.done = teller.done() + end.doneBefore;
  end.notBegun = count - end.done - teller.failed().size() - teller.broken().size();
  ExitCode code = ran.code == kDone && !teller.failed().empty() ? kNotWritten : ran.code;
  if (end.isBroken) code = kInterrupted;
  if (isSummed) {
    journal::Summary& summary = keeper.summary;
    summary.jobs = steeringName(batch.jobs);
    summary.part = batch.part;
    summary.program = version::text();
    summary.count = count;
    summary.done = end.done;
    summary.doneBefore = end.doneBefore;
    summary.notBegun = end.notBegun;
    summary.exitCode = code;
    summary.interrupted = end.isBroken;
    summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (batch.summary && !writeSummaryFile(*batch.summary, summary) && code == kDone) code = kNotWritten;
    answerSummary(summary);
  }
  if (!ran.words.empty()) say(ran.words);
  if (!options.common.quiet || code != kDone)
    say(lastLine(end, teller), code == kDone ? Severity::Note : Severity::Error);
  if (end.isBroken) say("interrupted; no unfinished file was left");
  return code;
}

}  // namespace lvx::cli
