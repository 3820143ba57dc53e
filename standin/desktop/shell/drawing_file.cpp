#include "desktop/shell/drawing_file.h"

#include <QFile>

#include "desktop/shell/source_copy.h"
#include "standin_platform/held_file.h"

namespace lvx::desktop {

DrawingFile::DrawingFile(QObject* parent) : QObject(parent) {
  connect(&watch_, &DrawingWatch::changed, this, &DrawingFile::changed);
  connect(&watch_, &DrawingWatch::vanished, this, &DrawingFile::vanished);
  connect(&watch_, &DrawingWatch::restored, this, &DrawingFile::restored);
}

DrawingFile::~DrawingFile() = default;

void DrawingFile::hold(const QString& path, std::optional<FileStamp> stamp) {
  path_ = path;
  stamp_ = stamp;
  held_ = std::make_unique<standin_platform::HeldFile>(QFile::encodeName(path).toStdString());
  copy_ = stamp_ ? std::make_unique<SourceCopy>(path, *stamp_) : nullptr;
  watch_.watch(path, stamp_);
}

bool DrawingFile::isReplaced() const {
  const std::optional<FileStamp> now = stampOf(path_);
  return now && now != stamp_;
}

QString DrawingFile::readablePath() const {
  if (stampOf(path_) == stamp_) return path_;
  if (const auto copied = copy_ ? copy_->path() : std::nullopt) return *copied;
  const auto held = held_ ? held_->path() : std::nullopt;
  return held ? QFile::decodeName(QByteArray::fromStdString(held->string())) : path_;
}

}  // namespace lvx::desktop
