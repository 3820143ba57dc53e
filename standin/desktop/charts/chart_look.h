#pragma once

#include <QColor>
#include <QPalette>
#include <QPen>
#include <vector>

#include "desktop/charts/chart.h"

namespace lvx::desktop {

/// The colours of a chart.
struct ChartLook {
  QColor paper;
  QColor ink;
  QColor faintInk;  ///< titles of axes, tangents
  QColor grid;
  QColor fineGrid;
  QColor highlight;
  std::vector<QColor> palette;
  bool isDark = false;

  /// As the windows look, light or dark.
  [[nodiscard]] static ChartLook ofWindow(const QPalette& palette);
  /// Black on white.
  [[nodiscard]] static ChartLook printed();
  /// Colours are counted round the palette; below 0 as the first.
  [[nodiscard]] QColor colourOf(const ChartPen& pen) const;
  /// The colour of a fill and of its strokes.
  [[nodiscard]] QColor fillOf(const view::FillLook& fill) const { return colourOf(isDark ? fill.dark : fill.light); }
  [[nodiscard]] QColor strokesOf(const view::FillLook& fill) const {
    return colourOf(isDark ? fill.darkStrokes : fill.strokes);
  }
  [[nodiscard]] static QColor colourOf(view::Colour colour) { return {colour.red, colour.green, colour.blue}; }
  /// Patterns are as long for thin lines as for those a unit wide.
  [[nodiscard]] QPen penOf(const ChartPen& pen) const;
};

}  // namespace lvx::desktop
