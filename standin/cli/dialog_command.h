#pragma once

#include "cli/failure.h"
#include "options/options.h"

namespace lvx::cli {

/// Runs one of the module's commands for a person: its dialogs, boxes and help are windows of the system, and what is to be
/// picked in the drawing is asked for by lists. Throws Failure, where the system has no such windows too.
ExitCode runDialog(const options::Options& options);

}  // namespace lvx::cli
