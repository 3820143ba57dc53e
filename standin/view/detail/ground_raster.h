#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "view/surface_tiles.h"

/// Triangles into pixels. Corners count in whole 256ths of a pixel, so that all sides of a seam count in the same
/// numbers and each pixel's centre lies in exactly one triangle of a surface.
namespace lvx::view::detail {

/// The nearest whole number of one that isn't negative: what is cut off behind the half more. Quicker than std::lround.
template <class Real>
[[nodiscard]] inline std::uint32_t rounded(Real value) {
  const Real halfMore = value + Real{0.5};
  return static_cast<std::uint32_t>(halfMore);
}

inline constexpr int kSubBits = 8;
/// Parts of a pixel that corners count in.
inline constexpr std::int64_t kSub = std::int64_t{1} << kSubBits;

// By value: these become single instructions, where a list of three becomes branches that nothing can predict.
template <class T>
T least(T a, T b, T c) {
  const T ab = a < b ? a : b;
  return ab < c ? ab : c;
}
template <class T>
T most(T a, T b, T c) {
  const T ab = a > b ? a : b;
  return ab > c ? ab : c;
}

struct Face {
  // Corners in 256ths of a pixel from the area's upper left corner, clockwise as seen; whole numbers unless huge.
  std::array<double, 3> x;
  std::array<double, 3> y;
  std::array<double, 3> height;  // 0 to 255
  std::uint32_t light = 0;
  std::uint32_t meanHeight = 0;
};

/// Gathers the triangles of an area's pixels, in any order; finish() gives the picture. Memory: 16 bytes a pixel.
class Raster {
 public:
  /// The area has at least one pixel.
  Raster(const PixelArea& area, const SurfaceLook& look);

  /// Costs the pixels that the face covers; nothing to speak of where it misses the area.
  void add(const Face& face);
  /// Into width * height pixels, as Tile has them; false if there is no ground.
  bool finish(const SurfaceLook& look, std::uint32_t* out) const;

 private:
  struct Corner {
    std::int64_t x = 0;
    std::int64_t y = 0;
  };
  using Corners = std::array<Corner, 3>;
  struct Rows;
  class Paint;

  /// What a pixel gathers.
  struct Gathered {
    std::uint32_t light = 0;   // sum of light times weight
    std::uint32_t height = 0;  // sum of height times weight
    std::uint32_t weight = 0;
    std::uint16_t line = 0;
    std::uint16_t hasGround = 0;
  };

  /// A triangle smaller than a pixel takes part in the colour of that which holds its middle, whether it holds the
  /// pixel's centre or not: from afar a surface is the mean of its triangles and not a choice of them.
  void average(const Corners& corners, std::int64_t area, const Face& face);
  /// All pixels whose centre the triangle holds. `area` is twice its own, in squares of a 256th.
  void fill(const Corners& corners, std::int64_t area, const Face& face);
  /// Cuts a triangle back to the surroundings of the area first.
  void addFar(const Face& face);
  /// Nothing changes from pixel to pixel.
  [[nodiscard]] bool isPlain(std::int64_t area) const;
  Gathered& at(std::int64_t x, std::int64_t y) {
    return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)];
  }
  static void gather(Gathered& pixel, std::uint32_t light, std::uint32_t height, std::uint32_t weight) {
    pixel.light += light * weight;
    pixel.height += height * weight;
    pixel.weight += weight;
  }

  int width_;
  int height_;
  bool hasHeights_;
  bool hasEdges_;
  std::vector<Gathered> pixels_;
};

}  // namespace lvx::view::detail
