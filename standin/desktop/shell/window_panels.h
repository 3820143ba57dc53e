#pragma once

#include <QByteArray>

class QDockWidget;
class QMainWindow;
class QSettings;
class QStackedWidget;

namespace lvx::desktop {

class ConsoleView;
class DiagnosticsView;
class DrawingTree;
class FreeSectionView;
class NoticeBar;
class PlanView;
class ProfileView;
class ProgressStrip;
class PropertiesView;
class SectionView;

/// What the window is made of: the plan in the middle with the notices above it, the panels around it in docks that the
/// user moves, the progress in the status line. All belong to the window; none knows another here.
struct WindowPanels {
  /// Builds them into `window`.
  explicit WindowPanels(QMainWindow& window);

  /// Shows and raises the console.
  void showConsole() const;
  /// Shows and raises the properties.
  void showProperties() const;
  /// To be called once, when the window has all its tools: what reset() goes back to is taken here.
  void keepFirst(const QMainWindow& window);
  /// Places as the user left them, or as they are at first.
  void restore(QMainWindow& window, const QSettings& settings) const;
  /// Panels, tools and their places as they are at first; the window stays as large as it is.
  void reset(QMainWindow& window) const;
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
  /// In the same panel, of which one shows at a time.
  FreeSectionView* freeSection;
  QStackedWidget* sections;
  ProfileView* profile;
  ProgressStrip* progress;
  PropertiesView* properties;
  QDockWidget* treeDock = nullptr;
  QDockWidget* consoleDock = nullptr;
  QDockWidget* diagnosticsDock = nullptr;
  QDockWidget* profileDock = nullptr;
  QDockWidget* sectionDock = nullptr;
  QDockWidget* propertiesDock = nullptr;

 private:
  void buildCentre(QMainWindow& window) const;
  void buildDocks(QMainWindow& window);
  void sizeDocks(QMainWindow& window) const;

  /// How the docks stand at first.
  QByteArray firstState_;
};

}  // namespace lvx::desktop
