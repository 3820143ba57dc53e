#pragma once

#include "projection/tsl.h"

namespace lvx::projection {

/// Writes the report as fixed text: the header, then for each sample line a heading and a row of offset and elevation
/// for each sample from far left to far right, blocks parted by a line with `&`. Every line ends in CR LF.
///
/// Each piece of text passes through services::writeNarrow, so a percent sign in a sample line's name starts a
/// conversion and a letter beyond the report's code page ends its heading, line end included.
///
/// `fileName` is the full name with ".txt"; `alignmentText` isn't used. True when written, false where the file couldn't
/// be opened, without a word.
/// Raises framework::InvalidArgumentException where a list of offsets is shorter than its list of points.
bool writeProjectionAscii(const CString& fileName, const CString& alignmentText, const SampleLineList& list);

}  // namespace lvx::projection
