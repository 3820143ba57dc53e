#pragma once

#include <QCoreApplication>
#include <QFont>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <functional>
#include <vector>

#include "civil/tin_surface.h"
#include "desktop/plan/plan_look.h"
#include "desktop/plan/plan_painter.h"
#include "view/plan_scene.h"
#include "view/viewport.h"

class QPainter;

namespace lvx::desktop {

class PlanOverlay;
class PlanSelection;

/// What of a plan goes on a sheet, and how.
struct PlanSheetWish {
  QSizeF paper{297.0, 210.0};  ///< millimetres, as it lies
  /// The part of the drawing; around its middle where it doesn't fit.
  civil::Box part;
  /// 1 to so many; 0: the largest round one at which the part fits.
  double scale = 0.0;
  bool hasGrid = true;
  bool hasLegend = true;
  QString title;  ///< of the title block: the drawing
  /// Over the ground, with the key of its colours; null: none.
  const PlanOverlay* groundOverlay = nullptr;
  QString date;
  /// Contours are those of the first surface among them that shows, as in the window; else of the uppermost. Null: nothing
  /// is selected.
  const PlanSelection* selected = nullptr;
};

/// A plan on paper: frame, coordinate grid, what the plan's look shows in the colours of paper, below it legend, scale bar,
/// north arrow and title block. Lines and texts stay lines and texts; the ground is one picture of at most kMostPixels.
///
///     PlanSheet sheet(scene, look, wish);
///     painter.scale(dots a millimetre, ...);
///     sheet.paint(painter);                       // in millimetres from the paper's upper left corner
class PlanSheet {
  Q_DECLARE_TR_FUNCTIONS(PlanSheet)

 public:
  static constexpr double kMargin = 10.0;  ///< millimetres around the frame
  static constexpr std::size_t kMostPixels = std::size_t{16} << 20;

  /// `scene` outlives it.
  PlanSheet(const view::PlanScene& scene, const PlanLook& look, PlanSheetWish wish);

  [[nodiscard]] const QSizeF& paper() const { return wish_.paper; }
  [[nodiscard]] double scale() const { return scale_; }
  [[nodiscard]] const QString& title() const { return wish_.title; }
  /// Where the drawing lies, millimetres.
  [[nodiscard]] const QRectF& map() const { return map_; }
  /// What of the drawing shows there.
  [[nodiscard]] civil::Box shown() const;
  /// Whether all of the part does.
  [[nodiscard]] bool showsAll() const;
  /// A place of the drawing on the paper, millimetres.
  [[nodiscard]] QPointF onPaper(civil::Vec2 place) const;

  /// Once. Takes as long as the ground needs: seconds for millions of triangles.
  void paint(QPainter& painter) const;

  /// The next of 1, 2, 2.5 and 5 times a power of ten.
  [[nodiscard]] static double roundScale(double least);

 private:
  void paintGround(QPainter& painter) const;
  /// Gives the interval of what was drawn: where lines at the wanted one would be too many, it is a coarser one.
  double paintContours(QPainter& painter, const PlanFrame& frame, std::vector<view::ContourLabel>& labels) const;
  void paintGrid(QPainter& painter) const;
  void paintFoot(QPainter& painter, double contourInterval) const;
  void paintScaleBar(QPainter& painter, const QRectF& place) const;
  void paintLegend(QPainter& painter, const QRectF& place, double contourInterval) const;
  void paintTitle(QPainter& painter, const QRectF& place) const;
  [[nodiscard]] QString scaleText() const;
  [[nodiscard]] const view::SurfaceShape* contourSurface() const;

  const view::PlanScene& scene_;
  PlanLook look_;
  PlanSheetWish wish_;
  double perUnit_ = 1.0;  // millimetres on the paper, of a drawing unit at 1:1
  double scale_ = 1.0;
  QRectF map_;
  civil::Vec2 centre_;
};

}  // namespace lvx::desktop
