#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "civil/geometry.h"

/// Square cells over a rectangle, each with a word that is worked out when somebody first asks for it. Words are read and
/// written in several threads at once; as each word follows from its cell alone, it doesn't matter who writes it.
namespace lvx::civil::detail {

class NearGrid {
 public:
  using Word = std::atomic<std::uint32_t>;
  struct Square {
    Vec2 middle;
    double half = 0.0;  ///< of a side
  };

  /// No cells.
  NearGrid() = default;
  /// Over the rectangle and three cells around it. Cells are as small as `most` of them allow, but at least `least` wide.
  /// None where the rectangle isn't finite. `most` above 100. All words are 0.
  NearGrid(Vec2 low, Vec2 high, double least, double most);

  /// The word of the cell in which the point lies; null outside and for a point that isn't finite.
  [[nodiscard]] Word* wordAt(Vec2 point) const {
    const double column = (point.x - low_.x) * inverseSide_;
    const double row = (point.y - low_.y) * inverseSide_;
    const bool isInside = (column >= 0.0) & (column < columns_) & (row >= 0.0) & (row < rows_);
    if (!isInside) return nullptr;
    return &words_[static_cast<std::size_t>(static_cast<std::int64_t>(row) * stride_ +
                                            static_cast<std::int64_t>(column))];
  }
  [[nodiscard]] Square squareOf(const Word* word) const;
  [[nodiscard]] double side() const { return side_; }

 private:
  static constexpr double kApron = 3.0;

  Vec2 low_;
  double inverseSide_ = 0.0;
  double side_ = 0.0;
  double columns_ = 0.0;
  double rows_ = 0.0;
  std::int64_t stride_ = 0;
  std::unique_ptr<Word[]> words_;
};

}  // namespace lvx::civil::detail
