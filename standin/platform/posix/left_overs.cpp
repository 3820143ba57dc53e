#include "standin_platform/posix/detail/left_overs.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "standin_platform/detail/left_over.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBegin = ".lvx-save-";

/// True for ".lvx-save-<number>-…".
bool isUnfinishedName(std::string_view name) {
  if (!name.starts_with(kBegin)) return false;
  name.remove_prefix(kBegin.size());
  const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
  return digits > 0 && name.substr(digits).starts_with('-');
}

/// True while `path` still leads to the open `file`.
bool leadsTo(const fs::path& path, const Descriptor& file) {
  struct stat named {};
  struct stat open {};
  return ::lstat(path.c_str(), &named) == 0 && ::fstat(file.number(), &open) == 0 && named.st_dev == open.st_dev &&
         named.st_ino == open.st_ino;
}

}  // namespace

void clearLeftOver(const fs::path& path) {
  if (!isUnfinishedName(path.filename().native())) return;
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.isOpen() || ::flock(file.number(), LOCK_EX | LOCK_NB) != 0 || !leadsTo(path, file)) return;
  std::error_code stays;
  fs::remove_all(path, stays);
}

std::string unfinishedName(int attempt) {
  const auto moment = std::chrono::system_clock::now().time_since_epoch().count() + attempt;
  return std::string(kBegin) + std::to_string(::getpid()) + "-" + std::to_string(moment);
}

bool lockUnfinished(const Descriptor& file) {
  if (::flock(file.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  struct stat status {};
  return ::fstat(file.number(), &status) == 0 && status.st_nlink > 0;
}

}  // namespace lvx::standin_platform
