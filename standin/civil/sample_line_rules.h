#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "civil/alignment.h"
#include "civil/drawing.h"
#include "civil/profile.h"
#include "civil/tin_surface.h"

/// Sample lines made by rules: where along an alignment they stand, how far they reach, what they are called.
///
///     const SampleLineRules rules = parseSampleLineRules("every=20,ends,left=12,right=30,skew=10,name=SL {n}");
///     const std::vector<MadeSampleLine> lines = makeSampleLines(rules, {.axis = axis, .stationText = text});
namespace lvx::civil {

/// Why a line stands at its station. Where lines of several kinds merge, the kind named first here stays, at its exact
/// station.
enum class SampleLineKind : std::uint8_t { Start, End, Listed, Element, IntersectionPoint, CurveEnd, Interval };

/// "start", "end", "listed", "element", "pvi", "curve" or "interval": what {kind} in a name becomes.
[[nodiscard]] const char* kindName(SampleLineKind kind);

/// Rules that can't be read or give no lines that could be used. The text starts with "sample lines: " and names the
/// key and the value that are wrong.
class SampleLineError : public std::invalid_argument {
 public:
  explicit SampleLineError(const std::string& text) : std::invalid_argument("sample lines: " + text) {}
};

/// Where lines stand and how they look. Stations are the alignment's, lengths in drawing units. Rules add up; lines that
/// come closer to each other than `tolerance` merge.
struct SampleLineRules {
  /// A line every so many units; 0 for none. Half of that where the alignment curves by less than `halvedBelow`.
  double every = 0.0;
  /// Counted from `from` (else the alignment's start); false: at multiples of `every`.
  bool countsFromStart = false;
  /// Radius below which intervals are halved, of the curve right there; 0 for none.
  double halvedBelow = 0.0;
  /// The range of stations; empty for the alignment's own end. Beyond the alignment it counts as its end.
  std::optional<double> from;
  std::optional<double> to;
  /// Both ends of the range.
  bool ends = false;
  /// The ends of the horizontal elements.
  bool elements = false;
  /// Of the profile: its points of intersection, its ends included; beginnings and ends of its vertical curves.
  bool intersectionPoints = false;
  bool curveEnds = false;
  /// Which profile; empty leaves the choice to who makes the lines.
  std::string profile;
  std::vector<double> stations;
  /// A line this close to the one before it, or closer, is the same.
  double tolerance = kTolerance;

  /// Distances from the alignment along the line, above 0. A side without one reaches to the border of `border`, or
  /// kWidth where no surface is named.
  std::optional<double> left;
  std::optional<double> right;
  /// The surface whose border lines go out to: to the last place on it within `largest`, across gaps. A line that
  /// doesn't meet it reaches out to `largest`.
  std::string border;
  double largest = kLargestWidth;
  /// Degrees by which lines turn clockwise against square, between -90 and 90.
  double skew = 0.0;

  /// Pattern of the names: {station} as the reports print it, {kind}, {n} counting from 1; {{ for a brace.
  std::string name = "{station}";

  static constexpr double kTolerance = 0.001;
  static constexpr double kWidth = 30.0;
  static constexpr double kLargestWidth = 200.0;

  friend bool operator==(const SampleLineRules&, const SampleLineRules&) = default;
};

/// One key of the rules' text form, for help and messages.
struct SampleLineKey {
  std::string_view key;
  /// "N", "yes", "NAME", ...
  std::string_view value;
  std::string_view meaning;
};
inline constexpr std::size_t kSampleLineKeyCount = 18;
[[nodiscard]] std::span<const SampleLineKey> sampleLineKeys();

/// Rules from "key=value" pairs between commas: "every=20,left=30,right=30,border=Existing ground". Keys are those of
/// sampleLineKeys(); one that takes yes or no may stand alone for yes. A value with a comma stands in single or double
/// quotes. Stations may be written as numbers or as 1+020.5, several between semicolons. Throws SampleLineError for an
/// unknown key, a key given twice, a value that isn't of its kind or range, and where nothing says where lines stand.
[[nodiscard]] SampleLineRules parseSampleLineRules(std::string_view text);

/// One key with its value as texts: "yes" for a flag that is set.
struct SampleLineRule {
  std::string key;
  std::string value;

