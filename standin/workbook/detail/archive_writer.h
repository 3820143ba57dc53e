#pragma once

#include <filesystem>

#include "workbook/detail/sheet_packer.h"

/// A workbook's archive made of one that the workbook library wrote, with other rows in its sheet.
namespace lvx::workbook::detail {

/// Writes the archive `to`: all parts of `frame`, in their order, and the sheet with what `rows` gives between the begin and
/// the end of its rows in place of the frame's. `isLarge`: in the form for archives beyond 4 GB. Throws std::runtime_error
/// where the frame isn't sound or `to` can't be written, std::bad_alloc where memory is short.
void writeArchive(const std::filesystem::path& frame, const std::filesystem::path& to, bool isLarge,
                  standin_platform::Crew& crew, const NextPiece& rows);

}  // namespace lvx::workbook::detail
