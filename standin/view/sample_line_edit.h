#pragma once

#include <optional>
#include <vector>

#include "civil/drawing.h"

/// Single sample lines as a hand changes them: pulled wider or narrower, set between others. Lengths in drawing units.
namespace lvx::view {

/// How far a line reaches from its alignment, along the line.
struct LineWidths {
  double left = 0.0;
  double right = 0.0;
};

/// Least distance of a line's end from what it is pulled against.
inline constexpr double kLeastWidth = 0.01;

/// Empty for a line of less than two vertices and for one whose station the alignment hasn't got.
[[nodiscard]] std::optional<LineWidths> widthsOf(const civil::SampleLine& line, const civil::Alignment& alignment);

/// The line's vertices with its first or its last one pulled to `place`, or as near to it as the line's own direction
/// leads: the end moves along its last piece, away from the vertex before it (of a line of two vertices, from the
/// alignment), no nearer to that than kLeastWidth. As it is for a line of less than two vertices.
[[nodiscard]] std::vector<civil::Vec2> pulledTo(const civil::SampleLine& line, const civil::Alignment& alignment,
                                                bool isFirst, civil::Vec2 place);

/// The line's vertices with its ends pulled to these widths; a side without one stays. As it is where widthsOf is empty.
[[nodiscard]] std::vector<civil::Vec2> withWidths(const civil::SampleLine& line, const civil::Alignment& alignment,
                                                  std::optional<double> left, std::optional<double> right);

/// A new line of the group at a station, called by it as reports print it: as wide and as skew as its neighbours, in
/// between by its distance to them; `otherwise` to each side where the group has none. Empty where the alignment hasn't
/// got the station. O(lines).
[[nodiscard]] std::optional<civil::SampleLine> lineAmong(const civil::SampleLineGroup& group,
                                                         const civil::Alignment& alignment, double station,
                                                         double otherwise);

}  // namespace lvx::view
