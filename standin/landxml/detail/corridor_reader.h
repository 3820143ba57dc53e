#pragma once

#include <optional>
#include <string>
#include <vector>

#include "landxml/detail/context.h"

namespace lvx::landxml::detail {

/// An alignment that is in the drawing, with what corridors refer to it by.
struct AlignmentRecord {
  const civil::AlignmentObject* object = nullptr;
  Node node;
  std::optional<civil::Handle> givenHandle;
  std::vector<std::optional<civil::Handle>> givenProfileHandles;
  /// "alignment 'A1'"
  std::string speaker;
};

/// Corridors: our own from Roadways, and one for each alignment of other programs whose sections have design parts.
void readCorridors(Context& context, const std::vector<AlignmentRecord>& alignments);

}  // namespace lvx::landxml::detail
