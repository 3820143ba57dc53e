#include "desktop/shell/window_actions.h"

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <optional>
#include <utility>

#include "desktop/common/icons.h"
#include "desktop/shell/look_menus.h"
#include "desktop/shell/report_names.h"
#include "desktop/shell/scheme_menu.h"

namespace lvx::desktop {

namespace {

constexpr int kToolSide = 24;

/// What has to hold for an action: bits.
enum Need : unsigned {
  Nothing = 0,
  Idle = 1,
  Open = 2,
  Changes = 4,
  Selection = 8,
  Undoable = 16,
  Redoable = 32,
  Lines = 64,
  ViewBefore = 128,
  ViewBehind = 256,
  Hidden = 512
};

unsigned heldBy(const WindowState& state) {
  return (state.isIdle ? Idle : 0U) | (state.isOpen ? Open : 0U) | (state.isChanged ? Changes : 0U) |
         (state.hasSelection ? Selection : 0U) | (state.undo.isEmpty() ? 0U : Undoable) |
         (state.redo.isEmpty() ? 0U : Redoable) | (state.hasLines ? Lines : 0U) |
         (state.hasPreviousView ? ViewBefore : 0U) | (state.hasNextView ? ViewBehind : 0U) |
         (state.hasHidden ? Hidden : 0U);
}

bool areMet(unsigned needs, const WindowState& state) { return (needs & ~heldBy(state)) == 0; }

constexpr unsigned kCommandNeeds = Open | Idle;

struct Row {
  WindowAction action;
  const char* name;  ///< by which settings and tests know it
  const char* icon;  ///< empty: none
  const char* text;
  const char* tip;
  QKeySequence keys;
  unsigned needs;
  bool isQueued;  ///< it may wait for the user
};

const std::vector<Row>& rows() {
  static const std::vector<Row> kRows = {
      {WindowAction::Open, "open", "open", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Open…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Open a LandXML drawing"), QKeySequence::Open, Idle, true},
      {WindowAction::AddDrawing, "addDrawing", "add_drawing",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "A&dd drawing…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Add the contents of more LandXML files to the open drawing"),
       Qt::CTRL | Qt::SHIFT | Qt::Key_O, Idle, true},
      {WindowAction::Reload, "reload", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Reload"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Read the open drawing's files again"), Qt::Key_F5, Open | Idle,
       true},
      {WindowAction::Save, "save", "save", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Save"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Save the drawing with its added sections"), QKeySequence::Save,
       Open | Changes | Idle, true},
      {WindowAction::SaveAs, "saveAs", "save_as", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Save &as…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Save the drawing in another file"),
       Qt::CTRL | Qt::SHIFT | Qt::Key_S, Open | Idle, true},
      {WindowAction::SectionBook, "sectionBook", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Section &book…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions",
                         "Draw all sections of a group, or the long section, into one PDF"),
       Qt::CTRL | Qt::Key_B, Open | Idle, true},
      {WindowAction::ExportPlan, "exportPlan", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Export plan…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Write the plan to a PDF, SVG or PNG file, in true scale"),
       Qt::CTRL | Qt::SHIFT | Qt::Key_E, Open | Idle, true},
      {WindowAction::PrintPlan, "printPlan", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Print plan…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Print the plan in true scale"), QKeySequence::Print,
       Open | Idle, true},
      {WindowAction::Quit, "quit", "quit", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Quit"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Close the program"), Qt::CTRL | Qt::Key_Q, Nothing, true},
      {WindowAction::Undo, "undo", "undo", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Undo"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Take back the last change of the drawing"),
       Qt::CTRL | Qt::Key_Z, Idle | Undoable, false},
      {WindowAction::Redo, "redo", "redo", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Redo"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Make the change again that was taken back"),
       Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Idle | Redoable, false},
      {WindowAction::NewLines, "newLines", "sample_line_group",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Sample &lines…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Make a group of sample lines by rules"), Qt::CTRL | Qt::Key_L,
       Open | Idle, true},
      {WindowAction::EditLines, "editLines", "",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Edit sample lines…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Change the group of the selected sample line"),
       Qt::CTRL | Qt::SHIFT | Qt::Key_L, Idle | Lines, true},
      {WindowAction::AddLine, "addLine", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Add a sample line…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Add a line to the selected group, at a station"),
       QKeySequence(), Idle | Lines, true},
      {WindowAction::Delete, "delete", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Delete"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Delete the selected sample line or group"),
       QKeySequence::Delete, Idle | Lines, false},
      {WindowAction::NewProfile, "newProfile", "profile",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Profile from surface…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Make a ground profile of an alignment from a surface"),
       QKeySequence(), Open | Idle, true},
      {WindowAction::NewPointGroup, "newPointGroup", "point_group",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Point group from &filter…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Make a group of the points that meet conditions"),
       QKeySequence(), Open | Idle, true},
      {WindowAction::NewPointGroupOfSelection, "newPointGroupOfSelection", "",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Point group from &selection…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Select points in the plan and make a group of them"),
       QKeySequence(), Open | Idle, true},
      {WindowAction::Measure, "measure", "measure", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Measure"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Measure distances, heights, slopes and areas in the plan"),
       Qt::CTRL | Qt::Key_M, Open | Idle, true},
      {WindowAction::Difference, "difference", "difference",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Difference of surfaces…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions",
                         "Cut and fill between two surfaces, and the plan coloured by them"),
       QKeySequence(), Open | Idle, true},
      {WindowAction::FreeSection, "freeSection", "profile",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Free sect&ion"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Draw a line over the plan and see the section along it"),
       Qt::CTRL | Qt::SHIFT | Qt::Key_X, Open | Idle, false},
      {WindowAction::ZoomAll, "zoomAll", "zoom_all", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Zoom to &all"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Show the whole drawing"), Qt::CTRL | Qt::Key_0, Open, false},
      {WindowAction::ZoomSelection, "zoomSelection", "zoom_selection",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Zoom to &selection"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Show the selected object as large as it goes"),
       Qt::CTRL | Qt::Key_E, Selection, false},
      {WindowAction::ZoomRectangle, "zoomRectangle", "zoom_rectangle",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Zoom to a &rectangle"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Show a rectangle that you draw, as large as it goes"),
       Qt::CTRL | Qt::Key_W, Open, false},
      {WindowAction::PreviousView, "previousView", "previous_view",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Pre&vious view"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Show what the plan showed before"), Qt::ALT | Qt::Key_Left,
       Open | ViewBefore, false},
      {WindowAction::NextView, "nextView", "next_view", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Next view"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Show the view again that was gone back from"),
       Qt::ALT | Qt::Key_Right, Open | ViewBehind, false},
      {WindowAction::FullScreen, "fullScreen", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Full scr&een"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Fill the screen with the window, or give it its size back"),
       Qt::Key_F11, Nothing, false},
      {WindowAction::ShowAllObjects, "showAllObjects", "",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Sho&w all objects"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Show the objects again that are hidden in the plan"),
       QKeySequence(), Open | Hidden, false},
      {WindowAction::Find, "find", "find", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Find object"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Find an object of the drawing by its name"),
       QKeySequence::Find, Nothing, false},
      {WindowAction::GoTo, "goTo", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Go to…"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Go to a point, a station, coordinates or an object"),
       Qt::CTRL | Qt::Key_G, Open, false},
      {WindowAction::CommandLine, "commandLine", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Command line"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Type a command by its name"), Qt::Key_F2, Nothing, false},
      {WindowAction::ResetPanels, "resetPanels", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Rese&t panels"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "Put all panels and tools back to their first places"),
       QKeySequence(), Nothing, false},
      {WindowAction::WindowHelp, "windowHelp", "help", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "This &window"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "What the parts of this window show and do"),
       QKeySequence::HelpContents, Nothing, false},
      {WindowAction::HelpContents, "help", "help", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Contents"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "How the reports are made"), QKeySequence(), Nothing, false},
      {WindowAction::Shortcuts, "shortcuts", "",
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&Keyboard shortcuts"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "All keys of this window's actions"), QKeySequence(), Nothing,
       true},
      {WindowAction::About, "about", "", QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "&About"),
       QT_TRANSLATE_NOOP("lvx::desktop::WindowActions", "About this program"), QKeySequence(), Nothing, true},
  };
  return kRows;
}

