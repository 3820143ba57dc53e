#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "cli/job_file.h"
#include "cli/job_key.h"

namespace lvx::cli {

/// Why a job runs in a batch that goes on by its journal.
enum class RunReason : std::uint8_t {
  Done,  ///< it doesn't
  NotBegun,
  BrokenOff,
  Failed,
  OtherOptions,
  OtherProgram,
  OtherMessages,
  OtherDrawing,
  FilesGone,
  FilesChanged,
  /// A job before it saves the drawing once more.
  DrawingSavedAnew,
};

/// What a batch that goes on by its journal has to do.
struct ResumePlan {
  /// By the place of the job.
  std::vector<RunReason> reasons;
  /// Its files are an earlier run's own, so that they may be replaced.
  std::vector<bool> replaces;
  /// Of the jobs that are done.
  std::size_t done = 0;
  std::uint64_t files = 0;
  std::uint64_t bytes = 0;
  /// Lines of the journal that can't be read, by their numbers.
  std::vector<std::size_t> unreadable;
};

/// A job is done where its last line in the journal says so, its options, program and messages are the same, its files
/// stand with the same bytes, and its drawing has the state that the job read. What jobs behind it saved in that drawing's
/// own files by the journal is no change; where such a job has to run again, so have those behind it.
///
/// A line that can't be read stands for a job that was begun, by its number; where that is gone too, any job may be it that
/// isn't in the journal.
///
/// `begun` are the keys of jobs (JobKey::options) that were running when an earlier batch was killed. Reads each drawing
/// and each file of the done jobs once. After an interruption it ends early: what it didn't look at isn't done. Throws
/// journal::NotAJournal and std::system_error.
[[nodiscard]] ResumePlan planResume(const JobFile& jobs, JobKeys& keys, const std::string& journal,
                                    const std::set<std::string>& begun);

/// "since they were broken off", for one job or several.
[[nodiscard]] std::string reasonText(RunReason reason, bool isOne);

}  // namespace lvx::cli
