#pragma once

#include <QObject>
#include <optional>

#include "desktop/common/scheme.h"

class QActionGroup;
class QMenu;
class QSettings;

namespace lvx::desktop {

/// The choice of light and dark colours in a menu. Kept in the settings.
class SchemeMenu : public QObject {
  Q_OBJECT
 public:
  /// Fills `menu`; it and `settings` outlive this. What the command line asks for (`asked`) counts for this run alone.
  SchemeMenu(QMenu& menu, QSettings& settings, std::optional<Scheme> asked);

  /// Applies what was asked for, else what was kept, else the system's; emits changed().
  void start();

 Q_SIGNALS:
  void changed();

 private:
  void set(Scheme scheme);

  QSettings& settings_;
  std::optional<Scheme> asked_;
  QActionGroup* schemes_;
};

}  // namespace lvx::desktop
