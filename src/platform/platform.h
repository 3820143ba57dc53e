#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/text.h"

namespace lvx::platform {

using framework::CString;

/// A calendar moment as the report header prints it. Month counts from 1, year is the full year.
struct CalendarTime {
  int day = 0;
  int month = 0;
  int year = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

/// Closes a stream that `Platform::openFile` opened: as the C library does, or in the way of who opened it.
class FileCloser {
 public:
  using Close = void (*)(std::FILE* stream, void* opener) noexcept;

  FileCloser() = default;
  /// `opener` is told to `close` again, and lives until then.
  explicit FileCloser(Close close, void* opener = nullptr) : close_(close), opener_(opener) {}
  void operator()(std::FILE* stream) const noexcept {
    if (close_ != nullptr)
      close_(stream, opener_);
    else
      std::fclose(stream);
  }

 private:
  Close close_ = nullptr;
  void* opener_ = nullptr;
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

/// What the registry answers for a value.
enum class RegistryAnswer : std::int8_t { NoKey = -1, NoValue = 0, Found = 1 };

/// What the module asks of the operating system. Paths are wide, as the module holds them; how they reach the system is
/// the implementation's affair (UTF-8 on POSIX). No operation throws but for lack of memory.
class Platform {
 public:
  Platform() = default;
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;
  virtual ~Platform() = default;

  // ---- files

  /// Opens a file with the mode letters of the C library ("rb", "wb", "w"). Empty where that fails.
  [[nodiscard]] virtual FileHandle openFile(const CString& path, const char* mode) = 0;
  /// True for anything that stands under that name, folders included.
  [[nodiscard]] virtual bool exists(const CString& path) = 0;
  /// Removes a file; false where it couldn't.
  virtual bool removeFile(const CString& path) = 0;
  /// Index of the last mark between folders in `path` (on POSIX `/`; a `\` is a letter there), or npos: a stem without a folder.
  [[nodiscard]] virtual std::size_t lastFolderMark(const CString& path) const = 0;

  // ---- time

  /// Seconds since 1970-01-01 00:00 UTC.
  [[nodiscard]] virtual std::int64_t now() = 0;
  /// The calendar fields of such a moment in the user's zone; empty where the conversion fails.
  [[nodiscard]] virtual std::optional<CalendarTime> calendarTime(std::int64_t moment) = 0;

  // ---- text

  /// Bytes in the ANSI code page of message files as wide text, byte by byte: never fails, `bytes` may hold anything.
  [[nodiscard]] virtual CString widenAnsi(std::string_view bytes) = 0;
  /// Wide text as the narrow bytes of a report. The first character that the report code page can't express ends the
  /// text: what stood before it is the result.
  [[nodiscard]] virtual std::string narrow(const CString& text) = 0;

  // ---- registry

  /// Text of a value below the current user's root key. `text` is assigned only where the value is a plain string.
  virtual RegistryAnswer registryText(const CString& subKey, const CString& valueName, CString& text) = 0;
};

}  // namespace lvx::platform
