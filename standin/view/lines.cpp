#include "view/lines.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace lvx::view {

using civil::Box;
using civil::Vec2;

namespace {

Vec2 inReaches(Vec2 a, Vec2 reach) { return {a.x / reach.x, a.y / reach.y}; }

/// Distance from the origin to the segment between `a` and `b`.
double distanceToSegment(Vec2 a, Vec2 b) {
  const Vec2 along = b - a;
  const double square = dot(along, along);
  const double part = square > 0.0 ? std::clamp(-dot(a, along) / square, 0.0, 1.0) : 0.0;
  return length(a + part * along);
}

/// Cuts the parameter range [from, to] of a segment down to where start + t step lies between two limits.
bool cut(double start, double step, double least, double most, double& from, double& to) {
  if (step == 0.0) return start >= least && start <= most;
  double first = (least - start) / step;
  double last = (most - start) / step;
  if (first > last) std::swap(first, last);
  from = std::max(from, first);
  to = std::min(to, last);
  return from <= to;
}

bool isInside(const Box& box, Vec2 p) {
  return p.x >= box.minX && p.x <= box.maxX && p.y >= box.minY && p.y <= box.maxY;
}

}  // namespace

void extend(Box& box, Vec2 place) {
  if (!isFinite(place)) return;
  box.minX = std::min(box.minX, place.x);
  box.maxX = std::max(box.maxX, place.x);
  box.minY = std::min(box.minY, place.y);
  box.maxY = std::max(box.maxY, place.y);
}

void extend(Box& box, const Lines& lines) {
  for (const Line& line : lines)
    for (const Vec2 place : line) extend(box, place);
}

std::optional<double> distanceTo(const Lines& lines, Vec2 place, Vec2 reach) {
  double nearest = std::numeric_limits<double>::infinity();
  for (const Line& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      const Vec2 end = line[i];
      const Vec2 start = i == 0 ? end : line[i - 1];
      // Most segments are far off: told without a division.
      if (std::min(start.x, end.x) > place.x + reach.x || std::max(start.x, end.x) < place.x - reach.x) continue;
      nearest = std::min(nearest, distanceToSegment(inReaches(start - place, reach), inReaches(end - place, reach)));
    }
  }
  if (!(nearest <= 1.0)) return std::nullopt;
  return nearest;
}

std::optional<NearPoint> nearestPoint(const Lines& lines, Vec2 place, Vec2 reach) {
  std::optional<NearPoint> nearest;
  for (const Line& line : lines) {
    for (const Vec2 point : line) {
      if (std::abs(point.x - place.x) > reach.x || std::abs(point.y - place.y) > reach.y) continue;
      const double distance = length(inReaches(point - place, reach));
      if (distance <= 1.0 && (!nearest || distance < nearest->distance)) nearest = NearPoint{point, distance};
    }
  }
  return nearest;
}

std::optional<double> elevationAt(const Lines& lines, double x) {
  for (const Line& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      const Vec2 end = line[i];
      if (end.x == x) return end.y;
      if (i == 0) continue;
      const Vec2 start = line[i - 1];
      if ((start.x < x) == (end.x < x)) continue;
      return start.y + (end.y - start.y) * ((x - start.x) / (end.x - start.x));
    }
  }
  return std::nullopt;
}

Lines clipped(const Lines& lines, const Box& box) {
  Lines inside;
  for (const Line& line : lines) {
    if (line.size() == 1 && isInside(box, line.front())) inside.push_back(line);
    bool isOpen = false;
    for (std::size_t i = 1; i < line.size(); ++i) {
      const Vec2 start = line[i - 1];
      const Vec2 step = line[i] - start;
      double from = 0.0;
      double to = 1.0;
      if (!isFinite(start) || !isFinite(step) || !cut(start.x, step.x, box.minX, box.maxX, from, to) ||
          !cut(start.y, step.y, box.minY, box.maxY, from, to)) {
        isOpen = false;
        continue;
      }
      if (!isOpen) inside.push_back({from > 0.0 ? start + from * step : start});
      inside.back().push_back(to < 1.0 ? start + to * step : line[i]);
      isOpen = to == 1.0;
    }
  }
  return inside;
}

}  // namespace lvx::view
