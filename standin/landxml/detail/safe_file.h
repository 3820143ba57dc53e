#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "landxml/detail/content_hash.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/input_file.h"
#include "standin_platform/temporary_stream.h"

/// Files of which never a part is seen.
namespace lvx::landxml::detail {

/// Throws SaveError of these fields.
[[noreturn]] void failSaving(const std::string& what, const std::string& file);

/// A drawing's file, of which any place can be read. Throws SaveError. A compressed one is unpacked into a file without a
/// name first, whose places these are.
class SourceFile {
 public:
  explicit SourceFile(const std::string& path);

  [[nodiscard]] std::uint64_t size() const { return packing_ ? packing_->size : stamp().size; }
  /// Of the file itself, as it was when it was opened.
  [[nodiscard]] const standin_platform::FileStamp& stamp() const { return file_->stamp(); }
  /// How it is compressed, as `compressionOf` says.
  [[nodiscard]] std::string_view compression() const { return packing_ ? packing_->kind : std::string_view(); }
  /// Of the bytes of a compressed file; empty for one that isn't.
  [[nodiscard]] std::optional<civil::FileMark> packedMark() const {
    return packing_ ? std::optional(packing_->mark) : std::nullopt;
  }
  /// Up to `size` bytes from `offset`; fewer only at the end of the file.
  std::size_t read(std::uint64_t offset, char* to, std::size_t size) const;
  [[nodiscard]] std::string text(std::uint64_t offset, std::size_t size) const;

 private:
  struct Packing {
    std::string_view kind;
    civil::FileMark mark;
    standin_platform::Stream text;
    std::uint64_t size = 0;
  };
  void unpack(std::string_view kind);

  std::string path_;
  std::unique_ptr<standin_platform::InputFile> file_;
  std::optional<Packing> packing_;
};

/// A new file beside the one that it is to replace. Without `replace` it vanishes again.
class SafeFile {
 public:
  /// Follows symbolic links. Throws SaveError where the target is no regular file, is read-only, or its folder takes no
  /// file.
  explicit SafeFile(const std::string& path);

  /// Whether `path` leads to that very file, under whatever name.
  [[nodiscard]] static bool leadsTo(const std::string& path, const standin_platform::FileStamp& file);
  /// Whether anything stands under that name.
  [[nodiscard]] static bool isThere(const std::string& path);
  void write(std::string_view bytes);
  /// All that `replace` does but taking the target's place; nothing is written any more then.
  void settle();
  /// Flushes to the disk and takes the target's place. Throws SaveError where that fails or where the target isn't any
  /// more what it was at the construction; it is whole then.
  void replace();
  /// Where the new file lies until `replace`; it is whole once it is settled.
  [[nodiscard]] std::string path() const;
  /// Of all that was written.
  [[nodiscard]] civil::FileMark mark() const { return hash_.mark(); }

 private:
  void flush();

  std::string path_;  // as it was given, for messages
  std::unique_ptr<standin_platform::AtomicFile> file_;
  std::string buffer_;
  ContentHash hash_;
};

}  // namespace lvx::landxml::detail
