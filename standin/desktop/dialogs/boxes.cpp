#include "desktop/dialogs/boxes.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>

#include "desktop/common/file_boxes.h"
#include "desktop/dialogs/modal_windows.h"

namespace lvx::desktop {

namespace {

host::BoxAnswer answerOnGivingUp(host::BoxButtons buttons) {
  switch (buttons) {
    case host::BoxButtons::YesNo:
      return host::BoxAnswer::No;
    case host::BoxButtons::RetryCancel:
      return host::BoxAnswer::Cancel;
    case host::BoxButtons::Ok:
      break;
  }
  return host::BoxAnswer::Ok;
}

QMessageBox::StandardButtons standardButtons(host::BoxButtons buttons) {
  switch (buttons) {
    case host::BoxButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case host::BoxButtons::RetryCancel:
      return QMessageBox::Retry | QMessageBox::Cancel;
    case host::BoxButtons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

QMessageBox::Icon standardIcon(host::BoxIcon icon) {
  switch (icon) {
    case host::BoxIcon::Stop:
      return QMessageBox::Critical;
    case host::BoxIcon::Question:
      return QMessageBox::Question;
    case host::BoxIcon::Warning:
      return QMessageBox::Warning;
    case host::BoxIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

Qt::WindowModality modalityOver(const QWidget* parent) {
  return parent != nullptr ? Qt::WindowModal : Qt::ApplicationModal;
}

/// Asks about a file that isn't there before it takes it.
class SaveDialog final : public QFileDialog {
 public:
  SaveDialog(QWidget* parent, bool promptsCreate) : QFileDialog(parent), promptsCreate_(promptsCreate) {}

  void done(int result) override {
    if (result == Accepted && promptsCreate_ && !confirmCreation()) return;
    QFileDialog::done(result);
  }

 private:
  bool confirmCreation() {
    const QStringList chosen = selectedFiles();
    if (chosen.isEmpty() || QFileInfo::exists(chosen.front())) return true;
    const QString question = QCoreApplication::translate("SaveBox", "%1\nThis file doesn't exist. Create it?")
                                 .arg(QDir::toNativeSeparators(chosen.front()));
    return showMessageBox(this, question, host::BoxButtons::YesNo, host::BoxIcon::Question) == host::BoxAnswer::Yes;
  }

  bool promptsCreate_;
};

}  // namespace

host::BoxAnswer showMessageBox(QWidget* parent, const QString& text, host::BoxButtons buttons, host::BoxIcon icon) {
  if (areModalWindowsRefused()) return answerOnGivingUp(buttons);
  QWidget* const owner = modalParent(parent);
  QMessageBox box(owner);
  box.setObjectName(QStringLiteral("messageBox"));
  box.setWindowModality(modalityOver(owner));
  box.setWindowTitle(QGuiApplication::applicationDisplayName());
  box.setTextFormat(Qt::PlainText);
  box.setText(text);
  box.setTextInteractionFlags(Qt::TextSelectableByMouse);
  box.setIcon(standardIcon(icon));
  box.setStandardButtons(standardButtons(buttons));
  switch (buttons) {
    case host::BoxButtons::YesNo:
      box.setDefaultButton(QMessageBox::Yes);
      box.setEscapeButton(QMessageBox::No);
      break;
    case host::BoxButtons::RetryCancel:
      box.setDefaultButton(QMessageBox::Retry);
      box.setEscapeButton(QMessageBox::Cancel);
      break;
    case host::BoxButtons::Ok:
      break;
  }
  box.exec();
  returnToOwner(owner);
  const QAbstractButton* clicked = box.clickedButton();
  if (clicked != nullptr && clicked == box.button(QMessageBox::Yes)) return host::BoxAnswer::Yes;
  if (clicked != nullptr && clicked == box.button(QMessageBox::Retry)) return host::BoxAnswer::Retry;
  return answerOnGivingUp(buttons);
}

QStringList nameFilters(const QString& filter) {
  QStringList filters;
  const QStringList parts = filter.split(u'|');
  for (qsizetype at = 0; at + 1 < parts.size() && !parts[at].isEmpty(); at += 2) {
    QString label = parts[at];
    // Labels name their pattern by custom; the file dialog adds it itself, in its own spelling.
    if (const QString named = QStringLiteral("(%1)").arg(parts[at + 1]); label.endsWith(named))
      label.chop(named.size());
    QStringList patterns;
    for (const QString& pattern : parts[at + 1].split(u';', Qt::SkipEmptyParts))
      patterns += pattern.trimmed() == QStringLiteral("*.*") ? QStringLiteral("*") : pattern.trimmed();
    filters += QStringLiteral("%1 (%2)").arg(label.trimmed(), patterns.join(u' '));
  }
  return filters;
}

std::optional<QString> askSavePath(QWidget* parent, const QString& filter, std::uint32_t flags) {
  if (areModalWindowsRefused()) return std::nullopt;
  QWidget* const owner = modalParent(parent);
  SaveDialog box(owner, (flags & host::kPromptCreate) != 0);
  listByName(box);
  box.setObjectName(QStringLiteral("saveBox"));
  box.setWindowModality(modalityOver(owner));
  box.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite);
  box.setAcceptMode(QFileDialog::AcceptSave);
  box.setFileMode(QFileDialog::AnyFile);
  if (const QStringList filters = nameFilters(filter); !filters.isEmpty()) box.setNameFilters(filters);
  box.setDirectory(startFolder(FilePurpose::Report));
  const bool accepted = box.exec() == QDialog::Accepted;
  returnToOwner(owner);
  if (!accepted || box.selectedFiles().isEmpty()) return std::nullopt;
  const QString chosen = box.selectedFiles().front();
  rememberFolderOf(FilePurpose::Report, chosen);
  return QDir::toNativeSeparators(chosen);
}

}  // namespace lvx::desktop
