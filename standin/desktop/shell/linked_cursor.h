#pragma once

#include <QObject>
#include <QPointF>
#include <QString>
#include <QTimer>
#include <optional>
#include <vector>

#include "civil/drawing.h"
#include "desktop/plan/plan_tool.h"
#include "desktop/shell/window_panels.h"

namespace lvx::desktop {

class Selection;
class Session;

/// The station under the mouse in all views at once. The mouse in the plan beside the alignment that the user looks at
/// shows as an upright line in the profile; in the profile, as a mark on the alignment; in a section, as a mark at the
/// offset on its line in the plan and as its station in the profile. The section itself goes to the station only where
/// the user asked it to follow, once the mouse rests or the last one is drawn.
class LinkedCursor final : public QObject, public PlanOverlay {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  LinkedCursor(const WindowPanels& panels, const Session& session, const Selection& selection);
  ~LinkedCursor() override;

  /// The drawing goes, or isn't what it was.
  void forget();

  void paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const override;
  /// Paper has no mouse.
  void paintWhole(QPainter& /*painter*/, const view::Viewport& /*viewport*/,
                  const PlanColours& /*colours*/) const override {}

 private:
  /// What is painted into the plan; empty parts aren't.
  struct Mark {
    civil::Vec2 place;
    /// Radians; of a tick square to the alignment.
    std::optional<double> tick;
    std::vector<civil::Vec2> line;
    QString text;
  };
  void followPlan(QPointF place);
  void followProfile(double station);
  void followSection(QPointF place);
  void show(std::optional<Mark> mark);
  void hide();
  void wantSection(civil::Handle alignment, double station);
  void showSection();

  WindowPanels at_;
  const Session& session_;
  const Selection& selection_;
  std::optional<Mark> mark_;
  /// Where the section is to go.
  struct Wanted {
    civil::Handle alignment = 0;
    double station = 0.0;
  };
  std::optional<Wanted> wanted_;
  QTimer sectionTime_;
};

}  // namespace lvx::desktop
