#include "landxml/detail/safe_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "landxml/error.h"

namespace lvx::landxml::detail {

void failSaving(const std::string& what, const std::string& file) { throw SaveError(what, file); }

void failSaving(const std::string& what, const std::string& file, int error) {
  failSaving(what + ": " + std::strerror(error), file);
}

namespace {

FileIdentity identityOf(const struct stat& info) {
  return {static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino),
          static_cast<std::uint64_t>(info.st_size), static_cast<std::int64_t>(info.st_mtim.tv_sec),
          static_cast<std::int64_t>(info.st_mtim.tv_nsec)};
}

/// The path behind symbolic links, also where the last one points to a file that isn't there yet.
std::string followLinks(const std::string& path) {
  std::filesystem::path real(path);
  constexpr int kMostLinks = 40;
  std::error_code error;
  for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(real, error); ++i) {
    const auto next = std::filesystem::read_symlink(real, error);
    if (error) failSaving("can't follow the link: " + error.message(), path);
    real = real.parent_path() / next;  // an absolute one replaces all
  }
  if (std::filesystem::is_symlink(real, error)) failSaving("the link points to itself", path);
  return real.string();
}

}  // namespace

SourceFile::SourceFile(const std::string& path) : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (descriptor_ < 0) failSaving("can't read the drawing's file", path_, errno);
  struct stat info {};
  const int error = fstat(descriptor_, &info) == 0 ? 0 : errno;
  if (error != 0 || !S_ISREG(info.st_mode)) {
    close(descriptor_);
    if (error != 0) failSaving("can't read the drawing's file", path_, error);
    failSaving("the drawing's file is not a regular file", path_);
  }
  identity_ = identityOf(info);
}

SourceFile::~SourceFile() { close(descriptor_); }

std::size_t SourceFile::read(std::uint64_t offset, char* to, std::size_t size) const {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = pread(descriptor_, to + done, size - done, static_cast<off_t>(offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failSaving("can't read the drawing's file", path_, errno);
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

std::string SourceFile::text(std::uint64_t offset, std::size_t size) const {
  std::string bytes(size, '\0');
  bytes.resize(read(offset, bytes.data(), size));
  return bytes;
}

bool SafeFile::leadsTo(const std::string& path, const FileIdentity& file) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && identityOf(info).isSameFile(file);
}

SafeFile::SafeFile(const std::string& path) : path_(path), real_(followLinks(path)) {
  struct stat info {};
  exists_ = stat(real_.c_str(), &info) == 0;
  if (!exists_ && errno != ENOENT) failSaving("can't write the drawing", path_, errno);
  if (exists_) {
    if (!S_ISREG(info.st_mode)) failSaving("can't write the drawing: its target is not a regular file", path_);
    // A rename would pass over the file's own protection.
    if (access(real_.c_str(), W_OK) != 0) failSaving("can't write the drawing", path_, errno);
    target_ = identityOf(info);
  }
  folder_ = std::filesystem::path(real_).parent_path().string();
  if (folder_.empty()) folder_ = ".";
  // A name of its own: the target's may be as long as names can be.
  constexpr int kMostTries = 1000;
  for (int i = 0; i < kMostTries && descriptor_ < 0; ++i) {
    temporary_ = folder_ + "/.lvx-save-" + std::to_string(getpid()) + "-" + std::to_string(i);
    descriptor_ = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, exists_ ? 0600 : 0666);
    if (descriptor_ < 0 && errno != EEXIST) break;
  }
  if (descriptor_ < 0) failSaving("can't write the drawing: its folder takes no new file", path_, errno);
  if (!exists_) return;

  // Only a privileged user can give a file away; for others it belongs to whoever saved it.
  const bool keptOwner = fchown(descriptor_, info.st_uid, info.st_gid) == 0;
  // Bits that run a program as its owner don't pass to another one.
  if (fchmod(descriptor_, info.st_mode & (keptOwner ? 07777U : 0777U)) != 0) {
    const int error = errno;
    close(descriptor_);
    unlink(temporary_.c_str());
    failSaving("can't give the new file the permissions of the old one", path_, error);
  }
}

SafeFile::~SafeFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void SafeFile::write(std::string_view bytes) {
  constexpr std::size_t kBuffer = std::size_t{1} << 18;
  hash_.add(bytes);
  buffer_ += bytes;
  if (buffer_.size() >= kBuffer) flush();
}

void SafeFile::flush() {
  std::string_view bytes = buffer_;
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failSaving("can't write the drawing", path_, errno);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  buffer_.clear();
}

void SafeFile::checkTarget() {
  struct stat info {};
  const bool exists = stat(real_.c_str(), &info) == 0;
  if (exists != exists_ || (exists && identityOf(info) != target_)) {
    failSaving("another program wrote the file while it was being saved; it stays as that one left it", path_);
  }
}

void SafeFile::replace() {
  flush();
  // Without this a power cut could leave the new name on an empty file.
  if (fsync(descriptor_) != 0) failSaving("can't write the drawing", path_, errno);
  const int descriptor = descriptor_;
  descriptor_ = -1;
  if (close(descriptor) != 0) failSaving("can't write the drawing", path_, errno);
  checkTarget();
  if (std::rename(temporary_.c_str(), real_.c_str()) != 0) failSaving("can't write the drawing", path_, errno);
  temporary_.clear();
  // The new file is in place; a folder that can't be flushed only makes it less sure in a power cut.
  const int folder = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder >= 0) {
    (void)fsync(folder);
    close(folder);
  }
}

}  // namespace lvx::landxml::detail
