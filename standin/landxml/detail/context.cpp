#include "landxml/detail/context.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <numeric>
#include <unordered_set>

#include "civil/drawing_files.h"
#include "civil/each_object.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"
#include "text/handle_text.h"
#include "text/number_text.h"

namespace lvx::landxml::detail {

namespace {

/// Diagnostics beyond this help nobody; the last one says how many there were.
constexpr std::size_t kMostDiagnostics = 10'000;

}  // namespace

std::string shownNumber(double value) { return text::shortText(value, 4); }

Context::Context(civil::Drawing& d, const Document& document, bool swapAxes, Trace* t)
    : drawing(d), root(document.root()), trace(t), document_(document), swapAxes_(swapAxes), points_(document) {
  eachChild(root, "FeatureDictionary", [&](Node node) {
    if (attribute(node, "name") != "lvx") return;
    if (attribute(node, "version") != kGuestVersion) ours_ = true;
    if (trace != nullptr) trace->hasDictionary = true;
  });
  if (trace != nullptr) trace->isOurs = ours_;
  readUnits();
}

void Context::readUnits() {
  Node units;
  eachChild(root, "Units", [&](Node collection) {
    for (const char* const name : {"Metric", "Imperial"}) {
      const auto node = child(collection, name);
      if (!node) continue;
      if (!units)
        units = node;
      else
        warn(node, "units are given twice; the first ones hold");
    }
  });
  if (!units) {
    warn(root, "the file names no units; metres and radians are assumed");
    return;
  }
  drawing.linearUnit = attribute(units, "linearUnit");
  const auto metres = drawing.linearUnit.empty() ? std::nullopt : civil::metresPerUnit(drawing.linearUnit);
  if (metres)
    millimetre_ = 0.001 / *metres;
  else
    warn(units, "linear unit '" + shown(drawing.linearUnit) + "' isn't known; metres are assumed");

  // Some programs write two blanks inside the name.
  std::string angular;
  for (const char c : attribute(units, "angularUnit")) {
    if (c != ' ' || angular.empty() || angular.back() != ' ') angular += c;
  }
  if (angular == "grads")
    angularUnit_ = AngularUnit::Grads;
  else if (angular == "decimal degrees")
    angularUnit_ = AngularUnit::Degrees;
  else if (angular == "decimal dd.mm.ss")
    angularUnit_ = AngularUnit::DegreesMinutesSeconds;
  else if (!angular.empty() && angular != "radians")
    warn(units, "angular unit '" + shown(angular) + "' isn't known; radians are assumed");
}

std::optional<double> Context::angle(std::string_view text) const {
  text = trimmed(text);
  double value = 0.0;
  if (!readSingleNumber(text, value)) return std::nullopt;
  constexpr double kDegree = civil::kPi / 180.0;
  switch (angularUnit_) {
    case AngularUnit::Radians:
      return value;
    case AngularUnit::Grads:
      return value * civil::kPi / 200.0;
    case AngularUnit::Degrees:
      return value * kDegree;
    case AngularUnit::DegreesMinutesSeconds:
      break;
  }
  // Two digits of minutes and two of seconds follow the point, then the seconds' decimals: taken from the digits, since
  // a double would carry 59.99999 seconds into the next minute.
  if (text.find_first_of("eE") != std::string_view::npos) return std::nullopt;
  const auto point = text.find('.');
  std::string digits(point == std::string_view::npos ? std::string_view() : text.substr(point + 1));
  digits.resize(std::max(digits.size(), std::size_t{4}), '0');
  double degrees = 0.0;
  double minutes = 0.0;
  double seconds = 0.0;
  const std::string whole(text.substr(0, point));
  if (!whole.empty() && whole != "-" && whole != "+" && !readSingleNumber(whole, degrees)) return std::nullopt;
  if (!readSingleNumber(digits.substr(0, 2), minutes)) return std::nullopt;
  if (!readSingleNumber(digits.substr(2, 2) + "." + digits.substr(4) + "0", seconds)) return std::nullopt;
  if (minutes >= 60.0 || seconds >= 60.0) return std::nullopt;
  const double size = (std::abs(degrees) + minutes / 60.0 + seconds / 3600.0) * kDegree;
  return text.front() == '-' ? -size : size;
}

std::size_t Context::lineOf(Node where) const {
  return where ? document_.lineAt(static_cast<std::size_t>(where.place())) : 0;
}

void Context::report(civil::Severity severity, Node where, std::string message) {
  if (drawing.diagnostics.size() >= kMostDiagnostics) {
    ++unreported_;
    return;
  }
  drawing.diagnostics.push_back({severity, std::move(message), lineOf(where)});
}

Context::Subject::~Subject() {
  auto& diagnostics = context_.drawing.diagnostics;
  for (std::size_t i = first_; i < diagnostics.size(); ++i) {
    if (diagnostics[i].object == 0) diagnostics[i].object = ticket_;
  }
}

std::optional<double> Context::number(Node node, const char* name, const std::string& speaker,
                                      const Consequence& otherwise) {
  const std::string_view value = attribute(node, name);
  if (value.empty()) return std::nullopt;
  double result = 0.0;
  if (readSingleNumber(value, result)) return result;
  report(otherwise.severity, node,
         speaker + ": " + name + " '" + shown(value) + "' is not a number that can be used; " + otherwise.done);
  return std::nullopt;
}

std::vector<double> Context::numbers(Node node, const std::string& speaker) {
  NumberList list = readNumbers(text(node));
  return isGood(list, node, speaker) ? std::move(list.values) : std::vector<double>();
}

bool Context::eachNumber(Node node, const std::string& speaker, const std::function<void(double)>& use) {
  return isGood(readNumbersOf(node, use), node, speaker);
}

bool Context::isGood(const NumberList& list, Node node, const std::string& speaker) {
  if (!list.problem.empty()) {
    error(node, speaker + ": " + list.problem + "; the list is left out");
    return false;
  }
  if (list.repairedSigns > 0) warn(node, speaker + ": " + repairedSignsText(list));
  return true;
}

// ---------------------------------------------------------------- points by name

void Context::collectPoints(Node collection) {
  eachElement(collection, [&](Node node) {
    if (isNamed(node, "CgPoint")) {
      points_.add(node);
    } else if (isNamed(node, "CgPoints")) {
      collectPoints(node);
    }
  });
}

void Context::collectOtherPoints() {
  otherPointsCollected_ = true;
  static const std::unordered_set<std::string_view> kKinds{"Start", "End", "Center", "PI", "Location", "ControlPoint"};
  document_.eachElement([&](Node node) {
    if (kKinds.count(localName(node)) == 0) return;
    const std::string_view name = attribute(node, "name");
    if (!name.empty()) otherPoints_.emplace(name, node);
  });
}

std::size_t Context::PointNames::slotOf(std::string_view name) const {
  std::size_t slot = std::hash<std::string_view>()(name) % slots_.size();
  while (slots_[slot] != kFree && attribute(document_.at(slots_[slot]), "name") != name) {
    slot = slot + 1 == slots_.size() ? 0 : slot + 1;
  }
  return slot;
}

void Context::PointNames::add(Node point) {
  const std::string_view name = attribute(point, "name");
  if (name.empty()) return;
  if (10 * count_ >= 7 * slots_.size()) {
    std::vector<std::size_t> old(2 * slots_.size() + 64, kFree);
    old.swap(slots_);
    for (const std::size_t place : old) {
      if (place != kFree) slots_[slotOf(attribute(document_.at(place), "name"))] = place;
    }
  }
  std::size_t& slot = slots_[slotOf(name)];
  if (slot != kFree) return;
  slot = static_cast<std::size_t>(point.place());
  ++count_;
}

Node Context::PointNames::find(std::string_view name) const {
  if (slots_.empty()) return {};
  const std::size_t place = slots_[slotOf(name)];
  return place == kFree ? Node() : document_.at(place);
}

Node Context::pointNamed(std::string_view name) {
  name = trimmed(name);
  if (!pointsCollected_) {
    pointsCollected_ = true;
    eachChild(root, "CgPoints", [&](Node node) { collectPoints(node); });
  }
  if (const Node found = points_.find(name)) return found;
  if (!otherPointsCollected_) collectOtherPoints();
  const auto found = otherPoints_.find(std::string(name));
  return found == otherPoints_.end() ? Node() : found->second;
}

PlacedPoint Context::place(Node point, int depth) {
  PlacedPoint result;
  if (!point) {
    result.problem = "is missing";
    return result;
  }
  const NumberList list = readNumbers(text(point));
  const auto& values = list.values;
  if (!list.problem.empty()) {
    result.problem = list.problem;
  } else if (values.size() == 2 || values.size() == 3) {
    result.plan = plan(values[0], values[1]);
    if (values.size() == 3) result.elevation = values[2];
    if (list.repairedSigns > 0) warn(point, std::string(localName(point)) + ": " + repairedSignsText(list));
  } else if (!values.empty()) {
    result.problem =
        "holds " + std::to_string(values.size()) + " numbers where northing, easting and elevation are due";
  } else if (const std::string_view reference = attribute(point, "pntRef"); !reference.empty()) {
    return placeByName(reference, depth);
  } else {
    result.problem = "has no coordinates";
  }
  return result;
}

PlacedPoint Context::placeByName(std::string_view name, int depth) {
  PlacedPoint result;
  constexpr int kLongestChain = 32;
  if (depth >= kLongestChain) {
    result.problem = "refers to '" + shown(name) + "' in a circle";
  } else if (const auto target = pointNamed(name)) {
    return place(target, depth + 1);
  } else {
    result.problem = "refers to the point '" + shown(name) + "', which isn't in the file";
  }
  return result;
}

// ---------------------------------------------------------------- codes

namespace {

std::vector<std::string> splitCodes(bool isOurs, const std::string& text) {
  if (text.empty()) return {};
  // Only our own files hold lists of codes; in others a comma is part of a name.
  if (!isOurs) return {text};
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

}  // namespace

civil::CodeList Context::codes(std::string_view text) {
  constexpr std::size_t kMostShared = 4096;
  const std::string key(text);
  if (const auto found = codeLists_.find(key); found != codeLists_.end()) return found->second;
  civil::CodeList codes(splitCodes(isOurs(), key));
  if (codeLists_.size() < kMostShared) codeLists_.emplace(key, codes);
  return codes;
}

// ---------------------------------------------------------------- handles

std::optional<civil::Handle> Context::parseHandle(const std::optional<std::string>& handleText) {
  if (!handleText) return std::nullopt;
  const std::string_view digits = trimmed(*handleText);
  civil::Handle handle = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), handle, 16);
  if (error != std::errc() || end != digits.data() + digits.size() || handle == 0) return std::nullopt;
  return handle;
}

