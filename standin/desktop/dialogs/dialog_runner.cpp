#include "desktop/dialogs/dialog_runner.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>

#include "desktop/dialogs/modal_windows.h"
#include "desktop/dialogs/template_dialog.h"

namespace lvx::desktop {

namespace {

/// `place` moved so far that the whole window lies on the screen, which may have become smaller.
QPoint onScreen(QPoint place, const QWidget& window) {
  const QRect room = window.screen()->availableGeometry();
  return {std::clamp(place.x(), room.left(), std::max(room.left(), room.right() - window.width())),
          std::clamp(place.y(), room.top(), std::max(room.top(), room.bottom() - window.height()))};
}

/// The place of `window`, frame and all, over the middle of `below`. Said outright, since window managers have ideas of
/// their own about a window that leaves its place to them.
QPoint middleOver(const QWidget& below, const QWidget& window) {
  const QRect outer = below.frameGeometry();
  const QSize frame = outer.size() - below.size();  // of the window below; the new one's isn't known yet
  return outer.topLeft() + QPoint((outer.width() - window.width() - frame.width()) / 2,
                                  (outer.height() - window.height() - frame.height()) / 2);
}

}  // namespace

int QtDialogRunner::runModal(host::DialogBehaviour& dialog, void* parent) {
  const std::string name(dialog.dialogTemplate().name);
  QWidget* const below = modalParent(static_cast<QWidget*>(parent));
  TemplateDialog window(dialog, below);
  if (const auto place = places_.find(name); place != places_.end())
    window.move(onScreen(place->second, window));
  else if (below != nullptr)
    window.move(onScreen(middleOver(*below->window(), window), window));
  // The place is taken when the window closes, also where an exception closed it.
  QObject::connect(&window, &QDialog::finished, &window, [this, &window, &name, below] {
    places_[name] = window.pos();
    returnToOwner(below);
  });
  return window.runModal();
}

void QtDialogRunner::closeAll() { giveUpModalWindows(); }

void QtDialogRunner::reopen() { allowModalWindows(); }

}  // namespace lvx::desktop
