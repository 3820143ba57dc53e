#include "desktop/shell/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QFileInfo>
#include <QIcon>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QStandardPaths>
#include <QStatusBar>
#include <QUrl>
#include <algorithm>

#include "desktop/charts/free_section_view.h"
#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/common/icons.h"
#include "desktop/common/qt_text.h"
#include "desktop/common/scheme.h"
#include "desktop/ground/ground_tools.h"
#include "desktop/panels/console_view.h"
#include "desktop/panels/diagnostics_view.h"
#include "desktop/panels/drawing_tree.h"
#include "desktop/panels/go_to_box.h"
#include "desktop/panels/text_window.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/book_maker.h"
#include "desktop/shell/close_watch.h"
#include "desktop/shell/command_prompt.h"
#include "desktop/shell/desktop_front_end.h"
#include "desktop/shell/document.h"
#include "desktop/shell/drawing_composer.h"
#include "desktop/shell/drawing_views.h"
#include "desktop/shell/edits.h"
#include "desktop/shell/free_section.h"
#include "desktop/shell/help_key.h"
#include "desktop/shell/leave_wish.h"
#include "desktop/shell/long_work.h"
#include "desktop/shell/look_menus.h"
#include "desktop/shell/object_maker.h"
#include "desktop/shell/object_menu.h"
#include "desktop/shell/plan_output.h"
#include "desktop/shell/report_adviser.h"
#include "desktop/shell/report_outcome.h"
#include "desktop/shell/sample_line_editing.h"
#include "desktop/shell/scheme_menu.h"
#include "desktop/shell/shortcut_list.h"
#include "desktop/shell/start_drawings.h"
#include "desktop/shell/window_actions.h"
#include "runtime/installation.h"

