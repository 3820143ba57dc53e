#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/shell/drawing_file.h"

namespace lvx::desktop {

/// All files behind the open drawing, by their numbers in it. See DrawingFile.
class DrawingFileSet : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  /// Takes files in place of those before; a stamp for each.
  void hold(const QStringList& paths, const std::vector<std::optional<FileStamp>>& stamps);
  /// One of them was written anew, under its own name or another.
  void holdAgain(std::size_t file, const QString& path);
  [[nodiscard]] std::size_t size() const { return files_.size(); }
  [[nodiscard]] const DrawingFile& at(std::size_t file) const { return *files_[file].file; }

 Q_SIGNALS:
  // By another program; see DrawingWatch.
  void changed(const QString& path);
  void vanished(const QString& path);
  /// All of them stand as they were read or written.
  void restored();

 private:
  enum class State { AsHeld, Changed, Vanished };
  struct Held {
    std::unique_ptr<DrawingFile> file;
    State state = State::AsHeld;
  };

  void watch(std::size_t number);
  void note(std::size_t number, State state);

  std::vector<Held> files_;
};

}  // namespace lvx::desktop
