#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "journal/journal.h"

/// How a batch ended, for programs.
///
///     {
///       "jobs": "jobs.jsonl",
///       "program": "1.0.0",
///       "count": 300,
///       "done": 298,
///       "doneBefore": 120,
///       "failed": 1,
///       "broken": 1,
///       "notBegun": 0,
///       "exit": 130,
///       "interrupted": true,
///       "seconds": 81.204,
///       "files": 894,
///       "bytes": 3120044,
///       "failedJobs": [{"line": 7, "command": "points", "drawing": "road.xml", "out": "out/edge", "exit": 4,
///                       "seconds": 0.02, "files": [], "diagnostics": ["lvxhost: no alignment 'A1'"]}],
///       "brokenJobs": []
///     }
namespace lvx::journal {

struct Summary {
  /// The job file as it was named.
  std::string jobs;
  /// Version of the program.
  std::string program;
  /// The share of a job file that this is of, "2/5"; no member where it is the whole one.
  std::optional<std::string> part;
  /// Jobs: the sum of done, failed, broken and notBegun.
  std::size_t count = 0;
  std::size_t done = 0;
  /// Those of `done` that an earlier run wrote, so that they weren't run again.
  std::size_t doneBefore = 0;
  std::size_t notBegun = 0;
  /// What the batch ended with.
  int exitCode = 0;
  bool interrupted = false;
  double seconds = 0.0;
  /// Files of the jobs that are done, and their bytes.
  std::uint64_t files = 0;
  std::uint64_t bytes = 0;
  /// By ascending line. Keys aren't kept.
  std::vector<JobRecord> failed;
  std::vector<JobRecord> broken;  ///< off by an interruption; `files` are those of theirs that stand
};

/// As the file has it.
[[nodiscard]] std::string textOf(const Summary& summary);
/// None where the text is no summary.
[[nodiscard]] std::optional<Summary> summaryOf(std::string_view text);

/// The file appears whole or not at all. Throws standin_platform::AtomicFileError.
void writeSummary(const std::filesystem::path& path, const Summary& summary);

}  // namespace lvx::journal
