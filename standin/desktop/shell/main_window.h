#pragma once

#include <QMainWindow>
#include <QPoint>
#include <QPointF>
#include <memory>
#include <optional>

#include "desktop/common/language.h"
#include "desktop/shell/desktop_options.h"
#include "desktop/shell/session.h"
#include "desktop/shell/window_panels.h"

class QSettings;

namespace lvx::desktop {

class BookMaker;
class CloseWatch;
class CommandPrompt;
class DesktopFrontEnd;
class Document;
class DrawingComposer;
class DrawingViews;
class GroundTools;
class Edits;
class FreeSection;
class GoToBox;
class HelpKey;
class LeaveWish;
class LongWork;
class ObjectMaker;
class ObjectMenu;
class PlaceLine;
class PlanOutput;
class RecentDrawings;
class ReportAdviser;
class ReportOutcome;
class SampleLineEditing;
class StartDrawings;
class WindowActions;

/// The program's window: the drawing in the middle, around it the tree of its objects, sections and profiles, the console
/// and what the reader found odd. All of the program hangs on it, so that tests build the same thing.
///
///     MainWindow window(options);      // throws std::invalid_argument for options that can't be
///     window.show();                   // and options.drawing is being read
///
/// It puts together what does the work, and does none itself:
///
/// - WindowPanels: what the window is made of, and where it stands
/// - WindowActions: menus, tools, keys
/// - Document: open, save, what others do to the files
/// - DrawingComposer: which files make up the drawing
/// - ObjectMaker: profiles and point groups that the user makes
/// - DrawingViews: plan, tree, charts over one drawing and one selection
/// - StartDrawings: what stands in place of the plan while no drawing is open
/// - CommandPrompt: what is typed
/// - Edits: what the user changes in the drawing, to be undone and redone
/// - GroundTools: measuring in the plan, the difference of two surfaces
/// - SampleLineEditing: groups of sample lines and single ones
/// - FreeSection: the section along a line that is drawn over the plan
/// - Session, DesktopFrontEnd, LongWork: the module's commands, their questions, their progress
/// - ReportAdviser: what a report doesn't say by itself
/// - ReportOutcome: what came of a command
/// - BookMaker: books of cross sections and long sections
/// - PlanOutput: the plan on paper and as a file
class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  explicit MainWindow(const DesktopOptions& options);
  ~MainWindow() override;

  /// See Document::open.
  void openDrawing(const DrawingSources& drawing);
  [[nodiscard]] Session& session() { return *session_; }
  [[nodiscard]] Edits& edits() { return *edits_; }
  [[nodiscard]] PlanView& plan() { return *panels_.plan; }
  [[nodiscard]] ConsoleView& console() { return *panels_.console; }
  /// Closes without questions, as a session's end asks for.
  void leaveNow();

 Q_SIGNALS:
  /// The drawing is open, and its picture stands on the screen as sharp as it gets.
  void drawingShown();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void connectDocument();
  void connectActions();
  void connectCommands();
  void addOwnCommands();
  void applyLook();
  void updateState();
  /// Something runs that nothing else can begin beside.
  [[nodiscard]] bool isBusy() const;
  void runCommand(const QString& name);
  void showMenu(civil::Handle handle, QPointF place, QPoint global);
  void showLine(quint32 file, quint64 line);
  void showAbout();
  void askPlace();

  DesktopOptions options_;
  /// Before whatever has words.
  Language language_;
  std::unique_ptr<QSettings> settings_;
  WindowPanels panels_;
  std::unique_ptr<LeaveWish> leave_;
  std::unique_ptr<LongWork> work_;
  std::unique_ptr<DesktopFrontEnd> frontEnd_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<PlaceLine> place_;
  std::unique_ptr<Edits> edits_;
  std::unique_ptr<DrawingViews> views_;
  std::unique_ptr<SampleLineEditing> lines_;
  std::unique_ptr<GroundTools> ground_;
  std::unique_ptr<FreeSection> freeSection_;
  std::unique_ptr<RecentDrawings> recent_;
  std::unique_ptr<Document> document_;
  std::unique_ptr<DrawingComposer> composer_;
  std::unique_ptr<ObjectMaker> maker_;
  std::unique_ptr<ObjectMenu> objectMenu_;
  std::unique_ptr<StartDrawings> start_;
  std::unique_ptr<WindowActions> actions_;
  GoToBox* goTo_;
  std::unique_ptr<CommandPrompt> prompt_;
  std::unique_ptr<ReportAdviser> adviser_;
  std::unique_ptr<ReportOutcome> outcome_;
  std::unique_ptr<BookMaker> books_;
  std::unique_ptr<PlanOutput> planOutput_;
  std::unique_ptr<HelpKey> helpKey_;
  std::unique_ptr<CloseWatch> closeWatch_;
};

}  // namespace lvx::desktop
