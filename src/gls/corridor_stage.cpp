#include "gls/corridor_stage.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

#include "gls/add_sections_dialog.h"
#include "gls/detail/station_search.h"
#include "host/collections.h"
#include "host/dialog_controls.h"
#include "host/host.h"
#include "host/roadway_connection.h"

namespace lvx::gls {

using framework::tpt3;
using framework::tpt3list;
using host::HostArray;
using host::Ref;

namespace {

/// Drawing units: a section and a row this near to each other are at one station.
constexpr double kStationTolerance = 0.000001;
/// Drawing units: how far a section point may lie to the left of one that was read before it and still stand behind it.
constexpr double kOffsetTolerance = 0.000001;
/// Drawing units: two section points this near to each other are one.
constexpr double kPointTolerance = 0.0000001;

// Codes of road models, German and English.
constexpr std::wstring_view kSurfaceCodes[] = {L"Belag", L"Pave"};
constexpr std::wstring_view kEdgeCodes[] = {L"Fahrspurrand_Au\u00DFen", L"ETW"};

template <std::size_t Count>
bool hasOneOf(const Ref<host::QmtCodes>& codes, const std::wstring_view (&wanted)[Count]) {
  if (!codes) return false;
  const std::int32_t count = codes->count();
  for (std::int32_t i = 0; i < count; ++i)
    if (std::find(std::begin(wanted), std::end(wanted), codes->item(i)) != std::end(wanted)) return true;
  return false;
}

/// The last point alone tells whether a part is the carriageway out to its edge: models order a part's points towards
/// the edge, and a part that carries the edge's code only further in is a shoulder or a widening.
bool endsAtEdge(const Ref<host::QmtSectionPoints>& points) {
  if (!points) return false;
  const Ref<host::QmtSectionPoint> last = points->item(points->count() - 1);
  return last && hasOneOf(last->codes(), kEdgeCodes);
}

/// The points of one section after another, ascending by offset: station, offset, elevation.
class SectionPoints {
 public:
  /// Reads a section of a baseline in place of the one before.
  void read(host::QmtBaseline& baseline, host::QmtProfile* profile, double station) {
    points_.empty();
    const Ref<host::QmtSection> section = baseline.sectionAt(station);
    if (!section) return;
    host::forEachObject(section->parts(), [&](const Ref<host::QmtSectionPart>& part) {
      if (!hasOneOf(part->codes(), kSurfaceCodes)) return true;
      const Ref<host::QmtSectionPoints> partPoints = part->points();
      if (!endsAtEdge(partPoints)) return true;
      host::forEachObject(partPoints, [&](const Ref<host::QmtSectionPoint>& point) {
        const HostArray<double> where = point->stationOffsetElevation();
        if (!where.isOneDimensional() || where.lowerBound != 0 || where.upperBound() != 2) return true;
        const double ground = profile != nullptr ? profile->elevationAt(where.values[0]) : 0.0;
        insert({where.values[0], where.values[1], where.values[2] + ground});
        return true;
      });
      return true;
    });
  }

  [[nodiscard]] bool isRoad() const { return points_.count() >= 2; }
  [[nodiscard]] double station() const { return points_[0].first; }

  /// Percent; a fall away from the middle is negative on either side.
  [[nodiscard]] double crossFallLeft() const {
    const tpt3& edge = points_[0];
    const tpt3& inner = points_[1];
    return edge.second < 0.0 ? (inner.third - edge.third) * 100.0 / (edge.second - inner.second) : 0.0;
  }
  [[nodiscard]] double crossFallRight() const {
    const tpt3& edge = points_[points_.count() - 1];
    const tpt3& inner = points_[points_.count() - 2];
    return edge.second > 0.0 ? (edge.third - inner.third) * 100.0 / (edge.second - inner.second) : 0.0;
  }

  void fill(tglsRow& row) const {
    const tpt3& left = points_[0];
    const tpt3& middle = points_[1];
    // A road is taken to have three points. The storage outlives the sections, so where this one has two, the third is
    // what an earlier one left there; reports in the field show that value.
    const tpt3 right = points_.stored(2);
    row.crossFallLeft = crossFallLeft();
    row.crossFallRight = crossFallRight();
    row.widthLeft = std::abs(left.second);
    row.widthRight = std::abs(right.second);
    row.heightLeft = left.third - middle.third;
    row.heightRight = right.third - middle.third;
    row.edgeElevationLeft = left.third;
    row.edgeElevationRight = right.third;
    row.elevation = middle.third;
  }

 private:
  void insert(const tpt3& point) {
    std::int32_t place = 0;
    while (place < points_.count() && point.second >= points_[place].second - kOffsetTolerance) ++place;
    if (place > 0 && !(std::abs(points_[place - 1].second - point.second) > kPointTolerance)) return;
    points_.insert(place, point);
  }

