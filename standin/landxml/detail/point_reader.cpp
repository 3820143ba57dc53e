#include "landxml/detail/point_reader.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <unordered_map>
#include <unordered_set>

#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

namespace {

/// The number that a name is; empty for other names.
std::optional<std::int32_t> plainInteger(std::string_view name) {
  if (name.empty() || name.front() < '0' || name.front() > '9') return std::nullopt;
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  return error == std::errc() && end == name.data() + name.size() ? std::optional(number) : std::nullopt;
}

/// A CgPoint that only names a point given elsewhere, as the members of a group do.
bool isReference(pugi::xml_node node) {
  const std::string_view reference = attribute(node, "pntRef");
  if (reference.empty() || !trimmed(text(node)).empty()) return false;
  const std::string_view name = attribute(node, "name");
  return name.empty() || name == reference;
}

class PointReader {
 public:
  explicit PointReader(Context& context) : context_(context) {}
  void read();

 private:
  struct Member {
    pugi::xml_node node;
    std::size_t point = 0;  // index in drawing.points, or kReference
  };
  static constexpr std::size_t kReference = static_cast<std::size_t>(-1);

  void readCollection(pugi::xml_node collection, const std::string& inheritedCode);
  std::size_t readPoint(pugi::xml_node node, const std::string& inheritedCode);
  void number();
  void readGroups();
  template <class Add>
  void readNumbersOf(pugi::xml_node ours, Add add, civil::PointGroup& group);

  Context& context_;
  std::vector<std::pair<pugi::xml_node, std::vector<Member>>> collections_;
  std::vector<pugi::xml_node> nodes_;  // of drawing.points
  std::unordered_map<std::ptrdiff_t, std::size_t> pointOfNode_;
  std::unordered_map<std::string, pugi::xml_node> features_;  // of the collection being read
};

void PointReader::read() {
  eachChild(context_.root, "CgPoints", [&](pugi::xml_node node) { readCollection(node, {}); });
  number();
  readGroups();
}

void PointReader::readCollection(pugi::xml_node collection, const std::string& inheritedCode) {
  std::string code = attributeText(collection, "code");
  if (code.empty()) code = inheritedCode;
  features_.clear();
  eachChild(collection, "Feature", [&](pugi::xml_node node) {
    if (attribute(node, "code") == "lvx_point") features_.emplace(attributeText(node, "name"), node);
  });
  std::vector<Member> members;
  eachChild(collection, "CgPoint", [&](pugi::xml_node node) {
    if (isReference(node)) {
      members.push_back({node, kReference});
      return;
    }
    const std::size_t point = readPoint(node, code);
    if (point != kReference) members.push_back({node, point});
  });
  collections_.emplace_back(collection, std::move(members));
  eachChild(collection, "CgPoints", [&](pugi::xml_node node) { readCollection(node, code); });
}

std::size_t PointReader::readPoint(pugi::xml_node node, const std::string& inheritedCode) {
  const std::string name = attributeText(node, "name");
  Context::Subject subject(context_);
  const PlacedPoint placed = context_.place(node);
  if (!placed.isPlaced()) {
    context_.warn(node, "point '" + shown(name) + "': " + placed.problem + "; left out");
    return kReference;
  }
  civil::Point point;
  point.position = {placed.plan.x, placed.plan.y, placed.elevation.value_or(0.0)};
  point.hasElevation = placed.elevation.has_value();
  point.name = name;

  std::string code = attributeText(node, "code");
  const std::string description = attributeText(node, "desc");
  std::optional<std::string> handle;
  if (context_.isOurs()) {
    point.description = code;
    point.fullDescription = description;
  } else {
    if (code.empty()) code = inheritedCode;
    point.description = code.empty() ? description : code;
    point.fullDescription = description.empty() ? code : description;
  }
  if (const std::string reference = attributeText(node, "featureRef"); !reference.empty()) {
    if (const auto found = features_.find(reference); found != features_.end()) {
      handle = property(found->second, "handle");
      if (const auto ownName = property(found->second, "name")) point.name = *ownName;
    }
  }
  point.handle = context_.ticket(node, handle);
  subject.is(point.handle);
  pointOfNode_.emplace(node.offset_debug(), context_.drawing.points.size());
  nodes_.push_back(node);
  context_.drawing.points.push_back(std::move(point));
  return context_.drawing.points.size() - 1;
}

/// A name that is a plain integer is the number; other points, and repeated numbers, get the next free one.
void PointReader::number() {
  auto& points = context_.drawing.points;
  std::unordered_set<std::int32_t> taken;
  std::vector<char> isNumbered(points.size(), 0);
  std::int32_t largest = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto given = plainInteger(attribute(nodes_[i], "name"));
    if (!given) continue;
    if (!taken.insert(*given).second) continue;
    points[i].number = *given;
    isNumbered[i] = 1;
    largest = std::max(largest, *given);
  }
  std::int64_t next = std::int64_t{largest} + 1;
  for (std::size_t i = 0; i < points.size(); ++i) {
    civil::Point& point = points[i];
    if (isNumbered[i]) {
      if (point.name == std::to_string(point.number)) point.name.clear();
      continue;
    }
    if (next > std::numeric_limits<std::int32_t>::max()) next = 1;
    while (taken.count(static_cast<std::int32_t>(next)) > 0) ++next;
    point.number = static_cast<std::int32_t>(next++);
    taken.insert(point.number);
    const auto given = plainInteger(attribute(nodes_[i], "name"));
    if (given) {
      const Context::Subject subject(context_, point.handle);
      context_.warn(nodes_[i], "point " + std::to_string(*given) + ": its number stands twice; the later point gets " +
                                   std::to_string(point.number));
    }
  }
}

