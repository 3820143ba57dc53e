#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "landxml/detail/content_hash.h"

/// Files of which never a part is seen.
namespace lvx::landxml::detail {

/// Throws SaveError of these fields.
[[noreturn]] void failSaving(const std::string& what, const std::string& file);
/// The same with the system's words for `error`.
[[noreturn]] void failSaving(const std::string& what, const std::string& file, int error);

/// Which file stands under a name, and in which state; equal states mean that nobody touched it between.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  std::uint64_t size = 0;
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;
  [[nodiscard]] bool isSameFile(const FileIdentity& other) const {
    return device == other.device && number == other.number;
  }
  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// A file that is read at any place. Throws SaveError.
class SourceFile {
 public:
  explicit SourceFile(const std::string& path);
  SourceFile(const SourceFile&) = delete;
  SourceFile& operator=(const SourceFile&) = delete;
  ~SourceFile();

  [[nodiscard]] std::uint64_t size() const { return identity_.size; }
  /// As it was when it was opened.
  [[nodiscard]] const FileIdentity& identity() const { return identity_; }
  /// Up to `size` bytes from `offset`; fewer only at the end of the file.
  std::size_t read(std::uint64_t offset, char* to, std::size_t size) const;
  [[nodiscard]] std::string text(std::uint64_t offset, std::size_t size) const;

 private:
  std::string path_;
  int descriptor_ = -1;
  FileIdentity identity_;
};

/// A new file beside the one that it is to replace. Without `replace` it vanishes again.
class SafeFile {
 public:
  /// Follows symbolic links. Throws SaveError where the target is no regular file, is read-only, or its folder takes no
  /// file.
  explicit SafeFile(const std::string& path);
  SafeFile(const SafeFile&) = delete;
  SafeFile& operator=(const SafeFile&) = delete;
  ~SafeFile();

  /// Whether `path` leads to that very file, under whatever name.
  [[nodiscard]] static bool leadsTo(const std::string& path, const FileIdentity& file);
  void write(std::string_view bytes);
  /// Flushes to the disk and takes the target's place. Throws SaveError where that fails or where the target isn't any
  /// more what it was at the construction; it is whole then.
  void replace();
  /// Of all that was written.
  [[nodiscard]] civil::FileMark mark() const { return hash_.mark(); }

 private:
  void flush();
  void checkTarget();

  std::string path_;    // as it was given, for messages
  std::string real_;    // behind the links
  std::string folder_;  // of real_
  std::string temporary_;
  int descriptor_ = -1;
  std::string buffer_;
  bool exists_ = false;
  FileIdentity target_;
  ContentHash hash_;
};

}  // namespace lvx::landxml::detail
