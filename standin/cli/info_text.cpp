#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

#include "civil/drawing_files.h"
#include "cli/detail/info_facts.h"
#include "cli/drawing_file.h"
#include "cli/info_command.h"
#include "cli/name_lookup.h"
#include "text/number_text.h"

namespace lvx::cli {

using civil::ElementKind;

namespace {

using detail::pointFacts;
using detail::regionFacts;
using detail::stationRange;

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

std::string boxText(const civil::Box& box) {
  return "x " + text::fixedText(box.minX) + " to " + text::fixedText(box.maxX) + ", y " + text::fixedText(box.minY) +
         " to " + text::fixedText(box.maxY);
}

/// "  (ground.xml)" behind what an object is, in a drawing of several files; empty in one of a single file.
std::string fileText(const civil::Drawing& drawing, civil::FileNumber file) {
  if (drawing.addedFiles.empty()) return {};
  const std::string& path = civil::pathOf(drawing, file);
  return "  (" + (path.empty() ? std::string("in no file") : path) + ")";
}

/// The same for what belongs to an object, where that is in another file.
std::string fileText(const civil::Drawing& drawing, civil::FileNumber file, civil::FileNumber fileOfOwner) {
  return file == fileOfOwner ? std::string() : fileText(drawing, file);
}

std::string fileLine(const std::string& path, const std::string& unitAndMore, bool axesSwapped) {
  return path + "  (unit: " + unitAndMore + (axesSwapped ? ", northing and easting swapped" : "") + ")\n";
}

std::string unitText(const std::string& linearUnit) {
  return linearUnit.empty() ? std::string("none given, metres assumed") : linearUnit;
}

void addFiles(std::string& text, const civil::Drawing& drawing) {
  text += fileLine(drawing.path, unitText(drawing.linearUnit), drawing.axesSwapped);
  for (const civil::AddedFile& file : drawing.addedFiles) {
    std::string unit = unitText(file.linearUnit);
    if (file.lengthFactor != 1.0)
      unit += ", converted to " + (drawing.linearUnit.empty() ? std::string("metres") : drawing.linearUnit);
    text += fileLine(file.path, unit, file.axesSwapped);
  }
}

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

void addProfiles(std::string& text, const civil::Drawing& drawing, const civil::AlignmentObject& alignment) {
  if (alignment.profiles.empty()) return;
  Table table;
  for (const civil::ProfileObject& object : alignment.profiles) {
    const civil::Profile& profile = object.profile;
    std::string facts = text::countText(profile.points().size(), "point");
    if (profile.gapCount() > 0) facts += ", " + text::countText(profile.gapCount(), "gap");
    table.add({"'" + object.name + "'", profile.isGround() ? "ground" : "design",
               profile.isEmpty()
                   ? ""
                   : text::fixedText(profile.startStation()) + " to " + text::fixedText(profile.endStation()),
               facts + fileText(drawing, object.file, alignment.file)});
  }
  text += "    profiles\n";
  table.print(text, "      ");
}

void addGroups(std::string& text, const civil::Drawing& drawing, const civil::AlignmentObject& alignment) {
  if (alignment.sampleLineGroups.empty()) return;
  Table table;
  for (const civil::SampleLineGroup& group : alignment.sampleLineGroups) {
    const detail::StationRange range = stationRange(group.lines);
    table.add({"'" + group.name + "'", text::countText(group.lines.size(), "line"),
               (group.lines.empty() ? "" : text::fixedText(range.least) + " to " + text::fixedText(range.greatest)) +
                   fileText(drawing, group.file, alignment.file)});
  }
  text += "    sample line groups\n";
  table.print(text, "      ");
}

void addAlignment(std::string& text, const civil::Drawing& drawing, const civil::AlignmentObject& object) {
  const civil::Alignment& geometry = object.geometry;
  text += "  alignment '" + object.name + "'  " +
          (geometry.isEmpty()
               ? std::string("without geometry")
               : "station " + text::fixedText(geometry.startStation()) + " to " +
                     text::fixedText(geometry.endStation()) + ", length " + text::fixedText(geometry.length())) +
          fileText(drawing, object.file) + "\n";
  if (!geometry.isEmpty()) addElements(text, geometry);
  for (const civil::StationEquation& equation : object.stationEquations.orNone())
    text += "    station equation at " + text::fixedText(equation.internalStation) + ": " +
            (equation.backStation ? "back " + text::fixedText(*equation.backStation) + ", " : std::string()) +
            "ahead " + text::fixedText(equation.aheadStation) + (equation.increasing ? "" : ", decreasing") +
            " (reports don't apply it)\n";
  addProfiles(text, drawing, object);
  addGroups(text, drawing, object);
}

/// What was said and not yet told.
class Report {
 public:
  explicit Report(const std::function<void(std::string_view)>& tell) : tell_(tell) {}
  std::string text;

  /// Tells the text where it has become long.
  void passOn() {
    constexpr std::size_t kLong = 1 << 16;
    if (text.size() >= kLong) tellRest();
  }
  void tellRest() {
    tell_(text);
    text.clear();
  }