namespace lvx::desktop {

namespace {

QString settingsPlace(const DesktopOptions& options) {
  if (!options.settingsFile.isEmpty()) return options.settingsFile;
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/lvxhost/lvxhost-desktop.ini");
}

}  // namespace

// ---------------------------------------------------------------- putting together

MainWindow::MainWindow(const DesktopOptions& options)
    : options_(options),
      language_(options.choices.language),
      settings_(std::make_unique<QSettings>(settingsPlace(options), QSettings::IniFormat)),
      panels_(*this),
      leave_(std::make_unique<LeaveWish>()),
      work_(std::make_unique<LongWork>(*panels_.progress)),
      frontEnd_(std::make_unique<DesktopFrontEnd>(*this, *panels_.plan, *work_,
                                                  runtime::helpFolder(options.choices.language, options.choices.bin))),
      session_(std::make_unique<Session>(options.choices, *frontEnd_, *work_)),
      place_(std::make_unique<PlaceLine>(*statusBar())),
      edits_(std::make_unique<Edits>(*this, *session_, *work_)),
      views_(std::make_unique<DrawingViews>(panels_, *place_, *session_, *frontEnd_)),
      lines_(std::make_unique<SampleLineEditing>(*this, panels_, *session_, *edits_, views_->selection())),
      ground_(std::make_unique<GroundTools>(*this, *panels_.plan)),
      freeSection_(std::make_unique<FreeSection>(*this, panels_, *session_, *edits_, views_->selection())),
      recent_(std::make_unique<RecentDrawings>(*settings_)),
      document_(
          std::make_unique<Document>(DocumentSurroundings{*this, *panels_.console, *panels_.notice, *panels_.progress},
                                     *session_, *work_, *recent_, *leave_)),
      composer_(std::make_unique<DrawingComposer>(*this, *document_, *recent_)),
      maker_(std::make_unique<ObjectMaker>(
          ObjectMakerSurroundings{*this, *session_, *document_, views_->selection(), *frontEnd_, *edits_})),
      objectMenu_(std::make_unique<ObjectMenu>(*session_, *views_)),
      start_(std::make_unique<StartDrawings>(*panels_.plan, *recent_, options.choices.bin)),
      actions_(std::make_unique<WindowActions>(*this, *settings_, options.scheme)),
      goTo_(new GoToBox(panels_.plan)),
      prompt_(std::make_unique<CommandPrompt>(*panels_.console, *panels_.plan, *session_, *document_, *frontEnd_)),
      adviser_(std::make_unique<ReportAdviser>(*session_, *panels_.console, *panels_.notice)),
      outcome_(std::make_unique<ReportOutcome>(*this, *panels_.console, *panels_.outcome, *leave_,
                                               options.choices.reportCodePage.value_or(""))),
      books_(std::make_unique<BookMaker>(BookMakerSurroundings{*this, *session_, *document_, views_->selection(),
                                                               *work_, *outcome_, *leave_, options.choices.bin,
                                                               options.choices.language})),
      planOutput_(std::make_unique<PlanOutput>(*this, *panels_.plan)),
      helpKey_(std::make_unique<HelpKey>([this] { frontEnd_->showHelpContents(); })),
      closeWatch_(std::make_unique<CloseWatch>(*this)) {
  setObjectName(QStringLiteral("mainWindow"));
  setAcceptDrops(true);
  setWindowIcon(icon(QStringLiteral("lvxhost-desktop")));

  connectDocument();
  connectActions();
  connectCommands();
  addOwnCommands();
  connect(leave_.get(), &LeaveWish::due, this, &MainWindow::close);

  actions_->addCommands(session_->commands());
  actions_->scheme().start();
  panels_.keepFirst(*this);
  panels_.restore(*this, *settings_);
  panels_.plan->setFocus();
  updateState();
  if (!session_->moduleProblem().isEmpty())
    panels_.console->printError(
        tr("There are no reports: %1. Drawings can be looked at all the same.").arg(session_->moduleProblem()));
  openDrawing(options_.drawing);
}

MainWindow::~MainWindow() {
  // The parts go one after the other, the last one first; nobody has to follow that.
  panels_.plan->disconnect(this);
  views_->disconnect(this);
  views_->visibility().disconnect(this);
  edits_->disconnect();
  edits_->setHindrance({});
  document_->disconnect(this);
}

void MainWindow::connectDocument() {
  connect(document_.get(), &Document::letGo, ground_.get(), &GroundTools::clear);
  connect(document_.get(), &Document::letGo, views_.get(), &DrawingViews::clear);
  connect(document_.get(), &Document::opened, views_.get(), &DrawingViews::show);
  connect(document_.get(), &Document::opened, ground_.get(),
          [this](const LoadedDrawing& loaded) { ground_->setScene(loaded.scene); });
  connect(ground_.get(), &GroundTools::told, panels_.console, &ConsoleView::print);
  connect(document_.get(), &Document::letGo, lines_.get(), &SampleLineEditing::forget);
  connect(document_.get(), &Document::letGo, freeSection_.get(), &FreeSection::forget);
  connect(document_.get(), &Document::letGo, edits_.get(), &Edits::forget);
  edits_->setHindrance([this] { return document_->isBusy(); });
  connect(edits_.get(), &Edits::changed, views_.get(), &DrawingViews::followEdit);
  connect(edits_.get(), &Edits::changed, this, &MainWindow::updateState);
  connect(document_.get(), &Document::saved, views_.get(), &DrawingViews::refreshDiagnostics);
  connect(document_.get(), &Document::savedElsewhere, outcome_.get(), &ReportOutcome::tellSaved);
  connect(document_.get(), &Document::stateChanged, this, &MainWindow::updateState);
  connect(views_.get(), &DrawingViews::selectionChanged, this, &MainWindow::updateState);
  connect(views_.get(), &DrawingViews::shown, this, &MainWindow::drawingShown);
  connect(panels_.diagnostics, &DiagnosticsView::lineWanted, this, &MainWindow::showLine);
  connect(panels_.tree, &DrawingTree::menuOpening, composer_.get(), &DrawingComposer::offerIn);
  connect(panels_.tree, &DrawingTree::menuOpening, maker_.get(), &ObjectMaker::offerIn);
  connect(panels_.tree, &DrawingTree::menuOpening, this, [this](QMenu& menu, const TreeRow& row) {
    if (!isBusy()) lines_->addEntries(menu, row.handle, {});
    objectMenu_->offerIn(menu, row.handle);
  });
  connect(document_.get(), &Document::letGo, goTo_, &GoToBox::leave);
  connect(goTo_, &GoToBox::wanted, views_.get(), &DrawingViews::goTo);
  connect(start_.get(), &StartDrawings::chosen, this, &MainWindow::openDrawing);
  connect(start_.get(), &StartDrawings::openWanted, document_.get(), &Document::askOpen);
  recent_->offerIn(actions_->recentMenu());
  connect(recent_.get(), &RecentDrawings::chosen, this, &MainWindow::openDrawing);
}

void MainWindow::connectActions() {
  actions_->onTrigger(WindowAction::Open, [this] { document_->askOpen(); });
  actions_->onTrigger(WindowAction::AddDrawing, [this] { composer_->askAdd(); });
  actions_->onTrigger(WindowAction::Reload, [this] { document_->askReload(); });
  actions_->onTrigger(WindowAction::Save, [this] { document_->save(); });
  actions_->onTrigger(WindowAction::SaveAs, [this] { document_->askSaveAs(); });
  actions_->onTrigger(WindowAction::SectionBook, [this] { books_->ask(); });
  actions_->onTrigger(WindowAction::ExportPlan, [this] { planOutput_->askExport(document_->sources().title()); });
  actions_->onTrigger(WindowAction::PrintPlan, [this] { planOutput_->askPrint(document_->sources().title()); });
  connect(planOutput_.get(), &PlanOutput::exported, outcome_.get(), &ReportOutcome::tellExported);
  actions_->onTrigger(WindowAction::Quit, [this] { close(); });
  actions_->onTrigger(WindowAction::Undo, [this] { edits_->undo(); });
  actions_->onTrigger(WindowAction::Redo, [this] { edits_->redo(); });
  actions_->onTrigger(WindowAction::NewLines, [this] { lines_->askNew(); });
  actions_->onTrigger(WindowAction::EditLines, [this] { lines_->askEdit(); });
  actions_->onTrigger(WindowAction::AddLine, [this] { lines_->askAdd(); });
  actions_->onTrigger(WindowAction::Delete, [this] { lines_->remove(); });
  connect(panels_.plan, &PlanView::menuWanted, this,
          [this](quint64 handle, QPointF place, QPoint global) { showMenu(handle, place, global); });
  actions_->onTrigger(WindowAction::NewProfile, [this] { maker_->askProfile(); });
  actions_->onTrigger(WindowAction::NewPointGroup, [this] { maker_->askPointGroup(); });
  actions_->onTrigger(WindowAction::NewPointGroupOfSelection, [this] { maker_->askPointGroupOfSelection(); });
  actions_->onTrigger(WindowAction::Measure, [this] { ground_->measure(); });
  actions_->onTrigger(WindowAction::Difference, [this] { ground_->askDifference(); });
  actions_->onTrigger(WindowAction::FreeSection, [this] { freeSection_->draw(); });
  actions_->onTrigger(WindowAction::ZoomAll, [this] { panels_.plan->zoomToAll(); });
  actions_->onTrigger(WindowAction::ZoomSelection, [this] { views_->zoomToSelection(); });
  actions_->onTrigger(WindowAction::ZoomRectangle, [this] { panels_.plan->startZoomRectangle(); });
  actions_->onTrigger(WindowAction::PreviousView, [this] { panels_.plan->showPreviousView(); });
  actions_->onTrigger(WindowAction::NextView, [this] { panels_.plan->showNextView(); });
  actions_->onTrigger(WindowAction::FullScreen, [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
  actions_->onTrigger(WindowAction::ShowAllObjects, [this] { views_->visibility().showAll(); });
  connect(&views_->visibility(), &ObjectVisibility::changed, this, &MainWindow::updateState);
  connect(panels_.plan, &PlanView::viewsChanged, this, &MainWindow::updateState);
  actions_->onTrigger(WindowAction::Find, [this] {
    panels_.treeDock->show();
    panels_.tree->focusFind();
  });
  actions_->onTrigger(WindowAction::GoTo, [this] { askPlace(); });
  actions_->onTrigger(WindowAction::ResetPanels, [this] { panels_.reset(*this); });
  actions_->onTrigger(WindowAction::WindowHelp, [this] { frontEnd_->showWindowHelp(); });
  actions_->onTrigger(WindowAction::Shortcuts, [this] { showShortcuts(*this); });
  actions_->onTrigger(WindowAction::CommandLine, [this] {
    panels_.showConsole();
    panels_.console->focusPrompt();
  });
  actions_->onTrigger(WindowAction::HelpContents, [this] { frontEnd_->showHelpContents(); });
  actions_->onTrigger(WindowAction::About, [this] { showAbout(); });
  connect(actions_.get(), &WindowActions::commandChosen, this, [this](const QString& command) {
    if (isBusy()) return;
    panels_.console->print(QStringLiteral("> ") + command);
    runCommand(command);
  });
  connect(&actions_->look(), &LookMenus::changed, this, &MainWindow::applyLook);
  connect(&actions_->scheme(), &SchemeMenu::changed, this, &MainWindow::applyLook);
}

void MainWindow::connectCommands() {
  connect(frontEnd_.get(), &DesktopFrontEnd::printed, panels_.console, &ConsoleView::print);
  connect(frontEnd_.get(), &DesktopFrontEnd::dialogOpening, this, [this] {
    // The dialog comes back at once, as in the CAD program; beside it stands why.
    if (const QString folder = session_->takeMissingFolder(); !folder.isEmpty()) outcome_->printMissingFolder(folder);
  });
  connect(frontEnd_.get(), &DesktopFrontEnd::selectedForCommand, adviser_.get(), &ReportAdviser::selectPoints);
  connect(frontEnd_.get(), &DesktopFrontEnd::dialogAccepting, adviser_.get(), &ReportAdviser::accept);
  connect(frontEnd_.get(), &DesktopFrontEnd::dialogPressed, this,
          [this](const QString& dialog, int button, const host::DialogWindow& window) {
            if (const civil::Handle alignment = adviser_->profilesWanted(dialog, button, window); alignment != 0)
              views_->raiseProfilesOf(alignment);
          });
  connect(session_.get(), &Session::commandStarted, adviser_.get(), &ReportAdviser::begin);
  connect(session_.get(), &Session::commandStarted, outcome_.get(), &ReportOutcome::begin);
  for (const ChartView* const chart :
       {static_cast<ChartView*>(panels_.section), static_cast<ChartView*>(panels_.freeSection),
        static_cast<ChartView*>(panels_.profile)})
    connect(chart, &ChartView::exported, outcome_.get(), &ReportOutcome::tellExported);
  connect(session_.get(), &Session::commandStarted, this, &MainWindow::updateState);
  connect(frontEnd_.get(), &DesktopFrontEnd::pickingChanged, this, [this] {
    // Within a command its start and its end tell.
    if (!session_->isRunning()) updateState();
  });
  connect(prompt_.get(), &CommandPrompt::reportEntered, this, &MainWindow::runCommand);
}

void MainWindow::addOwnCommands() {
  prompt_->add({QStringLiteral("OPEN"), false, [this](const QString& path) {
                  if (path.isEmpty())
                    document_->askOpen();
                  else
                    document_->open(path);
                  return true;
                }});
  prompt_->add({QStringLiteral("ADD"), false, [this](const QString& path) {
                  if (path.isEmpty())
                    composer_->askAdd();
                  else
                    composer_->add({path});
                  return true;
                }});
  prompt_->add({QStringLiteral("SAVE"), true, [this](const QString& rest) {
                  if (!rest.isEmpty()) return false;
                  document_->save();
                  return true;
                }});
  prompt_->add({QStringLiteral("SAVEAS"), true, [this](const QString& path) {
                  if (path.isEmpty())
                    document_->askSaveAs();
                  else
                    document_->saveAs(QFileInfo(path).absoluteFilePath());
                  return true;
                }});
  prompt_->add({QStringLiteral("ZOOM"), false, [this](const QString&) {
                  panels_.plan->zoomToAll();
                  return true;
                }});
  prompt_->add({QStringLiteral("HELP"), false, [this](const QString&) {
                  frontEnd_->showHelpContents();
                  return true;
                }});
  prompt_->add({QStringLiteral("QUIT"), false, [this](const QString&) {
                  close();
                  return true;
                }});
}

// ---------------------------------------------------------------- between the parts

void MainWindow::openDrawing(const DrawingSources& drawing) { document_->open(drawing); }

void MainWindow::applyLook() {
  PlanLook look = actions_->look().look();
  look.dark = isDark();
  panels_.plan->setLook(look);
}

bool MainWindow::isBusy() const { return document_->isBusy() || frontEnd_->isPicking(); }

void MainWindow::updateState() {
  const bool isOpen = document_->isOpen();
  const bool isChanged = document_->isChanged();
  actions_->update({!isBusy(), isOpen, isChanged, views_->selection().handle() != 0, lines_->hasChosen(),
                    edits_->undoName(), edits_->redoName(), panels_.plan->hasPreviousView(),
                    panels_.plan->hasNextView(), views_->visibility().hidesAny()});
  setWindowTitle(isOpen ? tr("%1[*] – lvxhost-desktop").arg(document_->sources().title())
                        : QStringLiteral("lvxhost-desktop"));
  setWindowModified(isChanged);
  start_->setShown(!isOpen && !document_->isBusy());
  panels_.freeSection->setIdle(!isBusy());
}

void MainWindow::runCommand(const QString& name) {
  if (isBusy()) return;
  if (!document_->isOpen()) {
    panels_.console->printError(tr("No drawing is open. OPEN opens one."));
    return;
  }
  const CommandReport report = session_->run(name);
  views_->refresh();
  panels_.console->setPrompt({});
  updateState();
  outcome_->tell(report, document_->isChanged(), adviser_->end(report));
  leave_->follow();
}

void MainWindow::showMenu(civil::Handle handle, QPointF place, QPoint global) {
  if (isBusy() || !document_->isOpen()) return;
  QMenu menu(this);
  menu.setObjectName(QStringLiteral("objectMenu"));
  lines_->addEntries(menu, handle, place);
  maker_->offerInPlan(menu, handle);
  objectMenu_->offerIn(menu, handle, place);
  if (!menu.isEmpty()) menu.exec(global);
}

void MainWindow::showLine(quint32 file, quint64 line) {
  const QString path = document_->sources().paths().value(static_cast<qsizetype>(file));
  if (!path.isEmpty()) (new TextWindow(path, line, decodeUtf8OrLatin1, this))->show();
}

void MainWindow::askPlace() {
  if (const auto& drawing = session_->drawing())
    goTo_->open(drawing->drawing(), drawing->index(), views_->selection().alignment());
}

void MainWindow::showAbout() {
  QMessageBox::about(this, tr("About lvxhost-desktop"),
                     tr("<h3>lvxhost-desktop %1</h3><p>Opens LandXML drawings and runs the road reports on them.</p>"
                        "<p>Module: %2</p>")
                         .arg(QApplication::applicationVersion(),
                              toQt(runtime::chosenModule(options_.choices).string()).toHtmlEscaped()));
}

// ---------------------------------------------------------------- events

void MainWindow::leaveNow() {
  document_->giveUpChanges();
  close();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (work_->isRunning()) {
    // The command or the saving ends first; then the window closes.
    leave_->note();
    event->ignore();
    frontEnd_->giveUpAll();
    return;
  }
  if (QWidget* const open = QApplication::activeModalWidget()) {
    if (document_->isQuestion(*open)) {
      // The question that closing asks is there already.
      event->ignore();
      return;
    }
    frontEnd_->giveUpAll();
  }
  if (!document_->settleChanges()) {
    leave_->drop();
    frontEnd_->askAgain();
    event->ignore();
    return;
  }
  document_->cancelReading();
  panels_.plan->cancelInteraction();  // a selection without a command; those were given up before
  WindowPanels::save(*this, *settings_);
  frontEnd_->closeHelp();
  for (QWidget* const window : findChildren<QWidget*>())
    if (window->isWindow()) window->close();
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  if (isBusy() || urls.isEmpty() ||
      !std::all_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); }))
    return;
  // Whatever the other program proposes: dropped files stay where they are.
  event->setDropAction(Qt::CopyAction);
  event->accept();
  if (document_->isOpen()) statusBar()->showMessage(tr("Drop to open; hold Ctrl to add to the open drawing"));
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent* /*event*/) { statusBar()->clearMessage(); }

void MainWindow::dropEvent(QDropEvent* event) {
  QStringList paths;
  for (const QUrl& url : event->mimeData()->urls()) paths << url.toLocalFile();
  const bool isAddition = event->modifiers().testFlag(Qt::ControlModifier);
  event->setDropAction(Qt::CopyAction);
  event->accept();
  statusBar()->clearMessage();
  // The program that the files come from waits until the drop is over.
  QMetaObject::invokeMethod(
      this, [this, paths, isAddition] { composer_->drop(paths, isAddition); }, Qt::QueuedConnection);
}

void MainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::ApplicationPaletteChange && actions_ != nullptr) applyLook();
}

}  // namespace lvx::desktop
