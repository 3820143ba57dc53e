#pragma once

#include <filesystem>
#include <string>

/// Where the program's own files lie. Build tree and installation have one layout: `bin` with the programs, the module
/// and its companion beside them or in `lib/lvxhost`, and `share/lvxhost` with `messages/<language>` and
/// `help/<language>`. `bin` is the running program's own folder unless another is named.
namespace lvx::runtime {

/// The running program itself.
[[nodiscard]] std::filesystem::path programFile();
/// Its folder.
[[nodiscard]] std::filesystem::path programFolder();
/// The report module, or the place where it was looked for first.
[[nodiscard]] std::filesystem::path moduleFile(const std::filesystem::path& bin = programFolder());
/// Folder of a language's message file.
[[nodiscard]] std::filesystem::path messageFolder(const std::string& language,
                                                  const std::filesystem::path& bin = programFolder());
/// Folder of a language's help pages.
[[nodiscard]] std::filesystem::path helpFolder(const std::string& language,
                                               const std::filesystem::path& bin = programFolder());

/// Folder of the examples: `share/lvxhost/examples`, or beside the programs' folder where an archive was unpacked. Where
/// none is there, where it was looked for first.
[[nodiscard]] std::filesystem::path examplesFolder(const std::filesystem::path& bin = programFolder());

}  // namespace lvx::runtime
