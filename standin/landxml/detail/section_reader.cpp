#include "landxml/detail/section_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "civil/rounding.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"
#include "text/number_text.h"

namespace lvx::landxml::detail {

using civil::Vec2;

namespace {

/// Half width of a line about which the file says nothing.
constexpr double kDefaultHalfWidth = 10.0;
/// Vertices this close to the alignment's point at their station run through it; in drawing units.
constexpr double kOnLine = 0.001;

struct Extent {
  double least = std::numeric_limits<double>::infinity();
  double greatest = -std::numeric_limits<double>::infinity();
  [[nodiscard]] bool isEmpty() const { return least > greatest; }
  void add(double offset) {
    least = std::min(least, offset);
    greatest = std::max(greatest, offset);
  }
};

bool isComputed(Node section) { return property(feature(section, "lvx_section"), "origin") == "computed"; }

bool isSlopeDistance(Node point) { return attribute(point, "dataFormat") == "Slope Distance"; }

/// Offset and elevation of a CrossSectPnt; false where it has none, which is reported.
bool readSectionPoint(Context& context, Node node, const std::string& speaker, Vec2& offsetElevation) {
  if (isSlopeDistance(node)) {
    context.warn(node, speaker + ": a CrossSectPnt of the form Slope Distance can't be evaluated; left out");
    return false;
  }
  const auto values = context.numbers(node, speaker + ": CrossSectPnt");
  if (values.size() < 2) {
    context.warn(node, speaker + ": a CrossSectPnt holds no offset and elevation; left out");
    return false;
  }
  offsetElevation = {values[0], values[1]};
  return true;
}

/// Least and greatest offset over all points of a section.
Extent extentOf(Context& context, Node section, const std::string& speaker) {
  Extent extent;
  eachChild(section, "CrossSectSurf", [&](Node surface) {
    eachChild(surface, "PntList2D", [&](Node list) {
      const auto values = context.numbers(list, speaker + ": CrossSectSurf '" + attributeText(surface, "name") + "'");
      if (values.size() % 2 != 0) {
        context.warn(list, speaker + ": a list holds an odd count of numbers; the last one is left out");
      }
      for (std::size_t i = 0; i + 1 < values.size(); i += 2) extent.add(values[i]);
    });
  });
  eachChild(section, "DesignCrossSectSurf", [&](Node part) {
    eachChild(part, "CrossSectPnt", [&](Node node) {
      Vec2 point;
      if (readSectionPoint(context, node, speaker, point)) extent.add(point.x);
    });
  });
  return extent;
}

double distanceToPolyline(Vec2 point, const std::vector<Vec2>& vertices) {
  double nearest = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i + 1 < vertices.size(); ++i) {
    const Vec2 along = vertices[i + 1] - vertices[i];
    const double square = civil::dot(along, along);
    const double t = square > 0.0 ? std::clamp(civil::dot(point - vertices[i], along) / square, 0.0, 1.0) : 0.0;
    nearest = std::min(nearest, civil::length(point - (vertices[i] + t * along)));
  }
  return nearest;
}

/// A line of which the file gives offsets only.
struct Unplaced {
  std::size_t line = 0;  // index in the group
  Extent extent;
  double skew = 0.0;
  civil::Pose pose;
};

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// Programs say "relative" in the schema's words and write absolute elevations: what the sections hold decides.
bool areAbsolute(const std::vector<civil::CorridorSection>& sections, const civil::Profile& profile) {
  std::vector<double> asWritten;
  std::vector<double> againstProfile;
  for (const auto& section : sections) {
    const civil::SectionPoint* nearest = nullptr;
    for (const auto& part : section.parts) {
      for (const auto& point : part.points) {
        if (nearest == nullptr || std::abs(point.offset) < std::abs(nearest->offset)) nearest = &point;
      }
    }
    const auto design = profile.elevationAt(section.station);
    if (nearest == nullptr || !design) continue;
    asWritten.push_back(std::abs(nearest->elevation));
    againstProfile.push_back(std::abs(nearest->elevation - *design));
  }
  return asWritten.empty() || median(asWritten) >= median(againstProfile);
}

}  // namespace

