#include "standin_platform/append_file.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "standin_platform/posix/detail/descriptor.h"

namespace lvx::standin_platform {

struct AppendFile::State {
  Descriptor file;
};

AppendFile::AppendFile(const std::filesystem::path& path, bool isEmptied) : state_(std::make_unique<State>()) {
  constexpr int kUsual = 0666;
  state_->file = Descriptor(
      ::open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | (isEmptied ? O_TRUNC : 0), kUsual));
  if (!state_->file.isOpen()) throw std::system_error(lastError());
  struct stat status {};
  if (::fstat(state_->file.number(), &status) != 0) throw std::system_error(lastError());
  // A device or a pipe can't be read back.
  if (!S_ISREG(status.st_mode)) throw std::system_error(std::make_error_code(std::errc::invalid_argument));
}

AppendFile::AppendFile(AppendFile&& other) noexcept = default;
AppendFile::~AppendFile() = default;

bool AppendFile::endsWithLine() const {
  struct stat status {};
  if (::fstat(state_->file.number(), &status) != 0) throw std::system_error(lastError());
  if (status.st_size == 0) return true;
  char last = 0;
  if (::pread(state_->file.number(), &last, 1, status.st_size - 1) != 1) throw std::system_error(lastError());
  return last == '\n';
}

void AppendFile::append(std::string_view bytes) {
  if (const std::error_code error = state_->file.write(bytes)) throw std::system_error(error);
}

}  // namespace lvx::standin_platform
