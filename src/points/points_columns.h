#pragma once

#include <array>
#include <cstddef>

#include "points/tpoint.h"
#include "services/messages.h"

namespace lvx::points {

/// One column of the points report, the same in its three forms.
struct PointColumn {
  services::Message caption{};
  /// Characters of the column in the text form, and how many more than its caption it has where that is a long one.
  std::size_t leastWidth = 0;
  std::size_t blanksBeforeLongCaption = 0;
  /// True for lengths and coordinates, which are numbers in a workbook.
  bool isNumberCell = false;
  CString (*text)(const tpoint& row) = nullptr;
};

/// In the order of the report.
extern const std::array<PointColumn, 10> kPointColumns;

}  // namespace lvx::points
