#pragma once

#include <cmath>

#include "civil/geometry.h"

/// On which side of a line a point lies, decided exactly. Coordinates are taken as the doubles they are; exact for
/// magnitudes up to 1e100 and, where not 0, down to 1e-100.
namespace lvx::civil::detail {

/// Twice the signed area of a triangle in plain doubles, with what is needed to know whether its sign can be trusted.
struct RoughSide {
  double value = 0.0;
  /// Sum of the absolute products behind `value`: the error is at most kError of it.
  double magnitude = 0.0;
  /// (3 + 16 u) u with u = 2^-53, rounded up: two rounded differences and a product on each side, and one difference.
  static constexpr double kError = 3.3306690738754730e-16;

  [[nodiscard]] bool isLeft() const { return value > kError * magnitude; }
  [[nodiscard]] bool isRight() const { return -value > kError * magnitude; }
};

/// For the line from `a` in the direction `d`, the rounded difference of its second point and `a`.
[[nodiscard]] inline RoughSide roughSide(Vec2 a, Vec2 d, Vec2 p) {
  const double forward = d.x * (p.y - a.y);
  const double backward = d.y * (p.x - a.x);
  return {forward - backward, std::abs(forward) + std::abs(backward)};
}

/// Twice the signed area of a, b, p, positive where `p` lies left of the line from `a` to `b`: from exact arithmetic,
/// with the right sign, 0 only for points on one line, and a relative error below 1e-15.
[[nodiscard]] double exactSide(Vec2 a, Vec2 b, Vec2 p);

/// The same with a relative error below 2e-12, fast for all but nearly collinear points.
[[nodiscard]] inline double accurateSide(Vec2 a, Vec2 b, Vec2 p) {
  const RoughSide rough = roughSide(a, b - a, p);
  return std::abs(rough.value) > 0x1p-12 * rough.magnitude ? rough.value : exactSide(a, b, p);
}

/// The right sign of the area in a number that may be inaccurate otherwise.
[[nodiscard]] inline double signedSide(Vec2 a, Vec2 b, Vec2 p) {
  const RoughSide rough = roughSide(a, b - a, p);
  return std::abs(rough.value) > RoughSide::kError * rough.magnitude ? rough.value : exactSide(a, b, p);
}

}  // namespace lvx::civil::detail
