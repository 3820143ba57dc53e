#include "runtime/observed_platform.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_platform.h"

namespace lvx::runtime {

using platform::CString;
using platform::FileHandle;

namespace {

/// A file on its way, behind the stream that the module writes to.
struct Writing {
  FileJournal& journal;
  const std::function<bool()>& isInterrupted;
  std::string path;    ///< as the module named it
  std::string target;  ///< where links lead
  std::string draft;   ///< grows beside the target; empty: written in place
  int descriptor = -1;
  int exceptionsAtOpening = 0;
  int error = 0;
  std::uint64_t bytes = 0;
};

ssize_t writeSome(void* cookie, const char* data, std::size_t size) {
  auto& writing = *static_cast<Writing*>(cookie);
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::write(writing.descriptor, data + done, size - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      if (writing.error == 0) writing.error = count < 0 ? errno : EIO;
      return 0;  // what the C library takes as a write error
    }
    done += static_cast<std::size_t>(count);
  }
  writing.bytes += size;
  return static_cast<ssize_t>(size);
}

int closeFile(void* cookie) {
  const std::unique_ptr<Writing> writing(static_cast<Writing*>(cookie));
  if (::close(writing->descriptor) != 0 && writing->error == 0) writing->error = errno;
  std::string reason;
  if (writing->error != 0)
    reason = std::strerror(writing->error);
  else if (std::uncaught_exceptions() > writing->exceptionsAtOpening)
    reason = "its writer ended by an exception";
  else if (writing->isInterrupted && writing->isInterrupted())
    reason = "interrupted";
  if (!writing->draft.empty()) {
    if (reason.empty() && std::rename(writing->draft.c_str(), writing->target.c_str()) != 0)
      reason = std::strerror(errno);
    if (!reason.empty()) ::unlink(writing->draft.c_str());
  }
  const bool written = reason.empty();
  writing->journal.add({written ? FileFate::Written : FileFate::Failed, writing->path, writing->bytes, reason});
  return written ? 0 : EOF;
}

/// The file that links lead to; the path itself where there is nothing yet.
std::string resolved(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  return real ? std::string(real.get()) : path;
}

/// Opens the descriptor that the bytes go to; on failure it stays -1 and errno says why.
void openDescriptor(Writing& writing) {
  constexpr mode_t kNewFileMode = 0666;
  constexpr mode_t kPermissions = 07777;
  struct stat status {};
  const bool stands = ::stat(writing.path.c_str(), &status) == 0;
  if (stands && !S_ISREG(status.st_mode)) {
    writing.descriptor = ::open(writing.path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    return;
  }
  if (stands) {
    const int probe = ::open(writing.path.c_str(), O_WRONLY | O_CLOEXEC);
    if (probe < 0) return;
    ::close(probe);
  }
  writing.target = resolved(writing.path);
  const std::size_t mark = writing.target.rfind('/');
  const std::string folder = mark == std::string::npos ? std::string() : writing.target.substr(0, mark + 1);
  std::string draft = folder + ".lvx-XXXXXX";
  writing.descriptor = ::mkostemp(draft.data(), O_CLOEXEC);
  if (writing.descriptor >= 0) {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(writing.descriptor, stands ? status.st_mode & kPermissions : kNewFileMode & ~mask);
    writing.draft = std::move(draft);
  } else if (stands) {
    writing.descriptor = ::open(writing.target.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  }
}

}  // namespace

ObservedPlatform::ObservedPlatform(platform::Platform& inner, FileJournal& journal, std::function<bool()> isInterrupted)
    : inner_(inner), journal_(journal), isInterrupted_(std::move(isInterrupted)) {}

FileHandle ObservedPlatform::openFile(const CString& path, const char* mode) {
  if (mode == nullptr || mode[0] != 'w') return inner_.openFile(path, mode);
  auto writing = std::make_unique<Writing>(Writing{journal_, isInterrupted_, platform::toUtf8(path), {}, {}});
  writing->exceptionsAtOpening = std::uncaught_exceptions();
  openDescriptor(*writing);
  if (writing->descriptor < 0) {
    const int error = errno;
    journal_.add({FileFate::Failed, writing->path, 0, std::strerror(error)});
    errno = error;
    return nullptr;
  }
  const cookie_io_functions_t functions{nullptr, writeSome, nullptr, closeFile};
  std::FILE* stream = ::fopencookie(writing.get(), "w", functions);
  if (stream == nullptr) {
    ::close(writing->descriptor);
    if (!writing->draft.empty()) ::unlink(writing->draft.c_str());
    journal_.add({FileFate::Failed, writing->path, 0, "out of memory"});
    return nullptr;
  }
  [[maybe_unused]] Writing* const ownedByStream = writing.release();
  constexpr std::size_t kBufferSize = 1 << 16;
  std::setvbuf(stream, nullptr, _IOFBF, kBufferSize);
  return FileHandle(stream);
}

bool ObservedPlatform::exists(const CString& path) {
  const bool found = inner_.exists(path);
  journal_.lookedFor(platform::toUtf8(path), found);
  return found;
}

bool ObservedPlatform::removeFile(const CString& path) {
  const bool removed = inner_.removeFile(path);
  const int error = errno;
  if (removed)
    journal_.add({FileFate::Removed, platform::toUtf8(path), 0, {}});
  else
    journal_.add({FileFate::Failed, platform::toUtf8(path), 0, std::strerror(error)});
  return removed;
}

}  // namespace lvx::runtime
