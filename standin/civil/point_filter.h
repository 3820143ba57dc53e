#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "civil/drawing.h"

/// Points of a drawing chosen by what they are.
///
///     const PointFilter trees = PointFilter::parse("description=TREE*;BUSH*,elevation=100..120");
///     const std::vector<std::int32_t> numbers = pointsWhere(drawing, index, trees).numbers;
namespace lvx::civil {

/// Conditions that can't be read. The text starts with "points: " and names the key and the value that are wrong.
class PointFilterError : public std::invalid_argument {
 public:
  explicit PointFilterError(const std::string& text) : std::invalid_argument("points: " + text) {}
};

/// One key of the conditions, for help and messages.
struct PointFilterKey {
  std::string_view key;
  /// "PATTERN" or "RANGE".
  std::string_view value;
  std::string_view meaning;
};
[[nodiscard]] std::span<const PointFilterKey> pointFilterKeys();

/// Whether the whole of `text` is like `pattern`, in which * stands for any letters or none and ? for one letter; capital
/// and small letters differ. Both are UTF-8. O(length of both multiplied) at worst, linear with one *.
[[nodiscard]] bool isLikePattern(std::string_view text, std::string_view pattern);

/// Conditions that all have to hold. Without any it lets every point through.
class PointFilter {
 public:
  PointFilter() = default;

  /// Reads "key=value" pairs between commas; keys are those of pointFilterKeys(), and one may stand several times.
  ///
  /// A text's value is a pattern for the whole text ("TREE*"); "description" looks at both descriptions of a point, and
  /// "name" takes the number for the name of a point that has no other. A number's value is one number ("7"), or a range
  /// with both ends in it: "100..120", "1-50", "100.." and "..120" without the other end. Alternatives stand between
  /// semicolons: "TREE*;BUSH*", "1-50;60". Within single or double quotes commas and semicolons are letters like others.
  ///
  /// Throws PointFilterError for an unknown key, a value that isn't of its kind, a range that descends, and where there
  /// is no condition.
  [[nodiscard]] static PointFilter parse(std::string_view text);

  /// Lets through what both do.
  void add(const PointFilter& other);

  /// A point without an elevation is in no range of elevations.
  [[nodiscard]] bool matches(const Point& point) const;

 private:
  enum class Key : std::uint8_t { Description, Name, Elevation, Number };
  struct Range {
    double low = 0.0;
    double high = 0.0;
  };
  /// One pair; any of its alternatives will do.
  struct Condition {
    Key key = Key::Number;
    std::vector<std::string> patterns;
    std::vector<Range> ranges;
  };
  [[nodiscard]] static bool holds(const Condition& condition, const Point& point);
  [[nodiscard]] static Range readRange(std::string_view key, std::string_view text, bool isWhole);

  std::vector<Condition> conditions_;
};

struct FilteredPoints {
  /// In the drawing's order, each once.
  std::vector<std::int32_t> numbers;
  /// Points that match but that their number doesn't find, since another one has it before them; they aren't among the
  /// numbers.
  std::size_t hidden = 0;
  /// Of those among the numbers.
  std::size_t withoutElevation = 0;
};

/// The points that `filter` lets through. O(n log n).
[[nodiscard]] FilteredPoints pointsWhere(const Drawing& drawing, const DrawingIndex& index, const PointFilter& filter);

}  // namespace lvx::civil
