#include "desktop/ground/plan_snap.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <utility>

#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_view.h"
#include "view/viewport.h"

namespace lvx::desktop {

namespace {

/// A snap reaches a little farther than a pick: places are small.
constexpr double kSnapReach = 1.6;

}  // namespace

std::optional<view::Snap> PlanSnap::at(const view::PlanScene& scene, civil::Vec2 place, double reach) const {
  if (!isOn_) return std::nullopt;
  return view::snapAt(scene, place, kSnapReach * reach, shownKinds());
}

bool PlanSnap::isTurn(const QKeyEvent& key) { return key.key() == Qt::Key_S && key.modifiers() == Qt::NoModifier; }

QString PlanSnap::hint() const { return isOn_ ? tr("S: snapping off") : tr("S: snapping on"); }

view::SnapKinds PlanSnap::shownKinds() const {
  const PlanLook& look = view_.look();
  view::SnapKinds kinds;
  kinds.set(view::SnapKind::Point, look.points);
  kinds.set(view::SnapKind::End, look.alignments || look.sampleLines);
  kinds.set(view::SnapKind::Vertex, look.surface != SurfaceLook::None || look.border);
  kinds.set(view::SnapKind::Axis, look.alignments);
  return kinds;
}

// A shape for each kind, so that colour isn't needed to tell them.
void PlanSnap::paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours,
                     const view::Snap& snap) const {
  const civil::Vec2 pixel = viewport.toPixels(snap.place);
  const QPointF at(pixel.x, pixel.y);
  constexpr double kSize = 7.0;
  QPainterPath mark;
  switch (snap.kind) {
    case view::SnapKind::Point:
      mark.addEllipse(at, kSize, kSize);
      break;
    case view::SnapKind::End:
      mark.addRect(QRectF(at.x() - kSize, at.y() - kSize, 2 * kSize, 2 * kSize));
      break;
    case view::SnapKind::Vertex:
      mark.addPolygon(QPolygonF{at + QPointF(0, -kSize - 1), at + QPointF(kSize + 1, kSize - 1),
                                at + QPointF(-kSize - 1, kSize - 1), at + QPointF(0, -kSize - 1)});
      break;
    case view::SnapKind::Axis:
      mark.moveTo(at + QPointF(-kSize, -kSize));
      mark.lineTo(at + QPointF(kSize, kSize));
      mark.moveTo(at + QPointF(-kSize, kSize));
      mark.lineTo(at + QPointF(kSize, -kSize));
      break;
  }
  painter.setBrush(Qt::NoBrush);
  for (const auto& [colour, width] : {std::pair(colours.ground, 4.6), std::pair(colours.hover, 2.2)}) {
    painter.setPen(QPen(colour, width));
    painter.drawPath(mark);
  }
}

}  // namespace lvx::desktop
