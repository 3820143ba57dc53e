#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbook/detail/sheet_cells.h"

namespace pugi {
class xml_document;
}

/// Whether the markup of a sheet says what it was made from.
namespace lvx::workbook::detail {

/// Compares a sheet's markup, as it comes piece by piece, with the cells that it has to hold: each cell with its place, its
/// format and its value, in their order, and no other. The rows are read by the one form that the workbook library gives
/// them, so that a sheet of millions of cells takes a fraction of the time in which it was packed; whatever has another form
/// is unsound. Numbers agree to the 16 digits that a workbook keeps.
class SheetCheck {
 public:
  /// `cells` are rewound here and read along with the markup.
  explicit SheetCheck(SheetCells& cells);

  /// False where the markup is unsound; what comes later isn't looked at any more.
  [[nodiscard]] bool take(std::string_view piece);
  /// The markup is at its end: true where it was whole.
  [[nodiscard]] bool finish();

 private:
  enum class Phase { Head, Rows, Tail, Unsound };
  enum class Answer { Yes, No, NeedsMore };

  void readHead();
  void readRows();
  [[nodiscard]] Answer rowAt(std::size_t& at) const;
  /// Reads the next row that shows in a sheet into expected_.
  void expectNextRow();

  SheetCells& cells_;
  Phase phase_ = Phase::Head;
  std::string buffer_;
  std::size_t at_ = 0;      ///< bytes of buffer_ that are read
  std::size_t wanted_ = 0;  ///< no row is tried before so many bytes are there
  std::string frame_;       ///< what stands around the rows
  Row row_;
  std::vector<std::pair<std::uint16_t, CellValue>> expected_;  ///< of row_, by column; empty behind the last row
  std::uint32_t expectedRow_ = 0;
};

/// True where `text` is a whole document of XML: one element, every tag closed, no loose text.
[[nodiscard]] bool isWellFormed(std::string_view text);
/// The same, and gives what it says.
[[nodiscard]] bool readDocument(std::string_view text, pugi::xml_document& document);

}  // namespace lvx::workbook::detail