civil::Handle Context::ticket(Node position, const std::optional<std::string>& handleText) {
  const auto given = parseHandle(handleText);
  if (handleText && !given) warn(position, "'" + shown(*handleText) + "' is not a handle; another one is given");
  tickets_.push_back(static_cast<std::size_t>(position.place()));
  if (given) given_.push_back({tickets_.size() - 1, *given});
  return tickets_.size();
}

/// Gives objects the handles that the file gives them, the first of those that stand twice; which these are.
std::unordered_set<civil::Handle> Context::settleGivenHandles(std::vector<civil::Handle>& handles) {
  std::stable_sort(given_.begin(), given_.end(),
                   [&](const GivenHandle& a, const GivenHandle& b) { return tickets_[a.ticket] < tickets_[b.ticket]; });
  std::unordered_set<civil::Handle> taken;
  for (const GivenHandle& given : given_) {
    if (taken.insert(given.handle).second) {
      handles[given.ticket] = given.handle;
      continue;
    }
    if (drawing.diagnostics.size() < kMostDiagnostics) {
      drawing.diagnostics.push_back(
          {.severity = civil::Severity::Warning,
           .text = "handle " + text::handleText(given.handle) + " stands twice; the first object keeps it",
           .line = document_.lineAt(tickets_[given.ticket]),
           .object = given.ticket + 1});
    }
  }
  return taken;
}

