#pragma once

#include "points/point_list.h"

namespace lvx::points {

/// Sorts the rows by ascending station; rows of equal station keep the order in which they were added. Takes no memory.
///
/// A station that is no number compares with nothing: its row stays where it is, and no other row passes it, so that the
/// stretches on either side are in order each for itself. O(n log n).
void sortPointsByStation(PointList& rows);

}  // namespace lvx::points
