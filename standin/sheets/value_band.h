#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "canvas/canvas.h"
#include "sheets/sheet_frame.h"

namespace lvx::sheets {

/// The least distance of two upright texts in a band, millimetres from middle to middle.
inline constexpr double kTextSpacing = 2.9;
/// Width of the headings at the left of bands.
inline constexpr double kHeadingWidth = 38.0;

/// A place along a band where values may stand.
struct BandPlace {
  double x = 0.0;  ///< millimetres from the drawing's left edge
  /// Where two places are too close the one that weighs more stays; of equals the one on the left.
  double weight = 0.0;
};

/// Indices of places at least `spacing` apart, ascending by x: each place that is left out is closer than that to one that
/// weighs no less. O(n log n).
[[nodiscard]] std::vector<std::size_t> thinned(std::span<const BandPlace> places, double spacing = kTextSpacing);

/// How much each point of a line matters for its shape: the height by which the line would miss it, were it and all that
/// matter less left out. The ends have the largest of all. O(n log n) as lines are, O(n^2) at worst.
[[nodiscard]] std::vector<double> shapeWeights(std::span<const civil::Vec2> line);

struct BandValue {
  double x = 0.0;
  std::string text;
};

/// A line of values under a drawing.
struct BandRow {
  std::string heading;
  std::vector<BandValue> values;
};

/// Rows that belong together, under one title; the pen is that of the line that they tell of.
struct Band {
  std::string title;
  std::vector<canvas::Pen> pens;  ///< one or none
  std::vector<BandRow> rows;
};

/// Of upright texts of bands.
[[nodiscard]] canvas::TextStyle bandStyle();

/// Of a row whose widest text is `width` wide.
[[nodiscard]] double rowHeight(double width);

/// Draws a band from `area`'s top downwards, heading in the first kHeadingWidth; `heights` are those of its rows. Values
/// stand at their x, counted from behind the heading.
void drawBand(canvas::Canvas& canvas, canvas::TextMeasure& measure, const Area& area, const Band& band,
              std::span<const double> heights);

}  // namespace lvx::sheets
