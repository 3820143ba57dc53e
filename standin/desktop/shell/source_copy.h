#pragma once

#include <QString>
#include <atomic>
#include <memory>
#include <optional>
#include <thread>

#include "desktop/shell/file_stamp.h"

class QTemporaryFile;

namespace lvx::standin_platform {
class HeldFile;
}

namespace lvx::desktop {

/// A copy of a file as it was read, made beside the windows in the user's cache folder under no name that stays: saving
/// needs the source's bytes, and another program may write over them while the drawing is open.
class SourceCopy {
 public:
  /// Begins to copy `path` as far as it still stands as `stamp` tells.
  SourceCopy(const QString& path, const FileStamp& stamp);
  SourceCopy(const SourceCopy&) = delete;
  SourceCopy& operator=(const SourceCopy&) = delete;
  /// Ends the copying, and the copy.
  ~SourceCopy();

  /// A path by which this program can read the copy, while this object lives; waits until it is whole. Empty where there
  /// is none: no room, or the file was changed before it was copied.
  [[nodiscard]] std::optional<QString> path() const;

 private:
  void copy(const QString& from, const FileStamp& stamp);

  std::unique_ptr<QTemporaryFile> file_;
  std::unique_ptr<standin_platform::HeldFile> held_;
  std::atomic<bool> cancelled_ = false;
  bool isWhole_ = false;
  mutable std::thread thread_;
};

}  // namespace lvx::desktop
