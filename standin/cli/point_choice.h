#pragma once

#include <string>
#include <vector>

#include "civil/drawing.h"
#include "civil/point_filter.h"
#include "cli/point_numbers.h"
#include "options/options.h"

/// Which points the options mean, other than those of a group: by their numbers, by conditions, or all.
namespace lvx::cli {

struct WantedPoints {
  /// Empty where `filter` says which.
  std::vector<NumberRange> numbers;
  civil::PointFilter filter;
  /// Points by a filter in words: "all points", "description=TREE*, number=1-50".
  std::string words;
};

/// Throws Failure (kUsage) for numbers and conditions that can't be read.
[[nodiscard]] WantedPoints parsePoints(const options::PointChoice& choice);

/// The points of the drawing. By numbers they come in the order in which those are given, each once; by a filter in the
/// drawing's order. Points that their number doesn't find are told unless `quiet`. Throws Failure: kUnknownName that
/// lists numbers that the drawing doesn't hold, kNotWritten where a filter lets no point through.
[[nodiscard]] civil::FilteredPoints findPoints(const civil::Drawing& drawing, const civil::DrawingIndex& index,
                                               const WantedPoints& wanted, bool quiet);

}  // namespace lvx::cli
