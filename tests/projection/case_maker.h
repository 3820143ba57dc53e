#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "framework/arrays.h"
#include "projection/tsl.h"

namespace lvx::projection {

/// One golden case, read from its `case.json`:
///
///     { "about": "what it shows",
///       "stem": "report",                                  default
///       "release": "R24.3",                                default
///       "messages": {"101": "Profiles", ...},              absent: no message file
///       "alignment": "Axis 1",                             default
///       "lines": [{"name": "SL1", "station": 120,
///                  "left":  [[-5, 100], [0, 100.5]],       offset and elevation, far left first
///                  "right": [[0, 100.5], [5, 100]],        centre first
///                  "centre": [0, 100.5]}] }                the row at the alignment, for the XML form
struct ReportCase {
  CString stem;
  CString release;
  CString alignment;
  bool hasMessages = false;
  /// Bytes of the message file in Windows-1252.
  std::string messageBytes;
  framework::OwnedList<tsl> lines;
  struct CentreRow {
    double offset = 0.0;
    double elevation = 0.0;
  };
  std::vector<CentreRow> centres;

  /// Throws what the JSON reader throws.
  explicit ReportCase(const std::string& jsonText);
};

/// A record with these samples; x and y of the samples are 0, since no writer shows them.
struct Sample {
  double offset = 0.0;
  double elevation = 0.0;
};
tsl* makeRecord(const CString& name, double station, const std::vector<Sample>& left, const std::vector<Sample>& right);

}  // namespace lvx::projection
