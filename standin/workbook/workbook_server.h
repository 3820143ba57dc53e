#pragma once

#include <cstdint>
#include <memory>

#include "host/automation.h"

/// A writer of workbook files in place of the spreadsheet program.
namespace lvx::workbook {

/// Follows a server's work.
class WorkbookObserver {
 public:
  WorkbookObserver() = default;
  WorkbookObserver(const WorkbookObserver&) = delete;
  WorkbookObserver& operator=(const WorkbookObserver&) = delete;
  virtual ~WorkbookObserver() = default;

  /// Asked before each cell and before the saving. What it throws ends the operation, which then did nothing.
  virtual void beforeWriting() = 0;
  /// Told before the saving begins. A framework::AutomationException ends it; `notSaved` tells of it then.
  virtual void beforeSaving(const framework::CString& path) { (void)path; }
  /// Asked now and then while the file is built. What it throws ends the saving, which then did nothing.
  virtual void whileSaving() {}
  /// The workbook stands under `path`, whole.
  virtual void saved(const framework::CString& path, std::uint64_t bytes) noexcept = 0;
  /// `path` is as it was; the caller is told by an exception too, but of a workbook with more rows than a sheet has.
  virtual void notSaved(const framework::CString& path, const char* reason) noexcept = 0;
};

/// Starts a server and gives its application object. It answers the operations of host/excel_operations.h and fails any
/// other, and any argument that isn't named here:
/// - Add takes no template but the default one. A new workbook has one worksheet, number 1.
/// - Range takes one cell, named twice. A name that isn't a cell's, or of a cell beyond 16,384 columns, fails.
/// - Rows below the sheet's 1,048,576 are taken and counted. What was gathered is dropped then, and SaveAs writes no file:
///   it tells the observer why and ends as if it had, so that the forms of a report that have room for its rows are
///   written. Without an observer it fails.
/// - Value takes a text: as a string, never a formula, whatever it begins with; an empty one empties the cell. Where the
///   range was given a number format before, the text of a finite number ("-12.500") becomes that number, and any other
///   ("nan", "---") stands as a string.
/// - NumberFormatLocal takes the three decimals of a system with a decimal comma, "0,000". A cell keeps it once given.
/// - SaveAs takes a path and the default of all else: an Office Open XML workbook, whatever the path's ending.
/// - Quit ends the application object.
///
/// A text keeps its control characters, is cut after 32,767 UTF-16 units (the most that a cell takes), and shows U+FFFD
/// for half a surrogate pair.
///
/// Cells come in any order and the last word on a cell holds. Rows that ascend, as the reports write them, cost constant
/// memory and a temporary file; a cell of an earlier row costs its own memory. The work of building the file is done by
/// SaveAs. With SOURCE_DATE_EPOCH set the file names that moment as its creation, so that equal cells give equal files.
///
/// The file appears under its name only when SaveAs succeeded: until then it grows beside its place under another name,
/// and a failed save leaves the folder as it was, an older file of that name included. After SaveAs, failed or not, the
/// workbook takes nothing more. A workbook whose references are all released without it leaves no file.
///
/// `threads` pack large sheets; 0: as many as there are processors. The file is the same for any number.
[[nodiscard]] host::Ref<host::AutomationObject> startWorkbookServer(std::unique_ptr<WorkbookObserver> observer = {},
                                                                    unsigned threads = 0);

}  // namespace lvx::workbook
