#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "view/plan_shapes.h"

namespace lvx::view {

/// Finds the items in a box, where neighbours in the row of items are neighbours on the ground: boxes over runs of
/// items, boxes over runs of these, and so on. Costs 34 bytes a run. Building is O(items); a
/// query O(log runs + runs that meet the box), where the items lie along a curve that fills the plane.
class BoxTree {
 public:
  BoxTree() = default;
  /// `boxOf(first, end)` gives the box of the items from `first` up to `end`; an empty one hides them.
  template <class BoxOf>
  BoxTree(std::size_t items, std::size_t run, BoxOf boxOf) : run_(run), items_(items) {
    std::vector<civil::Box> boxes;
    for (std::size_t first = 0; first < items; first += run)
      boxes.push_back(boxOf(first, std::min(first + run, items)));
    finish(std::move(boxes));
  }

  /// The box around everything.
  [[nodiscard]] civil::Box box() const;
  /// Calls `visit(first, end, isInside)` for each run that may have items in the box, ascending; `isInside` where all of
  /// them lie in it. `visit` returns false to end, and so does this then.
  template <class Visit>
  bool visit(const civil::Box& wanted, Visit visit) const {
    return levels_.empty() || visitBelow(levels_.size() - 1, 0, levels_.back().size(), wanted, visit);
  }
  [[nodiscard]] std::size_t bytes() const;

 private:
  static constexpr std::size_t kFan = 16;
  void finish(std::vector<civil::Box> boxes);

  template <class Visit>
  bool visitBelow(std::size_t level, std::size_t first, std::size_t end, const civil::Box& wanted, Visit& visit) const {
    for (std::size_t i = first; i < end; ++i) {
      const civil::Box& box = levels_[level][i];
      if (!meet(box, wanted)) continue;
      if (level == 0) {
        if (!visit(i * run_, std::min((i + 1) * run_, items_), holds(wanted, box))) return false;
      } else if (!visitBelow(level - 1, i * kFan, std::min((i + 1) * kFan, levels_[level - 1].size()), wanted, visit)) {
        return false;
      }
    }
    return true;
  }

  std::size_t run_ = 1;
  std::size_t items_ = 0;
  std::vector<std::vector<civil::Box>> levels_;  // the runs first
};

}  // namespace lvx::view