SectionsKind kindOf(Node crossSects) {
  if (feature(crossSects, "lvx_sampleLineGroup")) return SectionsKind::SampleLines;
  if (feature(crossSects, "lvx_corridorSections")) return SectionsKind::Corridor;
  return SectionsKind::Foreign;
}

bool hasDesign(Node crossSects) {
  bool found = false;
  eachChild(crossSects, "CrossSect",
            [&](Node section) { found = found || static_cast<bool>(child(section, "DesignCrossSectSurf")); });
  return found;
}

namespace {

/// One CrossSects as a sample line group: all lines by their own words first, then places for those that say only how
/// far they reach, since a line that doesn't even say that takes the widest of the others.
class SampleLineReader {
 public:
  SampleLineReader(Context& context, const civil::AlignmentObject& alignment, std::string speaker)
      : context_(context), alignment_(alignment), who_(std::move(speaker)) {}

  void readHalfWidth(Node ours);
  void readLine(Node section);
  /// All lines, in the order of the file; those that can't be placed are left out.
  [[nodiscard]] std::vector<civil::SampleLine> placedLines();

 private:
  [[nodiscard]] std::vector<Vec2> verticesOf(Node section, const civil::Pose& pose, const std::string& speaker);
  [[nodiscard]] Unplaced extentAndSkewOf(Node section, const civil::Pose& pose, const std::string& speaker);
  void leaveOut(Node section, double station, const std::string& speaker);
  void takeWidth(const Extent& extent);
  void place(const Unplaced& unplaced, double defaultWidth);

