#include "cli/detail/info_facts.h"

#include <algorithm>

namespace lvx::cli::detail {

StationRange stationRange(const std::vector<civil::SampleLine>& lines) {
  StationRange range;
  for (const civil::SampleLine& line : lines) {
    range.least = std::min(range.least, line.station);
    range.greatest = std::max(range.greatest, line.station);
  }
  return range;
}

PointFacts pointFacts(const civil::Drawing& drawing) {
  PointFacts facts;
  for (const civil::Point& point : drawing.points) {
    facts.box.minX = std::min(facts.box.minX, point.position.x);
    facts.box.minY = std::min(facts.box.minY, point.position.y);
    facts.box.maxX = std::max(facts.box.maxX, point.position.x);
    facts.box.maxY = std::max(facts.box.maxY, point.position.y);
    facts.leastNumber = std::min(facts.leastNumber, point.number);
    facts.greatestNumber = std::max(facts.greatestNumber, point.number);
    if (!point.hasElevation) ++facts.withoutElevation;
  }
  return facts;
}

RegionFacts regionFacts(const civil::Region& region) {
  RegionFacts facts;
  for (const civil::CorridorSection& section : region.sections)
    ++(section.origin == civil::SectionOrigin::Given ? facts.given : facts.computed);
  const std::size_t sections = region.sections.size();
  facts.pending = region.stations.size() > sections ? region.stations.size() - sections : 0;
  return facts;
}

}  // namespace lvx::cli::detail
