#include "view/difference_tiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "view/contours.h"

namespace lvx::view {

using civil::Box;
using civil::TinSurface;
using civil::Vec2;

namespace {

struct Colour {
  double red;
  double green;
  double blue;
};

// Light to dark, after Brewer's diverging scheme of red and blue (Harrower and Brewer, The Cartographic Journal 40, 2003).
constexpr std::array kCut{Colour{253, 219, 199}, Colour{244, 165, 130}, Colour{214, 96, 77}, Colour{178, 24, 43}};
constexpr std::array kFill{Colour{209, 229, 240}, Colour{146, 197, 222}, Colour{67, 147, 195}, Colour{33, 102, 172}};
constexpr double kMostAlpha = 225.0;
/// From here on the colour covers as much as it ever does; below it fades out towards 0.
constexpr double kCovered = 0.25;

std::optional<double> differenceAt(const TinSurface& existing, const TinSurface& next, Vec2 place) {
  const auto below = existing.elevationAt(place);
  if (!below) return std::nullopt;
  const auto above = next.elevationAt(place);
  if (!above) return std::nullopt;
  return *above - *below;
}

}  // namespace

std::uint32_t differenceColour(double part) {
  const double size = std::min(std::abs(part), 1.0);
  if (!(size > 0.0)) return 0;
  const auto& ramp = part < 0.0 ? kCut : kFill;
  const double place = size * static_cast<double>(ramp.size() - 1);
  const auto lower = std::min(static_cast<std::size_t>(place), ramp.size() - 2);
  const double along = place - static_cast<double>(lower);
  const double alpha = kMostAlpha * std::min(1.0, size / kCovered);
  const auto channel = [&](double Colour::*of) {
    const double value = ramp[lower].*of + along * (ramp[lower + 1].*of - ramp[lower].*of);
    return static_cast<std::uint32_t>(value * alpha / 255.0 + 0.5);
  };
  return static_cast<std::uint32_t>(alpha + 0.5) << 24U | channel(&Colour::red) << 16U | channel(&Colour::green) << 8U |
         channel(&Colour::blue);
}

DifferenceTiles::DifferenceTiles(const TinSurface& existing, const TinSurface& next)
    : existing_(&existing), next_(&next) {
  const Box one = existing.box();
  const Box other = next.box();
  if (one.isEmpty() || other.isEmpty() || !meet(one, other)) return;
  box_ = {std::max(one.minX, other.minX), std::max(one.minY, other.minY), std::min(one.maxX, other.maxX),
          std::min(one.maxY, other.maxY)};
  origin_ = {std::floor(box_.minX), std::ceil(box_.maxY)};

  constexpr int kPlaces = 100;
  std::vector<double> sizes;
  for (int row = 0; row < kPlaces; ++row)
    for (int column = 0; column < kPlaces; ++column) {
      const Vec2 place{box_.minX + (column + 0.5) / kPlaces * (box_.maxX - box_.minX),
                       box_.minY + (row + 0.5) / kPlaces * (box_.maxY - box_.minY)};
      if (const auto difference = differenceAt(existing, next, place)) sizes.push_back(std::abs(*difference));
    }
  if (sizes.empty()) return;
  const auto nth = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() * 19 / 20);
  std::nth_element(sizes.begin(), nth, sizes.end());
  if (*nth > 1e-9) range_ = roundInterval(*nth);
}

TileRange DifferenceTiles::tilesIn(const Box& visible, int level) const {
  if (box_.isEmpty() || visible.isEmpty() || !meet(box_, visible)) return {};
  const double perTile = SurfaceTiles::scaleOf(level) / Tile::kSize;
  const auto tile = [](double number) {
    return static_cast<std::int64_t>(std::clamp(std::floor(number), -0x1p52, 0x1p52));
  };
  return {tile((std::max(box_.minX, visible.minX) - origin_.x) * perTile),
          tile((origin_.y - std::min(box_.maxY, visible.maxY)) * perTile),
          tile((std::min(box_.maxX, visible.maxX) - origin_.x) * perTile),
          tile((origin_.y - std::max(box_.minY, visible.minY)) * perTile)};
}

Box DifferenceTiles::boxOf(const TileAddress& address) const {
  const double size = Tile::kSize / SurfaceTiles::scaleOf(address.level);
  const double left = origin_.x + static_cast<double>(address.column) * size;
  const double top = origin_.y - static_cast<double>(address.row) * size;
  return {left, top - size, left + size, top};
}

std::shared_ptr<const Tile> DifferenceTiles::render(const TileAddress& address, const CancelFlag* cancel) const {
  auto tile = std::make_shared<Tile>();
  const Box whole = boxOf(address);
  if (box_.isEmpty() || !meet(whole, box_)) return tile;
  tile->pixels.resize(std::size_t{Tile::kSize} * Tile::kSize);
  const double pixel = 1.0 / SurfaceTiles::scaleOf(address.level);
  bool isClear = true;
  for (int row = 0; row < Tile::kSize; ++row) {
    if (cancel && cancel->load(std::memory_order_relaxed)) return nullptr;
    const double y = whole.maxY - (row + 0.5) * pixel;
    if (y < box_.minY || y > box_.maxY) continue;
    for (int column = 0; column < Tile::kSize; ++column) {
      const double x = whole.minX + (column + 0.5) * pixel;
      if (x < box_.minX || x > box_.maxX) continue;
      const auto difference = differenceAt(*existing_, *next_, {x, y});
      if (!difference) continue;
      const std::uint32_t colour = differenceColour(*difference / range_);
      tile->pixels[static_cast<std::size_t>(row * Tile::kSize + column)] = colour;
      isClear &= colour == 0;
    }
  }
  if (isClear) tile->pixels = {};
  return tile;
}

}  // namespace lvx::view
