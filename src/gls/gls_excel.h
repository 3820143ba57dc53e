#pragma once

#include "gls/gls_records.h"

namespace lvx::gls {

/// Writes the report into the first sheet of a new workbook, cell by cell: the header in rows 1 to 7 of column A, the
/// heads in rows 10 and 11, and from row 12 on one sheet row for each row of the report in columns A to T. A cell that
/// has nothing to show isn't written, but for the notes and the names, which are written empty. All numbers have three
/// decimals here.
///
/// Column P repeats the elevation of the left edge: sheets in the field are laid out for that. The right edge's stands
/// in the other two forms.
///
/// `fileName` is the full name with ".xls"; `alignmentText` isn't used. True after saving; false where the spreadsheet
/// program can't be started, which the user was told. Raises framework::AutomationException where it fails later.
bool writeGlsExcel(const CString& fileName, const CString& alignmentText, const tglsReport& report);

}  // namespace lvx::gls
