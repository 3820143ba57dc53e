#pragma once

#include "civil/drawing.h"

/// When two corridor sections are alike. One rule for all: a rebuild runs from one section to the next only where they
/// have one shape, and saving edits the points of a section in place only where it kept its shape.
///
/// Nothing here throws; the comparisons of sections cost linear time in their points and codes.
namespace lvx::civil {

/// Offsets and elevations no further apart than this, in drawing units, are one: what a file rounds in its last digits,
/// or an elevation that was taken from its profile and put back, is no change.
inline constexpr double kSameSectionLength = 1e-9;

/// Whether the parts agree in number, codes and count of points, and the points in their codes, all in order. Stations,
/// labels, origins, offsets and elevations don't count; two sections without parts have one shape.
[[nodiscard]] bool haveSameShape(const CorridorSection& a, const CorridorSection& b);

/// Whether offset and elevation each differ by no more than kSameSectionLength; never for a number that is none.
[[nodiscard]] bool isSamePlace(const SectionPoint& a, const SectionPoint& b);

/// Whether the sections have one shape and each point its place.
[[nodiscard]] bool haveSamePoints(const CorridorSection& a, const CorridorSection& b);

}  // namespace lvx::civil
