#pragma once

#include <array>

#include "civil/element.h"

/// How curvature rises along a transition curve: with t = distance / length, curvature is k0 + (k1 - k0) f(t). f runs
/// from 0 to 1, never falls, and f(1 - t) = 1 - f(t), so that every law turns by the same angle, length (k0 + k1) / 2.
///
///     clothoid     t
///     bloss        3 t^2 - 2 t^3
///     cosine       (1 - cos(pi t)) / 2
///     biquadratic  2 t^2 up to 1/2, then 1 - 2 (1 - t)^2
///     sinusoid     t - sin(2 pi t) / (2 pi)
///
/// Checked against published tables of positions, two for each law.
namespace lvx::civil::detail {

/// Terms of a law's Taylor series, enough for a rounding of f where the step stays below `largestStep`.
inline constexpr std::size_t kLawTerms = 16;

/// The integral of f from 0 to `t`, t from 0 to 1.
[[nodiscard]] double headingShare(ElementKind law, double t);
/// The coefficients c of f(t + step w) = sum c[n] w^n for w from -1 to 1. A biquadratic has one series on each side of
/// 1/2; `t` chooses the side.
[[nodiscard]] std::array<double, kLawTerms> lawSeries(ElementKind law, double t, double step);
[[nodiscard]] double largestStep(ElementKind law);
/// The largest second derivative of f.
[[nodiscard]] double largestBend(ElementKind law);

/// The heading of a transition `distance` from its start, against that of its start.
[[nodiscard]] double turnOf(const Element& element, double distance);
/// Where a transition that leaves the origin along the x axis stands after `distance`: Gauss-Legendre quadrature over
/// the exact heading, so finely that it errs by less than 1e-13 of the distance for turns up to a thousand radians;
/// beyond those (no road) the result is finite and nothing more. Before the start and behind the end the curve goes on
/// with the curvature that it has there.
[[nodiscard]] Vec2 transitionPoint(const Element& element, double distance);
/// The distance at which a transition's curvature passes through 0 inside of it; 0 where it doesn't.
[[nodiscard]] double inflectionOf(const Element& element);

}  // namespace lvx::civil::detail
