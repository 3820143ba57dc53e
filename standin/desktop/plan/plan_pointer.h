#pragma once

#include <QCursor>
#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QStringList>
#include <optional>

#include "desktop/plan/plan_colours.h"

class QPainter;

namespace lvx::desktop {

/// How near the mouse must be to a thing, as far as the pick box reaches; pixels.
inline constexpr double kPickRadius = 6.0;

/// A cross with the box in which things are picked.
[[nodiscard]] QCursor pickCursor(double pixelRatio);

/// Paints the window that selects: dashed where it goes to the left and takes what it touches, too.
void paintSelectionWindow(QPainter& painter, QPointF from, QPointF to, const PlanColours& colours);

/// What stands beside the pointer, line by line.
struct PointerBox {
  QStringList lines;
  bool hasPrompt = false;  ///< the first line is what the user is asked: bold
  bool hasHint = false;    ///< the last line is what could be done now: quiet
};

/// Paints the box right below the pointer, or on its other side where `area` ends; without a pointer in the view, in the
/// upper left corner. `lines` aren't empty.
void paintPointerBox(QPainter& painter, const QRectF& area, const PointerBox& box, std::optional<QPointF> pointer,
                     const QFont& font, const PlanColours& colours);

}  // namespace lvx::desktop
