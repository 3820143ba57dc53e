#pragma once

#include <optional>

#include "standin_platform/file_stamp.h"
#include "standin_platform/windows/detail/handle.h"

namespace lvx::standin_platform {

/// Of an open file or folder; empty where the system can't tell.
[[nodiscard]] std::optional<FileStamp> stampOf(const Handle& file);

}  // namespace lvx::standin_platform
