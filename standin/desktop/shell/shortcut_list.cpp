#include "desktop/shell/shortcut_list.h"

#include <QAction>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QVBoxLayout>
#include <memory>
#include <vector>

#include "desktop/common/qt_text.h"
#include "desktop/panels/value_table.h"
#include "properties/table.h"

namespace lvx::desktop {

namespace {

struct ShortcutList {
  Q_DECLARE_TR_FUNCTIONS(lvx::desktop::ShortcutList)
};

struct Shortcut {
  QString menu;
  QString action;
  QString keys;
};

/// Without access keys.
QString plain(QString text) {
  text.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
  return text.remove(QLatin1Char('&')).replace(QLatin1Char('\x01'), QLatin1Char('&'));
}

void collect(const QString& path, const QList<QAction*>& actions, std::vector<Shortcut>& into) {
  for (const QAction* const action : actions) {
    if (action->menu() != nullptr) {
      const QString title = plain(action->text());
      collect(path.isEmpty() ? title : QStringLiteral("%1 > %2").arg(path, title), action->menu()->actions(), into);
      continue;
    }
    QStringList keys;
    for (const QKeySequence& key : action->shortcuts()) keys << key.toString(QKeySequence::NativeText);
    if (!keys.isEmpty()) into.push_back({path, plain(action->text()), keys.join(QStringLiteral(", "))});
  }
}

}  // namespace

void showShortcuts(QMainWindow& window) {
  const auto shortcuts = std::make_shared<std::vector<Shortcut>>();
  collect({}, window.menuBar()->actions(), *shortcuts);
  properties::Table table;
  table.columns.assign(3, {properties::Term::Name, properties::Form::Text});
  table.rowCount = shortcuts->size();
  table.cell = [shortcuts](std::size_t row, std::size_t column) -> properties::Value {
    const Shortcut& shortcut = (*shortcuts)[row];
    return toUtf8(column == 0 ? shortcut.keys : column == 1 ? shortcut.action : shortcut.menu);
  };

  auto* const dialog = new QDialog(&window);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setObjectName(QStringLiteral("shortcutList"));
  dialog->setWindowTitle(ShortcutList::tr("Keyboard shortcuts"));
  auto* const view = new ValueTable;
  view->setObjectName(QStringLiteral("shortcutTable"));
  view->setAccessibleName(dialog->windowTitle());
  view->setTable(std::move(table), {ShortcutList::tr("Keys"), ShortcutList::tr("Action"), ShortcutList::tr("Menu")});
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
  auto* const layout = new QVBoxLayout(dialog);
  layout->addWidget(view, 1);
  layout->addWidget(buttons);
  constexpr QSize kUsualSize(620, 520);
  dialog->resize(kUsualSize);
  dialog->show();
  view->setFocus();
}

}  // namespace lvx::desktop
