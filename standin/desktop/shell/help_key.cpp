#include "desktop/shell/help_key.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QWindow>
#include <utility>

#include "host/dialog_controls.h"

namespace lvx::desktop {

HelpKey::HelpKey(std::function<void()> showContents) : showContents_(std::move(showContents)) {
  QApplication::instance()->installEventFilter(this);
}

HelpKey::~HelpKey() { QApplication::instance()->removeEventFilter(this); }

bool HelpKey::eventFilter(QObject* target, QEvent* event) {
  if (event->type() == QEvent::Polish) {
    auto* const box = qobject_cast<QDialog*>(target);
    const bool isModal = qobject_cast<QMessageBox*>(box) != nullptr || qobject_cast<QFileDialog*>(box) != nullptr;
    if (isModal && box->parentWidget() != nullptr) {
      box->setWindowModality(Qt::WindowModal);
      // Its window may have heard otherwise already.
      if (QWindow* const window = box->windowHandle()) window->setModality(Qt::WindowModal);
    }
    return false;
  }
  if (event->type() != QEvent::KeyPress) return false;
  const auto* const key = static_cast<QKeyEvent*>(event);
  auto* const dialog = qobject_cast<QDialog*>(QApplication::activeWindow());
  if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier || dialog == nullptr || !target->isWidgetType())
    return false;
  auto* const help = dialog->findChild<QAbstractButton*>(QStringLiteral("control%1").arg(host::kIdHelp));
  if (help != nullptr)
    help->click();
  else
    showContents_();
  return true;
}

}  // namespace lvx::desktop
