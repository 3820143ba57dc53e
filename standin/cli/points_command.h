#pragma once

#include "cli/exit_codes.h"
#include "cli/options.h"

namespace lvx::cli {

/// The points report: runs the module's own command, picks the points where their numbers are given, and answers the
/// dialog as a user would.
[[nodiscard]] ExitCode runPoints(const CommonOptions& common, const PointsOptions& options);

}  // namespace lvx::cli
