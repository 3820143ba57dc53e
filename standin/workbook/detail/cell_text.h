#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What a cell's name and text mean to a workbook file.
namespace lvx::workbook::detail {

inline constexpr std::uint32_t kRowLimit = 1048576;   ///< rows of a sheet
inline constexpr std::uint32_t kColumnLimit = 16384;  ///< columns of a sheet: A to XFD
inline constexpr std::size_t kTextLimit = 32767;      ///< UTF-16 units that a cell holds

/// A place on the sheet, both counted from 0: "B12" is row 11, column 1.
struct CellPlace {
  std::uint32_t row = 0;
  std::uint16_t column = 0;
  bool operator==(const CellPlace&) const = default;
};

/// Reads a relative A1 address: one to three letters of either case, then a row number without sign or leading zero.
/// Empty for anything else, a column outside the sheet included. A row below the sheet is given while it has at most nine
/// digits.
[[nodiscard]] std::optional<CellPlace> parseCellName(std::wstring_view name);

/// Appends `text` to `out` as the UTF-8 that a workbook keeps for it:
/// - a zero character ends the text;
/// - what XML 1.0 can't hold but for the control characters (U+FFFE, U+FFFF) and a text that looks like such an escape
///   ("_x0041_") are written with the workbook's own escape `_xHHHH_`, so that the reader sees what stood there;
/// - a surrogate pair is one character; a lone surrogate and a value beyond Unicode become U+FFFD;
/// - at most kTextLimit UTF-16 units stand, an escape counted in full: the rest is cut off, since no spreadsheet program
///   takes it and one overlong description shouldn't cost its report.
/// Control characters go through as they are: the workbook library escapes them.
void appendCellText(std::wstring_view text, std::string& out);

/// The finite number that the whole of `text` spells ("-12.500"), minus zero as zero. Empty for "nan", "inf", a number
/// too large for a double, and anything that isn't a number.
[[nodiscard]] std::optional<double> parseNumber(std::wstring_view text);

}  // namespace lvx::workbook::detail
