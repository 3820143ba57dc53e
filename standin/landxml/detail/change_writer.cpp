#include "landxml/detail/change_writer.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "civil/section_shape.h"
#include "civil/sibling_names.h"
#include "landxml/detail/alignment_writer.h"
#include "landxml/detail/context.h"
#include "landxml/detail/file_change.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/point_group_writer.h"
#include "landxml/detail/section_markup.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

using civil::CorridorSection;
using civil::SectionOrigin;

namespace {

using civil::kSameStation;

bool isSameSection(const CorridorSection& a, const CorridorSection& b) {
  return a.label == b.label && a.origin == b.origin && civil::haveSamePoints(a, b);
}

/// One pair of a section in memory and one in the file; either may be missing.
struct SectionPair {
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t now = kNone;
  std::size_t stored = kNone;
};

std::vector<SectionPair> pairSections(const std::vector<CorridorSection>& now,
                                      const std::vector<CorridorSection>& stored) {
  std::vector<SectionPair> pairs;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < now.size() || j < stored.size()) {
    SectionPair pair;
    if (j == stored.size() || (i < now.size() && now[i].station < stored[j].station - kSameStation)) {
      pair.now = i++;
    } else if (i == now.size() || stored[j].station < now[i].station - kSameStation) {
      pair.stored = j++;
    } else {
      pair.now = i++;
      pair.stored = j++;
    }
    pairs.push_back(pair);
  }
  return pairs;
}

bool haveSameSections(const civil::Region& now, const civil::Region& stored) {
  return std::equal(now.sections.begin(), now.sections.end(), stored.sections.begin(), stored.sections.end(),
                    [](const auto& a, const auto& b) { return a.station == b.station && isSameSection(a, b); });
}

bool isSameRegion(const civil::Region& now, const civil::Region& stored) {
  return now.stations == stored.stations && now.pendingLabels == stored.pendingLabels && haveSameSections(now, stored);
}

/// One region with all that its sections are written by.
struct Place {
  const civil::Corridor* corridor = nullptr;
  const civil::Baseline* baseline = nullptr;
  const civil::Region* now = nullptr;
  const civil::Region* stored = nullptr;
  const RegionTrace* trace = nullptr;
};

class ChangeWriter {
 public:
  explicit ChangeWriter(FileChange& change);
  void run();

 private:
  void pairRegions();

  // What a first save adds.
  void ensureHandles();
  void becomeOurs();
  void ensureHandle(Node node, civil::Handle handle);
  void writeSites();
  void adoptCorridor(std::size_t corridor);
  [[nodiscard]] Markup regionFeature(const Place& place, Node like);

  // One region.
  void writeRegion(const Place& place);
  void writeStations(const Place& place);
  void writeBounds(const Place& place);
  void writeAddedStations(const Place& place);
  void writeSections(const Place& place);
  void changeSection(const Place& place, const CorridorSection& now, const CorridorSection& stored, Node node);
  void writeOwnCrossSects(const Place& place);
  [[nodiscard]] std::vector<std::pair<double, std::string>> newLabels(const Place& place) const;

  [[nodiscard]] Node nodeOf(civil::Handle handle) const { return change_.places.nodeOf(handle); }

  FileChange& change_;
  const civil::Drawing& stored_;
  const Trace& trace_;
  FileEditor& editor_;
  const FileTerms& terms_;
  const std::string& path_;
  const Node root_;
  const SectionMarkup& markup_;
  std::vector<const civil::Corridor*> corridors_;  // of the file, as in the drawing
  std::vector<std::vector<Place>> places_;         // by corridor
  std::unordered_map<std::ptrdiff_t, int> users_;  // regions by the place of their CrossSects
  std::map<std::ptrdiff_t, std::pair<Node, std::vector<Markup>>> newRoadways_;  // by their Alignments
};

