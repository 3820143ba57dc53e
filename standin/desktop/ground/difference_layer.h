#pragma once

#include <QObject>
#include <QString>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "desktop/plan/plan_tool.h"
#include "view/difference_tiles.h"
#include "view/tile_cache.h"

namespace lvx::desktop {

class PlanView;

/// The difference of two surfaces as colours over the plan's ground, with a legend. Tiles are drawn beside the windows'
/// thread; until one is there a coarser one stands for it.
class DifferenceLayer : public QObject {
  Q_OBJECT
 public:
  /// The view outlives it.
  explicit DifferenceLayer(PlanView& view);
  ~DifferenceLayer() override;

  /// Shows new less existing until clear(); both stay where they are until then. `title` heads the legend.
  void show(const civil::TinSurface& existing, const civil::TinSurface& next, const QString& title);
  /// When it returns, nothing looks at the surfaces any more.
  void clear();
  [[nodiscard]] bool isShown() const { return tiles_ != nullptr; }
  /// Whether nothing that the view wants is left to draw.
  [[nodiscard]] bool isSharp() const;

 private:
  class Colours : public PlanOverlay {
   public:
    explicit Colours(DifferenceLayer& layer) : layer_(layer) {}
    void paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& /*colours*/) const override {
      layer_.paintTiles(painter, viewport);
    }
    void paintWhole(QPainter& painter, const view::Viewport& viewport, const PlanColours& /*colours*/) const override {
      layer_.paintWhole(painter, viewport);
    }
    void paintKey(QPainter& painter, const PlanColours& colours) const override {
      layer_.paintLegend(painter, colours);
    }

   private:
    DifferenceLayer& layer_;
  };
  class Legend : public PlanOverlay {
   public:
    explicit Legend(const DifferenceLayer& layer) : layer_(layer) {}
    void paint(QPainter& painter, const view::Viewport& /*viewport*/, const PlanColours& colours) const override {
      layer_.paintLegend(painter, colours);
    }

   private:
    const DifferenceLayer& layer_;
  };

  void paintTiles(QPainter& painter, const view::Viewport& viewport);
  /// All tiles of a picture, in the windows' thread: seconds.
  void paintWhole(QPainter& painter, const view::Viewport& viewport);
  void paintLegend(QPainter& painter, const PlanColours& colours) const;
  [[nodiscard]] static view::TileKey keyOf(const view::TileAddress& address);
  void run();

  PlanView& view_;
  Colours colours_{*this};
  Legend legend_{*this};
  QString title_;
  std::unique_ptr<const view::DifferenceTiles> tiles_;
  view::TileCache cache_{std::size_t{64} << 20};

  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::vector<view::TileAddress> wanted_;  // the next one last
  bool isDrawing_ = false;
  bool ends_ = false;
  view::CancelFlag cancel_ = false;
  std::thread thread_;
};

}  // namespace lvx::desktop
