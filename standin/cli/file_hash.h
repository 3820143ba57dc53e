#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace lvx::cli {

struct FileHash {
  std::uint64_t bytes = 0;
  /// SHA-256 in 64 hexadecimal digits, as sha256sum prints it.
  std::string digits;
};

/// Reads the file once. Throws std::system_error where it can't be read.
[[nodiscard]] FileHash hashOf(const std::filesystem::path& path);

/// That of a text, as if it were a file.
[[nodiscard]] FileHash hashOfText(std::string_view text);

}  // namespace lvx::cli
