#pragma once

#include <functional>

#include "civil/tin_surface.h"
#include "view/plan_shapes.h"

namespace lvx::view {

/// The lines around the ground and around its holes, the ground on their left: edges of one triangle, or of an odd
/// number that overlap. O(triangles); memory for the border and for the edges that are open while triangles are taken
/// in the surface's own order, which is a few thousand. `progress` is told the part that is done; false throws
/// Cancelled.
[[nodiscard]] LineSet surfaceBorder(const civil::TinSurface& surface, const std::function<bool(double)>& progress = {});

}  // namespace lvx::view