  tpt3list points_;
};

/// The stations of a region's sections. A failed call leaves the empty array that its caller made.
HostArray<double> stationsOf(host::QmtStationSet& set) {
  HostArray<double> stations = set.stations();
  return stations.dimensions == 0 ? HostArray<double>::of({}) : stations;
}

/// Asks for a section at every row's station that `stations` doesn't hold.
void addMissingStations(host::QmtBaselineRegion& region, std::vector<double> stations, const tglsReport& report) {
  std::erase_if(stations, [](double station) { return std::isnan(station); });
  std::sort(stations.begin(), stations.end());
  for (const tglsRow* row : report.rows) {
    const auto nearest = std::partition_point(stations.begin(), stations.end(), [row](double station) {
      return !(station + kStationTolerance > row->station);
    });
    const bool stands = nearest != stations.end() && row->station > *nearest - kStationTolerance;
    if (!stands) region.addStation(row->station, row->name);
  }
}

/// The stations of a baseline's regions, which come in the order of the drawing, in the order that this rule gives: each
/// goes in front of the first that isn't less than it.
///
/// A station that is no number, which nothing is less than, so goes in front of everything, and so does whatever comes
/// after it. Seen backwards that is a sort of each stretch between such stations, in n log n where insertion one by one
/// takes the square.
void storeByStation(std::vector<double>& stations, tpt3list& list) {
  std::reverse(stations.begin(), stations.end());
  for (auto stretch = stations.begin(); stretch != stations.end();) {
    const auto stretchEnd = std::find_if(stretch, stations.end(), [](double station) { return std::isnan(station); });
    std::stable_sort(stretch, stretchEnd);
    stretch = stretchEnd == stations.end() ? stretchEnd : std::next(stretchEnd);
  }
  list.reserveForAppending(static_cast<std::int32_t>(stations.size()));
  for (const double station : stations) list.append({station, 0.0, 0.0});
}

/// One run over the corridors. The section points serve all of it, so that the storage of one baseline's sections is
/// still there for the next one's.
class CorridorReader {
 public:
  CorridorReader(tglsReport& report, bool addsSections)
      : report_(report), addsSections_(addsSections), rowsByStation_(report.rows) {}

  void read(host::QmtCorridor& corridor, tcorridor& record) {
    record.name = corridor.name();
    record.description = corridor.description();
    record.handle = corridor.handle();
    host::forEachObject(corridor.baselines(), [&](const Ref<host::QmtBaseline>& baseline) {
      readBaseline(corridor, *baseline, *record.baselines.append(std::make_unique<tbaseline>()));
      return true;
    });
  }

 private:
  void readBaseline(host::QmtCorridor& corridor, host::QmtBaseline& baseline, tbaseline& record) {
    if (const Ref<host::QmtAlignment> alignment = baseline.alignment()) record.alignmentHandle = alignment->handle();
    const Ref<host::QmtProfile> profile = baseline.profile();

    std::vector<double> stations;
    host::forEachObject(baseline.regions(), [&](const Ref<host::QmtBaselineRegion>& region) {
      readStations(corridor, *region, stations);
      return true;
    });
    storeByStation(stations, record.stations);

    for (std::int32_t i = 0; i < record.stations.count(); ++i) {
      tpt3& section = record.stations[i];
      points_.read(baseline, profile.get(), section.first);
      if (!points_.isRoad()) continue;
      section.second = points_.crossFallLeft();
      section.third = points_.crossFallRight();
      fillRows();
    }
  }

  void readStations(host::QmtCorridor& corridor, host::QmtBaselineRegion& region, std::vector<double>& stations) {
    const Ref<host::QmtStationSet> set = region.stationSet();
    if (!set) return;
    HostArray<double> found = stationsOf(*set);
    if (addsSections_) {
      if (found.isOneDimensional()) addMissingStations(region, found.values, report_);
      corridor.rebuild();
      const Ref<host::QmtStationSet> rebuiltSet = region.stationSet();
      found = rebuiltSet ? stationsOf(*rebuiltSet) : HostArray<double>::of({});
    }
    if (found.isOneDimensional()) stations.insert(stations.end(), found.values.begin(), found.values.end());
  }

  /// The station that the first point reports decides, not the one that was asked for.
  void fillRows() {
    const double station = points_.station();
    const auto rows = rowsByStation_.where([station](double row) { return !(row + kStationTolerance > station); },
                                           [station](double row) { return !(station > row - kStationTolerance); });
    for (std::size_t position = rows.begin; position < rows.end; ++position)
      points_.fill(*report_.rows[rowsByStation_.rowAt(position)]);
  }

  tglsReport& report_;
  bool addsSections_;
  detail::StationSearch rowsByStation_;
  SectionPoints points_;
};

bool userWantsSections(host::Host& host) {
  gls::CMyDialog4 question(host);
  return host.dialogs().runModal(question, host.runTime().vnsw_mainWnd()) == host::kIdOk;
}

}  // namespace

void readCorridorData(host::Host& host, CorridorList& corridors, tglsReport& report) {
  CorridorReader reader(report, userWantsSections(host));
  const Ref<host::QmtRoadwayDocument> document = host::roadwayDocument();
  if (!document) return;
  host::forEachObject(document->corridors(), [&](const Ref<host::QmtCorridor>& corridor) {
    reader.read(*corridor, *corridors.append(std::make_unique<tcorridor>()));
    return true;
  });
}

}  // namespace lvx::gls
