#include "desktop/plan/tile_drawing.h"

#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <cmath>
#include <utility>
#include <vector>

#include "desktop/plan/plan_colours.h"
#include "view/plan_shapes.h"

namespace lvx::desktop {

namespace {

/// About as wide as a label, in pixels of the viewer.
constexpr double kLabelLength = 52.0;
/// Vertices of a contour nearer than this to the one drawn before aren't seen; pixels of the tile.
constexpr double kLeastStep = 0.35;

void drawContours(view::Tile& tile, const std::vector<view::Contour>& contours, const civil::Box& box, double scale,
                  const view::SurfaceLook& look) {
  QImage image(reinterpret_cast<uchar*>(tile.pixels.data()), view::Tile::kSize, view::Tile::kSize,
               view::Tile::kSize * 4, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const PlanColours& colours = planColours(look.isDark);
  QPolygonF pixels;
  for (const view::Contour& contour : contours) {
    pixels.clear();
    for (const civil::Vec2 place : contour.line) {
      const QPointF pixel((place.x - box.minX) * scale, (box.maxY - place.y) * scale);
      if (pixels.size() > 1 && (pixel - pixels.back()).manhattanLength() < kLeastStep) continue;
      pixels.push_back(pixel);
    }
    painter.setPen(QPen(contour.isIndex ? colours.indexContour : colours.contour,
                        contourWidth(contour.isIndex) * look.lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
    painter.drawPolyline(pixels);
  }
}

}  // namespace

double contourWidth(bool isIndex) {
  constexpr double kPlain = 0.9;
  constexpr double kIndex = 1.8;
  return isIndex ? kIndex : kPlain;
}

std::shared_ptr<const view::Tile> drawTile(const view::SurfaceTiles& tiles, const view::TileAddress& address,
                                           const view::SurfaceLook& look, const view::CancelFlag* cancel) {
  std::shared_ptr<const view::Tile> ground = tiles.render(address, look, cancel);
  if (!ground || look.contourInterval == 0.0) return ground;
  const double scale = view::SurfaceTiles::scaleOf(address.level);
  const civil::Box box = tiles.boxOf(address);
  const view::ContourPlan plan{.interval = look.contourInterval == view::SurfaceLook::kByScale
                                               ? tiles.contourInterval(scale / look.lineWidth)
                                               : look.contourInterval};
  // Lines of the neighbours reach into the tile by their width.
  const std::vector<view::Contour> contours =
      tiles.contours(view::grown(box, 2.0 * look.lineWidth / scale), plan, cancel);
  if (cancel != nullptr && cancel->load(std::memory_order_relaxed)) return nullptr;
  if (contours.empty()) return ground;
  auto tile = std::make_shared<view::Tile>(*ground);
  if (tile->isEmpty()) tile->pixels.resize(std::size_t{view::Tile::kSize} * view::Tile::kSize);
  drawContours(*tile, contours, box, scale, look);
  tile->labels = view::labelPlaces(contours, box, kLabelLength * look.lineWidth / scale);
  return tile;
}

}  // namespace lvx::desktop
