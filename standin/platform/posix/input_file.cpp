#include "standin_platform/input_file.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "standin_platform/posix/detail/descriptor.h"
#include "standin_platform/posix/detail/stamp.h"

namespace lvx::standin_platform {

struct InputFile::State {
  Descriptor file;
};

InputFile::InputFile(const std::filesystem::path& path) : state_(std::make_unique<State>()) {
  state_->file = Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!state_->file.isOpen() || ::fstat(state_->file.number(), &status) != 0)
    throw std::system_error(lastError(), path.string());
  kind_ = S_ISREG(status.st_mode) ? Kind::Regular : S_ISDIR(status.st_mode) ? Kind::Folder : Kind::Other;
  stamp_ = stampFrom(status);
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
