#include "landxml/detail/point_group_writer.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

#include "civil/sibling_names.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

using civil::Point;
using civil::PointGroup;

namespace {

template <class Use>
void eachCgPoint(Node collection, Use use) {
  eachElement(collection, [&](Node node) {
    if (isNamed(node, "CgPoint"))
      use(node);
    else if (isNamed(node, "CgPoints"))
      eachCgPoint(node, use);
  });
}

class PointGroupWriter {
 public:
  explicit PointGroupWriter(FileChange& change) : change_(change) {}
  void write();

 private:
  /// How a file tells who is in a group.
  struct Members {
    std::vector<std::int32_t> named;    // of this file's points, by reference
    std::vector<std::int32_t> numbers;  // of others, as the file says them

    friend bool operator==(const Members&, const Members&) = default;
  };

  void pairPoints();
  void collectNames();
  [[nodiscard]] Members membersOf(const PointGroup& group) const;
  [[nodiscard]] Members storedMembersOf(const PointGroup& group) const;
  [[nodiscard]] bool isSame(const PointGroup& now, const PointGroup& stored) const;
  void add(const PointGroup& group);
  void change(const PointGroup& now, const PointGroup& stored);
  void changeMembers(const PointGroup& now, const PointGroup& stored, Node node);
  void remove(const PointGroup& group);
  [[nodiscard]] std::string referenceText(std::int32_t number, Node like) const;
  [[nodiscard]] Markup featureOf(const PointGroup& group, const Members& members, Node like) const;
  static std::string numbersText(const Members& members);

  FileChange& change_;
  bool knowsPoints_ = false;
  std::unordered_map<std::int32_t, std::size_t> places_;   // of the file's points in the file, by their numbers now
  std::vector<std::int32_t> numbers_;                      // now, of the file's points
  std::unordered_map<std::int32_t, std::size_t> inFile_;   // by their numbers in the file
  std::unordered_map<std::string, std::ptrdiff_t> first_;  // the first CgPoint of each name
};

/// Points never change, so those of the file stand in the drawing in the file's order, if under other numbers.
void PointGroupWriter::pairPoints() {
  if (knowsPoints_) return;
  knowsPoints_ = true;
  const auto& stored = change_.stored.points;
  for (const Point& point : change_.drawing.points) {
    if (point.file != change_.terms.file) continue;
    places_.emplace(point.number, numbers_.size());
    numbers_.push_back(point.number);
  }
  if (numbers_.size() != stored.size())
    failSaving("the drawing's points aren't those of the file; groups of them can't be saved there", change_.path);
  for (std::size_t i = 0; i < stored.size(); ++i) inFile_.emplace(stored[i].number, i);
  eachChild(change_.root, "CgPoints", [&](Node collection) {
    eachCgPoint(collection, [&](Node node) {
      const std::string_view name = attribute(node, "name");
      if (!name.empty()) first_.emplace(std::string(name), node.place());
    });
  });
}

/// The reference that leads to the point; empty where none does.
std::string PointGroupWriter::referenceText(std::int32_t number, Node like) const {
  const auto place = places_.find(number);
  if (place == places_.end()) return {};
  const Node node = change_.places.nodeOf(change_.stored.points[place->second].handle);
  const std::string name(attribute(node, "name"));
  const auto first = first_.find(name);
  if (name.empty() || first == first_.end() || first->second != node.place()) return {};
  return '<' + FileEditor::nameLike(like, "CgPoint") + " pntRef=\"" + escapedAttribute(name) + "\"/>";
}

PointGroupWriter::Members PointGroupWriter::membersOf(const PointGroup& group) const {
  Members members;
  for (const std::int32_t number : group.numbers) {
    const auto place = places_.find(number);
    if (!referenceText(number, change_.root).empty())
      members.named.push_back(number);
    else
      members.numbers.push_back(place == places_.end() ? number : change_.stored.points[place->second].number);
  }
  members.numbers.insert(members.numbers.end(), group.numbersElsewhere.begin(), group.numbersElsewhere.end());
  std::sort(members.numbers.begin(), members.numbers.end());
  return members;
}

/// The same of what the file holds, in the drawing's numbers.
PointGroupWriter::Members PointGroupWriter::storedMembersOf(const PointGroup& group) const {
  PointGroup now;
  for (const std::int32_t number : group.numbers) {
    const auto place = inFile_.find(number);
    if (place != inFile_.end()) now.numbers.push_back(numbers_[place->second]);
  }
  now.numbersElsewhere = group.numbersElsewhere;
  return membersOf(now);
}

bool PointGroupWriter::isSame(const PointGroup& now, const PointGroup& stored) const {
  return civil::savedName(now) == civil::savedName(stored) && now.description == stored.description &&
         membersOf(now) == storedMembersOf(stored);
}

std::string PointGroupWriter::numbersText(const Members& members) {
  std::string text;
  for (const std::int32_t number : members.numbers) text += (text.empty() ? "" : " ") + std::to_string(number);
  return text;
}

Markup PointGroupWriter::featureOf(const PointGroup& group, const Members& members, Node like) const {
  std::vector<std::pair<std::string, std::string>> properties{{"handle", change_.terms.handleText(group.handle)}};
  if (const std::string numbers = numbersText(members); !numbers.empty()) properties.emplace_back("numbers", numbers);
  return change_.markup.featureMarkup(like, {}, "lvx_pointGroup", properties);
}

void PointGroupWriter::write() {
  const std::vector<civil::FileNumber> files = filesOfPointGroups(change_.drawing);
  std::unordered_map<civil::Handle, const PointGroup*> now;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i] == change_.terms.file)
      now.emplace(change_.drawing.pointGroups[i].handle, &change_.drawing.pointGroups[i]);
  }
  if (now.empty() && change_.stored.pointGroups.empty()) return;
  pairPoints();
  std::unordered_set<civil::Handle> known;
  for (const PointGroup& stored : change_.stored.pointGroups) {
    known.insert(stored.handle);
    const auto found = now.find(stored.handle);
    if (found == now.end())
      remove(stored);
    else if (!isSame(*found->second, stored))
      change(*found->second, stored);
  }
  for (std::size_t i = 0; i < files.size(); ++i) {
    const PointGroup& group = change_.drawing.pointGroups[i];
    if (files[i] == change_.terms.file && known.count(group.handle) == 0) add(group);
  }
}

