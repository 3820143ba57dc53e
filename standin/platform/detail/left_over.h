#pragma once

#include <filesystem>

namespace lvx::standin_platform {

/// Takes away one entry of a folder where it is a left-over by its name and no process has it; answered by each system.
/// May throw where memory is short.
void clearLeftOver(const std::filesystem::path& path);

}  // namespace lvx::standin_platform
