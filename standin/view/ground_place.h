#pragma once

#include <optional>

#include "view/plan_scene.h"

namespace lvx::view {

/// The ground at a place.
struct GroundPlace {
  const civil::SurfaceObject* surface = nullptr;
  double elevation = 0.0;
  /// Of the triangle there, as rise over run, and its azimuth downhill in radians, clockwise from north; the azimuth of
  /// level ground is 0.
  double slope = 0.0;
  double downhill = 0.0;
};

/// The ground of the surface that is drawn uppermost: of those that have ground there and aren't hidden the last in the
/// drawing. Where its triangles lie one above another the highest counts; on an edge any of its triangles. Empty off all
/// surfaces. O(surfaces + log triangles), a few microseconds: one run of triangles is looked through.
[[nodiscard]] std::optional<GroundPlace> groundAt(const PlanScene& scene, civil::Vec2 place);

}  // namespace lvx::view
