#pragma once

#include "points/tpoint.h"

namespace lvx::points {

/// Sorts the rows by ascending station; rows of equal station keep their order. The records stay where they stand in the
/// list and exchange their contents, all of it, so whoever holds a record sees the row of that place.
///
/// A station that is no number compares with nothing: its row stays where it is, and no other row passes it, so that the
/// stretches on either side are in order each for itself. O(n log n).
void sortPointsByStation(PointList& rows);

}  // namespace lvx::points
