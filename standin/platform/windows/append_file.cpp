#include "standin_platform/append_file.h"

#include <system_error>

#include "standin_platform/windows/detail/handle.h"
#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

struct AppendFile::State {
  Handle file;
};

AppendFile::AppendFile(const std::filesystem::path& path, bool isEmptied) : state_(std::make_unique<State>()) {
  if (const std::error_code forbidden = whyForbidden(path)) throw std::system_error(forbidden);
  // The system itself puts what is written at the end.
  state_->file = Handle(CreateFileW(systemName(path).c_str(), FILE_APPEND_DATA | FILE_READ_DATA | SYNCHRONIZE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    isEmptied ? CREATE_ALWAYS : OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!state_->file.isOpen()) throw std::system_error(lastError());
  // A device or a pipe can't be read back.
  if (GetFileType(state_->file.get()) != FILE_TYPE_DISK)
    throw std::system_error(std::make_error_code(std::errc::invalid_argument));
}

AppendFile::AppendFile(AppendFile&& other) noexcept = default;
AppendFile::~AppendFile() = default;

bool AppendFile::endsWithLine() const {
  LARGE_INTEGER size{};
  if (GetFileSizeEx(state_->file.get(), &size) == 0) throw std::system_error(lastError());
  if (size.QuadPart == 0) return true;
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(size.QuadPart - 1);
  place.OffsetHigh = static_cast<DWORD>((size.QuadPart - 1) >> 32U);
  char last = 0;
  DWORD count = 0;
  if (ReadFile(state_->file.get(), &last, 1, &count, &place) == 0 || count != 1) throw std::system_error(lastError());
  return last == '\n';
}

void AppendFile::append(std::string_view bytes) {
  if (const std::error_code error = state_->file.write(bytes)) throw std::system_error(error);
}

}  // namespace lvx::standin_platform
