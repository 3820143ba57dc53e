#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "workbook/detail/sheet_cells.h"

namespace lvx::workbook::detail {

/// The part of the archive that holds the sheet.
inline constexpr std::string_view kSheetPart = "xl/worksheets/sheet1.xml";

/// Reads a finished workbook back from its file and tells what is wrong with it; empty for a whole one. The workbook library
/// doesn't look whether all that it wrote arrived, so this decides:
/// - every part has the length and the checksum that the archive's directory says, and is well-formed XML,
/// - the parts that name others (the list of types, the relationships) name none that is missing,
/// - the sheet holds exactly `cells`,
/// - every other part is the same, to the byte, in `twin`: another workbook made at the same moment, with cells in the same
///   formats. Short memory may leave things out of a part, such as a format, and the part be XML all the same.
/// Costs about a fifth of the time in which the file was made.
[[nodiscard]] std::string whatIsWrong(const std::filesystem::path& archive, SheetCells& cells,
                                      const std::filesystem::path& twin);

}  // namespace lvx::workbook::detail
