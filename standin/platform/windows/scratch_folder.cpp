#include "standin_platform/scratch_folder.h"

#include <system_error>

#include "standin_platform/windows/detail/handle.h"
#include "standin_platform/windows/detail/left_overs.h"
#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

struct ScratchFolder::State {
  fs::path path;
  Handle lock;
};

ScratchFolder::ScratchFolder(const fs::path& above) : state_(std::make_unique<State>()) {
  constexpr int kMostTries = 100;
  clearLeftOvers(above);
  for (int i = 0; i < kMostTries; ++i) {
    // In the form that may be of any length, for libraries that know nothing of it.
    const std::wstring name = systemName(above / unfinishedName(i));
    if (CreateDirectoryW(name.c_str(), nullptr) == 0) {
      if (GetLastError() == ERROR_ALREADY_EXISTS) continue;
      break;
    }
    state_->lock = Handle(CreateFileW(name.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (state_->lock.isOpen()) {
      state_->path = name;
      return;
    }
    const DWORD reason = GetLastError();
    // Cleared, or looked at by who clears, in that moment.
    if (reason == ERROR_FILE_NOT_FOUND || reason == ERROR_SHARING_VIOLATION) continue;
    RemoveDirectoryW(name.c_str());
    throw std::system_error(errorOf(reason));
  }
  throw std::system_error(lastError());
}

ScratchFolder::~ScratchFolder() {
  const std::wstring all = state_->path.native() + L"\\*";
  WIN32_FIND_DATAW entry{};
  const HANDLE list = FindFirstFileW(all.c_str(), &entry);
  if (list != INVALID_HANDLE_VALUE) {
    do {
      if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        DeleteFileW((state_->path.native() + L"\\" + entry.cFileName).c_str());
    } while (FindNextFileW(list, &entry) != 0);
    FindClose(list);
  }
  (void)state_->lock.close();
  RemoveDirectoryW(state_->path.c_str());
}

const fs::path& ScratchFolder::path() const { return state_->path; }

}  // namespace lvx::standin_platform