ChangeWriter::ChangeWriter(FileChange& change)
    : change_(change),
      stored_(change.stored),
      trace_(change.trace),
      editor_(change.editor),
      terms_(change.terms),
      path_(change.path),
      root_(change.root),
      markup_(change.markup) {
  for (const civil::Corridor& corridor : change.drawing.corridors) {
    if (corridor.file == terms_.file) corridors_.push_back(&corridor);
  }
  pairRegions();
}

void ChangeWriter::pairRegions() {
  bool fits = corridors_.size() == stored_.corridors.size();
  for (std::size_t c = 0; fits && c < stored_.corridors.size(); ++c) {
    const auto& now = *corridors_[c];
    const auto& old = stored_.corridors[c];
    auto& places = places_.emplace_back();
    fits = now.handle == old.handle && now.baselines.size() == old.baselines.size();
    for (std::size_t b = 0; fits && b < old.baselines.size(); ++b) {
      fits = now.baselines[b].regions.size() == old.baselines[b].regions.size();
      for (std::size_t r = 0; fits && r < old.baselines[b].regions.size(); ++r) {
        const RegionTrace& trace = trace_.corridors[c].baselines[b][r];
        places.push_back({&now, &now.baselines[b], &now.baselines[b].regions[r], &old.baselines[b].regions[r], &trace});
        if (trace.sections.node) ++users_[trace.sections.node.place()];
      }
    }
  }
  if (!fits) failSaving("the drawing's corridors aren't those of the file; they can't be saved there", path_);
}

void ChangeWriter::run() {
  writeAlignments(change_);
  writePointGroups(change_);
  const auto isChanged = [](const Place& place) { return !isSameRegion(*place.now, *place.stored); };
  bool changesOthers = false;  // a corridor of another program
  for (std::size_t c = 0; c < places_.size(); ++c) {
    for (const Place& place : places_[c]) {
      if (place.trace->sections.node && change_.isSeparated(place.trace->sections.node))
        changesOthers = changesOthers || !trace_.corridors[c].feature;
      if (!isChanged(place)) continue;
      change_.begin();
      writeRegion(place);
      changesOthers = changesOthers || !trace_.corridors[c].feature;
    }
  }
  if (!change_.hasBegun()) return;
  // All of them together: the order of corridors is that of their Roadways.
  if (changesOthers || !trace_.hasDictionary) {
    for (std::size_t c = 0; c < places_.size(); ++c) {
      if (!trace_.corridors[c].feature) adoptCorridor(c);
    }
  }
  // What has its handle by its place in the order of all keeps it where one of them goes.
  if (change_.hasRemoved() || !trace_.hasDictionary) ensureHandles();
  if (!trace_.hasDictionary) becomeOurs();
  for (auto& [unused, roadways] : newRoadways_) {
    Markup collection{FileEditor::nameLike(root_, "Roadways"), {}, std::move(roadways.second), false};
    editor_.insertAfter(roadways.first, collection);
  }
}

// ---------------------------------------------------------------- objects

void ChangeWriter::ensureHandle(Node node, civil::Handle handle) {
  if (handle == 0 || !node || change_.places.isGiven(handle) || change_.places.isRemoved(node)) return;
  change_.places.setGiven(handle);
  struct Row {
    std::string_view element;
    const char* code;
  };
  constexpr Row kRows[] = {
      {"Alignment", "lvx_object"},   {"ProfAlign", "lvx_object"},           {"ProfSurf", "lvx_object"},
      {"Surface", "lvx_object"},     {"CrossSects", "lvx_sampleLineGroup"}, {"CrossSect", "lvx_sampleLine"},
      {"CgPoints", "lvx_pointGroup"}};
  const auto row =
      std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& r) { return isNamed(node, r.element); });
  if (row == std::end(kRows))
    return;  // points keep theirs by their order, sites and corridors have Features of their own
  const std::string text = terms_.handleText(handle);
  const Node existing = feature(node, row->code);
  if (!existing)
    editor_.append(node, markup_.featureMarkup(node, {}, row->code, {{"handle", text}}));
  else if (const Node property = propertyNode(existing, "handle"))
    editor_.setAttribute(property, "value", text);
  else
    editor_.addProperty(existing, "handle", text);
}

