#include "desktop/plan/view_history.h"

namespace lvx::desktop {

namespace {

bool isSame(const PlanPlace& one, const PlanPlace& other) {
  return one.centre.x == other.centre.x && one.centre.y == other.centre.y && one.scale == other.scale;
}

}  // namespace

void ViewHistory::begin(const PlanPlace& place) {
  places_.assign(1, place);
  at_ = 0;
}

void ViewHistory::note(const PlanPlace& place, bool isStep) {
  if (isSame(places_[at_], place)) return adjust(place);
  places_.resize(at_ + 1);
  if (!isStep && at_ > 0) return adjust(place);
  if (places_.size() == kMost) places_.erase(places_.begin());
  places_.push_back(place);
  at_ = places_.size() - 1;
}

void ViewHistory::adjust(const PlanPlace& place) { places_[at_] = place; }

}  // namespace lvx::desktop
