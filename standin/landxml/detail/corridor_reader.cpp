#include "landxml/detail/corridor_reader.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "landxml/detail/name_list.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/section_reader.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

namespace {

using civil::kSameStation;

class CorridorReader {
 public:
  CorridorReader(Context& context, const std::vector<AlignmentRecord>& alignments)
      : context_(context), alignments_(alignments) {
    for (std::size_t i = 0; i < alignments_.size(); ++i) {
      if (alignments_[i].givenHandle != 0) byHandle_.try_emplace(alignments_[i].givenHandle, i);
      byName_.try_emplace(alignments_[i].object->name, i);
    }
  }
  void read();

 private:
  void readOurs(Node roadway, Node feature);
  void readForeign(const AlignmentRecord& alignment, const std::vector<Node>& designs);
  std::optional<civil::Baseline> readBaseline(Node node, const std::string& speaker, std::vector<RegionTrace>& trace);
  civil::Region readRegion(Node node, const AlignmentRecord& alignment, const civil::ProfileObject* profile,
                           const std::string& speaker, RegionTrace& trace);
  Node sectionsOf(Node region, const AlignmentRecord& alignment);
  /// What baselines on an alignment refer to by name and handle. Made when the first one asks.
  struct Names {
    std::unordered_map<civil::Handle, const civil::ProfileObject*> profilesByHandle;
    std::unordered_map<std::string_view, const civil::ProfileObject*> profiles;
    std::unordered_map<std::string_view, const civil::ProfileObject*> designs;
    std::unordered_map<civil::Handle, Node> sectionsByHandle;       // that of lvx_corridorSections
    std::unordered_map<civil::Handle, Node> sectionsByGroupHandle;  // that of lvx_sampleLineGroup
    std::unordered_map<std::string, Node> ownSections;              // those of a corridor of ours
    std::unordered_map<std::string, Node> sections;                 // the others
  };
  const Names& namesOf(const AlignmentRecord& alignment);
  void collectRoadways();
  std::vector<AddedStationTrace> readAdded(Node region, const std::string& speaker);
  static void settleStations(std::vector<double>& stations);
  static void giveLabels(civil::Region& region, const std::vector<AddedStationTrace>& added);
  const AlignmentRecord* alignmentOf(Node baseline);
  const civil::ProfileObject* profileOf(Node baseline, const AlignmentRecord& alignment, const std::string& speaker);
  std::optional<double> stationProperty(Node node, const char* label, const std::string& speaker);

  Context& context_;
  const std::vector<AlignmentRecord>& alignments_;
  struct Found {
    civil::Corridor corridor;
    CorridorTrace trace;
  };
  std::vector<Found> found_;
  std::unordered_set<std::ptrdiff_t> used_;  // places of the CrossSects that regions of ours refer to
  // Of several the first in the file, in all of these.
  std::unordered_map<civil::Handle, std::size_t> byHandle_;
  std::unordered_map<std::string_view, std::size_t> byName_;
  std::unordered_map<std::string, Node> roadwayOf_;  // by the names of alignments that Roadways refer to
  std::unordered_map<const AlignmentRecord*, Names> names_;
};

const CorridorReader::Names& CorridorReader::namesOf(const AlignmentRecord& alignment) {
  const auto [found, isNew] = names_.try_emplace(&alignment);
  Names& names = found->second;
  if (!isNew) return names;
  const auto& profiles = alignment.object->profiles;
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    const Node node = context_.nodeOf(profiles[i].handle);
    if (const auto handle = Context::parseHandle(property(feature(node, "lvx_object"), "handle")))
      names.profilesByHandle.try_emplace(*handle, &profiles[i]);
    names.profiles.try_emplace(profiles[i].name, &profiles[i]);
    if (!profiles[i].profile.isGround()) names.designs.try_emplace(profiles[i].name, &profiles[i]);
  }
  eachChild(context_.nodeOf(alignment.object->handle), "CrossSects", [&](Node node) {
    const auto handleIn = [&](const char* code) {
      return Context::parseHandle(property(feature(node, code), "handle"));
    };
    if (const auto handle = handleIn("lvx_corridorSections")) names.sectionsByHandle.try_emplace(*handle, node);
    if (const auto handle = handleIn("lvx_sampleLineGroup")) names.sectionsByGroupHandle.try_emplace(*handle, node);
    const bool isOwn = kindOf(node) == SectionsKind::Corridor;
    if (std::string name = attributeText(node, "name"); !name.empty())
      (isOwn ? names.ownSections : names.sections).try_emplace(std::move(name), node);
  });
  return names;
}

