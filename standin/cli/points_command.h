#pragma once

#include "cli/report_run.h"
#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// The points report: runs the module's own command, picks the points where their numbers are given, and answers the
/// dialog as a user would.
[[nodiscard]] options::ExitCode runPoints(const options::Options& options, ReportRun& run);

}  // namespace lvx::cli
