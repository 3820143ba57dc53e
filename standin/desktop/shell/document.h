#pragma once

#include <QObject>
#include <QString>

#include "desktop/common/file_boxes.h"
#include "desktop/shell/drawing_file_set.h"
#include "desktop/shell/drawing_loader.h"
#include "desktop/shell/drawing_sources.h"
#include "desktop/shell/recent_drawings.h"

class QShortcut;
class QWidget;

namespace lvx::desktop {

class ConsoleView;
class LeaveWish;
class LongWork;
class NoticeBar;
class ProgressStrip;
class Session;

/// Where a document speaks: boxes stand over `window`.
struct DocumentSurroundings {
  QWidget& window;
  ConsoleView& console;
  NoticeBar& notice;
  ProgressStrip& progress;
};

/// The open drawing as its user handles it: opened, read again, saved, saved elsewhere, changed by others, given up with
/// or without its changes. It asks and tells by itself; what the drawing looks like is others' (see the signals).
///
///     Document document({window, console, notice, progress}, session, work, recent, leave);
///     connect(&document, &Document::opened, views, &DrawingViews::show);
///     document.open(path);                   // opened() or a box follows, from the event loop
class Document : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  Document(const DocumentSurroundings& surroundings, Session& session, LongWork& work, RecentDrawings& recent,
           LeaveWish& leave);
  /// Cancels a reading and waits for its end.
  ~Document() override;

  /// A command runs, or a saving, or a reading: nothing else can begin.
  [[nodiscard]] bool isBusy() const;
  [[nodiscard]] bool isOpen() const;
  /// It has changes that aren't saved.
  [[nodiscard]] bool isChanged() const;
  /// Of the open drawing's first file; empty where none is open.
  [[nodiscard]] QString path() const;
  /// The files of the open drawing; without one where none is open.
  [[nodiscard]] const DrawingSources& sources() const { return sources_; }

  /// Reads a drawing in place of the open one, which stays until the new one stands. Asks first where the open one has
  /// changes, and where units of its files differ. A reading that runs is cancelled; while a command or a saving runs
  /// nothing happens.
  void open(const DrawingSources& drawing, FileOrder order = FileOrder::AsGiven);
  void open(const QString& path) { open(DrawingSources(path)); }
  /// Reads the open drawing again with these files in place of its own: some more, some less, others swapped. Asks as
  /// open() does.
  void change(const DrawingSources& drawing, FileOrder order = FileOrder::AsGiven);
  /// Ends a reading; nothing happens where none runs.
  void cancelReading();
  /// Asks for a file first; several are one drawing. Nothing happens while something runs.
  void askOpen();
  /// Reads the open drawing's files again. Nothing happens while something runs.
  void askReload();

  // These say whether the drawing is saved; what prevents it was told then.
  bool save();
  Q_INVOKABLE bool askSaveAs();
  /// Asks before it replaces a file other than the drawing's own. `name` is absolute; ".xml" is added where it has no
  /// ending and no such file is there.
  bool saveAs(const QString& name);
  /// The same for a user who was asked. No file that the drawing or the reports read is replaced but its own.
  bool saveTo(const QString& target);
  /// Asks what to do with unsaved changes, if there are any. False where the user wants to go back.
  bool settleChanges();
  /// Changes are given up without a question from now on.
  void giveUpChanges() { asksForChanges_ = false; }
  /// Whether a box is the one by which settleChanges() asks.
  [[nodiscard]] bool isQuestion(const QWidget& box) const;

 Q_SIGNALS:
  /// The open drawing is about to go: what looks at it lets go of it before this returns.
  void letGo();
  void opened(const lvx::desktop::LoadedDrawing& drawing);
  void saved();
  /// Beside saved(), once the drawing lies at another place than before.
  void savedElsewhere(const QString& path);
  /// isBusy(), isOpen(), isChanged() or path() may be others.
  void stateChanged();

 private:
  void connectReading();
  void connectFiles();
  void read(const DrawingSources& drawing, FileOrder order);
  void take(const LoadedDrawing& loaded);
  void tellOpened();
  void handleFailure(const LoadFailure& failure);
  /// Whether the user wants files in other units to be converted.
  [[nodiscard]] bool asksToConvert(const LoadFailure& failure);
  void tellReadError(const LoadFailure& failure);
  /// Throws as landxml::saveProject does.
  /// Who names another file for the first one may want the others to stay as they are.
  bool askForOtherFiles(const QString& target);
  /// Whether the name leads to the drawing's first file.
  [[nodiscard]] bool isOwnFile(const QString& target) const;
  /// Whether replacing it would take something from somebody, and is possible.
  [[nodiscard]] bool isOthersFile(const QString& target) const;
  /// The file that saving to `target` writes and that another program changed since it was read; empty: there is none.
  [[nodiscard]] QString changedByOthers(const QString& target) const;
  /// What to do about it; false: not to save to `target`.
  [[nodiscard]] bool asksToUndoOthers(const QString& file);
  /// The forms that a drawing can be saved in.
  [[nodiscard]] static QList<FileForm> savedForms();
  void write(const QString& target);
  void tellSaveError(const QString& target, const QString& reason);

  DocumentSurroundings at_;
  Session& session_;
  LongWork& work_;
  RecentDrawings& recent_;
  LeaveWish& leave_;
  DrawingLoader loader_;
  DrawingSources sources_;
  /// What the reading that runs takes the place of in the list of recent drawings, beside the drawing itself.
  DrawingSources replaced_;
  DrawingFileSet files_;
  QShortcut* stopReading_;
  bool asksForChanges_ = true;
};

}  // namespace lvx::desktop
