#include "desktop/dialogs/modal_windows.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <vector>

namespace lvx::desktop {

namespace {

bool refused = false;

}  // namespace

void giveUpModalWindows() {
  refused = true;
  while (QWidget* const popup = QApplication::activePopupWidget()) {
    popup->close();
    if (popup == QApplication::activePopupWidget()) break;  // it won't go; the dialog behind it goes all the same
  }
  std::vector<QPointer<QDialog>> open;
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (auto* const dialog = qobject_cast<QDialog*>(window); dialog != nullptr && dialog->isModal())
      open.emplace_back(dialog);
  for (const QPointer<QDialog>& dialog : open)
    if (dialog && dialog->isVisible()) dialog->reject();
}

void allowModalWindows() { refused = false; }

bool areModalWindowsRefused() { return refused; }

QWidget* modalParent(QWidget* wanted) {
  QWidget* const open = QApplication::activeModalWidget();
  return open != nullptr ? open : wanted;
}

void returnToOwner(QWidget* owner) {
  if (owner != nullptr && owner->window()->isVisible() && !refused) owner->activateWindow();
}

}  // namespace lvx::desktop
