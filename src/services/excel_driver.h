#pragma once

#include <array>

#include "framework/text.h"
#include "host/automation.h"

/// The workbook form of the reports: a copy of the spreadsheet program, worked cell by cell through its automation
/// objects. The program stays invisible; nothing of its settings, of other sheets or of the sheet's looks is touched.
///
///     ExcelLink link;
///     if (!startExcel(link)) return false;
///     writeCell(link, cellName(L'A', 1), L"Road");
///     writeNumberCell(link, cellName(L'B', 1), L"12.500");
///     finishExcel(link, L"C:\\out\\road.xls");
///
/// An automation call that fails raises framework::AutomationException, which nothing here catches. All references are
/// released on its way; the program isn't told to quit, so that an invisible copy of it may stay behind.
namespace lvx::services {

using framework::CString;

/// One run of the spreadsheet program for one writer, and its references. They are released in the reverse of their
/// order here, whatever way the writer is left.
struct ExcelLink {
  host::Ref<host::AutomationObject> app;
  host::Ref<host::AutomationObject> books;
  host::Ref<host::AutomationObject> book;
  host::Ref<host::AutomationObject> sheets;
  host::Ref<host::AutomationObject> sheet;
  host::Ref<host::AutomationObject> range;  ///< the cell last addressed

  /// Marks an argument as left out.
  const host::AutomationValue covOptional = host::AutomationValue::missing();

  /// Arguments of the call under way, empty between calls. They live here so that their storage serves every cell.
  struct Arguments {
    host::AutomationValue index;
    std::array<host::AutomationValue, 2> cells;  ///< first and last of a range
    host::AutomationValue numberFormat;
    host::AutomationValue value;
  } arguments;

  ExcelLink() = default;
  ExcelLink(const ExcelLink&) = delete;
  ExcelLink& operator=(const ExcelLink&) = delete;
  ~ExcelLink() = default;
};

/// Starts the program and reaches the first sheet of a new workbook. Where it can't be started, the user is told in a
/// box and the result is false.
[[nodiscard]] bool startExcel(ExcelLink& link);
/// Writes a text into one cell.
void writeCell(ExcelLink& link, const CString& cellName, const CString& text);
/// `text` is what "%.3f" gave; the cell gets the number format of three decimals first.
void writeNumberCell(ExcelLink& link, const CString& cellName, const CString& text);
/// Saves under `path`, in the program's own format whatever the name's ending, ends the program and gives up `app`.
void finishExcel(ExcelLink& link, const CString& path);

/// "B12" for column B and row 12.
[[nodiscard]] CString cellName(wchar_t column, int row);

}  // namespace lvx::services
