#pragma once

#include "landxml/detail/file_change.h"

namespace lvx::landxml::detail {

/// Writes the changes of what hangs on a file's alignments: sample line groups and profiles that were made, changed or
/// removed. Throws SaveError for what the file can't hold.
void writeAlignments(FileChange& change);

}  // namespace lvx::landxml::detail
