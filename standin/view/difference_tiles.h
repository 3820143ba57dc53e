#pragma once

#include <cstdint>
#include <memory>

#include "view/surface_tiles.h"

namespace lvx::view {

/// The colour of a difference's part of its range (-1 lowest, 0 none, 1 highest): red where ground goes, blue where it
/// comes, the stronger the more, nothing at 0; parts beyond count as these. 0xAARRGGBB, multiplied by alpha. Red and blue
/// of this lightness are told apart by eyes that don't tell red from green.
[[nodiscard]] std::uint32_t differenceColour(double part);

/// The picture of the difference between two surfaces, the next one less the existing one, in tiles as SurfaceTiles has
/// them; clear where one of them has no ground. A pixel shows the difference at its centre. Both surfaces must live
/// longer. All functions may run in several threads at once.
class DifferenceTiles {
 public:
  DifferenceTiles(const civil::TinSurface& existing, const civil::TinSurface& next);

  /// The difference that has the full colour: that which nineteen of twenty places stay below, rounded up to 1, 2 or 5
  /// with zeros; above 0.
  [[nodiscard]] double range() const { return range_; }
  /// Around both.
  [[nodiscard]] const civil::Box& box() const { return box_; }
  [[nodiscard]] TileRange tilesIn(const civil::Box& visible, int level) const;
  [[nodiscard]] civil::Box boxOf(const TileAddress& address) const;
  /// Null if `cancel` was set before the tile was done. Some ten milliseconds.
  [[nodiscard]] std::shared_ptr<const Tile> render(const TileAddress& address,
                                                   const CancelFlag* cancel = nullptr) const;

 private:
  const civil::TinSurface* existing_;
  const civil::TinSurface* next_;
  civil::Box box_;
  civil::Vec2 origin_;
  double range_ = 1.0;
};

}  // namespace lvx::view
