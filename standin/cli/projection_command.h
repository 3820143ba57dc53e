#pragma once

#include "cli/exit_codes.h"
#include "cli/options.h"

namespace lvx::cli {

/// The profile projection report: runs the module's own command and answers its dialog as a user would.
[[nodiscard]] ExitCode runProjection(const CommonOptions& common, const ProjectionOptions& options);

}  // namespace lvx::cli
