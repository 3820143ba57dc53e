#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "framework/text.h"
#include "workbook/detail/cell_text.h"

/// A workbook on its way into a file.
namespace lvx::workbook::detail {

/// One worksheet's cells, gathered until the file's path is known. What becomes of texts, numbers and rows is said at
/// workbook::startWorkbookServer. Every failure to write raises framework::AutomationException; so does everything after
/// the saving.
class WorkbookFile {
 public:
  /// `threads` pack a large sheet; 0: as many as there are processors. The file is the same for any number.
  explicit WorkbookFile(unsigned threads = 0);
  WorkbookFile(const WorkbookFile&) = delete;
  WorkbookFile& operator=(const WorkbookFile&) = delete;
  ~WorkbookFile();

  /// The cell holds this text from here on.
  void writeText(CellPlace place, std::wstring_view text);
  /// The cell holds the number that `text` spells, or the text where it spells none, under the format of three decimals.
  void writeNumber(CellPlace place, std::wstring_view text);
  /// The cell shows three decimals from here on; what it holds stays. Free where writeNumber of that cell follows.
  void setThreeDecimals(CellPlace place);
  /// Frees what was gathered; what comes after is as after the saving.
  void abandon();
  /// `meanwhile` is called about ten times a second while the file is built; what it throws ends the saving.
  /// Gives the file's size.
  std::uint64_t save(const framework::CString& path, const std::function<void()>& meanwhile = {});

 private:
  struct State;
  [[nodiscard]] State& gathered();

  std::unique_ptr<State> state_;
  unsigned threads_;
  std::optional<CellPlace> formatOnly_;  // given a format, and no number since
};

}  // namespace lvx::workbook::detail
