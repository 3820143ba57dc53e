#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace lvx::test {

/// A cell as a spreadsheet program would understand it. `text` is UTF-8, a number as its digits in the file.
struct WorkbookCell {
  std::string text;
  bool number = false;
  std::string format = "General";
  bool operator==(const WorkbookCell&) const = default;
};

/// The cells of a workbook's first sheet by name ("B12"). Throws std::runtime_error where the file isn't a sound workbook:
/// a damaged archive, a part that isn't XML, rows or cells out of order, a formula.
[[nodiscard]] std::map<std::string, WorkbookCell> readWorkbook(const std::filesystem::path& path);

/// The parts of the archive by name, unpacked; checksums verified.
[[nodiscard]] std::map<std::string, std::string> readWorkbookParts(const std::filesystem::path& path);

}  // namespace lvx::test
