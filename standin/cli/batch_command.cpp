#include "cli/batch_command.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "cli/batch_run.h"
#include "cli/command_line_front_end.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/host_setup.h"
#include "cli/job_file.h"
#include "cli/terminal.h"
#include "options/option_table.h"
#include "standin_platform/interruption.h"
#include "standin_platform/standard_input.h"

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
  return settings;
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

/// What a job said on standard error, each line with the job's own in front.
void tellLines(std::size_t line, const std::string& errors) {
  for (std::size_t start = 0; start < errors.size();) {
    const std::size_t end = std::min(errors.find('\n', start), errors.size());
    tell("line " + std::to_string(line) + ": " + errors.substr(start, end - start) + "\n");
    start = end + 1;
  }
}

std::string listed(const char* words, const std::vector<std::size_t>& lines) {
  constexpr std::size_t kMostListed = 1000;
  std::string text = std::to_string(lines.size()) + words;
  for (std::size_t i = 0; i < std::min(lines.size(), kMostListed); ++i)
    text += (i > 0 ? ", " : lines.size() == 1 ? " (line " : " (lines ") + std::to_string(lines[i]);
  if (lines.size() > kMostListed) text += " and " + std::to_string(lines.size() - kMostListed) + " more";
  return lines.empty() ? text : text + ")";
}

/// Tells results in the order of the job file, whatever the order in which they come.
class Teller {
 public:
  explicit Teller(const JobFile& jobs) : jobs_(jobs) {}

  void take(JobResult result) {
    const std::size_t job = result.job;
    waiting_.emplace(job, std::move(result));
    for (auto first = waiting_.begin(); first != waiting_.end() && first->first == next_; ++next_) {
      tellResult(first->second);
      first = waiting_.erase(first);
    }
  }
  /// After an interruption, which leaves gaps.
  void tellRest() {
    for (const auto& [job, result] : waiting_) tellResult(result);
    waiting_.clear();
  }

  [[nodiscard]] std::size_t done() const { return done_; }
  [[nodiscard]] const std::vector<std::size_t>& failed() const { return failed_; }
  [[nodiscard]] const std::vector<std::size_t>& broken() const { return broken_; }

 private:
  void tellResult(const JobResult& result) {
    const Job job = jobs_.read(jobs_.entries()[result.job]);
    print(result.output);
    tellLines(job.line, result.errors);
    if (result.exitCode == kDone) {
      ++done_;
      return;
    }
    const bool isBroken = isInterrupted() && result.exitCode == kInterrupted;
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
  std::map<std::size_t, JobResult> waiting_;
  std::size_t next_ = 0;
  std::size_t done_ = 0;
  std::vector<std::size_t> failed_;
  std::vector<std::size_t> broken_;
};

std::string summary(std::size_t jobs, const Teller& teller) {
  std::string text = std::to_string(jobs) + (jobs == 1 ? " job: " : " jobs: ") + std::to_string(teller.done()) +
                     " done, " + listed(" failed", teller.failed());
  if (!isInterrupted()) return text;
  if (!teller.broken().empty()) text += ", " + listed(" broken off", teller.broken());
  return text + ", " + std::to_string(jobs - teller.done() - teller.failed().size() - teller.broken().size()) +
         " not begun";
}

}  // namespace

ExitCode runBatch(const options::Options& options) {
  const JobFile jobs(readSteeringFile(options.batch.jobs, "batch"), settingsOf(options));
  requireHosts(jobs, steeringName(options.batch.jobs));
  BatchRunOptions running;
  const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
  running.atOnce = options.batch.atOnce ? static_cast<std::size_t>(*options.batch.atOnce) : processors;

  Teller teller(jobs);
  BatchRun run(jobs, running);
  run.run({[&](JobResult result) { teller.take(std::move(result)); }, {}});
  teller.tellRest();
  const bool isBroken = isInterrupted();
  if (!options.common.quiet || !teller.failed().empty() || isBroken) say(summary(jobs.entries().size(), teller));
  if (isBroken) {
    say("interrupted; no unfinished file was left");
    return kInterrupted;
  }
  return teller.failed().empty() ? kDone : kNotWritten;
}

}  // namespace lvx::cli
