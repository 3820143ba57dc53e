#include "desktop/shell/recent_drawings.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSettings>
#include <QStringList>

namespace lvx::desktop {

namespace {

constexpr int kRecentDrawings = 10;

// Names under which settings are kept.
constexpr const char* kRecent = "drawings/recent";
constexpr const char* kFolder = "drawings/folder";

}  // namespace

QString RecentDrawings::missingFile(const DrawingSources& drawing) {
  for (const SourceFile& file : drawing.files)
    if (!QFileInfo(file.path).isFile()) return file.path;
  return {};
}

RecentDrawings::RecentDrawings(QSettings& settings, QObject* parent) : QObject(parent), settings_(settings) {}

void RecentDrawings::remember(const DrawingSources& drawing, const DrawingSources& replaced) {
  QList<DrawingSources> recent = drawings();
  erase_if(recent,
           [&](const DrawingSources& known) { return known.files == drawing.files || known.files == replaced.files; });
  recent.prepend(drawing);
  while (recent.size() > kRecentDrawings) recent.removeLast();
  keep(recent);
  settings_.setValue(QLatin1String(kFolder), QFileInfo(drawing.files.front().path).absolutePath());
}

void RecentDrawings::keep(const QList<DrawingSources>& drawings) {
  QStringList texts;
  for (const DrawingSources& drawing : drawings) texts << drawing.toSetting();
  settings_.setValue(QLatin1String(kRecent), texts);
}

QList<DrawingSources> RecentDrawings::drawings() const {
  QList<DrawingSources> drawings;
  for (const QString& text : settings_.value(QLatin1String(kRecent)).toStringList())
    if (DrawingSources drawing = DrawingSources::fromSetting(text); !drawing.files.isEmpty()) drawings << drawing;
  return drawings;
}

QString RecentDrawings::folder() const { return settings_.value(QLatin1String(kFolder), QDir::homePath()).toString(); }

void RecentDrawings::offerIn(QMenu& menu) {
  connect(&menu, &QMenu::aboutToShow, this, [this, &menu] { fill(menu); });
}

void RecentDrawings::fill(QMenu& menu) {
  menu.clear();
  const QList<DrawingSources> recent = drawings();
  int number = 0;
  bool missing = false;
  for (const DrawingSources& drawing : recent) {
    const QString gone = missingFile(drawing);
    missing = missing || !gone.isEmpty();
    const QString words = QFileInfo(drawing.files.front().path).path() + QLatin1Char('/') + drawing.title();
    QAction* const action = menu.addAction(QStringLiteral("&%1  %2")
                                               .arg(++number % kRecentDrawings)
                                               .arg(QString(words).replace(QLatin1Char('&'), QStringLiteral("&&"))));
    action->setEnabled(gone.isEmpty());
    action->setStatusTip(gone.isEmpty() ? drawing.paths().join(QStringLiteral(" + "))
                                        : tr("%1 isn't there any more").arg(gone));
    connect(
        action, &QAction::triggered, this, [this, drawing] { Q_EMIT chosen(drawing); }, Qt::QueuedConnection);
  }
  if (recent.isEmpty()) menu.addAction(tr("No drawing was opened yet"))->setEnabled(false);
  if (!missing) return;
  menu.addSeparator();
  connect(menu.addAction(tr("&Remove those that are gone")), &QAction::triggered, this, &RecentDrawings::forgetMissing);
}

void RecentDrawings::forgetMissing() {
  QList<DrawingSources> kept = drawings();
  erase_if(kept, [](const DrawingSources& drawing) { return !missingFile(drawing).isEmpty(); });
  keep(kept);
}

}  // namespace lvx::desktop
