#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "gls/gls_records.h"

namespace lvx::gls::detail {

/// The rows of a report by station, for searches by station. The rows may stand in any order; one whose station is no
/// number is never found. Making it costs n log n, a search log n. Holds as long as no row's station changes.
class StationSearch {
 public:
  /// Positions in the order by station; empty where `end` isn't above `begin`.
  struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  explicit StationSearch(const framework::CTypedPtrArray<framework::CPtrArray, tglsRow*>& rows) {
    entries_.reserve(static_cast<std::size_t>(rows.size()));
    for (ArrayIndex i = 0; i < rows.size(); ++i)
      if (!std::isnan(rows[i]->station)) entries_.push_back({rows[i]->station, i});
    std::stable_sort(entries_.begin(), entries_.end(),
                     [](const Entry& a, const Entry& b) { return a.station < b.station; });
  }

  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  /// Index into the report's rows.
  [[nodiscard]] ArrayIndex rowAt(std::size_t position) const { return entries_[position].row; }

  /// The rows whose station is neither below nor above what is wanted. Each test takes a station; where one station is
  /// below, all smaller ones are, and the same upwards.
  template <class IsBelow, class IsAbove>
  [[nodiscard]] Range where(IsBelow isBelow, IsAbove isAbove) const {
    const auto begin = std::partition_point(entries_.begin(), entries_.end(),
                                            [&](const Entry& entry) { return isBelow(entry.station); });
    const auto end = std::partition_point(entries_.begin(), entries_.end(),
                                          [&](const Entry& entry) { return !isAbove(entry.station); });
    return {static_cast<std::size_t>(begin - entries_.begin()), static_cast<std::size_t>(end - entries_.begin())};
  }

  /// Bounds included; none where a bound is no number.
  [[nodiscard]] Range between(double from, double to) const {
    return where([from](double station) { return !(station >= from); },
                 [to](double station) { return !(station <= to); });
  }

 private:
  struct Entry {
    double station;
    ArrayIndex row;
  };
  std::vector<Entry> entries_;
};

/// Gives every place of a row of places to the first who asks for a range that holds it. All asking together costs near
/// the number of places and questions, however far the ranges overlap.
class FirstComeFirstServed {
 public:
  explicit FirstComeFirstServed(std::size_t places) : next_(places + 1) {
    for (std::size_t place = 0; place <= places; ++place) next_[place] = place;
  }

  /// Calls `give(place)` for each place of the range that nobody has yet.
  template <class Give>
  void take(StationSearch::Range range, Give give) {
    for (std::size_t place = free(range.begin); place < range.end; place = free(place)) {
      give(place);
      next_[place] = place + 1;
    }
  }

 private:
  /// The first free place from `place` on; the number of places if there is none.
  std::size_t free(std::size_t place) {
    std::size_t found = place;
    while (next_[found] != found) found = next_[found];
    while (next_[place] != found) place = std::exchange(next_[place], found);
    return found;
  }

  std::vector<std::size_t> next_;
};

}  // namespace lvx::gls::detail