const AlignmentRecord* CorridorReader::alignmentOf(Node baseline) {
  if (const auto handle = Context::parseHandle(property(baseline, "alignmentHandle"))) {
    if (const auto found = byHandle_.find(*handle); found != byHandle_.end()) return &alignments_[found->second];
  }
  const auto found = byName_.find(property(baseline, "alignment").value_or(""));
  return found == byName_.end() ? nullptr : &alignments_[found->second];
}

const civil::ProfileObject* CorridorReader::profileOf(Node baseline, const AlignmentRecord& alignment,
                                                      const std::string& speaker) {
  const Names& names = namesOf(alignment);
  if (const auto handle = Context::parseHandle(property(baseline, "profileHandle"))) {
    if (const auto found = names.profilesByHandle.find(*handle); found != names.profilesByHandle.end())
      return found->second;
  }
  const auto name = property(baseline, "profile");
  if (!name || name->empty()) return nullptr;
  if (const auto found = names.profiles.find(*name); found != names.profiles.end()) return found->second;
  context_.warn(baseline, speaker + ": its alignment has no profile '" + shown(*name) + "'; elevations count from 0");
  return nullptr;
}

std::optional<double> CorridorReader::stationProperty(Node node, const char* label, const std::string& speaker) {
  const auto text = property(node, label);
  if (!text) return std::nullopt;
  double value = 0.0;
  if (readSingleNumber(*text, value)) return value;
  context_.warn(node,
                speaker + ": " + label + " '" + shown(*text) + "' is not a number that can be used; taken as missing");
  return std::nullopt;
}

/// The CrossSects that a region of ours refers to; empty for none.
Node CorridorReader::sectionsOf(Node region, const AlignmentRecord& alignment) {
  const std::string name = property(region, "crossSects").value_or("");
  const auto handle = Context::parseHandle(property(region, "crossSectsHandle"));
  // Another program's sections needn't have a name, or have one of their own; they go by their handle. Those that once
  // were a sample line group as well kept its handle, which a group may have by now.
  const Names& names = namesOf(alignment);
  Node found;
  const auto look = [&](const auto& among, const auto& wanted) {
    if (const auto at = among.find(wanted); !found && at != among.end()) found = at->second;
  };
  if (handle) {
    look(names.sectionsByHandle, *handle);
    look(names.sectionsByGroupHandle, *handle);
  }
  if (!name.empty()) {
    look(names.ownSections, name);
    look(names.sections, name);
  }
  if (found) used_.insert(found.place());
  return found;
}

/// The stations that were added to a region, in the order of the file, each with its label.
std::vector<AddedStationTrace> CorridorReader::readAdded(Node region, const std::string& speaker) {
  std::vector<AddedStationTrace> added;
  eachChild(region, "Feature", [&](Node child) {
    if (attribute(child, "code") != "lvx_addedStation") return;
    if (const auto station = stationProperty(child, "sta", speaker))
      added.push_back({child, *station, featureName(child)});
    else
      context_.warn(child, speaker + ": an added station has no station; left out");
  });
  return added;
}

/// Stations ascending, those within kSameStation once.
void CorridorReader::settleStations(std::vector<double>& stations) {
  std::stable_sort(stations.begin(), stations.end());
  stations.erase(
      std::unique(stations.begin(), stations.end(), [](double a, double b) { return b - a <= kSameStation; }),
      stations.end());
}

/// Labels of added stations go to the sections there that have none, else they wait for the rebuild.
void CorridorReader::giveLabels(civil::Region& region, const std::vector<AddedStationTrace>& added) {
  for (const AddedStationTrace& a : added) {
    const auto at = std::lower_bound(region.sections.begin(), region.sections.end(), a.station - kSameStation,
                                     [](const auto& section, double station) { return section.station < station; });
    if (at == region.sections.end() || at->station > a.station + kSameStation) {
      region.pendingLabels.emplace(a.station, a.label);
    } else if (at->label.empty()) {
      at->label = a.label;
    }
  }
}

