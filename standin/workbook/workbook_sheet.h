#pragma once

#include <memory>

#include "host/sheet.h"

/// A workbook file in place of the spreadsheet program.
namespace lvx::workbook {

/// Writes an Office Open XML workbook whose first sheet holds what was written, cell by cell:
/// - a text is a string, never a formula, whatever it begins with; an empty one empties its cell;
/// - a number cell is a number under the format `0.000`; a text that isn't a finite number ("nan", "---") stands in it as
///   a string;
/// - a text keeps its control characters, is cut after 32,767 UTF-16 units (the most that a cell takes), and shows
///   U+FFFD for half a surrogate pair.
///
/// Cells come in any order and the last word on a cell holds. Rows that ascend, as the reports write them, cost constant
/// memory and a temporary file; a cell of an earlier row costs its own memory. The work of building the file is done by
/// `finish`. With SOURCE_DATE_EPOCH set the file names that moment as its creation, so that equal cells give equal files.
///
/// A cell name that isn't one, a row beyond 1,048,576 and every failure to write raise framework::AutomationException.
/// The file appears under its name only when `finish` succeeded: until then it grows beside its place under another name,
/// and a failed save leaves the folder as it was, an older file of that name included. After `finish`, failed or not, the
/// sheet takes nothing more until `start`.
class WorkbookSheet final : public host::Sheet {
 public:
  WorkbookSheet();
  ~WorkbookSheet() override;

  /// Begins an empty sheet; what an unfinished one held is given up. Always true.
  [[nodiscard]] bool start() override;
  void writeCell(const host::CString& cellName, const host::CString& text) override;
  void writeNumberCell(const host::CString& cellName, const host::CString& text) override;
  void finish(const host::CString& path) override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::workbook
