#pragma once

#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// Runs every report of a job file, each in a process of its own and several at a time. What they say comes in the order
/// of the job file whatever the order in which they end; a job that fails doesn't stop the others. The summary and what
/// failed go to standard error. kDone where every job ended with 0.
[[nodiscard]] options::ExitCode runBatch(const options::Options& options);

}  // namespace lvx::cli
