#pragma once

#include <cstdint>

namespace lvx::desktop {

/// How the ground is filled: not at all, shaded by slope, or coloured by height (and shaded).
enum class SurfaceLook : std::uint8_t { None, Relief, Heights };

/// What a plan shows, and how.
struct PlanLook {
  SurfaceLook surface = SurfaceLook::Relief;
  bool triangles = true;  ///< where they are large enough to be told apart
  bool border = true;     ///< of surfaces
  /// Of the selected surface; where none is selected, of the last one that shows.
  bool contours = false;
  double contourInterval = 0.0;  ///< drawing units; 0: by the scale
  bool alignments = true;
  bool stations = true;  ///< ticks along alignments and their labels
  bool sampleLines = true;
  bool points = true;
  bool corridors = true;
  bool dark = false;

  bool operator==(const PlanLook&) const = default;
};

}  // namespace lvx::desktop
