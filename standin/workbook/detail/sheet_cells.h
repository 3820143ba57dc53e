#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "workbook/detail/cell_text.h"
#include "workbook/detail/row_log.h"

/// All cells of a sheet between their writing and the file.
namespace lvx::workbook::detail {

/// Takes cells in any order and gives them back row by row, as often as wanted: once to write them, once to compare what
/// was written. Cells of the current row gather in memory; a cell of a later row sends them to the log. A cell of an earlier
/// row waits in memory and joins its row when the rows are given out.
class SheetCells {
 public:
  void put(CellPlace place, const CellValue& value);

  /// Ends the taking; next() then gives the rows from the first.
  void rewind();
  /// Puts the next row that was written to into `row`, ascending. False at the end, with `number` untouched.
  [[nodiscard]] bool next(std::uint32_t& number, Row& row);

  /// Whether a cell has the number format of three decimals.
  [[nodiscard]] bool hasThreeDecimals() const { return hasThreeDecimals_; }
  [[nodiscard]] std::uint64_t cells() const { return log_.cells(); }
  /// Bytes of all cell texts.
  [[nodiscard]] std::uint64_t textBytes() const { return log_.textBytes() + lateBytes_; }

 private:
  struct LateCell {
    std::uint16_t column;
    CellValue value;
    std::string text;  ///< the value's
  };
  using LateRows = std::map<std::uint32_t, std::vector<LateCell>>;
  static void add(const std::vector<LateCell>& cells, Row& to);

  RowLog log_;
  Row row_;
  std::uint32_t rowNumber_ = 0;
  LateRows late_;
  std::uint64_t lateBytes_ = 0;
  bool hasThreeDecimals_ = false;
  bool isTaking_ = true;
  // Of the giving:
  LateRows::const_iterator nextLate_;
  bool isAhead_ = false;  ///< row_ came from the log already, and wasn't given yet
  bool isLogEnded_ = false;
};

}  // namespace lvx::workbook::detail
