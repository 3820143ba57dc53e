#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "view/lines.h"

/// A section along a line that somebody draws over the plan: the ground of all surfaces and the top of all corridors over
/// the distance along the line, in drawing units.
///
///     view::FreeSectionWork work(drawing, view::FreeLine({{0, 0}, {80, 20}}));
///     while (work.step()) {}                       // a surface or a baseline each, so a window stays alive between
///     for (const view::FreeSectionPart& part : work.section().parts) draw(part.lines);
namespace lvx::view {

/// The line itself. Points that aren't finite and those that repeat the one before are left out.
class FreeLine {
 public:
  FreeLine() = default;
  explicit FreeLine(const std::vector<civil::Vec2>& points);

  [[nodiscard]] const std::vector<civil::Vec2>& vertices() const { return vertices_; }
  /// Of each vertex, ascending from 0.
  [[nodiscard]] const std::vector<double>& distances() const { return distances_; }
  [[nodiscard]] double length() const { return distances_.empty() ? 0.0 : distances_.back(); }
  /// Nothing can be cut along it: less than two places.
  [[nodiscard]] bool isEmpty() const { return vertices_.size() < 2; }
  /// Distances beyond the ends count as the end. Only of a line that isn't empty.
  [[nodiscard]] civil::Vec2 placeAt(double distance) const;

 private:
  std::vector<civil::Vec2> vertices_;
  std::vector<double> distances_;
};

/// The ground of a surface along the line, in pieces where the line leaves it; single points where it only touches. As
/// TinSurface::sample has it.
[[nodiscard]] Lines groundAlong(const FreeLine& line, const civil::TinSurface& surface);

/// Chords of a corridor's top leave it by no more than this, drawing units of elevation, but for what is narrower along
/// the line than kCorridorStep.
inline constexpr double kCorridorError = 0.001;
inline constexpr double kCorridorStep = 0.5;
/// The top of what a baseline's sections build, along the line: between two sections of a region whose parts agree it runs
/// straight from point to point, otherwise the former section counts up to the next. In pieces where the line leaves the
/// corridor. Takes the larger of kCorridorStep and a 4000th of the line for its first steps; O(steps times the points of a
/// section).
[[nodiscard]] Lines topAlong(const FreeLine& line, const civil::Baseline& baseline);

/// One line of the section.
struct FreeSectionPart {
  /// Of the surface or the corridor.
  civil::Handle handle = 0;
  bool isCorridor = false;
  std::string name;
  /// Of a corridor.
  std::string baseline;
  /// x: distance along the line.
  Lines lines;
};

struct FreeSection {
  FreeLine line;
  /// Corridors by their baselines, then surfaces, each in the order of the drawing; those that the line misses too.
  std::vector<FreeSectionPart> parts;
};

/// Makes a section piece by piece. The drawing's lists must stay as they are until it is done.
class FreeSectionWork {
 public:
  FreeSectionWork(const civil::Drawing& drawing, FreeLine line);
  /// Cuts one more; false where nothing is left to do, or was.
  bool step();
  [[nodiscard]] bool isDone() const { return next_ >= section_.parts.size(); }
  [[nodiscard]] std::size_t done() const { return next_; }
  /// All parts, those that aren't cut yet without lines.
  [[nodiscard]] const FreeSection& section() const { return section_; }

 private:
  FreeSection section_;
  std::vector<const civil::Baseline*> baselines_;
  std::vector<const civil::TinSurface*> surfaces_;
  std::size_t next_ = 0;
};

/// Rows of a table: distance, place, and the elevation of each part that is asked for.
struct FreeSectionRow {
  double distance = 0.0;
  civil::Vec2 place;
  std::vector<std::optional<double>> elevations;
};
/// Of the parts by their indices: at the vertices and wherever one of them turns. Where that would make more than
/// kMostCells elevations, at the vertices and at equal steps, as many as stay below. Ascending.
[[nodiscard]] std::vector<FreeSectionRow> tableOf(const FreeSection& section, const std::vector<std::size_t>& parts);
inline constexpr std::size_t kMostCells = 2'000'000;

/// The line as a sample line of an alignment, from left to right, with the point on the alignment among its vertices; its
/// name is empty. Where it crosses more than once, the crossing nearest to its middle. Empty where it doesn't cross the
/// alignment between its ends. Crossings closer to each other than a 200th of a leg may be missed, both of them.
[[nodiscard]] std::optional<civil::SampleLine> sampleLineAlong(const FreeLine& line, const civil::Alignment& alignment);

}  // namespace lvx::view
