#include "standin_platform/windows/detail/handle.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>

#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

namespace {

/// Words of the system's own for what the C library has none for.
class WindowsCategory final : public std::error_category {
 public:
  [[nodiscard]] const char* name() const noexcept override { return "windows"; }
  [[nodiscard]] std::string message(int value) const override {
    std::array<wchar_t, 512> text{};
    const DWORD size =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(value),
                       0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string words = narrowed({text.data(), size});
    while (!words.empty() &&
           (words.back() == '\n' || words.back() == '\r' || words.back() == '.' || words.back() == ' '))
      words.pop_back();
    return words.empty() ? "error " + std::to_string(value) : words;
  }
};

struct Meaning {
  DWORD code;
  int number;
};

constexpr std::array kMeanings{
    Meaning{ERROR_FILE_NOT_FOUND, ENOENT},    Meaning{ERROR_PATH_NOT_FOUND, ENOENT},
    Meaning{ERROR_INVALID_NAME, ENOENT},      Meaning{ERROR_BAD_PATHNAME, ENOENT},
    Meaning{ERROR_BAD_NETPATH, ENOENT},       Meaning{ERROR_BAD_NET_NAME, ENOENT},
    Meaning{ERROR_INVALID_DRIVE, ENOENT},     Meaning{ERROR_TOO_MANY_OPEN_FILES, EMFILE},
    Meaning{ERROR_ACCESS_DENIED, EACCES},     Meaning{ERROR_WRITE_PROTECT, EROFS},
    Meaning{ERROR_NOT_ENOUGH_MEMORY, ENOMEM}, Meaning{ERROR_OUTOFMEMORY, ENOMEM},
    Meaning{ERROR_COMMITMENT_LIMIT, ENOMEM},  Meaning{ERROR_NO_SYSTEM_RESOURCES, ENOMEM},
    Meaning{ERROR_FILE_EXISTS, EEXIST},       Meaning{ERROR_ALREADY_EXISTS, EEXIST},
    Meaning{ERROR_BROKEN_PIPE, EPIPE},        Meaning{ERROR_NO_DATA, EPIPE},
    Meaning{ERROR_DISK_FULL, ENOSPC},         Meaning{ERROR_HANDLE_DISK_FULL, ENOSPC},
    Meaning{ERROR_BAD_EXE_FORMAT, ENOEXEC},   Meaning{ERROR_DIRECTORY, ENOTDIR},
    Meaning{ERROR_DIR_NOT_EMPTY, ENOTEMPTY},  Meaning{ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG}};

}  // namespace

std::error_code errorOf(DWORD code) {
  static const WindowsCategory category;
  const auto* const found =
      std::find_if(kMeanings.begin(), kMeanings.end(), [code](const Meaning& meaning) { return meaning.code == code; });
  if (found != kMeanings.end()) return {found->number, std::generic_category()};
  return {static_cast<int>(code), category};
}

std::error_code lastError() { return errorOf(GetLastError()); }

std::error_code Handle::write(std::string_view bytes) const {
  constexpr std::size_t kMost = std::size_t{1} << 26U;
  while (!bytes.empty()) {
    DWORD count = 0;
    if (WriteFile(value_, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kMost)), &count, nullptr) == 0)
      return lastError();
    if (count == 0) return std::make_error_code(std::errc::io_error);
    bytes.remove_prefix(count);
  }
  return {};
}

}  // namespace lvx::standin_platform
