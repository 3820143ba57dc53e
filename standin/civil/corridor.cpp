#include "civil/corridor.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <string>
#include <utility>

#include "civil/section_shape.h"

namespace lvx::civil {

namespace {

constexpr std::uint64_t kProgressStep = 512;

bool isSameStation(double a, double b) { return std::abs(a - b) <= kSameStation; }

bool holds(const Region& region, double station) {
  return region.startStation - kSameStation <= station && station <= region.endStation + kSameStation;
}

bool asksFor(const Region& region, double station) {
  const auto at = region.stations.lower_bound(station - kSameStation);
  return at != region.stations.end() && isSameStation(*at, station);
}

/// The first section that isn't below `station` by more than the tolerance. Sections stand at about equal distances, so that
/// the search begins where `station` would stand among equal ones and widens from there: it looks at a few neighbours in
/// place of sections all over the memory, and at no more than a search by halves would, twice.
template <class Sections>
auto firstFrom(Sections& sections, double station) {
  const auto isBelow = [](const CorridorSection& section, double wanted) { return section.station < wanted; };
  const double wanted = station - kSameStation;
  auto low = sections.begin();
  auto high = sections.end();
  if (sections.size() < 2 || !(low->station < wanted)) return std::lower_bound(low, high, wanted, isBelow);
  const double share = (wanted - low->station) / (sections.back().station - low->station);
  // All below `low` lie below `wanted`, and none from `high` on.
  const auto guess =
      low + static_cast<std::ptrdiff_t>((share < 1.0 ? share : 1.0) * static_cast<double>(sections.size() - 1));
  if (isBelow(*guess, wanted)) {
    low = guess;
    for (std::ptrdiff_t step = 1; step < high - low; step *= 2) {
      if (!isBelow(*(low + step), wanted)) {
        high = low + step;
        break;
      }
      low += step;
    }
  } else {
    high = guess;
    for (std::ptrdiff_t step = 1; step < high - low; step *= 2) {
      if (isBelow(*(high - step), wanted)) {
        low = high - step;
        break;
      }
      high -= step;
    }
  }
  return std::lower_bound(low, high, wanted, isBelow);
}

// ---------------------------------------------------------------- the law of the rebuild

/// Gives the parts at ascending stations, each from the controls around it.
class ControlWalk {
 public:
  explicit ControlWalk(const std::vector<CorridorSection>& sections) {
    controls_.reserve(sections.size());
    for (const CorridorSection& section : sections)
      if (section.origin == SectionOrigin::Given) controls_.push_back(&section);
  }
  [[nodiscard]] bool isEmpty() const { return controls_.empty(); }

  /// `station` must not be below that of the last call.
  [[nodiscard]] SectionParts partsAt(double station) {
    while (next_ < controls_.size() && controls_[next_]->station <= station) {
      ++next_;
      runsOn_ = next_ < controls_.size() && haveSameShape(*controls_[next_ - 1], *controls_[next_]);
    }
    const CorridorSection& nearest = *controls_[next_ == 0 ? 0 : next_ - 1];
    SectionParts parts(nearest.parts, memory_);
    if (runsOn_) {
      const CorridorSection& after = *controls_[next_];
      blend(parts, after.parts, (station - nearest.station) / (after.station - nearest.station));
    }
    return parts;
  }

 private:
  static void blend(SectionParts& parts, const SectionParts& other, double ratio) {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      for (std::size_t k = 0; k < parts[i].points.size(); ++k) {
        SectionPoint& point = parts[i].points[k];
        const SectionPoint& towards = other[i].points[k];
        point.offset += ratio * (towards.offset - point.offset);
        point.elevation += ratio * (towards.elevation - point.elevation);
      }
    }
  }

  std::vector<const CorridorSection*> controls_;
  SectionMemory memory_;  ///< in which computed parts follow each other as their stations do
  std::size_t next_ = 0;  ///< the first control beyond the last station
  bool runsOn_ = false;   ///< there is a control on both sides, and they have one shape
};

/// Gives the labels of ascending stations, without a search for each.
class LabelWalk {
 public:
  explicit LabelWalk(const std::map<double, std::string>& labels) : next_(labels.begin()), end_(labels.end()) {}
  /// The label that was given for `station`; null where there is none. It must not be below that of the last call.
  [[nodiscard]] const std::string* at(double station) {
    while (next_ != end_ && next_->first < station - kSameStation) ++next_;
    return next_ != end_ && isSameStation(next_->first, station) ? &next_->second : nullptr;
  }

