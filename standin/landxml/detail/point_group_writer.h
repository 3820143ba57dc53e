#pragma once

#include <unordered_map>
#include <vector>

#include "landxml/detail/file_change.h"

namespace lvx::landxml::detail {

/// Which file each point group is written to: its own; for one that was made in the open drawing the file that holds all
/// of its points, where that is one, else the first. In the order of the drawing's groups. O(points) where any was made.
[[nodiscard]] std::vector<civil::FileNumber> filesOfPointGroups(const civil::Drawing& drawing);

/// Writes the file's point groups that were made, changed or removed, as CgPoints that refer to points by their names.
/// Throws SaveError for what the file can't hold.
void writePointGroups(FileChange& change);

}  // namespace lvx::landxml::detail
