#pragma once

#include <QObject>
#include <memory>
#include <optional>

#include "desktop/panels/drawing_tree.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/drawing_sources.h"
#include "desktop/shell/object_key.h"
#include "desktop/shell/object_visibility.h"
#include "desktop/shell/place_line.h"
#include "desktop/shell/place_mark.h"
#include "desktop/shell/selection.h"
#include "desktop/shell/window_panels.h"

namespace lvx::properties {
struct GoTo;
}

namespace lvx::view {
class PlanScene;
}

namespace lvx::desktop {

class DesktopFrontEnd;
class LinkedCursor;
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

  /// All of the drawing; of one that showed before, by the same files, the part that showed then, with what was chosen and
  /// open in the tree as far as that is there.
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
  /// What is hidden in the plan, to be changed by whoever likes.
  [[nodiscard]] ObjectVisibility& visibility() { return visibility_; }
  void zoomToSelection();
  void zoomTo(civil::Handle handle);
  /// Shows a part of the drawing, or a place with a mark (PlaceMark).
  void showPlace(const civil::Box& place) { mark_.show(place); }
  /// A point and an object are chosen as well.
  void goTo(const properties::GoTo& place);
  /// Brings the properties to the front.
  void raiseProperties();
  /// Brings the profiles of an alignment to the front.
  void raiseProfilesOf(civil::Handle alignment);

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
  void jumpTo(civil::Handle handle);
  void follow(const QObject* from);
  void raiseChart();
  void openSection(double station, bool isOnLine);
  void goBack();
  void tellProperties();

  WindowPanels at_;
  PlaceLine& place_;
  const Session& session_;
  const DesktopFrontEnd& frontEnd_;
  Selection selection_;
  ObjectVisibility visibility_;
  PlaceMark mark_;
  /// Points into the session's drawing.
  std::shared_ptr<view::PlanScene> scene_;
  DrawingSources sources_;
  /// What showed when the drawing went, for the case that it is read again.
  struct Before {
    DrawingSources sources;
    PlanView::Place plan;
    DrawingTree::State tree;
    std::optional<ObjectKey> selection;
    std::optional<ObjectKey> section;
    /// Of a section without a sample line.
    std::optional<ObjectKey> sectionAlignment;
    double sectionStation = 0.0;
    std::optional<ObjectKey> profile;
    ObjectVisibility::Kept hidden;
  };
  std::optional<Before> before_;
  bool awaitsPaint_ = false;
  std::unique_ptr<LinkedCursor> cursor_;
};

}  // namespace lvx::desktop
