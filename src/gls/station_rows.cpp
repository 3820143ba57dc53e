#include "gls/station_rows.h"

#include <cmath>
#include <limits>

namespace lvx::gls {

namespace {

/// A station that is no number exceeds nothing and isn't exceeded, so every label stops at its row.
double lastStationThatStops(const tglsRow& row) {
  const double reach = row.station + StationRows::kTolerance;
  return std::isnan(reach) ? std::numeric_limits<double>::infinity() : reach;
}

}  // namespace

StationRows::StationRows(tglsReport& report) : report_(report) {
  for (tglsRow* row : report.rows) {
    const auto place = rows_.insert(rows_.end(), row);
    const double reach = lastStationThatStops(*row);
    if (stops_.empty() || stops_.rbegin()->first < reach) stops_.emplace_hint(stops_.end(), reach, place);
  }
}

void StationRows::addStationLabel(const CString& label, double station) {
  if (rows_.empty()) return;
  auto stop = stops_.begin();
  auto place = rows_.begin();
  if (!std::isnan(station)) {
    stop = stops_.lower_bound(station);
    if (stop == stops_.end()) return;
    place = stop->second;
  }
  tglsRow& row = **place;
  if (station + kTolerance > row.station && row.station > station - kTolerance) {
    if (!row.name.empty()) row.name += L", ";
    row.name += label;
    return;
  }

  added_.push_back(std::make_unique<tglsRow>());
  tglsRow& inserted = *added_.back();
  inserted.name = label;
  inserted.station = station;
  const auto added = rows_.insert(place, &inserted);
  // By rounding, a row can reach as far as the one that it stands in front of: then no label stops at that one again.
  const double reach = lastStationThatStops(inserted);
  while (stop != stops_.end() && stop->first <= reach) stop = stops_.erase(stop);
  stops_.emplace_hint(stop, reach, added);
}

void StationRows::finish() {
  report_.rows.setSize(static_cast<ArrayIndex>(rows_.size()));
  ArrayIndex index = 0;
  for (tglsRow* row : rows_) report_.rows.setAt(index++, row);
  for (auto& row : added_) static_cast<void>(row.release());
  added_.clear();
}

}  // namespace lvx::gls
