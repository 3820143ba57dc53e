#pragma once

#include <optional>
#include <string>
#include <vector>

#include "landxml/detail/context.h"

namespace lvx::landxml::detail {

/// An alignment that is in the drawing, with the handle that the file gives it, by which corridors refer to it; 0 where it
/// gives none.
struct AlignmentRecord {
  const civil::AlignmentObject* object = nullptr;
  civil::Handle givenHandle = 0;
};

/// Corridors: our own from Roadways, and one for each alignment of other programs whose sections have design parts.
/// `alignments` are all of the drawing in a file with Roadways, else those with sections at least.
void readCorridors(Context& context, const std::vector<AlignmentRecord>& alignments);

}  // namespace lvx::landxml::detail
