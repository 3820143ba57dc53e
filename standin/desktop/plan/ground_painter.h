#pragma once

#include <QRectF>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "desktop/plan/plan_frame.h"
#include "view/surface_tiles.h"
#include "view/tile_cache.h"

class QPainter;

namespace lvx::desktop {

/// Paints the ground of a frame from tiles, with contours where they are asked for. Where one isn't there, finer or coarser ones stand for it and it is wanted;
/// or, for a finished picture, it is drawn at once.
///
///     GroundPainter ground(painter, frame, cache, false);
///     if (!ground.paint()) worker.want(ground.takeWanted());
class GroundPainter {
 public:
  /// All that is given outlives it. `drawsMissing`: draws what isn't there, which takes milliseconds a tile.
  GroundPainter(QPainter& painter, const PlanFrame& frame, view::TileCache& cache, bool drawsMissing);

  /// Whether all tiles that show were there.
  bool paint();
  /// Tiles that this frame and the next ones want, the most wanted first: all of each surface, coarse; what shows, from
  /// the middle outward; what zooming out shows. Once, after paint().
  [[nodiscard]] std::vector<view::TileKey> takeWanted();
  /// Of all tiles that were asked for, there or not.
  [[nodiscard]] std::size_t wantedBytes() const;
  /// Where contours that were painted can be labelled.
  [[nodiscard]] const std::vector<view::ContourLabel>& contourLabels() const { return contourLabels_; }

 private:
  /// A surface of the scene.
  struct Ground {
    const view::SurfaceShape& shape;
    std::uint32_t index;
    view::SurfaceLook look;
  };
  [[nodiscard]] bool isShown(const view::SurfaceShape& shape) const;
  /// The number of the surface that has contours; empty: none has.
  [[nodiscard]] std::optional<std::size_t> contourSurface() const;
  void paintSurface(const Ground& ground);
  [[nodiscard]] view::TileKey keyOf(const Ground& ground, const view::TileAddress& address) const;
  [[nodiscard]] QRectF targetOf(const civil::Box& box) const;
  void paintGround(const Ground& ground);
  void paintTile(const Ground& ground, const view::TileAddress& address);
  void paintStandIns(const Ground& ground, const view::TileKey& key, const QRectF& target);
  void wantAround(const Ground& ground);
  void collect(const Ground& ground, const civil::Box& box, int level, std::vector<view::TileKey>& into);

  QPainter& painter_;
  const PlanFrame& frame_;
  view::TileCache& cache_;
  bool drawsMissing_;
  double ratio_;  // device pixels a logical one
  int level_;
  view::SurfaceLook look_;
  std::vector<view::TileKey> overview_;
  std::vector<std::pair<double, view::TileKey>> missing_;
  std::vector<view::TileKey> next_;
  std::size_t held_ = 0;
  std::vector<view::ContourLabel> contourLabels_;
};

}  // namespace lvx::desktop