 private:
  std::map<double, std::string>::const_iterator next_;
  std::map<double, std::string>::const_iterator end_;
};

/// What every station of the region's set asks for and doesn't have, ascending. One that takes the place of a section
/// has that section's exact station.
template <class Tick>
std::vector<CorridorSection> sectionsToCompute(const Region& region, ControlWalk& controls, const Tick& tick) {
  std::vector<CorridorSection> result;
  if (region.stations.size() > region.sections.size()) result.reserve(region.stations.size() - region.sections.size());
  LabelWalk labels(region.pendingLabels);
  auto at = region.sections.begin();
  auto answered = region.sections.end();  // one section may stand for two stations, a little above and below it
  for (const double station : region.stations) {
    tick();
    while (at != region.sections.end() && at->station < station - kSameStation) ++at;
    const bool stands = at != region.sections.end() && isSameStation(at->station, station);
    if (stands && (at->origin == SectionOrigin::Given || at == answered)) continue;
    CorridorSection section{stands ? at->station : station, {}, SectionOrigin::Computed, {}};
    section.parts = controls.partsAt(section.station);
    if (stands) {
      answered = at;
      if (haveSamePoints(*at, section)) continue;
      section.label = at->label;
    }
    if (const std::string* const label = labels.at(station)) section.label = *label;
    result.push_back(std::move(section));
  }
  return result;
}

/// Puts the computed sections between and in place of those that stand. Everything that can fail comes first.
void exchange(Region& region, std::vector<CorridorSection> computed, Rebuilt& done) {
  std::vector<CorridorSection> merged;
  merged.reserve(region.sections.size() + computed.size());
  done.replaced.reserve(done.replaced.size() + computed.size());
  done.computed += computed.size();
  auto fresh = computed.begin();
  for (CorridorSection& section : region.sections) {
    while (fresh != computed.end() && fresh->station < section.station) merged.push_back(std::move(*fresh++));
    if (fresh != computed.end() && fresh->station == section.station) {
      done.replaced.push_back(std::move(section));
      merged.push_back(std::move(*fresh++));
    } else {
      merged.push_back(std::move(section));
    }
  }
  std::move(fresh, computed.end(), std::back_inserter(merged));
  region.sections = std::move(merged);
  region.pendingLabels.clear();
}

template <class Tick>
void rebuildRegion(Region& region, Rebuilt& done, const Tick& tick) {
  ControlWalk controls(region.sections);
  if (!controls.isEmpty()) exchange(region, sectionsToCompute(region, controls, tick), done);
  region.isRebuilt = true;
}

}  // namespace

const CorridorSection* sectionAt(const Region& region, double station) {
  const CorridorSection* nearest = nullptr;
  for (auto at = firstFrom(region.sections, station);
       at != region.sections.end() && isSameStation(at->station, station); ++at) {
    if (nearest == nullptr || std::abs(at->station - station) < std::abs(nearest->station - station)) nearest = &*at;
  }
  return nearest;
}

const CorridorSection* sectionAt(const Baseline& baseline, double station) {
  for (const Region& region : baseline.regions)
    if (holds(region, station)) return sectionAt(region, station);
  for (const Region& region : baseline.regions)
    if (asksFor(region, station)) return sectionAt(region, station);
  return nullptr;
}

bool addStation(Region& region, double station, std::string_view label) {
  if (!std::isfinite(station)) return false;
  const auto next = region.stations.lower_bound(station - kSameStation);
  if (next != region.stations.end() && isSameStation(*next, station)) return false;
  // Before the set, so that a failure between the two leaves a label that nobody asks for.
  // Stations are mostly added as they ascend.
  region.pendingLabels.insert_or_assign(region.pendingLabels.end(), station, std::string(label));
  region.stations.insert(next, station);
  region.isRebuilt = false;
  return true;
}

void rebuild(Corridor& corridor, Rebuilt& done, const RebuildProgress& progress) {
  std::uint64_t total = 0;
  for (const Baseline& baseline : corridor.baselines)
    for (const Region& region : baseline.regions)
      if (!region.isRebuilt) total += region.stations.size();
  std::uint64_t passed = 0;
  const auto tick = [&] {
    if (passed++ % kProgressStep == 0 && progress) progress(passed - 1, total);
  };
  for (Baseline& baseline : corridor.baselines)
    for (Region& region : baseline.regions)
      if (!region.isRebuilt) rebuildRegion(region, done, tick);
  if (total > 0 && progress) progress(total, total);
}

}  // namespace lvx::civil
