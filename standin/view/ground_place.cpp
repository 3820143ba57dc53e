#include "view/ground_place.h"

#include <cmath>
#include <span>

namespace lvx::view {

using civil::Triangle;
using civil::Vec2;
using civil::Vec3;

namespace {

/// Of the highest triangle at the place.
std::optional<GroundPlace> groundOf(const SurfaceShape& shape, Vec2 place) {
  const std::span<const Vec3> points = shape.object->surface.points();
  const std::span<const Triangle> triangles = shape.object->surface.triangles();
  std::optional<GroundPlace> best;
  shape.tiles->blocks().visit({place.x, place.y, place.x, place.y}, [&](std::size_t first, std::size_t end, bool) {
    for (std::size_t i = first; i < end; ++i) {
      const Vec3& a = points[static_cast<std::size_t>(triangles[i].a)];
      const Vec3& b = points[static_cast<std::size_t>(triangles[i].b)];
      const Vec3& c = points[static_cast<std::size_t>(triangles[i].c)];
      const Vec2 ab{b.x - a.x, b.y - a.y};
      const Vec2 ac{c.x - a.x, c.y - a.y};
      const Vec2 ap{place.x - a.x, place.y - a.y};
      const double area = civil::cross(ab, ac);
      const double atB = civil::cross(ap, ac) / area;
      const double atC = civil::cross(ab, ap) / area;
      if (!(atB >= 0.0) || !(atC >= 0.0) || !(atB + atC <= 1.0)) continue;
      const double elevation = a.z + atB * (b.z - a.z) + atC * (c.z - a.z);
      if (best && best->elevation >= elevation) continue;
      // The plane rises by this to the east and to the north.
      const double east = ((b.z - a.z) * ac.y - (c.z - a.z) * ab.y) / area;
      const double north = ((c.z - a.z) * ab.x - (b.z - a.z) * ac.x) / area;
      const double slope = std::hypot(east, north);
      const double downhill = slope > 0.0 ? civil::azimuthOf(std::atan2(-north, -east)) : 0.0;
      best = GroundPlace{shape.object, elevation, slope, downhill};
    }
    return true;
  });
  return best;
}

}  // namespace

std::optional<GroundPlace> groundAt(const PlanScene& scene, Vec2 place) {
  if (!std::isfinite(place.x) || !std::isfinite(place.y)) return std::nullopt;
  const auto surfaces = scene.surfaces();
  for (auto shape = surfaces.rbegin(); shape != surfaces.rend(); ++shape)
    if (shape->tiles && holds(shape->box, place) && !scene.isHidden(shape->object->handle))
      if (const auto found = groundOf(*shape, place)) return found;
  return std::nullopt;
}

}  // namespace lvx::view
