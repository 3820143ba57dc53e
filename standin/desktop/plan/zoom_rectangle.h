#pragma once

#include <QCoreApplication>
#include <QPointF>
#include <QString>
#include <optional>

#include "desktop/plan/plan_colours.h"
#include "view/viewport.h"

class QPainter;

namespace lvx::desktop {

/// A rectangle that the user draws over a plan to see it as large as it goes, by a drag or by two clicks. Once.
class ZoomRectangle {
  Q_DECLARE_TR_FUNCTIONS(ZoomRectangle)

 public:
  void begin() { isBegun_ = true; }
  void end();
  [[nodiscard]] bool isBegun() const { return isBegun_; }

  // Of the left button; a box ends it.
  std::optional<civil::Box> press(QPointF pixel, const view::Viewport& viewport);
  void move(QPointF pixel, const view::Viewport& viewport);
  std::optional<civil::Box> release(QPointF pixel, const view::Viewport& viewport);
  /// Takes the first corner back; false: there is none.
  bool back();

  void paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const;
  [[nodiscard]] QString prompt() const;
  [[nodiscard]] static QString hint();

 private:
  [[nodiscard]] std::optional<civil::Box> finish();

  bool isBegun_ = false;
  /// In the drawing: it stays there when the view moves.
  std::optional<civil::Vec2> corner_;
  std::optional<QPointF> pressed_;
  civil::Vec2 mouse_;
};

}  // namespace lvx::desktop
