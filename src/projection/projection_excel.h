#pragma once

#include "projection/tsl.h"

namespace lvx::projection {

/// Writes the report into the first sheet of a new workbook, cell by cell: the header in rows 1 to 7 of column A, from
/// row 10 on for each sample line a row with name (A) and station (B), a row of offset (B) and elevation (C) for each
/// sample from far left to far right, and a row with `&` (A) before the next line.
///
/// `fileName` is the full name with ".xls"; `alignmentText` isn't used. True after saving; false where the spreadsheet program
/// can't be started, which the user was told. Raises framework::AutomationException where the program fails later, and
/// framework::InvalidArgumentException where a list of offsets is shorter than its list of points.
bool writeProjectionExcel(const CString& fileName, const CString& alignmentText, const SampleLineList& list);

}  // namespace lvx::projection
