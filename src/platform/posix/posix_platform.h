#pragma once

#include <optional>
#include <string>

#include "platform/platform.h"

namespace lvx::platform {

/// How a POSIX process answers what Windows would know by itself.
struct PosixSettings {
  /// The moment that stands for "now", shown in UTC; empty: the system's clock, shown in local time.
  std::optional<std::int64_t> fixedMoment{};
  /// The host's release as its registry value would hold it; empty: the value doesn't exist.
  CString release = L"R24.3";
  /// iconv name of the code page of message files.
  std::string messageCodePage = "WINDOWS-1252";
  /// iconv name of a single-byte code page for reports; empty: U+0001 to U+00FF become the byte of the same value.
  std::string reportCodePage{};
};

/// A POSIX system. Both code pages are turned into tables once, at construction.
class PosixPlatform final : public Platform {
 public:
  /// Throws std::invalid_argument that names the code page where it is unknown or not single-byte.
  explicit PosixPlatform(PosixSettings settings = {});
  ~PosixPlatform() override;

  [[nodiscard]] FileHandle openFile(const CString& path, const char* mode) override;
  [[nodiscard]] bool exists(const CString& path) override;
  bool removeFile(const CString& path) override;
  [[nodiscard]] std::size_t lastFolderMark(const CString& path) const override;
  [[nodiscard]] std::int64_t now() override;
  [[nodiscard]] std::optional<CalendarTime> calendarTime(std::int64_t moment) override;
  [[nodiscard]] CString widenAnsi(std::string_view bytes) override;
  [[nodiscard]] std::string narrow(const CString& text) override;
  RegistryAnswer registryText(const CString& subKey, const CString& valueName, CString& text) override;

 private:
  struct Tables;
  PosixSettings settings_;
  std::unique_ptr<Tables> tables_;
};

/// File names cross to the system as UTF-8. A byte sequence that isn't UTF-8 is kept: each such byte becomes the lone
/// surrogate U+DC80 to U+DCFF and comes back as that byte, so that every file name survives the way there and back.
[[nodiscard]] std::string toUtf8(const CString& text);
[[nodiscard]] CString fromUtf8(std::string_view bytes);

}  // namespace lvx::platform
