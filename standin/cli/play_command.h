#pragma once

#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// Runs the module's commands by a script of what a user does; everything that the user would see goes to standard output
/// as JSON Lines. A command that ends by an exception doesn't stop the script.
[[nodiscard]] options::ExitCode runPlay(const options::Options& options);

}  // namespace lvx::cli
