#include "standin_platform/atomic_file.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "standin_platform/windows/detail/handle.h"
#include "standin_platform/windows/detail/left_overs.h"
#include "standin_platform/windows/detail/names.h"
#include "standin_platform/windows/detail/stamp.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

using Problem = AtomicFileError::Problem;

namespace {

constexpr DWORD kSharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// The path behind symbolic links.
fs::path followLinks(const fs::path& path) {
  const std::wstring name = systemName(path);
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return path;
  const Handle file(
      CreateFileW(name.c_str(), 0, kSharedWithAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!file.isOpen() && GetLastError() == ERROR_CANT_RESOLVE_FILENAME) throw AtomicFileError(Problem::LinkLoop, {});
  if (!file.isOpen()) throw AtomicFileError(Problem::Link, lastError());
  const DWORD needed = GetFinalPathNameByHandleW(file.get(), nullptr, 0, FILE_NAME_NORMALIZED);
  std::wstring real(needed, L'\0');
  const DWORD size = needed == 0 ? 0 : GetFinalPathNameByHandleW(file.get(), real.data(), needed, FILE_NAME_NORMALIZED);
  if (size == 0 || size >= needed) throw AtomicFileError(Problem::Link, lastError());
  real.resize(size);
  return real;
}

/// A pipe or a device, by its name among devices ("\\.\pipe\…").
bool isDeviceName(const fs::path& path) { return path.native().starts_with(L"\\\\.\\"); }

Handle openInPlace(const fs::path& path) {
  Handle file(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.isOpen() && GetLastError() == ERROR_PIPE_BUSY) throw AtomicFileError(Problem::NoReader, {});
  if (!file.isOpen()) throw AtomicFileError(Problem::Writing, lastError());
  return file;
}

/// What stands under a name.
struct Former {
  FileStamp stamp;
  DWORD attributes = 0;
};

}  // namespace

struct AtomicFile::State {
  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    (void)file.close();
    (void)lock.close();
    if (!draft.empty()) DeleteFileW(draft.c_str());
  }