  friend bool operator==(const SampleLineRule&, const SampleLineRule&) = default;
};
/// The pairs of such a text, quotes taken off; values aren't looked at yet. Throws SampleLineError for an unknown key, a
/// key without its value and a quote that isn't closed.
[[nodiscard]] std::vector<SampleLineRule> splitSampleLineRules(std::string_view text);
/// Rules from pairs, as parseSampleLineRules makes them from the pairs of its text. For those who take each key by itself,
/// with values that need no quotes.
[[nodiscard]] SampleLineRules sampleLineRules(std::span<const SampleLineRule> pairs);

/// The text that parses to the same rules; keys at their defaults left out.
[[nodiscard]] std::string textOf(const SampleLineRules& rules);

/// Throws SampleLineError where a value is out of range: what parseSampleLineRules checks, for rules made otherwise.
void checkRules(const SampleLineRules& rules);

/// What lines are made over. References and pointers are used only while the lines are made.
struct SampleLineGround {
  const Alignment& axis;
  /// Of intersectionPoints and curveEnds; null where there is none.
  const Profile* profile = nullptr;
  /// Of `border`; null where there is none.
  const TinSurface* border = nullptr;
  /// A station as names show it; without one with three decimals.
  std::function<std::string(double)> stationText{};
};

struct SampleLineStation {
  double station = 0.0;
  SampleLineKind kind = SampleLineKind::Interval;
};

/// What set how far a line reaches on one side.
enum class SampleLineReach : std::uint8_t {
  Width,     ///< a fixed width
  Border,    ///< the border of the surface
  Largest,   ///< the largest width: the surface goes on behind it
  NoGround,  ///< the largest width: the line doesn't meet the surface on this side
};

struct MadeSampleLine {
  double station = 0.0;
  SampleLineKind kind = SampleLineKind::Interval;
  std::string name;
  Vec2 left;
  Vec2 center;  ///< on the alignment
  Vec2 right;
  SampleLineReach leftReach = SampleLineReach::Width;
  SampleLineReach rightReach = SampleLineReach::Width;
  [[nodiscard]] std::vector<Vec2> vertices() const { return {left, center, right}; }
};

/// No more lines than this.
inline constexpr std::size_t kMostSampleLines = 1'000'000;

/// Where the rules set lines, ascending. Throws SampleLineError where they give none or more than kMostSampleLines, need
/// a profile that isn't there, or are out of range. O(n) for intervals, O(n log n) for the others.
[[nodiscard]] std::vector<SampleLineStation> sampleLineStations(const SampleLineRules& rules, const Alignment& axis,
                                                                const Profile* profile);

/// The lines themselves, by ascending station. Throws as sampleLineStations does, and where a border is named and
/// `ground.border` is null or empty. 100 000 lines of fixed widths take well below a second; lines out to a border cost
/// what sampling the surface along `largest` does.
[[nodiscard]] std::vector<MadeSampleLine> makeSampleLines(const SampleLineRules& rules, const SampleLineGround& ground);
/// A part of them, for those who make many in pieces: at `stations`, which follow one another in what sampleLineStations
/// gave; {n} is `number` for the first. Stations where the alignment has no shape are left out.
[[nodiscard]] std::vector<MadeSampleLine> makeSampleLines(const SampleLineRules& rules, const SampleLineGround& ground,
                                                          std::span<const SampleLineStation> stations,
                                                          std::size_t number);

/// Lines as a drawing holds them, without handles.
[[nodiscard]] std::vector<SampleLine> sampleLinesOf(const std::vector<MadeSampleLine>& lines);

}  // namespace lvx::civil
