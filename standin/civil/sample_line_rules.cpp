#include "civil/sample_line_rules.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <set>
#include <utility>

#include "civil/detail/pair_text.h"
#include "civil/rounding.h"
#include "text/number_text.h"

namespace lvx::civil {

using detail::quoted;
using detail::trimmed;

namespace {

// ---------------------------------------------------------------- the text form

constexpr std::array<SampleLineKey, kSampleLineKeyCount> kKeys{{
    {"every", "N", "a line every N, at multiples of N"},
    {"count-from-start", "yes", "multiples count from the start of the range"},
    {"half-below", "RADIUS", "half of N where the alignment curves with a smaller radius"},
    {"from", "STATION", "no lines before it (default: the alignment's start)"},
    {"to", "STATION", "no lines behind it (default: the alignment's end)"},
    {"ends", "yes", "lines at both ends of the range"},
    {"elements", "yes", "lines at the ends of horizontal elements"},
    {"pvis", "yes", "lines at the profile's points of intersection"},
    {"curve-ends", "yes", "lines at the ends of the profile's vertical curves"},
    {"profile", "NAME", "the profile of pvis and curve-ends (default: the first design profile)"},
    {"stations", "STATION;STATION", "lines at these stations"},
    {"tolerance", "LENGTH", "lines this close are one (default: 0.001)"},
    {"left", "WIDTH", "width to the left (default: 30, or to the border)"},
    {"right", "WIDTH", "width to the right (default: 30, or to the border)"},
    {"border", "SURFACE", "sides without a width reach to this surface's border"},
    {"largest", "WIDTH", "largest width up to a border (default: 200)"},
    {"skew", "DEGREES", "turn of the lines against square, clockwise (default: 0)"},
    {"name", "PATTERN", "names, with {station}, {kind} and {n} (default: {station})"},
}};

[[noreturn]] void failAt(std::string_view key, std::string_view value, const std::string& why) {
  throw SampleLineError(std::string(key) + " " + quoted(value) + ": " + why);
}

std::optional<double> numberOf(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value))
    return std::nullopt;
  return value;
}

// The shortest text that reads back equal, without an exponent where that is short.
std::string numberText(double value) {
  std::array<char, 64> text{};
  const double size = std::abs(value);
  const auto format =
      size == 0.0 || (size >= 1e-6 && size < 1e15) ? std::chars_format::fixed : std::chars_format::general;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value, format).ptr};
}

double readNumber(std::string_view key, std::string_view value) {
  const auto number = numberOf(value);
  if (!number) failAt(key, value, "a number is wanted");
  return *number;
}

/// "1020.5", "1+020.5".
double readStation(std::string_view key, std::string_view value) {
  const std::size_t plus = value.find('+', 1);
  if (plus == std::string_view::npos) return readNumber(key, value);
  const auto kilometres = numberOf(value.substr(0, plus));
  const auto metres = numberOf(value.substr(plus + 1));
  const bool isWhole = kilometres && *kilometres == std::floor(*kilometres) && *kilometres >= 0.0;
  if (!isWhole || !metres || *metres < 0.0 || value[plus + 1] == '+') failAt(key, value, "a station is wanted");
  return 1000.0 * *kilometres + *metres;
}

bool readFlag(std::string_view key, std::string_view value) {
  if (value == "yes") return true;
  if (value == "no") return false;
  failAt(key, value, "yes or no is wanted");
}

