#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "canvas/canvas.h"
#include "sheets/settings.h"
#include "sheets/sheet_frame.h"
#include "sheets/value_band.h"
#include "sheets/words.h"
#include "view/section_model.h"

namespace lvx::sheets {

/// So many surfaces have a band of values; the others are drawn alone.
inline constexpr std::size_t kMostGroundBands = 3;

/// What a cross section takes, before a scale is chosen. Drawing units where nothing else is said.
struct SectionExtent {
  double left = 0.0;   ///< least offset, the axis included
  double right = 0.0;  ///< greatest
  double low = 0.0;
  double high = 0.0;
  double bandHeight = 0.0;  ///< millimetres
  bool isEmpty = true;      ///< nothing to draw
};

/// How sections lie in their cells: the same for all of a book, so that axes stand above each other.
struct SectionCell {
  double left = 0.0;  ///< how far the widest section reaches, units left and right of the axis
  double right = 0.0;
  double perOffset = 1.0;     ///< millimetres of paper for a unit across
  double perElevation = 1.0;  ///< and up

  [[nodiscard]] double width() const;
  [[nodiscard]] double height(const SectionExtent& extent) const;
};

/// Design points of a section as its surface: what lies below another part of the design is left out. Ascending offsets,
/// of equal ones the highest.
[[nodiscard]] std::vector<civil::Vec2> designTop(const view::SectionModel& section);

[[nodiscard]] SectionExtent extentOf(const view::SectionModel& section, canvas::TextMeasure& measure);

/// Draws a section into the cell that begins at `corner`.
void drawSection(canvas::Canvas& canvas, canvas::TextMeasure& measure, canvas::Place corner, const SectionCell& cell,
                 const view::SectionModel& section, bool hasGrid, const Words& words);

}  // namespace lvx::sheets
