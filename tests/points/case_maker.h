#pragma once

#include <string>

#include "points/point_list.h"

namespace lvx::points {

/// One golden case, read from its `case.json`:
///
///     { "about": "what it shows",
///       "stem": "report",                                  default
///       "release": "R24.3",                                default
///       "messages": {"201": "Points", ...},                absent: no message file
///       "alignment": "Axis 1",                             default
///       "points": [{"number": 17, "easting": 1000.5, "northing": 2000.25, "elevation": 312.1,
///                   "name": "A", "description": "BK", "fullDescription": "BK 1",
///                   "station": 1234.5, "offset": -2.5}] }  what is left out is 0 or empty
struct ReportCase {
  CString stem;
  CString release;
  bool hasMessages = false;
  /// Bytes of the message file in Windows-1252.
  std::string messageBytes;
  PointList rows;

  /// Throws what the JSON reader throws.
  explicit ReportCase(const std::string& jsonText);
};

}  // namespace lvx::points
