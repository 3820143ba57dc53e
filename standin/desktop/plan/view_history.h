#pragma once

#include <cstddef>
#include <vector>

#include "civil/geometry.h"

namespace lvx::desktop {

/// The part of the drawing that a plan shows.
struct PlanPlace {
  civil::Vec2 centre;
  double scale = 1.0;
  bool showsAll = true;
};

/// The views that a user had of a drawing, to go back and forth between them.
class ViewHistory {
 public:
  static constexpr std::size_t kMost = 100;

  /// Forgets all; this is the first.
  void begin(const PlanPlace& place);
  /// The view is this one now: a step of its own, or the present step gone on, as by a turning wheel. Views that were gone
  /// back from are forgotten.
  void note(const PlanPlace& place, bool isStep);
  /// The present step is shown otherwise, as by a window of another size; what was gone back from stays.
  void adjust(const PlanPlace& place);

  [[nodiscard]] bool hasBefore() const { return at_ > 0; }
  [[nodiscard]] bool hasNext() const { return at_ + 1 < places_.size(); }
  /// Only where there is one.
  const PlanPlace& back() { return places_[--at_]; }
  const PlanPlace& forth() { return places_[++at_]; }

 private:
  std::vector<PlanPlace> places_{PlanPlace{}};
  std::size_t at_ = 0;
};

}  // namespace lvx::desktop