  void lookAtTarget() {
    const Handle standing(CreateFileW(systemName(target).c_str(), FILE_READ_ATTRIBUTES, kSharedWithAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!standing.isOpen()) {
      const DWORD reason = GetLastError();
      if (reason == ERROR_FILE_NOT_FOUND) return;
      throw AtomicFileError(reason == ERROR_PATH_NOT_FOUND ? Problem::NoNewFile : Problem::Writing, errorOf(reason));
    }
    BY_HANDLE_FILE_INFORMATION facts{};
    const auto stamp = stampOf(standing);
    if (!stamp || GetFileInformationByHandle(standing.get(), &facts) == 0)
      throw AtomicFileError(Problem::Writing, lastError());
    former = Former{*stamp, facts.dwFileAttributes};
  }

  [[nodiscard]] fs::path folder() const {
    const fs::path parent = target.parent_path();
    return parent.empty() ? fs::path(".") : parent;
  }

  /// False where the folder takes no new file; the system's last error says why.
  [[nodiscard]] bool makeDraft() {
    // A name of its own: the target's may be as long as names can be.
    constexpr int kMostTries = 100;
    const fs::path place = folder();
    clearLeftOvers(place);
    for (int i = 0; i < kMostTries; ++i) {
      const std::wstring name = systemName(place / unfinishedName(i));
      file = Handle(CreateFileW(name.c_str(), GENERIC_WRITE, kSharedWithAll, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                                nullptr));
      if (file.isOpen()) {
        draft = name;
        return true;
      }
      if (GetLastError() != ERROR_FILE_EXISTS) return false;
    }
    return false;
  }

  /// Who may do what with the file, and what else is marked on it.
  void keepPermissions() {
    const std::wstring standing = systemName(target);
    DWORD size = 0;
    (void)GetFileSecurityW(standing.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<char> rules(size);
    const bool isKept = size > 0 &&
                        GetFileSecurityW(standing.c_str(), DACL_SECURITY_INFORMATION, rules.data(), size, &size) != 0 &&
                        SetFileSecurityW(draft.c_str(), DACL_SECURITY_INFORMATION, rules.data()) != 0;
    if (!isKept && !policy.writesInPlace) throw AtomicFileError(Problem::Permissions, lastError());
    constexpr DWORD kMarks = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    if (const DWORD marks = former->attributes & kMarks) SetFileAttributesW(draft.c_str(), marks);
  }

  void checkTarget() const {
    State now;
    now.target = target;
    now.lookAtTarget();
    if (now.former.has_value() != former.has_value() || (former && now.former->stamp != former->stamp))
      throw AtomicFileError(Problem::TargetChanged, {});
  }

  AtomicFilePolicy policy;
  fs::path target;  ///< behind the links
  fs::path draft;   ///< empty: written in place, or no longer there
  Handle file;
  Handle lock;                   ///< on the draft, between closing it and its new name
  std::optional<Former> former;  ///< the target at the construction
  bool isSettled = false;
};

std::error_code whyNoNameOfFile(const fs::path& path) { return whyForbidden(path); }

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
  if (policy.keepsTarget && policy.writesInPlace && isDeviceName(target)) {
    state_->file = openInPlace(target);
    return;
  }
  if (const std::error_code forbidden = whyForbidden(target)) throw AtomicFileError(Problem::Writing, forbidden);
  if (!policy.keepsTarget) {
    state_->target = target;
    if (!state_->makeDraft()) throw AtomicFileError(Problem::NoNewFile, lastError());
    return;
  }
  state_->target = followLinks(target);
  state_->lookAtTarget();
  if (state_->former) {
    if ((state_->former->attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      // What would be written in place, were it a device, fails as a folder does.
      if (policy.writesInPlace)
        throw AtomicFileError(Problem::Writing, std::make_error_code(std::errc::is_a_directory));
      throw AtomicFileError(Problem::NotRegular, {});
    }
    // The new name would pass over the file's own protection, and a program that lets nobody else write would notice
    // only at the end.
    if ((state_->former->attributes & FILE_ATTRIBUTE_READONLY) != 0)
      throw AtomicFileError(Problem::Writing, errorOf(ERROR_ACCESS_DENIED));
    const Handle probe(CreateFileW(systemName(state_->target).c_str(), GENERIC_WRITE | DELETE, kSharedWithAll, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!probe.isOpen()) throw AtomicFileError(Problem::Writing, lastError());
  }
  if (!state_->makeDraft()) throw AtomicFileError(Problem::NoNewFile, lastError());
  if (state_->former) state_->keepPermissions();
}

AtomicFile::~AtomicFile() = default;

void AtomicFile::write(std::string_view bytes) {
  if (const std::error_code error = state_->file.write(bytes)) throw AtomicFileError(Problem::Writing, error);
}

const fs::path& AtomicFile::lend() {
  // It stays open, since that tells other runs that it is no left-over.
  return state_->draft;
}

void AtomicFile::settle() {
  State& state = *state_;
  if (state.isSettled) return;
  if (!state.draft.empty()) {
    // Without this a power cut could leave the new name on an empty file. A device or a pipe takes no such wish.
    if (state.policy.flushesToDisk && FlushFileBuffers(state.file.get()) == 0)
      throw AtomicFileError(Problem::Writing, lastError());
    // Closing tells late errors, but another run took the draft for a left-over then.
    state.lock = Handle(CreateFileW(state.draft.c_str(), FILE_READ_DATA, kSharedWithAll, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
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
  const std::wstring target = systemName(state.target);
  const DWORD how = MOVEFILE_REPLACE_EXISTING | (state.policy.flushesToDisk ? MOVEFILE_WRITE_THROUGH : 0);
  if (MoveFileExW(state.draft.c_str(), target.c_str(), how) == 0) {
    const DWORD reason = GetLastError();
    // A name on which somebody has a file open isn't taken so, though they let others replace it: as this program does with
    // a drawing that it saves in place. It is then taken as programs do that keep a file's identity; nobody may have the
    // new one open meanwhile.
    (void)state.lock.close();
    if (!state.former || (reason != ERROR_ACCESS_DENIED && reason != ERROR_SHARING_VIOLATION) ||
        ReplaceFileW(target.c_str(), state.draft.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) ==
            0)
      throw AtomicFileError(Problem::Writing, errorOf(reason));
  }
  state.draft.clear();
  (void)state.lock.close();
}

}  // namespace lvx::standin_platform
