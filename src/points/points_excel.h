#pragma once

#include "points/point_list.h"

namespace lvx::points {

/// Writes the report into the first sheet of a new workbook, cell by cell: the header in rows 1 to 7 of column A, the
/// captions in row 10, a row for each point from row 11 on, columns A to J. Coordinates and offset are number cells;
/// number and station are texts. Cell texts go in as they are: a percent sign is one, and a name that begins with `=` is
/// for the spreadsheet program to read.
///
/// `fileName` is the full name with ".xls". True after saving; false where the spreadsheet program can't be started,
/// which the user was told. Raises framework::AutomationException where the program fails later.
bool writePointsExcel(const CString& fileName, const PointList& list);

}  // namespace lvx::points
