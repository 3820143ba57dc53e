#pragma once

#include <memory>
#include <string>

#include "host/sheet.h"

/// A workbook file in place of the spreadsheet program.
namespace lvx::workbook {

/// Writes an Office Open XML workbook in constant memory: texts as strings, never as formulas; number cells as numbers with
/// three decimals. The file appears under its name only when `finish` succeeded; a failed save raises
/// framework::AutomationException and leaves no half file.
///
/// Cells may come in any order within a row; rows ascend (a cell of an earlier row still works, see the implementation).
class WorkbookSheet final : public host::Sheet {
 public:
  WorkbookSheet();
  ~WorkbookSheet() override;

  [[nodiscard]] bool start() override;
  void writeCell(const host::CString& cellName, const host::CString& text) override;
  void writeNumberCell(const host::CString& cellName, const host::CString& text) override;
  void finish(const host::CString& path) override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::workbook
