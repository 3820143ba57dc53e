#include "view/viewport.h"

#include <algorithm>

namespace lvx::view {

using civil::Box;
using civil::Vec2;

void Viewport::resize(int width, int height) {
  width_ = std::max(width, 1);
  height_ = std::max(height, 1);
}

void Viewport::show(const Box& box, double margin) {
  if (box.isEmpty()) return;
  centre_ = {(box.minX + box.maxX) / 2, (box.minY + box.maxY) / 2};
  const double across = box.maxX - box.minX;
  const double up = (box.maxY - box.minY) * exaggeration_;
  const double room = 1.0 - 2.0 * std::clamp(margin, 0.0, 0.45);
  double scale = kMostScale;
  if (across > 0.0) scale = std::min(scale, width_ * room / across);
  if (up > 0.0) scale = std::min(scale, height_ * room / up);
  if (across > 0.0 || up > 0.0) setScale(scale);
}

void Viewport::zoomAt(Vec2 pixel, double factor) {
  const Vec2 before = toDrawing(pixel);
  setScale(scale_ * factor);
  const Vec2 after = toDrawing(pixel);
  centre_ = {centre_.x + before.x - after.x, centre_.y + before.y - after.y};
}

void Viewport::panBy(Vec2 pixels) {
  centre_ = {centre_.x - pixels.x / scale_, centre_.y + pixels.y / (scale_ * exaggeration_)};
}

void Viewport::setScale(double scale) { scale_ = std::clamp(scale, kLeastScale, kMostScale); }

Vec2 Viewport::toPixels(Vec2 place) const {
  return {width_ / 2.0 + (place.x - centre_.x) * scale_,
          height_ / 2.0 - (place.y - centre_.y) * scale_ * exaggeration_};
}

Vec2 Viewport::toDrawing(Vec2 pixel) const {
  return {centre_.x + (pixel.x - width_ / 2.0) / scale_,
          centre_.y - (pixel.y - height_ / 2.0) / (scale_ * exaggeration_)};
}

Box Viewport::visible() const {
  const Vec2 lower = toDrawing({0.0, static_cast<double>(height_)});
  const Vec2 upper = toDrawing({static_cast<double>(width_), 0.0});
  return {lower.x, lower.y, upper.x, upper.y};
}

}  // namespace lvx::view
