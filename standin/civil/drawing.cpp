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
  const auto add = [this](ObjectKind kind, const auto& object) {
    if (object.handle != 0) handles_.push_back({object.handle, {kind, &object}});
  };
  const auto addSite = [&](const Site& site) {
    add(ObjectKind::Site, site);
    for (const auto& alignment : site.alignments) {
      if (!alignment) continue;
      add(ObjectKind::Alignment, *alignment);
      for (const ProfileObject& profile : alignment->profiles) add(ObjectKind::Profile, profile);
      for (const SampleLineGroup& group : alignment->sampleLineGroups) {
        add(ObjectKind::SampleLineGroup, group);
        for (const SampleLine& line : group.lines) add(ObjectKind::SampleLine, line);
      }
    }
  };
  handles_.reserve(drawing.points.size());
  numbers_.reserve(drawing.points.size());
  addSite(drawing.siteless);
  for (const Site& site : drawing.sites) addSite(site);
  for (const SurfaceObject& surface : drawing.surfaces) add(ObjectKind::Surface, surface);
  for (const Point& point : drawing.points) {
    add(ObjectKind::Point, point);
    numbers_.push_back({point.number, &point});
  }
  for (const PointGroup& group : drawing.pointGroups) add(ObjectKind::PointGroup, group);
  for (const Corridor& corridor : drawing.corridors) add(ObjectKind::Corridor, corridor);
  sortByKey(handles_, &HandleRow::handle);
  sortByKey(numbers_, &NumberRow::number);
}

const DrawingIndex::Entry* DrawingIndex::byHandle(Handle handle) const {
  const HandleRow* row = findByKey(handles_, &HandleRow::handle, handle);
  return row ? &row->entry : nullptr;
}

const Point* DrawingIndex::pointByNumber(std::int32_t number) const {
  const NumberRow* row = findByKey(numbers_, &NumberRow::number, number);
  return row ? row->point : nullptr;
}

}  // namespace lvx::civil
