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
#include "standin_platform/posix/detail/stamp.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

using Problem = AtomicFileError::Problem;

namespace {

const char* wordsFor(Problem problem) {
  switch (problem) {
    case Problem::Link:
      return "a link can't be followed";
    case Problem::LinkLoop:
      return "the link points to itself";
    case Problem::NotRegular:
      return "the target is not a regular file";
    case Problem::NoNewFile:
      return "the folder takes no new file";
    case Problem::Permissions:
      return "the permissions can't be kept";
    case Problem::Writing:
      return "the file can't be written";
    case Problem::TargetChanged:
      return "another program wrote the file meanwhile";
  }
  return "";
}

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

Descriptor openInPlace(const fs::path& path) {
  Descriptor file(::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
  if (!file.isOpen()) throw AtomicFileError(Problem::Writing, lastError());
  return file;
}

}  // namespace

AtomicFileError::AtomicFileError(Problem problem, std::error_code reason)
    : std::runtime_error(wordsFor(problem) + (reason ? ": " + reason.message() : std::string())),
      problem_(problem),
      reason_(reason) {}

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
    constexpr int kMostTries = 1000;
    constexpr mode_t kOwnerOnly = 0600;  // until it has the permissions of the other one
    constexpr mode_t kUsual = 0666;
    const fs::path place = folder();
    const std::string stem = ".lvx-save-" + std::to_string(::getpid()) + "-";
    for (int i = 0; i < kMostTries; ++i) {
      fs::path name = place / (stem + std::to_string(i));
      file = Descriptor(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, former ? kOwnerOnly : kUsual));
      if (file.isOpen()) {
        draft = std::move(name);
        return true;
      }
      if (errno != EEXIST) return false;
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
    const std::optional<FileStamp> now = stampOf(target);
    if (now.has_value() != former.has_value() || (now && *now != stampFrom(*former)))
      throw AtomicFileError(Problem::TargetChanged, {});
  }

  AtomicFilePolicy policy;
  fs::path target;  ///< behind the links
  fs::path draft;   ///< empty: written in place, or no longer there
  Descriptor file;
  std::optional<struct stat> former;  ///< the target at the construction
  bool isSettled = false;
};

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
    state_->file = openInPlace(target);
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
  const std::error_code reason = lastError();
  if (!policy.writesInPlace || !state_->former) throw AtomicFileError(Problem::NoNewFile, reason);
  state_->file = openInPlace(state_->target);
}

AtomicFile::~AtomicFile() = default;

void AtomicFile::write(std::string_view bytes) {
  if (const std::error_code error = state_->file.write(bytes)) throw AtomicFileError(Problem::Writing, error);
}

const fs::path& AtomicFile::lend() {
  if (!state_->file.close()) throw AtomicFileError(Problem::Writing, lastError());
  return state_->draft;
}

void AtomicFile::settle() {
  State& state = *state_;
  if (state.isSettled) return;
  if (state.policy.flushesToDisk) {
    if (!state.file.isOpen()) state.file = Descriptor(::open(state.draft.c_str(), O_WRONLY | O_CLOEXEC));  // was lent
    // Without this a power cut could leave the new name on an empty file.
    if (::fsync(state.file.number()) != 0) throw AtomicFileError(Problem::Writing, lastError());
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
  if (std::rename(state.draft.c_str(), state.target.c_str()) != 0) throw AtomicFileError(Problem::Writing, lastError());
  state.draft.clear();
  if (!state.policy.flushesToDisk) return;
  // The new file is in place; a folder that can't be flushed only makes it less sure in a power cut.
  const Descriptor folder(::open(state.folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.isOpen()) (void)::fsync(folder.number());
}

}  // namespace lvx::standin_platform
