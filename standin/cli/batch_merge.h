#pragma once

#include "cli/job_file.h"
#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// One summary of a job file from the journals of its shares, in place of a run: on standard error, and where the options
/// say so in a file. A job is done where one of them has it as done; a job that stands in several is told. kDone where
/// all are done.
///
/// Throws Failure: kUsage for a file that is no journal, or that of other jobs; kNotWritten for one that can't be read.
[[nodiscard]] options::ExitCode mergeJournals(const options::Options& options, const JobFile& jobs);

}  // namespace lvx::cli
