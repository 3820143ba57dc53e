#include "properties/surface_figures.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "view/surface_border.h"

namespace lvx::properties {

SurfaceFigures figuresOf(const civil::TinSurface& surface) {
  SurfaceFigures figures;
  if (surface.isEmpty()) return figures;
  figures.box = surface.box();
  figures.leastElevation = surface.minElevation();
  figures.greatestElevation = surface.maxElevation();
  figures.leastSlope = std::numeric_limits<double>::infinity();
  const auto points = surface.points();
  double moment = 0.0;  // of elevations above the least one, which keeps the digits
  for (const civil::Triangle& triangle : surface.triangles()) {
    const civil::Vec3& a = points[static_cast<std::size_t>(triangle.a)];
    const civil::Vec3& b = points[static_cast<std::size_t>(triangle.b)];
    const civil::Vec3& c = points[static_cast<std::size_t>(triangle.c)];
    const civil::Vec3 u{b.x - a.x, b.y - a.y, b.z - a.z};
    const civil::Vec3 v{c.x - a.x, c.y - a.y, c.z - a.z};
    const double up = u.x * v.y - u.y * v.x;
    if (!(up > 0.0)) continue;  // without area in plan it holds no ground
    const double across = std::hypot(u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z);
    figures.area += up / 2.0;
    figures.area3d += std::hypot(across, up) / 2.0;
    moment += up / 2.0 * ((a.z + b.z + c.z) / 3.0 - figures.leastElevation);
    const double slope = across / up;
    figures.leastSlope = std::min(figures.leastSlope, slope);
    figures.greatestSlope = std::max(figures.greatestSlope, slope);
  }
  if (!(figures.area > 0.0)) figures.leastSlope = 0.0;
  figures.meanElevation = figures.leastElevation + (figures.area > 0.0 ? moment / figures.area : 0.0);
  const view::LineSet border = view::surfaceBorder(surface);
  for (const view::Line& line : border.lines(border.box(), 0.0))
    for (std::size_t i = 1; i < line.size(); ++i) figures.borderLength += civil::length(line[i] - line[i - 1]);
  return figures;
}

}  // namespace lvx::properties
