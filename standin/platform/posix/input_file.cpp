#include "standin_platform/input_file.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#ifdef __linux__
#include <sys/vfs.h>
#endif
#include <unistd.h>

#include "standin_platform/posix/detail/descriptor.h"
#include "standin_platform/posix/detail/stamp.h"

namespace lvx::standin_platform {

namespace {

class NoWriterCategory final : public std::error_category {
 public:
  [[nodiscard]] const char* name() const noexcept override { return "pipe"; }
  [[nodiscard]] std::string message(int /*value*/) const override { return "no program writes into the pipe"; }
};

/// True for a pipe that two programs share by descriptors: its writer was there from the begin.
bool isNameless([[maybe_unused]] int pipe) {
#ifdef __linux__
  constexpr long kPipes = 0x50495045;  // the file system of pipes without a name
  struct statfs system {};
  return ::fstatfs(pipe, &system) == 0 && system.f_type == kPipes;
#else
  return false;
#endif
}

/// Waits until somebody writes into a named pipe; a writer that never comes isn't waited for any longer.
void awaitWriter(int pipe) {
  constexpr int kTenSeconds = 10'000;
  pollfd ready{pipe, POLLIN, 0};
  const int count = ::poll(&ready, 1, kTenSeconds);
  if (count < 0) throw std::system_error(lastError());
  static const NoWriterCategory category;
  if (count == 0) throw std::system_error(std::error_code(1, category));
}

}  // namespace

struct InputFile::State {
  Descriptor file;
};

InputFile::InputFile(const std::filesystem::path& path) : state_(std::make_unique<State>()) {
  state_->file = Descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!state_->file.isOpen() || ::fstat(state_->file.number(), &status) != 0)
    throw std::system_error(lastError(), path.string());
  kind_ = S_ISREG(status.st_mode) ? Kind::Regular : S_ISDIR(status.st_mode) ? Kind::Folder : Kind::Other;
  stamp_ = stampFrom(status);
  if (S_ISFIFO(status.st_mode) && !isNameless(state_->file.number())) awaitWriter(state_->file.number());
  if (::fcntl(state_->file.number(), F_SETFL, 0) != 0) throw std::system_error(lastError(), path.string());
}

std::string InputFile::readAll() {
  std::string bytes;
  constexpr std::size_t kPiece = std::size_t{1} << 16;
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kPiece);
    const std::size_t count = read(bytes.data() + before, kPiece);
    bytes.resize(before + count);
    if (count < kPiece) return bytes;
  }
}

InputFile::~InputFile() = default;

std::size_t InputFile::read(char* to, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::read(state_->file.number(), to + done, size - done);
    if (count < 0) throw std::system_error(lastError());
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

std::size_t InputFile::readAt(std::uint64_t offset, char* to, std::size_t size) const {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::pread(state_->file.number(), to + done, size - done, static_cast<off_t>(offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw std::system_error(lastError());
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

}  // namespace lvx::standin_platform
