#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "civil/drawing.h"

/// What both forms of info count and measure in a drawing.
namespace lvx::cli::detail {

/// Of no lines: the least above the greatest.
struct StationRange {
  double least = std::numeric_limits<double>::infinity();
  double greatest = -std::numeric_limits<double>::infinity();
};

[[nodiscard]] StationRange stationRange(const std::vector<civil::SampleLine>& lines);

/// Of no points: an empty box, and the least number above the greatest.
struct PointFacts {
  civil::Box box;
  std::size_t withoutElevation = 0;
  std::int32_t leastNumber = std::numeric_limits<std::int32_t>::max();
  std::int32_t greatestNumber = std::numeric_limits<std::int32_t>::min();
};

[[nodiscard]] PointFacts pointFacts(const civil::Drawing& drawing);

struct RegionFacts {
  std::size_t given = 0;
  std::size_t computed = 0;
  std::size_t pending = 0;  ///< stations of the set without a section
};

[[nodiscard]] RegionFacts regionFacts(const civil::Region& region);

}  // namespace lvx::cli::detail