void ChangeWriter::ensureHandles() {
  // Corridors have their handles in Features of their own; their place may be that of a sample line group.
  for (const civil::Corridor& corridor : stored_.corridors) change_.places.setGiven(corridor.handle);
  for (const ObjectTrace& object : trace_.objects) ensureHandle(object.node, object.handle);
}

void ChangeWriter::becomeOurs() {
  writeSites();
  if (markup_.hasDictionaries()) {
    editor_.append(root_, Markup{FileEditor::nameLike(root_, "FeatureDictionary"),
                                 {{"name", "lvx"}, {"version", std::string(kGuestVersion)}},
                                 {},
                                 false});
  }
}

void ChangeWriter::writeSites() {
  const Node project = child(root_, "Project");
  // Without a Project the sites go on by their order: we don't name the user's project for him.
  if (!project || stored_.sites.empty() || feature(project, "lvx_sites")) return;
  Markup list = markup_.featureMarkup(project, {}, "lvx_sites", {});
  for (const civil::Site& site : stored_.sites) {
    std::vector<std::pair<std::string, std::string>> properties{{"handle", terms_.handleText(site.handle)}};
    if (!site.description.empty()) properties.emplace_back("desc", site.description);
    list.children.push_back(markup_.featureMarkup(project, site.name, "lvx_site", properties));
  }
  editor_.append(project, std::move(list));
}

Markup ChangeWriter::regionFeature(const Place& place, Node like) {
  const Node sections = place.trace->sections.node;
  const civil::Handle handle = change_.places.handleOf(sections);
  ensureHandle(sections, handle);
  if (!feature(sections, "lvx_corridorSections")) {
    std::vector<std::pair<std::string, std::string>> properties{
        {"elevation", place.trace->sections.isAbsolute ? "absolute" : "relative"}};
    if (change_.isSeparated(sections)) properties.emplace_back("handle", terms_.handleText(handle));
    editor_.append(sections, markup_.featureMarkup(sections, {}, "lvx_corridorSections", properties));
  }
  std::string stations;
  for (const double station : place.now->stations)
    stations += (stations.empty() ? "" : " ") + terms_.lengthText(station);
  Markup region = markup_.featureMarkup(like, place.now->name, "lvx_region",
                                        {{"staStart", terms_.lengthText(place.now->startStation)},
                                         {"staEnd", terms_.lengthText(place.now->endStation)},
                                         {"crossSects", attributeText(sections, "name")},
                                         {"crossSectsHandle", terms_.handleText(handle)},
                                         {"stations", stations}});
  for (const auto& [station, label] : newLabels(place))
    region.children.push_back(markup_.addedStation(like, station, label));
  return region;
}

/// Gives a corridor that the reader made of another program's sections its Features, so that it can hold stations.
void ChangeWriter::adoptCorridor(std::size_t index) {
  const civil::Corridor& corridor = *corridors_[index];
  const CorridorTrace& trace = trace_.corridors[index];
  Markup ours = markup_.featureMarkup(root_, {}, "lvx_corridor", {{"handle", terms_.handleText(corridor.handle)}});
  auto place = places_[index].begin();
  for (const civil::Baseline& baseline : corridor.baselines) {
    ensureHandle(nodeOf(baseline.alignment->handle), baseline.alignment->handle);
    std::vector<std::pair<std::string, std::string>> properties{
        {"alignment", civil::savedName(*baseline.alignment)},
        {"alignmentHandle", terms_.handleText(baseline.alignment->handle)}};
    if (baseline.profile != nullptr) {
      ensureHandle(nodeOf(baseline.profile->handle), baseline.profile->handle);
      properties.emplace_back("profile", civil::savedName(*baseline.profile));
      properties.emplace_back("profileHandle", terms_.handleText(baseline.profile->handle));
    }
    Markup line = markup_.featureMarkup(root_, baseline.name, "lvx_baseline", properties);
    for (std::size_t r = 0; r < baseline.regions.size(); ++r) {
      line.children.push_back(regionFeature(*place++, root_));
    }
    ours.children.push_back(std::move(line));
  }
  if (trace.roadway) {
    editor_.append(trace.roadway, std::move(ours));
    return;
  }
  const civil::AlignmentObject& alignment = *corridor.baselines.front().alignment;
  // Right behind its alignment's collection, where its place in the order of corridors is.
  const Node alignments = nodeOf(alignment.handle).parent();
  Markup roadway{FileEditor::nameLike(root_, "Roadway"),
                 {{"name", corridor.name}, {"alignmentRefs", civil::savedName(alignment)}},
                 {std::move(ours)},
                 false};
  auto& roadways = newRoadways_[alignments.place()];
  roadways.first = alignments;
  roadways.second.push_back(std::move(roadway));
}

