#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "generator/text_output.h"

/// The roads of generated drawings. The geometry is the generator's own on purpose: drawings are what the readers and
/// the civil geometry are tested and measured with, so they must not come from the code under test, and their bytes
/// must not change when that code is tuned.
namespace lvx::generator {

/// East and north.
struct Place {
  double x = 0.0;
  double y = 0.0;
};

struct RoadPose {
  Place place;
  double heading = 0.0;  ///< radians counter-clockwise from east
  double sine = 0.0;     ///< of the heading
  double cosine = 1.0;
  /// The point `offset` to the right of the direction of travel (negative: left) and `ahead` along it.
  [[nodiscard]] Place at(double offset, double ahead = 0.0) const {
    return {place.x + sine * offset + cosine * ahead, place.y - cosine * offset + sine * ahead};
  }
};

/// A horizontal alignment. Every element starts at the printed (rounded) end of the one before, and stations add up the
/// lengths that the printed numbers give, so that a reader computes the very stations of this plan.
class RoadPlan {
 public:
  /// Decimals of printed coordinates.
  static constexpr int kDecimals = 6;

  RoadPlan(double startStation, Place start, double headingDegreesFromEast);
  /// Radii are positive for a turn to the left and negative to the right; 0 stands for the infinite radius of a
  /// clothoid.
  RoadPlan& line(double length);
  RoadPlan& arc(double length, double radius);
  RoadPlan& clothoid(double length, double startRadius, double endRadius);

  [[nodiscard]] double startStation() const { return startStation_; }
  [[nodiscard]] double endStation() const { return endStation_; }
  [[nodiscard]] std::size_t elementCount() const { return elements_.size(); }
  /// Station of the start of an element; of the alignment's end for `elementCount()`.
  [[nodiscard]] double stationOfElement(std::size_t index) const;
  /// Signed curvature (positive: left) at a station.
  [[nodiscard]] double curvatureAt(double station) const;
  /// Beyond the ends the end elements are drawn on. O(log n).
  [[nodiscard]] RoadPose poseAt(double station) const;
  /// The `CoordGeom` element.
  void writeCoordGeom(TextOutput& out, std::string_view indent) const;

 private:
  enum class Kind { Line, Arc, Clothoid };
  struct Element {
    Kind kind = Kind::Line;
    double station = 0.0;
    Place start;
    Place end;
    Place corner;  ///< centre of an arc, crossing of the end tangents of a clothoid
    double heading = 0.0;
    double length = 0.0;
    double startCurvature = 0.0;
    double endCurvature = 0.0;
  };

  void append(Kind kind, double nominalLength, double startCurvature, double endCurvature);
  [[nodiscard]] std::size_t elementAt(double station) const;
  [[nodiscard]] static RoadPose along(const Element& element, double distance);

  double startStation_;
  double endStation_;
  Place next_;
  double heading_;
  std::vector<Element> elements_;
};

/// A design profile of tangents and parabolas.
class DesignProfile {
 public:
  /// A point of vertical intersection with the lengths of its parabola before and after it, 0 and 0 for none.
  DesignProfile& add(double station, double elevation, double lengthIn = 0.0, double lengthOut = 0.0);
  [[nodiscard]] double elevationAt(double station) const;
  /// Stations of intersection points and of curve ends, ascending.
  [[nodiscard]] std::vector<double> stations() const;
  /// The points inside a `ProfAlign` element: PVI, ParaCurve, UnsymParaCurve.
  void writePoints(TextOutput& out, std::string_view indent) const;

 private:
  struct Point {
    double station;
    double elevation;
    double lengthIn;
    double lengthOut;
  };
  [[nodiscard]] double grade(std::size_t from) const;
  std::vector<Point> points_;
};

}  // namespace lvx::generator
