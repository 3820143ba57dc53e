#include "desktop/shell/file_stamp.h"

#include <QFile>

#include <sys/stat.h>

namespace lvx::desktop {

std::optional<FileStamp> stampOf(const QString& path) {
  struct stat status {};
  if (::stat(QFile::encodeName(path).constData(), &status) != 0) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return FileStamp{static_cast<std::uint64_t>(status.st_size),
                   status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec, status.st_ino};
}

}  // namespace lvx::desktop
