#include "cli/info_command.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

#include <nlohmann/json.hpp>

#include "cli/drawing_file.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "text/handle_text.h"
#include "text/number_text.h"

namespace lvx::cli {

using civil::ElementKind;
using Json = nlohmann::ordered_json;

namespace {

// ---------------------------------------------------------------- words and numbers

std::string counted(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string radiusText(double curvature) {
  if (curvature == 0.0) return "straight";
  return text::fixedText(std::abs(1.0 / curvature)) + (curvature > 0.0 ? " left" : " right");
}

std::string radiiText(const civil::Element& element) {
  switch (element.kind) {
    case ElementKind::Line:
      return "";
    case ElementKind::Arc:
      return radiusText(element.startCurvature);
    case ElementKind::Clothoid:
    case ElementKind::Bloss:
    case ElementKind::Cosine:
    case ElementKind::Biquadratic:
    case ElementKind::Sinusoid:
      return radiusText(element.startCurvature) + " to " + radiusText(element.endCurvature);
  }
  return "";
}

std::size_t codePoints(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

/// Rows whose columns stand under one another; numbers to the right.
class Table {
 public:
  void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  [[nodiscard]] bool isEmpty() const { return rows_.empty(); }

  /// `toRight` holds an r for each column that is set to the right.
  void print(std::string& text, std::string_view indent, std::string_view toRight = {}) const {
    std::vector<std::size_t> widths;
    for (const auto& row : rows_)
      for (std::size_t i = 0; i < row.size(); ++i) {
        if (i == widths.size()) widths.push_back(0);
        widths[i] = std::max(widths[i], codePoints(row[i]));
      }
    for (const auto& row : rows_) {
      std::string line(indent);
      for (std::size_t i = 0; i < row.size(); ++i) {
        const std::string padding(widths[i] - codePoints(row[i]), ' ');
        const bool right = i < toRight.size() && toRight[i] == 'r';
        line += right ? padding + row[i] : row[i] + padding;
        line += "  ";
      }
      line.erase(line.find_last_not_of(' ') + 1);
      text += line + "\n";
    }
  }

 private:
  std::vector<std::vector<std::string>> rows_;
};

// ---------------------------------------------------------------- facts

struct StationRange {
  double least = std::numeric_limits<double>::infinity();
  double greatest = -std::numeric_limits<double>::infinity();
};

StationRange stationRange(const std::vector<civil::SampleLine>& lines) {
  StationRange range;
  for (const civil::SampleLine& line : lines) {
    range.least = std::min(range.least, line.station);
    range.greatest = std::max(range.greatest, line.station);
  }
  return range;
}

struct PointFacts {
  civil::Box box;
  std::size_t withoutElevation = 0;
  std::int32_t leastNumber = std::numeric_limits<std::int32_t>::max();
  std::int32_t greatestNumber = std::numeric_limits<std::int32_t>::min();
};

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

std::string boxText(const civil::Box& box) {
  return "x " + text::fixedText(box.minX) + " to " + text::fixedText(box.maxX) + ", y " + text::fixedText(box.minY) +
         " to " + text::fixedText(box.maxY);
}

struct RegionFacts {
  std::size_t given = 0;
  std::size_t computed = 0;
  std::size_t pending = 0;  ///< stations of the set without a section
};

RegionFacts regionFacts(const civil::Region& region) {
  RegionFacts facts;
  for (const civil::CorridorSection& section : region.sections)
    ++(section.origin == civil::SectionOrigin::Given ? facts.given : facts.computed);
  const std::size_t sections = region.sections.size();
  facts.pending = region.stations.size() > sections ? region.stations.size() - sections : 0;
  return facts;
}

// ---------------------------------------------------------------- for people

void addElements(std::string& text, const civil::Alignment& geometry) {
  constexpr std::size_t kMost = 100;
  const auto elements = geometry.elements();
  Table table;
  for (std::size_t i = 0; i < std::min(elements.size(), kMost); ++i)
    table.add({std::to_string(i + 1), civil::kindName(elements[i].kind), text::fixedText(geometry.stationOfElement(i)),
               text::fixedText(elements[i].length), radiiText(elements[i])});
  text += "    elements (number, kind, station, length, radius)\n";
  table.print(text, "      ", "r rr");
  if (elements.size() > kMost)
    text += "      and " + std::to_string(elements.size() - kMost) + " more; --json lists all of them\n";
}

void addProfiles(std::string& text, const std::vector<civil::ProfileObject>& profiles) {
  if (profiles.empty()) return;
  Table table;
  for (const civil::ProfileObject& object : profiles) {
    const civil::Profile& profile = object.profile;
    std::string facts = counted(profile.points().size(), "point", "points");
    if (profile.gapCount() > 0) facts += ", " + counted(profile.gapCount(), "gap", "gaps");
    table.add({"'" + object.name + "'", profile.isGround() ? "ground" : "design",
               profile.isEmpty()
                   ? ""
                   : text::fixedText(profile.startStation()) + " to " + text::fixedText(profile.endStation()),
               facts});
  }
  text += "    profiles\n";
  table.print(text, "      ");
}

void addGroups(std::string& text, const std::vector<civil::SampleLineGroup>& groups) {
  if (groups.empty()) return;
  Table table;
  for (const civil::SampleLineGroup& group : groups) {
    const StationRange range = stationRange(group.lines);
    table.add({"'" + group.name + "'", counted(group.lines.size(), "line", "lines"),
               group.lines.empty() ? "" : text::fixedText(range.least) + " to " + text::fixedText(range.greatest)});
  }
  text += "    sample line groups\n";
  table.print(text, "      ");
}

void addAlignment(std::string& text, const civil::AlignmentObject& object) {
  const civil::Alignment& geometry = object.geometry;
  text += "  alignment '" + object.name + "'  " +
          (geometry.isEmpty()
               ? std::string("without geometry")
               : "station " + text::fixedText(geometry.startStation()) + " to " +
                     text::fixedText(geometry.endStation()) + ", length " + text::fixedText(geometry.length())) +
          "\n";
  if (!geometry.isEmpty()) addElements(text, geometry);
  for (const civil::StationEquation& equation : object.stationEquations)
    text += "    station equation at " + text::fixedText(equation.internalStation) + ": " +
            (equation.backStation ? "back " + text::fixedText(*equation.backStation) + ", " : std::string()) +
            "ahead " + text::fixedText(equation.aheadStation) + (equation.increasing ? "" : ", decreasing") +
            " (reports don't apply it)\n";
  addProfiles(text, object.profiles);
  addGroups(text, object.sampleLineGroups);
}

void addSites(std::string& text, const civil::Drawing& drawing) {
  for (const civil::Site& site : drawing.sites)
    if (site.alignments.empty()) text += "site '" + site.name + "': no alignments\n";
  for (const civil::Site* site : siteRows(drawing)) {
    text += (site->name.empty() ? std::string("without a site") : "site '" + site->name + "'") + "\n";
    for (const auto& alignment : site->alignments) addAlignment(text, *alignment);
  }
  if (siteRows(drawing).empty()) text += "no alignments\n";
}

void addSurfaces(std::string& text, const civil::Drawing& drawing) {
  if (drawing.surfaces.empty()) return;
  text += "surfaces\n";
  for (const civil::SurfaceObject& object : drawing.surfaces) {
    const civil::TinSurface::Counts counts = object.surface.counts();
    text += "  '" + object.name + "'  " + counted(counts.points, "point", "points") + ", " +
            counted(counts.triangles, "triangle", "triangles") + "\n";
    if (!object.surface.isEmpty())
      text += "    " + boxText(object.surface.box()) + ", elevation " + text::fixedText(object.surface.minElevation()) +
              " to " + text::fixedText(object.surface.maxElevation()) + "\n";
    if (counts.degenerate > 0)
      text += "    " + counted(counts.degenerate, "triangle", "triangles") + " without area in plan hold no ground\n";
    if (counts.overlappingEdges > 0)
      text += "    " + counted(counts.overlappingEdges, "edge", "edges") + " with more than two triangles\n";
  }
}

void addPoints(std::string& text, const civil::Drawing& drawing) {
  if (!drawing.points.empty()) {
    const PointFacts facts = pointFacts(drawing);
    text += "points  " + std::to_string(drawing.points.size()) + ", numbers " + std::to_string(facts.leastNumber) +
            " to " + std::to_string(facts.greatestNumber) + ", " + boxText(facts.box) + "\n";
    if (facts.withoutElevation > 0)
      text += "  " + std::to_string(facts.withoutElevation) + " of them without an elevation (reports show 0)\n";
  }
  if (drawing.pointGroups.empty()) return;
  text += "point groups\n";
  Table table;
  for (const civil::PointGroup& group : drawing.pointGroups)
    table.add({"'" + group.name + "'", counted(group.numbers.size(), "point", "points")});
  table.print(text, "  ");
}

void addCorridors(std::string& text, const civil::Drawing& drawing) {
  for (const civil::Corridor& corridor : drawing.corridors) {
    text += "corridor '" + corridor.name + "'\n";
    for (const civil::Baseline& baseline : corridor.baselines) {
      text += "  baseline '" + baseline.name + "'" +
              (baseline.alignment == nullptr ? std::string() : " on alignment '" + baseline.alignment->name + "'") +
              (baseline.profile == nullptr ? std::string(" without a profile")
                                           : " with profile '" + baseline.profile->name + "'") +
              "\n";
      Table table;
      for (const civil::Region& region : baseline.regions) {
        const RegionFacts facts = regionFacts(region);
        std::string sections = counted(facts.given, "section", "sections");
        if (facts.computed > 0) sections += ", " + std::to_string(facts.computed) + " computed";
        if (facts.pending > 0) sections += ", " + std::to_string(facts.pending) + " waiting for a rebuild";
        table.add({"region '" + region.name + "'",
                   text::fixedText(region.startStation) + " to " + text::fixedText(region.endStation), sections});
      }
      table.print(text, "    ");
    }
  }
}

// ---------------------------------------------------------------- for programs

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

Json alignmentJson(const civil::AlignmentObject& object) {
  Json equations = Json::array();
  for (const civil::StationEquation& equation : object.stationEquations)
    equations.push_back({{"internalStation", equation.internalStation},
                         {"backStation", equation.backStation ? Json(*equation.backStation) : Json(nullptr)},
                         {"aheadStation", equation.aheadStation},
                         {"increasing", equation.increasing}});
  Json profiles = Json::array();
  for (const civil::ProfileObject& entry : object.profiles) {
    const civil::Profile& profile = entry.profile;
    profiles.push_back({{"name", entry.name},
                        {"handle", text::handleText(entry.handle)},
                        {"kind", profile.isGround() ? "ground" : "design"},
                        {"points", profile.points().size()},
                        {"gaps", profile.gapCount()},
                        {"startStation", profile.isEmpty() ? Json(nullptr) : Json(profile.startStation())},
                        {"endStation", profile.isEmpty() ? Json(nullptr) : Json(profile.endStation())}});
  }
  Json groups = Json::array();
  for (const civil::SampleLineGroup& group : object.sampleLineGroups) {
    const StationRange range = stationRange(group.lines);
    groups.push_back({{"name", group.name},
                      {"handle", text::handleText(group.handle)},
                      {"lines", group.lines.size()},
                      {"leastStation", group.lines.empty() ? Json(nullptr) : Json(range.least)},
                      {"greatestStation", group.lines.empty() ? Json(nullptr) : Json(range.greatest)}});
  }
  return {{"name", object.name},
          {"description", object.description},
          {"handle", text::handleText(object.handle)},
          {"startStation", object.geometry.startStation()},
          {"endStation", object.geometry.endStation()},
          {"length", object.geometry.length()},
          {"elements", elementsJson(object.geometry)},
          {"stationEquations", equations},
          {"profiles", profiles},
          {"sampleLineGroups", groups}};
}

Json siteJson(const civil::Site& site) {
  Json alignments = Json::array();
  for (const auto& alignment : site.alignments) alignments.push_back(alignmentJson(*alignment));
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
    list.push_back({{"name", object.name},
                    {"description", object.description},
                    {"handle", text::handleText(object.handle)},
                    {"points", counts.points},
                    {"triangles", counts.triangles},
                    {"degenerateTriangles", counts.degenerate},
                    {"overlappingEdges", counts.overlappingEdges},
                    {"box", boxJson(object.surface.box())},
                    {"minElevation", empty ? Json(nullptr) : Json(object.surface.minElevation())},
                    {"maxElevation", empty ? Json(nullptr) : Json(object.surface.maxElevation())}});
  }
  return list;
}

Json pointsJson(const civil::Drawing& drawing) {
  const PointFacts facts = pointFacts(drawing);
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
        const RegionFacts facts = regionFacts(region);
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
    list.push_back({{"name", corridor.name},
                    {"description", corridor.description},
                    {"handle", text::handleText(corridor.handle)},
                    {"baselines", baselines}});
  }
  return list;
}

Json diagnosticsJson(const civil::Drawing& drawing) {
  constexpr std::array<const char*, 3> kSeverities{"note", "warning", "error"};
  Json list = Json::array();
  for (const civil::Diagnostic& diagnostic : drawing.diagnostics)
    list.push_back({{"severity", kSeverities[static_cast<std::size_t>(diagnostic.severity)]},
                    {"text", diagnostic.text},
                    {"line", diagnostic.line}});
  return list;
}

}  // namespace

std::string infoText(const civil::Drawing& drawing) {
  std::string text = drawing.path + "  (unit: " +
                     (drawing.linearUnit.empty() ? std::string("none given, metres assumed") : drawing.linearUnit) +
                     ")\n";
  addSites(text, drawing);
  addSurfaces(text, drawing);
  addPoints(text, drawing);
  addCorridors(text, drawing);
  if (drawing.diagnostics.empty()) return text;
  text += "diagnostics\n";
  for (const civil::Diagnostic& diagnostic : drawing.diagnostics)
    text += "  " + diagnosticText(drawing, diagnostic) + "\n";
  return text;
}

std::string infoJson(const civil::Drawing& drawing) {
  Json sites = Json::array();
  if (!drawing.siteless.alignments.empty()) sites.push_back(siteJson(drawing.siteless));
  for (const civil::Site& site : drawing.sites) sites.push_back(siteJson(site));
  Json groups = Json::array();
  for (const civil::PointGroup& group : drawing.pointGroups)
    groups.push_back({{"name", group.name},
                      {"description", group.description},
                      {"handle", text::handleText(group.handle)},
                      {"points", group.numbers.size()}});
  const Json all = {{"file", drawing.path},
                    {"linearUnit", drawing.linearUnit.empty() ? Json(nullptr) : Json(drawing.linearUnit)},
                    {"sites", sites},
                    {"surfaces", surfacesJson(drawing)},
                    {"points", pointsJson(drawing)},
                    {"pointGroups", groups},
                    {"corridors", corridorsJson(drawing)},
                    {"diagnostics", diagnosticsJson(drawing)}};
  // A name that isn't UTF-8 shows the replacement character; the rest of the drawing is told all the same.
  return all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

options::ExitCode runInfo(const options::Options& options) {
  const civil::Drawing drawing = loadDrawing(options.drawing, options.common.progressMode());
  print(options.json ? infoJson(drawing) : infoText(drawing));
  return options::kDone;
}

}  // namespace lvx::cli
