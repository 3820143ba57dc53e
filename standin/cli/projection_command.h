#pragma once

#include "cli/exit_codes.h"
#include "cli/options.h"

namespace lvx::cli {

/// The profile projection report: runs the module's own command and answers its dialog as a user would.
[[nodiscard]] ExitCode runProjection(const CommonOptions& common, const ProjectionOptions& options);

/// The stem as it goes into the dialog: the module wants a folder in it, so a bare name gets the current one. Throws
/// Failure (kUsage) for a stem without a file name.
[[nodiscard]] std::string dialogStem(const std::string& given);

}  // namespace lvx::cli
