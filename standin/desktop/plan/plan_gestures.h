#pragma once

#include <QPointF>
#include <optional>

class QEvent;
class QWidget;

namespace lvx::desktop {

/// How fingers, or a wheel, move a plan.
struct PlanMotion {
  QPointF pan{};  ///< logical pixels, by which the drawing moves
  QPointF place{};
  double factor = 1.0;  ///< by which it grows around `place`
};

/// One step of the mouse's wheel.
inline constexpr double kZoomStep = 1.25;

/// What an event of a wheel, a touchpad or fingers on the screen asks for: two fingers move, a pinch zooms, a wheel zooms,
/// a touchpad with Ctrl zooms too. Empty for other events and for those that ask for nothing. `plan` is the widget that got
/// the event.
[[nodiscard]] std::optional<PlanMotion> motionOf(QEvent& event, const QWidget& plan);

}  // namespace lvx::desktop
