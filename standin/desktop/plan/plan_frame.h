#pragma once

#include <QFont>
#include <QFontInfo>
#include <QPointF>
#include <algorithm>
#include <cmath>

#include "desktop/plan/plan_look.h"
#include "desktop/plan/plan_selection.h"
#include "view/lines.h"
#include "view/plan_scene.h"
#include "view/plan_shapes.h"
#include "view/viewport.h"

namespace lvx::desktop {

class PlanOverlay;

/// One picture of a plan: what is drawn, which part of it, and how. Refers to what others hold.
struct PlanFrame {
  const view::PlanScene& scene;
  const view::Viewport& viewport;  ///< in logical pixels
  const PlanLook& look;
  const PlanSelection* selected = nullptr;
  /// Lines that are no objects yet.
  const view::LineSet* preview = nullptr;
  /// Between the ground and the lines.
  const PlanOverlay* groundOverlay = nullptr;
  QFont font;
};

/// Lengths of the ticks along alignments, to each side, in pixels.
inline constexpr double kMinorTick = 4.0;
inline constexpr double kMajorTick = 8.0;

/// Where a place lies in the frame, in logical pixels.
[[nodiscard]] inline QPointF pixelOf(const view::Viewport& viewport, civil::Vec2 place) {
  const civil::Vec2 pixel = viewport.toPixels(place);
  return {pixel.x, pixel.y};
}

/// The part of the drawing that shows, with the width of marks around it.
[[nodiscard]] inline civil::Box seen(const view::Viewport& viewport) {
  return view::grown(viewport.visible(), 24.0 / viewport.scale());
}

/// The frame's font at a part of its size, 8 pixels at least.
[[nodiscard]] inline QFont labelFont(const QFont& base, double factor, bool bold = false) {
  QFont font = base;
  font.setPixelSize(std::max(8, static_cast<int>(std::lround(QFontInfo(base).pixelSize() * factor))));
  font.setBold(bold);
  // Turned letters can't be fitted to pixels; and fitted ones would be as wide as whoever asked first happened to see.
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

}  // namespace lvx::desktop
