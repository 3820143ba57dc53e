#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "generator/text_output.h"

namespace lvx::generator {

/// Drawings that hold next to nothing but one kind of thing, laid out as programs of the trade write it: what memory each
/// kind takes is measured by them.
struct BulkKind {
  std::string_view name;
  std::string_view holds;
};

/// "surface", "sections", "design-sections", "points", "point-groups", "elements", "alignments", "ground-profiles",
/// "design-profiles", "polylines", "long-profile", "long-polyline".
[[nodiscard]] const std::vector<BulkKind>& bulkKinds();

/// Writes a drawing of that kind of about so many bytes; of 0 bytes: the frame alone. Throws std::invalid_argument for a
/// kind that there isn't.
void writeBulkDrawing(TextOutput& out, std::string_view kind, std::uint64_t bytes);

}  // namespace lvx::generator
