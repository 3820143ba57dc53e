#include "desktop/shell/look_menus.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QInputDialog>
#include <QLocale>
#include <QMenu>
#include <QSettings>
#include <algorithm>
#include <cmath>
#include <utility>

namespace lvx::desktop {

namespace {

// Names under which settings are kept.
constexpr const char* kLayers = "layers/";
constexpr const char* kSurface = "layers/surface";
constexpr const char* kInterval = "layers/contourInterval";
constexpr const char* kTypedInterval = "layers/typedContourInterval";

}  // namespace

LookMenus::LookMenus(QMenu& layers, QMenu& surface, QSettings& settings) : settings_(settings) {
  addSwitch(layers, "alignments", tr("&Alignments"), &PlanLook::alignments);
  addSwitch(layers, "stations", tr("S&tations"), &PlanLook::stations);
  addSwitch(layers, "sampleLines", tr("Sample &lines"), &PlanLook::sampleLines);
  addSwitch(layers, "points", tr("&Points"), &PlanLook::points);
  addSwitch(layers, "corridors", tr("&Corridors"), &PlanLook::corridors);

  addSurfaceLooks(surface);
  surface.addSeparator();
  addSwitch(surface, "triangles", tr("&Triangles when near"), &PlanLook::triangles);
  addSwitch(surface, "border", tr("&Border"), &PlanLook::border);
  surface.addSeparator();
  addContours(surface);
}

QAction* LookMenus::addSwitch(QMenu& menu, const char* name, const QString& text, bool PlanLook::*part) {
  const QString key = QLatin1String(kLayers) + QLatin1String(name);
  QAction* const action = menu.addAction(text);
  action->setObjectName(QStringLiteral("layer-") + QLatin1String(name));
  action->setCheckable(true);
  action->setChecked(settings_.value(key, look_.*part).toBool());
  look_.*part = action->isChecked();
  connect(action, &QAction::toggled, this, [this, key, part](bool on) {
    look_.*part = on;
    settings_.setValue(key, on);
    Q_EMIT changed();
  });
  return action;
}

void LookMenus::addContours(QMenu& menu) {
  contours_ = addSwitch(menu, "contours", tr("C&ontours"), &PlanLook::contours);
  look_.contourInterval = std::max(0.0, settings_.value(QLatin1String(kInterval), 0.0).toDouble());
  if (!std::isfinite(look_.contourInterval)) look_.contourInterval = 0.0;
  auto* const intervals = new QActionGroup(this);
  byScale_ = intervals->addAction(tr("Interval by the &scale"));
  byScale_->setObjectName(QStringLiteral("contoursByScale"));
  typed_ = intervals->addAction(QString());
  typed_->setObjectName(QStringLiteral("contourInterval"));
  for (QAction* const action : intervals->actions()) {
    action->setCheckable(true);
    menu.addAction(action);
  }
  showInterval();
  connect(byScale_, &QAction::triggered, this, [this] { setInterval(0.0); });
  // From the event loop: it waits for the user, on no menu's.
  connect(typed_, &QAction::triggered, this, &LookMenus::askInterval, Qt::QueuedConnection);
}

void LookMenus::showInterval() {
  const bool isTyped = look_.contourInterval > 0.0;
  typed_->setText(isTyped ? tr("&Interval %1…").arg(QLocale().toString(look_.contourInterval)) : tr("&Interval…"));
  (isTyped ? typed_ : byScale_)->setChecked(true);
}

void LookMenus::setInterval(double interval) {
  look_.contourInterval = interval;
  settings_.setValue(QLatin1String(kInterval), interval);
  showInterval();
  // Who chooses an interval wants to see it.
  if (!look_.contours) return contours_->setChecked(true);
  Q_EMIT changed();
}

void LookMenus::askInterval() {
  constexpr double kLeast = 0.01;
  constexpr double kMost = 10'000.0;
  constexpr int kDecimals = 3;
  bool isAccepted = false;
  const double before = look_.contourInterval > 0.0 ? look_.contourInterval
                                                    : settings_.value(QLatin1String(kTypedInterval), 1.0).toDouble();
  const double interval = QInputDialog::getDouble(QApplication::activeWindow(), tr("Contours"),
                                                  tr("Interval between contours, in units of the drawing:"), before,
                                                  kLeast, kMost, kDecimals, &isAccepted);
  if (!isAccepted) return showInterval();
  settings_.setValue(QLatin1String(kTypedInterval), interval);
  setInterval(interval);
}

void LookMenus::addSurfaceLooks(QMenu& menu) {
  auto* const looks = new QActionGroup(this);
  const std::pair<SurfaceLook, QString> choices[] = {{SurfaceLook::Relief, tr("&Relief")},
                                                     {SurfaceLook::Heights, tr("&Heights")},
                                                     {SurfaceLook::None, tr("&Nothing")}};
  const int kept = settings_.value(QLatin1String(kSurface), static_cast<int>(look_.surface)).toInt();
  for (const auto& [look, text] : choices) {
    QAction* const action = menu.addAction(text);
    action->setObjectName(QStringLiteral("surface-%1").arg(static_cast<int>(look)));
    action->setCheckable(true);
    looks->addAction(action);
    if (static_cast<int>(look) == kept) {
      look_.surface = look;
      action->setChecked(true);
    }
    connect(action, &QAction::triggered, this, [this, chosen = look] {
      look_.surface = chosen;
      settings_.setValue(QLatin1String(kSurface), static_cast<int>(chosen));
      Q_EMIT changed();
    });
  }
  if (looks->checkedAction() == nullptr) looks->actions().front()->setChecked(true);
}

}  // namespace lvx::desktop
