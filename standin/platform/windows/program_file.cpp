#include "standin_platform/program_file.h"

#include <string>

#include <windows.h>

namespace lvx::standin_platform {

std::optional<std::filesystem::path> programFile() {
  constexpr std::size_t kLongest = 1U << 15U;
  for (std::wstring name(MAX_PATH, L'\0'); name.size() <= kLongest; name.resize(2 * name.size())) {
    const DWORD size = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (size == 0) return std::nullopt;
    if (size < name.size()) return std::filesystem::path(name.substr(0, size));
  }
  return std::nullopt;
}

}  // namespace lvx::standin_platform
