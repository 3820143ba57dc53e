#include "desktop/shell/main_window.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSettings>
#include <QShortcut>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUrlQuery>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/common/icons.h"
#include "desktop/common/qt_text.h"
#include "desktop/panels/console_view.h"
#include "desktop/panels/diagnostics_view.h"
#include "desktop/panels/drawing_tree.h"
#include "desktop/panels/notice_bar.h"
#include "desktop/panels/progress_strip.h"
#include "desktop/panels/report_viewer.h"
#include "desktop/panels/text_window.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/close_watch.h"
#include "desktop/shell/desktop_front_end.h"
#include "desktop/shell/drawing_watch.h"
#include "desktop/shell/long_work.h"
#include "landxml/writer.h"
#include "runtime/installation.h"
#include "standin_platform/held_file.h"
#include "text/number_text.h"
#include "view/plan_scene.h"

namespace lvx::desktop {

namespace {

constexpr int kRecentDrawings = 10;
constexpr int kToolSide = 24;
constexpr QSize kUsualSize(1600, 1000);
constexpr int kStateVersion = 1;
constexpr const char* kSaveQuestion = "saveChanges";

// Names under which settings are kept.
constexpr const char* kGeometry = "window/geometry";
constexpr const char* kState = "window/state";
constexpr const char* kSchemeKey = "window/scheme";
constexpr const char* kRecent = "drawings/recent";
constexpr const char* kFolder = "drawings/folder";

QString settingsPlace(const DesktopOptions& options) {
  if (!options.settingsFile.isEmpty()) return options.settingsFile;
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/lvxhost/lvxhost-desktop.ini");
}

/// What a user reads of the module's commands.
struct KnownReport {
  const char* command;
  const char* title;
  const char* icon;
  const char* tip;
};
constexpr KnownReport kReports[] = {
    {"lvx_Report_Que", QT_TRANSLATE_NOOP("lvx::desktop::MainWindow", "Profile &projection…"), "report_projection",
     QT_TRANSLATE_NOOP("lvx::desktop::MainWindow", "The ground across an alignment at its sample lines")},
    {"lvx_Report_Points", QT_TRANSLATE_NOOP("lvx::desktop::MainWindow", "P&oints…"), "report_points",
     QT_TRANSLATE_NOOP("lvx::desktop::MainWindow", "Points with station and offset against an alignment")},
    {"lvx_Report_GLS", QT_TRANSLATE_NOOP("lvx::desktop::MainWindow", "&GLS…"), "report_gls",
     QT_TRANSLATE_NOOP("lvx::desktop::MainWindow", "An alignment with its profile and corridors in one table")},
};

const KnownReport* findReport(const QString& command) {
  for (const KnownReport& report : kReports)
    if (command == QLatin1String(report.command)) return &report;
  return nullptr;
}

/// Host commands that can be typed beside the module's.
constexpr const char* kOwnCommands[] = {"OPEN", "SAVE", "SAVEAS", "ZOOM", "HELP", "QUIT"};

QString link(const char* what, const QString& path, const QString& words) {
  QUrl url;
  url.setScheme(QStringLiteral("lvx"));
  url.setPath(QString::fromLatin1(what));
  QUrlQuery query;
  query.addQueryItem(QStringLiteral("file"), QString::fromLatin1(path.toUtf8().toPercentEncoding()));
  url.setQuery(query);
  return QStringLiteral("<a href=\"%1\">%2</a>").arg(QString::fromLatin1(url.toEncoded()).toHtmlEscaped(), words);
}

}  // namespace

// ---------------------------------------------------------------- the window's parts

MainWindow::MainWindow(const DesktopOptions& options)
    : options_(options),
      language_(options.choices.language),
      settings_(std::make_unique<QSettings>(settingsPlace(options), QSettings::IniFormat)) {
  setObjectName(QStringLiteral("mainWindow"));
  setAcceptDrops(true);
  setDockNestingEnabled(true);
  setWindowIcon(QIcon(QStringLiteral(":/desktop/lvxhost-desktop.svg")));

  buildCentre();
  buildDocks();
  work_ = std::make_unique<LongWork>(*progress_);
  frontEnd_ = std::make_unique<DesktopFrontEnd>(*this, *plan_, *work_,
                                                runtime::helpFolder(options.choices.language, options.choices.bin));
  session_ = std::make_unique<Session>(options.choices, *frontEnd_, *work_);
  watch_ = std::make_unique<DrawingWatch>();
  closeWatch_ = std::make_unique<CloseWatch>(*this);
  loader_ = std::make_unique<DrawingLoader>();
  buildActions();
  buildStatusLine();

  connect(frontEnd_.get(), &DesktopFrontEnd::printed, console_, &ConsoleView::print);
  connect(frontEnd_.get(), &DesktopFrontEnd::dialogOpening, this, [this] {
    // The dialog comes back at once, as in the CAD program; beside it stands why.
    if (const QString folder = session_->takeMissingFolder(); !folder.isEmpty()) printMissingFolder(folder);
  });
  connect(session_.get(), &Session::commandStarted, this, &MainWindow::updateState);
  connect(progress_, &ProgressStrip::cancelled, loader_.get(), &DrawingLoader::cancel);
  stopLoading_ = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  connect(stopLoading_, &QShortcut::activated, loader_.get(), &DrawingLoader::cancel);
  connect(loader_.get(), &DrawingLoader::progressed, this, [this](const QString& step, quint64 done, quint64 total) {
    const QString name = QFileInfo(loader_->path()).fileName();
    // Bytes are told while the file is read; what follows has no unit.
    progress_->setProgress(step == DrawingLoader::tr("Reading")
                               ? tr("%1 %2: %3 of %4").arg(step, name, sizeText(done), sizeText(total))
                               : tr("%1: %2").arg(name, step),
                           done, total);
  });
  connect(loader_.get(), &DrawingLoader::loaded, this, &MainWindow::take);
  connect(loader_.get(), &DrawingLoader::failed, this, &MainWindow::tellFailure);
  connect(loader_.get(), &DrawingLoader::cancelled, this, [this] {
    progress_->end();
    console_->print(tr("Opening %1 was cancelled.").arg(loader_->path()));
    updateState();
  });
  connect(watch_.get(), &DrawingWatch::changed, this, [this] {
    notice_->tell(tr("%1 was changed by another program.").arg(drawingPath()), tr("Reload"), tr("Keep"));
  });
  connect(watch_.get(), &DrawingWatch::vanished, this, [this] {
    notice_->tell(
        tr("%1 isn't there any more. The drawing stays open; Save as writes it to a new place.").arg(drawingPath()), {},
        tr("Keep"));
  });
  connect(watch_.get(), &DrawingWatch::restored, notice_, &NoticeBar::hide);
  connect(notice_, &NoticeBar::accepted, this, &MainWindow::askReload);

  fillReports();
  restoreSettings();
  plan_->setFocus();
  updateState();
  if (!session_->moduleProblem().isEmpty())
    console_->printError(
        tr("There are no reports: %1. Drawings can be looked at all the same.").arg(session_->moduleProblem()));
  if (!options_.drawing.isEmpty()) openDrawing(options_.drawing);
}

MainWindow::~MainWindow() {
  loader_.reset();  // waits for its thread
  plan_->setScene(nullptr);
  section_->clear();
  profile_->clear();
  tree_->setDrawing(nullptr);
  diagnostics_->setDrawing(nullptr);
  scene_.reset();
}

void MainWindow::buildCentre() {
  auto* const centre = new QWidget;
  auto* const layout = new QVBoxLayout(centre);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  notice_ = new NoticeBar;
  plan_ = new PlanView;
  plan_->setObjectName(QStringLiteral("plan"));
  layout->addWidget(notice_);
  layout->addWidget(plan_, 1);
  setCentralWidget(centre);
  plan_->installEventFilter(this);
  connect(plan_, &PlanView::clicked, this, [this](quint64 handle) { select(handle, plan_); });
  connect(plan_, &PlanView::activated, this, [this](quint64 handle) {
    if (handle != 0) zoomTo(handle);
  });
  connect(plan_, &PlanView::mouseAt, this, &MainWindow::showMouse);
  connect(plan_, &PlanView::mouseGone, this, [this] {
    mouse_.reset();
    coordinates_->clear();
    useAlignment(alignment_);
  });
}

QDockWidget* MainWindow::addDock(const QString& name, const QString& title, QWidget* widget, Qt::DockWidgetArea area) {
  auto* const dock = new QDockWidget(title, this);
  dock->setObjectName(name);
  dock->setWidget(widget);
  addDockWidget(area, dock);
  return dock;
}

void MainWindow::buildDocks() {
  progress_ = new ProgressStrip;
  tree_ = new DrawingTree;
  console_ = new ConsoleView;
  diagnostics_ = new DiagnosticsView;
  section_ = new SectionView;
  section_->setObjectName(QStringLiteral("section"));
  profile_ = new ProfileView;
  profile_->setObjectName(QStringLiteral("profile"));

  setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
  addDock(QStringLiteral("treeDock"), tr("Drawing"), tree_, Qt::LeftDockWidgetArea);
  consoleDock_ = addDock(QStringLiteral("consoleDock"), tr("Console"), console_, Qt::BottomDockWidgetArea);
  profileDock_ = addDock(QStringLiteral("profileDock"), tr("Profile"), profile_, Qt::BottomDockWidgetArea);
  // Split before anything is put into tabs: a tab is where later ones go.
  splitDockWidget(consoleDock_, profileDock_, Qt::Horizontal);
  auto* const diagnosticsDock =
      addDock(QStringLiteral("diagnosticsDock"), tr("Diagnostics"), diagnostics_, Qt::BottomDockWidgetArea);
  sectionDock_ = addDock(QStringLiteral("sectionDock"), tr("Cross section"), section_, Qt::BottomDockWidgetArea);
  tabifyDockWidget(consoleDock_, diagnosticsDock);
  tabifyDockWidget(profileDock_, sectionDock_);
  consoleDock_->raise();
  profileDock_->raise();
  connect(diagnostics_, &DiagnosticsView::titleChanged, diagnosticsDock, &QDockWidget::setWindowTitle);
  connect(diagnostics_, &DiagnosticsView::lineWanted, this, &MainWindow::showLine);

  connect(tree_, &DrawingTree::selected, this, [this](quint64 handle) {
    if (!frontEnd_->isPicking()) select(handle, tree_);
  });
  connect(tree_, &DrawingTree::clicked, this, [this](quint64 handle) {
    if (handle != 0 && frontEnd_->isPicking()) plan_->offerPick(handle);
  });
  connect(tree_, &DrawingTree::activated, this, [this](quint64 handle) {
    if (frontEnd_->isPicking())
      plan_->offerPick(handle);
    else
      zoomTo(handle);
  });
  connect(profile_, &ProfileView::profileClicked, this, [this](quint64 handle) {
    if (frontEnd_->isPicking())
      plan_->offerPick(handle);
    else
      select(handle, profile_);
  });
  connect(section_, &SectionView::sampleLineChanged, this, [this](quint64 handle) { select(handle, section_); });
  connect(console_, &ConsoleView::entered, this, &MainWindow::enter);
  connect(console_, &ConsoleView::linkActivated, this, &MainWindow::activateLink);
  connect(console_, &ConsoleView::escaped, this, [this] {
    if (plan_->isInteracting()) plan_->cancelInteraction();
  });
  connect(console_, &ConsoleView::enteredNothing, this, [this] {
    if (!plan_->isInteracting()) return;
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(plan_, &enter);
  });
  connect(plan_, &PlanView::promptChanged, this, [this](const QString& prompt) {
    if (!prompt.isEmpty()) console_->print(prompt);
    console_->setPrompt(prompt);
  });
}

QAction* MainWindow::addAction(const QString& name, const QString& iconName, const QString& text, const QString& tip,
                               const QKeySequence& keys) {
  auto* const action = new QAction(text, this);
  action->setObjectName(name);
  if (!iconName.isEmpty()) action->setIcon(icon(iconName));
  action->setShortcut(keys);
  action->setStatusTip(tip);
  const QString plain = QString(text).remove(QLatin1Char('&')).remove(QChar(0x2026));
  action->setToolTip(
      keys.isEmpty() ? QStringLiteral("<b>%1</b><br>%2").arg(plain, tip)
                     : QStringLiteral("<b>%1</b> (%2)<br>%3").arg(plain, keys.toString(QKeySequence::NativeText), tip));
  QMainWindow::addAction(action);
  return action;
}

void MainWindow::buildActions() {
  const auto onTrigger = [this](QAction* action, auto work) {
    // Queued, so that what waits for the user in event loops of its own stands on no menu's.
    connect(action, &QAction::triggered, this, work, Qt::QueuedConnection);
  };

  open_ = addAction(QStringLiteral("open"), QStringLiteral("open"), tr("&Open…"), tr("Open a LandXML drawing"),
                    QKeySequence::Open);
  onTrigger(open_, [this] { askOpen(); });
  reload_ = addAction(QStringLiteral("reload"), {}, tr("&Reload"), tr("Read the open drawing's file again"),
                      QKeySequence(Qt::Key_F5));
  onTrigger(reload_, [this] { askReload(); });
  save_ = addAction(QStringLiteral("save"), QStringLiteral("save"), tr("&Save"),
                    tr("Save the drawing with its added sections"), QKeySequence::Save);
  onTrigger(save_, [this] { save(); });
  saveAs_ = addAction(QStringLiteral("saveAs"), QStringLiteral("save_as"), tr("Save &as…"),
                      tr("Save the drawing in another file"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
  onTrigger(saveAs_, [this] { askSaveAs(); });
  auto* const quit = addAction(QStringLiteral("quit"), QStringLiteral("quit"), tr("&Quit"), tr("Close the program"),
                               QKeySequence(Qt::CTRL | Qt::Key_Q));
  onTrigger(quit, [this] { close(); });

  zoomAll_ = addAction(QStringLiteral("zoomAll"), QStringLiteral("zoom_all"), tr("Zoom to &all"),
                       tr("Show the whole drawing"), QKeySequence(Qt::CTRL | Qt::Key_0));
  connect(zoomAll_, &QAction::triggered, this, [this] { plan_->zoomToAll(); });
  zoomSelection_ =
      addAction(QStringLiteral("zoomSelection"), QStringLiteral("zoom_selection"), tr("Zoom to &selection"),
                tr("Show the selected object as large as it goes"), QKeySequence(Qt::CTRL | Qt::Key_E));
  connect(zoomSelection_, &QAction::triggered, this, [this] {
    if (!selected_.empty()) zoomTo(selected_.front());
  });
  auto* const find = addAction(QStringLiteral("find"), QStringLiteral("find"), tr("&Find object"),
                               tr("Find an object of the drawing by its name"), QKeySequence::Find);
  connect(find, &QAction::triggered, this, [this] {
    if (auto* const dock = findChild<QDockWidget*>(QStringLiteral("treeDock"))) dock->show();
    tree_->focusFind();
  });
  auto* const prompt = addAction(QStringLiteral("commandLine"), {}, tr("&Command line"),
                                 tr("Type a command by its name"), QKeySequence(Qt::Key_F2));
  connect(prompt, &QAction::triggered, this, [this] {
    consoleDock_->show();
    consoleDock_->raise();
    console_->focusPrompt();
  });

  fileMenu_ = menuBar()->addMenu(tr("&File"));
  fileMenu_->addAction(open_);
  recentMenu_ = fileMenu_->addMenu(tr("Open re&cent"));
  recentMenu_->setObjectName(QStringLiteral("recentMenu"));
  connect(recentMenu_, &QMenu::aboutToShow, this, &MainWindow::fillRecent);
  fileMenu_->addAction(reload_);
  fileMenu_->addSeparator();
  fileMenu_->addAction(save_);
  fileMenu_->addAction(saveAs_);
  fileMenu_->addSeparator();
  fileMenu_->addAction(quit);

  viewMenu_ = menuBar()->addMenu(tr("&View"));
  viewMenu_->addAction(zoomAll_);
  viewMenu_->addAction(zoomSelection_);
  viewMenu_->addAction(find);
  viewMenu_->addAction(prompt);
  viewMenu_->addSeparator();
  layerMenu_ = viewMenu_->addMenu(icon(QStringLiteral("layers")), tr("&Layers"));
  layerMenu_->setObjectName(QStringLiteral("layerMenu"));
  QMenu* const surfaceMenu = viewMenu_->addMenu(icon(QStringLiteral("surface_look")), tr("S&urface"));
  surfaceMenu->setObjectName(QStringLiteral("surfaceMenu"));
  buildLook(*layerMenu_, *surfaceMenu);
  QMenu* const schemeMenu = viewMenu_->addMenu(tr("Sc&heme"));
  schemeMenu->setObjectName(QStringLiteral("schemeMenu"));
  schemes_ = new QActionGroup(this);
  const std::pair<Scheme, QString> schemes[] = {
      {Scheme::System, tr("As the &system")}, {Scheme::Light, tr("&Light")}, {Scheme::Dark, tr("&Dark")}};
  for (const auto& [scheme, text] : schemes) {
    QAction* const action = schemeMenu->addAction(text);
    action->setObjectName(QStringLiteral("scheme-") + schemeName(scheme));
    action->setCheckable(true);
    action->setData(schemeName(scheme));
    schemes_->addAction(action);
    connect(action, &QAction::triggered, this, [this, wanted = scheme] { setScheme(wanted); });
  }
  viewMenu_->addSeparator();
  QMenu* const panels = viewMenu_->addMenu(tr("&Panels"));
  for (QDockWidget* const dock : findChildren<QDockWidget*>()) panels->addAction(dock->toggleViewAction());

  reportMenu_ = menuBar()->addMenu(tr("&Reports"));
  reportMenu_->setObjectName(QStringLiteral("reportMenu"));

  QMenu* const helpMenu = menuBar()->addMenu(tr("&Help"));
  auto* const contents = addAction(QStringLiteral("help"), QStringLiteral("help"), tr("&Contents"),
                                   tr("How the reports are made"), QKeySequence::HelpContents);
  connect(contents, &QAction::triggered, this, [this] { frontEnd_->showHelpContents(); });
  auto* const about = addAction(QStringLiteral("about"), {}, tr("&About"), tr("About this program"));
  onTrigger(about, [this] {
    QMessageBox::about(this, tr("About lvxhost-desktop"),
                       tr("<h3>lvxhost-desktop %1</h3><p>Opens LandXML drawings and runs the road reports on them.</p>"
                          "<p>Module: %2</p>")
                           .arg(QApplication::applicationVersion(),
                                toQt(runtime::chosenModule(options_.choices).string()).toHtmlEscaped()));
  });
  helpMenu->addAction(contents);
  helpMenu->addSeparator();
  helpMenu->addAction(about);

  QToolBar* const tools = addToolBar(tr("Tools"));
  tools->setObjectName(QStringLiteral("tools"));
  tools->setIconSize({kToolSide, kToolSide});
  tools->setMovable(false);
  tools->addAction(open_);
  if (auto* const openButton = qobject_cast<QToolButton*>(tools->widgetForAction(open_))) {
    openButton->setMenu(recentMenu_);
    openButton->setPopupMode(QToolButton::MenuButtonPopup);
  }
  tools->addAction(save_);
  tools->addAction(saveAs_);
  tools->addSeparator();
  tools->addAction(zoomAll_);
  tools->addAction(zoomSelection_);
  const auto addMenuButton = [tools](QMenu* menu, const QString& tip) {
    auto* const button = new QToolButton;
    button->setIcon(menu->icon());
    button->setMenu(menu);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setToolTip(tip);
    tools->addWidget(button);
  };
  addMenuButton(layerMenu_, tr("<b>Layers</b><br>What is drawn"));
  addMenuButton(surfaceMenu, tr("<b>Surface</b><br>How the ground is drawn"));
  tools->addSeparator();
}

void MainWindow::buildLook(QMenu& layers, QMenu& surface) {
  const auto addSwitch = [this](QMenu& menu, const char* name, const QString& text, bool PlanLook::*part) {
    QAction* const action = menu.addAction(text);
    action->setObjectName(QStringLiteral("layer-") + QLatin1String(name));
    action->setCheckable(true);
    action->setChecked(settings_->value(QStringLiteral("layers/") + QLatin1String(name), look_.*part).toBool());
    look_.*part = action->isChecked();
    connect(action, &QAction::toggled, this, [this, name, part](bool on) {
      look_.*part = on;
      settings_->setValue(QStringLiteral("layers/") + QLatin1String(name), on);
      applyLook();
    });
  };
  addSwitch(layers, "alignments", tr("&Alignments"), &PlanLook::alignments);
  addSwitch(layers, "stations", tr("S&tations"), &PlanLook::stations);
  addSwitch(layers, "sampleLines", tr("Sample &lines"), &PlanLook::sampleLines);
  addSwitch(layers, "points", tr("&Points"), &PlanLook::points);
  addSwitch(layers, "corridors", tr("&Corridors"), &PlanLook::corridors);

  auto* const looks = new QActionGroup(this);
  const std::pair<SurfaceLook, QString> choices[] = {{SurfaceLook::Relief, tr("&Relief")},
                                                     {SurfaceLook::Heights, tr("&Heights")},
                                                     {SurfaceLook::None, tr("&Nothing")}};
  const int kept = settings_->value(QStringLiteral("layers/surface"), static_cast<int>(look_.surface)).toInt();
  for (const auto& [look, text] : choices) {
    QAction* const action = surface.addAction(text);
    action->setObjectName(QStringLiteral("surface-%1").arg(static_cast<int>(look)));
    action->setCheckable(true);
    looks->addAction(action);
    if (static_cast<int>(look) == kept) {
      look_.surface = look;
      action->setChecked(true);
    }
    connect(action, &QAction::triggered, this, [this, chosen = look] {
      look_.surface = chosen;
      settings_->setValue(QStringLiteral("layers/surface"), static_cast<int>(chosen));
      applyLook();
    });
  }
  if (looks->checkedAction() == nullptr) looks->actions().front()->setChecked(true);
  surface.addSeparator();
  addSwitch(surface, "triangles", tr("&Triangles when near"), &PlanLook::triangles);
  addSwitch(surface, "border", tr("&Border"), &PlanLook::border);
}

void MainWindow::applyLook() {
  look_.dark = isDark();
  plan_->setLook(look_);
}

void MainWindow::fillReports() {
  auto* const tools = findChild<QToolBar*>(QStringLiteral("tools"));
  int number = 0;
  for (const QString& command : session_->commands()) {
    const KnownReport* const known = findReport(command);
    const QString tip = known == nullptr ? tr("A command of the module") : tr(known->tip);
    constexpr int kLastDigit = 9;
    const QKeySequence keys =
        ++number <= kLastDigit ? QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number)) : QKeySequence();
    QAction* const action =
        addAction(command, known == nullptr ? QStringLiteral("report") : QString::fromLatin1(known->icon),
                  known == nullptr ? command : tr(known->title), tr("%1 (%2)").arg(tip, command), keys);
    connect(
        action, &QAction::triggered, this,
        [this, command] {
          if (isBusy()) return;
          console_->print(QStringLiteral("> ") + command);
          runCommand(command);
        },
        Qt::QueuedConnection);
    reportMenu_->addAction(action);
    tools->addAction(action);
    reports_.push_back(action);
  }
  tools->addSeparator();
  tools->addAction(findChild<QAction*>(QStringLiteral("help")));
  QStringList names = session_->commands();
  for (const char* own : kOwnCommands) names << QString::fromLatin1(own);
  console_->setCommands(names);
}

void MainWindow::buildStatusLine() {
  coordinates_ = new QLabel;
  coordinates_->setObjectName(QStringLiteral("coordinates"));
  station_ = new QLabel;
  station_->setObjectName(QStringLiteral("station"));
  // As wide as they get, so that nothing jumps while the mouse moves.
  const QFontMetrics metrics(coordinates_->font());
  coordinates_->setMinimumWidth(
      metrics.horizontalAdvance(placeText(QStringLiteral("00000000.000"), QStringLiteral("00000000.000"))));
  coordinates_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  statusBar()->addPermanentWidget(progress_);
  statusBar()->addPermanentWidget(station_);
  statusBar()->addPermanentWidget(coordinates_);
}

void MainWindow::restoreSettings() {
  const std::optional<Scheme> kept = schemeOf(settings_->value(QLatin1String(kSchemeKey)).toString());
  setScheme(options_.scheme.value_or(kept.value_or(Scheme::System)));
  const QByteArray geometry = settings_->value(QLatin1String(kGeometry)).toByteArray();
  if (geometry.isEmpty() || !restoreGeometry(geometry)) {
    const QSize room = screen()->availableSize();
    constexpr double kPart = 0.95;
    resize(kUsualSize.boundedTo(room * kPart));
  }
  if (!restoreState(settings_->value(QLatin1String(kState)).toByteArray(), kStateVersion)) {
    auto* const tree = findChild<QDockWidget*>(QStringLiteral("treeDock"));
    constexpr int kTreeWidth = 300;
    constexpr int kBottomHeight = 270;
    resizeDocks({tree}, {kTreeWidth}, Qt::Horizontal);
    resizeDocks({consoleDock_, profileDock_}, {kBottomHeight, kBottomHeight}, Qt::Vertical);
    constexpr int kConsoleWidth = 480;
    resizeDocks({consoleDock_, profileDock_}, {kConsoleWidth, kUsualSize.width() - kTreeWidth - kConsoleWidth},
                Qt::Horizontal);
  }
}

void MainWindow::saveSettings() {
  settings_->setValue(QLatin1String(kGeometry), saveGeometry());
  settings_->setValue(QLatin1String(kState), saveState(kStateVersion));
}

void MainWindow::setScheme(Scheme scheme) {
  applyScheme(scheme);
  for (QAction* const action : schemes_->actions()) action->setChecked(action->data().toString() == schemeName(scheme));
  // What the command line asks for counts for once.
  if (!options_.scheme || *options_.scheme != scheme)
    settings_->setValue(QLatin1String(kSchemeKey), schemeName(scheme));
  applyLook();
}

bool MainWindow::isBusy() const { return session_->isRunning() || work_->isRunning() || loader_->isRunning(); }

void MainWindow::updateState() {
  const bool busy = isBusy();
  stopLoading_->setEnabled(loader_->isRunning());
  const bool open = static_cast<bool>(session_->drawing());
  const bool changed = open && session_->drawing()->isChanged();
  open_->setEnabled(!busy);
  recentMenu_->setEnabled(!busy);
  reload_->setEnabled(open && !busy);
  save_->setEnabled(changed && !busy);
  saveAs_->setEnabled(open && !busy);
  for (QAction* const report : reports_) report->setEnabled(open && !busy);
  zoomAll_->setEnabled(open);
  zoomSelection_->setEnabled(!selected_.empty());
  setWindowTitle(open ? tr("%1[*] – lvxhost-desktop").arg(QFileInfo(drawingPath()).fileName())
                      : QStringLiteral("lvxhost-desktop"));
  setWindowModified(changed);
}

// ---------------------------------------------------------------- drawings

QString MainWindow::drawingPath() const {
  return session_->drawing() ? QFile::decodeName(QByteArray::fromStdString(session_->drawing()->drawing().path))
                             : QString();
}

void MainWindow::askOpen() {
  if (isBusy()) return;
  const QString folder = settings_->value(QLatin1String(kFolder), QDir::homePath()).toString();
  const QString path = QFileDialog::getOpenFileName(this, tr("Open a drawing"), folder,
                                                    tr("LandXML drawings (*.xml *.landxml);;All files (*)"));
  if (!path.isEmpty()) openDrawing(path);
}

void MainWindow::askReload() {
  if (!isBusy() && session_->drawing()) openDrawing(drawingPath());
}

void MainWindow::openDrawing(const QString& path) {
  if (session_->isRunning() || work_->isRunning()) return;
  if (!settleChanges()) return;
  const QString absolute = QFileInfo(path).absoluteFilePath();
  loader_->start(absolute);
  progress_->begin(tr("Reading %1").arg(QFileInfo(absolute).fileName()));
  updateState();
}

void MainWindow::take(const LoadedDrawing& loaded) {
  progress_->end();
  plan_->setScene(nullptr);
  section_->clear();
  profile_->clear();
  tree_->setDrawing(nullptr);
  diagnostics_->setDrawing(nullptr);
  alignment_ = nullptr;
  selected_.clear();
  scene_.reset();
  notice_->hide();

  session_->open(loaded.drawing);
  scene_ = loaded.scene;
  stamp_ = loaded.stamp;
  const QString path = drawingPath();
  source_ = std::make_unique<standin_platform::HeldFile>(QFile::encodeName(path).toStdString());
  watch_->watch(path, stamp_);

  const civil::Drawing& drawing = session_->drawing()->drawing();
  awaitsPaint_ = true;
  plan_->setScene(scene_);
  plan_->zoomToAll();
  tree_->setDrawing(&drawing);
  diagnostics_->setDrawing(&drawing);
  for (const civil::Site& site : drawing.sites)
    if (alignment_ == nullptr && !site.alignments.empty()) alignment_ = site.alignments.front().get();
  if (alignment_ == nullptr && !drawing.siteless.alignments.empty())
    alignment_ = drawing.siteless.alignments.front().get();
  useAlignment(alignment_);
  if (alignment_ != nullptr) profile_->show(drawing, alignment_->handle);

  console_->print(tr("%1 is open.").arg(path));
  const auto severe =
      std::count_if(drawing.diagnostics.begin(), drawing.diagnostics.end(),
                    [](const civil::Diagnostic& diagnostic) { return diagnostic.severity != civil::Severity::Note; });
  if (severe > 0)
    console_->printError(
        tr("The reader found %n odd thing(s) in it; see Diagnostics.", nullptr, static_cast<int>(severe)));
  rememberRecent(path);
  updateState();
}

void MainWindow::tellFailure(const LoadFailure& failure) {
  progress_->end();
  updateState();
  console_->printError(tr("%1 can't be opened: %2").arg(failure.path, failure.reason));
  QMessageBox box(QMessageBox::Critical, tr("The drawing can't be opened"),
                  tr("%1 can't be opened.").arg(QFileInfo(failure.path).fileName()), QMessageBox::Ok, this);
  box.setObjectName(QStringLiteral("openFailed"));
  box.setEscapeButton(QMessageBox::Ok);
  const QString kept = session_->drawing() ? tr("The drawing that was open stays open.") : QString();
  box.setInformativeText(QStringList{failure.reason, failure.advice, kept}
                             .filter(QRegularExpression(QStringLiteral(".")))
                             .join(QStringLiteral("\n\n")));
  QPushButton* const show = failure.line > 0 ? box.addButton(tr("&Show the line"), QMessageBox::ActionRole) : nullptr;
  box.exec();
  if (show != nullptr && box.clickedButton() == show)
    (new TextWindow(failure.path, failure.line, decodeUtf8OrLatin1, this))->show();
}

bool MainWindow::settleChanges() {
  if (!askChanges_ || !session_->drawing() || !session_->drawing()->isChanged()) return true;
  QMessageBox box(QMessageBox::Question, tr("Save the drawing?"),
                  tr("%1 has sections that aren't saved.").arg(QFileInfo(drawingPath()).fileName()),
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
  box.setObjectName(QLatin1String(kSaveQuestion));
  box.setInformativeText(tr("Without saving, the sections that the GLS report added are lost."));
  box.button(QMessageBox::Discard)->setText(tr("&Don't save"));
  box.setDefaultButton(QMessageBox::Save);
  switch (box.exec()) {
    case QMessageBox::Save:
      return save();
    case QMessageBox::Discard:
      return true;
    default:
      return false;
  }
}

bool MainWindow::save() {
  if (!session_->drawing() || isBusy()) return false;
  return saveTo(drawingPath());
}

bool MainWindow::askSaveAs() {
  if (!session_->drawing() || isBusy()) return false;
  const QString target = QFileDialog::getSaveFileName(this, tr("Save the drawing as"), drawingPath(),
                                                      tr("LandXML drawings (*.xml);;All files (*)"));
  return !target.isEmpty() && saveTo(target);
}

bool MainWindow::saveTo(const QString& target) {
  const QString path = drawingPath();
  const bool isOwnName = QFileInfo(target).absoluteFilePath() == QFileInfo(path).absoluteFilePath();
  const std::optional<FileStamp> now = stampOf(path);
  if (isOwnName && now && now != stamp_) {
    tellSaveError(target,
                  tr("The file was changed by another program since it was opened, and saving would undo that."));
    return false;
  }
  // Where the name leads elsewhere by now, what was opened is still held.
  const auto held = source_ ? source_->path() : std::nullopt;
  const QString from = now == stamp_ || !held ? path : QFile::decodeName(QByteArray::fromStdString(held->string()));
  const std::string sourcePath = QFile::encodeName(from).toStdString();
  const std::string targetPath = QFile::encodeName(target).toStdString();
  QString problem;
  bool isCancelled = false;
  {
    const LongWork::Run run(*work_, tr("Saving %1").arg(QFileInfo(target).fileName()));
    updateState();
    landxml::SaveOptions options;
    options.progress = [this, target](const landxml::Progress& progress) {
      work_->setProgress(tr("Saving %1").arg(QFileInfo(target).fileName()), progress.bytesDone, progress.bytesTotal);
      return !work_->check();
    };
    try {
      session_->drawing()->save([&](civil::Drawing& drawing) {
        drawing.file = landxml::saveDrawing(drawing, sourcePath, targetPath, options);
        drawing.path = targetPath;
      });
    } catch (const landxml::Cancelled&) {
      isCancelled = true;
    } catch (const landxml::SaveError& error) {
      // The user knows what was opened by its path, whatever it was read under.
      problem = toQt(error.file() == sourcePath ? error.description(toUtf8(path)) : error.description());
    } catch (const std::exception& error) {
      problem = toQt(std::string(error.what()));
    }
  }
  updateState();
  closeIfWanted();
  if (isCancelled) {
    console_->print(tr("Saving %1 was cancelled; the drawing isn't saved.").arg(target));
    return false;
  }
  if (!problem.isEmpty()) {
    if (!closing_) tellSaveError(target, problem);
    return false;
  }
  stamp_ = stampOf(target);
  source_ = std::make_unique<standin_platform::HeldFile>(targetPath);
  watch_->watch(target, stamp_);
  notice_->hide();
  diagnostics_->setDrawing(&session_->drawing()->drawing());
  console_->print(tr("%1 is saved, %2.").arg(target, sizeText(stamp_ ? stamp_->size : 0)));
  rememberRecent(target);
  updateState();
  return true;
}

void MainWindow::tellSaveError(const QString& target, const QString& reason) {
  console_->printError(tr("%1 can't be saved: %2").arg(target, reason));
  QMessageBox box(QMessageBox::Critical, tr("The drawing can't be saved"),
                  tr("%1 can't be saved.").arg(QFileInfo(target).fileName()), QMessageBox::NoButton, this);
  box.setObjectName(QStringLiteral("saveFailed"));
  box.setInformativeText(reason + QStringLiteral("\n\n") +
                         tr("The drawing stays open with its changes, and nothing was written. Save it under another "
                            "name or in another folder, or make room and try again."));
  QPushButton* const elsewhere = box.addButton(tr("Save &as…"), QMessageBox::AcceptRole);
  box.addButton(QMessageBox::Close);
  box.setDefaultButton(elsewhere);
  box.exec();
  if (box.clickedButton() == elsewhere)
    QMetaObject::invokeMethod(
        this, [this] { askSaveAs(); }, Qt::QueuedConnection);
}

void MainWindow::rememberRecent(const QString& path) {
  QStringList recent = settings_->value(QLatin1String(kRecent)).toStringList();
  recent.removeAll(path);
  recent.prepend(path);
  while (recent.size() > kRecentDrawings) recent.removeLast();
  settings_->setValue(QLatin1String(kRecent), recent);
  settings_->setValue(QLatin1String(kFolder), QFileInfo(path).absolutePath());
}

void MainWindow::fillRecent() {
  recentMenu_->clear();
  const QStringList recent = settings_->value(QLatin1String(kRecent)).toStringList();
  int number = 0;
  bool missing = false;
  for (const QString& path : recent) {
    const bool there = QFileInfo(path).isFile();
    missing = missing || !there;
    QAction* const action =
        recentMenu_->addAction(QStringLiteral("&%1  %2")
                                   .arg(++number % kRecentDrawings)
                                   .arg(QString(path).replace(QLatin1Char('&'), QStringLiteral("&&"))));
    action->setEnabled(there);
    action->setStatusTip(there ? path : tr("%1 isn't there any more").arg(path));
    connect(
        action, &QAction::triggered, this, [this, path] { openDrawing(path); }, Qt::QueuedConnection);
  }
  if (recent.isEmpty()) recentMenu_->addAction(tr("No drawing was opened yet"))->setEnabled(false);
  if (!missing) return;
  recentMenu_->addSeparator();
  connect(recentMenu_->addAction(tr("&Remove those that are gone")), &QAction::triggered, this, [this] {
    QStringList kept = settings_->value(QLatin1String(kRecent)).toStringList();
    erase_if(kept, [](const QString& path) { return !QFileInfo(path).isFile(); });
    settings_->setValue(QLatin1String(kRecent), kept);
  });
}

// ---------------------------------------------------------------- looking

const civil::AlignmentObject* MainWindow::alignmentOf(civil::Handle handle) const {
  const auto entry = session_->drawing()->index().byHandle(handle);
  return entry ? entry->alignment : nullptr;
}

void MainWindow::select(civil::Handle handle, const QObject* from) {
  selected_.clear();
  const auto entry = session_->drawing() ? session_->drawing()->index().byHandle(handle) : std::nullopt;
  if (entry) selected_.push_back(handle);
  plan_->setSelected(shownFor(handle));
  if (from != tree_) tree_->reveal(handle);
  zoomSelection_->setEnabled(!selected_.empty());
  if (!entry) return;

  const civil::Drawing& drawing = session_->drawing()->drawing();
  if (const civil::AlignmentObject* const alignment = alignmentOf(handle)) {
    useAlignment(alignment);
    if (profile_->alignment() != alignment->handle) profile_->show(drawing, alignment->handle);
  }
  switch (entry->kind()) {
    case civil::ObjectKind::Alignment:
      profile_->setSelected(0);
      profileDock_->raise();
      break;
    case civil::ObjectKind::Profile:
      profile_->setSelected(handle);
      profileDock_->raise();
      break;
    case civil::ObjectKind::SampleLine:
      if (section_->sampleLine() != handle) section_->show(drawing, handle);
      sectionDock_->raise();
      break;
    default:
      break;
  }
}

std::vector<civil::Handle> MainWindow::shownFor(civil::Handle handle) const {
  const auto entry = session_->drawing() ? session_->drawing()->index().byHandle(handle) : std::nullopt;
  if (!entry) return {};
  std::vector<civil::Handle> shown;
  if (const auto* const site = entry->as<civil::Site>()) {
    for (const auto& alignment : site->alignments) shown.push_back(alignment->handle);
  } else if (const auto* const group = entry->as<civil::SampleLineGroup>()) {
    for (const civil::SampleLine& line : group->lines) shown.push_back(line.handle);
  } else if (const auto* const points = entry->as<civil::PointGroup>()) {
    for (const std::int32_t number : points->numbers)
      if (const civil::Point* const point = session_->drawing()->index().pointByNumber(number))
        shown.push_back(point->handle);
  } else if (entry->as<civil::ProfileObject>() != nullptr) {
    shown.push_back(entry->alignment->handle);
  } else {
    shown.push_back(handle);
  }
  return shown;
}

void MainWindow::zoomTo(civil::Handle handle) {
  if (!session_->drawing() || !scene_) return;
  plan_->zoomTo(handle);
}

void MainWindow::useAlignment(const civil::AlignmentObject* alignment) {
  alignment_ = alignment;
  if (alignment == nullptr) {
    station_->clear();
    return;
  }
  const QString name = toQt(alignment->name);
  const auto foot = mouse_ ? alignment->geometry.stationOffset({mouse_->x(), mouse_->y()}) : std::nullopt;
  if (!foot) {
    station_->setText(name);
    return;
  }
  const QString side = foot->offset < 0.0 ? tr("left") : foot->offset > 0.0 ? tr("right") : tr("on the axis");
  station_->setText(tr("%1:  station %2   offset %3 %4")
                        .arg(name, toQt(text::stationText(foot->station)), toQt(text::fixedText(foot->offset)), side));
}

QString MainWindow::placeText(const QString& east, const QString& north) {
  //: Easting and northing of a place, as their letters.
  return tr("E %1   N %2").arg(east, north);
}

void MainWindow::showMouse(QPointF place) {
  mouse_ = place;
  coordinates_->setText(placeText(toQt(text::fixedText(place.x())), toQt(text::fixedText(place.y()))));
  useAlignment(alignment_);
}

void MainWindow::showLine(quint64 line) { (new TextWindow(drawingPath(), line, decodeUtf8OrLatin1, this))->show(); }

// ---------------------------------------------------------------- commands

QString MainWindow::titleOf(const QString& command) const {
  const KnownReport* const known = findReport(command);
  return known == nullptr ? command : tr(known->title).remove(QLatin1Char('&')).remove(QChar(0x2026));
}

void MainWindow::enter(const QString& text) {
  const QString command = session_->commandOf(text);
  console_->print(QStringLiteral("> ") + (command.isEmpty() ? text : command));
  if (isBusy()) {
    console_->print(
        frontEnd_->isPicking()
            ? tr("%1 waits for a pick in the drawing or in the tree; Escape ends it.").arg(titleOf(session_->running()))
            : tr("Something else is running; wait for its end or press Escape."));
    return;
  }
  const QString word = text.section(QLatin1Char(' '), 0, 0).toUpper();
  const QString rest = text.section(QLatin1Char(' '), 1).trimmed();
  if (!command.isEmpty()) {
    runCommand(command);
  } else if (word == QStringLiteral("OPEN")) {
    if (rest.isEmpty())
      askOpen();
    else
      openDrawing(rest);
  } else if (word == QStringLiteral("SAVE") && rest.isEmpty() && session_->drawing()) {
    save();
  } else if (word == QStringLiteral("SAVEAS") && session_->drawing()) {
    if (rest.isEmpty())
      askSaveAs();
    else
      saveTo(QFileInfo(rest).absoluteFilePath());
  } else if (word == QStringLiteral("ZOOM")) {
    plan_->zoomToAll();
  } else if (word == QStringLiteral("HELP")) {
    frontEnd_->showHelpContents();
  } else if (word == QStringLiteral("QUIT")) {
    close();
  } else if (word == QStringLiteral("SAVE") || word == QStringLiteral("SAVEAS")) {
    console_->printError(tr("No drawing is open. OPEN opens one."));
  } else {
    QStringList known = session_->commands();
    for (const char* own : kOwnCommands) known << QString::fromLatin1(own);
    console_->printError(tr("There is no command '%1'. There is %2.").arg(text, known.join(QStringLiteral(", "))));
  }
}

void MainWindow::runCommand(const QString& name) {
  if (isBusy()) return;
  if (!session_->drawing()) {
    console_->printError(tr("No drawing is open. OPEN opens one."));
    return;
  }
  const CommandReport report = session_->run(name);
  if (scene_) {
    scene_->refreshCorridors();
    plan_->refresh();
  }
  if (section_->sampleLine() != 0) section_->show(session_->drawing()->drawing(), section_->sampleLine());
  console_->setPrompt({});
  updateState();
  tellReport(report);
  closeIfWanted();
}

void MainWindow::closeIfWanted() {
  if (closing_)
    QMetaObject::invokeMethod(
        this, [this] { close(); }, Qt::QueuedConnection);
}

void MainWindow::tellReport(const CommandReport& report) {
  const QString title = titleOf(report.name);
  QStringList failed;
  for (const runtime::FileEvent& event : report.files) {
    const QString path = toQt(event.path);
    switch (event.fate) {
      case runtime::FileFate::Written:
        console_->printHtml(QStringLiteral("%1 &nbsp;%2 &nbsp; %3 &nbsp;·&nbsp; %4")
                                .arg(path.toHtmlEscaped(), tr("%1 bytes").arg(event.bytes),
                                     link("open", path, tr("Open")), link("folder", path, tr("Show in folder"))));
        break;
      case runtime::FileFate::Failed:
        failed << tr("%1: %2").arg(path, toQt(event.reason));
        console_->printError(tr("%1 was not written: %2").arg(path, toQt(event.reason)));
        break;
      case runtime::FileFate::Removed:
        console_->print(tr("%1 was removed.").arg(path));
        break;
    }
  }
  if (report.interrupted)
    console_->print(tr("%1 was cancelled; no unfinished file was left.").arg(title));
  else if (!report.exception.isEmpty())
    console_->printError(tr("%1 ended by an exception: %2").arg(title, report.exception));
  else if (report.files.empty())
    console_->print(tr("%1 ended and wrote nothing.").arg(title));
  if (session_->drawing() && session_->drawing()->isChanged())
    console_->print(tr("The drawing has new sections that aren't saved yet."));
  if (!closing_ && !report.missingFolder.isEmpty()) tellMissingFolder(report.missingFolder);
  if (!closing_ && !failed.isEmpty() && !report.interrupted) {
    QMessageBox box(QMessageBox::Warning, tr("Not everything was written"),
                    tr("%1 could not write %n file(s).", nullptr, static_cast<int>(failed.size())).arg(title),
                    QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("notWritten"));
    box.setInformativeText(failed.join(QLatin1Char('\n')) + QStringLiteral("\n\n") +
                           tr("Run the report again and choose a folder that you may write to and that has room. What "
                              "stood under these names is as it was."));
    box.exec();
  }
}

void MainWindow::printMissingFolder(const QString& folder) {
  console_->printError(tr("There is no folder %1, and nothing was written.").arg(folder));
}

void MainWindow::tellMissingFolder(const QString& folder) {
  printMissingFolder(folder);
  QMessageBox box(QMessageBox::Warning, tr("Nothing was written"), tr("There is no folder %1.").arg(folder),
                  QMessageBox::Ok, this);
  box.setObjectName(QStringLiteral("notWritten"));
  box.setInformativeText(tr("Make it, or choose another place for the output file."));
  box.exec();
}

void MainWindow::activateLink(const QUrl& url) {
  const QString path =
      QUrl::fromPercentEncoding(QUrlQuery(url).queryItemValue(QStringLiteral("file"), QUrl::FullyDecoded).toLatin1());
  const QString problem = url.path() == QStringLiteral("open")
                              ? openReport(path, options_.choices.reportCodePage.value_or(""), this)
                              : showInFolder(path);
  if (!problem.isEmpty()) console_->printError(problem);
}

// ---------------------------------------------------------------- events

void MainWindow::leaveNow() {
  askChanges_ = false;
  close();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (work_->isRunning()) {
    // The command or the saving ends first; then the window closes.
    closing_ = true;
    event->ignore();
    frontEnd_->giveUpAll();
    return;
  }
  if (QWidget* const open = QApplication::activeModalWidget()) {
    if (askChanges_ && open->objectName() == QLatin1String(kSaveQuestion)) {
      // The question that closing asks is there already.
      event->ignore();
      return;
    }
    frontEnd_->giveUpAll();
  }
  if (!settleChanges()) {
    closing_ = false;
    frontEnd_->askAgain();
    event->ignore();
    return;
  }
  loader_->cancel();
  saveSettings();
  frontEnd_->closeHelp();
  for (QWidget* const window : findChildren<QWidget*>())
    if (window->isWindow()) window->close();
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  if (!isBusy() && urls.size() == 1 && urls.front().isLocalFile()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString path = event->mimeData()->urls().value(0).toLocalFile();
  event->acceptProposedAction();
  // The program that the file comes from waits until the drop is over.
  QMetaObject::invokeMethod(
      this, [this, path] { openDrawing(path); }, Qt::QueuedConnection);
}

void MainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::ApplicationPaletteChange && plan_ != nullptr) applyLook();
}

bool MainWindow::eventFilter(QObject* target, QEvent* event) {
  if (target == plan_ && awaitsPaint_ && event->type() == QEvent::Paint) {
    // Behind the paint, which tells whether the picture was the final one.
    QMetaObject::invokeMethod(
        this,
        [this] {
          if (!awaitsPaint_ || !plan_->isSharp()) return;
          awaitsPaint_ = false;
          Q_EMIT drawingShown();
        },
        Qt::QueuedConnection);
  }
  return QMainWindow::eventFilter(target, event);
}

}  // namespace lvx::desktop
