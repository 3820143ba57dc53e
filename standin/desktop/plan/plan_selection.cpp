#include "desktop/plan/plan_selection.h"

namespace lvx::desktop {

void PlanSelection::add(std::span<const civil::Handle> handles) {
  for (const civil::Handle handle : handles)
    if (handle != 0 && places_.emplace(handle, slots_.size()).second) slots_.push_back(handle);
}

void PlanSelection::remove(std::span<const civil::Handle> handles) {
  for (const civil::Handle handle : handles) {
    const auto found = places_.find(handle);
    if (found == places_.end()) continue;
    slots_[found->second] = 0;
    places_.erase(found);
  }
}

void PlanSelection::clear() {
  slots_.clear();
  places_.clear();
}

std::vector<civil::Handle> PlanSelection::handles() const {
  std::vector<civil::Handle> handles;
  handles.reserve(places_.size());
  for (const civil::Handle handle : slots_)
    if (handle != 0) handles.push_back(handle);
  return handles;
}

}  // namespace lvx::desktop
