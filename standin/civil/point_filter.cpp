#include "civil/point_filter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "civil/detail/pair_text.h"

namespace lvx::civil {

using detail::quoted;
using detail::trimmed;

namespace {

// In the order of PointFilter::Key.
constexpr std::array<PointFilterKey, 4> kKeys{{
    {"description", "PATTERN", "either description of the point, such as TREE*"},
    {"name", "PATTERN", "the point's name, else its number"},
    {"elevation", "RANGE", "such as 100..120; points without an elevation are in none"},
    {"number", "RANGE", "such as 1-50"},
}};

[[noreturn]] void failAt(std::string_view key, std::string_view value, const std::string& why) {
  throw PointFilterError(std::string(key) + " " + quoted(value) + ": " + why);
}

std::size_t rowOfKey(std::string_view key) {
  const auto found = std::find_if(kKeys.begin(), kKeys.end(), [&](const PointFilterKey& k) { return k.key == key; });
  if (found != kKeys.end()) return static_cast<std::size_t>(found - kKeys.begin());
  std::string known;
  for (const PointFilterKey& row : kKeys) known += (known.empty() ? "" : ", ") + std::string(row.key);
  throw PointFilterError("there is no key " + quoted(key) + ", only " + known);
}

/// One piece of a value between semicolons, or all of it where it is quoted.
std::vector<std::string_view> alternativesAt(std::string_view key, std::string_view& rest) {
  std::vector<std::string_view> pieces;
  for (;;) {
    rest = trimmed(rest);
    if (detail::beginsWithQuote(rest)) {
      pieces.push_back(detail::takeQuoted(
          rest, ",;", [&](const std::string& why) { throw PointFilterError(std::string(key) + ": " + why); }));
    } else {
      const std::size_t end = std::min(rest.find_first_of(",;"), rest.size());
      const std::string_view plain = trimmed(rest.substr(0, end));
      if (plain.empty()) throw PointFilterError(std::string(key) + ": a value is wanted");
      pieces.push_back(plain);
      rest.remove_prefix(end);
    }
    if (rest.empty() || rest.front() == ',') return pieces;
    rest.remove_prefix(1);  // the semicolon
  }
}

std::optional<double> numberOf(std::string_view text) {
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

/// Where the letter behind the one at `at` begins.
std::size_t nextLetter(std::string_view text, std::size_t at) {
  ++at;
  while (at < text.size() && isContinuation(text[at])) ++at;
  return at;
}

/// The hyphen of "1-50", "-5--1" or "1e-3-2"; npos where none parts two numbers.
std::size_t partingHyphen(std::string_view text) {
  for (std::size_t i = 1; i < text.size(); ++i)
    if (text[i] == '-' && text[i - 1] != 'e' && text[i - 1] != 'E') return i;
  return std::string_view::npos;
}

}  // namespace

std::span<const PointFilterKey> pointFilterKeys() { return kKeys; }

bool isLikePattern(std::string_view text, std::string_view pattern) {
  std::size_t at = 0;
  std::size_t in = 0;
  // Behind the last star, and where the text that it doesn't swallow begins.
  std::size_t star = std::string_view::npos;
  std::size_t retry = 0;
  while (at < text.size()) {
    if (in < pattern.size() && pattern[in] == '*') {
      star = ++in;
      retry = at;
    } else if (in < pattern.size() && pattern[in] == '?') {
      ++in;
      at = nextLetter(text, at);
    } else if (in < pattern.size() && pattern[in] == text[at]) {
      ++in;
      ++at;
    } else if (star != std::string_view::npos) {
      in = star;
      retry = nextLetter(text, retry);
      at = retry;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

PointFilter::Range PointFilter::readRange(std::string_view key, std::string_view text, bool isWhole) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const auto bound = [&](std::string_view word, double open) {
    if (word.empty()) return open;
    const auto number = numberOf(word);
    if (!number || (isWhole && *number != std::floor(*number)))
      failAt(key, text, std::string("a ") + (isWhole ? "whole " : "") + "number or a range such as 100..120 is wanted");
    return *number;
  };
  Range range;
  if (const std::size_t dots = text.find(".."); dots != std::string_view::npos) {
    const std::string_view low = trimmed(text.substr(0, dots));
    const std::string_view high = trimmed(text.substr(dots + 2));
    if (low.empty() && high.empty()) failAt(key, text, "a range needs one of its ends");
    range = {bound(low, -kInfinity), bound(high, kInfinity)};
  } else if (const std::size_t hyphen = partingHyphen(text); hyphen != std::string_view::npos) {
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    range = {bound(trimmed(text.substr(0, hyphen)), nothing), bound(trimmed(text.substr(hyphen + 1)), nothing)};
    if (std::isnan(range.high)) failAt(key, text, "a range without an end is written with two points, as in 100..");
  } else {
    range.low = range.high = bound(text, 0.0);
    if (text.empty()) failAt(key, text, "a value is wanted");
  }
  if (range.low > range.high) failAt(key, text, "the range descends");
  return range;
}

PointFilter PointFilter::parse(std::string_view text) {
  PointFilter filter;
  std::string_view rest = trimmed(text);
  while (!rest.empty()) {
    const std::size_t keyEnd = std::min(rest.find_first_of("=,"), rest.size());
    const std::string_view key = trimmed(rest.substr(0, keyEnd));
    const std::size_t row = rowOfKey(key);
    if (keyEnd == rest.size() || rest[keyEnd] != '=')
      throw PointFilterError(std::string(key) + ": a value is wanted, as in " + std::string(key) + "=" +
                             (kKeys[row].value == "RANGE" ? "100..120" : "TREE*"));
    rest.remove_prefix(keyEnd + 1);
    Condition condition;
    condition.key = static_cast<Key>(row);
    for (const std::string_view piece : alternativesAt(key, rest)) {
      if (condition.key == Key::Description || condition.key == Key::Name)
        condition.patterns.emplace_back(piece);
      else
        condition.ranges.push_back(readRange(key, piece, condition.key == Key::Number));
    }
    filter.conditions_.push_back(std::move(condition));
    if (rest.empty()) break;
    rest = trimmed(rest.substr(1));  // behind the comma
  }
  if (filter.conditions_.empty()) throw PointFilterError("a condition is wanted, such as description=TREE*");
  return filter;
}

void PointFilter::add(const PointFilter& other) {
  // Over a copy, since the other one may be this one.
  const std::vector<Condition> more = other.conditions_;
  conditions_.insert(conditions_.end(), more.begin(), more.end());
}

bool PointFilter::holds(const Condition& condition, const Point& point) {
  const auto isLike = [&](std::string_view text) {
    return std::any_of(condition.patterns.begin(), condition.patterns.end(),
                       [&](const std::string& pattern) { return isLikePattern(text, pattern); });
  };
  const auto isWithin = [&](double value) {
    return std::any_of(condition.ranges.begin(), condition.ranges.end(),
                       [&](const Range& range) { return range.low <= value && value <= range.high; });
  };
  switch (condition.key) {
    case Key::Description:
      return isLike(point.texts.description()) ||
             (point.texts.fullDescription() != point.texts.description() && isLike(point.texts.fullDescription()));
    case Key::Name:
      return point.texts.name().empty() ? isLike(std::to_string(point.number)) : isLike(point.texts.name());
    case Key::Elevation:
      return point.hasElevation && isWithin(point.position.z);
    case Key::Number:
      return isWithin(point.number);
  }
  return false;
}

bool PointFilter::matches(const Point& point) const {
  return std::all_of(conditions_.begin(), conditions_.end(),
                     [&](const Condition& condition) { return holds(condition, point); });
}

FilteredPoints pointsWhere(const Drawing& drawing, const DrawingIndex& index, const PointFilter& filter) {
  FilteredPoints result;
  for (const Point& point : drawing.points) {
    if (!filter.matches(point)) continue;
    if (index.pointByNumber(point.number) != &point) {
      ++result.hidden;
      continue;
    }
    result.numbers.push_back(point.number);
    if (!point.hasElevation) ++result.withoutElevation;
  }
  return result;
}

}  // namespace lvx::civil
