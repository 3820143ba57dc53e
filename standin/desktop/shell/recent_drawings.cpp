#include "desktop/shell/recent_drawings.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSettings>

namespace lvx::desktop {

namespace {

constexpr int kRecentDrawings = 10;

// Names under which settings are kept.
constexpr const char* kRecent = "drawings/recent";
constexpr const char* kFolder = "drawings/folder";

}  // namespace

RecentDrawings::RecentDrawings(QSettings& settings, QObject* parent) : QObject(parent), settings_(settings) {}

void RecentDrawings::remember(const QString& path) {
  QStringList recent = paths();
  recent.removeAll(path);
  recent.prepend(path);
  while (recent.size() > kRecentDrawings) recent.removeLast();
  settings_.setValue(QLatin1String(kRecent), recent);
  settings_.setValue(QLatin1String(kFolder), QFileInfo(path).absolutePath());
}

QStringList RecentDrawings::paths() const { return settings_.value(QLatin1String(kRecent)).toStringList(); }

QString RecentDrawings::folder() const { return settings_.value(QLatin1String(kFolder), QDir::homePath()).toString(); }

void RecentDrawings::offerIn(QMenu& menu) {
  connect(&menu, &QMenu::aboutToShow, this, [this, &menu] { fill(menu); });
}

void RecentDrawings::fill(QMenu& menu) {
  menu.clear();
  const QStringList recent = paths();
  int number = 0;
  bool missing = false;
  for (const QString& path : recent) {
    const bool there = QFileInfo(path).isFile();
    missing = missing || !there;
    QAction* const action = menu.addAction(QStringLiteral("&%1  %2")
                                               .arg(++number % kRecentDrawings)
                                               .arg(QString(path).replace(QLatin1Char('&'), QStringLiteral("&&"))));
    action->setEnabled(there);
    action->setStatusTip(there ? path : tr("%1 isn't there any more").arg(path));
    connect(
        action, &QAction::triggered, this, [this, path] { Q_EMIT chosen(path); }, Qt::QueuedConnection);
  }
  if (recent.isEmpty()) menu.addAction(tr("No drawing was opened yet"))->setEnabled(false);
  if (!missing) return;
  menu.addSeparator();
  connect(menu.addAction(tr("&Remove those that are gone")), &QAction::triggered, this, &RecentDrawings::forgetMissing);
}

void RecentDrawings::forgetMissing() {
  QStringList kept = paths();
  erase_if(kept, [](const QString& path) { return !QFileInfo(path).isFile(); });
  settings_.setValue(QLatin1String(kRecent), kept);
}

}  // namespace lvx::desktop