const Row& rowOf(WindowAction action) {
  return *std::find_if(rows().begin(), rows().end(), [&](const Row& row) { return row.action == action; });
}

}  // namespace

WindowActions::WindowActions(QMainWindow& window, QSettings& settings, std::optional<Scheme> askedScheme)
    : window_(window) {
  for (const Row& row : rows())
    actions_[static_cast<std::size_t>(row.action)] =
        add(QString::fromLatin1(row.name), QString::fromLatin1(row.icon), tr(row.text), tr(row.tip), row.keys);
  buildFileMenu();
  buildEditMenu();
  buildViewMenu(settings, askedScheme);
  reportMenu_ = window_.menuBar()->addMenu(tr("&Reports"));
  reportMenu_->setObjectName(QStringLiteral("reportMenu"));
  buildHelpMenu();
  buildTools();
}

WindowActions::~WindowActions() = default;

QAction* WindowActions::add(const QString& name, const QString& iconName, const QString& text, const QString& tip,
                            const QKeySequence& keys) {
  auto* const action = new QAction(text, &window_);
  action->setObjectName(name);
  if (!iconName.isEmpty()) action->setIcon(icon(iconName));
  action->setShortcut(keys);
  action->setStatusTip(tip);
  const QString plain = QString(text).remove(QLatin1Char('&')).remove(QChar(0x2026));
  action->setToolTip(
      keys.isEmpty() ? QStringLiteral("<b>%1</b><br>%2").arg(plain, tip)
                     : QStringLiteral("<b>%1</b> (%2)<br>%3").arg(plain, keys.toString(QKeySequence::NativeText), tip));
  window_.addAction(action);
  return action;
}

