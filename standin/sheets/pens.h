#pragma once

#include <cstddef>

#include "canvas/canvas.h"

namespace lvx::sheets {

/// Of the ground of one surface after the other: told apart by colour and by dashes, so on a black and white print too.
[[nodiscard]] canvas::Pen groundPen(std::size_t index);

/// Of the design.
inline constexpr canvas::Colour kDesignColour{0.72, 0.07, 0.07};
inline constexpr canvas::Pen kDesignPen{.width = 0.4, .colour = kDesignColour};
inline constexpr canvas::Pen kShapePen{.width = 0.2, .colour = kDesignColour};

inline constexpr canvas::Pen kGridPen{.width = 0.08, .colour = {0.72, 0.72, 0.72}};
/// From a point down to its values.
inline constexpr canvas::Pen kOrdinatePen{.width = 0.09, .colour = {0.5, 0.5, 0.5}};
inline constexpr canvas::Pen kDatumPen{.width = 0.35};
[[nodiscard]] canvas::Pen axisPen();

}  // namespace lvx::sheets
