#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>
#include <optional>

#include "desktop/shell/file_stamp.h"

namespace lvx::desktop {

/// Watches the open drawing's file and tells when another program changes it or takes it away. A file that is replaced by
/// another under its name (as editors save) counts as changed.
class DrawingWatch : public QObject {
  Q_OBJECT
 public:
  explicit DrawingWatch(QObject* parent = nullptr);
  /// Watches a file that stands as `stamp` says; empty path: none.
  void watch(const QString& path, std::optional<FileStamp> stamp);

 Q_SIGNALS:
  void changed();
  void vanished();
  /// It stands again as it did.
  void restored();

 private:
  enum class State { AsRead, Changed, Vanished };
  void look();

  QFileSystemWatcher watcher_;
  QTimer settle_;
  QString path_;
  std::optional<FileStamp> stamp_;
  std::optional<FileStamp> seen_;
  State state_ = State::AsRead;
};

}  // namespace lvx::desktop
