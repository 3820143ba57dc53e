#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "civil/tin_surface.h"
#include "view/box_tree.h"
#include "view/contours.h"

/// The picture of a surface in square tiles, as maps on a screen have them: each scale is a power of two, and a tile
/// that was drawn once is shown again until memory runs short.
///
///     SurfaceTiles tiles(ground);
///     const int level = SurfaceTiles::levelFor(scale);            // pixels a drawing unit
///     const TileRange range = tiles.tilesIn(visible, level);      // those that show
///     const auto tile = tiles.render({level, range.left, range.top}, look);
///     tiles.boxOf({level, range.left, range.top});                // where it belongs in the drawing
namespace lvx::view {

namespace detail {
class Raster;
}

/// Bare: no ground is drawn, for what is drawn over it.
enum class SurfaceStyle : std::uint8_t { Relief, Heights, Bare };

struct SurfaceLook {
  SurfaceStyle style = SurfaceStyle::Relief;
  /// Edges of the triangles, where these are large enough to be seen.
  bool hasTriangles = true;
  bool isDark = false;
  /// Between contours, in drawing units; 0: none; kByScale: as SurfaceTiles::contourInterval() says for the tile's scale.
  /// Whoever draws lines over a tile draws them: render() doesn't.
  double contourInterval = 0.0;
  static constexpr double kByScale = -1.0;
  /// Pixels of the tile to one of its viewer, by which lines are as wide.
  double lineWidth = 1.0;
  auto operator<=>(const SurfaceLook&) const = default;
};

/// 256 by 256 pixels, row by row from the top, 0xAARRGGBB with the colour multiplied by alpha.
struct Tile {
  static constexpr int kSize = 256;
  /// Nothing where no ground shows in the tile.
  std::vector<std::uint32_t> pixels;
  /// Where contours of the tile can be labelled.
  std::vector<ContourLabel> labels;
  [[nodiscard]] bool isEmpty() const { return pixels.empty(); }
  [[nodiscard]] std::size_t bytes() const {
    return sizeof(Tile) + pixels.capacity() * sizeof(std::uint32_t) + labels.capacity() * sizeof(ContourLabel);
  }
};

/// Which tile: at 2^level pixels a drawing unit, counted to the right and down from the surface's upper left corner.
struct TileAddress {
  int level = 0;
  std::int64_t column = 0;
  std::int64_t row = 0;
  auto operator<=>(const TileAddress&) const = default;
};

/// From `left` to `right` and from `top` to `bottom`, both included; none where right < left.
struct TileRange {
  std::int64_t left = 0;
  std::int64_t top = 0;
  std::int64_t right = -1;
  std::int64_t bottom = -1;
  [[nodiscard]] bool isEmpty() const { return right < left || bottom < top; }
};

/// A rectangle of pixels at any scale, `left` and `top` counted from the surface's upper left corner.
struct PixelArea {
  double scale = 1.0;
  std::int64_t left = 0;
  std::int64_t top = 0;
  int width = 0;
  int height = 0;
};

/// Set from another thread to end a rendering early.
using CancelFlag = std::atomic<bool>;

/// Draws the tiles of one surface, which must live longer and stay where it is. A pixel shows the triangle that holds
/// its centre, a centre on an edge that on its right or below, so that tiles fit without seam or overlap; triangles
/// smaller than a pixel are averaged into it. All functions may run in several threads at once.
class SurfaceTiles {
 public:
  static constexpr int kLeastLevel = -30;
  static constexpr int kMostLevel = 18;

  /// O(triangles), a sixth of a byte a triangle. `progress` is told the part that is done; false throws Cancelled.
  explicit SurfaceTiles(const civil::TinSurface& surface, const std::function<bool(double)>& progress = {});

  /// The level to show at `scale` pixels a drawing unit: no coarser than asked for, less than twice as fine.
  [[nodiscard]] static int levelFor(double scale);
  [[nodiscard]] static double scaleOf(int level);

  [[nodiscard]] const civil::TinSurface& surface() const { return *surface_; }
  /// The drawing's place of pixel 0, 0 at every scale.
  [[nodiscard]] civil::Vec2 origin() const { return origin_; }
  [[nodiscard]] TileRange tilesIn(const civil::Box& visible, int level) const;
  [[nodiscard]] civil::Box boxOf(const TileAddress& address) const;
  /// Finds the triangles in a box: items are those of the surface that have area.
  [[nodiscard]] const BoxTree& blocks() const { return blocks_; }
  /// Elevations between which height colours run: nearly all of the ground, without its few outliers.
  [[nodiscard]] double lowElevation() const { return low_; }
  [[nodiscard]] double highElevation() const { return high_; }
  /// An interval by which contours are legible at `scale` pixels a drawing unit, lines some 16 pixels apart in the mean:
  /// 1, 2 or 5 times a power of ten, not below 0.01.
  [[nodiscard]] double contourInterval(double scale) const;
  /// Contours of all triangles that may have a part in the box, joined; they go on a little outside. Empty if cancelled.
  /// Where there would be more than eight million pieces of lines, of every tenth level alone, or every hundredth and so
  /// on. O(log triangles + triangles at the box + pieces).
  [[nodiscard]] std::vector<Contour> contours(const civil::Box& box, ContourPlan plan,
                                              const CancelFlag* cancel = nullptr) const;

  /// Null if `cancel` was set before the tile was done. O(log triangles + triangles and pixels of the tile).
  [[nodiscard]] std::shared_ptr<const Tile> render(const TileAddress& address, const SurfaceLook& look,
                                                   const CancelFlag* cancel = nullptr) const;
  /// The same for any rectangle at any scale, into width * height pixels. False if cancelled. Works in 16 bytes a pixel.
  bool render(const PixelArea& area, const SurfaceLook& look, std::uint32_t* pixels,
              const CancelFlag* cancel = nullptr) const;

  /// Memory beside the surface's own.
  [[nodiscard]] std::size_t bytes() const;

 private:
  bool render(const PixelArea& area, const SurfaceLook& look, std::uint32_t* pixels, bool& hasGround,
              const CancelFlag* cancel) const;
  /// Triangles into the area's pixels; false if cancelled.
  bool fill(detail::Raster& raster, const PixelArea& area, const SurfaceLook& look, const CancelFlag* cancel) const;
  void findHeightRange();

  const civil::TinSurface* surface_;
  std::size_t groundCount_ = 0;
  civil::Vec2 origin_;
  double extent_ = 0.0;  // from the origin to the farthest coordinate
  double low_ = 0.0;
  double high_ = 0.0;
  double meanSlope_ = 0.0;  // of the ground, by its area in plan
  BoxTree blocks_;
};

/// The colour of an elevation's part of the range (0 lowest, 1 highest) on level ground, for a legend: 0xffRRGGBB.
[[nodiscard]] std::uint32_t heightColour(double part, bool isDark);

}  // namespace lvx::view
