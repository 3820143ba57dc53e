#pragma once

#include <cstdint>
#include <string>

namespace lvx::text {

/// A handle as drawings, dialogs and scripts write it: hexadecimal in capital letters without leading zeros, "1F4";
/// empty for 0, which is no handle. The host's own handles write themselves in the same way.
[[nodiscard]] std::string handleText(std::uint64_t handle);

}  // namespace lvx::text
