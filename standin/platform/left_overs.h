#pragma once

#include <filesystem>

namespace lvx::standin_platform {

/// Takes away what dead runs left in `folder` under names for what isn't finished, once in a process for each folder. What
/// can't be taken away stays. Files and folders that are begun beside a target do it by themselves; a process that begins
/// many copies of itself does it before, since they take it for done then and needn't list the folder each. O(files of the
/// folder) the first time.
void clearLeftOvers(const std::filesystem::path& folder) noexcept;

}  // namespace lvx::standin_platform
