#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "runtime/open_drawing.h"

namespace lvx::desktop {

/// What an object is called, to find it again in a drawing that was read anew: there handles may be others.
struct ObjectKey {
  civil::ObjectKind kind = civil::ObjectKind::Site;
  std::string name;
  /// The alignment that a profile, a sample line or a group of them stands on; else empty.
  std::string alignment;
  /// Of a point; else 0.
  std::int32_t number = 0;

  friend auto operator<=>(const ObjectKey&, const ObjectKey&) = default;
};

/// Empty for no object.
[[nodiscard]] std::optional<ObjectKey> keyOf(const runtime::OpenDrawing& drawing, civil::Handle handle);

/// The first object of that key; 0 where there is none any more. O(objects, points apart).
[[nodiscard]] civil::Handle findAgain(const runtime::OpenDrawing& drawing, const ObjectKey& key);

/// The first object of each key that is there, points apart, in the drawing's order. O((objects + keys) log keys), points
/// apart.
[[nodiscard]] std::vector<civil::Handle> findAgain(const runtime::OpenDrawing& drawing,
                                                   const std::vector<ObjectKey>& keys);

}  // namespace lvx::desktop
