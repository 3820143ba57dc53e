#include <utility>

#include <nlohmann/json.hpp>

#include "civil/drawing_files.h"
#include "cli/answer.h"
#include "cli/detail/info_facts.h"
#include "cli/drawing_file.h"
#include "cli/info_command.h"
#include "text/handle_text.h"

namespace lvx::cli {

using Json = nlohmann::ordered_json;

namespace {

using detail::pointFacts;
using detail::regionFacts;
using detail::stationRange;

Json unitJson(const std::string& linearUnit) { return linearUnit.empty() ? Json(nullptr) : Json(linearUnit); }

/// Adds the file of an object, null where it is in none, to what a drawing of several files tells of it.
template <class Object>
Json withFile(Json json, const civil::Drawing& drawing, const Object& object) {
  if (drawing.addedFiles.empty()) return json;
  const std::string& path = civil::pathOf(drawing, object.file);
  json["file"] = path.empty() ? Json(nullptr) : Json(path);
  return json;
}

Json filesJson(const civil::Drawing& drawing) {
  Json list = Json::array();
  list.push_back({{"path", drawing.path},
                  {"linearUnit", unitJson(drawing.linearUnit)},
                  {"lengthFactor", 1.0},
                  {"axesSwapped", drawing.axesSwapped}});
  for (const civil::AddedFile& file : drawing.addedFiles)
    list.push_back({{"path", file.path},
                    {"linearUnit", unitJson(file.linearUnit)},
                    {"lengthFactor", file.lengthFactor},
                    {"axesSwapped", file.axesSwapped}});
  return list;
}

Json boxJson(const civil::Box& box) {
  if (box.isEmpty()) return nullptr;
  return {{"minX", box.minX}, {"minY", box.minY}, {"maxX", box.maxX}, {"maxY", box.maxY}};
}

/// A signed radius, positive to the left; null for a straight end.
Json radiusJson(double curvature) {
  if (curvature == 0.0) return nullptr;
  return 1.0 / curvature;
}

Json elementsJson(const civil::Alignment& geometry) {
  Json list = Json::array();
  std::size_t index = 0;
  for (const civil::Element& element : geometry.elements()) {
    list.push_back({{"kind", civil::kindName(element.kind)},
                    {"station", geometry.stationOfElement(index++)},
                    {"length", element.length},
                    {"x", element.start.x},
                    {"y", element.start.y},
                    {"azimuth", civil::azimuthOf(element.direction)},
                    {"startRadius", radiusJson(element.startCurvature)},
                    {"endRadius", radiusJson(element.endCurvature)}});
  }
  return list;
}

Json alignmentJson(const civil::Drawing& drawing, const civil::AlignmentObject& object) {
  Json equations = Json::array();
  for (const civil::StationEquation& equation : object.stationEquations.orNone())
    equations.push_back({{"internalStation", equation.internalStation},
                         {"backStation", equation.backStation ? Json(*equation.backStation) : Json(nullptr)},
                         {"aheadStation", equation.aheadStation},
                         {"increasing", equation.increasing}});
  Json profiles = Json::array();
  for (const civil::ProfileObject& entry : object.profiles) {
    const civil::Profile& profile = entry.profile;
    profiles.push_back(withFile({{"name", entry.name},
                                 {"handle", text::handleText(entry.handle)},
                                 {"kind", profile.isGround() ? "ground" : "design"},
                                 {"points", profile.points().size()},
                                 {"gaps", profile.gapCount()},
                                 {"startStation", profile.isEmpty() ? Json(nullptr) : Json(profile.startStation())},
                                 {"endStation", profile.isEmpty() ? Json(nullptr) : Json(profile.endStation())}},
                                drawing, entry));
  }
  Json groups = Json::array();
  for (const civil::SampleLineGroup& group : object.sampleLineGroups) {
    const detail::StationRange range = stationRange(group.lines);
    groups.push_back(withFile({{"name", group.name},
                               {"handle", text::handleText(group.handle)},
                               {"lines", group.lines.size()},
                               {"leastStation", group.lines.empty() ? Json(nullptr) : Json(range.least)},
                               {"greatestStation", group.lines.empty() ? Json(nullptr) : Json(range.greatest)}},
                              drawing, group));
  }
  return withFile({{"name", object.name},
                   {"description", object.description},
                   {"handle", text::handleText(object.handle)},
                   {"startStation", object.geometry.startStation()},
                   {"endStation", object.geometry.endStation()},
                   {"length", object.geometry.length()},
                   {"elements", elementsJson(object.geometry)},
                   {"stationEquations", equations},
                   {"profiles", profiles},
                   {"sampleLineGroups", groups}},
                  drawing, object);
}

Json siteJson(const civil::Drawing& drawing, const civil::Site& site) {
  Json alignments = Json::array();
  for (const auto& alignment : site.alignments) alignments.push_back(alignmentJson(drawing, *alignment));
  return {{"name", site.name},
          {"description", site.description},
          {"handle", text::handleText(site.handle)},
          {"alignments", alignments}};
}

Json surfacesJson(const civil::Drawing& drawing) {
  Json list = Json::array();
  for (const civil::SurfaceObject& object : drawing.surfaces) {
    const civil::TinSurface::Counts counts = object.surface.counts();
    const bool empty = object.surface.isEmpty();
    list.push_back(withFile({{"name", object.name},
                             {"description", object.description},
                             {"handle", text::handleText(object.handle)},
                             {"points", counts.points},
                             {"triangles", counts.triangles},
                             {"degenerateTriangles", counts.degenerate},
                             {"overlappingEdges", counts.overlappingEdges},
                             {"box", boxJson(object.surface.box())},
                             {"minElevation", empty ? Json(nullptr) : Json(object.surface.minElevation())},
                             {"maxElevation", empty ? Json(nullptr) : Json(object.surface.maxElevation())}},
                            drawing, object));
  }
  return list;
}

Json pointsJson(const civil::Drawing& drawing) {
  const detail::PointFacts facts = pointFacts(drawing);
  const bool none = drawing.points.empty();
  return {{"count", drawing.points.size()},
          {"withoutElevation", facts.withoutElevation},
          {"leastNumber", none ? Json(nullptr) : Json(facts.leastNumber)},
          {"greatestNumber", none ? Json(nullptr) : Json(facts.greatestNumber)},
          {"box", boxJson(facts.box)}};
}

Json corridorsJson(const civil::Drawing& drawing) {
  Json list = Json::array();
  for (const civil::Corridor& corridor : drawing.corridors) {
    Json baselines = Json::array();
    for (const civil::Baseline& baseline : corridor.baselines) {
      Json regions = Json::array();
      for (const civil::Region& region : baseline.regions) {
        const detail::RegionFacts facts = regionFacts(region);
        regions.push_back({{"name", region.name},
                           {"startStation", region.startStation},
                           {"endStation", region.endStation},
                           {"stations", region.stations.size()},
                           {"givenSections", facts.given},
                           {"computedSections", facts.computed},
                           {"pendingSections", facts.pending}});
      }
      baselines.push_back(
          {{"name", baseline.name},
           {"alignment", baseline.alignment == nullptr ? Json(nullptr) : Json(baseline.alignment->name)},
           {"profile", baseline.profile == nullptr ? Json(nullptr) : Json(baseline.profile->name)},
           {"regions", regions}});
    }
    list.push_back(withFile({{"name", corridor.name},
                             {"description", corridor.description},
                             {"handle", text::handleText(corridor.handle)},
                             {"baselines", baselines}},
                            drawing, corridor));
  }
  return list;
}

}  // namespace

void answerInfo(const civil::Drawing& drawing) {
  Json sites = Json::array();
  if (!drawing.siteless.alignments.empty()) sites.push_back(siteJson(drawing, drawing.siteless));
  for (const civil::Site& site : drawing.sites) sites.push_back(siteJson(drawing, site));
  Json groups = Json::array();
  for (const civil::PointGroup& group : drawing.pointGroups)
    groups.push_back(withFile({{"name", group.name},
                               {"description", group.description},
                               {"handle", text::handleText(group.handle)},
                               {"points", group.numbers.size()}},
                              drawing, group));
  Answer& all = answer();
  all.set("file", drawing.path);
  all.set("linearUnit", unitJson(drawing.linearUnit));
  if (drawing.axesSwapped || !drawing.addedFiles.empty()) all.set("files", filesJson(drawing));
  all.set("sites", std::move(sites));
  all.set("surfaces", surfacesJson(drawing));
  all.set("points", pointsJson(drawing));
  all.set("pointGroups", std::move(groups));
  all.set("corridors", corridorsJson(drawing));
  for (const civil::Diagnostic& diagnostic : drawing.diagnostics) all.add(toldDiagnostic(drawing, diagnostic));
}

}  // namespace lvx::cli
