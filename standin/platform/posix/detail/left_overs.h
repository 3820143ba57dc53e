#pragma once

#include <string>

#include "standin_platform/left_overs.h"
#include "standin_platform/posix/detail/descriptor.h"

/// Names for what isn't finished, and what dead runs left under such names: ".lvx-save-<process>-<moment>". Who makes such
/// a file or folder holds a lock on it until it is done; the system frees the lock at the end of the process, however that
/// comes. So one without a lock is a left-over, and the next run in its folder takes it away.
namespace lvx::standin_platform {

/// A name of this process that nobody else takes. `attempt` tells names of one moment apart.
[[nodiscard]] std::string unfinishedName(int attempt);

/// Puts the lock on. False where a run that clears up was faster and has taken the name away: another one is needed. A file
/// system without locks counts as locked; nothing is cleared there.
[[nodiscard]] bool lockUnfinished(const Descriptor& file);

}  // namespace lvx::standin_platform
