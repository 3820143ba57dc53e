#pragma once

#include "cli/exit_codes.h"
#include "cli/options.h"

namespace lvx::cli {

/// The GLS report: runs the module's own command and answers its dialog, and the question whether sections are to be added
/// to the drawing, as a user would.
[[nodiscard]] ExitCode runGls(const CommonOptions& common, const GlsOptions& options);

}  // namespace lvx::cli
