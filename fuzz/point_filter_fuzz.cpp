// Conditions on points: any text is read or refused by PointFilterError, and patterns match as their plainest definition
// says. Up to the first line's end stands a condition, behind it a text and a pattern, one a line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "civil/drawing.h"
#include "civil/point_filter.h"

namespace {

std::size_t letterLength(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) ++length;
  return length;
}

/// By a table of all beginnings of both; letters are UTF-8.
bool isLike(std::string_view text, std::string_view pattern) {
  std::vector<char> former(text.size() + 1, 0);
  former[0] = 1;
  for (std::size_t at = 0; at < pattern.size();) {
    const std::size_t length = letterLength(pattern.substr(at));
    std::vector<char> now(text.size() + 1, 0);
    if (pattern[at] == '*') {
      bool isReached = false;
      for (std::size_t i = 0; i <= text.size(); ++i) {
        isReached = isReached || former[i] != 0;
        now[i] = isReached ? 1 : 0;
      }
    } else {
      for (std::size_t i = 0; i < text.size(); ++i) {
        if (former[i] == 0) continue;
        const std::size_t letter = letterLength(text.substr(i));
        if (pattern[at] == '?' || text.substr(i, letter) == pattern.substr(at, length)) now[i + letter] = 1;
      }
    }
    former = std::move(now);
    at += length;
  }
  return former[text.size()] != 0;
}

bool isPlain(std::string_view text) {
  for (const char c : text)
    if (static_cast<unsigned char>(c) >= 0x80U) return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lvx::civil;
  constexpr std::size_t kMost = 512;
  if (size > kMost) return 0;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  const auto nextLine = [&] {
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return line;
  };
  const std::string_view conditions = nextLine();
  const std::string_view text = nextLine();
  const std::string_view pattern = nextLine();
  // Of bytes that are no UTF-8 only that they end is asked.
  const bool found = isLikePattern(text, pattern);
  if (isPlain(text) && isPlain(pattern) && found != isLike(text, pattern)) std::abort();
  if (!isLikePattern(text, "*")) std::abort();

  try {
    const PointFilter filter = PointFilter::parse(conditions);
    Drawing drawing;
    for (std::int32_t number = 1; number <= 4; ++number) {
      Point point;
      point.number = number;
      point.handle = static_cast<Handle>(number) + 0x100;
      point.position = {0.0, 0.0, 10.0 * number};
      point.hasElevation = number != 3;
      drawing.points.push_back(std::move(point));
    }
    const DrawingIndex index(drawing);
    const FilteredPoints points = pointsWhere(drawing, index, filter);
    PointFilter twice = filter;
    twice.add(filter);
    std::size_t count = 0;
    for (const Point& point : drawing.points) {
      if (filter.matches(point) != twice.matches(point)) std::abort();
      count += filter.matches(point) ? 1U : 0U;
    }
    if (points.numbers.size() + points.hidden != count) std::abort();
  } catch (const PointFilterError&) {
    return 0;
  }
  return 0;
}
