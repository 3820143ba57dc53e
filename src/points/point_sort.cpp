#include "points/point_sort.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace lvx::points {

namespace {

/// A row's station and the place where the row stood.
struct Place {
  double station = 0.0;
  framework::ArrayIndex from = 0;
};

std::vector<Place> sortedPlaces(const PointList& rows) {
  std::vector<Place> places;
  places.reserve(static_cast<std::size_t>(rows.size()));
  for (framework::ArrayIndex i = 0; i < rows.size(); ++i) places.push_back({rows[i]->station, i});
  for (auto stretch = places.begin(); stretch != places.end();) {
    const auto stretchEnd =
        std::find_if(stretch, places.end(), [](const Place& place) { return std::isnan(place.station); });
    std::stable_sort(stretch, stretchEnd, [](const Place& a, const Place& b) { return a.station < b.station; });
    stretch = stretchEnd == places.end() ? stretchEnd : std::next(stretchEnd);
  }
  return places;
}

}  // namespace

void sortPointsByStation(PointList& rows) {
  std::vector<Place> places = sortedPlaces(rows);
  // Along each cycle of the permutation every content moves once; the first one waits aside.
  for (framework::ArrayIndex first = 0; first < rows.size(); ++first) {
    framework::ArrayIndex to = first;
    framework::ArrayIndex from = std::exchange(places[static_cast<std::size_t>(to)].from, to);
    if (from == to) continue;
    tpoint waiting = std::move(*rows[first]);
    while (from != first) {
      *rows[to] = std::move(*rows[from]);
      to = from;
      from = std::exchange(places[static_cast<std::size_t>(to)].from, to);
    }
    *rows[to] = std::move(waiting);
  }
}

}  // namespace lvx::points
