#pragma once

#include <optional>

#include "civil/tin_surface.h"

/// Whether two things of a drawing lie in one place: ground and alignment of two files often don't, since one of them holds
/// easting before northing or is in another system of coordinates.
namespace lvx::civil {

/// Two boxes without a common point.
struct BoxesApart {
  Box first;
  Box second;
  /// True where they would meet if the axes of one of them were swapped.
  bool meetSwapped = false;
};

/// The box with x for y and y for x; an empty one stays empty.
[[nodiscard]] Box withAxesSwapped(const Box& box);

/// Empty where the boxes have a point in common, a border included, where they are no further apart than `reach` (in
/// drawing units, 0 or above) along either axis, and where one of them is empty.
[[nodiscard]] std::optional<BoxesApart> boxesApart(const Box& first, const Box& second, double reach = 0.0);

}  // namespace lvx::civil
