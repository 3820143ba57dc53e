#pragma once

#include <string>

#include "standin_platform/windows/detail/handle.h"

namespace lvx::standin_platform {

/// Name of the event by which a process of ours is asked to stop, where it and who asks may have no console in common.
[[nodiscard]] std::wstring wishNameOf(DWORD process);

}  // namespace lvx::standin_platform
