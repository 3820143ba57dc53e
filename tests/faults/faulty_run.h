#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fault_plan.h"

namespace lvx::faults {

/// A run of a program in which something goes wrong.
struct FaultyRun {
  std::filesystem::path program;
  std::vector<std::string> arguments;
  std::filesystem::path folder;           ///< the current one
  std::filesystem::path temporaryFolder;  ///< TMPDIR
  /// Without any of them the run is as any other.
  Fault fault = Fault::None;
  std::uint64_t at = 0;
  std::uint64_t lasting = 1;
  int error = 0;
  std::uint64_t largestFile = 0;  ///< bytes that a file may have by the limit of the process; 0: no limit
  std::uint64_t memory = 0;       ///< bytes of addresses that the process may use; 0: no limit
  /// False: the program runs without the shim, for limits that the system itself sets.
  bool isWatched = true;
};

struct FaultyResult {
  int exitCode = -1;    ///< -1 where a signal ended it
  int signal = 0;       ///< that one
  bool isHung = false;  ///< it didn't end and was ended
  std::string output;
  std::string errors;
  // Of a watched run:
  std::uint64_t calls = 0;
  std::uint64_t allocations = 0;
  std::uint64_t bytes = 0;   ///< written to files
  std::vector<Call> record;  ///< of the calls, the first of Plan::kMostCalls
  bool isDone = false;       ///< the fault came to pass
  Call done;                 ///< at this call
  std::string path;          ///< of this file, for calls that name one
};

/// Runs to the end with nothing on the standard input. Any thread may call it; `record` is filled for Fault::None alone.
/// Throws std::runtime_error where the run can't be started or the shim isn't in force.
[[nodiscard]] FaultyResult runWithFault(const FaultyRun& run);

/// "write", "openat"; "call 12" for those without a name here.
[[nodiscard]] std::string nameOfCall(int number);

/// The files of a folder and those below it, by their paths in it. A folder stands with a slash behind it and no content.
[[nodiscard]] std::map<std::string, std::string> contentOf(const std::filesystem::path& folder);

}  // namespace lvx::faults
