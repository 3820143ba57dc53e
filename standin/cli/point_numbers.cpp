#include "cli/point_numbers.h"

#include <charconv>
#include <unordered_set>

#include "cli/failure.h"

namespace lvx::cli {

namespace {

constexpr std::size_t kMostTold = 20;

/// The number at the head of `text`, which loses it; false where none stands there.
bool takeNumber(std::string_view& text, std::int32_t& number) {
  if (text.empty() || text.front() < '0' || text.front() > '9') return false;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
  return error == std::errc();
}

NumberRange parseRange(std::string_view part) {
  NumberRange range;
  std::string_view rest = part;
  bool good = takeNumber(rest, range.first);
  range.last = range.first;
  if (good && !rest.empty()) {
    good = rest.front() == '-';
    rest.remove_prefix(1);
    good = good && takeNumber(rest, range.last) && rest.empty() && range.first <= range.last;
  }
  if (!good)
    throw Failure(kUsage, "--points: '" + std::string(part) +
                              "' is neither a number nor an ascending range, such as in '1,5,7-9'");
  return range;
}

}  // namespace

std::vector<NumberRange> parsePointNumbers(std::string_view text) {
  std::vector<NumberRange> ranges;
  for (;;) {
    const std::size_t comma = text.find(',');
    ranges.push_back(parseRange(text.substr(0, comma)));
    if (comma == std::string_view::npos) return ranges;
    text.remove_prefix(comma + 1);
  }
}

std::vector<civil::Handle> handlesOfPoints(const civil::DrawingIndex& index, const std::vector<NumberRange>& ranges) {
  std::vector<civil::Handle> handles;
  std::unordered_set<civil::Handle> seen;
  std::string missing;
  std::size_t missingCount = 0;
  for (const NumberRange& range : ranges) {
    // A wide range over few points ends soon: by its first missing numbers.
    for (std::int64_t number = range.first; number <= range.last && missingCount <= kMostTold; ++number) {
      if (const civil::Point* point = index.pointByNumber(static_cast<std::int32_t>(number))) {
        if (seen.insert(point->handle).second) handles.push_back(point->handle);
      } else if (++missingCount <= kMostTold) {
        missing += (missing.empty() ? "" : ", ") + std::to_string(number);
      }
    }
  }
  if (missingCount == 0) return handles;
  throw Failure(kUnknownName, "the drawing holds no point " + missing + (missingCount > kMostTold ? " and more" : ""));
}

}  // namespace lvx::cli
