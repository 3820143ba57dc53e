#pragma once

#include <cmath>
#include <numbers>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "civil/alignment.h"
#include "civil/profile.h"

/// Short text into geometry, and geometry back into text where a test fails. Alignments come from Alignment::fromText.
namespace lvx::civil {

// GoogleTest finds these by name.
inline void PrintTo(const Vec2& p, std::ostream* out) {
  *out << std::string("(") + std::to_string(p.x) + " " + std::to_string(p.y) + ")";
}
inline void PrintTo(const StationOffset& at, std::ostream* out) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(13);
  text << "station " << at.station << " offset " << at.offset;
  *out << text.str();
}
inline void PrintTo(const Pose& pose, std::ostream* out) {
  PrintTo(pose.point, out);
  *out << " direction " << std::to_string(pose.direction);
}

namespace test {

/// "0 100; 50 102 parabola 40; 120 101 circle 500; 200 103 unsymmetric 20 30"
inline std::vector<VerticalPoint> verticalPoints(const std::string& text) {
  std::vector<VerticalPoint> points;
  std::istringstream clauses(text);
  for (std::string clause; std::getline(clauses, clause, ';');) {
    std::istringstream words(clause);
    words.imbue(std::locale::classic());
    VerticalPoint point;
    if (!(words >> point.station >> point.elevation)) throw std::invalid_argument("profile text: " + clause);
    std::string kind;
    if (words >> kind) {
      bool isRead = false;
      if (kind == "parabola") {
        point.kind = VerticalCurveKind::Parabola;
        isRead = static_cast<bool>(words >> point.length);
      } else if (kind == "unsymmetric") {
        point.kind = VerticalCurveKind::UnsymmetricParabola;
        isRead = static_cast<bool>(words >> point.length >> point.lengthOut);
      } else if (kind == "circle") {
        point.kind = VerticalCurveKind::Circle;
        isRead = static_cast<bool>(words >> point.radius);
      }
      if (!isRead) throw std::invalid_argument("profile text: " + clause);
    }
    points.push_back(point);
  }
  return points;
}

inline Profile designProfile(const std::string& text) { return Profile::design(verticalPoints(text)); }

/// "0 10; 20 12"
inline std::vector<ProfilePoint> groundPoints(const std::string& text) {
  std::vector<ProfilePoint> points;
  for (const VerticalPoint& point : verticalPoints(text)) points.push_back({point.station, point.elevation});
  return points;
}

/// "0 10; 20 12 | 40 9; 60 8": lists with a gap between them
inline Profile groundProfile(const std::string& text) {
  std::vector<std::vector<ProfilePoint>> lists;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, '|');) lists.push_back(groundPoints(part));
  return Profile::ground(std::move(lists));
}

/// A pose within `tolerance` in place and direction; the azimuth in degrees.
MATCHER_P4(IsPose, x, y, azimuthDegrees, tolerance, "") {
  if (!arg) {
    *result_listener << "has no pose";
    return false;
  }
  const Pose pose = *arg;
  const double turned = azimuthOf(pose.direction) - azimuthDegrees * (std::numbers::pi / 180.0);
  *result_listener << "azimuth " << azimuthOf(pose.direction) * 180.0 / std::numbers::pi;
  return std::hypot(pose.point.x - x, pose.point.y - y) <= tolerance &&
         std::abs(std::remainder(turned, 2.0 * std::numbers::pi)) <= tolerance;
}

MATCHER_P3(IsStationOffset, station, offset, tolerance, "") {
  if (!arg) {
    *result_listener << "has no station";
    return false;
  }
  if (result_listener->stream()) PrintTo(*arg, result_listener->stream());
  return std::abs(arg->station - station) <= tolerance && std::abs(arg->offset - offset) <= tolerance;
}

}  // namespace test
}  // namespace lvx::civil
