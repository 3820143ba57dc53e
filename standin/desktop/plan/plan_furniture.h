#pragma once

#include <QColor>
#include <QCoreApplication>
#include <QFont>
#include <QRectF>
#include <QString>
#include <functional>
#include <vector>

#include "desktop/plan/plan_colours.h"

class QPainter;

namespace lvx::desktop {

/// What stands in a plan's corners: north arrow, scale bar, legend of heights. Laid out first, so that labels keep clear
/// of it, and painted last.
class PlanFurniture {
  Q_DECLARE_TR_FUNCTIONS(PlanFurniture)

 public:
  struct Heights {
    double least = 0.0;
    double most = 0.0;
    std::function<QColor(double height)> colourOf;
  };

  /// `scale` in pixels a drawing unit; no legend without `heights`. `unit` is written behind lengths ("m").
  PlanFurniture(const QRectF& area, double scale, const QString& unit, const Heights* heights, const QFont& font);

  [[nodiscard]] std::vector<QRectF> places() const;
  void paint(QPainter& painter, const PlanColours& colours) const;

  /// The largest of 1, 2, 5, 10, 20, ... (and their parts) that isn't more than `most`; `most` > 0.
  [[nodiscard]] static double roundStep(double most);

 private:
  void paintNorthArrow(QPainter& painter, const PlanColours& colours) const;
  void paintScaleBar(QPainter& painter, const PlanColours& colours) const;
  void paintLegend(QPainter& painter, const PlanColours& colours) const;

  QFont font_;
  QString unit_;
  double barLength_ = 0.0;
  double barPixels_ = 0.0;
  const Heights* heights_;
  QRectF arrow_;
  QRectF bar_;
  QRectF legend_;
};

/// "m", "ft" or the unit's own name; drawings that name none count in metres.
[[nodiscard]] QString unitSign(const std::string& linearUnit);

}  // namespace lvx::desktop
