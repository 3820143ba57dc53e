#pragma once

#include "canvas/canvas.h"

namespace lvx::cairo {

/// Files by cairo; null where there is no memory.
[[nodiscard]] canvas::FileMaker* newFileMaker() noexcept;

}  // namespace lvx::cairo
