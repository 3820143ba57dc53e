#pragma once

#include <QObject>
#include <QString>

#include "desktop/shell/drawing_sources.h"

class QMenu;
class QSettings;

namespace lvx::desktop {

/// The drawings that the user opened or saved last, at most ten, the latest first; and the folder that file boxes start
/// in. A drawing of several files is one of them. Kept in the settings.
class RecentDrawings : public QObject {
  Q_OBJECT
 public:
  /// `settings` outlives it.
  explicit RecentDrawings(QSettings& settings, QObject* parent = nullptr);

  /// The drawing becomes the first, and the folder of its first file the one to start in. Drawings of the same files are
  /// one; `replaced` gives its place up, such as a drawing that got one more file.
  void remember(const DrawingSources& drawing, const DrawingSources& replaced = {});
  [[nodiscard]] QList<DrawingSources> drawings() const;
  /// The first of a drawing's files that isn't there; empty where all are.
  [[nodiscard]] static QString missingFile(const DrawingSources& drawing);
  /// Where the user was last; at first the home folder.
  [[nodiscard]] QString folder() const;
  /// Fills a menu anew each time it opens; files that are gone stand in it grey.
  void offerIn(QMenu& menu);

 Q_SIGNALS:
  /// From the event loop, after the menu has closed.
  void chosen(const lvx::desktop::DrawingSources& drawing);

 private:
  void fill(QMenu& menu);
  void forgetMissing();
  void keep(const QList<DrawingSources>& drawings);

  QSettings& settings_;
};

}  // namespace lvx::desktop
