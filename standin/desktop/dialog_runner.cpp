#include "desktop/dialog_runner.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>

#include "desktop/modal_windows.h"
#include "desktop/template_dialog.h"

namespace lvx::desktop {

namespace {

/// `place` moved so far that the whole window lies on the screen, which may have become smaller.
QPoint onScreen(QPoint place, const QWidget& window) {
  const QRect room = window.screen()->availableGeometry();
  return {std::clamp(place.x(), room.left(), std::max(room.left(), room.right() - window.width())),
          std::clamp(place.y(), room.top(), std::max(room.top(), room.bottom() - window.height()))};
}

}  // namespace

int QtDialogRunner::runModal(dialogs::DialogBehaviour& dialog, void* parent) {
  const std::string name(dialog.dialogTemplate().name);
  TemplateDialog window(dialog, modalParent(static_cast<QWidget*>(parent)));
  if (const auto place = places_.find(name); place != places_.end()) window.move(onScreen(place->second, window));
  // The place is taken when the window closes, also where an exception closed it.
  QObject::connect(&window, &QDialog::finished, &window, [this, &window, &name] { places_[name] = window.pos(); });
  return window.runModal();
}

void QtDialogRunner::closeAll() { giveUpModalWindows(); }

void QtDialogRunner::reopen() { allowModalWindows(); }

}  // namespace lvx::desktop
