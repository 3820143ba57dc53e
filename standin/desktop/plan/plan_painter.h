#pragma once

#include <QColor>
#include <QRectF>
#include <QString>
#include <unordered_map>
#include <vector>

#include "desktop/plan/halo_text.h"
#include "desktop/plan/label_placer.h"
#include "desktop/plan/plan_frame.h"
#include "view/plan_scene.h"
#include "view/surface_tiles.h"
#include "view/tile_cache.h"
#include "view/viewport.h"

class QPainter;

namespace lvx::desktop {

/// Draws plans: one frame after the other of one scene, with what is worth keeping between frames.
///
///     PlanPainter painter;
///     painter.paint(onImage, frame, cache, PlanPainter::Tiles::AllNow);   // a finished picture
class PlanPainter {
 public:
  using Frame = PlanFrame;
  enum class Tiles : std::uint8_t {
    AsThere,  ///< takes coarser or finer tiles where one isn't there, and some new labels a frame; never waits
    AllNow,   ///< draws all that isn't there
  };
  struct Result {
    /// Tiles that this frame and the next ones want, the most wanted first.
    std::vector<view::TileKey> wanted;
    std::size_t wantedBytes = 0;
    /// Whether all tiles that show were there.
    bool isSharp = true;
    /// Whether labels wait for the next frame, since drawing too many new ones would hold this one up.
    bool isUnfinished = false;
  };

  /// The plan with its ground colour, selection, labels and furniture over the whole of the frame's viewport.
  Result paint(QPainter& painter, const Frame& frame, view::TileCache& cache, Tiles tiles);
  /// Lines, points and texts of a frame alone, without ground and furniture, as lines and texts that can be printed at any
  /// size.
  void paintOnPaper(QPainter& painter, const Frame& frame, const std::vector<view::ContourLabel>& contours);
  /// One object over a painted frame, as under the mouse.
  void paintHover(QPainter& painter, const Frame& frame, civil::Handle handle);
  /// Whether points are mere dots in the last frame, for want of room.
  [[nodiscard]] bool isCrowded() const { return isCrowded_; }
  /// For a view without scene, or with one in which nothing can be drawn.
  static void paintEmpty(QPainter& painter, const QRectF& area, const PlanLook& look, const QFont& font,
                         const QString& title, const QString& text);
  /// Another scene, other corridors or another font: forgets what was kept.
  void clear();

 private:
  struct Place {
    civil::ObjectKind kind = civil::ObjectKind::Alignment;
    std::size_t index = 0;
  };

  void paintLines(QPainter& painter, const Frame& frame);
  void paintSelected(QPainter& painter, const Frame& frame);
  void preparePoints(const Frame& frame);
  void paintPoints(QPainter& painter, const Frame& frame);
  void judgeCrowd(const view::Viewport& viewport);
  void paintObject(QPainter& painter, const Frame& frame, civil::Handle handle, const QColor& colour, double width);
  void find(const view::PlanScene& scene);

  HaloText text_;
  /// Where the objects of the scene stand in its lists; points aren't among them.
  std::unordered_map<civil::Handle, Place> places_;
  const view::PlanScene* known_ = nullptr;
  /// Those of this frame.
  view::VisiblePoints points_;
  bool isCrowded_ = false;
  bool isOnPaper_ = false;
};

}  // namespace lvx::desktop