// ---------------------------------------------------------------- regions

void ChangeWriter::writeRegion(const Place& place) {
  if (place.trace->feature) {
    writeStations(place);
    writeAddedStations(place);
  }
  if (haveSameSections(*place.now, *place.stored)) return;
  const Node sections = place.trace->sections.node;
  if (sections && users_[sections.place()] == 1)
    writeSections(place);
  else
    writeOwnCrossSects(place);
}

void ChangeWriter::writeStations(const Place& place) {
  if (place.now->stations == place.stored->stations) return;
  // Stations that stood there keep their digits.
  const std::string given = property(place.trace->feature, "stations").value_or("");
  std::unordered_map<double, std::string> digits;
  for (std::size_t i = 0; i < given.size();) {
    while (i < given.size() && isBlank(given[i])) ++i;
    const std::size_t from = i;
    while (i < given.size() && !isBlank(given[i])) ++i;
    double value = 0.0;
    const std::string word = given.substr(from, i - from);
    if (readSingleNumber(word, value)) digits.emplace(value * terms_.lengthFactor, word);
  }
  std::string text;
  for (const double station : place.now->stations) {
    const auto found = digits.find(station);
    if (!text.empty()) text += ' ';
    text += found == digits.end() ? terms_.lengthText(station) : found->second;
  }
  if (const Node node = propertyNode(place.trace->feature, "stations"))
    editor_.setAttribute(node, "value", text);
  else
    editor_.addProperty(place.trace->feature, "stations", text);
  writeBounds(place);
}

/// A region whose bounds the file doesn't say reaches from its first station to its last one: with more of them it would
/// be read as another one.
void ChangeWriter::writeBounds(const Place& place) {
  const Node region = place.trace->feature;
  const auto given = [&](const char* label) -> std::optional<double> {
    double station = 0.0;
    const auto text = property(region, label);
    return text && readSingleNumber(*text, station) ? std::optional(station * terms_.lengthFactor) : std::nullopt;
  };
  if (given("staStart") && given("staEnd")) return;
  const auto write = [&](const char* label, double station) {
    if (given(label) == station) return;
    if (const Node node = propertyNode(region, label))
      editor_.setAttribute(node, "value", terms_.lengthText(station));
    else
      editor_.addProperty(region, label, terms_.lengthText(station));
  };
  write("staStart", place.now->startStation);
  write("staEnd", place.now->endStation);
}

/// Labels that the file doesn't hold yet: of stations that wait for their section, and of those that were added and
/// computed since the file was read.
std::vector<std::pair<double, std::string>> ChangeWriter::newLabels(const Place& place) const {
  std::map<double, std::string> labels;
  const auto isStored = [&](double station, const std::string& label) {
    return std::any_of(place.trace->added.begin(), place.trace->added.end(), [&](const AddedStationTrace& added) {
      return std::abs(added.station - station) <= kSameStation && added.label == label;
    });
  };
  for (const auto& [station, label] : place.now->pendingLabels) {
    if (!isStored(station, label)) labels.emplace(station, label);
  }
  for (const CorridorSection& section : place.now->sections) {
    if (section.label.empty() || section.origin != SectionOrigin::Computed) continue;
    const auto& stored = place.stored->sections;
    const auto at = std::lower_bound(stored.begin(), stored.end(), section.station - kSameStation,
                                     [](const CorridorSection& s, double station) { return s.station < station; });
    const bool isNew = at == stored.end() || at->station > section.station + kSameStation || at->label != section.label;
    if (isNew && !isStored(section.station, section.label)) labels.emplace(section.station, section.label);
  }
  return {labels.begin(), labels.end()};
}

