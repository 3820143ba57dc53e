#pragma once

#include <optional>
#include <string>

#include "civil/alignment.h"
#include "landxml/detail/context.h"

namespace lvx::landxml::detail {

/// The horizontal geometry of an Alignment element: its CoordGeom, else its AlignPIs. Empty geometry where it has
/// neither (reported); nothing where an element can't be evaluated (reported by name), since all stations after it
/// would be wrong. `speaker` is "alignment 'A1'".
[[nodiscard]] std::optional<civil::Alignment> readGeometry(Context& context, pugi::xml_node alignment,
                                                           const std::string& speaker, double startStation);

}  // namespace lvx::landxml::detail
