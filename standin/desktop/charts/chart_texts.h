#pragma once

#include <QFont>
#include <QRect>

#include "desktop/charts/chart.h"
#include "desktop/charts/chart_look.h"
#include "view/viewport.h"

class QPainter;

namespace lvx::desktop {

/// Radius of the ring at a marked point, in units of 1/96 inch; its text stands off by that.
inline constexpr double kMarkRadius = 3.0;

/// Writes the texts of a chart's marks and notes where they cover neither each other nor a line; a point's text that has
/// no such place isn't written until there is room, after zooming in. `plot` is where the lines are, `port` what shows
/// there. Costs the points of the lines that show.
void paintTexts(QPainter& painter, const Chart& chart, const ChartLook& look, const QFont& font, const QRect& plot,
                const view::Viewport& port);

}  // namespace lvx::desktop
