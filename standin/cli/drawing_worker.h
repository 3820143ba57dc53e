#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/job_file.h"
#include "journal/journal.h"
#include "standin_platform/process_copy.h"

/// The process of one drawing: it reads the drawing once and runs each report over it in another process, which has all
/// that the drawing's process has in memory. That one runs further reports as long as each was whole and left the drawing as
/// it was read. So a report that crashes takes nothing else along, and none sees what another one changed.
namespace lvx::cli {

using journal::OutputFile;

/// How a job ended.
struct JobResult {
  std::size_t job = 0;  ///< by its place among the entries of the job file
  int exitCode = 0;
  double seconds = 0.0;
  /// What it said on the standard streams.
  std::string output;
  std::string errors;
  std::vector<OutputFile> written;
  /// Paths of reports that weren't written since something stood there.
  std::vector<std::string> kept;
  /// With hashes: SHA-256 of the drawing's files as they were read, in their order; empty for one that was changed just
  /// then. Of a job that saves in place also as it left them.
  std::vector<std::string> drawing;
  std::vector<std::string> savedDrawing;
};

/// What a drawing's process does beside its reports.
struct WorkerOptions {
  /// Results tell the hash of each file that was written, and of the drawing's.
  bool hashes = false;
  /// With hashes, told in the report's own process before a drawing that is saved in place takes its names: how the
  /// job will have ended. What it throws leaves the drawing as it was. May be empty.
  std::function<void(const Job& job, const JobResult& result)> saving;
};

/// A job as it is told to the drawing's process, which needs nothing else of the job file.
struct ToldJob {
  std::size_t job = 0;   ///< by its place among the entries of the job file
  std::size_t line = 0;  ///< of the job file, from 1
  std::string text;      ///< of that line
  bool savesInPlace = false;
  /// It replaces what stands under the names of its files, unless it is to keep them by an option.
  bool replaces = false;
  /// Nothing is run: its drawing is read for the jobs that are told next.
  bool onlyReads = false;
};

/// What a drawing's process says on its line.
struct WorkerMessage {
  enum class Kind {
    Ready,      ///< the drawing is read
    NoDrawing,  ///< it can't be: `result` has code and words, and the process ends
    Result,
  };
  Kind kind = Kind::Ready;
  JobResult result;
};

[[nodiscard]] std::string packed(const WorkerMessage& message);
[[nodiscard]] WorkerMessage unpackedMessage(std::string_view bytes);
/// What is said to it: run this job.
[[nodiscard]] std::string packed(const ToldJob& job);
[[nodiscard]] ToldJob unpackedJob(std::string_view bytes);

/// The works of the processes, by the names that programs which were begun again know them by
/// (standin_platform::begunCopy).
inline constexpr std::string_view kDrawingWork = "drawing";
inline constexpr std::string_view kReportWork = "report";

/// The work of that process: reads the drawing of the job `first`, as packed, then runs what it is told on `line`, all at
/// once, until the line is closed and the last report has ended. An interruption is passed on to the reports. Where the
/// system has no process or file for a report while others run, it waits for one of them to end. `jobs` need no
/// lines. `options` live longer than all of it.
int serveDrawing(const JobFile& jobs, const std::string& first, const WorkerOptions& options,
                 standin_platform::MessageLine& line);
/// The work of a process for reports that is no copy of its drawing's: reads the drawing too.
int serveReports(const JobFile& jobs, const std::string& first, const WorkerOptions& options,
                 standin_platform::MessageLine& line);

}  // namespace lvx::cli
