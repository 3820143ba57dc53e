#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "generator/road_geometry.h"
#include "generator/text_output.h"

namespace lvx::generator {

/// The surveyed ground of the valley road drawing: hills on both sides of a brook, a strip along the roads as wide as
/// the surveyors came, with a ragged border, two fenced plots that open to the outside, and the mill pond as a hole.
class ValleyGround {
 public:
  ValleyGround(const RoadPlan& road, const RoadPlan& lane);

  /// Elevation on the triangles, empty where there are none. Constant time.
  [[nodiscard]] std::optional<double> elevationAt(Place place) const;
  /// The `Pnts` and `Faces` elements.
  void write(TextOutput& out, const char* indent) const;

 private:
  enum class Cover : std::uint8_t { Outside, Hidden, Ground };
  struct Vertex {
    double x;
    double y;
    double z;
    Cover cover;
  };
  struct Face {
    std::size_t a;
    std::size_t b;
    std::size_t c;
    Cover cover;
  };
  /// Both triangles of a cell, cut along its shorter diagonal.
  struct CellFaces {
    Face first;
    Face second;
  };
  [[nodiscard]] CellFaces facesOf(std::size_t column, std::size_t row) const;
  [[nodiscard]] Face face(std::size_t a, std::size_t b, std::size_t c) const;
  [[nodiscard]] std::optional<double> elevationIn(const Face& face, Place place) const;

  double west_ = 0.0;
  double south_ = 0.0;
  std::size_t columns_ = 0;
  std::size_t rows_ = 0;
  std::vector<Vertex> vertices_;
};

}  // namespace lvx::generator
