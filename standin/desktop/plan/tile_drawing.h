#pragma once

#include <memory>

#include "view/surface_tiles.h"

namespace lvx::desktop {

/// A tile with all that its look asks for: the ground, contours over it and the places of their labels. For any thread; null
/// where `cancel` was set before it was done.
[[nodiscard]] std::shared_ptr<const view::Tile> drawTile(const view::SurfaceTiles& tiles,
                                                         const view::TileAddress& address,
                                                         const view::SurfaceLook& look,
                                                         const view::CancelFlag* cancel = nullptr);

/// The width of contours in pixels of the viewer.
[[nodiscard]] double contourWidth(bool isIndex);

}  // namespace lvx::desktop
