#include "landxml/detail/tin_collector.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

#include "standin_platform/large_pages.h"

namespace lvx::landxml::detail {

void TinCollector::addPointOutOfOrder(std::int64_t id, double north, double east, double elevation) {
  if (points.empty()) {
    firstId_ = id;
    points.push_back({east, north, elevation});
    return;
  }
  if (contiguous_) {
    for (std::size_t i = 0; i < points.size(); ++i) {
      map(firstId_ + static_cast<std::int64_t>(i), static_cast<std::int32_t>(i));
    }
    contiguous_ = false;
  }
  if (mappedIndexOf(id) >= 0) {
    ++faults.repeatedIds;
    return;
  }
  map(id, static_cast<std::int32_t>(points.size()));
  points.push_back({east, north, elevation});
}

void TinCollector::addPoints(std::int64_t firstId, std::span<const civil::Vec3> run) {
  if (contiguous_ && (points.empty() || firstId - firstId_ == static_cast<std::int64_t>(points.size()))) {
    if (points.empty()) firstId_ = firstId;
    points.insert(points.end(), run.begin(), run.end());
    return;
  }
  for (std::size_t i = 0; i < run.size(); ++i)
    addPoint(firstId + static_cast<std::int64_t>(i), run[i].y, run[i].x, run[i].z);
}

void TinCollector::addFaces(const FaceList& list) {
  faces.triangles.insert(faces.triangles.end(), list.triangles.begin(), list.triangles.end());
  faces.invisible.insert(faces.invisible.end(), list.invisible.begin(), list.invisible.end());
  faces.repeating += list.repeating;
}

template <class Item>
void TinCollector::expect(std::vector<Item>& items, std::size_t count) {
  if (count <= items.capacity()) return;
  try {
    std::vector<Item> larger;
    larger.reserve(count);
    standin_platform::preferLargePages(larger.data(), larger.capacity() * sizeof(Item));
    larger.assign(items.begin(), items.end());
    items.swap(larger);
  } catch (const std::bad_alloc&) {
    // There may be fewer than expected.
  } catch (const std::length_error&) {
  }
}
template void TinCollector::expect(std::vector<civil::Vec3>& items, std::size_t count);
template void TinCollector::expect(std::vector<civil::Triangle>& items, std::size_t count);

void TinCollector::map(std::int64_t id, std::int32_t index) {
  // The table may stay sparse by a factor, so that gaps cost little; far ids go to the hash map instead.
  const std::size_t densest = 1024 + 8 * points.size();
  const auto slot = static_cast<std::size_t>(id);
  if (id >= 0 && slot < densest) {
    if (slot >= dense_.size()) dense_.resize(std::min(densest, std::max(slot + 1, 2 * dense_.size())), -1);
    dense_[slot] = index;
  } else {
    sparse_.emplace(id, index);
  }
}

std::int32_t TinCollector::mappedIndexOf(std::int64_t id) const {
  if (id >= 0 && static_cast<std::size_t>(id) < dense_.size()) {
    const std::int32_t index = dense_[static_cast<std::size_t>(id)];
    if (index >= 0) return index;
  }
  if (sparse_.empty()) return -1;
  const auto found = sparse_.find(id);
  return found == sparse_.end() ? -1 : found->second;
}

void TinCollector::addRepeating(const RawFace& face, const std::array<std::int32_t, 4>& at, FaceList& to) {
  // A cell of a grid with one side of length 0 is a triangle; anything less is no face.
  std::array<std::int32_t, 4> distinct{};
  std::size_t count = 0;
  for (std::size_t i = 0; i < face.count; ++i) {
    if (std::find(distinct.begin(), distinct.begin() + count, at[i]) == distinct.begin() + count) {
      distinct[count++] = at[i];
    }
  }
  if (count == 3 && face.count == 4) {
    (face.invisible ? to.invisible : to.triangles).push_back({distinct[0], distinct[1], distinct[2]});
  } else {
    ++to.repeating;
  }
}

void TinCollector::addFourth(const RawFace& face, const std::array<std::int32_t, 4>& at, FaceList& to) {
  if (at[3] == at[0] || at[3] == at[2]) return;  // a cell with a side of length 0
  if (at[3] == at[1]) {
    ++to.repeating;
    return;
  }
  (face.invisible ? to.invisible : to.triangles).push_back({at[0], at[2], at[3]});
}

void TinCollector::addDeferred() {
  for (const Deferred& deferred : deferred_) {
    if (!addFace(deferred.face)) {
      std::string ids;
      for (std::size_t i = 0; i < deferred.face.count; ++i)
        ids += (i ? " " : "") + std::to_string(deferred.face.ids[i]);
      note(&Faults::facesWithMissingPoints, deferred.line, "F '" + ids + "' names a point that isn't there");
    }
  }
  deferred_.clear();
  deferred_.shrink_to_fit();
  dense_ = {};
  sparse_ = {};
}

void TinCollector::note(std::size_t Faults::*counter, std::size_t line, const std::string& text) {
  ++(faults.*counter);
  if (faults.firstLine == 0 || line < faults.firstLine) {
    faults.firstLine = line;
    faults.firstText = text;
  }
}

}  // namespace lvx::landxml::detail
