#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace lvx::desktop {

/// What tells that a file was changed without reading it: size, moment of the last change, and which file it is.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t changed = 0;  ///< nanoseconds
  std::uint64_t file = 0;    ///< inode
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Empty where there is no such file.
[[nodiscard]] std::optional<FileStamp> stampOf(const QString& path);

}  // namespace lvx::desktop