std::vector<double> readStations(std::string_view key, std::string_view value) {
  std::vector<double> stations;
  for (std::string_view rest = value; !rest.empty();) {
    const std::size_t end = std::min(rest.find(';'), rest.size());
    if (const auto word = trimmed(rest.substr(0, end)); !word.empty()) stations.push_back(readStation(key, word));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  if (stations.empty()) failAt(key, value, "stations between semicolons are wanted");
  return stations;
}

void apply(SampleLineRules& rules, std::string_view key, std::string_view value) {
  if (key == "every")
    rules.every = readNumber(key, value);
  else if (key == "count-from-start")
    rules.countsFromStart = readFlag(key, value);
  else if (key == "half-below")
    rules.halvedBelow = readNumber(key, value);
  else if (key == "from")
    rules.from = readStation(key, value);
  else if (key == "to")
    rules.to = readStation(key, value);
  else if (key == "ends")
    rules.ends = readFlag(key, value);
  else if (key == "elements")
    rules.elements = readFlag(key, value);
  else if (key == "pvis")
    rules.intersectionPoints = readFlag(key, value);
  else if (key == "curve-ends")
    rules.curveEnds = readFlag(key, value);
  else if (key == "profile")
    rules.profile = value;
  else if (key == "stations")
    rules.stations = readStations(key, value);
  else if (key == "tolerance")
    rules.tolerance = readNumber(key, value);
  else if (key == "left")
    rules.left = readNumber(key, value);
  else if (key == "right")
    rules.right = readNumber(key, value);
  else if (key == "border")
    rules.border = value;
  else if (key == "largest")
    rules.largest = readNumber(key, value);
  else if (key == "skew")
    rules.skew = readNumber(key, value);
  else
    rules.name = value;
}

/// One pair of the text.
struct Pair {
  std::string_view key;
  std::string_view value;
};

class PairReader {
 public:
  explicit PairReader(std::string_view text) : rest_(text) {}

  std::optional<Pair> next() {
    rest_ = trimmed(rest_);
    if (rest_.empty()) return std::nullopt;
    const std::size_t keyEnd = std::min(rest_.find_first_of("=,"), rest_.size());
    Pair pair{trimmed(rest_.substr(0, keyEnd)), "yes"};
    const bool hasValue = keyEnd < rest_.size() && rest_[keyEnd] == '=';
    rest_.remove_prefix(keyEnd);
    if (hasValue) {
      rest_.remove_prefix(1);
      pair.value = value(pair.key);
    } else if (isKnown(pair.key) && !takesFlag(pair.key)) {
      throw SampleLineError(std::string(pair.key) + ": a value is wanted, as in " + std::string(pair.key) + "=" +
                            std::string(find(pair.key)->value));
    }
    if (!rest_.empty()) rest_.remove_prefix(1);  // the comma
    return pair;
  }

  static const SampleLineKey* find(std::string_view key) {
    const auto found = std::find_if(kKeys.begin(), kKeys.end(), [&](const SampleLineKey& k) { return k.key == key; });
    return found == kKeys.end() ? nullptr : &*found;
  }
  static bool isKnown(std::string_view key) { return find(key) != nullptr; }
  static bool takesFlag(std::string_view key) { return find(key)->value == "yes"; }

 private:
  std::string_view value(std::string_view key) {
    rest_ = trimmed(rest_);
    if (detail::beginsWithQuote(rest_)) {
      return detail::takeQuoted(rest_, ",",
                                [&](const std::string& why) { throw SampleLineError(std::string(key) + ": " + why); });
    }
    const std::size_t end = std::min(rest_.find(','), rest_.size());
    const std::string_view plain = trimmed(rest_.substr(0, end));
    rest_.remove_prefix(end);
    return plain;
  }

  std::string_view rest_;
};

std::string knownKeys() {
  std::string text;
  for (const SampleLineKey& key : kKeys) text += (text.empty() ? "" : ", ") + std::string(key.key);
  return text;
}

void requireKnown(std::string_view key) {
  if (!PairReader::isKnown(key)) {
    throw SampleLineError("there is no key " + quoted(key) + ", only " + knownKeys());
  }
}

// ---------------------------------------------------------------- names

/// A pattern cut into fixed texts and fields.
class NamePattern {
 public:
  explicit NamePattern(std::string_view pattern) {
    if (trimmed(pattern).empty()) failAt("name", pattern, "a name is wanted");
    std::string fixed;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
      const bool isDoubled = i + 1 < pattern.size() && pattern[i + 1] == pattern[i];
      if ((pattern[i] == '{' || pattern[i] == '}') && isDoubled) {
        fixed += pattern[i++];
        continue;
      }
      if (pattern[i] == '}') failAt("name", pattern, "a brace closes that wasn't opened");
      if (pattern[i] != '{') {
        fixed += pattern[i];
        continue;
      }
      const std::size_t close = pattern.find('}', i);
      if (close == std::string_view::npos) failAt("name", pattern, "a brace isn't closed");
      const std::string_view field = pattern.substr(i + 1, close - i - 1);
      if (field != "station" && field != "kind" && field != "n") {
        failAt("name", pattern, "there is no field {" + std::string(field) + "}, only {station}, {kind} and {n}");
      }
      parts_.push_back({std::move(fixed), field.front()});
      fixed.clear();
      i = close;
    }
    rest_ = std::move(fixed);
  }

  [[nodiscard]] std::string name(const SampleLineStation& at, std::size_t number,
                                 const std::function<std::string(double)>& stationText) const {
    std::string text;
    for (const Part& part : parts_) {
      text += part.before;
      if (part.field == 's')
        text += stationText ? stationText(at.station) : text::fixedText(at.station);
      else if (part.field == 'k')
        text += kindName(at.kind);
      else
        text += std::to_string(number);
    }
    return text + rest_;
  }

 private:
  struct Part {
    std::string before;
    char field = 's';
  };
  std::vector<Part> parts_;
  std::string rest_;
};

