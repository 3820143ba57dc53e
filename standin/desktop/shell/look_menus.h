#pragma once

#include <QObject>
#include <QString>

#include "desktop/plan/plan_look.h"

class QAction;
class QMenu;
class QSettings;

namespace lvx::desktop {

/// The choices of what the plan shows and how, in two menus: layers, and the look of the ground. Kept in the settings.
class LookMenus : public QObject {
  Q_OBJECT
 public:
  /// Fills both menus; all three outlive it.
  LookMenus(QMenu& layers, QMenu& surface, QSettings& settings);

  /// As chosen; whether it is dark isn't chosen here.
  [[nodiscard]] const PlanLook& look() const { return look_; }

 Q_SIGNALS:
  void changed();

 private:
  QAction* addSwitch(QMenu& menu, const char* name, const QString& text, bool PlanLook::*part);
  void addSurfaceLooks(QMenu& menu);
  void addContours(QMenu& menu);
  void askInterval();
  void setInterval(double interval);
  void showInterval();

  QSettings& settings_;
  PlanLook look_;
  QAction* contours_ = nullptr;
  QAction* byScale_ = nullptr;
  QAction* typed_ = nullptr;
};

}  // namespace lvx::desktop
