#include "landxml/detail/alignment_writer.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "civil/sibling_names.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/sample_line_markup.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

using civil::AlignmentObject;
using civil::ProfileObject;
using civil::SampleLine;
using civil::SampleLineGroup;
using civil::VerticalPoint;

namespace {

template <class Use>
void eachAlignment(const civil::Drawing& drawing, Use use) {
  for (const auto& alignment : drawing.siteless.alignments) use(*alignment);
  for (const civil::Site& site : drawing.sites) {
    for (const auto& alignment : site.alignments) use(*alignment);
  }
}

template <class Object>
std::string nameAttributes(const Object& object) {
  std::string text = " name=\"" + escapedAttribute(civil::savedName(object)) + '"';
  if (!object.description.empty()) text += " desc=\"" + escapedAttribute(object.description) + '"';
  return text;
}

template <class Object>
bool hasSameName(const Object& a, const Object& b) {
  return civil::savedName(a) == civil::savedName(b);
}

class AlignmentWriter {
 public:
  explicit AlignmentWriter(FileChange& change);
  void write();

 private:
  // Sample line groups.
  void writeGroups(const AlignmentObject& now, const AlignmentObject& stored, Node node);
  void addGroup(const AlignmentObject& alignment, const SampleLineGroup& group, Node node);
  void removeGroup(const SampleLineGroup& group);
  void changeGroup(const AlignmentObject& alignment, const SampleLineGroup& now, const SampleLineGroup& stored);
  void changeLines(const AlignmentObject& alignment, const SampleLineGroup& now, const SampleLineGroup& stored,
                   Node node);
  void changeLine(const AlignmentObject& alignment, const SampleLine& now, const SampleLine& stored, Node node);
  [[nodiscard]] bool isSamePlace(const SampleLine& a, const SampleLine& b) const;
  [[nodiscard]] bool isSameLine(const SampleLine& a, const SampleLine& b) const;
  [[nodiscard]] bool haveSameLines(const SampleLineGroup& a, const SampleLineGroup& b) const;
  /// Whether the sections of a corridor stand in the group's element and the change would be one of theirs too.
  [[nodiscard]] bool wouldChangeSections(const SampleLineGroup& now, const SampleLineGroup& stored) const;
  void separate(const SampleLineGroup& group);
  void nameByCount(const std::unordered_map<civil::Handle, const SampleLineGroup*>& groups,
                   const AlignmentObject& stored);
  [[nodiscard]] std::string groupText(const AlignmentObject& alignment, const SampleLineGroup& group, Node like,
                                      const Layout& layout) const;

  bool countsOtherwise_ = false;  // an element of a group went or came in front of others

  // Profiles.
  void writeProfiles(const AlignmentObject& now, const AlignmentObject& stored, Node node);
  void removeProfiles(const AlignmentObject& alignment, const std::vector<const ProfileObject*>& profiles, Node filled);
  void changeProfile(const ProfileObject& now, const ProfileObject& stored);
  [[nodiscard]] std::string profileText(const ProfileObject& profile, Node like, const Layout& layout) const;
  [[nodiscard]] std::string pointsText(const civil::Profile& profile, Node like, const std::string& lead) const;
  [[nodiscard]] bool haveSamePoints(const civil::Profile& a, const civil::Profile& b) const;

