#include "standin_platform/locked_file.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <system_error>
#include <thread>

#include "standin_platform/windows/detail/handle.h"
#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

struct LockedFile::State {
  std::filesystem::path path;
  Handle file;
  std::size_t size = 0;  ///< of what was put last, or stood there

  /// False where another program holds it: nobody else opens a file for writing that is shared for reading alone.
  bool open() {
    file =
        Handle(CreateFileW(systemName(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.isOpen() && GetLastError() == ERROR_SHARING_VIOLATION) return false;
    if (!file.isOpen()) throw std::system_error(lastError());
    if (GetFileType(file.get()) != FILE_TYPE_DISK)
      throw std::system_error(std::make_error_code(std::errc::invalid_argument));
    return true;
  }
};

LockedFile::LockedFile(const std::filesystem::path& path, const std::function<bool()>& waits)
    : state_(std::make_unique<State>()) {
  constexpr std::chrono::milliseconds kMoment{100};
  if (const std::error_code forbidden = whyForbidden(path)) throw std::system_error(forbidden);
  state_->path = path;
  while (!state_->open()) {
    if (!waits()) throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    std::this_thread::sleep_for(kMoment);
  }
  state_->size = content().size();
}

LockedFile::~LockedFile() = default;

std::string LockedFile::content() const {
  std::string text;
  std::array<char, 4096> part{};
  for (;;) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(text.size());
    DWORD count = 0;
    if (ReadFile(state_->file.get(), part.data(), static_cast<DWORD>(part.size()), &count, &place) == 0) {
      if (GetLastError() == ERROR_HANDLE_EOF) return text;
      throw std::system_error(lastError());
    }
    if (count == 0) return text;
    text.append(part.data(), count);
  }
}

void LockedFile::put(std::string content) {
  content.resize(std::max(content.size(), state_->size), ' ');
  state_->size = content.size();
  OVERLAPPED place{};
  DWORD count = 0;
  if (WriteFile(state_->file.get(), content.data(), static_cast<DWORD>(content.size()), &count, &place) == 0)
    throw std::system_error(lastError());
  if (count != content.size()) throw std::system_error(std::make_error_code(std::errc::no_space_on_device));
}

void LockedFile::remove() { DeleteFileW(systemName(state_->path).c_str()); }

}  // namespace lvx::standin_platform
