#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

/// Names of files as the system takes them.
namespace lvx::standin_platform {

/// Text of the system's as UTF-8 and back.
[[nodiscard]] std::string narrowed(std::wstring_view text);
[[nodiscard]] std::wstring widened(std::string_view text);

/// The whole path, with a mark before it that lets it be of any length ("\\?\C:\…", "\\?\UNC\server\…"). A name of a device
/// ("\\.\…") or one that has such a mark stays as it is.
[[nodiscard]] std::wstring systemName(const std::filesystem::path& path);

/// Why no file can be under this name: a word that means a device (CON, NUL.txt), a dot or blank at the end of a part, a
/// character that Windows keeps for itself. None where there can. The system itself would take some of them for other
/// names, without a word.
[[nodiscard]] std::error_code whyForbidden(const std::filesystem::path& path);

}  // namespace lvx::standin_platform
