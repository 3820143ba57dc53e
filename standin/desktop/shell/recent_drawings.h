#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class QMenu;
class QSettings;

namespace lvx::desktop {

/// The drawings that the user opened or saved last, at most ten, the latest first; and the folder that file boxes start
/// in. Kept in the settings.
class RecentDrawings : public QObject {
  Q_OBJECT
 public:
  /// `settings` outlives it.
  explicit RecentDrawings(QSettings& settings, QObject* parent = nullptr);

  /// `path` is absolute. It becomes the first, and its folder the one to start in.
  void remember(const QString& path);
  [[nodiscard]] QStringList paths() const;
  /// Where the user was last; at first the home folder.
  [[nodiscard]] QString folder() const;
  /// Fills a menu anew each time it opens; files that are gone stand in it grey.
  void offerIn(QMenu& menu);

 Q_SIGNALS:
  /// From the event loop, after the menu has closed.
  void chosen(const QString& path);

 private:
  void fill(QMenu& menu);
  void forgetMissing();

  QSettings& settings_;
};

}  // namespace lvx::desktop
