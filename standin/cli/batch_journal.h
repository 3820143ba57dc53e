#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/batch_resume.h"
#include "cli/drawing_worker.h"
#include "cli/failure.h"
#include "cli/job_file.h"
#include "cli/job_key.h"
#include "journal/journal.h"
#include "options/options.h"
#include "standin_platform/locked_file.h"

namespace lvx::cli {

/// The line of a journal for a job that ended.
[[nodiscard]] journal::JobRecord recordOf(const JobFile& jobs, JobKeys& keys, const JobResult& result);
[[nodiscard]] journal::JobRecord recordOf(const Job& job, JobKeys& keys, const JobResult& result);

/// The journal of a batch that runs. Beside it lies "….running" for as long as the batch, which holds the keys of the jobs
/// that run, and of those that a killed batch before it began and that this one hasn't come to, so that they are known after
/// a kill; no two batches write one journal at a time.
class BatchJournal {
 public:
  /// The file beside a journal.
  [[nodiscard]] static std::string runningFile(const std::string& journal) { return journal + ".running"; }

  /// `options` name a journal. Waits some seconds for the end of what is left of a batch that was killed. Throws Failure:
  /// where the journal has lines and is neither to be gone on with nor to be overwritten, is no journal (kUsage), is that of
  /// a batch that runs, or can't be read or written (kNotWritten).
  BatchJournal(const JobFile& jobs, JobKeys& keys, const options::Options& options);

  /// What there is to do by what the journal holds; none where it begins anew.
  [[nodiscard]] const std::optional<ResumePlan>& plan() const { return plan_; }

  // Throw Failure (kNotWritten) where that can't be written down.
  void begins(std::size_t job);
  void ended(const journal::JobRecord& record);
  /// In the process of a report that is about to save its drawing in place.
  void saves(const Job& job, const JobResult& result);
  /// The same where that process has nothing of the batch's but its options.
  static void savesBeside(const std::string& journal, const Job& job, const JobResult& result);

  /// No process of the batch runs any more. Throws as the others do.
  void close();

 private:
  void keepBegun(const std::set<std::string>& begun);
  [[nodiscard]] std::string runningText() const;
  [[nodiscard]] static Failure notWritten(const std::string& journal, const std::exception& error);

  const JobFile& jobs_;
  JobKeys& keys_;
  std::string path_;
  std::unique_ptr<standin_platform::LockedFile> runningFile_;
  std::unique_ptr<journal::JournalWriter> writer_;
  std::optional<ResumePlan> plan_;
  std::set<std::string> running_;
};

}  // namespace lvx::cli
