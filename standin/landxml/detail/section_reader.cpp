#include "landxml/detail/section_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

using civil::Vec2;

namespace {

/// Half width of a line about which the file says nothing.
constexpr double kDefaultHalfWidth = 10.0;

/// 1234.5 as "1+234.500"; below zero both separators are minus signs, as the reports print stations.
std::string stationName(double station) {
  // Stations are bounded by kLargestNumber, so the millimetres fit.
  const auto millimetres = static_cast<long long>(std::llround(std::abs(station) * 1000.0));
  const bool isNegative = station < 0.0 && millimetres > 0;
  const long long kilometres = millimetres / 1'000'000;
  const long long rest = millimetres % 1'000'000;
  char text[64];
  std::snprintf(text, sizeof text, "%s%lld%c%03lld.%03lld", isNegative ? "-" : "", kilometres, isNegative ? '-' : '+',
                rest / 1000, rest % 1000);
  return text;
}

struct Extent {
  double least = std::numeric_limits<double>::infinity();
  double greatest = -std::numeric_limits<double>::infinity();
  [[nodiscard]] bool isEmpty() const { return least > greatest; }
  void add(double offset) {
    least = std::min(least, offset);
    greatest = std::max(greatest, offset);
  }
};

bool isComputed(pugi::xml_node section) { return property(feature(section, "lvx_section"), "origin") == "computed"; }

bool isSlopeDistance(pugi::xml_node point) { return attribute(point, "dataFormat") == "Slope Distance"; }

/// Offset and elevation of a CrossSectPnt; false where it has none, which is reported.
bool readSectionPoint(Context& context, pugi::xml_node node, const std::string& speaker, Vec2& offsetElevation) {
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
Extent extentOf(Context& context, pugi::xml_node section, const std::string& speaker) {
  Extent extent;
  eachChild(section, "CrossSectSurf", [&](pugi::xml_node surface) {
    eachChild(surface, "PntList2D", [&](pugi::xml_node list) {
      const auto values = context.numbers(list, speaker + ": CrossSectSurf '" + attributeText(surface, "name") + "'");
      if (values.size() % 2 != 0) {
        context.warn(list, speaker + ": a list holds an odd count of numbers; the last one is left out");
      }
      for (std::size_t i = 0; i + 1 < values.size(); i += 2) extent.add(values[i]);
    });
  });
  eachChild(section, "DesignCrossSectSurf", [&](pugi::xml_node part) {
    eachChild(part, "CrossSectPnt", [&](pugi::xml_node node) {
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
  pugi::xml_node where;
  std::string speaker;
};

std::vector<std::string> splitCodes(const Context& context, const std::string& text) {
  if (text.empty()) return {};
  // Only our own files hold lists of codes; in others a comma is part of a name.
  if (!context.isOurs()) return {text};
  std::vector<std::string> codes(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ',') {
      codes.emplace_back();
    } else if (text.compare(i, 3, "%2C") == 0 || text.compare(i, 3, "%2c") == 0) {
      codes.back() += ',';
      i += 2;
    } else if (text.compare(i, 3, "%25") == 0) {
      codes.back() += '%';
      i += 2;
    } else {
      codes.back() += text[i];
    }
  }
  return codes;
}

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

SectionsKind kindOf(pugi::xml_node crossSects) {
  if (feature(crossSects, "lvx_sampleLineGroup")) return SectionsKind::SampleLines;
  if (feature(crossSects, "lvx_corridorSections")) return SectionsKind::Corridor;
  return SectionsKind::Foreign;
}

bool hasDesign(pugi::xml_node crossSects) {
  bool found = false;
  eachChild(crossSects, "CrossSect",
            [&](pugi::xml_node section) { found = found || static_cast<bool>(child(section, "DesignCrossSectSurf")); });
  return found;
}

civil::SampleLineGroup readSampleLines(Context& context, pugi::xml_node crossSects,
                                       const civil::AlignmentObject& alignment, const std::string& speaker,
                                       std::size_t number) {
  civil::SampleLineGroup group;
  const pugi::xml_node ours = feature(crossSects, "lvx_sampleLineGroup");
  group.handle = context.ticket(crossSects, property(ours, "handle"));
  group.name = attributeText(crossSects, "name");
  if (group.name.empty()) group.name = "SL - " + alignment.name + " (" + std::to_string(number) + ")";
  group.description = attributeText(crossSects, "desc");
  const std::string who = speaker + ": group '" + group.name + "'";
  std::optional<double> halfWidth;
  if (const auto value = property(ours, "halfWidth")) {
    double width = 0.0;
    if (readSingleNumber(*value, width) && width > 0.0)
      halfWidth = width;
    else
      context.warn(ours, who + ": halfWidth '" + shown(*value) + "' is not a width");
  }

  std::vector<Unplaced> unplaced;
  double widest = 0.0;
  eachChild(crossSects, "CrossSect", [&](pugi::xml_node section) {
    // Another program's sections can be sample lines and corridor at once; what we computed among them is no line.
    if (isComputed(section)) return;
    const std::string given = attributeText(section, "name");
    const auto station = context.number(section, "sta", who);
    if (!station) {
      context.error(section, who + ": sample line '" + given + "' has no station; left out");
      return;
    }
    civil::SampleLine line;
    line.station = *station;
    line.name = given.empty() ? stationName(*station) : given;
    const std::string lineSpeaker = who + ": sample line '" + line.name + "'";
    const pugi::xml_node lineFeature = feature(section, "lvx_sampleLine");
    line.handle = context.ticket(section, property(lineFeature, "handle"));
    if (const auto vertices = property(lineFeature, "vertices")) {
      const NumberList list = readNumbers(*vertices);
      if (!list.problem.empty() || list.values.size() < 4 || list.values.size() % 2 != 0) {
        context.warn(lineFeature, lineSpeaker + ": its vertices can't be used" +
                                      (list.problem.empty() ? std::string() : ": " + list.problem) +
                                      "; its offsets are taken instead");
      } else {
        for (std::size_t i = 0; i < list.values.size(); i += 2)
          line.vertices.push_back(context.plan(list.values[i], list.values[i + 1]));
        const auto pose = alignment.geometry.poseAt(line.station);
        if (pose && distanceToPolyline(pose->point, line.vertices) > 0.001) {
          context.note(section, lineSpeaker + ": doesn't run through the alignment at its station; both are kept");
        }
      }
    }
    if (line.vertices.empty()) {
      Unplaced place{group.lines.size(), extentOf(context, section, lineSpeaker), 0.0, section, lineSpeaker};
      if (!place.extent.isEmpty()) {
        widest = std::max({widest, std::abs(place.extent.least), std::abs(place.extent.greatest)});
      }
      if (const auto skew = attribute(section, "angleSkew"); !skew.empty()) {
        if (const auto angle = context.angle(skew))
          place.skew = *angle;
        else
          context.warn(section, lineSpeaker + ": angleSkew '" + shown(skew) + "' is not an angle; taken as 0");
      }
      unplaced.push_back(std::move(place));
    }
    group.lines.push_back(std::move(line));
  });

  const double defaultWidth = halfWidth ? *halfWidth : widest > 0.0 ? widest : kDefaultHalfWidth;
  std::vector<std::size_t> lost;
  for (const Unplaced& place : unplaced) {
    civil::SampleLine& line = group.lines[place.line];
    const auto pose = alignment.geometry.poseAt(line.station);
    if (!pose) {
      context.warn(place.where,
                   place.speaker + ": the alignment has no station " + shownNumber(line.station) + "; left out");
      lost.push_back(place.line);
      continue;
    }
    double left = place.extent.least;
    double right = place.extent.greatest;
    if (place.extent.isEmpty() || (left == 0.0 && right == 0.0)) {
      left = -defaultWidth;
      right = defaultWidth;
    } else if (left == right) {
      // One point beside the alignment: the line runs from the one to the other.
      left = std::min(left, 0.0);
      right = std::max(right, 0.0);
    }
    // Square to the right, turned on by the skew, which counts clockwise.
    const Vec2 across = civil::unit(pose->direction - civil::kPi / 2.0 - place.skew);
    line.vertices.push_back(pose->point + left * across);
    if (left < 0.0 && right > 0.0) line.vertices.push_back(pose->point);
    line.vertices.push_back(pose->point + right * across);
  }
  for (auto i = lost.rbegin(); i != lost.rend(); ++i)
    group.lines.erase(group.lines.begin() + static_cast<std::ptrdiff_t>(*i));
  return group;
}

std::vector<civil::CorridorSection> readCorridorSections(Context& context, pugi::xml_node crossSects,
                                                         const civil::ProfileObject* profile,
                                                         const std::string& speaker, SectionsTrace& trace) {
  struct Placed {
    civil::CorridorSection section;
    pugi::xml_node node;
  };
  std::vector<Placed> placed;
  eachChild(crossSects, "CrossSect", [&](pugi::xml_node node) {
    const auto station = context.number(node, "sta", speaker);
    if (!station) {
      context.error(node, speaker + ": a section has no station; left out");
      return;
    }
    civil::CorridorSection section;
    section.station = *station;
    section.label = attributeText(node, "name");
    if (isComputed(node)) section.origin = civil::SectionOrigin::Computed;
    const std::string who = speaker + ": section at " + shownNumber(*station);
    eachChild(node, "DesignCrossSectSurf", [&](pugi::xml_node surface) {
      civil::SectionPart part;
      part.codes = splitCodes(context, attributeText(surface, "name"));
      eachChild(surface, "CrossSectPnt", [&](pugi::xml_node pointNode) {
        Vec2 point;
        if (!readSectionPoint(context, pointNode, who, point)) return;
        part.points.push_back({point.x, point.y, splitCodes(context, attributeText(pointNode, "code"))});
      });
      section.parts.push_back(std::move(part));
    });
    placed.push_back({std::move(section), node});
  });
  std::stable_sort(placed.begin(), placed.end(),
                   [](const Placed& a, const Placed& b) { return a.section.station < b.section.station; });
  const auto sameStation = [&](const Placed& a, const Placed& b) {
    if (b.section.station - a.section.station > civil::kSameStation) return false;
    context.warn(crossSects,
                 speaker + ": two sections stand at " + shownNumber(a.section.station) + "; the first one holds");
    return true;
  };
  placed.erase(std::unique(placed.begin(), placed.end(), sameStation), placed.end());
  std::vector<civil::CorridorSection> sections;
  sections.reserve(placed.size());
  trace = {crossSects, false, {}};
  for (Placed& p : placed) {
    sections.push_back(std::move(p.section));
    trace.sections.push_back(p.node);
  }

  if (profile != nullptr) {
    const auto stated = property(feature(crossSects, "lvx_corridorSections"), "elevation");
    const bool isAbsolute = stated == "absolute" || (stated != "relative" && areAbsolute(sections, profile->profile));
    trace.isAbsolute = isAbsolute;
    if (isAbsolute) {
      for (auto& section : sections) {
        const double design = profile->profile.elevationAt(section.station).value_or(0.0);
        for (auto& part : section.parts) {
          for (auto& point : part.points) point.elevation -= design;
        }
      }
    }
  }
  return sections;
}

}  // namespace lvx::landxml::detail
