#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cli/job_file.h"
#include "standin_platform/process_copy.h"

/// The process of one drawing: it reads the drawing once and runs each report over it in a process of its own, which has
/// all that the drawing's process has in memory. A report that crashes takes nothing else along.
namespace lvx::cli {

/// A file as a report left it.
struct OutputFile {
  std::string path;
  std::uint64_t bytes = 0;
  /// SHA-256 in hexadecimal digits; empty where the file couldn't be read back or nobody asked.
  std::string hash;
};

/// How a job ended.
struct JobResult {
  std::size_t job = 0;  ///< by its place among the entries of the job file
  int exitCode = 0;
  double seconds = 0.0;
  /// What it said on the standard streams.
  std::string output;
  std::string errors;
  std::vector<OutputFile> written;
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
[[nodiscard]] std::string packedJob(std::size_t job);

/// The work of that process: reads the drawing of the job `first`, then runs what it is told on `line`, all at once, until
/// the line is closed and the last report has ended. An interruption is passed on to the reports. Where the system has no
/// process or file for a report while others run, it waits for one of them to end. With `hashes` results tell the
/// hash of each file.
int serveDrawing(const JobFile& jobs, std::size_t first, bool hashes, standin_platform::MessageLine& line);

}  // namespace lvx::cli