/// Members of a group of ours that no reference can name: those of other files, and points under names that others have.
template <class Add>
void PointReader::readNumbersOf(pugi::xml_node ours, Add add, civil::PointGroup& group) {
  const auto text = property(ours, "numbers");
  if (!text) return;
  std::unordered_map<std::int32_t, std::size_t> pointOfNumber;
  for (std::size_t i = 0; i < context_.drawing.points.size(); ++i)
    pointOfNumber.emplace(context_.drawing.points[i].number, i);
  const NumberList list = readNumbers(*text);
  if (!list.problem.empty())
    context_.warn(ours, "a point group's numbers: " + list.problem + "; those before it are taken");
  for (const double value : list.values) {
    const auto number = plainInteger(std::to_string(static_cast<std::int64_t>(value)));
    if (!number) continue;
    if (const auto found = pointOfNumber.find(*number); found != pointOfNumber.end())
      add(found->second);
    else
      group.numbersElsewhere.push_back(*number);
  }
}

void PointReader::readGroups() {
  for (const auto& [collection, members] : collections_) {
    const std::string name = attributeText(collection, "name");
    const pugi::xml_node ours = feature(collection, "lvx_pointGroup");
    const bool hasReferences =
        std::any_of(members.begin(), members.end(), [](const Member& m) { return m.point == kReference; });
    const bool isGroup = ours || (!name.empty() && (context_.isOurs() ? hasReferences : !members.empty()));
    civil::PointGroup group;
    Context::Subject subject(context_);
    // A point that stands twice in a group has two rows in its reports.
    const auto add = [&](std::size_t point) { group.numbers.push_back(context_.drawing.points[point].number); };
    for (const Member& member : members) {
      if (member.point != kReference) {
        add(member.point);
        continue;
      }
      const std::string reference(attribute(member.node, "pntRef"));
      const pugi::xml_node target = context_.pointNamed(reference);
      const auto found = target ? pointOfNode_.find(target.offset_debug()) : pointOfNode_.end();
      if (found != pointOfNode_.end())
        add(found->second);
      else
        context_.warn(member.node,
                      "point group '" + shown(name) + "': there is no point '" + shown(reference) + "'; passed over");
    }
    if (!isGroup) continue;
    readNumbersOf(ours, add, group);
    group.name = name;
    group.description = property(ours, "desc").value_or(attributeText(collection, "desc"));
    group.handle = context_.ticket(collection, property(ours, "handle"));
    subject.is(group.handle);
    context_.drawing.pointGroups.push_back(std::move(group));
  }
}

}  // namespace

void readPoints(Context& context) { PointReader(context).read(); }

}  // namespace lvx::landxml::detail
