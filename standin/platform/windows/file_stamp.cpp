#include "standin_platform/file_stamp.h"

#include <system_error>

#include "standin_platform/windows/detail/names.h"
#include "standin_platform/windows/detail/stamp.h"

namespace lvx::standin_platform {

std::optional<FileStamp> stampOf(const Handle& file) {
  BY_HANDLE_FILE_INFORMATION facts{};
  if (GetFileInformationByHandle(file.get(), &facts) == 0) return std::nullopt;
  const auto whole = [](DWORD high, DWORD low) { return (std::uint64_t{high} << 32U) | low; };
  // Moments count hundreds of nanoseconds since 1601.
  constexpr std::int64_t kFrom1601To1970 = 116'444'736'000'000'000;
  constexpr std::int64_t kNanoseconds = 100;
  const auto changed =
      static_cast<std::int64_t>(whole(facts.ftLastWriteTime.dwHighDateTime, facts.ftLastWriteTime.dwLowDateTime));
  return FileStamp{facts.dwVolumeSerialNumber, whole(facts.nFileIndexHigh, facts.nFileIndexLow),
                   whole(facts.nFileSizeHigh, facts.nFileSizeLow), (changed - kFrom1601To1970) * kNanoseconds};
}

std::optional<FileStamp> stampOf(const std::filesystem::path& path) {
  const Handle file(CreateFileW(systemName(path).c_str(), FILE_READ_ATTRIBUTES,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!file.isOpen()) return std::nullopt;
  return stampOf(file);
}

bool leadToOneFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  const auto first = stampOf(a);
  const auto second = stampOf(b);
  if (first || second) return first && second && first->isSameFile(*second);
  // Names differ in more than their letters' case.
  const std::wstring one = systemName(a);
  const std::wstring other = systemName(b);
  return CompareStringOrdinal(one.c_str(), -1, other.c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace lvx::standin_platform