// ---------------------------------------------------------------- stations

/// Radii right at ascending stations, walking along the elements.
class CurvatureWalk {
 public:
  explicit CurvatureWalk(const Alignment& axis) : axis_(axis) {}

  /// The sharper of the curvatures on both sides of a station.
  double sharpestAt(double station) {
    const auto elements = axis_.elements();
    while (index_ < elements.size() && axis_.stationOfElement(index_ + 1) < station) ++index_;
    double sharpest = 0.0;
    for (std::size_t i = index_; i < elements.size() && axis_.stationOfElement(i) <= station; ++i) {
      if (!(elements[i].length > 0.0)) continue;
      const double distance = std::clamp(station - axis_.stationOfElement(i), 0.0, elements[i].length);
      sharpest = std::max(sharpest, std::abs(elements[i].curvatureAt(distance)));
    }
    return sharpest;
  }

 private:
  const Alignment& axis_;
  std::size_t index_ = 0;
};

void addIntervals(const SampleLineRules& rules, const Alignment& axis, double from, double to,
                  std::vector<SampleLineStation>& stations) {
  const double origin = rules.countsFromStart ? from : 0.0;
  const bool halves = rules.halvedBelow > 0.0;
  const double step = halves ? 0.5 * rules.every : rules.every;
  // A multiple that a rounding puts beyond the range still belongs to it.
  const double slack = 1e-9;
  const double first = std::ceil((from - origin) / step - slack);
  const double last = std::floor((to - origin) / step + slack);
  const double most = static_cast<double>(kMostSampleLines) * (halves ? 2.0 : 1.0) + 1.0;
  if (!(last - first < most)) {
    failAt("every", numberText(rules.every), "gives more than " + std::to_string(kMostSampleLines) + " lines");
  }
  CurvatureWalk curvature(axis);
  const auto intervals = static_cast<std::int64_t>(last - first);
  for (std::int64_t i = 0; i <= intervals; ++i) {
    const double k = first + static_cast<double>(i);
    const double station = std::clamp(origin + k * step, from, to);
    const bool isHalf = halves && std::fmod(k, 2.0) != 0.0;
    if (isHalf && !(curvature.sharpestAt(station) * rules.halvedBelow > 1.0)) continue;
    stations.push_back({station, SampleLineKind::Interval});
  }
}

void checkSize(const char* key, double value, bool isAllowed, const char* wanted) {
  if (!std::isfinite(value) || !isAllowed) failAt(key, numberText(value), std::string(wanted) + " is wanted");
}

struct Side {
  double width = 0.0;
  SampleLineReach reach = SampleLineReach::Width;
};

