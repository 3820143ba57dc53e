#include "desktop/shell/place_mark.h"

#include <QPainter>
#include <algorithm>

#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_view.h"

namespace lvx::desktop {

PlaceMark::PlaceMark(PlanView& plan) : plan_(plan) { plan_.addOverlay(*this); }

PlaceMark::~PlaceMark() { plan_.removeOverlay(*this); }

void PlaceMark::show(const civil::Box& place) {
  if (place.isEmpty()) return;
  const civil::Vec2 middle{(place.minX + place.maxX) / 2.0, (place.minY + place.maxY) / 2.0};
  view::Viewport port = plan_.viewport();
  if (place.maxX > place.minX || place.maxY > place.minY) {
    constexpr double kMargin = 0.2;
    port.show(place, kMargin);
    place_.reset();  // what fills the plan needs no mark
  } else {
    constexpr double kLeast = 20.0;
    constexpr double kMost = 400.0;
    constexpr double kUsual = 100.0;
    const double pixels = std::min(port.width(), port.height());
    if (const double shown = pixels / port.scale(); shown < kLeast || shown > kMost) port.setScale(pixels / kUsual);
    place_ = middle;
  }
  port.setCentre(middle);
  plan_.setPlace({port.centre(), port.scale(), false});
  plan_.update();
}

void PlaceMark::clear() {
  if (!place_) return;
  place_.reset();
  plan_.update();
}

void PlaceMark::paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const {
  if (!place_) return;
  const civil::Vec2 pixel = viewport.toPixels(*place_);
  const QPointF middle(pixel.x, pixel.y);
  constexpr double kInner = 9.0;
  constexpr double kOuter = 16.0;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  // A wide line of the ground's colour below, so that it shows over all that is drawn.
  for (const QPen& pen : {QPen(colours.ground, 5.0), QPen(colours.selected, 2.0)}) {
    painter.setPen(pen);
    painter.drawEllipse(middle, kInner, kInner);
    for (const QPointF side : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)})
      painter.drawLine(middle + side * kInner, middle + side * kOuter);
  }
  painter.restore();
}

}  // namespace lvx::desktop
