#include "desktop/shell/file_stamp.h"

#include <QFile>

namespace lvx::desktop {

std::optional<FileStamp> stampOf(const QString& path) {
  return standin_platform::stampOf(QFile::encodeName(path).toStdString());
}

}  // namespace lvx::desktop
