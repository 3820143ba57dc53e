#pragma once

#include "framework/text.h"

namespace lvx::host {

using framework::CString;

/// The first sheet of a new workbook in a spreadsheet program, written cell by cell: the seam behind which Excel, a
/// workbook file or a recording double stands. A cell is named by its A1 address ("B12").
///
/// A failing operation raises framework::AutomationException. Destroying a sheet that wasn't finished gives up the
/// workbook and leaves no file.
class Sheet {
 public:
  Sheet() = default;
  Sheet(const Sheet&) = delete;
  Sheet& operator=(const Sheet&) = delete;
  virtual ~Sheet() = default;

  /// Starts the program and reaches the sheet. False where there is no such program.
  [[nodiscard]] virtual bool start() = 0;
  /// Puts a text into a cell.
  virtual void writeCell(const CString& cellName, const CString& text) = 0;
  /// Gives the cell the number format of three decimals first, then the text of a number ("-12.500") as its value.
  virtual void writeNumberCell(const CString& cellName, const CString& text) = 0;
  /// Saves under `path`, in the program's own format whatever the name's ending, and ends the program.
  virtual void finish(const CString& path) = 0;
};

}  // namespace lvx::host
