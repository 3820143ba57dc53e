#include "desktop/plan/ground_painter.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>

#include "desktop/plan/tile_drawing.h"

namespace lvx::desktop {

using civil::Box;
using civil::Vec2;
using view::SurfaceTiles;
using view::TileAddress;
using view::TileKey;

namespace {

/// Tiles are enlarged by a sixth at most, which nobody sees, rather than drawn at up to four times the pixels.
constexpr double kTileSlack = 0.84;
constexpr double kSize = view::Tile::kSize;
constexpr QRectF kWholeTile(0, 0, kSize, kSize);

void copyTile(QPainter& painter, const QRectF& target, const view::Tile& tile, const QRectF& source) {
  if (tile.isEmpty()) return;
  const QImage image(reinterpret_cast<const uchar*>(tile.pixels.data()), view::Tile::kSize, view::Tile::kSize,
                     view::Tile::kSize * 4, QImage::Format_ARGB32_Premultiplied);
  painter.drawImage(target, image, source);
}

/// A quarter of a tile, one level finer: 0 and 1 above, 2 and 3 below.
TileAddress quarterOf(const TileAddress& address, std::size_t part) {
  return {.level = address.level + 1,
          .column = 2 * address.column + static_cast<std::int64_t>(part % 2),
          .row = 2 * address.row + static_cast<std::int64_t>(part / 2)};
}

}  // namespace

GroundPainter::GroundPainter(QPainter& painter, const PlanFrame& frame, view::TileCache& cache, bool drawsMissing)
    : painter_(painter),
      frame_(frame),
      cache_(cache),
      drawsMissing_(drawsMissing),
      ratio_(painter.device()->devicePixelRatioF()),
      level_(SurfaceTiles::levelFor(frame.viewport.scale() * ratio_ * kTileSlack)),
      look_{.style =
                frame.look.surface == SurfaceLook::Heights ? view::SurfaceStyle::Heights : view::SurfaceStyle::Relief,
            .hasTriangles = frame.look.triangles,
            .isDark = frame.look.dark,
            .lineWidth = frame.look.contours ? std::max(1.0, std::round(ratio_ * 2.0) / 2.0) : 1.0} {}

bool GroundPainter::paint() {
  painter_.setRenderHint(QPainter::SmoothPixmapTransform);
  painter_.setRenderHint(QPainter::Antialiasing, false);
  const auto surfaces = frame_.scene.surfaces();
  const std::optional<std::size_t> contours = contourSurface();
  const double asked = frame_.look.contourInterval > 0.0 ? frame_.look.contourInterval : view::SurfaceLook::kByScale;
  std::optional<std::size_t> top;
  if (frame_.look.surface != SurfaceLook::None)
    for (std::size_t index = 0; index < surfaces.size(); ++index)
      if (isShown(surfaces[index])) top = index;
  for (std::size_t index = 0; top && index <= *top; ++index) {
    if (!isShown(surfaces[index])) continue;
    Ground ground{surfaces[index], static_cast<std::uint32_t>(index), look_};
    // In one picture with the ground where nothing lies between: half of the copying.
    if (contours == index && index == *top) ground.look.contourInterval = asked;
    paintSurface(ground);
  }
  if (contours && contours != top) {
    Ground lines{surfaces[*contours], static_cast<std::uint32_t>(*contours), look_};
    lines.look.style = view::SurfaceStyle::Bare;
    lines.look.hasTriangles = false;
    lines.look.contourInterval = asked;
    paintSurface(lines);
  }
  return missing_.empty();
}

bool GroundPainter::isShown(const view::SurfaceShape& shape) const {
  return shape.tiles && !shape.box.isEmpty() && view::meet(shape.box, frame_.viewport.visible()) &&
         !frame_.scene.isHidden(shape.object->handle);
}

std::optional<std::size_t> GroundPainter::contourSurface() const {
  if (!frame_.look.contours) return std::nullopt;
  std::optional<std::size_t> last;
  const auto surfaces = frame_.scene.surfaces();
  for (std::size_t index = 0; index < surfaces.size(); ++index) {
    if (!isShown(surfaces[index])) continue;
    if (frame_.selected != nullptr && frame_.selected->has(surfaces[index].object->handle)) return index;
    last = index;
  }
  return last;
}

void GroundPainter::paintSurface(const Ground& ground) {
  paintGround(ground);
  if (!drawsMissing_) wantAround(ground);
}

TileKey GroundPainter::keyOf(const Ground& ground, const TileAddress& address) const {
  return {.surface = ground.index, .address = address, .look = ground.look};
}

QRectF GroundPainter::targetOf(const Box& box) const {
  // Neighbours share their edges on whole device pixels: no seam, and nothing twice.
  const Vec2 from = frame_.viewport.toPixels({box.minX, box.maxY});
  const Vec2 to = frame_.viewport.toPixels({box.maxX, box.minY});
  const QPointF topLeft(std::round(from.x * ratio_), std::round(from.y * ratio_));
  const QPointF bottomRight(std::round(to.x * ratio_), std::round(to.y * ratio_));
  return {topLeft / ratio_, bottomRight / ratio_};
}

void GroundPainter::paintGround(const Ground& ground) {
  const view::TileRange range = ground.shape.tiles->tilesIn(frame_.viewport.visible(), level_);
  for (std::int64_t row = range.top; row <= range.bottom; ++row)
    for (std::int64_t column = range.left; column <= range.right; ++column)
      paintTile(ground, {.level = level_, .column = column, .row = row});
}

void GroundPainter::paintTile(const Ground& ground, const TileAddress& address) {
  const TileKey key = keyOf(ground, address);
  const QRectF target = targetOf(ground.shape.tiles->boxOf(address));
  ++held_;
  std::shared_ptr<const view::Tile> tile = cache_.find(key);
  if (!tile && drawsMissing_) {
    tile = desktop::drawTile(*ground.shape.tiles, address, key.look);
    cache_.insert(key, tile);
  }
  if (tile) {
    copyTile(painter_, target, *tile, kWholeTile);
    contourLabels_.insert(contourLabels_.end(), tile->labels.begin(), tile->labels.end());
    return;
  }
  const QPointF middle(frame_.viewport.width() / 2.0, frame_.viewport.height() / 2.0);
  missing_.emplace_back((target.center() - middle).manhattanLength(), key);
  paintStandIns(ground, key, target);
}

// Finer ones where all four are there, as after zooming out; else the best that is coarser, and over it what there is of
// the finer.
void GroundPainter::paintStandIns(const Ground& ground, const TileKey& key, const QRectF& target) {
  std::array<std::shared_ptr<const view::Tile>, 4> finer;
  for (std::size_t part = 0; part < finer.size(); ++part)
    finer[part] = cache_.find(keyOf(ground, quarterOf(key.address, part)));
  if (std::find(finer.begin(), finer.end(), nullptr) != finer.end())
    if (const auto coarser = cache_.findCoarser(key, SurfaceTiles::kMostLevel - SurfaceTiles::kLeastLevel))
      copyTile(painter_, target, *coarser->tile, QRectF(coarser->left, coarser->top, coarser->size, coarser->size));
  for (std::size_t part = 0; part < finer.size(); ++part)
    if (finer[part])
      copyTile(painter_, targetOf(ground.shape.tiles->boxOf(quarterOf(key.address, part))), *finer[part], kWholeTile);
}

// All of the surface, coarse, so that there is always something to show; and what zooming out shows next.
void GroundPainter::wantAround(const Ground& ground) {
  const Box& box = ground.shape.box;
  const double extent = std::max(box.maxX - box.minX, box.maxY - box.minY);
  if (extent > 0.0) {
    const int whole = SurfaceTiles::levelFor(kSize / extent);
    if (whole < level_) collect(ground, box, whole, overview_);
  }
  if (level_ > SurfaceTiles::kLeastLevel) collect(ground, frame_.viewport.visible(), level_ - 1, next_);
}

void GroundPainter::collect(const Ground& ground, const Box& box, int level, std::vector<TileKey>& into) {
  const view::TileRange range = ground.shape.tiles->tilesIn(box, level);
  for (std::int64_t row = range.top; row <= range.bottom; ++row)
    for (std::int64_t column = range.left; column <= range.right; ++column) {
      ++held_;
      const TileKey key = keyOf(ground, {.level = level, .column = column, .row = row});
      if (!cache_.find(key)) into.push_back(key);
    }
}

std::vector<TileKey> GroundPainter::takeWanted() {
  std::stable_sort(missing_.begin(), missing_.end(),
                   [](const auto& one, const auto& other) { return one.first < other.first; });
  std::vector<TileKey> wanted = std::move(overview_);
  for (const auto& [distance, key] : missing_) wanted.push_back(key);
  wanted.insert(wanted.end(), next_.begin(), next_.end());
  return wanted;
}

std::size_t GroundPainter::wantedBytes() const {
  constexpr std::size_t kTileBytes = std::size_t{4} * view::Tile::kSize * view::Tile::kSize;
  return held_ * kTileBytes;
}

}  // namespace lvx::desktop
