#include "standin_platform/temporary_stream.h"

#include <array>

#include <fcntl.h>
#include <io.h>

#include "standin_platform/windows/detail/handle.h"

namespace lvx::standin_platform {

Stream openTemporaryStream() {
  std::array<wchar_t, MAX_PATH + 1> folder{};
  std::array<wchar_t, MAX_PATH + 1> name{};
  const DWORD size = GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
  if (size == 0 || size >= folder.size() || GetTempFileNameW(folder.data(), L"lvx", 0, name.data()) == 0)
    return nullptr;
  Handle file(CreateFileW(name.data(), GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                          nullptr, TRUNCATE_EXISTING, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
  if (!file.isOpen()) {
    DeleteFileW(name.data());
    return nullptr;
  }
  const int number = _open_osfhandle(reinterpret_cast<std::intptr_t>(file.get()), _O_RDWR | _O_BINARY | _O_NOINHERIT);
  if (number < 0) return nullptr;
  (void)file.release();
  Stream stream(_fdopen(number, "w+b"));
  if (!stream) _close(number);
  return stream;
}

std::uint64_t placeIn(std::FILE* stream) { return static_cast<std::uint64_t>(_ftelli64(stream)); }

bool goTo(std::FILE* stream, std::uint64_t place) {
  return ::_fseeki64(stream, static_cast<long long>(place), SEEK_SET) == 0;
}

}  // namespace lvx::standin_platform
