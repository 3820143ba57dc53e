#pragma once

#include "cli/report_run.h"
#include "options/commands.h"
#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// Runs one of the report commands or of those that draw books. Throws as runReport() does.
[[nodiscard]] options::ExitCode runReportCommand(options::Command command, const options::Options& options,
                                                 ReportRun& run);

}  // namespace lvx::cli