/// How far out the surface reaches from `center` along `direction`, up to `largest`; that where it doesn't.
Side sideToBorder(const TinSurface& surface, Vec2 center, Vec2 direction, double largest, std::vector<Vec3>& scratch) {
  scratch.clear();
  surface.sample(center, center + largest * direction, scratch);
  if (scratch.empty()) return {largest, SampleLineReach::NoGround};
  const double width = length(Vec2{scratch.back().x, scratch.back().y} - center);
  if (width <= kSamePoint) return {largest, SampleLineReach::NoGround};
  // The end of a line within the surface is a sample itself, but for the rounding of large coordinates.
  constexpr double kRounding = 1e-6;
  return {width, width < largest - kRounding ? SampleLineReach::Border : SampleLineReach::Largest};
}

}  // namespace

const char* kindName(SampleLineKind kind) {
  switch (kind) {
    case SampleLineKind::Start:
      return "start";
    case SampleLineKind::End:
      return "end";
    case SampleLineKind::Listed:
      return "listed";
    case SampleLineKind::Element:
      return "element";
    case SampleLineKind::IntersectionPoint:
      return "pvi";
    case SampleLineKind::CurveEnd:
      return "curve";
    case SampleLineKind::Interval:
      return "interval";
  }
  return "";
}

std::span<const SampleLineKey> sampleLineKeys() { return kKeys; }

std::vector<SampleLineRule> splitSampleLineRules(std::string_view text) {
  std::vector<SampleLineRule> split;
  PairReader pairs(text);
  while (const auto pair = pairs.next()) {
    requireKnown(pair->key);
    split.push_back({std::string(pair->key), std::string(pair->value)});
  }
  return split;
}

SampleLineRules sampleLineRules(std::span<const SampleLineRule> pairs) {
  SampleLineRules rules;
  std::set<std::string_view> given;
  for (const SampleLineRule& pair : pairs) {
    requireKnown(pair.key);
    if (!given.insert(pair.key).second) throw SampleLineError(pair.key + ": given twice");
    if (pair.value.empty()) throw SampleLineError(pair.key + ": a value is wanted");
    apply(rules, pair.key, pair.value);
    // 0 stands for none in the rules; who writes it means a length.
    if (pair.key == "every") checkSize("every", rules.every, rules.every > 0.0, "a length above 0");
    if (pair.key == "half-below")
      checkSize("half-below", rules.halvedBelow, rules.halvedBelow > 0.0, "a radius above 0");
  }
  checkRules(rules);
  return rules;
}

SampleLineRules parseSampleLineRules(std::string_view text) { return sampleLineRules(splitSampleLineRules(text)); }

std::string textOf(const SampleLineRules& rules) {
  const SampleLineRules defaults;
  std::string text;
  const auto add = [&](const char* key, const std::string& value) {
    if (!text.empty()) text += ',';
    text += std::string(key) + "=" + value;
  };
  const auto number = [&](const char* key, double value, double otherwise) {
    if (value != otherwise) add(key, numberText(value));
  };
  const auto name = [&](const char* key, const std::string& value, const std::string& otherwise) {
    if (value == otherwise || value.empty()) return;
    const bool isPlain = trimmed(value) == value && value.find(',') == std::string::npos && value.front() != '\'' &&
                         value.front() != '"';
    const char quote = value.find('\'') == std::string::npos ? '\'' : '"';
    add(key, isPlain ? value : quote + value + quote);
  };
  const auto flag = [&](const char* key, bool value) {
    if (value) text += (text.empty() ? "" : ",") + std::string(key);
  };
  const auto given = [&](const char* key, const std::optional<double>& value) {
    if (value) add(key, numberText(*value));
  };
  number("every", rules.every, defaults.every);
  flag("count-from-start", rules.countsFromStart);
  number("half-below", rules.halvedBelow, defaults.halvedBelow);
  given("from", rules.from);
  given("to", rules.to);
  flag("ends", rules.ends);
  flag("elements", rules.elements);
  flag("pvis", rules.intersectionPoints);
  flag("curve-ends", rules.curveEnds);
  name("profile", rules.profile, defaults.profile);
  if (!rules.stations.empty()) {
    std::string list;
    for (const double station : rules.stations) list += (list.empty() ? "" : ";") + numberText(station);
    add("stations", list);
  }
  number("tolerance", rules.tolerance, defaults.tolerance);
  given("left", rules.left);
  given("right", rules.right);
  name("border", rules.border, defaults.border);
  number("largest", rules.largest, defaults.largest);
  number("skew", rules.skew, defaults.skew);
  name("name", rules.name, defaults.name);
  return text;
}

