#pragma once

#include <optional>

#include "civil/geometry.h"
#include "civil/tin_surface.h"
#include "desktop/plan/plan_tool.h"

namespace lvx::desktop {

class PlanView;

/// Leads the plan to a place that was asked for, and marks it there until another one is asked for.
class PlaceMark : public PlanOverlay {
 public:
  /// `plan` outlives it.
  explicit PlaceMark(PlanView& plan);
  ~PlaceMark() override;

  /// Shows the box as large as it goes; a place, which is a box without extent, in the middle, at the present scale where
  /// that shows between 20 and 400 drawing units, else so that 100 show. An empty box changes nothing.
  void show(const civil::Box& place);
  void show(civil::Vec2 place) { show(civil::Box{place.x, place.y, place.x, place.y}); }
  void clear();
  [[nodiscard]] const std::optional<civil::Vec2>& place() const { return place_; }

  void paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const override;

 private:
  PlanView& plan_;
  std::optional<civil::Vec2> place_;
};

}  // namespace lvx::desktop
