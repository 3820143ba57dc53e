#pragma once

#include <QRect>

#include "desktop/charts/chart.h"
#include "desktop/charts/chart_look.h"
#include "view/viewport.h"

class QPainter;

namespace lvx::desktop {

/// Paints the areas of a chart into its plot: colour, strokes, bands along open lines. Everything is cut off at the plot
/// as geometry, since not every file format cuts. `port` is what shows in the plot. Costs the points of the areas that
/// show, and their strokes.
void paintFills(QPainter& painter, const Chart& chart, const ChartLook& look, const QRect& plot,
                const view::Viewport& port);

/// A piece of a fill for a legend.
void paintFillSample(QPainter& painter, const QRectF& area, const ChartFill& fill, const ChartLook& look);

}  // namespace lvx::desktop
