#include "view/tile_cache.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace lvx::view {

std::size_t TileCache::Hash::operator()(const TileKey& key) const {
  std::uint64_t hash = 14695981039346656037ULL;
  const auto mix = [&](std::uint64_t value) { hash = (hash ^ value ^ (hash >> 29)) * 1099511628211ULL; };
  mix(key.surface);
  mix(static_cast<std::uint64_t>(static_cast<std::int64_t>(key.address.level)));
  mix(static_cast<std::uint64_t>(key.address.column));
  mix(static_cast<std::uint64_t>(key.address.row));
  mix(static_cast<std::uint64_t>(key.look.style) << 2 | (key.look.hasTriangles ? 2U : 0U) |
      (key.look.isDark ? 1U : 0U));
  mix(std::bit_cast<std::uint64_t>(key.look.contourInterval));
  return static_cast<std::size_t>(hash ^ hash >> 32);
}

std::shared_ptr<const Tile> TileCache::findLocked(const TileKey& key) {
  const auto place = places_.find(key);
  if (place == places_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, place->second);
  return place->second->tile;
}

std::shared_ptr<const Tile> TileCache::find(const TileKey& key) {
  const std::lock_guard lock(mutex_);
  return findLocked(key);
}

std::optional<CoarserTile> TileCache::findCoarser(const TileKey& key, int levels) {
  const std::lock_guard lock(mutex_);
  TileKey coarser = key;
  for (int above = 1; above <= std::min(levels, 8); ++above) {
    --coarser.address.level;
    // Shifted rather than divided: rounds down on both sides of 0.
    coarser.address.column = key.address.column >> above;
    coarser.address.row = key.address.row >> above;
    if (auto tile = findLocked(coarser)) {
      const double size = std::ldexp(Tile::kSize, -above);
      const auto within = [&](std::int64_t number, std::int64_t parent) {
        return static_cast<double>(number - (parent << above)) * size;
      };
      return CoarserTile{std::move(tile), within(key.address.column, coarser.address.column),
                         within(key.address.row, coarser.address.row), size};
    }
  }
  return std::nullopt;
}

void TileCache::insert(const TileKey& key, std::shared_ptr<const Tile> tile) {
  if (!tile) return;
  const std::lock_guard lock(mutex_);
  if (const auto place = places_.find(key); place != places_.end()) {
    bytes_ -= place->second->tile->bytes();
    entries_.erase(place->second);
    places_.erase(place);
  }
  bytes_ += tile->bytes();
  entries_.push_front({key, std::move(tile)});
  places_.emplace(key, entries_.begin());
  while (bytes_ > limit_ && entries_.size() > 1) {
    bytes_ -= entries_.back().tile->bytes();
    places_.erase(entries_.back().key);
    entries_.pop_back();
  }
}

void TileCache::clear() {
  const std::lock_guard lock(mutex_);
  places_.clear();
  entries_.clear();
  bytes_ = 0;
}

std::size_t TileCache::bytes() const {
  const std::lock_guard lock(mutex_);
  return bytes_;
}

std::size_t TileCache::count() const {
  const std::lock_guard lock(mutex_);
  return entries_.size();
}

}  // namespace lvx::view
