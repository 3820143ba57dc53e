#include "standin_platform/posix/detail/left_overs.h"

#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <mutex>
#include <set>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lvx::standin_platform {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBegin = ".lvx-save-";

/// The process of an unfinished name; 0 for any other name.
pid_t processOf(std::string_view name) {
  if (!name.starts_with(kBegin)) return 0;
  name.remove_prefix(kBegin.size());
  pid_t process = 0;
  const auto [rest, error] = std::from_chars(name.data(), name.data() + name.size(), process);
  return error == std::errc() && rest != name.data() + name.size() && *rest == '-' && process > 0 ? process : 0;
}

bool isAlive(pid_t process) { return ::kill(process, 0) == 0 || errno == EPERM; }

/// True while `path` still leads to the open `file`.
bool leadsTo(const fs::path& path, const Descriptor& file) {
  struct stat named {};
  struct stat open {};
  return ::lstat(path.c_str(), &named) == 0 && ::fstat(file.number(), &open) == 0 && named.st_dev == open.st_dev &&
         named.st_ino == open.st_ino;
}

void clearLeftOver(const fs::path& path) {
  const pid_t process = processOf(path.filename().native());
  // A number comes again: one of this process without a lock is that of a dead run too.
  if (process == 0 || (process != ::getpid() && isAlive(process))) return;
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.isOpen() || ::flock(file.number(), LOCK_EX | LOCK_NB) != 0 || !leadsTo(path, file)) return;
  std::error_code stays;
  fs::remove_all(path, stays);
}

}  // namespace

std::string unfinishedName(int attempt) {
  const auto moment = std::chrono::system_clock::now().time_since_epoch().count() + attempt;
  return std::string(kBegin) + std::to_string(::getpid()) + "-" + std::to_string(moment);
}

bool lockUnfinished(const Descriptor& file) {
  if (::flock(file.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  struct stat status {};
  return ::fstat(file.number(), &status) == 0 && status.st_nlink > 0;
}

void clearLeftOvers(const fs::path& folder) noexcept {
  static std::mutex mutex;
  static std::set<fs::path> cleared;
  try {
    {
      const std::lock_guard guard(mutex);
      if (!cleared.insert(fs::absolute(folder)).second) return;
    }
    std::error_code end;
    for (fs::directory_iterator entry(folder, end); !end && entry != fs::directory_iterator(); entry.increment(end))
      clearLeftOver(entry->path());
  } catch (const std::exception&) {
    // Short of memory: the next run has another chance, and this one its own work.
  }
}

}  // namespace lvx::standin_platform
