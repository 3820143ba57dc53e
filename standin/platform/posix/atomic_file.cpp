#include "standin_platform/atomic_file.h"

#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "standin_platform/posix/detail/descriptor.h"
#include "standin_platform/posix/detail/left_overs.h"
#include "standin_platform/posix/detail/stamp.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

using Problem = AtomicFileError::Problem;

namespace {

/// The path behind symbolic links, also where the last one points to a file that isn't there yet.
fs::path followLinks(const fs::path& path) {
  fs::path real(path);
  constexpr int kMostLinks = 40;
  std::error_code error;
  for (int i = 0; i < kMostLinks && fs::is_symlink(real, error); ++i) {
    const fs::path next = fs::read_symlink(real, error);
    if (error) throw AtomicFileError(Problem::Link, error);
    real = real.parent_path() / next;  // an absolute one replaces all
  }
  if (fs::is_symlink(real, error)) throw AtomicFileError(Problem::LinkLoop, {});
  return real;
}

/// A device, a pipe, or what the system says no to.
Descriptor openInPlace(const fs::path& path, bool isPipe) {
  // A pipe is opened without waiting for a reader that may never come; the writing then waits as usual.
  Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | (isPipe ? O_NONBLOCK : 0)));
  if (!file.isOpen() && isPipe && errno == ENXIO) throw AtomicFileError(Problem::NoReader, {});
  if (!file.isOpen()) throw AtomicFileError(Problem::Writing, lastError());
  if (isPipe && ::fcntl(file.number(), F_SETFL, 0) != 0) throw AtomicFileError(Problem::Writing, lastError());
  return file;
}

}  // namespace

struct AtomicFile::State {
  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    (void)file.close();
    if (!draft.empty()) ::unlink(draft.c_str());
  }

  /// What stands under the name; empty for nothing.
  void lookAtTarget() {
    struct stat status {};
    if (::stat(target.c_str(), &status) == 0)
      former = status;
    else if (errno != ENOENT)
      throw AtomicFileError(Problem::Writing, lastError());
  }

  [[nodiscard]] fs::path folder() const {
    const fs::path parent = target.parent_path();
    return parent.empty() ? fs::path(".") : parent;
  }

  /// False where the folder takes no new file; errno says why.
  [[nodiscard]] bool makeDraft() {
    // A name of its own: the target's may be as long as names can be.
    constexpr int kMostTries = 100;
    constexpr mode_t kOwnerOnly = 0600;  // until it has the permissions of the other one
    constexpr mode_t kUsual = 0666;
    const fs::path place = folder();
    clearLeftOvers(place);
    for (int i = 0; i < kMostTries; ++i) {
      fs::path name = place / unfinishedName(i);
      file = Descriptor(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, former ? kOwnerOnly : kUsual));
      if (!file.isOpen()) {
        if (errno == EEXIST) continue;
        return false;
      }
      draft = std::move(name);
      if (lockUnfinished(file)) return true;
      ::unlink(draft.c_str());
      draft.clear();
    }
    return false;
  }

  void keepPermissions() {
    // Only a privileged user can give a file away; for others it belongs to whoever saved it.
    const bool keptOwner = ::fchown(file.number(), former->st_uid, former->st_gid) == 0;
    // Bits that run a program as its owner don't pass to another one.
    constexpr mode_t kAll = 07777;
    constexpr mode_t kWithoutOwnersRights = 0777;
    if (::fchmod(file.number(), former->st_mode & (keptOwner ? kAll : kWithoutOwnersRights)) != 0 &&
        !policy.writesInPlace)
      throw AtomicFileError(Problem::Permissions, lastError());
  }

  void checkTarget() const {
    struct stat status {};
    std::optional<FileStamp> now;
    if (::stat(target.c_str(), &status) == 0)
      now = stampFrom(status);
    else if (errno != ENOENT)
      throw AtomicFileError(Problem::Writing, lastError());
    if (now.has_value() != former.has_value() || (now && *now != stampFrom(*former)))
      throw AtomicFileError(Problem::TargetChanged, {});
  }

  AtomicFilePolicy policy;
  fs::path target;  ///< behind the links
  fs::path draft;   ///< empty: written in place, or no longer there
  Descriptor file;
  Descriptor lock;                    ///< on the draft, between closing it and its new name
  std::optional<struct stat> former;  ///< the target at the construction
  bool isSettled = false;
};

