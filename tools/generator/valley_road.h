#pragma once

#include "generator/text_output.h"

namespace lvx::generator {

/// Writes the drawing `examples/valley-road.xml`: the upgrade of a road along a brook, with its side road, a track, the
/// surveyed ground, points and the corridor of the design. Takes no options, so that there is one such drawing only.
void writeValleyRoad(TextOutput& out);

}  // namespace lvx::generator