void ChangeWriter::writeAddedStations(const Place& place) {
  const auto& sections = place.now->sections;
  for (const AddedStationTrace& added : place.trace->added) {
    const auto at = std::lower_bound(sections.begin(), sections.end(), added.station - kSameStation,
                                     [](const CorridorSection& s, double station) { return s.station < station; });
    const bool hasSection = at != sections.end() && at->station <= added.station + kSameStation;
    const auto waiting = place.now->pendingLabels.find(added.station);
    const bool waits = waiting != place.now->pendingLabels.end() && waiting->second == added.label;
    // The label of a section stands with the section; the one here is how it came about.
    const bool fits = hasSection ? !at->label.empty() || added.label.empty() : waits;
    if (!fits) editor_.remove(added.node);
  }
  for (const auto& [station, label] : newLabels(place)) {
    editor_.append(place.trace->feature, markup_.addedStation(place.trace->feature, station, label));
  }
}

void ChangeWriter::writeSections(const Place& place) {
  const SectionsTrace& trace = place.trace->sections;
  const std::vector<SectionPair> pairs = pairSections(place.now->sections, place.stored->sections);

  // The section whose parts a new one resembles: the last one before it that the file holds, else the first one after.
  std::vector<Node> patterns(pairs.size());
  Node near;
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if (pairs[i].stored != SectionPair::kNone) near = trace.sections[pairs[i].stored];
    patterns[i] = near;
  }
  near = {};
  Node next;  // the first one behind a new section that stays
  std::vector<Node> followers(pairs.size());
  for (std::size_t i = pairs.size(); i-- > 0;) {
    if (pairs[i].stored != SectionPair::kNone) near = trace.sections[pairs[i].stored];
    if (!patterns[i]) patterns[i] = near;
    followers[i] = next;
    if (pairs[i].stored != SectionPair::kNone && pairs[i].now != SectionPair::kNone) next = near;
  }
  Node previous;
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const SectionPair& pair = pairs[i];
    if (pair.now == SectionPair::kNone) {
      editor_.remove(trace.sections[pair.stored]);
      continue;
    }
    const CorridorSection& now = place.now->sections[pair.now];
    if (pair.stored != SectionPair::kNone) {
      previous = trace.sections[pair.stored];
      changeSection(place, now, place.stored->sections[pair.stored], previous);
      continue;
    }
    const Node sibling = followers[i] ? followers[i] : previous;
    const Layout layout = sibling ? editor_.layoutOf(sibling) : editor_.layoutInside(trace.node);
    const std::string text =
        markup_.sectionText(*place.baseline, now, trace.node, patterns[i], trace.isAbsolute, layout);
    if (followers[i])
      editor_.insertBefore(followers[i], text);
    else if (previous)
      editor_.insertAfter(previous, text);
    else
      editor_.prepend(trace.node, layout.lead + text);
  }
}

