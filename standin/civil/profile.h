#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "civil/rare.h"
#include "civil/value_list.h"

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

/// A point of the ground under an alignment.
struct ProfilePoint {
  double station = 0.0;
  double elevation = 0.0;
};

/// One intersection point as the companion library hands it out: parabolas only. Grades are ratios.
struct VerticalRecord {
  double station = 0.0;
  double elevation = 0.0;
  /// Positive; 0 for none.
  double radius = 0.0;
  double halfLength = 0.0;
  double gradeIn = 0.0;
  double gradeOut = 0.0;
};

/// A vertical curve as the profile draws it.
struct VerticalCurve {
  /// Index of its point of intersection.
  std::size_t point = 0;
  /// Where it leaves the tangent before it and meets the one behind it, also where another curve answers there.
  double startStation = 0.0;
  double endStation = 0.0;
  double gradeIn = 0.0;
  double gradeOut = 0.0;
};

/// A stretch of stations without ground.
struct ProfileGap {
  double startStation = 0.0;
  double endStation = 0.0;
};

/// A vertical alignment over the stations of a horizontal one: tangents between intersection points, rounded off by
/// parabolas and circles; or ground as a polyline with gaps. Elevations, stations, lengths and radii in drawing units;
/// grades as ratios, positive where the road rises with its stations: 0.025 is 2.5 per cent. What it answers is exact but
/// for the rounding of the numbers, some 1e-12 at the heights of roads. Building it is O(n log n). Immutable once built;
/// its queries may run in several threads at once. Memory: 16 bytes a point and 40 a curve.
///
///     const auto road = Profile::design({{0, 100.0}, {200, 104.0, VerticalCurveKind::Parabola, 80}, {400, 102.0}});
///     road.elevationAt(200);   // 103.7: the curve lies 0.3 below its point of intersection
///     road.gradeAt(100);       // 0.02
class Profile {
  [[nodiscard]] VerticalPoint pointAt(std::size_t index) const;

 public:
  using Points = ValueList<Profile, VerticalPoint, &Profile::pointAt>;

  Profile() = default;

  /// A design profile. Points are sorted by station (stable). A curve that can't be drawn becomes a plain point, with a
  /// warning: one without a size, or without a tangent on both sides (at the profile's first or last point, or where
  /// the point before or after it has the same station). A curve that is longer than its tangents, or runs into the
  /// curve before it, is kept with a warning; where two overlap, the first answers. An unsymmetric parabola that
  /// overlaps a neighbour as given and not at half its lengths is taken at half, with a warning: one exporter doubles
  /// them.
  [[nodiscard]] static Profile design(std::vector<VerticalPoint> points);
  /// A ground profile: one polyline of (station, elevation) per list, with a gap between lists; lists may come in any
  /// order, empty ones don't count.
  [[nodiscard]] static Profile ground(std::vector<std::vector<ProfilePoint>> polylines);

  [[nodiscard]] bool isGround() const { return ground_; }
  [[nodiscard]] bool isEmpty() const { return points_.empty(); }
  /// As taken: sorted, finite, curves that can't be drawn left out. One point costs O(log n) of the curves.
  [[nodiscard]] Points points() const { return {*this, points_.size()}; }
  /// Stations of the first and last point; 0 for a profile without points.
  [[nodiscard]] double startStation() const;
  [[nodiscard]] double endStation() const;
  /// Number of gaps between the polylines of a ground profile.
  [[nodiscard]] std::size_t gapCount() const { return extras_.orNone().gaps.size(); }
  /// The gaps themselves, ascending.
  [[nodiscard]] std::span<const ProfileGap> gaps() const { return extras_.orNone().gaps; }
  /// The curves of a design profile, ascending by point.
  [[nodiscard]] std::vector<VerticalCurve> curves() const;
  /// What is odd about the given points, one sentence each ("circular curve at 120: radius 0").
  [[nodiscard]] const std::vector<std::string>& warnings() const { return extras_.orNone().warnings; }

  /// Elevation at a station: on tangents, in curves, beyond the ends by the end tangents, in a gap on the straight line
  /// across it. Of two points at one station the later answers there. Empty for a profile without points and for a
  /// station that is no number; one point gives its elevation everywhere. O(log n), and beyond an end as many steps as
  /// points repeat its station.
  [[nodiscard]] std::optional<double> elevationAt(double station) const;
  /// The grade there, by the same rules; where it jumps, that behind the station. Empty where elevationAt is.
  [[nodiscard]] std::optional<double> gradeAt(double station) const;

  /// The intersection points for the companion library, ascending: an unsymmetric parabola as two symmetric ones
  /// (exact), a circle as the parabola of the same radius with half length R |grade change| / 2, a parabola between
  /// equal grades with half its length and radius 0. First and last record are the ends of the profile; the grade that
  /// an end lacks is that of its other side.
  [[nodiscard]] std::vector<VerticalRecord> records() const;

 private:
  class Design;

  /// What a point has beside its place.
  struct Curve {
    double length = 0.0;
    /// As VerticalPoint's `lengthOut`, or its `radius` for a circle.
    double second = 0.0;
    /// The stations at which it answers: its own, or what the curves before it leave of them, which may be none. Ends
    /// never fall.
    double startStation = 0.0;
    double endStation = 0.0;
    std::uint32_t point = 0;
    std::uint32_t circle : 29 = 0;  ///< of a circle: its place among them
    VerticalCurveKind kind : 3 = VerticalCurveKind::None;
  };
  /// Of a circle what takes long to compute.
  struct Circle {
    double originStation = 0.0;
    double originElevation = 0.0;
    double sine = 0.0;  ///< of the arriving tangent's angle
    double cosine = 1.0;
  };
  /// A curve worked out, for the elevations and grades on it.
  struct Shape;
  /// What few profiles have.
  struct Extras {
    std::vector<Circle> circles;
    std::vector<std::string> warnings;
    std::vector<ProfileGap> gaps;
  };

  [[nodiscard]] Shape shapeOf(const Curve& curve, bool isBehindPoint) const;
  [[nodiscard]] double gradeIn(std::size_t i) const;
  [[nodiscard]] double gradeOut(std::size_t i) const;

  // The curves apart from the points, since most points have none; grades aren't kept, for the points give them.
  std::vector<ProfilePoint> points_;
  std::vector<Curve> curves_;  ///< ascending by point
  Rare<Extras> extras_;
  bool ground_ = false;
};

/// The polylines of a ground profile, parted at its gaps; one of all points where it has none.
[[nodiscard]] std::vector<std::vector<ProfilePoint>> groundPieces(const Profile& profile);

}  // namespace lvx::civil
