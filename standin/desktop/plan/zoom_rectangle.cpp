#include "desktop/plan/zoom_rectangle.h"

#include <QGuiApplication>
#include <QPainter>
#include <QStyleHints>
#include <utility>

#include "desktop/plan/plan_frame.h"
#include "view/plan_shapes.h"

namespace lvx::desktop {

void ZoomRectangle::end() { *this = {}; }

std::optional<civil::Box> ZoomRectangle::press(QPointF pixel, const view::Viewport& viewport) {
  move(pixel, viewport);
  if (corner_) return finish();
  corner_ = mouse_;
  pressed_ = pixel;
  return std::nullopt;
}

void ZoomRectangle::move(QPointF pixel, const view::Viewport& viewport) {
  mouse_ = viewport.toDrawing({pixel.x(), pixel.y()});
}

std::optional<civil::Box> ZoomRectangle::release(QPointF pixel, const view::Viewport& viewport) {
  if (!corner_ || !pressed_) return std::nullopt;
  move(pixel, viewport);
  const QPointF from = *std::exchange(pressed_, std::nullopt);
  if ((pixel - from).manhattanLength() < QGuiApplication::styleHints()->startDragDistance()) return std::nullopt;
  return finish();
}

bool ZoomRectangle::back() {
  if (!corner_) return false;
  corner_.reset();
  pressed_.reset();
  return true;
}

std::optional<civil::Box> ZoomRectangle::finish() {
  const civil::Box box = view::boxOf(*corner_, mouse_);
  end();
  return box;
}

void ZoomRectangle::paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const {
  if (!corner_) return;
  QColor fill = colours.hover;
  constexpr int kAlpha = 30;
  fill.setAlpha(kAlpha);
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setPen(QPen(colours.hover, 1.4, Qt::DashLine));
  painter.setBrush(fill);
  painter.drawRect(QRectF(pixelOf(viewport, *corner_), pixelOf(viewport, mouse_)).normalized());
}

QString ZoomRectangle::prompt() const { return corner_ ? tr("The opposite corner") : tr("Zoom: a corner"); }

QString ZoomRectangle::hint() { return tr("Drag, or two clicks; Esc: back"); }

}  // namespace lvx::desktop
