#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "points/tpoint.h"

namespace lvx::points {

/// One column of the points report, the same in its three forms.
struct PointColumn {
  /// Number of the message that is its caption.
  std::uint32_t caption = 0;
  /// Characters of the column in the text form, and how many more than its caption it has where that is a long one.
  std::size_t leastWidth = 0;
  std::size_t blanksBeforeLongCaption = 0;
  /// True for lengths and coordinates, which are numbers in a workbook.
  bool isNumberCell = false;
  CString (*text)(const tpoint& row) = nullptr;
};

/// In the order of the report.
extern const std::array<PointColumn, 10> kPointColumns;

/// Message that is the title of report and dialog.
inline constexpr std::uint32_t kPointsTitle = 201;

}  // namespace lvx::points
