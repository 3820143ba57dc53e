#pragma once

#include <cstdint>
#include <optional>

#include "civil/geometry.h"

namespace lvx::civil {

/// The last five are transition curves, named by the law that their curvature follows.
enum class ElementKind : std::uint8_t { Line, Arc, Clothoid, Bloss, Cosine, Biquadratic, Sinusoid };

[[nodiscard]] constexpr bool isTransition(ElementKind kind) { return kind >= ElementKind::Clothoid; }
/// "line", "arc", "clothoid", "bloss", "cosine", "biquadratic", "sinusoid".
[[nodiscard]] const char* kindName(ElementKind kind);

/// Which part of its change the curvature of a transition has made at `t`, the part of its length: from 0 at 0 to 1 at
/// 1, never falling. `t` outside counts as the end that it passed.
///     clothoid t; bloss 3 t^2 - 2 t^3; cosine (1 - cos(pi t)) / 2; sinusoid t - sin(2 pi t) / (2 pi);
///     biquadratic 2 t^2 up to 1/2, then 1 - 2 (1 - t)^2
[[nodiscard]] double curvatureShare(ElementKind law, double t);

/// One element of a horizontal alignment: a line, a circular arc or a transition curve. Curvature (1 / radius, positive
/// to the left) runs from `startCurvature` to `endCurvature`, which may be of any sign, by the law of the kind; it is 0
/// on a line and constant on an arc. The element starts at its own given start point whatever the element before it did.
struct Element {
  ElementKind kind = ElementKind::Line;
  Vec2 start;
  /// Direction of travel at the start.
  double direction = 0.0;
  double length = 0.0;
  double startCurvature = 0.0;
  double endCurvature = 0.0;
  /// The end point as the drawing gives it; what the element itself computes may miss it by the drawing's rounding.
  Vec2 givenEnd;

  /// Position and direction at `distance` along the element; distances outside [0, length] continue the element's own
  /// curve (a transition other than a clothoid with the curvature of its end). The direction isn't reduced to one turn.
  /// Position error below 1e-9 on elements up to 1 km.
  [[nodiscard]] Pose poseAt(double distance) const;
  [[nodiscard]] double curvatureAt(double distance) const;
  [[nodiscard]] double directionAt(double distance) const;
  /// The distance inside the element where a transition passes from one side to the other; empty where none does.
  [[nodiscard]] std::optional<double> inflection() const;
  [[nodiscard]] Pose endPose() const { return poseAt(length); }
};

/// Points this close are one: closer than any drawing gives its coordinates.
inline constexpr double kSamePoint = 1e-9;

// The makers take what a drawing holds, wrong values too: a length, radius or point that is no finite number never
// throws; a length that isn't above 0 counts as 0. `Alignment` passes over elements that have no length or no finite
// geometry.

/// Length = chord. A line of length 0 has direction 0.
[[nodiscard]] Element makeLine(Vec2 start, Vec2 end);

/// Radius = distance from start to center; length = radius times the angle from start to end in the sense of `turn`,
/// in (0, 2 pi). Equal start and end points (within kSamePoint) give length 0, never the full circle: drawings hold
/// arcs without length, and give a closed circle in two arcs or more. A center on the start point gives length 0 too.
[[nodiscard]] Element makeArc(Vec2 start, Vec2 center, Vec2 end, Turn turn);

/// A transition curve of kind `law`. Starts in the direction of `pi` (away from it where the curve turns by more than half a circle, since the end
/// tangents then cross behind the start); without one, or with one on the start point, in the direction that puts the
/// curve's own chord on the chord from start to end. Radii are unsigned (a sign is passed over), empty or 0 for
/// infinite. Equal radii give an arc, two infinite ones a line, both of that length.
[[nodiscard]] Element makeTransition(ElementKind law, Vec2 start, std::optional<Vec2> pi, Vec2 end, double length,
                                     std::optional<double> startRadius, std::optional<double> endRadius, Turn turn);
[[nodiscard]] inline Element makeClothoid(Vec2 start, std::optional<Vec2> pi, Vec2 end, double length,
                                          std::optional<double> startRadius, std::optional<double> endRadius,
                                          Turn turn) {
  return makeTransition(ElementKind::Clothoid, start, pi, end, length, startRadius, endRadius, turn);
}

}  // namespace lvx::civil
