#pragma once

#include <array>
#include <span>

#include "civil/geometry.h"

/// The power series of a clothoid about one of its points: what both the single element and the alignment's index
/// evaluate. Along a clothoid the direction is a quadratic in the distance u, so that the unit tangent exp(i phi(u))
/// satisfies f' = i phi' f and its coefficients follow by a two-term recurrence, without any trigonometry. Along another
/// transition phi' is a longer series, and so is the recurrence; what comes out is a series of the same form.
namespace lvx::civil::detail {

/// Points of a short clothoid in the frame of its middle: x along the tangent there, y to the left.
class ClothoidSeries {
 public:
  /// Terms of the position; enough for 1e-16 of the half length where `isAccurate` says so.
  static constexpr std::size_t kTerms = 16;

  struct Local {
    Vec2 point;
    Vec2 tangent;
  };

  ClothoidSeries() = default;
  /// `curvature` in the middle, `rate` its change per length, `half` the half length.
  ClothoidSeries(double curvature, double rate, double half);
  /// Of any curve whose curvature at v half from the middle is the sum of `curvature`[n] v^n.
  ClothoidSeries(std::span<const double> curvature, double half);

  /// Whether the series over `half` errs by less than a rounding of the half length: the tail of its majorant
  /// exp(|curvature| half z + |rate| half^2 z^2 / 2) at z = 1.
  [[nodiscard]] static bool isAccurate(double curvature, double rate, double half);
  [[nodiscard]] static bool isAccurate(std::span<const double> curvature, double half);

  /// `u` from -1 to 1 over the length. Even and odd powers run as chains of their own, which halves the latency.
  [[nodiscard]] Local at(double u) const {
    const double v = u * u;
    Vec2 odd = terms_[kTerms - 2];
    Vec2 even = terms_[kTerms - 1];
    Vec2 oddSlope = double(kTerms - 1) * odd;
    Vec2 evenSlope = double(kTerms) * even;
    for (std::size_t k = kTerms - 2; k > 0; k -= 2) {
      odd = v * odd + terms_[k - 2];
      even = v * even + terms_[k - 1];
      oddSlope = v * oddSlope + double(k - 1) * terms_[k - 2];
      evenSlope = v * evenSlope + double(k) * terms_[k - 1];
    }
    return {u * odd + v * even, inverseHalf_ * (oddSlope + u * evenSlope)};
  }
  /// The same at a distance from the middle.
  [[nodiscard]] Local atDistance(double distance) const { return at(distance * inverseHalf_); }

 private:
  std::array<Vec2, kTerms> terms_{};  // of u, u^2, ...
  double inverseHalf_ = 0.0;
};

/// Where a clothoid that leaves the origin along the x axis stands after `distance` (of any sign): with curvature
/// `curvature` at the origin and `rate` its change per length. Error below 1e-15 of the distance for turns up to
/// thousands of radians; beyond those (no road) the result is finite and nothing more.
[[nodiscard]] Vec2 clothoidPoint(double curvature, double rate, double distance);

}  // namespace lvx::civil::detail
