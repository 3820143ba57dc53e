#include "sheets/pens.h"

#include <array>
#include <span>

namespace lvx::sheets {

namespace {

constexpr std::array<double, 2> kDashes{2.4, 0.9};
constexpr std::array<double, 4> kDashDot{4.0, 0.9, 0.5, 0.9};
constexpr std::array<double, 2> kDots{0.5, 0.8};
constexpr std::array<double, 6> kDashDotDot{4.0, 0.8, 0.5, 0.8, 0.5, 0.8};
constexpr std::array<double, 4> kAxis{6.0, 1.0, 0.6, 1.0};

constexpr std::array<canvas::Colour, 5> kColours{
    {{0.12, 0.38, 0.16}, {0.45, 0.27, 0.08}, {0.05, 0.28, 0.55}, {0.35, 0.12, 0.45}, {0.25, 0.25, 0.25}}};

}  // namespace

canvas::Pen groundPen(std::size_t index) {
  const std::array<std::span<const double>, 5> dashes{{{}, kDashes, kDashDot, kDots, kDashDotDot}};
  return {.width = index == 0 ? 0.35 : 0.25,
          .colour = kColours[index % kColours.size()],
          .dashes = dashes[index % dashes.size()]};
}

canvas::Pen axisPen() { return {.width = 0.18, .colour = {0.2, 0.2, 0.2}, .dashes = kAxis}; }

}  // namespace lvx::sheets
