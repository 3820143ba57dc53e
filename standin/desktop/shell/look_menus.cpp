#include "desktop/shell/look_menus.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QSettings>
#include <utility>

namespace lvx::desktop {

namespace {

// Names under which settings are kept.
constexpr const char* kLayers = "layers/";
constexpr const char* kSurface = "layers/surface";

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
}

void LookMenus::addSwitch(QMenu& menu, const char* name, const QString& text, bool PlanLook::*part) {
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
