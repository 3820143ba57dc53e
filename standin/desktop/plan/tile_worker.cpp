#include "desktop/plan/tile_worker.h"

#include <algorithm>
#include <new>
#include <utility>

#include "desktop/plan/tile_drawing.h"

namespace lvx::desktop {

using view::TileKey;

TileWorker::TileWorker(std::function<void()> onTile) : onTile_(std::move(onTile)), thread_([this] { run(); }) {}

TileWorker::~TileWorker() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
    cancel_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void TileWorker::setScene(std::shared_ptr<const view::PlanScene> scene) {
  std::unique_lock lock(mutex_);
  stopDrawing(lock);
  scene_ = std::move(scene);
  surfaces_.clear();
  if (scene_)
    for (const view::SurfaceShape& shape : scene_->surfaces()) surfaces_.push_back(shape.tiles.get());
  cache_->clear();
}

void TileWorker::want(std::vector<TileKey> keys) {
  {
    const std::lock_guard lock(mutex_);
    if (drawing_ && std::find(keys.begin(), keys.end(), *drawing_) == keys.end()) cancel_ = true;
    std::reverse(keys.begin(), keys.end());
    wanted_ = std::move(keys);
  }
  wake_.notify_all();
}

bool TileWorker::isIdle() const {
  const std::lock_guard lock(mutex_);
  return wanted_.empty() && !drawing_;
}

void TileWorker::makeRoom(std::size_t bytes) {
  if (bytes <= room_) return;
  std::unique_lock lock(mutex_);
  stopDrawing(lock);
  room_ = bytes;
  cache_ = std::make_shared<view::TileCache>(room_);
}

void TileWorker::stopDrawing(std::unique_lock<std::mutex>& lock) {
  wanted_.clear();
  cancel_ = true;
  rest_.wait(lock, [this] { return !drawing_; });
}

void TileWorker::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this] { return ends_ || !wanted_.empty(); });
    if (ends_) return;
    const TileKey key = wanted_.back();
    wanted_.pop_back();
    if (key.surface >= surfaces_.size() || surfaces_[key.surface] == nullptr || cache_->find(key)) continue;
    drawing_ = key;
    cancel_ = false;
    const view::SurfaceTiles& tiles = *surfaces_[key.surface];
    lock.unlock();
    std::shared_ptr<const view::Tile> tile;
    bool isShort = false;
    try {
      tile = drawTile(tiles, key.address, key.look, &cancel_);
    } catch (const std::bad_alloc&) {
      isShort = true;
    }
    lock.lock();
    if (tile) cache_->insert(key, std::move(tile));
    // Without memory for a tile the coarser one stays on the screen; trying on would only take memory from others.
    if (isShort) wanted_.clear();
    drawing_.reset();
    rest_.notify_all();
    lock.unlock();
    onTile_();
    lock.lock();
  }
}

}  // namespace lvx::desktop
