#pragma once

#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// Tells cut and fill between two surfaces of a drawing (civil/surface_difference.h). Throws Failure (kUnknownName) for a
/// surface that isn't there, and runtime::Interrupted where the user stopped it.
[[nodiscard]] options::ExitCode runVolumes(const options::Options& options);

}  // namespace lvx::cli