civil::Region CorridorReader::readRegion(Node node, const AlignmentRecord& alignment,
                                         const civil::ProfileObject* profile, const std::string& speaker,
                                         RegionTrace& trace) {
  civil::Region region;
  trace.feature = node;
  region.name = featureName(node);
  const std::string who = speaker + ": region '" + region.name + "'";
  const std::string sections = property(node, "crossSects").value_or("");
  if (const Node source = sectionsOf(node, alignment))
    region.sections = readCorridorSections(context_, source, profile, who, trace.sections);
  else if (!sections.empty())
    context_.warn(node,
                  who + ": its alignment has no CrossSects '" + shown(sections) + "'; the region has no sections");

  std::vector<double> stations;
  if (const auto given = property(node, "stations")) {
    NumberList list = readNumbers(*given);
    if (!list.problem.empty()) context_.warn(node, who + ": stations: " + list.problem + "; those before it are taken");
    stations = std::move(list.values);
  }
  trace.added = readAdded(node, who);
  // Whatever has a section or was added belongs to the list, also where a file forgot it.
  for (const auto& section : region.sections) stations.push_back(section.station);
  for (const AddedStationTrace& a : trace.added) stations.push_back(a.station);
  settleStations(stations);
  region.stations.insert(stations.begin(), stations.end());
  giveLabels(region, trace.added);

  const auto start = stationProperty(node, "staStart", who);
  const auto end = stationProperty(node, "staEnd", who);
  if ((!start || !end) && stations.empty())
    context_.warn(node, who + ": has neither bounds nor stations; it is kept without length");
  region.startStation = start.value_or(stations.empty() ? end.value_or(0.0) : stations.front());
  region.endStation = end.value_or(stations.empty() ? region.startStation : stations.back());
  if (region.endStation < region.startStation) {
    context_.warn(node, who + ": its bounds stand in the wrong order; they are exchanged");
    std::swap(region.startStation, region.endStation);
  }
  return region;
}

std::optional<civil::Baseline> CorridorReader::readBaseline(Node node, const std::string& speaker,
                                                            std::vector<RegionTrace>& trace) {
  civil::Baseline baseline;
  baseline.name = featureName(node);
  const std::string who = speaker + ": baseline '" + baseline.name + "'";
  const AlignmentRecord* const alignment = alignmentOf(node);
  if (alignment == nullptr) {
    context_.warn(node, who + ": its alignment '" + shown(property(node, "alignment").value_or("")) +
                            "' isn't in the drawing; the baseline is left out");
    return std::nullopt;
  }
  baseline.alignment = alignment->object;
  baseline.profile = profileOf(node, *alignment, who);
  eachChild(node, "Feature", [&](Node child) {
    if (attribute(child, "code") == "lvx_region") {
      baseline.regions.push_back(readRegion(child, *alignment, baseline.profile, who, trace.emplace_back()));
    }
  });
  return baseline;
}

void CorridorReader::readOurs(Node roadway, Node ours) {
  civil::Corridor corridor;
  corridor.name = attributeText(roadway, "name");
  corridor.description = attributeText(roadway, "desc");
  corridor.handle = context_.ticket(roadway, property(ours, "handle"));
  const Context::Subject subject(context_, corridor.handle);
  const std::string speaker = "corridor '" + corridor.name + "'";
  CorridorTrace trace{roadway, ours, {}};
  eachChild(ours, "Feature", [&](Node child) {
    if (attribute(child, "code") != "lvx_baseline") return;
    std::vector<RegionTrace> regions;
    if (auto baseline = readBaseline(child, speaker, regions)) {
      corridor.baselines.push_back(std::move(*baseline));
      trace.baselines.push_back(std::move(regions));
    }
  });
  found_.push_back({std::move(corridor), std::move(trace)});
}

void CorridorReader::collectRoadways() {
  const auto isKnown = [&](const std::string& name) { return byName_.count(name) > 0; };
  eachChild(context_.root, "Roadways", [&](Node collection) {
    eachChild(collection, "Roadway", [&](Node roadway) {
      (void)eachKnownName(attribute(roadway, "alignmentRefs"), isKnown,
                          [&](const std::string& name) { roadwayOf_.try_emplace(name, roadway); });
    });
  });
}