void WindowActions::buildFileMenu() {
  QMenu* const menu = window_.menuBar()->addMenu(tr("&File"));
  menu->addAction(at(WindowAction::Open));
  recentMenu_ = menu->addMenu(tr("Open re&cent"));
  recentMenu_->setObjectName(QStringLiteral("recentMenu"));
  menu->addAction(at(WindowAction::AddDrawing));
  menu->addAction(at(WindowAction::Reload));
  menu->addSeparator();
  menu->addAction(at(WindowAction::Save));
  menu->addAction(at(WindowAction::SaveAs));
  menu->addSeparator();
  menu->addAction(at(WindowAction::SectionBook));
  menu->addAction(at(WindowAction::ExportPlan));
  menu->addAction(at(WindowAction::PrintPlan));
  menu->addSeparator();
  menu->addAction(at(WindowAction::Quit));
}

void WindowActions::buildEditMenu() {
  QMenu* const menu = window_.menuBar()->addMenu(tr("&Edit"));
  menu->setObjectName(QStringLiteral("editMenu"));
  menu->addAction(at(WindowAction::Undo));
  menu->addAction(at(WindowAction::Redo));
  menu->addSeparator();
  for (const WindowAction action :
       {WindowAction::NewLines, WindowAction::EditLines, WindowAction::AddLine, WindowAction::Delete,
        WindowAction::NewProfile, WindowAction::NewPointGroup, WindowAction::NewPointGroupOfSelection})
    menu->addAction(at(action));
}

void WindowActions::buildViewMenu(QSettings& settings, std::optional<Scheme> askedScheme) {
  QMenu* const menu = window_.menuBar()->addMenu(tr("&View"));
  for (const WindowAction action :
       {WindowAction::ZoomAll, WindowAction::ZoomSelection, WindowAction::ZoomRectangle, WindowAction::PreviousView,
        WindowAction::NextView, WindowAction::FullScreen, WindowAction::FreeSection, WindowAction::Find,
        WindowAction::GoTo, WindowAction::CommandLine})
    menu->addAction(at(action));
  menu->addSeparator();
  menu->addAction(at(WindowAction::Measure));
  menu->addAction(at(WindowAction::Difference));
  menu->addSeparator();
  layerMenu_ = menu->addMenu(icon(QStringLiteral("layers")), tr("&Layers"));
  layerMenu_->setObjectName(QStringLiteral("layerMenu"));
  surfaceMenu_ = menu->addMenu(icon(QStringLiteral("surface_look")), tr("S&urface"));
  surfaceMenu_->setObjectName(QStringLiteral("surfaceMenu"));
  look_ = std::make_unique<LookMenus>(*layerMenu_, *surfaceMenu_, settings);
  menu->addAction(at(WindowAction::ShowAllObjects));
  QMenu* const schemeMenu = menu->addMenu(tr("Sc&heme"));
  schemeMenu->setObjectName(QStringLiteral("schemeMenu"));
  scheme_ = std::make_unique<SchemeMenu>(*schemeMenu, settings, askedScheme);
  menu->addSeparator();
  QMenu* const panels = menu->addMenu(tr("&Panels"));
  for (QDockWidget* const dock : window_.findChildren<QDockWidget*>()) panels->addAction(dock->toggleViewAction());
  menu->addAction(at(WindowAction::ResetPanels));
}

