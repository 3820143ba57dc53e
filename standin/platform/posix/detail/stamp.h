#pragma once

#include <sys/stat.h>

#include "standin_platform/file_stamp.h"

namespace lvx::standin_platform {

[[nodiscard]] inline FileStamp stampFrom(const struct stat& status) {
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
          static_cast<std::uint64_t>(status.st_size), status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec};
}

}  // namespace lvx::standin_platform
