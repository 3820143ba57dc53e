#pragma once

#include <QObject>
#include <atomic>
#include <thread>

#include "civil/surface_difference.h"

namespace lvx::desktop {

/// Reckons the difference of two surfaces beside the windows' thread, one at a time.
class DifferenceWork : public QObject {
  Q_OBJECT
 public:
  explicit DifferenceWork(QObject* parent = nullptr) : QObject(parent) {}
  /// Gives up what runs, and waits for that.
  ~DifferenceWork() override { stop(); }

  /// Ends with done() unless stop() comes first. Both surfaces stay where they are until then. What runs is given up.
  void start(const civil::TinSurface& existing, const civil::TinSurface& next);
  /// When it returns, nothing looks at the surfaces any more, and no signal comes.
  void stop();
  [[nodiscard]] bool isRunning() const { return isRunning_; }

 Q_SIGNALS:
  /// From 0 to 100.
  void progressed(int percent);
  void done(const civil::SurfaceDifference& difference);
  /// Without memory, or by what else the system refuses.
  void failed(const QString& reason);

 private:
  std::thread thread_;
  std::atomic<bool> isStopped_ = false;
  bool isRunning_ = false;
  /// Which run a message belongs to: those of a run that was given up are passed over.
  int run_ = 0;
};

}  // namespace lvx::desktop