std::error_code whyNoNameOfFile(const fs::path& /*path*/) { return {}; }

std::error_code whyNoNewFile(const fs::path& folder) {
  try {
    const AtomicFile probe(folder / "probe", {.keepsTarget = false});
  } catch (const AtomicFileError& error) {
    return error.reason();
  }
  return {};
}

AtomicFile::AtomicFile(const fs::path& target, AtomicFilePolicy policy) : state_(std::make_unique<State>()) {
  state_->policy = policy;
  if (!policy.keepsTarget) {
    state_->target = target;
    if (!state_->makeDraft()) throw AtomicFileError(Problem::NoNewFile, lastError());
    return;
  }
  // Asked before links are read: those below /proc/self/fd lead to what has no name.
  struct stat status {};
  if (policy.writesInPlace && ::stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    state_->file = openInPlace(target, S_ISFIFO(status.st_mode));
    return;
  }
  state_->target = followLinks(target);
  state_->lookAtTarget();
  if (state_->former) {
    if (!S_ISREG(state_->former->st_mode)) throw AtomicFileError(Problem::NotRegular, {});
    // A rename would pass over the file's own protection.
    const Descriptor probe(::open(state_->target.c_str(), O_WRONLY | O_CLOEXEC));
    if (!probe.isOpen()) throw AtomicFileError(Problem::Writing, lastError());
  }
  if (state_->makeDraft()) {
    if (state_->former) state_->keepPermissions();
    return;
  }
  throw AtomicFileError(Problem::NoNewFile, lastError());
}

AtomicFile::~AtomicFile() = default;

void AtomicFile::write(std::string_view bytes) {
  if (const std::error_code error = state_->file.write(bytes)) throw AtomicFileError(Problem::Writing, error);
}

const fs::path& AtomicFile::lend() {
  // It stays open, since its lock tells other runs that it is no left-over.
  return state_->draft;
}

void AtomicFile::settle() {
  State& state = *state_;
  if (state.isSettled) return;
  // Without this a power cut could leave the new name on an empty file. A device or a pipe takes no such wish.
  if (state.policy.flushesToDisk && !state.draft.empty() && !state.file.flushToDisk())
    throw AtomicFileError(Problem::Writing, lastError());
  // Closing tells late errors, but would free the lock too, and another run took the draft for a left-over.
  if (!state.draft.empty()) {
    state.lock = Descriptor(::fcntl(state.file.number(), F_DUPFD_CLOEXEC, 0));
    if (!state.lock.isOpen()) throw AtomicFileError(Problem::Writing, lastError());
  }
  if (!state.file.close()) throw AtomicFileError(Problem::Writing, lastError());
  if (!state.draft.empty() && state.policy.refusesChangedTarget) state.checkTarget();
  state.isSettled = true;
}

void AtomicFile::commit() {
  State& state = *state_;
  const bool wasSettled = state.isSettled;
  settle();
  if (state.draft.empty()) return;
  if (wasSettled && state.policy.refusesChangedTarget) state.checkTarget();
  const fs::path place = state.folder();  // which takes memory: before there is no way back
  if (std::rename(state.draft.c_str(), state.target.c_str()) != 0) throw AtomicFileError(Problem::Writing, lastError());
  state.draft.clear();
  (void)state.lock.close();
  if (!state.policy.flushesToDisk) return;
  // The new file is in place; a folder that can't be flushed only makes it less sure in a power cut.
  const Descriptor folder(::open(place.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.isOpen()) (void)folder.flushToDisk();
}

}  // namespace lvx::standin_platform
