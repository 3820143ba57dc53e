#include "desktop/shell/window_panels.h"

#include <QAction>
#include <QCoreApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QScreen>
#include <QSettings>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/charts/free_section_view.h"
#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/panels/console_view.h"
#include "desktop/panels/diagnostics_view.h"
#include "desktop/panels/drawing_tree.h"
#include "desktop/panels/notice_bar.h"
#include "desktop/panels/progress_strip.h"
#include "desktop/panels/properties_view.h"
#include "desktop/plan/plan_view.h"

namespace lvx::desktop {

namespace {

constexpr QSize kUsualSize(1600, 1000);
constexpr int kStateVersion = 1;

// Names under which settings are kept.
constexpr const char* kGeometry = "window/geometry";
constexpr const char* kState = "window/state";

/// The titles of the docks.
class DockNames {
  Q_DECLARE_TR_FUNCTIONS(DockNames)
};

QDockWidget* addDock(QMainWindow& window, const QString& name, const QString& title, QWidget* widget,
                     Qt::DockWidgetArea area) {
  auto* const dock = new QDockWidget(title, &window);
  dock->setObjectName(name);
  dock->setWidget(widget);
  window.addDockWidget(area, dock);
  // Opened behind another one it would seem not to have come.
  QObject::connect(dock->toggleViewAction(), &QAction::triggered, dock, [dock](bool isOpened) {
    if (isOpened) dock->raise();
  });
  return dock;
}

}  // namespace

WindowPanels::WindowPanels(QMainWindow& window)
    : notice(new NoticeBar(QStringLiteral("notice"))),
      outcome(new NoticeBar(QStringLiteral("outcome"))),
      plan(new PlanView),
      tree(new DrawingTree),
      console(new ConsoleView),
      diagnostics(new DiagnosticsView),
      section(new SectionView),
      freeSection(new FreeSectionView),
      sections(new QStackedWidget),
      profile(new ProfileView),
      progress(new ProgressStrip),
      properties(new PropertiesView) {
  plan->setObjectName(QStringLiteral("plan"));
  section->setObjectName(QStringLiteral("section"));
  profile->setObjectName(QStringLiteral("profile"));
  freeSection->setObjectName(QStringLiteral("freeSection"));
  sections->addWidget(section);
  sections->addWidget(freeSection);
  buildCentre(window);
  buildDocks(window);
  window.statusBar()->addPermanentWidget(progress);
}

void WindowPanels::buildCentre(QMainWindow& window) const {
  auto* const centre = new QWidget;
  auto* const layout = new QVBoxLayout(centre);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(notice);
  layout->addWidget(outcome);
  layout->addWidget(plan, 1);
  window.setCentralWidget(centre);
}

void WindowPanels::buildDocks(QMainWindow& window) {
  window.setDockNestingEnabled(true);
  window.setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
  treeDock = addDock(window, QStringLiteral("treeDock"), DockNames::tr("Drawing"), tree, Qt::LeftDockWidgetArea);
  consoleDock =
      addDock(window, QStringLiteral("consoleDock"), DockNames::tr("Console"), console, Qt::BottomDockWidgetArea);
  profileDock =
      addDock(window, QStringLiteral("profileDock"), DockNames::tr("Profile"), profile, Qt::BottomDockWidgetArea);
  // Split before anything is put into tabs: a tab is where later ones go.
  window.splitDockWidget(consoleDock, profileDock, Qt::Horizontal);
  diagnosticsDock = addDock(window, QStringLiteral("diagnosticsDock"), DockNames::tr("Diagnostics"), diagnostics,
                            Qt::BottomDockWidgetArea);
  sectionDock = addDock(window, QStringLiteral("sectionDock"), DockNames::tr("Cross section"), sections,
                        Qt::BottomDockWidgetArea);
  propertiesDock = addDock(window, QStringLiteral("propertiesDock"), DockNames::tr("Properties"), properties,
                           Qt::LeftDockWidgetArea);
  window.tabifyDockWidget(consoleDock, diagnosticsDock);
  window.tabifyDockWidget(profileDock, sectionDock);
  consoleDock->raise();
  profileDock->raise();
  QObject::connect(diagnostics, &DiagnosticsView::titleChanged, diagnosticsDock, &QDockWidget::setWindowTitle);
}

void WindowPanels::showConsole() const {
  consoleDock->show();
  consoleDock->raise();
}

void WindowPanels::showProperties() const {
  propertiesDock->show();
  propertiesDock->raise();
}

void WindowPanels::keepFirst(const QMainWindow& window) { firstState_ = window.saveState(kStateVersion); }

void WindowPanels::reset(QMainWindow& window) const {
  window.restoreState(firstState_, kStateVersion);
  sizeDocks(window);
}

void WindowPanels::restore(QMainWindow& window, const QSettings& settings) const {
  const QByteArray geometry = settings.value(QLatin1String(kGeometry)).toByteArray();
  if (geometry.isEmpty() || !window.restoreGeometry(geometry)) {
    const QSize room = window.screen()->availableSize();
    constexpr double kPart = 0.95;
    window.resize(kUsualSize.boundedTo(room * kPart));
  }
  if (!window.restoreState(settings.value(QLatin1String(kState)).toByteArray(), kStateVersion)) sizeDocks(window);
}

void WindowPanels::sizeDocks(QMainWindow& window) const {
  constexpr int kTreeWidth = 300;
  constexpr int kBottomHeight = 270;
  window.resizeDocks({consoleDock, profileDock}, {kBottomHeight, kBottomHeight}, Qt::Vertical);
  constexpr int kTreeShare = 3;
  constexpr int kPropertiesShare = 2;
  window.resizeDocks({treeDock, propertiesDock},
                     {window.height() * kTreeShare / (kTreeShare + kPropertiesShare),
                      window.height() * kPropertiesShare / (kTreeShare + kPropertiesShare)},
                     Qt::Vertical);
  // Asked for more than there is, the window would take it from the tree.
  constexpr int kConsoleWidth = 480;
  constexpr double kConsoleShare = 0.4;
  const int room = window.width() - kTreeWidth;
  const int consoleWidth = std::min(kConsoleWidth, static_cast<int>(room * kConsoleShare));
  window.resizeDocks({consoleDock, profileDock}, {consoleWidth, room - consoleWidth}, Qt::Horizontal);
  window.resizeDocks({treeDock}, {kTreeWidth}, Qt::Horizontal);
}

void WindowPanels::save(const QMainWindow& window, QSettings& settings) {
  settings.setValue(QLatin1String(kGeometry), window.saveGeometry());
  settings.setValue(QLatin1String(kState), window.saveState(kStateVersion));
}

}  // namespace lvx::desktop
