#pragma once

#include <QKeySequence>
#include <QObject>
#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/common/scheme.h"

class QAction;
class QMainWindow;
class QMenu;
class QSettings;
class QToolBar;

namespace lvx::desktop {

class LookMenus;
class SchemeMenu;

/// What a user can do in the window, beside the module's commands. In the order of the menus.
enum class WindowAction : std::uint8_t {
  Open,
  AddDrawing,
  Reload,
  Save,
  SaveAs,
  SectionBook,
  ExportPlan,
  PrintPlan,
  Quit,
  Undo,
  Redo,
  NewLines,
  EditLines,
  AddLine,
  Delete,
  NewProfile,
  NewPointGroup,
  NewPointGroupOfSelection,
  Measure,
  Difference,
  FreeSection,
  ZoomAll,
  ZoomSelection,
  ZoomRectangle,
  PreviousView,
  NextView,
  FullScreen,
  ShowAllObjects,
  Find,
  GoTo,
  CommandLine,
  ResetPanels,
  WindowHelp,
  HelpContents,
  Shortcuts,
  About,
  Count
};

/// What the window is in; an action is there for its user while all that it needs holds.
struct WindowState {
  bool isIdle = true;  ///< no command, no saving, no reading
  bool isOpen = false;
  bool isChanged = false;
  bool hasSelection = false;
  /// A sample line or a group of them is chosen.
  bool hasLines = false;
  /// What would be undone and redone; empty for nothing.
  QString undo;
  QString redo;
  /// The plan has a view to go back to, or forth.
  bool hasPreviousView = false;
  bool hasNextView = false;
  /// An object is hidden in the plan.
  bool hasHidden = false;
};

/// The window's actions, by menus, tools, keys and the status line's words. A new one is a row of the table in
/// window_actions.cpp, a place in a menu, and an onTrigger() by whoever does it.
class WindowActions : public QObject {
  Q_OBJECT
 public:
  /// Builds menus and tools into `window`, which outlives it, as `settings` does. Docks are there before: their names
  /// stand in a menu.
  WindowActions(QMainWindow& window, QSettings& settings, std::optional<Scheme> askedScheme);
  ~WindowActions() override;

  /// Actions that wait for the user in event loops of their own begin from the window's event loop, on no menu's.
  void onTrigger(WindowAction action, std::function<void()> work);
  /// Adds the module's commands to menu and tools, the first nine with Ctrl and a digit. Once.
  void addCommands(const QStringList& commands);
  void update(const WindowState& state);

  [[nodiscard]] QMenu& recentMenu() { return *recentMenu_; }
  [[nodiscard]] LookMenus& look() { return *look_; }
  [[nodiscard]] SchemeMenu& scheme() { return *scheme_; }

 Q_SIGNALS:
  /// From the event loop.
  void commandChosen(const QString& command);

 private:
  QAction* add(const QString& name, const QString& iconName, const QString& text, const QString& tip,
               const QKeySequence& keys);
  [[nodiscard]] QAction* at(WindowAction action) const { return actions_[static_cast<std::size_t>(action)]; }
  void buildFileMenu();
  void buildEditMenu();
  void buildViewMenu(QSettings& settings, std::optional<Scheme> askedScheme);
  void buildHelpMenu();
  void buildTools();

  QMainWindow& window_;
  std::array<QAction*, static_cast<std::size_t>(WindowAction::Count)> actions_{};
  std::vector<QAction*> commands_;
  QMenu* recentMenu_ = nullptr;
  QMenu* layerMenu_ = nullptr;
  QMenu* surfaceMenu_ = nullptr;
  QMenu* reportMenu_ = nullptr;
  QToolBar* tools_ = nullptr;
  std::unique_ptr<LookMenus> look_;
  std::unique_ptr<SchemeMenu> scheme_;
};

}  // namespace lvx::desktop
