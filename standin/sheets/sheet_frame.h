#pragma once

#include <cstddef>
#include <string>

#include "canvas/canvas.h"
#include "sheets/settings.h"
#include "sheets/words.h"

namespace lvx::sheets {

/// A rectangle of a sheet, millimetres.
struct Area {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
  [[nodiscard]] double width() const { return right - left; }
  [[nodiscard]] double height() const { return bottom - top; }
};

/// What stands in the title block of a sheet.
struct TitleTexts {
  std::string drawing;
  std::string alignment;
  std::string kind;      ///< "Cross sections" and of what
  std::string stations;  ///< those of this sheet
  std::string scale;
  bool hasTwoScales = false;
  std::string date;
  std::size_t sheet = 1;
  std::size_t sheets = 1;
};

/// What is left for drawing within frame and title block.
[[nodiscard]] Area drawingArea(canvas::Size paper);

/// Frame and title block of a sheet. Texts that are too long for their field end with an ellipsis.
void drawFrame(canvas::Canvas& canvas, canvas::TextMeasure& measure, canvas::Size paper, const TitleTexts& texts,
               const Words& words);

/// The text or as much of its begin as fits with an ellipsis behind it; empty where not even that does.
[[nodiscard]] std::string fitted(canvas::TextMeasure& measure, const std::string& text, const canvas::TextStyle& style,
                                 double width);

}  // namespace lvx::sheets
