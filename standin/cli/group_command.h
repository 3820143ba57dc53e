#pragma once

#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// Makes a group of points, by conditions or by their numbers, and saves it. Tells how many points it holds and what was
/// written. Throws Failure, with nothing written: kUsage for conditions that can't be read, kUnknownName for numbers that
/// the drawing hasn't got, kNotWritten where no point meets the conditions and for a group's name that is taken.
[[nodiscard]] options::ExitCode runGroup(const options::Options& options);

}  // namespace lvx::cli
