#include "desktop/plan/plan_gestures.h"

#include <QGestureEvent>
#include <QInputDevice>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QWheelEvent>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace lvx::desktop {

namespace {

constexpr double kWheelClick = 120.0;
/// Where a touchpad tells no pixels: so many for what would be a click of a wheel.
constexpr double kPixelsPerClick = 60.0;

// Wheels have no phases, and say so; what rolls in phases is a touchpad.
bool isTouchpad(const QWheelEvent& wheel) {
  const QInputDevice* const device = wheel.device();
  return (device != nullptr && device->type() == QInputDevice::DeviceType::TouchPad) ||
         wheel.phase() != Qt::NoScrollPhase;
}

std::optional<PlanMotion> motionOfWheel(const QWheelEvent& wheel) {
  PlanMotion motion{.place = wheel.position()};
  if (isTouchpad(wheel) && !wheel.modifiers().testFlag(Qt::ControlModifier)) {
    motion.pan = wheel.hasPixelDelta() ? QPointF(wheel.pixelDelta())
                                       : QPointF(wheel.angleDelta()) / kWheelClick * kPixelsPerClick;
    if (motion.pan.isNull()) return std::nullopt;
    return motion;
  }
  const double clicks = wheel.angleDelta().y() / kWheelClick;
  if (clicks == 0.0) return std::nullopt;
  motion.factor = std::pow(kZoomStep, clicks);
  return motion;
}

std::optional<PlanMotion> motionOfNative(const QNativeGestureEvent& gesture) {
  PlanMotion motion{.place = gesture.position()};
  if (gesture.gestureType() == Qt::ZoomNativeGesture) {
    // What is told is the growth alone; a pinch to nothing can't be meant.
    constexpr double kLeastFactor = 0.1;
    motion.factor = std::max(kLeastFactor, 1.0 + gesture.value());
  } else if (gesture.gestureType() == Qt::PanNativeGesture) {
    motion.pan = gesture.delta();
  } else {
    return std::nullopt;
  }
  return motion;
}

std::optional<PlanMotion> motionOfPinch(const QPinchGesture& pinch, const QWidget& plan) {
  // Around where the fingers were; then it goes with them.
  const bool hasMoved =
      pinch.changeFlags().testFlag(QPinchGesture::CenterPointChanged) && pinch.state() != Qt::GestureStarted;
  PlanMotion motion{.place = plan.mapFromGlobal(hasMoved ? pinch.lastCenterPoint() : pinch.centerPoint())};
  if (hasMoved) motion.pan = pinch.centerPoint() - pinch.lastCenterPoint();
  if (pinch.changeFlags().testFlag(QPinchGesture::ScaleFactorChanged) && pinch.scaleFactor() > 0.0)
    motion.factor = pinch.scaleFactor();
  return motion;
}

}  // namespace

std::optional<PlanMotion> motionOf(QEvent& event, const QWidget& plan) {
  switch (event.type()) {
    case QEvent::Wheel:
      return motionOfWheel(static_cast<const QWheelEvent&>(event));
    case QEvent::NativeGesture:
      return motionOfNative(static_cast<const QNativeGestureEvent&>(event));
    case QEvent::Gesture: {
      auto& gestures = static_cast<QGestureEvent&>(event);
      const auto* const pinch = static_cast<const QPinchGesture*>(gestures.gesture(Qt::PinchGesture));
      return pinch == nullptr ? std::nullopt : std::optional(motionOfPinch(*pinch, plan));
    }
    default:
      return std::nullopt;
  }
}

}  // namespace lvx::desktop
