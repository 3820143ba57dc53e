#include "civil/drawing.h"

#include <algorithm>
#include <numeric>

namespace lvx::civil {
namespace {

// Handles mostly ascend in file order: then nothing needs sorting. Of equal keys the first in the file stays in front.
template <class Row, class Key>
void sortByKey(std::vector<Row>& rows, Key Row::*key) {
  const auto isLess = [key](const Row& a, const Row& b) { return a.*key < b.*key; };
  if (!std::is_sorted(rows.begin(), rows.end(), isLess)) std::stable_sort(rows.begin(), rows.end(), isLess);
}

template <class Row, class Key>
const Row* findByKey(const std::vector<Row>& rows, Key Row::*key, Key wanted) {
  const auto at =
      std::lower_bound(rows.begin(), rows.end(), wanted, [key](const Row& row, Key k) { return row.*key < k; });
  return at != rows.end() && (*at).*key == wanted ? &*at : nullptr;
}

/// The order of points by `key`; empty where that is the order in which they stand.
template <class Key>
std::vector<std::uint32_t> orderBy(std::span<const Point> points, Key Point::*key) {
  std::vector<std::uint32_t> order;
  if (std::is_sorted(points.begin(), points.end(), [key](const Point& a, const Point& b) { return a.*key < b.*key; }))
    return order;
  order.resize(points.size());
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return points[a].*key < points[b].*key; });
  return order;
}

template <class Key>
const Point* findPoint(std::span<const Point> points, const std::vector<std::uint32_t>& order, Key Point::*key,
                       Key wanted) {
  const Point* found = nullptr;
  if (order.empty()) {
    const auto at = std::lower_bound(points.begin(), points.end(), wanted,
                                     [key](const Point& point, Key k) { return point.*key < k; });
    if (at != points.end()) found = &*at;
  } else {
    const auto at = std::lower_bound(order.begin(), order.end(), wanted,
                                     [&](std::uint32_t point, Key k) { return points[point].*key < k; });
    if (at != order.end()) found = &points[*at];
  }
  return found != nullptr && found->*key == wanted ? found : nullptr;
}

}  // namespace

DrawingIndex::DrawingIndex(const Drawing& drawing) {
  const auto add = [this](const auto& object, const AlignmentObject* alignment) {
    if (object.handle != 0) objects_.push_back({object.handle, {&object, alignment}});
  };
  const auto addSite = [&](const Site& site) {
    add(site, nullptr);
    for (const auto& alignment : site.alignments) {
      if (!alignment) continue;
      add(*alignment, alignment.get());
      for (const ProfileObject& profile : alignment->profiles) add(profile, alignment.get());
      for (const SampleLineGroup& group : alignment->sampleLineGroups) {
        add(group, alignment.get());
        for (const SampleLine& line : group.lines) add(line, alignment.get());
      }
    }
  };
  addSite(drawing.siteless);
  for (const Site& site : drawing.sites) addSite(site);
  for (const SurfaceObject& surface : drawing.surfaces) add(surface, nullptr);
  for (const PointGroup& group : drawing.pointGroups) add(group, nullptr);
  for (const Corridor& corridor : drawing.corridors) add(corridor, nullptr);
  sortByKey(objects_, &ObjectRow::handle);
  points_ = drawing.points;
  byHandle_ = orderBy(points_, &Point::handle);
  byNumber_ = orderBy(points_, &Point::number);
}

std::optional<DrawingIndex::Entry> DrawingIndex::byHandle(Handle handle) const {
  if (handle == 0) return std::nullopt;
  const ObjectRow* const object = findByKey(objects_, &ObjectRow::handle, handle);
  // Points stand in the drawing between the kinds in front of theirs and those behind it.
  if (object == nullptr || object->entry.kind() > ObjectKind::Point) {
    if (const Point* const point = findPoint(points_, byHandle_, &Point::handle, handle)) return Entry{point, nullptr};
  }
  if (object == nullptr) return std::nullopt;
  return object->entry;
}

const Point* DrawingIndex::pointByNumber(std::int32_t number) const {
  return findPoint(points_, byNumber_, &Point::number, number);
}

}  // namespace lvx::civil
