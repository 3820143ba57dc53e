#pragma once

#include "cli/report_run.h"
#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// The profile projection report: runs the module's own command and answers its dialog as a user would.
[[nodiscard]] options::ExitCode runProjection(const options::Options& options, ReportRun& run);

}  // namespace lvx::cli
