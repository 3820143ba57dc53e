#pragma once

#include <cstdint>

#include "generator/text_output.h"

namespace lvx::generator {

/// How much of everything a drawing for benchmarks holds. The road is as long as its elements make it (about 48 m
/// each); the surface is the rectangle around it, its triangles as fine as their number asks for.
struct DrawingSize {
  std::uint64_t triangles = 20'000;
  std::uint32_t sampleLines = 50;
  std::uint32_t points = 200;
  std::uint32_t elements = 12;
  std::uint32_t verticalCurves = 4;
  std::uint32_t corridors = 1;
  std::uint32_t baselines = 1;           ///< of each corridor
  std::uint32_t corridorSections = 100;  ///< of each baseline
  /// Points and triangles of the surface numbered and written without any locality.
  bool shuffled = false;
  std::uint64_t seed = 1;
};

/// Writes the drawing in memory that depends on the elements and vertical curves only, not on triangles or points. The
/// site "Site", its alignment "Road" (from station 1000) with the profile "Design", the group "Sections", the surface
/// "Ground", the point group "All points", corridors "Corridor 1", "Corridor 2", ... Throws std::invalid_argument for a
/// drawing without elements or triangles.
void writeScaledDrawing(TextOutput& out, const DrawingSize& size);

}  // namespace lvx::generator
