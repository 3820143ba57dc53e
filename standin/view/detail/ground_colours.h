#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "view/surface_tiles.h"

/// The colours of ground: by its light (0 dark, 1 facing the sun) or by its height's part of the range (0 lowest, 1
/// highest). Packed as 0xffRRGGBB.
namespace lvx::view::detail {

/// The light of level ground under the sun at 45 degrees.
inline constexpr double kLevelLight = 0.70710678118654752;

/// Of a height on level ground; parts beyond 0 and 1 count as these.
[[nodiscard]] std::uint32_t heightColour(double part, bool isDark);

/// All colours of a look.
class Palette {
 public:
  explicit Palette(const SurfaceLook& look);

  /// `light` and `height` from 0 to 255; `line` is the part of the pixel that an edge covers, of 255.
  [[nodiscard]] std::uint32_t colour(std::uint32_t light, std::uint32_t height, std::uint32_t line) const {
    std::uint32_t colour = isRelief_ ? colours_[light] : shaded(colours_[height], factors_[light]);
    if (line > 0) colour = blended(colour, ink_, line * kInk / 255);
    return colour;
  }

 private:
  static constexpr std::uint32_t kInk = 92;  // of 256: edges stay behind what is drawn over them

  static std::uint32_t shaded(std::uint32_t colour, std::uint32_t factor) {
    const auto channel = [&](unsigned shift) {
      return std::min(255U, ((colour >> shift & 0xffU) * factor) >> 8) << shift;
    };
    return 0xff000000U | channel(16) | channel(8) | channel(0);
  }
  static std::uint32_t blended(std::uint32_t under, std::uint32_t over, std::uint32_t part) {
    const auto channel = [&](unsigned shift) {
      return (((under >> shift & 0xffU) * (256 - part) + (over >> shift & 0xffU) * part) >> 8) << shift;
    };
    return 0xff000000U | channel(16) | channel(8) | channel(0);
  }

  bool isRelief_;
  std::array<std::uint32_t, 256> colours_{};
  std::array<std::uint32_t, 256> factors_{};
  std::uint32_t ink_;
};

}  // namespace lvx::view::detail
