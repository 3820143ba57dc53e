#include "desktop/shell/source_copy.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryFile>

#include "standin_platform/held_file.h"

namespace lvx::desktop {

namespace {

/// On a disk where there is one: the system's folder for temporary files often takes memory.
QString folderForCopies() {
  const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  const QString own = cache + QStringLiteral("/lvxhost");
  return !cache.isEmpty() && QDir().mkpath(own) ? own : QDir::tempPath();
}

}  // namespace

SourceCopy::SourceCopy(const QString& path, const FileStamp& stamp)
    : file_(std::make_unique<QTemporaryFile>(folderForCopies() + QStringLiteral("/drawing-XXXXXX"))),
      thread_(&SourceCopy::copy, this, path, stamp) {}

SourceCopy::~SourceCopy() {
  cancelled_ = true;
  if (thread_.joinable()) thread_.join();
}

void SourceCopy::copy(const QString& from, const FileStamp& stamp) {
  constexpr qint64 kPiece = qint64{1} << 20;
  QFile source(from);
  if (stampOf(from) != stamp || !source.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || !file_->open()) return;
  while (!cancelled_) {
    const QByteArray piece = source.read(kPiece);
    if (piece.isEmpty()) break;
    if (file_->write(piece) != piece.size()) return;
  }
  // What was written over while it was copied is a mixture.
  isWhole_ = !cancelled_ && source.error() == QFile::NoError && file_->flush() && stampOf(from) == stamp;
  if (!isWhole_) return;
  // Without a name nothing of it stays, however the program ends; where an open file can't lose its name, its end takes it.
  held_ = std::make_unique<standin_platform::HeldFile>(QFile::encodeName(file_->fileName()).toStdString());
  QFile::remove(file_->fileName());
}

std::optional<QString> SourceCopy::path() const {
  if (thread_.joinable()) thread_.join();
  if (!isWhole_) return std::nullopt;
  const auto path = held_->path();
  return path ? std::optional(QFile::decodeName(QByteArray::fromStdString(path->string()))) : std::nullopt;
}

}  // namespace lvx::desktop
