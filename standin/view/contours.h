#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "civil/geometry.h"
#include "civil/tin_surface.h"
#include "view/lines.h"

/// Contours of triangulated ground: lines of one elevation, straight within each triangle, exact where they cross an edge.
///
/// A vertex that lies just at a level counts as above it. So every triangle has one piece of a level's line or none,
/// level triangles have none within, and the line goes round level ground on the side of what lies lower: nothing is drawn
/// twice and no line forks, whatever the elevations are.
///
///     const ContourPlan plan{.interval = 0.5};
///     for (const Contour& contour : contours(ground, plan)) draw(contour.line);
namespace lvx::view {

struct ContourPlan {
  /// Between levels, which are its multiples; drawing units, above 0. Levels closer to 0 than 2^53 intervals.
  double interval = 1.0;
  /// Every so many levels are index contours, which are drawn thicker and labelled.
  int indexEvery = 5;
};

struct Contour {
  /// The elevation divided by the interval.
  std::int64_t step = 0;
  double elevation = 0.0;
  bool isIndex = false;
  /// The first point stands at the end of `line` again.
  bool isClosed = false;
  /// Higher ground lies on its left. At least two points, no two neighbours the same.
  Line line;
};

/// The contours of some triangles: pieces of each triangle, joined where triangles share an edge of two points. Lines end
/// at the border of the ground, and at edges of other than two triangles where nothing goes on.
class ContourGatherer {
 public:
  /// `points` live longer.
  ContourGatherer(std::span<const civil::Vec3> points, const ContourPlan& plan) : points_(points), plan_(plan) {}

  /// Nothing for a triangle that no level goes through, and for one without area.
  void add(const civil::Triangle& triangle);
  [[nodiscard]] std::size_t pieceCount() const { return pieces_.size(); }
  /// Ascending by level. O(pieces). Empties the gatherer.
  [[nodiscard]] std::vector<Contour> take();

 private:
  /// From the edge on which a line comes into a triangle to that on which it leaves.
  struct Piece {
    std::int64_t step;
    std::uint64_t from;
    std::uint64_t to;
  };
  [[nodiscard]] std::int64_t stepsBelow(double elevation) const;
  [[nodiscard]] civil::Vec2 crossing(std::uint64_t edge, double elevation) const;
  void join(std::span<const Piece> pieces, std::vector<Contour>& into) const;

  std::span<const civil::Vec3> points_;
  ContourPlan plan_;
  std::vector<Piece> pieces_;
};

/// All of a surface. Throws std::invalid_argument for an interval that isn't above 0. O(triangles + pieces).
[[nodiscard]] std::vector<Contour> contours(const civil::TinSurface& surface, const ContourPlan& plan);

/// 1, 2 or 5 times a power of ten, `least` at least; 1 where that isn't above 0 or isn't finite.
[[nodiscard]] double roundInterval(double least);

/// A place on a contour where its elevation can be written.
struct ContourLabel {
  civil::Vec2 place;
  /// Of the line there; higher ground lies on its left.
  civil::Vec2 direction;
  double elevation = 0.0;
  bool isIndex = false;
};

/// A place for every line within the box that runs straight enough for a text of `length` drawing units: the straightest
/// one. Lines that are shorter have none.
[[nodiscard]] std::vector<ContourLabel> labelPlaces(const std::vector<Contour>& contours, const civil::Box& box,
                                                    double length);

}  // namespace lvx::view
