#pragma once

#include <cstdint>
#include <vector>

#include "host/dialog_template.h"

namespace lvx::native::detail {

/// A dialog's template as the system takes it from memory: in words of 16 bits, aligned by whoever holds the vector.
/// Controls stand in their order, so the n-th child window of the dialog is the n-th control.
[[nodiscard]] std::vector<std::uint16_t> dialogData(const host::DialogTemplate& made);

}  // namespace lvx::native::detail
