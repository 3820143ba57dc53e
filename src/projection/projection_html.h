#pragma once

#include "projection/tsl.h"

namespace lvx::projection {

/// Writes the report as one page: the header table, then for each sample line its name, its station and a table of
/// offsets and elevations from far left to far right. Nothing is escaped: names and messages may carry tags of their
/// own.
///
/// The page is one text and leaves in one services::writeNarrow, so a percent sign anywhere in it starts a conversion
/// and a letter beyond the report's code page ends the page there.
///
/// `fileName` is the full name with ".html"; `alignmentText` isn't used. True when written, false where the file
/// couldn't be opened, without a word. Raises framework::InvalidArgumentException where a list of offsets is shorter than its list
/// of points.
bool writeProjectionHtml(const CString& fileName, const CString& alignmentText, const SampleLineList& list);

}  // namespace lvx::projection
