#pragma once

#include <memory>

#include "framework/text.h"
#include "host/sheet.h"

namespace lvx::services {

using framework::CString;

/// One run of the spreadsheet program for one writer. Destroying it without finishExcel gives up the workbook.
struct ExcelLink {
  std::unique_ptr<host::Sheet> sheet;
};

/// Starts the program and reaches the first sheet of a new workbook. Where it can't, the user is told in a box and the
/// result is false.
[[nodiscard]] bool startExcel(ExcelLink& link);
void writeCell(ExcelLink& link, const CString& cellName, const CString& text);
/// `text` is what "%.3f" gave; the cell gets the number format of three decimals first.
void writeNumberCell(ExcelLink& link, const CString& cellName, const CString& text);
/// Saves under `path` and ends the program.
void finishExcel(ExcelLink& link, const CString& path);

/// "B12" for column B and row 12.
[[nodiscard]] CString cellName(wchar_t column, int row);

}  // namespace lvx::services
