#pragma once

#include <QString>
#include <optional>

#include "standin_platform/file_stamp.h"

namespace lvx::desktop {

using standin_platform::FileStamp;

/// Empty where there is no such file.
[[nodiscard]] std::optional<FileStamp> stampOf(const QString& path);

}  // namespace lvx::desktop
