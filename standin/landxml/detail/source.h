#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "landxml/detail/content_hash.h"
#include "landxml/reader.h"

/// Bytes of a drawing and what its encoding makes of them.
namespace lvx::landxml::detail {

/// Throws ReadError of these fields; line 0: none.
[[noreturn]] void fail(const std::string& what, const std::string& file, std::size_t line = 0);

/// Where the bytes come from.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// Up to `size` bytes; 0 at the end. Throws ReadError.
  virtual std::size_t read(char* to, std::size_t size) = 0;
  /// Bytes in all, as far as it is known; for progress.
  [[nodiscard]] virtual std::uint64_t totalBytes() const = 0;
};

/// `head` and all that is left.
[[nodiscard]] std::string readAll(ByteSource& bytes, std::string head = {});

/// Messages name the file `name`. `mark` (or null) is complete when the file has been read to its end; it must outlive the
/// source.
[[nodiscard]] std::unique_ptr<ByteSource> openFile(const std::string& path, const std::string& name,
                                                   civil::FileMark* mark = nullptr);
/// The text must outlive the source.
[[nodiscard]] std::unique_ptr<ByteSource> openText(std::string_view text);

/// A file that was converted to UTF-8 as a whole.
struct ConvertedText {
  /// Without a byte order mark; null where nothing was converted.
  std::shared_ptr<const std::string> text;
  /// By its name among those of the internet, with the order of bytes: "UTF-16LE", "SHIFT_JIS".
  std::string encoding;
  /// As the file begins.
  std::string byteOrderMark;
};

/// A stream of bytes in an encoding of which every markup character is the ASCII byte: UTF-8, or one byte a character.
/// Anything else has been converted to UTF-8 as a whole.
struct DecodedSource {
  std::unique_ptr<ByteSource> bytes;
  /// First bytes, already taken from `bytes`; without a byte order mark.
  std::string head;
  /// Bytes of the file before `head`: its byte order mark.
  std::size_t headStart = 0;
  /// UTF-8 of the bytes 0x80 to 0xFF; null for UTF-8.
  std::shared_ptr<const std::array<std::string, 128>> upperHalf;
  /// Empty, or what is odd about the encoding.
  std::string warning;
  ConvertedText converted;
};

/// Finds the encoding by byte order mark and XML declaration. Throws ReadError for one that isn't known.
[[nodiscard]] DecodedSource decode(std::unique_ptr<ByteSource> bytes, const std::string& file);

/// UTF-8 of a Windows-1252 byte of the upper half; its five holes are the code points of the same value.
[[nodiscard]] const std::array<std::string, 128>& windows1252();

}  // namespace lvx::landxml::detail
