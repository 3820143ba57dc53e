#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace lvx::civil {

/// What rounds off the tangents at a point of vertical intersection.
enum class VerticalCurveKind : std::uint8_t { None, Parabola, UnsymmetricParabola, Circle };

/// One point of vertical intersection as a drawing gives it.
struct VerticalPoint {
  double station = 0.0;
  double elevation = 0.0;
  VerticalCurveKind kind = VerticalCurveKind::None;
  /// Parabola: horizontal length. UnsymmetricParabola: length before the point. Circle: arc length as given; the radius
  /// governs.
  double length = 0.0;
  /// UnsymmetricParabola: length after the point.
  double lengthOut = 0.0;
  /// Circle: radius as given, of any sign; the grades decide on crest or sag.
  double radius = 0.0;
};

/// One intersection point as the companion library hands it out: parabolas only.
struct VerticalRecord {
  double station = 0.0;
  double elevation = 0.0;
  /// Positive; 0 for none.
  double radius = 0.0;
  double halfLength = 0.0;
  double gradeIn = 0.0;
  double gradeOut = 0.0;
};

/// A vertical alignment over the stations of a horizontal one: tangents between intersection points, rounded off by
/// parabolas and circles; or ground as a polyline with gaps. Elevations and stations in drawing units, grades as ratios.
class Profile {
 public:
  Profile() = default;

  /// A design profile. Points are sorted by station (stable). Curves that don't fit between their neighbours are kept as
  /// they are and named in `warnings()`; where two overlap, the first wins.
  [[nodiscard]] static Profile design(std::vector<VerticalPoint> points);
  /// A ground profile: one polyline of (station, elevation) per list, with a gap between lists.
  [[nodiscard]] static Profile ground(std::vector<std::vector<VerticalPoint>> polylines);

  [[nodiscard]] bool isGround() const { return ground_; }
  [[nodiscard]] bool isEmpty() const { return points_.empty(); }
  [[nodiscard]] std::span<const VerticalPoint> points() const { return points_; }
  [[nodiscard]] double startStation() const;
  [[nodiscard]] double endStation() const;
  /// Number of gaps between the polylines of a ground profile.
  [[nodiscard]] std::size_t gapCount() const { return gapCount_; }
  /// What is odd about the given points, one sentence each ("circular curve at 120: radius 0").
  [[nodiscard]] const std::vector<std::string>& warnings() const { return warnings_; }

  /// Elevation at a station: on tangents, in curves, beyond the ends by the end tangents, in a gap on the straight line
  /// across it. Empty for a profile without points; one point gives its elevation everywhere. O(log n).
  [[nodiscard]] std::optional<double> elevationAt(double station) const;

  /// The intersection points for the companion library, ascending: an unsymmetric parabola as two symmetric ones (exact), a
  /// circle as the parabola of the same radius with half length R |grade change| / 2, a parabola between equal grades with
  /// half its length and radius 0.
  [[nodiscard]] std::vector<VerticalRecord> records() const;

 private:
  struct Piece {
    double startStation = 0.0;
    double endStation = 0.0;
    // elevation(s) = elevation + grade * d + bend * d^2 with d = s - startStation; a circle by its centre instead.
    double elevation = 0.0;
    double grade = 0.0;
    double bend = 0.0;
    double circleRadius = 0.0;  // signed: positive sag; 0: no circle
    double circleStation = 0.0;
    double circleElevation = 0.0;
  };

  std::vector<VerticalPoint> points_;
  std::vector<Piece> pieces_;
  std::vector<std::string> warnings_;
  std::size_t gapCount_ = 0;
  bool ground_ = false;
};

}  // namespace lvx::civil
