#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "canvas/canvas.h"

namespace lvx::sheets {

/// Sizes of paper are in millimetres.
struct NamedPaper {
  std::string_view name;
  canvas::Size upright;
};

/// A4 to A0, from the smallest on.
[[nodiscard]] std::span<const NamedPaper> namedPapers();

/// The paper that "A3" or "900x600" (width by height) means; a named one lies on its long side unless `isUpright`. Empty
/// for any other text and for sides below kLeastSide or above kGreatestSide.
[[nodiscard]] std::optional<canvas::Size> paperOf(std::string_view text, bool isUpright);

/// "A3" where it is one of the named papers, either way up, else "900 x 600 mm".
[[nodiscard]] std::string paperText(canvas::Size paper);

inline constexpr double kLeastSide = 150.0;
inline constexpr double kGreatestSide = 5000.0;

}  // namespace lvx::sheets
