#include "standin_platform/file_stamp.h"

#include "standin_platform/posix/detail/stamp.h"

namespace lvx::standin_platform {

std::optional<FileStamp> stampOf(const std::filesystem::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return stampFrom(status);
}

}  // namespace lvx::standin_platform
