#pragma once

#include <cstdint>

#include "generator/text_output.h"

namespace lvx::generator {

/// What of the example a file holds: all of it, or what comes from one office as such projects are exchanged.
enum class ValleyPart : std::uint8_t {
  Whole,
  Road,    ///< alignments with their profiles, sample lines and corridor
  Ground,  ///< the surface
  Points   ///< points and their groups
};

/// Writes the drawing `examples/valley-road.xml`: the upgrade of a road along a brook, with its side road, a track, the
/// surveyed ground, points and the corridor of the design; or the file of that part in `examples/valley-road/`. Takes no
/// sizes, so that there is one such drawing only.
void writeValleyRoad(TextOutput& out, ValleyPart part = ValleyPart::Whole);

}  // namespace lvx::generator
