#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

/// A workbook's archive made of one that the workbook library wrote, with other rows in its sheet.
namespace lvx::workbook::detail {

/// Takes the next piece of the sheet's rows.
using TakeRows = std::function<void(std::string_view)>;

/// Writes the archive `to`: all parts of `frame`, in their order, and the sheet with what `giveRows(take)` gives between the
/// begin and the end of its rows in place of the frame's. `isLarge`: in the form for archives beyond 4 GB. Throws
/// std::runtime_error where the frame isn't sound, `to` can't be written, or memory for the packing is short.
void writeArchive(const std::filesystem::path& frame, const std::filesystem::path& to, bool isLarge,
                  const std::function<void(const TakeRows&)>& giveRows);

}  // namespace lvx::workbook::detail
