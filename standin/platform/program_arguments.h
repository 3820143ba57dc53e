#pragma once

#include <string>
#include <vector>

namespace lvx::standin_platform {

/// What the program was started with, its own name first, as UTF-8 where the system's arguments are texts; from what
/// `main` got.
[[nodiscard]] std::vector<std::string> programArguments(int count, char** arguments);

}  // namespace lvx::standin_platform
