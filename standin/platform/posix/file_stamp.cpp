#include "standin_platform/file_stamp.h"

#include <system_error>

#include "standin_platform/posix/detail/stamp.h"

namespace lvx::standin_platform {

std::optional<FileStamp> stampOf(const std::filesystem::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return stampFrom(status);
}

bool leadToOneFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  const auto first = stampOf(a);
  const auto second = stampOf(b);
  if (first || second) return first && second && first->isSameFile(*second);
  std::error_code error;
  const auto spelled = [&error](const std::filesystem::path& path) {
    std::filesystem::path whole = std::filesystem::absolute(path, error);
    return (error ? path : whole).lexically_normal();
  };
  return spelled(a) == spelled(b);
}

}  // namespace lvx::standin_platform
