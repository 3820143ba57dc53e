#include "landxml/detail/point_reader.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>
#include <optional>
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
bool isReference(Node node) {
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
  // There may be millions of points: nothing here takes more than some bytes of each.
  struct Collection {
    Node node;
    std::size_t firstPoint = 0;  ///< index in drawing.points; its own points stand there one behind the other
    std::size_t members = 0;     ///< points that were read and references
    bool hasReferences = false;
  };

  void readCollection(Node collection, const std::string& inheritedCode);
  /// False for one without a place, which is left out.
  bool readPoint(Node node, const std::string& inheritedCode);
  /// Equal texts share their memory, as far as equal ones stood shortly before.
  [[nodiscard]] civil::PointTexts textsOf(std::string_view name, std::string_view description,
                                          std::string_view fullDescription);
  void number();
  void readGroups();
  template <class Add>
  void readNumbersOf(Node ours, Add add, civil::PointGroup& group);
  [[nodiscard]] std::optional<std::size_t> pointAt(Node node) const;

  Context& context_;
  /// Of a point that was read, by its index; its handle is a ticket until the whole file is read.
  [[nodiscard]] std::size_t placeOf(std::size_t point) const {
    return static_cast<std::size_t>(context_.positionOf(context_.drawing.points[point].handle));
  }

  static constexpr std::size_t kRecentTexts = 1024;
  std::vector<Collection> collections_;
  std::vector<std::uint32_t> byPlace_;  // indices of drawing.points by place; empty where they stand so
  std::vector<bool> isNameLeft_;        // the name is the number that the file gives: not kept so far
  std::vector<civil::PointTexts> recentTexts_{kRecentTexts};  // by their hashes
  /// What a Feature says of the points that refer to it.
  struct PointFeature {
    std::optional<std::string> handle;
    std::optional<std::string> name;
  };
  // Of the collection being read, by their names, and by those of their points.
  std::unordered_map<std::string, PointFeature> features_;
  std::unordered_map<std::string, PointFeature> featuresOfPoints_;
  std::optional<std::unordered_map<std::int32_t, std::size_t>> pointOfNumber_;
};

std::size_t countPoints(Node collection) {
  std::size_t count = 0;
  eachElement(collection, [&](Node node) {
    if (isNamed(node, "CgPoint")) ++count;
    if (isNamed(node, "CgPoints")) count += countPoints(node);
  });
  return count;
}

void PointReader::read() {
  std::size_t count = 0;
  eachChild(context_.root, "CgPoints", [&](Node node) { count += countPoints(node); });
  context_.drawing.points.reserve(count);
  isNameLeft_.reserve(count);
  eachChild(context_.root, "CgPoints", [&](Node node) { readCollection(node, {}); });
  number();
  readGroups();
}

void PointReader::readCollection(Node collection, const std::string& inheritedCode) {
  std::string code = attributeText(collection, "code");
  if (code.empty()) code = inheritedCode;
  features_.clear();
  featuresOfPoints_.clear();
  eachChild(collection, "Feature", [&](Node node) {
    if (attribute(node, "code") != "lvx_point") return;
    // Old versions have no names of Features to refer to: there the Feature names the point.
    const auto point = property(node, "point");
    auto& features = point ? featuresOfPoints_ : features_;
    features.try_emplace(point ? *point : attributeText(node, "name"),
                         PointFeature{property(node, "handle"), property(node, "name")});
  });
  Collection row{.node = collection, .firstPoint = context_.drawing.points.size()};
  eachChild(collection, "CgPoint", [&](Node node) {
    if (isReference(node)) {
      row.hasReferences = true;
      ++row.members;
    } else if (readPoint(node, code)) {
      ++row.members;
    }
  });
  collections_.push_back(row);
  eachChild(collection, "CgPoints", [&](Node node) { readCollection(node, code); });
}

