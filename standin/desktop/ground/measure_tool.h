#pragma once

#include <QObject>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/ground/plan_snap.h"
#include "desktop/plan/plan_tool.h"
#include "view/measurement.h"
#include "view/plan_scene.h"
#include "view/snap.h"

namespace lvx::desktop {

class PlanView;

/// Measures in the plan: each click is a point, beside the mouse stand distance, height, slope and azimuth of the last leg,
/// the sums, and the area that the points close. Places snap to points, vertices, ends and axes; S turns that off and on.
/// Escape takes the last point back, then ends; Enter ends and tells all; Ctrl+C copies it.
class MeasureTool : public QObject, public PlanTool {
  Q_OBJECT
 public:
  /// The view outlives it.
  explicit MeasureTool(PlanView& view);
  ~MeasureTool() override;

  /// What is measured in; null: nothing, and a measurement ends. Nothing looks at the scene before any more.
  void setScene(std::shared_ptr<const view::PlanScene> scene);
  void start();

  [[nodiscard]] QString prompt() const override;
  [[nodiscard]] QStringList readout() const override;
  [[nodiscard]] QString hint() const override;
  void moved(civil::Vec2 place, double reach) override;
  void left() override;
  void clicked(civil::Vec2 place, double reach) override;
  void doubleClicked(civil::Vec2 place, double reach) override;
  bool takesKey(const QKeyEvent& key, bool isPress) override;
  void finished() override;
  void back() override;
  void ended() override;
  void paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const override;

 Q_SIGNALS:
  /// The result of a measurement, for the console.
  void told(const QString& line);

 private:
  /// A place as it is measured.
  struct Aim {
    view::MeasuredPoint point;
    std::optional<view::Snap> snap;
  };
  [[nodiscard]] Aim aimAt(civil::Vec2 place, double reach) const;
  void aim();
  /// Up to the mouse.
  [[nodiscard]] view::Measurement measured(bool withMouse) const;
  void tell();

  PlanView& view_;
  std::shared_ptr<const view::PlanScene> scene_;
  std::vector<view::MeasuredPoint> points_;
  /// Where the mouse is, and how far its box reaches.
  std::optional<civil::Vec2> mouse_;
  double reach_ = 0.0;
  std::optional<Aim> aim_;
  PlanSnap snap_;
};

}  // namespace lvx::desktop
