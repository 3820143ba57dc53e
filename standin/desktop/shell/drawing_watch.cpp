#include "desktop/shell/drawing_watch.h"

#include <QFileInfo>

namespace lvx::desktop {

namespace {
constexpr int kSettle = 250;  // milliseconds in which a save of another program comes to rest
}

DrawingWatch::DrawingWatch(QObject* parent) : QObject(parent) {
  settle_.setSingleShot(true);
  settle_.setInterval(kSettle);
  connect(&settle_, &QTimer::timeout, this, &DrawingWatch::look);
  connect(&watcher_, &QFileSystemWatcher::fileChanged, &settle_, qOverload<>(&QTimer::start));
  // A file that is replaced or comes back shows in its folder.
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, &settle_, qOverload<>(&QTimer::start));
}

void DrawingWatch::watch(const QString& path, std::optional<FileStamp> stamp) {
  settle_.stop();
  if (const QStringList watched = watcher_.files() + watcher_.directories(); !watched.isEmpty())
    watcher_.removePaths(watched);
  path_ = path;
  stamp_ = seen_ = stamp;
  state_ = State::AsRead;
  if (path.isEmpty()) return;
  watcher_.addPath(path);
  watcher_.addPath(QFileInfo(path).absolutePath());
  settle_.start();  // what happened between reading and watching
}

void DrawingWatch::look() {
  if (path_.isEmpty()) return;
  const std::optional<FileStamp> now = stampOf(path_);
  if (now && !watcher_.files().contains(path_)) watcher_.addPath(path_);
  const State state = !now ? State::Vanished : now == stamp_ ? State::AsRead : State::Changed;
  const bool news = state != state_ || (state == State::Changed && now != seen_);
  state_ = state;
  seen_ = now;
  if (!news) return;
  switch (state) {
    case State::AsRead:
      Q_EMIT restored();
      break;
    case State::Changed:
      Q_EMIT changed();
      break;
    case State::Vanished:
      Q_EMIT vanished();
      break;
  }
}

}  // namespace lvx::desktop
