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
