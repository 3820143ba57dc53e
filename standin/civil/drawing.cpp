#include "civil/drawing.h"

#include <algorithm>

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
  points_.reserve(drawing.points.size());
  numbers_.reserve(drawing.points.size());
  for (const Point& point : drawing.points) {
    if (point.handle != 0) points_.push_back({point.handle, &point});
    numbers_.push_back({point.number, &point});
  }
  for (const PointGroup& group : drawing.pointGroups) add(group, nullptr);
  for (const Corridor& corridor : drawing.corridors) add(corridor, nullptr);
  sortByKey(objects_, &ObjectRow::handle);
  sortByKey(points_, &PointRow::handle);
  sortByKey(numbers_, &NumberRow::number);
}

std::optional<DrawingIndex::Entry> DrawingIndex::byHandle(Handle handle) const {
  const ObjectRow* const object = findByKey(objects_, &ObjectRow::handle, handle);
  // Points stand in the drawing between the kinds in front of theirs and those behind it.
  if (object == nullptr || object->entry.kind() > ObjectKind::Point) {
    if (const PointRow* const row = findByKey(points_, &PointRow::handle, handle)) return Entry{row->point, nullptr};
  }
  if (object == nullptr) return std::nullopt;
  return object->entry;
}

const Point* DrawingIndex::pointByNumber(std::int32_t number) const {
  const NumberRow* row = findByKey(numbers_, &NumberRow::number, number);
  return row ? row->point : nullptr;
}

}  // namespace lvx::civil
