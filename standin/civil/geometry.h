#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

/// Plain geometry of the stand-in: drawing units, x to the east, y to the north, angles in radians counter-clockwise
/// from east unless a name says azimuth (clockwise from north).
namespace lvx::civil {

struct Vec2 {
  double x = 0.0;
  double y = 0.0;
  bool operator==(const Vec2&) const = default;
};

struct Vec3 {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  bool operator==(const Vec3&) const = default;
};

[[nodiscard]] constexpr Vec2 operator+(Vec2 a, Vec2 b) { return {a.x + b.x, a.y + b.y}; }
[[nodiscard]] constexpr Vec2 operator-(Vec2 a, Vec2 b) { return {a.x - b.x, a.y - b.y}; }
[[nodiscard]] constexpr Vec2 operator*(double f, Vec2 a) { return {f * a.x, f * a.y}; }
[[nodiscard]] constexpr double dot(Vec2 a, Vec2 b) { return a.x * b.x + a.y * b.y; }
/// Positive when `b` lies to the left of `a`.
[[nodiscard]] constexpr double cross(Vec2 a, Vec2 b) { return a.x * b.y - a.y * b.x; }
[[nodiscard]] inline double length(Vec2 a) { return std::hypot(a.x, a.y); }
/// False where either coordinate is infinite or no number.
[[nodiscard]] inline bool isFinite(Vec2 a) { return std::isfinite(a.x) && std::isfinite(a.y); }
[[nodiscard]] inline Vec2 unit(double direction) { return {std::cos(direction), std::sin(direction)}; }

inline constexpr double kPi = std::numbers::pi;
inline constexpr double kTwoPi = 2.0 * std::numbers::pi;

/// The same angle in [0, 2 pi). What isn't finite gives NaN.
[[nodiscard]] double normalizedAngle(double angle);
/// Azimuth (clockwise from north, [0, 2 pi)) of a direction counter-clockwise from east, and back: the map is its own
/// inverse.
[[nodiscard]] double azimuthOf(double direction);

/// A place with the direction of travel there.
struct Pose {
  Vec2 point;
  double direction = 0.0;
};

enum class Turn : std::int8_t { Left, Right };

}  // namespace lvx::civil
