#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <optional>

class QFileDialog;
class QWidget;

/// Boxes that ask where a file goes, by one rule for all of them: the ending is added before anything is asked about the
/// file, a file that is there is asked about, a No returns to the box, and each box starts where files of its kind went
/// last.
namespace lvx::desktop {

enum class FilePurpose : std::uint8_t { Drawing, Report, Export };

/// Where a box for such files starts: in the folder of the last one since the drawing was opened, at first in the drawing's
/// own, else in the user's; folders that are gone don't count.
[[nodiscard]] QString startFolder(FilePurpose purpose);
/// A file of that purpose was chosen.
void rememberFolderOf(FilePurpose purpose, const QString& file);
/// Another drawing is open, and boxes start in its folder; empty: none is.
void setDrawingFolder(const QString& folder);

/// A form that a file can have: "PDF document", {"pdf"}. The first ending is the one that is added. Without endings: any
/// file, whose name stays as typed.
struct FileForm {
  QString name;
  QStringList endings;
};

/// `name` with the ending of `form`, unless it has one of `forms`: a station's decimals are no ending.
[[nodiscard]] QString withEnding(const QString& name, const FileForm& form, const QList<FileForm>& forms);

struct TargetQuestion {
  QString title;
  FilePurpose purpose = FilePurpose::Export;
  /// What is offered: a name, or a path.
  QString name;
  /// Not empty; the first is chosen at first.
  QList<FileForm> forms;
  /// Files that nobody is asked about: that of the drawing itself. May be empty.
  std::function<bool(const QString& path)> isReplacedSilently;
};

/// The full path that the user chose; the file may be there, and the user agreed to replace it.
[[nodiscard]] std::optional<QString> askTarget(QWidget* parent, const TargetQuestion& question);

/// The drawings that the user chose to open; empty: none.
[[nodiscard]] QStringList askDrawings(QWidget* parent, const QString& title, const QString& folder);

/// Lets the box tell what its files are by their names alone. It would read each file whose name tells nothing, in the
/// window's own thread: a pipe, or a device as in /proc, would hold the program until somebody wrote there.
void listByName(QFileDialog& box);

/// Asks whether a file that is there shall be replaced.
[[nodiscard]] bool asksToReplace(QWidget* parent, const QString& path);

}  // namespace lvx::desktop
