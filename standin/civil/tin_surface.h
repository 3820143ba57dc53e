#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "civil/geometry.h"

namespace lvx::civil {

/// Three point indices from 0, in either winding.
struct Triangle {
  std::int32_t a = 0;
  std::int32_t b = 0;
  std::int32_t c = 0;
  bool operator==(const Triangle&) const = default;
};

/// A rectangle along the axes, borders included; empty at first.
struct Box {
  double minX = std::numeric_limits<double>::infinity();
  double minY = std::numeric_limits<double>::infinity();
  double maxX = -std::numeric_limits<double>::infinity();
  double maxY = -std::numeric_limits<double>::infinity();
  [[nodiscard]] bool isEmpty() const { return minX > maxX; }
  void add(Vec2 p) {
    minX = p.x < minX ? p.x : minX;
    minY = p.y < minY ? p.y : minY;
    maxX = p.x > maxX ? p.x : maxX;
    maxY = p.y > maxY ? p.y : maxY;
  }
};

/// Calls `piece(i)` for every i below `count`, each once, in any order, perhaps several at a time; comes back when all have
/// ended, and throws what one of them threw.
using RunPieces = std::function<void(std::size_t count, const std::function<void(std::size_t)>& piece)>;
/// One after the other.
void inOrder(std::size_t count, const std::function<void(std::size_t)>& piece);

/// When a surface builds what finds the triangles at a place.
enum class GroundSearch : std::uint8_t {
  AtOnce,
  WhenAsked,  ///< by the first question for a place, which then takes longer; for who may never ask
};

/// A triangulated ground surface: points and visible triangles, with holes and any border. Coordinates and elevations in
/// drawing units, up to 1e100 in size. Immutable once built; its queries may run in several threads at once.
///
/// Every touch is decided exactly for the coordinates as given: what doubles can't tell is settled by exact arithmetic.
/// So the count and order of the samples never depend on how points and triangles are numbered or wound. Triangles
/// without area in plan (a wall) hold no ground. Overlapping triangles, edges of more than two triangles, corners on
/// other triangles' edges and points given twice are all allowed; where several elevations stand at one place, that of
/// a vertex counts before that of an edge before that within a triangle, then the highest.
///
///     TinSurface ground(std::move(points), std::move(triangles));
///     std::vector<Vec3> samples;
///     ground.sample({0, 0}, {100, 0}, samples);
class TinSurface {
 public:
  struct Counts {
    std::size_t points = 0;
    std::size_t triangles = 0;
    std::size_t degenerate = 0;        ///< triangles without area in plan; they hold no ground
    std::size_t overlappingEdges = 0;  ///< edges with more than two triangles
  };

  TinSurface();
  /// Takes over the arrays. Throws std::invalid_argument for an index outside `points`, for a coordinate that isn't a
  /// number up to 1e100, and for more than 500 million triangles. O(n), with many edges at one point O(n log n). Points
  /// and triangles are renumbered along a space-filling curve. It needs some 11 bytes a triangle beside the arrays, and
  /// while it is built it takes the triangles or the points a second time.
  /// `run` does the work; the surface is the same to the last bit whatever it is, and whatever `search` says.
  TinSurface(std::vector<Vec3> points, std::vector<Triangle> triangles, const RunPieces& run = inOrder,
             GroundSearch search = GroundSearch::AtOnce);
  TinSurface(TinSurface&&) noexcept;
  TinSurface& operator=(TinSurface&&) noexcept;
  ~TinSurface();

  /// Whether there is no ground at all.
  [[nodiscard]] bool isEmpty() const;
  [[nodiscard]] Counts counts() const;
  /// Of the ground: of all triangles with area. Empty, and elevations 0, where there are none.
  [[nodiscard]] Box box() const;
  [[nodiscard]] double minElevation() const;
  [[nodiscard]] double maxElevation() const;
  /// As the surface holds them: in another order than given, triangles counter-clockwise, those without area last.
  [[nodiscard]] std::span<const Vec3> points() const;
  [[nodiscard]] std::span<const Triangle> triangles() const;

  /// Appends the ground along the segment from `a` to `b`, in that order: `a` where it lies on the surface, each
  /// crossing with an edge of a triangle, `b` where it lies on the surface. At a gap the border points stand, nothing
  /// inside. One point where the segment runs through a vertex or touches one; the edge's ends where it runs along an
  /// edge. Points closer than 1e-9 of the segment's length are one. A segment of length 0 gives its point once, or
  /// nothing off the surface; a coordinate that isn't a number up to 1e100 gives nothing. Places are right
  /// to the rounding of the coordinates and of the segment's length. O(samples) and a short walk to `a` where one
  /// layer of triangles covers the ground, or none; O(log n) more elsewhere.
  void sample(Vec2 a, Vec2 b, std::vector<Vec3>& samples) const;

  /// Elevation at a point, in drawing units; empty where there is no ground and for a coordinate that isn't a number.
  /// Right to the rounding of the coordinates. A short walk inside a triangle, O(log n) on edges and vertices.
  [[nodiscard]] std::optional<double> elevationAt(Vec2 point) const;

 private:
  struct Data;
  std::unique_ptr<Data> data_;
};

}  // namespace lvx::civil
