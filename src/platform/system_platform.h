#pragma once

#include <optional>
#include <string>

#include "platform/platform.h"

namespace lvx::platform {

/// What is settled for the system, or in place of it.
struct PlatformSettings {
  /// The moment that stands for "now", shown in UTC; empty: the system's clock, shown in local time.
  std::optional<std::int64_t> fixedMoment{};
  /// The host's release as its registry value would hold it; an empty text: the value doesn't exist. Without one the
  /// system's registry is asked; a system that has no registry has no such key then.
  std::optional<CString> release = L"R24.3";
  /// Code page of message files, by its name among those of the internet. Empty: the system's ANSI code page, where it
  /// knows one.
  std::string messageCodePage = "WINDOWS-1252";
  /// A single-byte code page for reports, by such a name; empty: U+0001 to U+00FF become the byte of the same value.
  std::string reportCodePage{};
};

/// The system that this was built for; `posix/` and `windows/` answer. Both code pages are turned into tables once, at construction.
class SystemPlatform final : public Platform {
 public:
  /// Throws std::invalid_argument that names the code page where it is unknown or not single-byte.
  explicit SystemPlatform(PlatformSettings settings = {});
  ~SystemPlatform() override;

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
  PlatformSettings settings_;
  std::unique_ptr<Tables> tables_;
};

}  // namespace lvx::platform
