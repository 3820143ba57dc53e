#pragma once

namespace lvx::standin_platform {

/// Whoever links this has names of files that are UTF-8 in narrow texts: `std::filesystem::path` takes them so and gives them
/// back so. The C++ library of this compiler takes each byte for a letter instead. Each byte that is no UTF-8 becomes
/// U+FFFD.
void haveUtf8Names();

}  // namespace lvx::standin_platform
