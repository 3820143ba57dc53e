#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "civil/drawing.h"

namespace lvx::cli {

/// One number, or all from `first` to `last`.
struct NumberRange {
  std::int32_t first = 0;
  std::int32_t last = 0;
  bool operator==(const NumberRange&) const = default;
};

/// Reads "1,5,7-9": numbers and ascending ranges from 0 to 2147483647, joined by commas, without blanks. Throws Failure
/// (kUsage) that shows the part that isn't one.
[[nodiscard]] std::vector<NumberRange> parsePointNumbers(std::string_view text);

/// Handles of the points with these numbers, in the order in which they are given, each once. Throws Failure
/// (kUnknownName) that lists the numbers that the drawing doesn't hold: of many the first ones.
[[nodiscard]] std::vector<civil::Handle> handlesOfPoints(const civil::DrawingIndex& index,
                                                         const std::vector<NumberRange>& ranges);

}  // namespace lvx::cli
