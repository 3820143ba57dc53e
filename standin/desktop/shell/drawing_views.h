#pragma once

#include <QObject>
#include <memory>

#include "desktop/shell/place_line.h"
#include "desktop/shell/selection.h"
#include "desktop/shell/window_panels.h"

namespace lvx::view {
class PlanScene;
}

namespace lvx::desktop {

class DesktopFrontEnd;
class Session;
struct LoadedDrawing;

/// The views of the open drawing: plan, tree, profile, section, diagnostics and the place in the status line. They show
/// the same drawing and the same selection, and a click in any of them answers a running pick.
class DrawingViews : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  DrawingViews(const WindowPanels& panels, PlaceLine& place, const Session& session, const DesktopFrontEnd& frontEnd);
  /// Shows nothing any more.
  ~DrawingViews() override;

  void show(const LoadedDrawing& loaded);
  /// When it returns, nothing looks at the drawing any more.
  void clear();
  /// A command may have changed the corridors.
  void refresh();
  /// The drawing was edited: shows it as it is now, without another zoom, and chooses `about` if it is there.
  void followEdit(civil::Handle about);
  /// The drawing was saved: what was read of its file is new.
  void refreshDiagnostics();

  [[nodiscard]] Selection& selection() { return selection_; }
  void zoomToSelection();

 Q_SIGNALS:
  /// What show() was given stands on the screen as sharp as it gets.
  void shown();
  void selectionChanged();

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  void connectPlan();
  void connectTree();
  void connectCharts();
  /// Answers a running pick; else selects.
  void choose(civil::Handle handle, const QObject* from);
  void zoomTo(civil::Handle handle);
  void follow(const QObject* from);
  void raiseChart();

  WindowPanels at_;
  PlaceLine& place_;
  const Session& session_;
  const DesktopFrontEnd& frontEnd_;
  Selection selection_;
  /// Points into the session's drawing.
  std::shared_ptr<view::PlanScene> scene_;
  bool awaitsPaint_ = false;
};

}  // namespace lvx::desktop
