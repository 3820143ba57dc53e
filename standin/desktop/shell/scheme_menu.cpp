#include "desktop/shell/scheme_menu.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QSettings>
#include <utility>

namespace lvx::desktop {

namespace {
constexpr const char* kSchemeKey = "window/scheme";  // under which it is kept
}

SchemeMenu::SchemeMenu(QMenu& menu, QSettings& settings, std::optional<Scheme> asked)
    : settings_(settings), asked_(asked), schemes_(new QActionGroup(this)) {
  const std::pair<Scheme, QString> schemes[] = {
      {Scheme::System, tr("As the &system")}, {Scheme::Light, tr("&Light")}, {Scheme::Dark, tr("&Dark")}};
  for (const auto& [scheme, text] : schemes) {
    QAction* const action = menu.addAction(text);
    action->setObjectName(QStringLiteral("scheme-") + schemeName(scheme));
    action->setCheckable(true);
    action->setData(schemeName(scheme));
    schemes_->addAction(action);
    connect(action, &QAction::triggered, this, [this, wanted = scheme] { set(wanted); });
  }
}

void SchemeMenu::start() {
  const std::optional<Scheme> kept = schemeOf(settings_.value(QLatin1String(kSchemeKey)).toString());
  set(asked_.value_or(kept.value_or(Scheme::System)));
}

void SchemeMenu::set(Scheme scheme) {
  applyScheme(scheme);
  for (QAction* const action : schemes_->actions()) action->setChecked(action->data().toString() == schemeName(scheme));
  if (!asked_ || *asked_ != scheme) settings_.setValue(QLatin1String(kSchemeKey), schemeName(scheme));
  Q_EMIT changed();
}

}  // namespace lvx::desktop
