#pragma once

#include <cstdint>

#include "framework/arrays.h"
#include "framework/text.h"

namespace lvx::points {

using framework::CString;

/// One row of the points report: a point of the drawing, and where it lies against the report's alignment.
/// Coordinates, elevation, station and offset are in drawing units, at full precision.
struct tpoint {
  std::int32_t number = 0;
  double easting = 0.0;
  double northing = 0.0;
  double elevation = 0.0;
  CString name;
  CString description;
  CString fullDescription;
  /// The same in every row of a report.
  CString alignmentName;
  double station = 0.0;
  /// Negative on the left.
  double offset = 0.0;
  /// Empty and in no report, but part of the contents that sorting moves.
  CString spareText;
};

/// Numbers of the points that the user picked by hand, in the order in which the host delivered them.
using PickedNumbers = framework::CArray<std::int32_t>;

}  // namespace lvx::points
