#include "standin_platform/locked_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "standin_platform/posix/detail/descriptor.h"
#include "standin_platform/posix/detail/stamp.h"

namespace lvx::standin_platform {

namespace {

/// False where another program holds it.
bool lock(const Descriptor& file) {
  while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno == EWOULDBLOCK) return false;
    if (errno == ENOLCK || errno == EOPNOTSUPP || errno == EINVAL) return true;
    throw std::system_error(lastError());
  }
  return true;
}

}  // namespace

struct LockedFile::State {
  std::filesystem::path path;
  Descriptor file;
  std::size_t size = 0;  ///< of what was put last, or stood there

  void open() {
    constexpr int kUsual = 0666;
    file = Descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, kUsual));
    if (!file.isOpen()) throw std::system_error(lastError());
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) throw std::system_error(lastError());
    if (!S_ISREG(status.st_mode)) throw std::system_error(std::make_error_code(std::errc::invalid_argument));
  }
  /// Whoever had it before may have taken the name away.
  [[nodiscard]] bool isUnderItsName() const {
    struct stat own {};
    struct stat named {};
    if (::fstat(file.number(), &own) != 0) throw std::system_error(lastError());
    return ::stat(path.c_str(), &named) == 0 && stampFrom(own).isSameFile(stampFrom(named));
  }
};

LockedFile::LockedFile(const std::filesystem::path& path, const std::function<bool()>& waits)
    : state_(std::make_unique<State>()) {
  constexpr std::chrono::milliseconds kMoment{100};
  state_->path = path;
  for (state_->open(); !lock(state_->file) || !state_->isUnderItsName(); state_->open()) {
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
    const ssize_t size = ::pread(state_->file.number(), part.data(), part.size(), static_cast<off_t>(text.size()));
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) throw std::system_error(lastError());
    if (size == 0) return text;
    text.append(part.data(), static_cast<std::size_t>(size));
  }
}

void LockedFile::put(std::string content) {
  content.resize(std::max(content.size(), state_->size), ' ');
  state_->size = content.size();
  ssize_t size = 0;
  do {
    size = ::pwrite(state_->file.number(), content.data(), content.size(), 0);
  } while (size < 0 && errno == EINTR);
  if (size < 0) throw std::system_error(lastError());
  if (static_cast<std::size_t>(size) != content.size())
    throw std::system_error(std::make_error_code(std::errc::no_space_on_device));
}

void LockedFile::remove() { ::unlink(state_->path.c_str()); }

}  // namespace lvx::standin_platform
