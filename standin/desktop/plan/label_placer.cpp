#include "desktop/plan/label_placer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lvx::desktop {
namespace {

QRectF around(const std::array<QPointF, 4>& corners) {
  const auto [left, right] = std::minmax({corners[0].x(), corners[1].x(), corners[2].x(), corners[3].x()});
  const auto [top, bottom] = std::minmax({corners[0].y(), corners[1].y(), corners[2].y(), corners[3].y()});
  return {QPointF(left, top), QPointF(right, bottom)};
}

}  // namespace

template <class Visit>
bool LabelPlacer::anyCell(const Corners& corners, Visit visit) const {
  const QRectF box = around(corners);
  const auto cell = [](double place) { return static_cast<long long>(std::floor(place / kCell)); };
  for (long long row = cell(box.top()); row <= cell(box.bottom()); ++row)
    for (long long column = cell(box.left()); column <= cell(box.right()); ++column)
      if (visit(row * 100'000 + column)) return true;
  return false;
}

bool LabelPlacer::place(QPointF centre, QSizeF size, double degrees) {
  const Corners corners = cornersOf(centre, size, degrees);
  if (!area_.contains(around(corners))) return false;
  const bool hits = anyCell(corners, [&](long long cell) {
    const auto found = cells_.find(cell);
    return found != cells_.end() && std::any_of(found->second.begin(), found->second.end(),
                                                [&](std::size_t index) { return overlap(taken_[index], corners); });
  });
  if (hits) return false;
  add(corners);
  return true;
}

void LabelPlacer::reserve(const QRectF& rectangle) {
  const QRectF inside = rectangle.intersected(area_);
  if (!inside.isEmpty()) add(cornersOf(inside.center(), inside.size(), 0.0));
}

void LabelPlacer::add(const Corners& corners) {
  taken_.push_back(corners);
  anyCell(corners, [this](long long cell) {
    cells_[cell].push_back(taken_.size() - 1);
    return false;
  });
}

LabelPlacer::Corners LabelPlacer::cornersOf(QPointF centre, QSizeF size, double degrees) {
  const double angle = degrees * std::numbers::pi / 180.0;
  const QPointF along(std::cos(angle) * size.width() / 2, std::sin(angle) * size.width() / 2);
  const QPointF down(-std::sin(angle) * size.height() / 2, std::cos(angle) * size.height() / 2);
  return {centre - along - down, centre + along - down, centre + along + down, centre - along + down};
}

// Two convex shapes are apart exactly where one of their sides separates them.
bool LabelPlacer::overlap(const Corners& one, const Corners& other) {
  for (const Corners* sides : {&one, &other}) {
    for (std::size_t side = 0; side < 2; ++side) {
      const QPointF axis = (*sides)[side + 1] - (*sides)[side];
      const auto range = [&axis](const Corners& corners) {
        const auto [low, high] =
            std::minmax({QPointF::dotProduct(corners[0], axis), QPointF::dotProduct(corners[1], axis),
                         QPointF::dotProduct(corners[2], axis), QPointF::dotProduct(corners[3], axis)});
        return std::pair(low, high);
      };
      const auto [oneLow, oneHigh] = range(one);
      const auto [otherLow, otherHigh] = range(other);
      if (oneHigh <= otherLow || otherHigh <= oneLow) return false;
    }
  }
  return true;
}

}  // namespace lvx::desktop
