#pragma once

#include <string>
#include <string_view>

#include "framework/text.h"

namespace lvx::platform {

using framework::CString;

/// Texts of the module as UTF-8 and back. A byte sequence that isn't UTF-8 is kept: each such byte becomes the lone surrogate
/// U+DC80 to U+DCFF and comes back as that byte, so that every file name survives the way there and back. Where a wide
/// character has 16 bits, a character above U+FFFF is two of them.
[[nodiscard]] std::string toUtf8(const CString& text);
[[nodiscard]] CString fromUtf8(std::string_view bytes);

}  // namespace lvx::platform
