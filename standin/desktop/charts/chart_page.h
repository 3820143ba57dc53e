#pragma once

#include <QCoreApplication>
#include <QFont>
#include <QSizeF>
#include <QString>

#include "desktop/charts/chart.h"
#include "desktop/charts/chart_painter.h"

class QPainter;

namespace lvx::desktop {

/// A chart as a sheet of paper: title, subtitle, drawing and scale above, the legend, the chart in print colours. It is
/// drawn to a true scale, on A4 across, or A3 where that lets the scale be a larger one that is worth it.
class ChartPage {
  Q_DECLARE_TR_FUNCTIONS(ChartPage)

 public:
  /// An `exaggeration` of 0 takes the one of ChartPainter::enlargement. The chart must live as long as this.
  ChartPage(const Chart& chart, const QFont& font, double exaggeration);

  /// In millimetres, across.
  [[nodiscard]] QSizeF size() const { return size_; }
  [[nodiscard]] bool isA3() const { return isA3_; }
  /// 500 for 1:500 along the x axis; 0 where nothing is drawn to scale.
  [[nodiscard]] double scale() const { return scale_; }
  /// "Scale 1:500, heights 1:100"
  [[nodiscard]] QString scaleText() const;
  /// Paints the sheet from the painter's origin, in units of 1/96 inch.
  void paint(QPainter& painter) const;

 private:
  void layOut(QSizeF millimetres);
  void chooseScale(double exaggeration);
  [[nodiscard]] double legendHeight() const;

  const Chart& chart_;
  ChartPainter painter_;
  QSizeF size_;
  bool isA3_ = false;
  QRectF frame_;
  QRectF legend_;
  QRectF area_;
  double scale_ = 0.0;
  double exaggeration_ = 1.0;
};

}  // namespace lvx::desktop
