#include "view/box_tree.h"

namespace lvx::view {

using civil::Box;

void BoxTree::finish(std::vector<Box> boxes) {
  if (boxes.empty()) return;
  boxes.shrink_to_fit();
  levels_.push_back(std::move(boxes));
  while (levels_.back().size() > kFan) {
    const std::vector<Box>& below = levels_.back();
    std::vector<Box> above((below.size() + kFan - 1) / kFan);
    for (std::size_t i = 0; i < below.size(); ++i) extend(above[i / kFan], below[i]);
    levels_.push_back(std::move(above));
  }
}

Box BoxTree::box() const {
  Box all;
  if (!levels_.empty())
    for (const Box& box : levels_.back()) extend(all, box);
  return all;
}

std::size_t BoxTree::bytes() const {
  std::size_t sum = 0;
  for (const auto& level : levels_) sum += level.capacity() * sizeof(Box);
  return sum;
}

}  // namespace lvx::view