void checkRules(const SampleLineRules& rules) {
  const char* const width = "a width above 0";
  checkSize("every", rules.every, rules.every >= 0.0, "a length above 0");
  checkSize("half-below", rules.halvedBelow, rules.halvedBelow >= 0.0, "a radius above 0");
  if (rules.halvedBelow > 0.0 && rules.every == 0.0) {
    failAt("half-below", numberText(rules.halvedBelow), "there is no interval to halve; every is wanted beside it");
  }
  if (rules.from) checkSize("from", *rules.from, true, "a station");
  if (rules.to) checkSize("to", *rules.to, true, "a station");
  if (rules.from && rules.to && *rules.from > *rules.to) {
    failAt("from", numberText(*rules.from), "lies behind to '" + numberText(*rules.to) + "'");
  }
  for (const double station : rules.stations) checkSize("stations", station, true, "a station");
  checkSize("tolerance", rules.tolerance, rules.tolerance >= 0.0, "a length of at least 0");
  if (rules.left) checkSize("left", *rules.left, *rules.left > 0.0, width);
  if (rules.right) checkSize("right", *rules.right, *rules.right > 0.0, width);
  checkSize("largest", rules.largest, rules.largest > 0.0, width);
  checkSize("skew", rules.skew, std::abs(rules.skew) < 90.0, "an angle between -90 and 90 degrees");
  [[maybe_unused]] const NamePattern pattern(rules.name);
  const bool setsLines = rules.every > 0.0 || rules.ends || rules.elements || rules.intersectionPoints ||
                         rules.curveEnds || !rules.stations.empty();
  if (!setsLines) {
    throw SampleLineError("nothing says where lines stand; every, ends, elements, pvis, curve-ends or stations does");
  }
}

std::vector<SampleLineStation> sampleLineStations(const SampleLineRules& rules, const Alignment& axis,
                                                  const Profile* profile) {
  checkRules(rules);
  if (!(axis.length() > 0.0)) throw SampleLineError("the alignment has no length");
  const double from = std::max(rules.from.value_or(axis.startStation()), axis.startStation());
  const double to = std::min(rules.to.value_or(axis.endStation()), axis.endStation());
  const auto range = [&] { return "between " + text::fixedText(from) + " and " + text::fixedText(to); };
  if (from > to) {
    throw SampleLineError("the alignment runs from " + text::fixedText(axis.startStation()) + " to " +
                          text::fixedText(axis.endStation()) + "; nothing of it lies in the range of the lines");
  }

  std::vector<SampleLineStation> stations;
  if (rules.every > 0.0) addIntervals(rules, axis, from, to, stations);
  const std::size_t intervals = stations.size();
  const auto add = [&](double station, SampleLineKind kind) {
    if (station >= from - Alignment::kEndTolerance && station <= to + Alignment::kEndTolerance) {
      stations.push_back({std::clamp(station, from, to), kind});
    }
  };
  if (rules.ends) {
    add(from, SampleLineKind::Start);
    add(to, SampleLineKind::End);
  }
  for (const double station : rules.stations) {
    if (station < axis.startStation() - Alignment::kEndTolerance ||
        station > axis.endStation() + Alignment::kEndTolerance) {
      failAt("stations", numberText(station),
             "the alignment runs from " + text::fixedText(axis.startStation()) + " to " +
                 text::fixedText(axis.endStation()));
    }
    add(station, SampleLineKind::Listed);
  }
  if (rules.elements) {
    for (std::size_t i = 0; i <= axis.elements().size(); ++i) add(axis.stationOfElement(i), SampleLineKind::Element);
  }
  if (rules.intersectionPoints || rules.curveEnds) {
    if (profile == nullptr || profile->isEmpty()) {
      throw SampleLineError(std::string(rules.intersectionPoints ? "pvis" : "curve-ends") +
                            ": there is no profile with points");
    }
    if (rules.intersectionPoints) {
      for (const VerticalPoint& point : profile->points()) add(point.station, SampleLineKind::IntersectionPoint);
    }
    if (rules.curveEnds) {
      for (const VerticalCurve& curve : profile->curves()) {
        add(curve.startStation, SampleLineKind::CurveEnd);
        add(curve.endStation, SampleLineKind::CurveEnd);
      }
    }
  }
  const auto isBefore = [](const SampleLineStation& a, const SampleLineStation& b) {
    return std::pair(a.station, a.kind) < std::pair(b.station, b.kind);
  };
  const auto others = stations.begin() + static_cast<std::ptrdiff_t>(intervals);
  std::sort(others, stations.end(), isBefore);
  std::inplace_merge(stations.begin(), others, stations.end(), isBefore);

  std::vector<SampleLineStation> merged;
  merged.reserve(stations.size());
  for (const SampleLineStation& next : stations) {
    if (merged.empty() || next.station - merged.back().station > rules.tolerance) {
      merged.push_back(next);
    } else if (next.kind < merged.back().kind) {
      merged.back() = next;
    }
  }
  if (merged.empty()) throw SampleLineError("the rules give no line " + range());
  if (merged.size() > kMostSampleLines) {
    throw SampleLineError("the rules give " + std::to_string(merged.size()) + " lines, more than " +
                          std::to_string(kMostSampleLines));
  }
  return merged;
}