civil::PointTexts PointReader::textsOf(std::string_view name, std::string_view description,
                                       std::string_view fullDescription) {
  const std::hash<std::string_view> hash;
  const std::size_t slot = (hash(name) + 3 * hash(description) + 5 * hash(fullDescription)) % kRecentTexts;
  civil::PointTexts& recent = recentTexts_[slot];
  if (recent.name() != name || recent.description() != description || recent.fullDescription() != fullDescription)
    recent = {name, description, fullDescription};
  return recent;
}

bool PointReader::readPoint(Node node, const std::string& inheritedCode) {
  const std::string name = attributeText(node, "name");
  Context::Subject subject(context_);
  const PlacedPoint placed = context_.place(node);
  if (!placed.isPlaced()) {
    context_.warn(node, "point '" + shown(name) + "': " + placed.problem + "; left out");
    return false;
  }
  civil::Point point;
  point.position = {placed.plan.x, placed.plan.y, placed.elevation.value_or(0.0)};
  point.hasElevation = placed.elevation.has_value();

  std::string code = attributeText(node, "code");
  const std::string description = attributeText(node, "desc");
  std::optional<std::string> ownName;
  std::optional<std::string> handle;
  if (!context_.isOurs() && code.empty()) code = inheritedCode;
  const std::string reference = attributeText(node, "featureRef");
  const auto& features = reference.empty() ? featuresOfPoints_ : features_;
  if (const auto found = features.find(reference.empty() ? name : reference); found != features.end()) {
    handle = found->second.handle;
    ownName = found->second.name;
  }
  const auto number = plainInteger(name);
  const bool isNameLeft = !ownName && number && name == std::to_string(*number);
  const std::string_view keptName = isNameLeft ? std::string_view() : std::string_view(ownName ? *ownName : name);
  if (context_.isOurs())
    point.texts = textsOf(keptName, code, description);
  else
    point.texts = textsOf(keptName, code.empty() ? description : code, description.empty() ? code : description);
  isNameLeft_.push_back(isNameLeft);
  point.handle = context_.ticket(node, handle);
  subject.is(point.handle);
  context_.drawing.points.push_back(std::move(point));
  return true;
}

/// A name that is a plain integer is the number; other points, and repeated numbers, get the next free one.
void PointReader::number() {
  auto& points = context_.drawing.points;
  const auto numberGiven = [&](std::size_t point) {
    return plainInteger(attribute(context_.nodeAt(placeOf(point)), "name"));
  };
  struct Given {
    std::int32_t number = 0;
    std::uint32_t point = 0;
  };
  std::vector<Given> given;
  given.reserve(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (const auto number = numberGiven(i)) given.push_back({*number, static_cast<std::uint32_t>(i)});
  }
  const auto isLess = [](const Given& a, const Given& b) { return a.number < b.number; };
  std::stable_sort(given.begin(), given.end(), isLess);
  // Of several points of one number the first keeps it.
  given.erase(
      std::unique(given.begin(), given.end(), [](const Given& a, const Given& b) { return a.number == b.number; }),
      given.end());
  std::vector<bool> isNumbered(points.size(), false);
  for (const Given& row : given) {
    points[row.point].number = row.number;
    isNumbered[row.point] = true;
  }
  const auto isTaken = [&](std::int64_t number) {
    return std::binary_search(given.begin(), given.end(), Given{static_cast<std::int32_t>(number), 0}, isLess);
  };
  std::unordered_set<std::int32_t> wrapped;  // given out from below, since none above was left
  std::int64_t next = given.empty() ? 1 : std::int64_t{given.back().number} + 1;
  bool isWrapped = false;
  for (std::size_t i = 0; i < points.size(); ++i) {
    civil::Point& point = points[i];
    if (isNumbered[i]) {
      if (point.texts.name() == std::to_string(point.number)) point.texts.setName({});
      continue;
    }
    if (next > std::numeric_limits<std::int32_t>::max()) {
      next = 1;
      isWrapped = true;
    }
    while (isTaken(next) || wrapped.count(static_cast<std::int32_t>(next)) > 0) ++next;
    point.number = static_cast<std::int32_t>(next++);
    if (isWrapped) wrapped.insert(point.number);
    if (const auto number = numberGiven(i)) {
      if (isNameLeft_[i]) point.texts.setName(std::to_string(*number));
      const Context::Subject subject(context_, point.handle);
      context_.warn(context_.nodeAt(placeOf(i)), "point " + std::to_string(*number) +
                                                     ": its number stands twice; the later point gets " +
                                                     std::to_string(point.number));
    }
  }

  bool isInOrder = true;
  for (std::size_t i = 1; i < points.size() && isInOrder; ++i) isInOrder = placeOf(i - 1) < placeOf(i);
  if (isInOrder) return;
  byPlace_.resize(points.size());
  std::iota(byPlace_.begin(), byPlace_.end(), 0U);
  std::sort(byPlace_.begin(), byPlace_.end(),
            [&](std::uint32_t a, std::uint32_t b) { return placeOf(a) < placeOf(b); });
}

