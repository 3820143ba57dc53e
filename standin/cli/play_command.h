#pragma once

#include "cli/exit_codes.h"
#include "cli/options.h"

namespace lvx::cli {

/// Runs the module's commands by a script of what a user does; everything that the user would see goes to standard output
/// as JSON Lines. A command that ends by an exception doesn't stop the script.
[[nodiscard]] ExitCode runPlay(const CommonOptions& common, const PlayOptions& options);

}  // namespace lvx::cli
