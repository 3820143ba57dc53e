#pragma once

#include <cstdint>

#include "projection/tsl.h"

namespace lvx::projection {

/// The row at the alignment of one sample line.
struct tcentreRow {
  double offset = 0.0;
  double elevation = 0.0;
};

/// One tcentreRow for each record of the list, at the same index. Plain storage that changes hands: the caller makes
/// `items` with new[], the writer frees it.
struct tcentreRows {
  tcentreRow* items = nullptr;
  std::int32_t capacity = 0;
  std::int32_t count = 0;

  /// Frees the elements and sets all three fields to 0. A capacity below 1 leaves everything as it is.
  void free() noexcept;
};

/// Writes the report as an XML document with German element names, for programs that read that format. No command
/// offers it: whoever wires it in supplies `centreRows`, for instance from the last left sample of each record.
///
/// Rows run from the alignment: `centreRows` first, then far left toward the centre without the last left sample, whose
/// place that row takes, then right outward without the first right sample, whether or not the left side has any. The
/// attribute names are the texts of messages 124 and 125, so those have to be legal as names.
///
/// Takes `centreRows` over and frees it on every way out. True when written, false where the file couldn't be opened.
/// Where `centreRows` has room for fewer elements than the list, framework::InvalidArgumentException is raised.
bool writeProjectionXml(const CString& fileName, const CString& alignmentName, const SampleLineList& list,
                        tcentreRows& centreRows);

}  // namespace lvx::projection
