#pragma once

#include "points/point_list.h"

namespace lvx::points {

/// Writes the report as one page: the header table, then one table with a caption row and a row for each point, all on
/// one line of the file. Nothing is escaped: texts and messages may carry tags of their own.
///
/// The page leaves in two narrow writes, the header and the table. A percent sign anywhere in them starts a conversion;
/// a letter beyond the report's code page ends its piece, so in the table everything after it is lost.
///
/// `fileName` is the full name with ".html". True when written, false where the file couldn't be opened, without a word.
bool writePointsHtml(const CString& fileName, const PointList& list);

}  // namespace lvx::points
