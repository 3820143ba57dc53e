#pragma once

#include <QMainWindow>
#include <QPointF>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/common/language.h"
#include "desktop/plan/plan_look.h"
#include "desktop/shell/desktop_options.h"
#include "desktop/shell/drawing_loader.h"
#include "desktop/shell/session.h"

class QAction;
class QActionGroup;
class QDockWidget;
class QLabel;
class QMenu;
class QSettings;
class QShortcut;

namespace lvx::standin_platform {
class HeldFile;
}

namespace lvx::desktop {

class CloseWatch;
class ConsoleView;
class DesktopFrontEnd;
class DiagnosticsView;
class DrawingTree;
class DrawingWatch;
class LongWork;
class NoticeBar;
class PlanView;
class ProfileView;
class ProgressStrip;
class SectionView;

/// The program's window: the drawing in the middle, around it the tree of its objects, sections and profiles, the console
/// and what the reader found odd. All of the program hangs on it, so that tests build the same thing.
///
///     MainWindow window(options);      // throws std::invalid_argument for options that can't be
///     window.show();                   // and options.drawing is being read
class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  explicit MainWindow(const DesktopOptions& options);
  ~MainWindow() override;

  /// Reads a drawing in place of the open one, which stays until the new one stands. Asks first where the open one has
  /// changes that aren't saved.
  void openDrawing(const QString& path);
  [[nodiscard]] Session& session() { return *session_; }
  [[nodiscard]] PlanView& plan() { return *plan_; }
  [[nodiscard]] ConsoleView& console() { return *console_; }
  /// Closes without questions, as a session's end asks for.
  void leaveNow();

 Q_SIGNALS:
  /// The drawing is open, and its picture stands on the screen as sharp as it gets.
  void drawingShown();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  // ---- the window's parts
  void buildCentre();
  void buildDocks();
  void buildActions();
  void buildStatusLine();
  QDockWidget* addDock(const QString& name, const QString& title, QWidget* widget, Qt::DockWidgetArea area);
  QAction* addAction(const QString& name, const QString& iconName, const QString& text, const QString& tip,
                     const QKeySequence& keys = {});
  void buildLook(QMenu& layers, QMenu& surface);
  void applyLook();
  void fillReports();
  void fillRecent();
  void restoreSettings();
  void saveSettings();
  void setScheme(Scheme scheme);
  void updateState();

  // ---- drawings
  void askOpen();
  void askReload();
  void take(const LoadedDrawing& loaded);
  void tellFailure(const LoadFailure& failure);
  bool save();
  bool askSaveAs();
  bool saveTo(const QString& target);
  void tellSaveError(const QString& target, const QString& reason);
  /// False where the user wants to go back.
  bool settleChanges();
  void rememberRecent(const QString& path);
  [[nodiscard]] QString drawingPath() const;
  [[nodiscard]] bool isBusy() const;

  // ---- looking
  void select(civil::Handle handle, const QObject* from);
  void zoomTo(civil::Handle handle);
  /// What is drawn for an object that has no place of its own: a group's lines, a profile's alignment.
  [[nodiscard]] std::vector<civil::Handle> shownFor(civil::Handle handle) const;
  [[nodiscard]] static QString placeText(const QString& east, const QString& north);
  void showMouse(QPointF place);
  void useAlignment(const civil::AlignmentObject* alignment);
  [[nodiscard]] const civil::AlignmentObject* alignmentOf(civil::Handle handle) const;
  void showLine(quint64 line);

  // ---- commands
  void enter(const QString& text);
  void runCommand(const QString& name);
  void tellReport(const CommandReport& report);
  /// The command says nothing of it.
  void printMissingFolder(const QString& folder);
  void tellMissingFolder(const QString& folder);
  /// The user asked to close the window while something ran.
  void closeIfWanted();
  void activateLink(const QUrl& url);
  [[nodiscard]] QString titleOf(const QString& command) const;

  DesktopOptions options_;
  /// Before whatever has words.
  Language language_;
  std::unique_ptr<QSettings> settings_;

  ProgressStrip* progress_ = nullptr;
  PlanView* plan_ = nullptr;
  NoticeBar* notice_ = nullptr;
  DrawingTree* tree_ = nullptr;
  ConsoleView* console_ = nullptr;
  DiagnosticsView* diagnostics_ = nullptr;
  SectionView* section_ = nullptr;
  ProfileView* profile_ = nullptr;
  QDockWidget* sectionDock_ = nullptr;
  QDockWidget* profileDock_ = nullptr;
  QDockWidget* consoleDock_ = nullptr;
  QLabel* coordinates_ = nullptr;
  QLabel* station_ = nullptr;
  QMenu* fileMenu_ = nullptr;
  QMenu* recentMenu_ = nullptr;
  QMenu* viewMenu_ = nullptr;
  QMenu* reportMenu_ = nullptr;
  QMenu* layerMenu_ = nullptr;
  QAction* open_ = nullptr;
  QAction* reload_ = nullptr;
  QAction* save_ = nullptr;
  QAction* saveAs_ = nullptr;
  QAction* zoomAll_ = nullptr;
  QAction* zoomSelection_ = nullptr;
  QActionGroup* schemes_ = nullptr;
  QShortcut* stopLoading_ = nullptr;
  std::vector<QAction*> reports_;

  std::unique_ptr<LongWork> work_;
  std::unique_ptr<DesktopFrontEnd> frontEnd_;
  std::unique_ptr<Session> session_;
  /// Points into the session's drawing.
  std::shared_ptr<view::PlanScene> scene_;
  /// The drawing's file, held open: what is saved comes from it even where its name now leads elsewhere.
  std::unique_ptr<standin_platform::HeldFile> source_;
  std::optional<FileStamp> stamp_;
  std::unique_ptr<DrawingWatch> watch_;
  std::unique_ptr<DrawingLoader> loader_;
  std::unique_ptr<CloseWatch> closeWatch_;
  const civil::AlignmentObject* alignment_ = nullptr;
  std::vector<civil::Handle> selected_;
  std::optional<QPointF> mouse_;
  PlanLook look_;
  bool closing_ = false;
  bool askChanges_ = true;
  bool awaitsPaint_ = false;
};

}  // namespace lvx::desktop