  Context& context_;
  const civil::AlignmentObject& alignment_;
  std::string who_;
  std::optional<double> halfWidth_;
  std::vector<civil::SampleLine> lines_;
  std::vector<Unplaced> unplaced_;
  double widest_ = 0.0;
  std::size_t leftOut_ = 0;  // of an alignment without geometry
  Node firstLeftOut_;
};

void SampleLineReader::readHalfWidth(Node ours) {
  const auto value = property(ours, "halfWidth");
  if (!value) return;
  double width = 0.0;
  if (readSingleNumber(*value, width) && width > 0.0)
    halfWidth_ = width;
  else
    context_.warn(ours, who_ + ": halfWidth '" + shown(*value) + "' is not a width; taken as missing");
}

void SampleLineReader::readLine(Node section) {
  // Another program's sections can be sample lines and corridor at once; what we computed among them is no line.
  if (isComputed(section)) return;
  std::string given = attributeText(section, "name");
  // 1.0 has no name for a CrossSect.
  if (given.empty()) given = property(feature(section, "lvx_sampleLine"), "name").value_or("");
  const std::string named = who_ + ": sample line '" + given + "'";
  const auto station = context_.number(section, "sta", named, {"left out", civil::Severity::Error});
  if (!station) {
    if (attribute(section, "sta").empty()) context_.error(section, named + " has no station; left out");
    return;
  }
  civil::SampleLine line;
  line.station = *station;
  line.name = given.empty() ? text::stationText(*station) : given;
  const std::string speaker = who_ + ": sample line '" + line.name + "'";
  line.handle = context_.ticket(section, property(feature(section, "lvx_sampleLine"), "handle"));
  const auto pose = alignment_.geometry.poseAt(line.station);
  if (!pose) {
    leaveOut(section, line.station, speaker);
    return;
  }
  const Context::Subject subject(context_, line.handle);
  line.vertices = verticesOf(section, *pose, speaker);
  if (line.vertices.empty()) {
    unplaced_.push_back(extentAndSkewOf(section, *pose, speaker));
    takeWidth(unplaced_.back().extent);
  }
  lines_.push_back(std::move(line));
}

/// There is no place on the alignment to measure offsets from. The element stays in the file when the drawing is saved.
void SampleLineReader::leaveOut(Node section, double station, const std::string& speaker) {
  // Its width says as much as those of the others how wide a line without one is.
  if (!property(feature(section, "lvx_sampleLine"), "vertices")) takeWidth(extentOf(context_, section, speaker));
  if (alignment_.geometry.isEmpty()) {
    if (leftOut_++ == 0) firstLeftOut_ = section;
    return;
  }
  context_.warn(section, speaker + ": the alignment has no station " + shownNumber(station) + "; left out");
}

void SampleLineReader::takeWidth(const Extent& extent) {
  if (!extent.isEmpty()) widest_ = std::max({widest_, std::abs(extent.least), std::abs(extent.greatest)});
}

/// The line's own vertices; none where the file gives none that can be used.
std::vector<Vec2> SampleLineReader::verticesOf(Node section, const civil::Pose& pose, const std::string& speaker) {
  const Node ours = feature(section, "lvx_sampleLine");
  const auto text = property(ours, "vertices");
  if (!text) return {};
  const NumberList list = readNumbers(*text);
  if (!list.problem.empty() || list.values.size() < 4 || list.values.size() % 2 != 0) {
    context_.warn(ours, speaker + ": its vertices can't be used" +
                            (list.problem.empty() ? std::string() : ": " + list.problem) +
                            "; its offsets are taken instead");
    return {};
  }
  std::vector<Vec2> vertices;
  for (std::size_t i = 0; i < list.values.size(); i += 2)
    vertices.push_back(context_.plan(list.values[i], list.values[i + 1]));
  if (distanceToPolyline(pose.point, vertices) > kOnLine) {
    context_.note(section, speaker + ": doesn't run through the alignment at its station; both are kept");
  }
  return vertices;
}

Unplaced SampleLineReader::extentAndSkewOf(Node section, const civil::Pose& pose, const std::string& speaker) {
  Unplaced unplaced{lines_.size(), extentOf(context_, section, speaker), 0.0, pose};
  if (const auto skew = attribute(section, "angleSkew"); !skew.empty()) {
    if (const auto angle = context_.angle(skew))
      unplaced.skew = *angle;
    else
      context_.warn(section, speaker + ": angleSkew '" + shown(skew) + "' is not an angle; taken as 0");
  }
  return unplaced;
}

/// Gives a line its vertices.
void SampleLineReader::place(const Unplaced& unplaced, double defaultWidth) {
  civil::SampleLine& line = lines_[unplaced.line];
  double left = unplaced.extent.least;
  double right = unplaced.extent.greatest;
  if (unplaced.extent.isEmpty() || (left == 0.0 && right == 0.0)) {
    left = -defaultWidth;
    right = defaultWidth;
  } else if (left == right) {
    // One point beside the alignment: the line runs from the one to the other.
    left = std::min(left, 0.0);
    right = std::max(right, 0.0);
  }
  // Square to the right, turned on by the skew, which counts clockwise.
  const Vec2 across = civil::unit(unplaced.pose.direction - civil::kPi / 2.0 - unplaced.skew);
  line.vertices.push_back(civil::withoutRounding(unplaced.pose.point + left * across));
  if (left < 0.0 && right > 0.0) line.vertices.push_back(civil::withoutRounding(unplaced.pose.point));
  line.vertices.push_back(civil::withoutRounding(unplaced.pose.point + right * across));
}

std::vector<civil::SampleLine> SampleLineReader::placedLines() {
  if (leftOut_ > 0) {
    context_.warn(firstLeftOut_, who_ + ": the alignment has no geometry; " + std::to_string(leftOut_) +
                                     (leftOut_ == 1 ? " sample line is" : " sample lines are") + " left out");
  }
  const double defaultWidth = halfWidth_ ? *halfWidth_ : widest_ > 0.0 ? widest_ : kDefaultHalfWidth;
  for (const Unplaced& unplaced : unplaced_) place(unplaced, defaultWidth);
  return std::move(lines_);
}

}  // namespace

civil::SampleLineGroup readSampleLines(Context& context, Node crossSects, const civil::AlignmentObject& alignment,
                                       const std::string& speaker, std::size_t number) {
  civil::SampleLineGroup group;
  const Node ours = feature(crossSects, "lvx_sampleLineGroup");
  group.handle = context.ticket(crossSects, property(ours, "handle"));
  const Context::Subject subject(context, group.handle);
  group.name = attributeText(crossSects, "name");
  if (group.name.empty()) group.name = "SL - " + alignment.name + " (" + std::to_string(number) + ")";
  group.description = attributeText(crossSects, "desc");

  SampleLineReader reader(context, alignment, speaker + ": group '" + group.name + "'");
  reader.readHalfWidth(ours);
  eachChild(crossSects, "CrossSect", [&](Node section) { reader.readLine(section); });
  group.lines = reader.placedLines();
  return group;
}

