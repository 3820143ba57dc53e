#pragma once

#include "civil/geometry.h"

namespace lvx::civil::detail {

/// Of a vector, what lies along a unit tangent and what to the left of it; and back.
[[nodiscard]] constexpr Vec2 toLocal(Vec2 a, Vec2 tangent) { return {dot(tangent, a), cross(tangent, a)}; }
[[nodiscard]] constexpr Vec2 fromLocal(Vec2 a, Vec2 tangent) {
  return {tangent.x * a.x - tangent.y * a.y, tangent.y * a.x + tangent.x * a.y};
}

}  // namespace lvx::civil::detail
