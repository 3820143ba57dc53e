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
  // Folders on the way to it may be there, and be links.
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::weakly_canonical(std::filesystem::absolute(a, error), error);
  return !error && whole == std::filesystem::weakly_canonical(std::filesystem::absolute(b, error), error) && !error;
}

}  // namespace lvx::standin_platform
