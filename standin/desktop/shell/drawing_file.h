#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <optional>

#include "desktop/shell/drawing_watch.h"
#include "desktop/shell/file_stamp.h"

namespace lvx::standin_platform {
class HeldFile;
}

namespace lvx::desktop {

class SourceCopy;

/// A file behind the open drawing: held open and copied, so that what was read can be read again even where its name now
/// leads elsewhere or another program wrote over it, and watched for what other programs do to it. One for each file of a drawing.
class DrawingFile : public QObject {
  Q_OBJECT
 public:
  explicit DrawingFile(QObject* parent = nullptr);
  ~DrawingFile() override;

  /// Takes a file in place of the one before. `stamp`: as it stood when it was read or written; empty where it is gone
  /// since, which is told as vanished().
  void hold(const QString& path, std::optional<FileStamp> stamp);
  /// Empty before the first hold().
  [[nodiscard]] const QString& path() const { return path_; }
  /// Bytes as of hold(); 0 where it was gone.
  [[nodiscard]] quint64 size() const { return stamp_ ? stamp_->size : 0; }
  /// Another file stands under the name, or this one with other contents. False where none stands there.
  [[nodiscard]] bool isReplaced() const;
  /// A path that leads to what was read: its name; where that leads elsewhere or to other contents by now, the copy, or
  /// else what is held.
  [[nodiscard]] QString readablePath() const;

 Q_SIGNALS:
  /// By another program; see DrawingWatch.
  void changed();
  void vanished();
  void restored();

 private:
  QString path_;
  std::optional<FileStamp> stamp_;
  std::unique_ptr<standin_platform::HeldFile> held_;
  std::unique_ptr<SourceCopy> copy_;
  DrawingWatch watch_;
};

}  // namespace lvx::desktop
