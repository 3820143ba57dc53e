#pragma once

#include <optional>
#include <string>

#include "civil/alignment.h"
#include "landxml/detail/context.h"

namespace lvx::landxml::detail {

/// The horizontal geometry of an Alignment element: its CoordGeom, else its AlignPIs. Empty geometry where it has
/// neither (reported); nothing where an element can't be evaluated (reported by name), since all stations after it
/// would be wrong. Before a transition of an unknown law the alignment ends (reported by name, with the station): what
/// stands before it is right. Transitions other than clothoids are told in a note. `speaker` is "alignment 'A1'".
[[nodiscard]] std::optional<civil::Alignment> readGeometry(Context& context, Node alignment, const std::string& speaker,
                                                           double startStation);

}  // namespace lvx::landxml::detail
