#include "projection/sample_line_collector.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <memory>
#include <set>
#include <vector>

#include "host/collections.h"
#include "host/site_tree.h"
#include "projection/detail/host_triples.h"

namespace lvx::projection {

namespace {

constexpr double kHalfPi = 1.5707963267948966;
constexpr double kTwoPi = 6.283185307179586;
/// Drawing units: a side's innermost vertex this near to the alignment is taken to be the centre.
constexpr double kCentreTolerance = 0.0001;
/// Drawing units: two sample lines this near to each other are one.
constexpr double kStationTolerance = 0.000001;

double directionFromAzimuth(double azimuth) {
  double direction = kHalfPi - azimuth;
  if (direction < 0.0) direction += kTwoPi;
  if (direction >= kTwoPi) direction -= kTwoPi;
  return direction;
}

bool isNoNumber(const tpt3& vertex) { return std::isnan(vertex.third); }

/// Appends the vertices of one side, which stand in the order of the drawing, to its empty list in the order that this
/// rule gives: each goes in front of the first vertex whose offset is not less than its own.
///
/// So a vertex stands in front of an earlier one of equal offset, and an offset that is no number - which nothing is
/// less than - goes in front of everything, as does whatever comes after it: from there on the rule never looks past
/// it. Seen backwards that is a stable sort of each stretch between such offsets, in n log n where insertion one by one
/// takes the square.
void storeByOffset(std::vector<tpt3>& vertices, tpt3list& list) {
  std::reverse(vertices.begin(), vertices.end());
  for (auto stretch = vertices.begin(); stretch != vertices.end();) {
    const auto stretchEnd = std::find_if(stretch, vertices.end(), isNoNumber);
    std::stable_sort(stretch, stretchEnd, [](const tpt3& a, const tpt3& b) { return a.third < b.third; });
    stretch = stretchEnd == vertices.end() ? stretchEnd : std::next(stretchEnd);
  }
  list.reserveForAppending(static_cast<std::int32_t>(vertices.size()));
  for (const tpt3& vertex : vertices) list.append(vertex);
}

/// Both sides count their vertices first, so that a side of one vertex always gets the centre too, however near to it
/// that vertex lies: a side that can be walked has a segment.
void closeAtCentre(tsl& record) {
  const tpt3 centre{record.centreX, record.centreY, 0.0};
  tpt3list& left = record.leftVertices;
  if (left.count() < 2 || left[left.count() - 1].third < -kCentreTolerance) left.append(centre);
  tpt3list& right = record.rightVertices;
  if (right.count() < 2 || right[0].third > kCentreTolerance) right.insert(0, centre);
}

/// Reads one sample line. The scratch lists serve all lines of a run.
class RecordBuilder {
 public:
  explicit RecordBuilder(host::QmtAlignment& alignment) : alignment_(alignment) {}

  std::unique_ptr<tsl> build(host::QmtSampleLine& line, const CString& groupName) {
    auto record = std::make_unique<tsl>();
    record->name = line.name();
    record->groupName = groupName;
    record->lineId = line.sampleLineId();
    record->station = line.station();
    const host::PointLocation centre = alignment_.pointLocation(record->station, 0.0, 0.0);
    record->centreX = centre.x;
    record->centreY = centre.y;
    record->direction = directionFromAzimuth(centre.direction);

    vertices_.empty();
    host::forEachObject(line.vertices(), [this](const host::Ref<host::QmtSampleLineVertex>& vertex) {
      detail::takeTriples(vertex->location(), vertices_);
      return true;
    });
    left_.clear();
    right_.clear();
    for (const tpt3& vertex : vertices_) {
      // The vertex's own elevation and the station of its foot play no part.
      const double offset = alignment_.stationOffset(vertex.first, vertex.second).offset;
      (offset < 0.0 ? left_ : right_).push_back({vertex.first, vertex.second, offset});
    }
    storeByOffset(left_, record->leftVertices);
    storeByOffset(right_, record->rightVertices);
    closeAtCentre(*record);
    return record;
  }

 private:
  host::QmtAlignment& alignment_;
  tpt3list vertices_;
  std::vector<tpt3> left_;
  std::vector<tpt3> right_;
};

bool isSameStation(double a, double b) { return std::abs(a - b) < kStationTolerance; }

/// The records of a run in the order of the report, with its rule for near-duplicates. A record goes in front of the
/// first one whose station is not less than its own, as vertices do; a tree keeps that n log n for stations in any
/// order.
class StationOrder {
 public:
  /// Takes the record over, or destroys it as a near-duplicate. Compared are the neighbours on either side of the
  /// record that it would stand in front of, and deliberately not that record itself: two lines at one station both
  /// stay.
  void insert(std::unique_ptr<tsl> record) {
    if (std::isnan(record->station)) {
      // Nothing is less than a station that is no number, nothing is near it, and no search looks past it again: what
      // was open in front is settled.
      settleFront();
      settled_.push_back(std::move(record));
      return;
    }
    const auto place = front_.lower_bound(record);
    const tsl* before = place == front_.begin() ? nullptr : std::prev(place)->get();
    const tsl* second = secondFrom(place);
    if (second != nullptr && isSameStation(second->station, record->station)) return;
    if (before != nullptr && isSameStation(before->station, record->station)) return;
    front_.insert(place, std::move(record));  // right in front of its hint, so in front of equal stations
  }

  void moveTo(SampleLineList& list) {
    settleFront();
    list.reserve(list.size() + static_cast<framework::ArrayIndex>(settled_.size()));
    while (!settled_.empty()) {
      list.append(std::move(settled_.back()));
      settled_.pop_back();
    }
  }

 private:
  struct ByStation {
    bool operator()(const std::unique_ptr<tsl>& a, const std::unique_ptr<tsl>& b) const {
      return a->station < b->station;
    }
  };
  using Front = std::multiset<std::unique_ptr<tsl>, ByStation>;

  /// The record one behind `place`, over the seam between the two parts.
  [[nodiscard]] const tsl* secondFrom(Front::const_iterator place) const {
    std::size_t beyondSeam = 1;
    if (place != front_.end()) {
      if (++place != front_.end()) return place->get();
      beyondSeam = 0;
    }
    return beyondSeam < settled_.size() ? settled_[settled_.size() - 1 - beyondSeam].get() : nullptr;
  }

  void settleFront() {
    while (!front_.empty()) settled_.push_back(std::move(front_.extract(std::prev(front_.end())).value()));
  }

  /// Ascending: the records that a search still looks at.
  Front front_;
  /// What stands behind them, last record first.
  std::vector<std::unique_ptr<tsl>> settled_;
};

}  // namespace

void collectSampleLines(const host::Ref<host::QmtDocument>& document, const host::Ref<host::QmtDatabase>& database,
                        const CString& siteName, const CString& alignmentName, const GroupFilter& groups,
                        SampleLineList& list) {
  framework::destroyAll(list);
  const auto alignment = host::alignmentNamed(document, database, siteName, alignmentName);
  if (!alignment) return;

  RecordBuilder builder(*alignment);
  StationOrder records;
  host::forEachObject(alignment->sampleLineGroups(), [&](const host::Ref<host::QmtSampleLineGroup>& group) {
    const CString groupName = group->name();
    if (!groups.takes(groupName)) return true;
    host::forEachObject(group->sampleLines(), [&](const host::Ref<host::QmtSampleLine>& line) {
      records.insert(builder.build(*line, groupName));
      return true;
    });
    return true;
  });
  records.moveTo(list);
}

}  // namespace lvx::projection
