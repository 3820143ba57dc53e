#include "standin_platform/windows/detail/left_overs.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <system_error>

#include "standin_platform/detail/left_over.h"
#include "standin_platform/windows/detail/handle.h"
#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBegin = ".lvx-save-";

/// True for ".lvx-save-<number>-…".
bool isUnfinishedName(std::wstring_view name) {
  constexpr std::wstring_view kWideBegin = L".lvx-save-";
  if (!name.starts_with(kWideBegin)) return false;
  name.remove_prefix(kWideBegin.size());
  const std::size_t digits = std::min(name.find_first_not_of(L"0123456789"), name.size());
  return digits > 0 && name.substr(digits).starts_with(L'-');
}

}  // namespace

void clearLeftOver(const fs::path& path) {
  if (!isUnfinishedName(path.filename().native())) return;
  const std::wstring name = systemName(path);
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return;
  const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  // Shared with nobody: that fails while somebody has it open.
  Handle file(CreateFileW(
      name.c_str(), DELETE | FILE_READ_ATTRIBUTES, 0, nullptr, OPEN_EXISTING,
      FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS | (isFolder ? 0 : FILE_FLAG_DELETE_ON_CLOSE), nullptr));
  if (!file.isOpen() || !isFolder) return;
  (void)file.close();
  std::error_code stays;
  fs::remove_all(name, stays);
}

std::string unfinishedName(int attempt) {
  const auto moment = std::chrono::system_clock::now().time_since_epoch().count() + attempt;
  return std::string(kBegin) + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(moment);
}

}  // namespace lvx::standin_platform