 private:
  const std::function<void(std::string_view)>& tell_;
};

void addSites(Report& report, const civil::Drawing& drawing) {
  std::string& text = report.text;
  for (const civil::Site& site : drawing.sites)
    if (site.alignments.empty()) text += "site '" + site.name + "': no alignments\n";
  for (const civil::Site* site : siteRows(drawing)) {
    text += (site->name.empty() ? std::string("without a site") : "site '" + site->name + "'") + "\n";
    for (const auto& alignment : site->alignments) {
      addAlignment(text, drawing, *alignment);
      report.passOn();
    }
  }
  if (siteRows(drawing).empty()) text += "no alignments\n";
}

void addSurfaces(std::string& text, const civil::Drawing& drawing) {
  if (drawing.surfaces.empty()) return;
  text += "surfaces\n";
  for (const civil::SurfaceObject& object : drawing.surfaces) {
    const civil::TinSurface::Counts counts = object.surface.counts();
    text += "  '" + object.name + "'  " + text::countText(counts.points, "point") + ", " +
            text::countText(counts.triangles, "triangle") + fileText(drawing, object.file) + "\n";
    if (!object.surface.isEmpty())
      text += "    " + boxText(object.surface.box()) + ", elevation " + text::fixedText(object.surface.minElevation()) +
              " to " + text::fixedText(object.surface.maxElevation()) + "\n";
    if (counts.degenerate > 0)
      text += "    " + text::countText(counts.degenerate, "triangle") + " without area in plan hold no ground\n";
    if (counts.overlappingEdges > 0)
      text += "    " + text::countText(counts.overlappingEdges, "edge") + " with more than two triangles\n";
  }
}

/// How many of the points each file holds, where there are several.
void addPointsOfFiles(std::string& text, const civil::Drawing& drawing) {
  if (drawing.addedFiles.empty()) return;
  std::map<civil::FileNumber, std::size_t> counts;
  for (const civil::Point& point : drawing.points) ++counts[point.file];
  for (const auto& [file, count] : counts) text += "  " + std::to_string(count) + fileText(drawing, file) + "\n";
}

void addPoints(std::string& text, const civil::Drawing& drawing) {
  if (!drawing.points.empty()) {
    const detail::PointFacts facts = pointFacts(drawing);
    text += "points  " + std::to_string(drawing.points.size()) + ", numbers " + std::to_string(facts.leastNumber) +
            " to " + std::to_string(facts.greatestNumber) + ", " + boxText(facts.box) + "\n";
    if (facts.withoutElevation > 0)
      text += "  " + std::to_string(facts.withoutElevation) + " of them without an elevation (reports show 0)\n";
    addPointsOfFiles(text, drawing);
  }
  if (drawing.pointGroups.empty()) return;
  text += "point groups\n";
  Table table;
  for (const civil::PointGroup& group : drawing.pointGroups)
    table.add({"'" + group.name + "'", text::countText(group.numbers.size(), "point") + fileText(drawing, group.file)});
  table.print(text, "  ");
}

void addCorridors(std::string& text, const civil::Drawing& drawing) {
  for (const civil::Corridor& corridor : drawing.corridors) {
    text += "corridor '" + corridor.name + "'" + fileText(drawing, corridor.file) + "\n";
    for (const civil::Baseline& baseline : corridor.baselines) {
      text += "  baseline '" + baseline.name + "'" +
              (baseline.alignment == nullptr ? std::string() : " on alignment '" + baseline.alignment->name + "'") +
              (baseline.profile == nullptr ? std::string(" without a profile")
                                           : " with profile '" + baseline.profile->name + "'") +
              "\n";
      Table table;
      for (const civil::Region& region : baseline.regions) {
        const detail::RegionFacts facts = regionFacts(region);
        std::string sections = text::countText(facts.given, "section");
        if (facts.computed > 0) sections += ", " + std::to_string(facts.computed) + " computed";
        if (facts.pending > 0) sections += ", " + std::to_string(facts.pending) + " waiting for a rebuild";
        table.add({"region '" + region.name + "'",
                   text::fixedText(region.startStation) + " to " + text::fixedText(region.endStation), sections});
      }
      table.print(text, "    ");
    }
  }
}

}  // namespace

void tellInfo(const civil::Drawing& drawing, const std::function<void(std::string_view)>& tell) {
  Report report(tell);
  addFiles(report.text, drawing);
  addSites(report, drawing);
  addSurfaces(report.text, drawing);
  addPoints(report.text, drawing);
  addCorridors(report.text, drawing);
  if (!drawing.diagnostics.empty()) report.text += "diagnostics\n";
  for (const civil::Diagnostic& diagnostic : drawing.diagnostics) {
    report.text += "  " + diagnosticText(drawing, diagnostic) + "\n";
    report.passOn();
  }
  report.tellRest();
}

}  // namespace lvx::cli
