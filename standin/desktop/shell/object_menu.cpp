#include "desktop/shell/object_menu.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>
#include <QMenu>
#include <QStringList>

#include "desktop/common/qt_text.h"
#include "desktop/shell/drawing_views.h"
#include "desktop/shell/session.h"
#include "text/number_text.h"

namespace lvx::desktop {

QString ObjectMenu::coordinates(civil::Vec2 place, std::optional<double> elevation) {
  QStringList numbers{toQt(text::fixedText(place.x)), toQt(text::fixedText(place.y))};
  if (elevation) numbers << toQt(text::fixedText(*elevation));
  return numbers.join(QLatin1Char('\t')).replace(QLatin1Char('.'), QLocale::system().decimalPoint());
}

void ObjectMenu::offerIn(QMenu& menu, civil::Handle handle, std::optional<QPointF> place) {
  if (!session_.drawing()) return;
  const auto entry = session_.drawing()->index().byHandle(handle);
  if (!entry && !place) return;
  QAction* const first = menu.actions().value(0);
  const auto add = [&](const char* name, const QString& text, auto work) {
    auto* const action = new QAction(text, &menu);
    action->setObjectName(QLatin1String(name));
    connect(action, &QAction::triggered, this, work);
    menu.insertAction(first, action);
  };
  if (entry)
    add("menuProperties", tr("P&roperties"), [this, handle] {
      views_.selection().select(handle, this);
      views_.raiseProperties();
    });
  add("menuZoom", tr("&Zoom here"), [this, isObject = entry.has_value(), handle, place] {
    if (isObject)
      views_.zoomTo(handle);
    else
      views_.showPlace({place->x(), place->y(), place->x(), place->y()});
  });
  const civil::Point* const point = entry ? entry->as<civil::Point>() : nullptr;
  if (point != nullptr || place) {
    const QString text = point == nullptr
                             ? coordinates({place->x(), place->y()})
                             : coordinates({point->position.x, point->position.y},
                                           point->hasElevation ? std::optional(point->position.z) : std::nullopt);
    add("menuCopyCoordinates", tr("&Copy coordinates"), [text] { QGuiApplication::clipboard()->setText(text); });
  }
  if (entry && views_.visibility().canHide(handle))
    add("menuHide", tr("&Hide"), [this, handle] { views_.visibility().hide(handle); });
  if (first != nullptr) menu.insertSeparator(first);
}

}  // namespace lvx::desktop
