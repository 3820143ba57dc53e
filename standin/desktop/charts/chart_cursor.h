#pragma once

#include <QFont>
#include <QRect>
#include <QString>

#include "desktop/charts/chart.h"
#include "desktop/charts/chart_look.h"
#include "view/viewport.h"

class QPainter;

namespace lvx::desktop {

/// Paints the line that shows where the mouse is in another view, with a dot on each line of the chart and the values
/// beside it; `label` is its place in words. Nothing where the place doesn't show.
void paintCursorLine(QPainter& painter, const Chart& chart, const ChartCursor& cursor, const ChartLook& look,
                     const QFont& font, const QRect& plot, const view::Viewport& port, const QString& label);

}  // namespace lvx::desktop
