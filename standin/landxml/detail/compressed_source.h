#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "landxml/detail/source.h"

/// Drawings that are kept compressed: by gzip, or as the one drawing of a zip archive.
namespace lvx::landxml::detail {

/// As many bytes tell whether a file is compressed.
inline constexpr std::size_t kCompressionHead = 4;
/// How a file that begins so is compressed, "gzip" or "zip"; empty for one that isn't.
[[nodiscard]] std::string_view compressionOf(std::string_view head);

/// The bytes as they are, or, where they begin as a compressed file does, what they unpack to while they are read. Of an
/// archive that is the one file in it whose name ends with .xml or .landxml, or the only file; the archive itself is held in memory.
/// What unpacks to more than a hundred megabytes and a hundred times its size is no drawing. All bytes of the source are
/// read in the end. Throws ReadError, here and while it is read, which names `file`.
[[nodiscard]] std::unique_ptr<ByteSource> unpacked(std::unique_ptr<ByteSource> bytes, const std::string& file);

}  // namespace lvx::landxml::detail