void WindowActions::buildHelpMenu() {
  QMenu* const menu = window_.menuBar()->addMenu(tr("&Help"));
  menu->addAction(at(WindowAction::WindowHelp));
  menu->addAction(at(WindowAction::HelpContents));
  menu->addAction(at(WindowAction::Shortcuts));
  menu->addSeparator();
  menu->addAction(at(WindowAction::About));
}

void WindowActions::buildTools() {
  tools_ = window_.addToolBar(tr("Tools"));
  tools_->setObjectName(QStringLiteral("tools"));
  tools_->setIconSize({kToolSide, kToolSide});
  tools_->setMovable(false);
  tools_->addAction(at(WindowAction::Open));
  if (auto* const openButton = qobject_cast<QToolButton*>(tools_->widgetForAction(at(WindowAction::Open)))) {
    openButton->setMenu(recentMenu_);
    openButton->setPopupMode(QToolButton::MenuButtonPopup);
  }
  tools_->addAction(at(WindowAction::Save));
  tools_->addAction(at(WindowAction::SaveAs));
  tools_->addSeparator();
  tools_->addAction(at(WindowAction::Undo));
  tools_->addAction(at(WindowAction::Redo));
  tools_->addAction(at(WindowAction::NewLines));
  tools_->addSeparator();
  tools_->addAction(at(WindowAction::ZoomAll));
  tools_->addAction(at(WindowAction::ZoomSelection));
  tools_->addAction(at(WindowAction::Measure));
  tools_->addAction(at(WindowAction::ZoomRectangle));
  tools_->addAction(at(WindowAction::PreviousView));
  const auto addMenuButton = [this](QMenu* menu, const QString& tip) {
    auto* const button = new QToolButton;
    button->setIcon(menu->icon());
    button->setMenu(menu);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setToolTip(tip);
    button->setAccessibleName(menu->title().remove(QLatin1Char('&')));
    tools_->addWidget(button);
  };
  addMenuButton(layerMenu_, tr("<b>Layers</b><br>What is drawn"));
  addMenuButton(surfaceMenu_, tr("<b>Surface</b><br>How the ground is drawn"));
  tools_->addSeparator();
}

void WindowActions::onTrigger(WindowAction action, std::function<void()> work) {
  connect(at(action), &QAction::triggered, this, std::move(work),
          rowOf(action).isQueued ? Qt::QueuedConnection : Qt::DirectConnection);
}

void WindowActions::addCommands(const QStringList& commands) {
  int number = 0;
  for (const QString& command : commands) {
    constexpr int kLastDigit = 9;
    const QKeySequence keys =
        ++number <= kLastDigit ? QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number)) : QKeySequence();
    QAction* const action = add(command, ReportNames::icon(command), ReportNames::action(command),
                                tr("%1 (%2)").arg(ReportNames::tip(command), command), keys);
    connect(
        action, &QAction::triggered, this, [this, command] { Q_EMIT commandChosen(command); }, Qt::QueuedConnection);
    reportMenu_->addAction(action);
    tools_->addAction(action);
    commands_.push_back(action);
  }
  tools_->addSeparator();
  tools_->addAction(at(WindowAction::HelpContents));
}

void WindowActions::update(const WindowState& state) {
  for (const Row& row : rows()) at(row.action)->setEnabled(areMet(row.needs, state));
  for (QAction* const command : commands_) command->setEnabled(areMet(kCommandNeeds, state));
  recentMenu_->setEnabled(state.isIdle);
  // An "&" in a name is no access key.
  const auto named = [](const QString& text, const QString& name) {
    return name.isEmpty() ? text
                          : QStringLiteral("%1: %2").arg(text, QString(name).replace(u'&', QStringLiteral("&&")));
  };
  at(WindowAction::Undo)->setText(named(tr("&Undo"), state.undo));
  at(WindowAction::Redo)->setText(named(tr("&Redo"), state.redo));
}

}  // namespace lvx::desktop