std::vector<MadeSampleLine> makeSampleLines(const SampleLineRules& rules, const SampleLineGround& ground) {
  std::vector<MadeSampleLine> lines =
      makeSampleLines(rules, ground, sampleLineStations(rules, ground.axis, ground.profile), 1);
  if (lines.empty()) throw SampleLineError("the alignment has no shape at the stations of the lines");
  return lines;
}

std::vector<MadeSampleLine> makeSampleLines(const SampleLineRules& rules, const SampleLineGround& ground,
                                            std::span<const SampleLineStation> stations, std::size_t number) {
  const bool wantsBorder = !rules.border.empty() && (!rules.left || !rules.right);
  if (wantsBorder && (ground.border == nullptr || ground.border->isEmpty())) {
    failAt("border", rules.border, "there is no such surface with ground");
  }
  const NamePattern pattern(rules.name);
  const double turn = rules.skew * (kPi / 180.0);
  std::vector<Vec3> scratch;
  std::vector<MadeSampleLine> lines;
  lines.reserve(stations.size());
  for (const SampleLineStation& at : stations) {
    const std::optional<Pose> pose = ground.axis.poseAt(at.station);
    if (!pose) continue;  // an element of no finite shape
    const Vec2 right = unit(pose->direction - 0.5 * kPi - turn);
    const auto side = [&](const std::optional<double>& given, Vec2 direction) -> Side {
      if (given) return {*given};
      if (!wantsBorder) return {SampleLineRules::kWidth};
      return sideToBorder(*ground.border, pose->point, direction, rules.largest, scratch);
    };
    const Side toLeft = side(rules.left, -1.0 * right);
    const Side toRight = side(rules.right, right);
    MadeSampleLine line;
    line.station = at.station;
    line.kind = at.kind;
    line.name = pattern.name(at, number + lines.size(), ground.stationText);
    line.left = withoutRounding(pose->point - toLeft.width * right);
    line.center = withoutRounding(pose->point);
    line.right = withoutRounding(pose->point + toRight.width * right);
    line.leftReach = toLeft.reach;
    line.rightReach = toRight.reach;
    lines.push_back(std::move(line));
  }
  return lines;
}

std::vector<SampleLine> sampleLinesOf(const std::vector<MadeSampleLine>& lines) {
  std::vector<SampleLine> result;
  result.reserve(lines.size());
  for (const MadeSampleLine& line : lines) result.push_back({0, line.name, line.station, line.vertices()});
  return result;
}

}  // namespace lvx::civil
