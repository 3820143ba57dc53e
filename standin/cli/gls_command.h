#pragma once

#include "cli/report_run.h"
#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// The GLS report: runs the module's own command and answers its dialog, and the question whether sections are to be added
/// to the drawing, as a user would.
[[nodiscard]] options::ExitCode runGls(const options::Options& options, ReportRun& run);

}  // namespace lvx::cli
