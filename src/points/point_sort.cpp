#include "points/point_sort.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

namespace lvx::points {

void sortPointsByStation(PointList& rows) {
  using Entry = PointList::Entry;
  // Told apart by the order in which they were added, no two rows are equal: a sort in place then keeps that order.
  const auto before = [](const Entry& a, const Entry& b) {
    return a.station != b.station ? a.station < b.station : a.added < b.added;
  };
  const std::span<Entry> entries = rows.entries();
  for (auto stretch = entries.begin(); stretch != entries.end();) {
    const auto stretchEnd =
        std::find_if(stretch, entries.end(), [](const Entry& entry) { return std::isnan(entry.station); });
    std::sort(stretch, stretchEnd, before);
    stretch = stretchEnd == entries.end() ? stretchEnd : std::next(stretchEnd);
  }
}

}  // namespace lvx::points
