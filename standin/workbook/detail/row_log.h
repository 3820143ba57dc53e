#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "workbook/detail/cell_text.h"

/// The rows of a sheet on their way into a workbook file.
namespace lvx::workbook::detail {

enum class CellKind : std::uint8_t {
  Empty,
  Text,
  Number,
  Kept,  ///< only given to a row: the cell keeps what it holds and gets the format
};

/// What a cell holds. The text is UTF-8 and belongs to the row that gave the value.
struct CellValue {
  CellKind kind = CellKind::Empty;
  bool threeDecimals = false;  ///< the cell has the number format of three decimals
  double number = 0.0;
  std::string_view text{};
};

/// The cells of one row, each column at most once: a later value takes the place of an earlier one, but a number format
/// once given stays, as it does in a spreadsheet program.
class Row {
 public:
  Row() : slots_(kColumnLimit, -1) {}

  /// `value.text` is copied.
  void put(std::uint16_t column, const CellValue& value);
  void clear();
  [[nodiscard]] bool empty() const { return cells_.empty(); }
  [[nodiscard]] std::size_t size() const { return cells_.size(); }

  /// Calls use(column, CellValue) for each cell that holds something, in the order of their first writing.
  template <class Use>
  void forEach(Use use) const {
    for (const Cell& cell : cells_)
      use(cell.column, CellValue{cell.kind, cell.threeDecimals, cell.number,
                                 std::string_view(texts_).substr(cell.textBegin, cell.textLength)});
  }

 private:
  struct Cell {
    double number;
    std::size_t textBegin;
    std::size_t textLength;
    std::uint16_t column;
    CellKind kind;
    bool threeDecimals;
  };
  std::vector<Cell> cells_;
  std::vector<std::int32_t> slots_;  // by column: index into cells_, or -1
  std::string texts_;
};

/// Rows put aside until the workbook's path is known: a small report stays in memory, a large one goes to a temporary
/// file that has no name. Every failure to write or read raises framework::AutomationException.
class RowLog {
 public:
  /// Appends a row.
  void append(std::uint32_t number, const Row& row);
  /// Ends the writing; next() then gives the rows from the first. May come again.
  void rewind();
  /// Puts the next row's cells into `row` (which it clears first). False at the end, with `number` untouched.
  [[nodiscard]] bool next(std::uint32_t& number, Row& row);

  [[nodiscard]] std::uint64_t cells() const { return cells_; }
  /// Bytes of all cell texts.
  [[nodiscard]] std::uint64_t textBytes() const { return textBytes_; }

 private:
  struct Closer {
    void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
  };
  void spill();
  [[nodiscard]] bool fill(std::size_t wanted);

  std::string buffer_;    // writing: what hasn't reached the file; reading: what came from it
  std::size_t read_ = 0;  // bytes of buffer_ that next() has used
  bool isReading_ = false;
  std::unique_ptr<std::FILE, Closer> file_;
  std::uint64_t cells_ = 0;
  std::uint64_t textBytes_ = 0;
};

}  // namespace lvx::workbook::detail