void PointGroupWriter::add(const PointGroup& group) {
  const Node root = change_.root;
  const Members members = membersOf(group);
  change_.addChild(root, "CgPoints", [&](const Layout& layout) {
    const std::string name = FileEditor::nameLike(root, "CgPoints");
    const Layout inner = layout.inner();
    std::string text = '<' + name + " name=\"" + escapedAttribute(civil::savedName(group)) + '"';
    if (!group.description.empty()) text += " desc=\"" + escapedAttribute(group.description) + '"';
    text += '>';
    for (const std::int32_t number : members.named) text += inner.lead + referenceText(number, root);
    text += inner.lead;
    featureOf(group, members, root).print(inner, text);
    return text + layout.lead + "</" + name + '>';
  });
}

void PointGroupWriter::change(const PointGroup& now, const PointGroup& stored) {
  change_.begin();
  const Node node = change_.places.nodeOf(stored.handle);
  if (civil::savedName(now) != civil::savedName(stored)) change_.setText(node, "name", civil::savedName(now));
  const Node ours = feature(node, "lvx_pointGroup");
  if (now.description != stored.description) {
    if (ours && property(ours, "desc"))
      change_.setProperty(ours, "desc", now.description);
    else
      change_.setText(node, "desc", now.description);
  }
  if (membersOf(now) != storedMembersOf(stored)) changeMembers(now, stored, node);
}

