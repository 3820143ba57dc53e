#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "view/lines.h"

/// A cross section as a picture: offsets against the alignment (negative: left) and elevations, in drawing units.
///
///     if (auto section = view::sectionOf(drawing, sampleLine))
///       for (const view::SectionGround& ground : section->grounds) draw(ground.lines);
namespace lvx::view {

/// The ground of one surface along a sample line.
struct SectionGround {
  civil::Handle surface = 0;
  std::string name;
  /// From left to right; one line for each stretch on the surface, a single point where it is only touched. Where a
  /// bent sample line comes back in offset, so does the line. The points are the rows of the projection report.
  Lines lines;
};

struct SectionPlace {
  civil::Vec2 place;
  std::vector<std::string> codes;
};

struct SectionShape {
  std::vector<std::string> codes;
  std::vector<SectionPlace> points;
  bool isClosed = false;  ///< the last point leads back to the first
};

/// What one corridor builds there, by one of its baselines.
struct SectionCorridor {
  civil::Handle corridor = 0;
  std::string name;
  std::string baseline;
  /// The section's own label; mostly empty.
  std::string label;
  bool isComputed = false;
  /// Elevation of the baseline's profile, which the section is drawn on; 0 without a profile.
  double profileElevation = 0.0;
  std::vector<SectionShape> parts;
  /// The parts as lines; of a closed one the first point stands at the end again.
  [[nodiscard]] Lines lines() const;
  /// Their upper edge: what is driven on, and the slopes down or up to the ground.
  [[nodiscard]] Lines top() const;
};

/// A point of a section's picture.
struct SectionVertex {
  enum class Owner : std::uint8_t { Ground, Corridor };
  Owner owner = Owner::Ground;
  /// Index in the model's grounds or corridors.
  std::size_t index = 0;
  civil::Vec2 place;
  /// Of the corridor's point, then of its part.
  std::vector<std::string> codes;
  double distance = 0.0;  ///< in reaches
};

struct SectionModel {
  /// 0 for a section across the alignment where no sample line stands.
  civil::Handle sampleLine = 0;
  std::string name;
  std::string groupName;
  civil::Handle alignment = 0;
  std::string alignmentName;
  double station = 0.0;
  /// How far the sample line reaches; both 0 where the alignment has no geometry to measure against.
  double leastOffset = 0.0;
  double greatestOffset = 0.0;
  /// Every surface of the drawing, also those that the line misses.
  std::vector<SectionGround> grounds;
  /// The corridors that have a section at the line's station.
  std::vector<SectionCorridor> corridors;

  /// How high the lines lie at the alignment: the first ground there, else the middle of what is
  /// drawn. Empty where there is nothing.
  [[nodiscard]] std::optional<double> levelAtAxis() const;
  /// Of all that is drawn; empty where there is nothing.
  [[nodiscard]] civil::Box box() const;
  /// The nearest point at most one reach away, of those whose owner `isShown` takes; corridors before ground.
  [[nodiscard]] std::optional<SectionVertex> nearest(
      civil::Vec2 place, civil::Vec2 reach,
      const std::function<bool(SectionVertex::Owner, std::size_t index)>& isShown = {}) const;
};

/// The section at a sample line of the drawing, as the projection report measures it: the ends of the line's legs by
/// their offset from the alignment, what lies between by its distance from the leg's inner end. Empty where the drawing
/// has no such sample line. Agrees with the report's rows within 1e-9. Costs what sampling the surfaces costs, and
/// O(sample lines) to find the line.
[[nodiscard]] std::optional<SectionModel> sectionOf(const civil::Drawing& drawing, civil::Handle sampleLine);

/// How far a section reaches to each side, above 0.
struct SectionReach {
  double left = 0.0;
  double right = 0.0;
};
/// For a section where no sample line stands: what the corridors build there and a quarter more, no less than the two
/// neighbours of the group reach (by their distance), no less than kLeastReach. `group` 0: of the alignment's first one.
/// O(lines of the group, and what finding the corridors' sections costs).
[[nodiscard]] SectionReach reachAt(const civil::Drawing& drawing, civil::Handle alignment, civil::Handle group,
                                   double station);
inline constexpr double kLeastReach = 10.0;

/// A section square to the alignment, ground and corridors, as one at a sample line from left to right. Empty where the
/// drawing has no such alignment and where the alignment hasn't got the station.
[[nodiscard]] std::optional<SectionModel> sectionAcross(const civil::Drawing& drawing, civil::Handle alignment,
                                                        double station, SectionReach reach);

/// Where a section can be looked at: at a sample line or where a corridor has one.
struct SectionStop {
  double station = 0.0;
  /// 0: only corridors have a section there.
  civil::Handle sampleLine = 0;
  /// Of the sample line, else the label of the corridor's section, else the corridor's.
  std::string name;
};
/// All of an alignment, ascending: the sample lines of a group (0: none) and every corridor section that stands at none
/// of them. Sections beyond the alignment's ends have no place and are left out. O(n log n).
[[nodiscard]] std::vector<SectionStop> sectionStops(const civil::Drawing& drawing, civil::Handle alignment,
                                                    civil::Handle group);
/// The nearest by station, of equals the former; empty where there are none. O(log n).
[[nodiscard]] std::optional<std::size_t> nearestStop(const std::vector<SectionStop>& stops, double station);
/// Where in plan an offset of a section lies: on the legs of its sample line, by the rule that sectionOf measures by;
/// square to the alignment where it has none. An offset beyond the line's ends counts as its end. Empty where the
/// drawing has no such line or alignment. O(sample lines).
[[nodiscard]] std::optional<civil::Vec2> placeAtOffset(const civil::Drawing& drawing, const SectionModel& section,
                                                       double offset);
/// The first group of sample lines of an alignment; 0 where it has none.
[[nodiscard]] civil::Handle firstGroupOf(const civil::Drawing& drawing, civil::Handle alignment);
/// The group that a sample line is in; 0 where the drawing has no such line.
[[nodiscard]] civil::Handle groupOf(const civil::Drawing& drawing, civil::Handle sampleLine);

/// A sample line among its kind.
struct SampleLineEntry {
  civil::Handle handle = 0;
  std::string name;
  double station = 0.0;
};
/// The lines of the group that `sampleLine` is in, ascending by station; empty where the drawing has no such line.
/// O(n log n) in the group's lines.
[[nodiscard]] std::vector<SampleLineEntry> sampleLinesBeside(const civil::Drawing& drawing, civil::Handle sampleLine);

}  // namespace lvx::view
