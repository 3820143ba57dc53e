#pragma once

#include "cli/report_run.h"
#include "options/exit_codes.h"
#include "options/options.h"

/// The commands that draw sheets: no module takes part, and a drawing is only read.
namespace lvx::cli {

/// Cross sections over a sample line group or made sample lines. Throws Failure, and runtime::Interrupted where the user
/// stopped it.
[[nodiscard]] options::ExitCode runSections(const options::Options& options, ReportRun& run);

/// The long section of an alignment. Throws as runSections() does.
[[nodiscard]] options::ExitCode runProfile(const options::Options& options, ReportRun& run);

/// Throws Failure (kUsage) for a name that doesn't tell what kind of file the book is to be.
void requireBookName(const std::string& path);

}  // namespace lvx::cli