void ChangeWriter::changeSection(const Place& place, const CorridorSection& now, const CorridorSection& stored,
                                 Node node) {
  const bool isAbsolute = place.trace->sections.isAbsolute;
  if (now.station != stored.station) editor_.setAttribute(node, "sta", terms_.lengthText(now.station));
  if (now.label != stored.label && markup_.hasSectionNames()) {
    if (now.label.empty())
      editor_.removeAttribute(node, "name");
    else
      editor_.setAttribute(node, "name", now.label);
  }

  const std::vector<Node> parts = childrenNamed(node, "DesignCrossSectSurf");
  bool sameShape = civil::haveSameShape(now, stored) && parts.size() == now.parts.size();
  std::vector<std::vector<Node>> points;
  for (std::size_t i = 0; sameShape && i < parts.size(); ++i) {
    points.push_back(childrenNamed(parts[i], "CrossSectPnt"));
    sameShape = points.back().size() == now.parts[i].points.size();  // not where the reader left one out
  }
  if (sameShape) {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      for (std::size_t p = 0; p < points[i].size(); ++p) {
        const civil::SectionPoint& point = now.parts[i].points[p];
        if (civil::isSamePlace(point, stored.parts[i].points[p])) continue;
        editor_.setContent(points[i][p], markup_.pointText(*place.baseline, now, point, isAbsolute));
      }
    }
  } else if (!civil::haveSamePoints(now, stored)) {
    const Layout layout = parts.empty() ? editor_.layoutInside(node) : editor_.layoutOf(parts.front());
    std::string text = markup_.partsText(*place.baseline, now, node, node, isAbsolute, layout.lead);
    if (parts.empty()) {
      const std::vector<Node> surfaces = childrenNamed(node, "CrossSectSurf");
      if (surfaces.empty())
        editor_.prepend(node, text);
      else
        editor_.insertAfter(surfaces.back(), text.substr(layout.lead.size()));
    } else {
      if (!text.empty()) text.erase(0, layout.lead.size());
      editor_.replace(parts.front(), parts.back(), text);
    }
  }

  if (now.origin == stored.origin) return;
  if (const Node ours = feature(node, "lvx_section")) {
    const Node origin = propertyNode(ours, "origin");
    if (now.origin == SectionOrigin::Given)
      editor_.remove(ours);
    else if (origin)
      editor_.setAttribute(origin, "value", "computed");
    else
      editor_.addProperty(ours, "origin", "computed");
  } else {
    editor_.append(node, markup_.featureMarkup(node, {}, "lvx_section", {{"origin", "computed"}}));
  }
}

/// For a region without sections in the file, or with sections that another region uses too.
void ChangeWriter::writeOwnCrossSects(const Place& place) {
  const Node alignment = nodeOf(place.baseline->alignment->handle);
  std::unordered_set<std::string> taken;
  eachChild(alignment, "CrossSects", [&](Node node) { taken.insert(attributeText(node, "name")); });
  const std::string wanted = place.corridor->name + " | " + place.baseline->name + " | " + place.now->name;
  std::string name = wanted;
  for (int n = 2; taken.count(name) > 0; ++n) name = wanted + " (" + std::to_string(n) + ")";

  const bool isAbsolute = place.baseline->profile != nullptr;
  const Layout layout = editor_.layoutInside(alignment);
  const Layout inside = layout.inner();
  const std::string element = FileEditor::nameLike(alignment, "CrossSects");
  const Node pattern = place.trace->sections.sections.empty() ? Node() : place.trace->sections.sections.front();
  std::string text = layout.lead + '<' + element + " name=\"" + escapedAttribute(name) + "\">";
  for (const CorridorSection& section : place.now->sections) {
    editor_.lookUp();
    text += inside.lead + markup_.sectionText(*place.baseline, section, alignment, pattern, isAbsolute, inside);
  }
  text += inside.lead;
  markup_.featureMarkup(alignment, {}, "lvx_corridorSections", {{"elevation", isAbsolute ? "absolute" : "relative"}})
      .print(inside, text);
  editor_.append(alignment, text + layout.lead + "</" + element + '>');

  const Node region = place.trace->feature;
  if (const Node property = propertyNode(region, "crossSects"))
    editor_.setAttribute(property, "value", name);
  else
    editor_.addProperty(region, "crossSects", name);
  if (const Node property = propertyNode(region, "crossSectsHandle")) editor_.remove(property);
}

}  // namespace

void writeChanges(const civil::Drawing& drawing, const civil::Drawing& stored, const Trace& trace,
                  const FileTerms& terms, FileEditor& editor, const std::string& path) {
  FileChange change(drawing, stored, trace, terms, editor, path);
  ChangeWriter(change).run();
}

}  // namespace lvx::landxml::detail
