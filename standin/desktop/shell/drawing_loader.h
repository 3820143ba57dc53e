#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "desktop/shell/drawing_sources.h"
#include "desktop/shell/file_stamp.h"
#include "runtime/open_drawing.h"

namespace lvx::view {
class PlanScene;
}

namespace lvx::desktop {

/// A drawing read and made ready to be shown.
struct LoadedDrawing {
  runtime::OpenDrawingRef drawing;
  /// Points into the drawing, so it goes first.
  std::shared_ptr<view::PlanScene> scene;
  /// In the order of the drawing's files.
  DrawingSources sources;
  /// Of each file just before it was read.
  std::vector<std::optional<FileStamp>> stamps;
};

/// Why a drawing can't be opened.
struct LoadFailure {
  /// All that was to be read.
  DrawingSources sources;
  /// The file that is the reason.
  QString path;
  QString reason;    ///< a sentence, with the line of the file where there is one
  QString advice;    ///< what the user can do about it
  quint64 line = 0;  ///< 0: none
  /// The file's lengths are in `unit`, those of the first file in `drawingUnit`; converting would help.
  bool isUnitMismatch = false;
  QString unit;
  QString drawingUnit;
};

enum class FileOrder : std::uint8_t {
  AsGiven,
  AlignmentFirst,  ///< the files came in no order: see landxml::alignmentFirst
};

/// Reads drawings in a thread of its own, one at a time. All signals come in the thread of the loader.
class DrawingLoader : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;
  /// Cancels what runs and waits for its end.
  ~DrawingLoader() override;

  /// Begins to read; what ran before is cancelled. `sources` has a file.
  void start(const DrawingSources& sources, FileOrder order = FileOrder::AsGiven);
  /// Asks what runs to end; `cancelled` follows. Nothing happens where nothing runs.
  void cancel();
  [[nodiscard]] bool isRunning() const { return running_; }
  [[nodiscard]] const DrawingSources& sources() const { return sources_; }

 Q_SIGNALS:
  /// About 20 times a second, with the file that is being read or else the drawing's first. `total` 0: how much is left
  /// isn't known.
  void progressed(const QString& step, const QString& path, quint64 done, quint64 total);
  void loaded(const lvx::desktop::LoadedDrawing& drawing);
  void failed(const lvx::desktop::LoadFailure& failure);
  void cancelled();

 private:
  struct Outcome;
  void work(DrawingSources sources, FileOrder order, std::uint64_t run);
  void finish(std::uint64_t run, const std::shared_ptr<Outcome>& outcome);
  void join();

  std::thread thread_;
  std::atomic<bool> cancel_ = false;
  bool running_ = false;
  std::uint64_t run_ = 0;
  DrawingSources sources_;
};

}  // namespace lvx::desktop
