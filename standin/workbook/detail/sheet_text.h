#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbook/detail/row_log.h"

/// The rows of a sheet as the text that stands for them in the archive: byte for byte what the workbook library writes in
/// constant memory, but in a fifth of its time, of which printing numbers is the most.
namespace lvx::workbook::detail {

/// The name of a column and of the row that all its names share: "AB12".
class CellNames {
 public:
  /// `row` from 0.
  explicit CellNames(std::uint32_t row);
  /// The row's number alone: "12".
  [[nodiscard]] std::string_view digits() const { return {name_.data() + kMostLetters, size_}; }
  /// Lasts until the next call.
  std::string_view of(std::uint16_t column);

 private:
  static constexpr std::size_t kMostLetters = 3;
  std::array<char, 13> name_{};
  std::size_t size_ = 0;  // of the digits, which stand behind the letters
};

/// A cell that shows: with its column, from 0.
using ShownCell = std::pair<std::uint16_t, CellValue>;

/// The cells of a row that stand in a file, which are those that hold something or have a format, by their columns. Their
/// texts are the row's.
void shownCells(const Row& row, std::vector<ShownCell>& cells);

/// A blank at either end, which a reader strips unless it is told not to.
[[nodiscard]] bool hasOuterBlank(std::string_view text);

/// Appends a row of the sheet; nothing without cells. The first format of the workbook is that of three decimals.
void appendRow(std::uint32_t number, const std::vector<ShownCell>& cells, std::string& out);

/// Appends a finite number as printf's "%.16G" of the C locale does.
void appendNumber(double number, std::string& out);

}  // namespace lvx::workbook::detail
