#pragma once

#include <QFont>
#include <QRectF>
#include <vector>

#include "desktop/charts/chart.h"
#include "desktop/charts/chart_look.h"
#include "view/viewport.h"

class QPainter;

namespace lvx::desktop {

/// Paints charts, to windows, pictures, SVG and PDF alike. All sizes are in units of 1/96 inch; a painter for a finer
/// device is scaled to that before.
///
///     ChartPainter chart(data, ChartLook::printed(), font);
///     view::Viewport port = chart.viewportFor(area, 0);      // all of it, heights enlarged as fits
///     chart.paint(painter, area, port);
class ChartPainter {
 public:
  /// The chart must live as long as this.
  ChartPainter(const Chart& chart, ChartLook look, const QFont& font);

  /// Where the lines are drawn within `area`; the axes and the band stand around it. Whole units.
  [[nodiscard]] QRect plotArea(const QRectF& area) const;
  /// The viewport that shows everything in the plot area. An `exaggeration` of 0 takes the one of `enlargement`.
  [[nodiscard]] view::Viewport viewportFor(const QRectF& area, double exaggeration) const;
  /// How many times to enlarge heights automatically: those of the lines are `up` high without, and have `room`.
  [[nodiscard]] double enlargement(double up, double room) const;
  /// The part of the plot's height that the lines may take, which leaves room for their texts.
  [[nodiscard]] double heightShare() const;
  void paint(QPainter& painter, const QRectF& area, const view::Viewport& port, int highlighted = -1) const;
  /// One line of the legend: a piece of the line as it is drawn, in the middle of `area`.
  void paintSample(QPainter& painter, const QRectF& area, const ChartPen& pen) const;
  /// The same for a row of a legend on paper; nothing for the one that counts the rest.
  void paintEntry(QPainter& painter, const QRectF& area, const ChartEntry& entry) const;
  /// The cross hair, with the values on the axes.
  void paintCross(QPainter& painter, const QRectF& area, const view::Viewport& port, civil::Vec2 place) const;
  /// A point with its text beside it, inside the plot.
  void paintSnap(QPainter& painter, const QRectF& area, const view::Viewport& port, civil::Vec2 place,
                 const QString& text) const;

  [[nodiscard]] const ChartLook& look() const { return look_; }
  [[nodiscard]] const QFont& font() const { return font_; }
  /// "12.50" or "1+012.50", as the x axis writes it.
  [[nodiscard]] QString xText(double x, int decimals) const;

 private:
  struct Ticks {
    double step = 1.0;
    int decimals = 0;
    std::vector<double> places;
    std::vector<double> between;
  };
  [[nodiscard]] Ticks xTicks(const view::Viewport& port) const;
  [[nodiscard]] Ticks yTicks(const view::Viewport& port) const;
  void paintGrid(QPainter& painter, const QRect& plot, const view::Viewport& port) const;
  void paintAxes(QPainter& painter, const QRectF& area, const QRect& plot, const view::Viewport& port) const;
  void paintBand(QPainter& painter, const QRect& plot, const view::Viewport& port) const;
  void paintSeries(QPainter& painter, const QRect& plot, const view::Viewport& port, const ChartSeries& series,
                   bool isHighlighted) const;
  void paintTangents(QPainter& painter, const QRect& plot, const view::Viewport& port, const ChartSeries& series) const;
  void paintTag(QPainter& painter, const QRectF& tag, const QString& text) const;
  [[nodiscard]] bool hasBand() const { return !chart_.elements.empty(); }

  const Chart& chart_;
  ChartLook look_;
  QFont font_;
};

}  // namespace lvx::desktop