void Context::settleHandles() {
  const auto isBefore = [&](std::size_t a, std::size_t b) { return tickets_[a] < tickets_[b]; };
  // Tickets in the order of the document; empty where they stand in it.
  std::vector<std::uint32_t> order;
  if (!std::is_sorted(tickets_.begin(), tickets_.end())) {
    order.resize(tickets_.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), isBefore);
  }
  const auto inOrder = [&](std::size_t i) { return order.empty() ? i : order[i]; };
  constexpr civil::Handle kFirst = 0x100;
  // Of the tickets; empty where they are numbered through.
  std::vector<civil::Handle> handles;
  if (!given_.empty() || !order.empty()) {
    handles.resize(tickets_.size(), 0);
    const std::unordered_set<civil::Handle> taken = settleGivenHandles(handles);
    civil::Handle next = kFirst;
    for (std::size_t i = 0; i < tickets_.size(); ++i) {
      civil::Handle& handle = handles[inOrder(i)];
      if (handle != 0) continue;
      while (taken.count(next) > 0) ++next;
      handle = next++;
    }
  }
  const auto handleOf = [&](std::size_t ticket) { return handles.empty() ? kFirst + ticket : handles[ticket]; };
  civil::eachHandle(drawing, [&](civil::Handle& handle) {
    if (handle != 0) handle = handleOf(handle - 1);
  });
  for (civil::Diagnostic& diagnostic : drawing.diagnostics) {
    if (diagnostic.object != 0) diagnostic.object = handleOf(diagnostic.object - 1);
  }
  if (unreported_ > 0) {
    drawing.diagnostics.back() = {civil::Severity::Warning,
                                  std::to_string(unreported_ + 1) + " more diagnostics aren't listed"};
  }
  if (trace == nullptr) return;
  std::vector<bool> isGiven(tickets_.size(), false);
  for (const GivenHandle& given : given_) isGiven[given.ticket] = handleOf(given.ticket) == given.handle;
  trace->objects.reserve(tickets_.size());
  for (std::size_t at = 0; at < tickets_.size(); ++at) {
    const std::size_t i = inOrder(at);
    trace->objects.push_back({document_.at(tickets_[i]), handleOf(i), isGiven[i]});
  }
}

}  // namespace lvx::landxml::detail