void CorridorReader::readForeign(const AlignmentRecord& alignment, const std::vector<Node>& designs) {
  const auto& object = *alignment.object;
  Node roadway;
  if (const auto found = roadwayOf_.find(object.name); found != roadwayOf_.end()) roadway = found->second;
  civil::Corridor corridor;
  corridor.name = roadway ? attributeText(roadway, "name") : object.name;
  corridor.description = roadway ? attributeText(roadway, "desc") : "";
  corridor.handle = context_.ticket(roadway ? roadway : designs.front(), std::nullopt);
  const Context::Subject subject(context_, corridor.handle);
  const std::string speaker = "corridor '" + corridor.name + "'";

  civil::Baseline baseline;
  baseline.name = object.name;
  baseline.alignment = &object;
  const Names& known = namesOf(alignment);
  const auto profileNamed = [&](const std::string& name) {
    const auto found = known.designs.find(name);
    return found == known.designs.end() ? nullptr : found->second;
  };
  for (const Node design : designs) {
    eachChild(design, "Feature", [&](Node node) {
      const auto names = property(node, "profAlignRefs");
      if (!names || baseline.profile != nullptr) return;
      const auto unknown = eachKnownName(
          *names, [&](const std::string& name) { return profileNamed(name) != nullptr; },
          [&](const std::string& name) {
            if (baseline.profile == nullptr) baseline.profile = profileNamed(name);
          });
      if (unknown)
        context_.warn(node, speaker + ": its alignment has no profile '" + shown(*unknown) +
                                "'; another design profile is taken, where there is one");
    });
  }
  if (baseline.profile == nullptr) {
    const auto first = std::find_if(object.profiles.begin(), object.profiles.end(),
                                    [](const auto& profile) { return !profile.profile.isGround(); });
    if (first != object.profiles.end()) baseline.profile = &*first;
  }

  CorridorTrace trace{roadway, {}, {}};
  std::vector<RegionTrace>& regions = trace.baselines.emplace_back();
  for (const Node design : designs) {
    civil::Region region;
    region.name = attributeText(design, "name");
    if (region.name.empty()) region.name = "R" + std::to_string(baseline.regions.size() + 1);
    region.sections =
        readCorridorSections(context_, design, baseline.profile, speaker, regions.emplace_back().sections);
    for (const auto& section : region.sections) region.stations.insert(region.stations.end(), section.station);
    if (!region.sections.empty()) {
      region.startStation = region.sections.front().station;
      region.endStation = region.sections.back().station;
    }
    baseline.regions.push_back(std::move(region));
  }
  corridor.baselines.push_back(std::move(baseline));
  found_.push_back({std::move(corridor), std::move(trace)});
}

void CorridorReader::read() {
  eachChild(context_.root, "Roadways", [&](Node collection) {
    eachChild(collection, "Roadway", [&](Node roadway) {
      // One Roadway may name several alignments of another program, and so hold a corridor for each.
      eachChild(roadway, "Feature", [&](Node node) {
        if (attribute(node, "code") == "lvx_corridor") readOurs(roadway, node);
      });
    });
  });
  collectRoadways();
  for (const AlignmentRecord& alignment : alignments_) {
    std::vector<Node> designs;
    eachChild(context_.nodeOf(alignment.object->handle), "CrossSects", [&](Node node) {
      const bool isFree = kindOf(node) == SectionsKind::Foreign && used_.count(node.place()) == 0;
      if (isFree && hasDesign(node)) designs.push_back(node);
    });
    if (!designs.empty()) readForeign(alignment, designs);
  }
  std::stable_sort(found_.begin(), found_.end(), [&](const Found& a, const Found& b) {
    return context_.positionOf(a.corridor.handle) < context_.positionOf(b.corridor.handle);
  });
  for (Found& found : found_) {
    context_.drawing.corridors.push_back(std::move(found.corridor));
    if (context_.trace != nullptr) context_.trace->corridors.push_back(std::move(found.trace));
  }
}

}  // namespace

void readCorridors(Context& context, const std::vector<AlignmentRecord>& alignments) {
  CorridorReader(context, alignments).read();
}

}  // namespace lvx::landxml::detail
