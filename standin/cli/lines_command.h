#pragma once

#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// Makes a group of sample lines by rules and saves it. Tells how many lines it made, the first and last station, and
/// what was written. Throws Failure, with nothing written: kUsage for rules that can't be read, kUnknownName for a name
/// that the drawing hasn't got, kNotWritten for rules that give no line or too many and for a group's name that is taken.
[[nodiscard]] options::ExitCode runLines(const options::Options& options);

}  // namespace lvx::cli
