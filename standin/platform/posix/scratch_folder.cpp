#include "standin_platform/scratch_folder.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "standin_platform/posix/detail/descriptor.h"
#include "standin_platform/posix/detail/left_overs.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

namespace {

/// Removes the files of an open folder. Needs no memory: it works where memory has run out too.
void emptyFolder(int folder) {
#ifdef __linux__
  alignas(dirent64) std::array<char, 4096> entries;
  // Until nothing more goes, asked once more: what the system can't do at one moment it may at the next.
  constexpr int kMostIdlePasses = 2;
  for (int idle = 0; idle < kMostIdlePasses; ++idle) {
    bool isRemoved = false;
    ::lseek(folder, 0, SEEK_SET);
    for (ssize_t size = 0; (size = ::getdents64(folder, entries.data(), entries.size())) > 0;)
      for (ssize_t at = 0; at < size;) {
        const auto* const entry = reinterpret_cast<const dirent64*>(entries.data() + at);
        isRemoved = ::unlinkat(folder, entry->d_name, 0) == 0 || isRemoved;
        at += entry->d_reclen;
      }
    if (isRemoved) idle = -1;
  }
#else
  const std::unique_ptr<DIR, int (*)(DIR*)> list(::fdopendir(::dup(folder)), ::closedir);
  if (!list) return;
  while (const dirent* const entry = ::readdir(list.get())) ::unlinkat(folder, entry->d_name, 0);
#endif
}

}  // namespace

struct ScratchFolder::State {
  fs::path path;
  Descriptor lock;
};

ScratchFolder::ScratchFolder(const fs::path& above) : state_(std::make_unique<State>()) {
  constexpr int kMostTries = 100;
  constexpr mode_t kOwnerOnly = 0700;
  clearLeftOvers(above);
  for (int i = 0; i < kMostTries; ++i) {
    fs::path name = above / unfinishedName(i);
    if (::mkdir(name.c_str(), kOwnerOnly) != 0) {
      if (errno == EEXIST) continue;
      break;
    }
    state_->path = std::move(name);
    state_->lock = Descriptor(::open(state_->path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (state_->lock.isOpen() && lockUnfinished(state_->lock)) return;
    const std::error_code reason = lastError();
    if (!state_->lock.isOpen() && errno == ENOENT) continue;  // cleared in that moment
    std::error_code stays;
    fs::remove(state_->path, stays);
    if (!state_->lock.isOpen()) throw std::system_error(reason);
  }
  throw std::system_error(lastError());
}

ScratchFolder::~ScratchFolder() {
  emptyFolder(state_->lock.number());
  ::rmdir(state_->path.c_str());
}

const fs::path& ScratchFolder::path() const { return state_->path; }

}  // namespace lvx::standin_platform
