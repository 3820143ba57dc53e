#include "view/detail/ground_colours.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace lvx::view::detail {

namespace {

struct Colour {
  double red;
  double green;
  double blue;
};

Colour mixed(const Colour& a, const Colour& b, double part) {
  return {a.red + part * (b.red - a.red), a.green + part * (b.green - a.green), a.blue + part * (b.blue - a.blue)};
}

std::uint32_t packed(const Colour& colour) {
  const auto byte = [](double value) { return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 255.0))); };
  return 0xff000000U | byte(colour.red) << 16 | byte(colour.green) << 8 | byte(colour.blue);
}

/// From shadow over level ground to the sunny slope.
Colour reliefColour(double light, bool isDark) {
  const std::array<Colour, 3> stops = isDark
                                          ? std::array<Colour, 3>{{{22, 24, 27}, {64, 66, 68}, {116, 117, 114}}}
                                          : std::array<Colour, 3>{{{126, 124, 121}, {222, 219, 211}, {251, 249, 244}}};
  if (light < kLevelLight) return mixed(stops[0], stops[1], light / kLevelLight);
  return mixed(stops[1], stops[2], (light - kLevelLight) / (1.0 - kLevelLight));
}

/// Evenly lighter from low to high, so that it reads without a legend and in grey.
Colour rampColour(double part, bool isDark) {
  constexpr std::array<Colour, 6> kStops{
      {{38, 86, 104}, {58, 122, 112}, {112, 152, 98}, {176, 174, 104}, {222, 196, 142}, {248, 234, 212}}};
  const double place = std::clamp(part, 0.0, 1.0) * (kStops.size() - 1);
  const auto below = std::min(static_cast<std::size_t>(place), kStops.size() - 2);
  const Colour colour = mixed(kStops[below], kStops[below + 1], place - static_cast<double>(below));
  // Lines and labels are drawn over it, dark ones on paper and light ones on a dark screen.
  return isDark ? mixed({0.0, 0.0, 0.0}, colour, 0.62) : mixed(colour, {255.0, 255.0, 255.0}, 0.35);
}

/// How bright a colour of the ramp is under the light, in 256ths.
double shadeFactor(double light) {
  return light < kLevelLight ? 0.58 + 0.42 * light / kLevelLight
                             : 1.0 + 0.18 * (light - kLevelLight) / (1.0 - kLevelLight);
}

}  // namespace

std::uint32_t heightColour(double part, bool isDark) { return packed(rampColour(part, isDark)); }

Palette::Palette(const SurfaceLook& look) : isRelief_(look.style == SurfaceStyle::Relief) {
  for (std::size_t i = 0; i < 256; ++i) {
    const double part = static_cast<double>(i) / 255.0;
    colours_[i] = packed(isRelief_ ? reliefColour(part, look.isDark) : rampColour(part, look.isDark));
    factors_[i] = static_cast<std::uint32_t>(std::lround(256.0 * shadeFactor(part)));
  }
  ink_ = look.isDark ? 0xffc8ccd0U : 0xff4a4d50U;
}

}  // namespace lvx::view::detail