namespace {

/// A section with the CrossSect that it came from.
struct PlacedSection {
  civil::CorridorSection section;
  Node node;
};

std::size_t countNamed(Node parent, std::string_view name) {
  std::size_t count = 0;
  eachChild(parent, name, [&](Node) { ++count; });
  return count;
}

civil::SectionPart readPart(Context& context, Node surface, const std::string& speaker) {
  civil::SectionPart part;
  part.codes = context.codes(surface.attribute("name").value());
  const std::string_view closed = surface.attribute("closedArea").value();
  part.isClosed = closed == "true" || closed == "1";
  part.points.reserve(countNamed(surface, "CrossSectPnt"));
  eachChild(surface, "CrossSectPnt", [&](Node node) {
    Vec2 point;
    if (!readSectionPoint(context, node, speaker, point)) return;
    part.points.push_back({point.x, point.y, context.codes(node.attribute("code").value())});
  });
  return part;
}

/// All sections with a station, in the order of the file.
std::vector<PlacedSection> readPlaced(Context& context, Node crossSects, const std::string& speaker) {
  std::vector<PlacedSection> placed;
  eachChild(crossSects, "CrossSect", [&](Node node) {
    const auto station = context.number(node, "sta", speaker + ": a section", {"left out", civil::Severity::Error});
    if (!station) {
      if (attribute(node, "sta").empty()) context.error(node, speaker + ": a section has no station; left out");
      return;
    }
    civil::CorridorSection section;
    section.station = *station;
    section.label = attributeText(node, "name");
    if (isComputed(node)) section.origin = civil::SectionOrigin::Computed;
    const std::string who = speaker + ": section at " + shownNumber(*station);
    section.parts.reserve(countNamed(node, "DesignCrossSectSurf"));
    eachChild(node, "DesignCrossSectSurf",
              [&](Node surface) { section.parts.push_back(readPart(context, surface, who)); });
    placed.push_back({std::move(section), node});
  });
  return placed;
}

/// Ascending by station; of several at one station the first in the file.
void sortByStation(Context& context, Node crossSects, const std::string& speaker, std::vector<PlacedSection>& placed) {
  std::stable_sort(placed.begin(), placed.end(), [](const PlacedSection& a, const PlacedSection& b) {
    return a.section.station < b.section.station;
  });
  const auto isSameStation = [&](const PlacedSection& a, const PlacedSection& b) {
    if (b.section.station - a.section.station > civil::kSameStation) return false;
    context.warn(crossSects,
                 speaker + ": two sections stand at " + shownNumber(a.section.station) + "; the first one holds");
    return true;
  };
  placed.erase(std::unique(placed.begin(), placed.end(), isSameStation), placed.end());
}

void makeRelative(std::vector<civil::CorridorSection>& sections, const civil::Profile& profile) {
  for (auto& section : sections) {
    const double design = profile.elevationAt(section.station).value_or(0.0);
    for (auto& part : section.parts) {
      for (auto& point : part.points) point.elevation -= design;
    }
  }
}

}  // namespace

std::vector<civil::CorridorSection> readCorridorSections(Context& context, Node crossSects,
                                                         const civil::ProfileObject* profile,
                                                         const std::string& speaker, SectionsTrace& trace) {
  std::vector<PlacedSection> placed = readPlaced(context, crossSects, speaker);
  sortByStation(context, crossSects, speaker, placed);
  std::vector<civil::CorridorSection> sections;
  sections.reserve(placed.size());
  civil::SectionMemory memory;  // in which their parts follow each other as the stations do
  trace = {crossSects, false, {}};
  for (PlacedSection& p : placed) {
    p.section.parts = civil::SectionParts(p.section.parts, memory);
    sections.push_back(std::move(p.section));
    trace.sections.push_back(p.node);
  }
  if (profile == nullptr) return sections;
  const auto stated = property(feature(crossSects, "lvx_corridorSections"), "elevation");
  trace.isAbsolute = stated == "absolute" || (stated != "relative" && areAbsolute(sections, profile->profile));
  if (trace.isAbsolute) makeRelative(sections, profile->profile);
  return sections;
}

}  // namespace lvx::landxml::detail
