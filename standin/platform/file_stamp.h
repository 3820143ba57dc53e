#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace lvx::standin_platform {

/// Which file stands under a name, and in which state, told without reading it. Equal stamps of two moments mean that
/// nobody wrote the file or put another in its place between them, as far as the system's clock tells moments apart.
struct FileStamp {
  std::uint64_t device = 0;  ///< the volume that it lies on
  std::uint64_t number = 0;  ///< the file among those of its volume
  std::uint64_t size = 0;    ///< bytes
  std::int64_t changed = 0;  ///< moment of the last change, nanoseconds since 1970-01-01 00:00 UTC

  /// The same file under any name, in whatever state.
  [[nodiscard]] bool isSameFile(const FileStamp& other) const {
    return device == other.device && number == other.number;
  }
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Links are followed. Empty where nothing can be found under the name.
[[nodiscard]] std::optional<FileStamp> stampOf(const std::filesystem::path& path);

/// Whether two names lead to one file, through whatever links. Names under which nothing can be found are told apart by
/// their spelling from the root on, behind the links of the folders that are there.
[[nodiscard]] bool leadToOneFile(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace lvx::standin_platform
