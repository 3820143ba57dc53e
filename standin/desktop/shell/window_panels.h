#pragma once

class QDockWidget;
class QMainWindow;
class QSettings;

namespace lvx::desktop {

class ConsoleView;
class DiagnosticsView;
class DrawingTree;
class NoticeBar;
class PlanView;
class ProfileView;
class ProgressStrip;
class SectionView;

/// What the window is made of: the plan in the middle with the notices above it, the panels around it in docks that the
/// user moves, the progress in the status line. All belong to the window; none knows another here.
struct WindowPanels {
  /// Builds them into `window`.
  explicit WindowPanels(QMainWindow& window);

  /// Shows and raises the console.
  void showConsole() const;
  /// Places as the user left them, or as they are at first.
  void restore(QMainWindow& window, const QSettings& settings) const;
  static void save(const QMainWindow& window, QSettings& settings);

  /// What asks or warns.
  NoticeBar* notice;
  /// What came of a report or an export.
  NoticeBar* outcome;
  PlanView* plan;
  DrawingTree* tree;
  ConsoleView* console;
  DiagnosticsView* diagnostics;
  SectionView* section;
  ProfileView* profile;
  ProgressStrip* progress;
  QDockWidget* treeDock = nullptr;
  QDockWidget* consoleDock = nullptr;
  QDockWidget* diagnosticsDock = nullptr;
  QDockWidget* profileDock = nullptr;
  QDockWidget* sectionDock = nullptr;

 private:
  void buildCentre(QMainWindow& window) const;
  void buildDocks(QMainWindow& window);
};

}  // namespace lvx::desktop
