#include "standin_platform/posix/detail/descriptor.h"

#include <cerrno>

#include <unistd.h>

namespace lvx::standin_platform {

std::error_code lastError() { return {errno, std::system_category()}; }

bool Descriptor::close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

bool Descriptor::flushToDisk() const {
  int result = 0;
  do {
    result = ::fsync(number_);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

std::error_code Descriptor::write(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = ::write(number_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return lastError();
    if (count == 0) return std::make_error_code(std::errc::io_error);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return {};
}

}  // namespace lvx::standin_platform
