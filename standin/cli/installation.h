#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// Where the program's own files lie. Build tree and installation have one layout: `bin` with the program, the module
/// and its companion beside it or in `lib/lvxhost`, and `share/lvxhost` with `messages/<language>` and `help/<language>`.
namespace lvx::cli {

/// Folder of the running program.
[[nodiscard]] std::filesystem::path programFolder();
/// The running program itself.
[[nodiscard]] std::filesystem::path programFile();
/// The report module, or the place where it was looked for first.
[[nodiscard]] std::filesystem::path moduleFile();
/// Folder of a language's message file.
[[nodiscard]] std::filesystem::path messageFolder(const std::string& language);
/// Folder of a language's help pages.
[[nodiscard]] std::filesystem::path helpFolder(const std::string& language);

}  // namespace lvx::cli