  FileChange& change_;
  FileEditor& editor_;
  const FileTerms& terms_;
  SampleLineMarkup lines_;
  std::unordered_set<std::ptrdiff_t> sections_;  // places of the CrossSects of corridors
};

AlignmentWriter::AlignmentWriter(FileChange& change)
    : change_(change),
      editor_(change.editor),
      terms_(change.terms),
      lines_(change.drawing, change.terms, change.markup, change.root) {
  for (const CorridorTrace& corridor : change.trace.corridors) {
    for (const auto& regions : corridor.baselines) {
      for (const RegionTrace& region : regions) {
        if (region.sections.node) sections_.insert(region.sections.node.place());
      }
    }
  }
}

void AlignmentWriter::write() {
  std::unordered_map<civil::Handle, const AlignmentObject*> alignments;
  eachAlignment(change_.drawing, [&](const AlignmentObject& alignment) {
    if (alignment.file == terms_.file) alignments.emplace(alignment.handle, &alignment);
  });
  eachAlignment(change_.stored, [&](const AlignmentObject& stored) {
    const auto found = alignments.find(stored.handle);
    const Node node = change_.places.nodeOf(stored.handle);
    if (found == alignments.end() || !node)
      failSaving("the drawing's alignments aren't those of the file; they can't be saved there", change_.path);
    writeProfiles(*found->second, stored, node);
    writeGroups(*found->second, stored, node);
  });
}

// ---------------------------------------------------------------- sample line groups

bool AlignmentWriter::isSamePlace(const SampleLine& a, const SampleLine& b) const {
  return terms_.isSameLength(a.station, b.station) &&
         std::equal(a.vertices.begin(), a.vertices.end(), b.vertices.begin(), b.vertices.end(),
                    [&](civil::Vec2 v, civil::Vec2 w) {
                      return terms_.isSameLength(v.x, w.x) && terms_.isSameLength(v.y, w.y);
                    });
}

bool AlignmentWriter::isSameLine(const SampleLine& a, const SampleLine& b) const {
  return a.handle == b.handle && a.name == b.name && isSamePlace(a, b);
}

bool AlignmentWriter::haveSameLines(const SampleLineGroup& a, const SampleLineGroup& b) const {
  return std::equal(a.lines.begin(), a.lines.end(), b.lines.begin(), b.lines.end(),
                    [&](const SampleLine& x, const SampleLine& y) { return isSameLine(x, y); });
}

void AlignmentWriter::writeGroups(const AlignmentObject& now, const AlignmentObject& stored, Node node) {
  std::unordered_map<civil::Handle, const SampleLineGroup*> groups;
  for (const SampleLineGroup& group : now.sampleLineGroups) groups.emplace(group.handle, &group);
  std::unordered_set<civil::Handle> known;
  countsOtherwise_ = false;
  for (const SampleLineGroup& group : stored.sampleLineGroups) {
    known.insert(group.handle);
    const auto found = groups.find(group.handle);
    if (found == groups.end())
      removeGroup(group);
    else
      changeGroup(now, *found->second, group);
  }
  if (countsOtherwise_) nameByCount(groups, stored);
  for (const SampleLineGroup& group : now.sampleLineGroups) {
    if (known.count(group.handle) == 0) addGroup(now, group, node);
  }
}

std::string AlignmentWriter::groupText(const AlignmentObject& alignment, const SampleLineGroup& group, Node like,
                                       const Layout& layout) const {
  const std::string name = FileEditor::nameLike(like, "CrossSects");
  const Layout inner = layout.inner();
  std::string text = '<' + name + nameAttributes(group) + '>';
  for (const SampleLine& line : group.lines) {
    editor_.lookUp();
    text += inner.lead + lines_.lineText(alignment, line, like, inner);
  }
  text += inner.lead;
  change_.markup.featureMarkup(like, {}, "lvx_sampleLineGroup", {{"handle", terms_.handleText(group.handle)}})
      .print(inner, text);
  return text + layout.lead + "</" + name + '>';
}

void AlignmentWriter::addGroup(const AlignmentObject& alignment, const SampleLineGroup& group, Node node) {
  change_.addChild(node, "CrossSects", [&](const Layout& layout) { return groupText(alignment, group, node, layout); });
}

void AlignmentWriter::removeGroup(const SampleLineGroup& group) {
  const Node node = change_.places.nodeOf(group.handle);
  if (sections_.count(node.place()) > 0) {
    separate(group);
    return;
  }
  change_.remove(node);
  countsOtherwise_ = true;
}

/// Groups without a name are called by their count among the others, which is another one now.
void AlignmentWriter::nameByCount(const std::unordered_map<civil::Handle, const SampleLineGroup*>& groups,
                                  const AlignmentObject& stored) {
  for (const SampleLineGroup& group : stored.sampleLineGroups) {
    const auto found = groups.find(group.handle);
    const Node node = change_.places.nodeOf(group.handle);
    if (found == groups.end() || change_.isSeparated(node) || !hasSameName(*found->second, group)) continue;
    if (attributeText(node, "name").empty()) change_.setText(node, "name", civil::savedName(group));
  }
}

/// What another program wrote as one thing becomes two: its element stays as the sections of the corridor alone, which
/// refers to it by the handle that was the group's.
void AlignmentWriter::separate(const SampleLineGroup& group) {
  change_.begin();
  const Node node = change_.places.nodeOf(group.handle);
  change_.setSeparated(node);
  if (const Node ours = feature(node, "lvx_sampleLineGroup")) change_.remove(ours);
  if (const Node sections = feature(node, "lvx_corridorSections"))
    change_.setProperty(sections, "handle", terms_.handleText(group.handle));
  change_.places.setGiven(group.handle);
  for (const SampleLine& line : group.lines) {
    change_.places.setGiven(line.handle);
    if (const Node ours = feature(change_.places.nodeOf(line.handle), "lvx_sampleLine")) change_.remove(ours);
  }
}

bool AlignmentWriter::wouldChangeSections(const SampleLineGroup& now, const SampleLineGroup& stored) const {
  if (sections_.count(change_.places.nodeOf(stored.handle).place()) == 0) return false;
  const auto isSameSection = [&](const SampleLine& a, const SampleLine& b) {
    return a.handle == b.handle && a.name == b.name && terms_.isSameLength(a.station, b.station);
  };
  return !hasSameName(now, stored) ||
         !std::equal(now.lines.begin(), now.lines.end(), stored.lines.begin(), stored.lines.end(), isSameSection);
}

void AlignmentWriter::changeGroup(const AlignmentObject& alignment, const SampleLineGroup& now,
                                  const SampleLineGroup& stored) {
  const bool hasSame = haveSameLines(now, stored);
  if (hasSame && hasSameName(now, stored) && now.description == stored.description) return;
  const Node node = change_.places.nodeOf(stored.handle);
  if (wouldChangeSections(now, stored)) {
    separate(stored);
    countsOtherwise_ = true;
    editor_.insertAfter(node, groupText(alignment, now, node, editor_.layoutOf(node)));
    return;
  }
  if (!hasSameName(now, stored)) change_.setText(node, "name", civil::savedName(now));
  if (now.description != stored.description) change_.setText(node, "desc", now.description);
  if (!hasSame) changeLines(alignment, now, stored, node);
}

/// Whether the line says neither where it lies nor how far it reaches, and so takes the width of others.
bool borrowsItsWidth(Node node) {
  return !property(feature(node, "lvx_sampleLine"), "vertices") && !child(node, "CrossSectSurf") &&
         !child(node, "DesignCrossSectSurf");
}

void AlignmentWriter::changeLines(const AlignmentObject& alignment, const SampleLineGroup& now,
                                  const SampleLineGroup& stored, Node node) {
  std::unordered_map<civil::Handle, std::size_t> places;
  for (std::size_t i = 0; i < stored.lines.size(); ++i) places.emplace(stored.lines[i].handle, i);
  const Layout layout = change_.layoutOfChildren(node, "CrossSect");
  std::vector<char> stays(stored.lines.size(), 0);
  std::vector<FileChange::Item> items;
  items.reserve(now.lines.size());
  std::size_t next = 0;  // a line that comes before one that stood in front of it is written anew
  for (const SampleLine& line : now.lines) {
    editor_.lookUp();
    const auto found = places.find(line.handle);
    if (found == places.end() || found->second < next) {
      items.push_back({{}, lines_.lineText(alignment, line, node, layout)});
      continue;
    }
    next = found->second + 1;
    stays[found->second] = 1;
    const SampleLine& old = stored.lines[found->second];
    const Node section = change_.places.nodeOf(old.handle);
    if (!isSameLine(line, old) || borrowsItsWidth(section)) changeLine(alignment, line, old, section);
    items.push_back({section, {}});
  }
  for (std::size_t i = 0; i < stored.lines.size(); ++i) {
    if (stays[i] == 0) change_.remove(change_.places.nodeOf(stored.lines[i].handle));
  }
  change_.insertNew(node, items);
}

void AlignmentWriter::changeLine(const AlignmentObject& alignment, const SampleLine& now, const SampleLine& stored,
                                 Node node) {
  change_.begin();
  // 1.0 has no name for a CrossSect, which doesn't keep programs from writing one.
  const bool hasAttribute = change_.markup.hasSectionNames() || !attributeText(node, "name").empty();
  if (now.name != stored.name && hasAttribute) change_.setText(node, "name", now.name);
  if (!terms_.isSameLength(now.station, stored.station)) change_.setText(node, "sta", terms_.lengthText(now.station));

  if (!isSamePlace(now, stored)) {
    const std::string skew = lines_.skewText(alignment, now);
    const bool isTurned = skew != lines_.skewText(alignment, stored);
    if (isTurned) change_.setText(node, "angleSkew", skew);
    // What other programs measured stays true as long as the line runs where it ran.
    const bool runsElsewhere = isTurned || !terms_.isSameLength(now.station, stored.station);
    eachChild(node, "CrossSectSurf", [&](Node surface) {
      if (runsElsewhere || lines_.isSampled(attributeText(surface, "name"))) editor_.remove(surface);
    });
    editor_.prepend(node, lines_.groundsText(alignment, now, node, editor_.layoutInside(node).lead));
  }

  const Node ours = feature(node, "lvx_sampleLine");
  if (!ours) {
    editor_.append(node, lines_.featureOf(now, node));
  } else {
    if (now.name != stored.name && !hasAttribute) change_.setProperty(ours, "name", now.name);
    if (!change_.places.isGiven(now.handle)) change_.setProperty(ours, "handle", terms_.handleText(now.handle));
    const bool hasVertices = property(ours, "vertices").has_value();
    if (!hasVertices || !isSamePlace(now, stored)) change_.setProperty(ours, "vertices", lines_.verticesText(now));
  }
  change_.places.setGiven(now.handle);
}

// ---------------------------------------------------------------- profiles

bool AlignmentWriter::haveSamePoints(const civil::Profile& a, const civil::Profile& b) const {
  const auto isSame = [&](double x, double y) { return terms_.isSameLength(x, y); };
  return a.isGround() == b.isGround() &&
         std::equal(a.points().begin(), a.points().end(), b.points().begin(), b.points().end(),
                    [&](const VerticalPoint& p, const VerticalPoint& q) {
                      return p.kind == q.kind && isSame(p.station, q.station) && isSame(p.elevation, q.elevation) &&
                             isSame(p.length, q.length) && isSame(p.lengthOut, q.lengthOut) &&
                             isSame(p.radius, q.radius);
                    }) &&
         std::equal(a.gaps().begin(), a.gaps().end(), b.gaps().begin(), b.gaps().end(),
                    [&](const civil::ProfileGap& g, const civil::ProfileGap& h) {
                      return isSame(g.startStation, h.startStation) && isSame(g.endStation, h.endStation);
                    });
}

void AlignmentWriter::writeProfiles(const AlignmentObject& now, const AlignmentObject& stored, Node node) {
  std::unordered_map<civil::Handle, const ProfileObject*> profiles;
  for (const ProfileObject& profile : now.profiles) profiles.emplace(profile.handle, &profile);
  std::unordered_set<civil::Handle> known;
  std::vector<const ProfileObject*> removed;
  for (const ProfileObject& profile : stored.profiles) {
    known.insert(profile.handle);
    const auto found = profiles.find(profile.handle);
    if (found == profiles.end())
      removed.push_back(&profile);
    else
      changeProfile(*found->second, profile);
  }
  Node collection;  // takes the new ones
  eachChild(node, "Profile", [&](Node candidate) { collection = candidate; });
  std::vector<const ProfileObject*> added;
  for (const ProfileObject& profile : now.profiles) {
    if (known.count(profile.handle) == 0) added.push_back(&profile);
  }
  removeProfiles(now, removed, added.empty() ? Node() : collection);
  if (added.empty()) return;
  if (!collection) {
    change_.addChild(node, "CoordGeom", [&](const Layout& layout) {
      const std::string name = FileEditor::nameLike(node, "Profile");
      const Layout inner = layout.inner();
      std::string text = '<' + name + '>';
      for (const ProfileObject* profile : added) text += inner.lead + profileText(*profile, node, inner);
      return text + layout.lead + "</" + name + '>';
    });
    return;
  }
  change_.begin();
  Node last;
  eachElement(collection, [&](Node element) {
    if (isNamed(element, "ProfAlign") || isNamed(element, "ProfSurf")) last = element;
  });
  for (const ProfileObject* profile : added) {
    const Layout layout = last ? editor_.layoutOf(last) : editor_.layoutInside(collection);
    const std::string text = profileText(*profile, node, layout);
    if (last)
      editor_.insertAfter(last, text);
    else
      editor_.prepend(collection, layout.lead + text);
  }
}

/// A Profile that loses all of its own goes with them, but for `filled`, which gets new ones.
void AlignmentWriter::removeProfiles(const AlignmentObject& alignment,
                                     const std::vector<const ProfileObject*>& profiles, Node filled) {
  std::unordered_map<std::ptrdiff_t, std::size_t> losses;
  for (const ProfileObject* const profile : profiles) {
    for (const civil::Corridor& corridor : change_.stored.corridors) {
      for (const civil::Baseline& baseline : corridor.baselines) {
        if (baseline.profile != profile) continue;
        failSaving("profile '" + profile->name + "' of alignment '" + alignment.name +
                       "' can't be removed from the file: the elevations of corridor '" + corridor.name +
                       "' are measured from it",
                   change_.path);
      }
    }
    ++losses[change_.places.nodeOf(profile->handle).parent().place()];
  }
  std::unordered_set<std::ptrdiff_t> gone;
  for (const ProfileObject* const profile : profiles) {
    const Node node = change_.places.nodeOf(profile->handle);
    const Node collection = node.parent();
    std::size_t count = 0;
    eachElement(collection, [&](Node) { ++count; });
    if (count > losses[collection.place()] || (filled && collection.place() == filled.place())) {
      change_.remove(node);
    } else if (gone.insert(collection.place()).second) {
      change_.remove(collection);
    }
  }
}

std::string AlignmentWriter::pointsText(const civil::Profile& profile, Node like, const std::string& lead) const {
  const auto place = [&](const auto& point) {
    return terms_.lengthText(point.station) + ' ' + terms_.lengthText(point.elevation);
  };
  std::string text;
  if (profile.isGround()) {
    const std::string name = FileEditor::nameLike(like, "PntList2D");
    for (const std::vector<civil::ProfilePoint>& piece : civil::groundPieces(profile)) {
      text += lead + '<' + name + '>';
      for (std::size_t i = 0; i < piece.size(); ++i) text += (i > 0 ? " " : "") + place(piece[i]);
      text += "</" + name + '>';
    }
    return text;
  }
  for (const VerticalPoint& point : profile.points()) {
    const char* local = "PVI";
    std::string measures;
    const auto add = [&](const char* label, double length) {
      measures += ' ' + std::string(label) + "=\"" + terms_.lengthText(length) + '"';
    };
    switch (point.kind) {
      case civil::VerticalCurveKind::None:
        break;
      case civil::VerticalCurveKind::Parabola:
        local = "ParaCurve";
        add("length", point.length);
        break;
      case civil::VerticalCurveKind::UnsymmetricParabola:
        local = "UnsymParaCurve";
        add("lengthIn", point.length);
        add("lengthOut", point.lengthOut);
        break;
      case civil::VerticalCurveKind::Circle:
        local = "CircCurve";
        add("length", point.length);
        add("radius", point.radius);
        break;
    }
    const std::string name = FileEditor::nameLike(like, local);
    text += lead + '<' + name + measures + '>' + place(point) + "</" + name + '>';
  }
  return text;
}

std::string AlignmentWriter::profileText(const ProfileObject& profile, Node like, const Layout& layout) const {
  const std::string name = FileEditor::nameLike(like, profile.profile.isGround() ? "ProfSurf" : "ProfAlign");
  const Layout inner = layout.inner();
  std::string text =
      '<' + name + nameAttributes(profile) + '>' + pointsText(profile.profile, like, inner.lead) + inner.lead;
  change_.markup.featureMarkup(like, {}, "lvx_object", {{"handle", terms_.handleText(profile.handle)}})
      .print(inner, text);
  return text + layout.lead + "</" + name + '>';
}

void AlignmentWriter::changeProfile(const ProfileObject& now, const ProfileObject& stored) {
  const Node node = change_.places.nodeOf(stored.handle);
  if (!hasSameName(now, stored)) change_.setText(node, "name", civil::savedName(now));
  if (now.description != stored.description) change_.setText(node, "desc", now.description);
  if (haveSamePoints(now.profile, stored.profile)) return;
  if (now.profile.isGround() != stored.profile.isGround())
    failSaving("profile '" + now.name + "' changed from ground to design or back; that can't be saved", change_.path);
  change_.begin();
  const std::string lead = editor_.layoutInside(node).lead;
  std::string text = pointsText(now.profile, node, lead);
  Node first;
  Node last;
  eachElement(node, [&](Node element) {
    if (isNamed(element, "Feature")) return;
    if (!first) first = element;
    last = element;
  });
  if (first)
    editor_.replace(first, last, text.substr(std::min(lead.size(), text.size())));
  else
    editor_.prepend(node, text);
}

}  // namespace

void writeAlignments(FileChange& change) { AlignmentWriter(change).write(); }

}  // namespace lvx::landxml::detail
