#pragma once

#include <string>

#include "standin_platform/left_overs.h"

/// Names for what isn't finished, and what dead runs left under such names: ".lvx-save-<process>-<moment>". Who makes such
/// a file or folder keeps it open until it is done; the system closes it at the end of the process, however that comes. So
/// one that nobody has open is a left-over, and the next run in its folder takes it away.
namespace lvx::standin_platform {

/// A name of this process that nobody else takes. `attempt` tells names of one moment apart.
[[nodiscard]] std::string unfinishedName(int attempt);

}  // namespace lvx::standin_platform
