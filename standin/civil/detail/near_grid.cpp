#include "civil/detail/near_grid.h"

#include <algorithm>

namespace lvx::civil::detail {

NearGrid::NearGrid(Vec2 low, Vec2 high, double least, double most) {
  const Vec2 size = high - low;
  // (width / side + 2 aprons) (height / side + 2 aprons) = most, for the side.
  const double border = 2.0 * kApron;
  const double rest = most - border * border;
  const double half = 0.5 * border * (size.x + size.y);
  side_ = std::max((half + std::sqrt(half * half + rest * size.x * size.y)) / rest, least);
  inverseSide_ = 1.0 / side_;
  if (!(std::isfinite(side_) && std::isfinite(inverseSide_) && side_ > 0.0)) return;
  columns_ = std::ceil(size.x * inverseSide_) + border;
  rows_ = std::ceil(size.y * inverseSide_) + border;
  low_ = low - kApron * side_ * Vec2{1.0, 1.0};
  stride_ = static_cast<std::int64_t>(columns_);
  words_ = std::make_unique<Word[]>(static_cast<std::size_t>(columns_ * rows_));
}

NearGrid::Square NearGrid::squareOf(const Word* word) const {
  const std::int64_t place = word - words_.get();
  const Vec2 cell{static_cast<double>(place % stride_), static_cast<double>(place / stride_)};
  return {low_ + side_ * (cell + Vec2{0.5, 0.5}), 0.5 * side_};
}

}  // namespace lvx::civil::detail
