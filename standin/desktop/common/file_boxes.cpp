#include "desktop/common/file_boxes.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <QMessageBox>
#include <QPushButton>

namespace lvx::desktop {

namespace {

struct Folders {
  QString drawing;
  QHash<int, QString> last;
};

Folders& folders() {
  static Folders all;
  return all;
}

QString filterOf(const FileForm& form) {
  QStringList patterns;
  for (const QString& ending : form.endings) patterns << QStringLiteral("*.") + ending;
  return QStringLiteral("%1 (%2)").arg(form.name, patterns.isEmpty() ? QStringLiteral("*") : patterns.join(u' '));
}

}  // namespace

QString startFolder(FilePurpose purpose) {
  for (const QString& folder : {folders().last.value(static_cast<int>(purpose)), folders().drawing})
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
  return QDir::homePath();
}

void rememberFolderOf(FilePurpose purpose, const QString& file) {
  folders().last.insert(static_cast<int>(purpose), QFileInfo(file).absolutePath());
}

void setDrawingFolder(const QString& folder) {
  folders().drawing = folder;
  folders().last.clear();
}

QString withEnding(const QString& name, const FileForm& form, const QList<FileForm>& forms) {
  const QString present = QFileInfo(name).suffix();
  for (const FileForm& known : forms)
    if (known.endings.contains(present, Qt::CaseInsensitive)) return name;
  if (form.endings.isEmpty()) return name;
  return (name.endsWith(u'.') ? name.chopped(1) : name) + u'.' + form.endings.front();
}

bool asksToReplace(QWidget* parent, const QString& path) {
  QMessageBox box(QMessageBox::Question, QCoreApplication::translate("FileBoxes", "Replace a file?"),
                  QCoreApplication::translate("FileBoxes", "%1 is there already.").arg(QFileInfo(path).fileName()),
                  QMessageBox::NoButton, parent);
  box.setObjectName(QStringLiteral("replaceQuestion"));
  box.setInformativeText(QCoreApplication::translate("FileBoxes", "Its content is lost when it is replaced."));
  const QPushButton* const replace =
      box.addButton(QCoreApplication::translate("FileBoxes", "&Replace"), QMessageBox::AcceptRole);
  box.setDefaultButton(box.addButton(QMessageBox::Cancel));
  box.exec();
  return box.clickedButton() == replace;
}

std::optional<QString> askTarget(QWidget* parent, const TargetQuestion& question) {
  QStringList filters;
  for (const FileForm& form : question.forms) filters << filterOf(form);
  QFileDialog box(parent, question.title, startFolder(question.purpose));
  box.setObjectName(QStringLiteral("targetBox"));
  box.setAcceptMode(QFileDialog::AcceptSave);
  box.setFileMode(QFileDialog::AnyFile);
  // Asked below, of the name that is written in the end.
  box.setOption(QFileDialog::DontConfirmOverwrite);
  box.setNameFilters(filters);
  box.selectFile(question.name);
  while (box.exec() == QDialog::Accepted && !box.selectedFiles().isEmpty()) {
    const qsizetype chosen = std::max<qsizetype>(0, filters.indexOf(box.selectedNameFilter()));
    const QString path = withEnding(box.selectedFiles().front(), question.forms[chosen], question.forms);
    const bool isSilent = question.isReplacedSilently && question.isReplacedSilently(path);
    if (isSilent || !QFileInfo(path).isFile() || asksToReplace(parent, path)) {
      rememberFolderOf(question.purpose, path);
      return path;
    }
    box.selectFile(path);
  }
  return std::nullopt;
}

}  // namespace lvx::desktop
