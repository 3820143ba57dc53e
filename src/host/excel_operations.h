#pragma once

#include "host/automation.h"

/// What the module uses of the spreadsheet program's object model, and all that a server in its place has to know.
namespace lvx::host {

/// Under this name the application object is created.
inline constexpr wchar_t kExcelProgramId[] = L"Excel.Application";

/// The nine operations by their numbers in the program's object model. The first word is the object's.
namespace excel {
inline constexpr DispatchId kApplicationWorkbooks = 572;     ///< get: the collection of workbooks
inline constexpr DispatchId kApplicationQuit = 302;          ///< call, no result
inline constexpr DispatchId kWorkbooksAdd = 181;             ///< call with a template: the new workbook
inline constexpr DispatchId kWorkbookWorksheets = 485;       ///< get: the collection of its worksheets
inline constexpr DispatchId kWorksheetsItem = 170;           ///< get with a number from 1: the worksheet
inline constexpr DispatchId kWorksheetRange = 197;           ///< get with first and last cell ("B12"): the range
inline constexpr DispatchId kWorksheetSaveAs = 284;          ///< call with a path and eight more, no result
inline constexpr DispatchId kRangeValue = 6;                 ///< put
inline constexpr DispatchId kRangeNumberFormatLocal = 1097;  ///< put, in the notation of the user's system
}  // namespace excel

/// Arguments of SaveAs: the path, then those that may be left out.
inline constexpr std::size_t kSaveAsArguments = 9;

}  // namespace lvx::host
