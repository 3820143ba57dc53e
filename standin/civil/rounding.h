#pragma once

#include <cmath>

#include "civil/geometry.h"

namespace lvx::civil {

/// A computed place on the decimal that it misses by the rounding of its computation alone. Surveyed coordinates are
/// decimals of a few places: the end of a sample line that is computed to lie on the corner of a hole would stand beside
/// it by the last bit, and the ground there be lost. Each coordinate goes to the nearest multiple of 1e-9 drawing units
/// where that is at most 1e-12 away, or some last bits of a large one; any other stays as it is.
[[nodiscard]] inline Vec2 withoutRounding(Vec2 place) {
  const auto settled = [](double value) {
    constexpr double kPlaces = 1e9;
    constexpr double kLargest = 4e6;  // beyond, doubles don't hold as many places
    constexpr double kNear = 1e-12;
    constexpr double kLastBits = 0x1p-51;
    if (!(std::abs(value) < kLargest)) return value;
    const double decimal = std::round(value * kPlaces) / kPlaces;
    return std::abs(decimal - value) <= kNear + kLastBits * std::abs(value) ? decimal : value;
  };
  return {settled(place.x), settled(place.y)};
}

}  // namespace lvx::civil
