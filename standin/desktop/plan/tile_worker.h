#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

#include "view/plan_scene.h"
#include "view/surface_tiles.h"
#include "view/tile_cache.h"

namespace lvx::desktop {

/// Draws the tiles that a plan lacks on a thread of its own, in the order of the last wish; what is drawn and no longer
/// wished for is given up at once.
class TileWorker {
 public:
  /// `onTile` is called on the worker's thread after each tile.
  explicit TileWorker(std::function<void()> onTile);
  TileWorker(const TileWorker&) = delete;
  TileWorker& operator=(const TileWorker&) = delete;
  ~TileWorker();

  /// Forgets all tiles. When it returns the worker no longer looks at the surfaces before. Null: nothing to draw.
  void setScene(std::shared_ptr<const view::PlanScene> scene);
  /// Takes the place of the wish before; tiles that are there already are passed over.
  void want(std::vector<view::TileKey> keys);
  /// Whether nothing that was wished for is left to draw.
  [[nodiscard]] bool isIdle() const;

  /// For the thread of the windows.
  [[nodiscard]] view::TileCache& cache() { return *cache_; }
  /// Makes room for so many bytes of tiles at once; what is there goes if the room was smaller.
  void makeRoom(std::size_t bytes);

 private:
  void run();
  /// With the lock held, waits until the worker draws nothing.
  void stopDrawing(std::unique_lock<std::mutex>& lock);

  const std::function<void()> onTile_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::condition_variable rest_;
  std::shared_ptr<const view::PlanScene> scene_;
  std::vector<const view::SurfaceTiles*> surfaces_;
  std::shared_ptr<view::TileCache> cache_ = std::make_shared<view::TileCache>();
  std::size_t room_ = view::TileCache::kDefaultLimit;
  std::vector<view::TileKey> wanted_;  // the next one last
  std::optional<view::TileKey> drawing_;
  view::CancelFlag cancel_ = false;
  bool ends_ = false;
  std::thread thread_;
};

}  // namespace lvx::desktop