std::optional<std::size_t> PointReader::pointAt(Node node) const {
  if (!node) return std::nullopt;
  const auto place = static_cast<std::size_t>(node.place());
  const auto pointOf = [&](std::size_t i) { return byPlace_.empty() ? i : byPlace_[i]; };
  std::size_t low = 0;
  std::size_t high = context_.drawing.points.size();
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    if (placeOf(pointOf(middle)) < place)
      low = middle + 1;
    else
      high = middle;
  }
  if (low == context_.drawing.points.size() || placeOf(pointOf(low)) != place) return std::nullopt;
  return pointOf(low);
}

/// Members of a group of ours that no reference can name: those of other files, and points under names that others have.
template <class Add>
void PointReader::readNumbersOf(Node ours, Add add, civil::PointGroup& group) {
  const auto text = property(ours, "numbers");
  if (!text) return;
  if (!pointOfNumber_) {
    pointOfNumber_.emplace();
    for (std::size_t i = 0; i < context_.drawing.points.size(); ++i)
      pointOfNumber_->emplace(context_.drawing.points[i].number, i);
  }
  const NumberList list = readNumbers(*text);
  if (!list.problem.empty())
    context_.warn(ours, "a point group's numbers: " + list.problem + "; those before it are taken");
  for (const double value : list.values) {
    const auto number = plainInteger(std::to_string(static_cast<std::int64_t>(value)));
    if (!number) continue;
    if (const auto found = pointOfNumber_->find(*number); found != pointOfNumber_->end())
      add(found->second);
    else
      group.numbersElsewhere.push_back(*number);
  }
}

void PointReader::readGroups() {
  const std::size_t count = context_.drawing.points.size();
  for (const auto& [collection, firstPoint, members, hasReferences] : collections_) {
    const std::string name = attributeText(collection, "name");
    const Node ours = feature(collection, "lvx_pointGroup");
    const bool isGroup = ours || (!name.empty() && (context_.isOurs() ? hasReferences : members > 0));
    if (!isGroup && !hasReferences) continue;
    civil::PointGroup group;
    Context::Subject subject(context_);
    if (isGroup) group.numbers.reserve(members);
    // A point that stands twice in a group has two rows in its reports.
    const auto add = [&](std::size_t point) {
      if (isGroup) group.numbers.push_back(context_.drawing.points[point].number);
    };
    std::size_t next = firstPoint;
    eachChild(collection, "CgPoint", [&](Node node) {
      if (next < count && placeOf(next) == static_cast<std::size_t>(node.place())) {
        add(next++);
        return;
      }
      if (!isReference(node)) return;
      const std::string reference(attribute(node, "pntRef"));
      if (const auto found = pointAt(context_.pointNamed(reference)))
        add(*found);
      else
        context_.warn(node,
                      "point group '" + shown(name) + "': there is no point '" + shown(reference) + "'; passed over");
    });
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