void PointGroupWriter::changeMembers(const PointGroup& now, const PointGroup& stored, Node node) {
  const Members members = membersOf(now);
  const Members before = storedMembersOf(stored);
  std::unordered_map<std::int32_t, std::size_t> places;
  std::vector<Node> nodes;
  std::unordered_map<std::ptrdiff_t, std::int32_t> numberOf;  // by the places of the points themselves
  for (const std::int32_t number : before.named) {
    const auto& point = change_.stored.points[places_.at(number)];
    numberOf.emplace(change_.places.nodeOf(point.handle).place(), number);
  }
  eachChild(node, "CgPoint", [&](Node point) {
    const std::string name(attribute(point, "pntRef").empty() ? attribute(point, "name") : attribute(point, "pntRef"));
    const auto first = first_.find(name);
    if (first == first_.end()) return;
    const auto number = numberOf.find(first->second);
    if (number != numberOf.end() && places.emplace(number->second, nodes.size()).second) nodes.push_back(point);
  });
  std::vector<char> stays(nodes.size(), 0);
  std::vector<FileChange::Item> items;
  std::size_t next = 0;
  for (const std::int32_t number : members.named) {
    const auto found = places.find(number);
    if (found != places.end() && found->second >= next) {
      next = found->second + 1;
      stays[found->second] = 1;
      items.push_back({nodes[found->second], {}});
    } else {
      items.push_back({{}, referenceText(number, node)});
    }
  }
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (stays[i] != 0) continue;
    if (!trimmed(text(nodes[i])).empty()) {
      failSaving("point group '" + stored.name +
                     "' holds its points themselves in the file, so that none can leave it; "
                     "a new group can hold the others",
                 change_.path);
    }
    change_.remove(nodes[i]);
  }
  change_.insertNew(node, items);

  const std::string numbersNow = numbersText(members);
  const Node ours = feature(node, "lvx_pointGroup");
  if (!ours) {
    change_.editor.append(node, featureOf(now, members, node));
    change_.places.setGiven(now.handle);
  } else if (members.numbers != before.numbers) {
    change_.setProperty(ours, "numbers", numbersNow);
  }
}

/// Where the collection holds points themselves, it stays with them and only ceases to be a group.
void PointGroupWriter::remove(const PointGroup& group) {
  change_.begin();
  const Node node = change_.places.nodeOf(group.handle);
  bool holdsPoints = static_cast<bool>(child(node, "CgPoints"));
  eachChild(node, "CgPoint", [&](Node point) { holdsPoints = holdsPoints || !trimmed(text(point)).empty(); });
  if (!holdsPoints) {
    change_.remove(node);
    return;
  }
  eachChild(node, "CgPoint", [&](Node point) {
    if (trimmed(text(point)).empty() && !attribute(point, "pntRef").empty() && attribute(point, "name").empty())
      change_.remove(point);
  });
  if (const Node ours = feature(node, "lvx_pointGroup")) change_.remove(ours);
  if (!change_.trace.isOurs) change_.setText(node, "name", {});
  change_.places.setGiven(group.handle);
}

}  // namespace

std::vector<civil::FileNumber> filesOfPointGroups(const civil::Drawing& drawing) {
  std::vector<civil::FileNumber> files;
  files.reserve(drawing.pointGroups.size());
  std::unordered_map<std::int32_t, civil::FileNumber> fileOf;
  for (const PointGroup& group : drawing.pointGroups) {
    if (group.file != civil::kNoFile) {
      files.push_back(group.file);
      continue;
    }
    if (fileOf.empty()) {
      for (const Point& point : drawing.points) fileOf.emplace(point.number, point.file);
    }
    std::optional<civil::FileNumber> file;
    for (const std::int32_t number : group.numbers) {
      const auto found = fileOf.find(number);
      const civil::FileNumber its = found == fileOf.end() ? 0 : found->second;
      if (!file) file = its;
      if (*file != its) {
        file = 0;
        break;
      }
    }
    files.push_back(file.value_or(0));
  }
  return files;
}

void writePointGroups(FileChange& change) { PointGroupWriter(change).write(); }

}  // namespace lvx::landxml::detail
