#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace lvx::host {

inline constexpr int kPictureSide = 16;

/// A picture of 16 by 16 pixels: rows from the top, each pixel blue, green, red and one byte that is 0.
struct PictureBits {
  std::string_view name;
  std::array<std::uint8_t, kPictureSide * kPictureSide * 4> bytes{};
};

/// A colour of the user's scheme.
struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  bool operator==(const Colour&) const = default;
};

}  // namespace lvx::host
