#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

#include "view/surface_tiles.h"

/// Tiles that were drawn, kept to be shown again.
///
///     TileCache cache;                                            // 32 MB
///     if (auto tile = cache.find(key)) show(*tile);
///     else if (auto coarse = cache.findCoarser(key)) enlarge(*coarse);
namespace lvx::view {

struct TileKey {
  std::uint32_t surface = 0;  ///< number of the surface in its scene
  TileAddress address;
  SurfaceLook look;
  bool operator==(const TileKey&) const = default;
};

/// A tile that is coarser than wanted, and the square of it that stands for the wanted one.
struct CoarserTile {
  std::shared_ptr<const Tile> tile;
  double left = 0.0;  ///< pixels
  double top = 0.0;
  double size = 0.0;
};

/// The tiles drawn last, up to a number of bytes. Safe for threads: one draws while another shows. All functions are O(1)
/// but for findCoarser(), which is O(levels).
class TileCache {
 public:
  static constexpr std::size_t kDefaultLimit = std::size_t{32} << 20;

  explicit TileCache(std::size_t byteLimit = kDefaultLimit) : limit_(byteLimit) {}

  /// Null where it isn't held. Finding counts as use.
  [[nodiscard]] std::shared_ptr<const Tile> find(const TileKey& key);
  /// The tile of the nearest coarser level that covers this one, up to `levels` above; it counts as used.
  [[nodiscard]] std::optional<CoarserTile> findCoarser(const TileKey& key, int levels = 6);
  /// Tiles used longest ago go first; the new one stays even if it is too large alone. Null is passed over.
  void insert(const TileKey& key, std::shared_ptr<const Tile> tile);
  void clear();
  [[nodiscard]] std::size_t bytes() const;
  [[nodiscard]] std::size_t count() const;

 private:
  struct Hash {
    std::size_t operator()(const TileKey& key) const;
  };
  struct Entry {
    TileKey key;
    std::shared_ptr<const Tile> tile;
  };
  std::shared_ptr<const Tile> findLocked(const TileKey& key);

  mutable std::mutex mutex_;
  std::size_t limit_;
  std::size_t bytes_ = 0;
  std::list<Entry> entries_;  // the latest used first
  std::unordered_map<TileKey, std::list<Entry>::iterator, Hash> places_;
};

}  // namespace lvx::view
