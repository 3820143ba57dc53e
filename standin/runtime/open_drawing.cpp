#include "runtime/open_drawing.h"

#include <numeric>
#include <utility>

namespace lvx::runtime {

namespace {
constexpr std::array<const char*, kModelKindCount> kModelKindNames{"QmtDocument",
                                                                   "QmtDatabase",
                                                                   "QmtSiteList",
                                                                   "QmtSite",
                                                                   "QmtAlignmentList",
                                                                   "QmtAlignment",
                                                                   "QmtSampleLineGroupList",
                                                                   "QmtSampleLineGroup",
                                                                   "QmtSampleLineList",
                                                                   "QmtSampleLine",
                                                                   "QmtSampleLineVertexList",
                                                                   "QmtSampleLineVertex",
                                                                   "QmtSurfaceList",
                                                                   "QmtSurface",
                                                                   "QmtPointList",
                                                                   "QmtPoint",
                                                                   "QmtPointGroupList",
                                                                   "QmtPointGroup",
                                                                   "QmtProfile",
                                                                   "VantorApplication",
                                                                   "QmtRoadwayApplication",
                                                                   "QmtRoadwayDocument",
                                                                   "QmtCorridors",
                                                                   "QmtCorridor",
                                                                   "QmtBaselines",
                                                                   "QmtBaseline",
                                                                   "QmtBaselineRegions",
                                                                   "QmtBaselineRegion",
                                                                   "QmtStationSet",
                                                                   "QmtSection",
                                                                   "QmtSectionParts",
                                                                   "QmtSectionPart",
                                                                   "QmtSectionPoints",
                                                                   "QmtSectionPoint",
                                                                   "QmtCodes"};
}

const char* modelKindName(ModelKind kind) { return kModelKindNames[static_cast<std::size_t>(kind)]; }

std::size_t LiveObjects::total() const { return std::accumulate(counts_.begin(), counts_.end(), std::size_t{0}); }

std::string LiveObjects::description() const {
  std::string text;
  for (std::size_t kind = 0; kind < kModelKindCount; ++kind) {
    if (counts_[kind] == 0) continue;
    if (!text.empty()) text += ", ";
    text += kModelKindNames[kind];
    text += ' ';
    text += std::to_string(counts_[kind]);
  }
  return text;
}

OpenDrawing::OpenDrawing(civil::Drawing drawing) : drawing_(std::move(drawing)), index_(drawing_) {}

void OpenDrawing::addStation(civil::Region& region, double station, std::string_view label) {
  if (civil::addStation(region, station, label)) ++addedStations_;
}

void OpenDrawing::rebuild(civil::Corridor& corridor) {
  std::function<void(std::uint64_t, std::uint64_t)> told;
  bool started = false;
  civil::rebuild(corridor, rebuilt_, [&](std::uint64_t done, std::uint64_t total) {
    checkInterrupted();
    if (!std::exchange(started, true) && startProgress)
      told = startProgress("rebuilding corridor '" + corridor.name + "'");
    if (told) told(done, total);
  });
}

}  // namespace lvx::runtime
