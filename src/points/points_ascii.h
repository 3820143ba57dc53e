#pragma once

#include "points/point_list.h"

namespace lvx::points {

/// Writes the report as fixed text: the header, a line of captions and a line for each row, all columns aligned to the
/// right and parted by nothing but their padding. A text that fills its column or is longer isn't cut: it touches the
/// one before it and pushes the rest of its own line to the right. A caption of more than 12 characters widens its
/// column. Every line ends in CR LF.
///
/// Each line passes through services::writeNarrow on its own, so a percent sign in a point's texts starts a conversion
/// and a letter beyond the report's code page ends its line, line end included.
///
/// `fileName` is the full name with ".txt". True when written, false where the file couldn't be opened, without a word.
bool writePointsAscii(const CString& fileName, const PointList& list);

}  // namespace lvx::points
