#include "desktop/common/file_boxes.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QHash>
#include <QMessageBox>
#include <QMimeDatabase>
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

/// Knows files by their names.
class NamesAlone final : public QFileIconProvider {
 public:
  QIcon icon(const QFileInfo& entry) const override {
    return QFileIconProvider::icon(entry.isRoot()  ? QAbstractFileIconProvider::Drive
                                   : entry.isDir() ? QAbstractFileIconProvider::Folder
                                                   : QAbstractFileIconProvider::File);
  }
  QString type(const QFileInfo& entry) const override {
    if (!entry.isFile()) return QFileIconProvider::type(entry);
    return QMimeDatabase().mimeTypeForFile(entry, QMimeDatabase::MatchExtension).comment();
  }
};

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

QStringList askDrawings(QWidget* parent, const QString& title, const QString& folder) {
  QFileDialog box(
      parent, title, folder,
      QCoreApplication::translate("FileBoxes", "LandXML drawings (*.xml *.landxml *.xml.gz *.zip);;All files (*)"));
  listByName(box);
  box.setFileMode(QFileDialog::ExistingFiles);
  return box.exec() == QDialog::Accepted ? box.selectedFiles() : QStringList();
}

void listByName(QFileDialog& box) {
  // Never deleted: a box's own thread may still ask it at the end, and icons mustn't outlive the application.
  static auto* const names = new NamesAlone;
  box.setIconProvider(names);
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
  listByName(box);
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
