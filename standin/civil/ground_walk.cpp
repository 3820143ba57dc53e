#include "civil/ground_walk.h"

#include <cmath>
#include <cstddef>

#include "civil/element.h"

namespace lvx::civil {

namespace {

Vec2 planOf(const Vec3& place) { return {place.x, place.y}; }

/// A leg's own end comes back as it was given, but for the rounding of survey coordinates.
bool isSamePlace(Vec2 a, Vec2 b) {
  const double size = std::abs(a.x) + std::abs(a.y);
  return length(b - a) <= kSamePoint + 1e-14 * size;
}

}  // namespace

// Between two neighbouring samples lies either ground all the way or none: every border gives one. Along a border the
// middle, rounded, may fall off the surface, so places just beside it are asked too.
bool GroundWalk::isGroundBetween(const Vec3& a, const Vec3& b) const {
  const Vec2 middle{(a.x + b.x) / 2, (a.y + b.y) / 2};
  if (surface_->elevationAt(middle)) return true;
  const Vec2 along = planOf(b) - planOf(a);
  const double distance = length(along);
  if (distance <= kSamePoint) return true;
  constexpr double kBeside = 1e-7;
  const Vec2 aside{-along.y / distance * kBeside, along.x / distance * kBeside};
  return surface_->elevationAt(middle + aside).has_value() || surface_->elevationAt(middle - aside).has_value();
}

void GroundWalk::add(Vec2 from, Vec2 to) {
  const std::size_t leg = leg_++;
  scratch_.clear();
  surface_->sample(from, to, scratch_);
  if (scratch_.empty()) {
    endsOnGround_ = false;
    return;
  }
  const bool joins = endsOnGround_ && isSamePlace(planOf(scratch_.front()), from) &&
                     isSamePlace(planOf(pieces_.back().back().place), from);
  if (leg == 0) startsOnGround_ = isSamePlace(planOf(scratch_.front()), from);
  for (std::size_t i = 0; i < scratch_.size(); ++i) {
    if (i == 0 ? !joins : !isGroundBetween(scratch_[i - 1], scratch_[i])) pieces_.emplace_back();
    pieces_.back().push_back({scratch_[i], leg});
  }
  endsOnGround_ = isSamePlace(planOf(scratch_.back()), to);
}

}  // namespace lvx::civil
