#include "view/snap.h"

#include <cmath>
#include <span>
#include <utility>

namespace lvx::view {

using civil::Box;
using civil::Triangle;
using civil::Vec2;
using civil::Vec3;

namespace {

/// Beyond so many triangles around the mouse their corners are no aim any more.
constexpr std::size_t kMostTriangles = 20'000;
/// Of so many points around the mouse the nearest is looked for.
constexpr std::size_t kMostPoints = 4'000;
/// Of so many ends of elements around the foot on an alignment.
constexpr std::size_t kMostEnds = 1'000;
/// As much longer as the mouse's radius may be the way along an alignment to an end within it.
constexpr double kWay = 2.0;

class Search {
 public:
  Search(const PlanScene& scene, Vec2 place, double radius)
      : scene_(scene),
        place_(place),
        near_(grown({place.x, place.y, place.x, place.y}, radius)),
        radius_(radius),
        least_(radius) {}

  void lookAtPoints() {
    for (const civil::Point* const point : scene_.visiblePoints(near_, kMostPoints).points)
      if (isNearer({point->position.x, point->position.y})) {
        std::optional<double> elevation;
        if (point->hasElevation) elevation = point->position.z;
        take(SnapKind::Point, {point->position.x, point->position.y}, elevation, point->handle);
      }
  }

  void lookAtEnds() {
    for (const AlignmentShape& shape : scene_.alignments()) {
      if (!meet(shape.box, near_) || scene_.isHidden(shape.object->handle)) continue;
      lookAtElements(shape);
    }
    for (const SampleLineShape& shape : scene_.sampleLines()) {
      if (!meet(shape.box, near_) || scene_.isHidden(shape.line->handle)) continue;
      for (const Vec2 vertex : shape.line->vertices)
        if (isNearer(vertex)) take(SnapKind::End, vertex, std::nullopt, shape.line->handle);
    }
  }

  void lookAtVertices() {
    for (const SurfaceShape& shape : scene_.surfaces()) {
      if (!shape.tiles || !meet(shape.box, near_) || scene_.isHidden(shape.object->handle)) continue;
      const std::span<const Vec3> points = shape.object->surface.points();
      const std::span<const Triangle> triangles = shape.object->surface.triangles();
      std::size_t count = 0;
      const bool isFew = shape.tiles->blocks().visit(near_, [&](std::size_t first, std::size_t end, bool) {
        count += end - first;
        return count <= kMostTriangles;
      });
      if (!isFew) continue;
      shape.tiles->blocks().visit(near_, [&](std::size_t first, std::size_t end, bool) {
        for (std::size_t i = first; i < end; ++i)
          for (const std::int32_t corner : {triangles[i].a, triangles[i].b, triangles[i].c}) {
            const Vec3& p = points[static_cast<std::size_t>(corner)];
            if (isNearer({p.x, p.y})) take(SnapKind::Vertex, {p.x, p.y}, p.z, shape.object->handle);
          }
        return true;
      });
    }
  }

  void lookAtAxes() {
    for (const AlignmentShape& shape : scene_.alignments()) {
      if (!meet(shape.box, near_) || scene_.isHidden(shape.object->handle)) continue;
      const auto foot = shape.object->geometry.stationOffset(place_);
      if (!foot || std::abs(foot->offset) > least_) continue;
      const auto pose = shape.object->geometry.poseAt(foot->station);
      if (!pose || !isNearer(pose->point)) continue;
      take(SnapKind::Axis, pose->point, std::nullopt, shape.object->handle);
      found_->station = foot->station;
    }
  }

  [[nodiscard]] bool hasFound() const { return found_.has_value(); }
  [[nodiscard]] std::optional<Snap> found() {
    if (found_)
      if (const auto description = scene_.describe(found_->handle)) found_->name = description->name;
    return std::move(found_);
  }

 private:
  /// The ends of elements around the foot: a polyline may have a million others.
  void lookAtElements(const AlignmentShape& shape) {
    const civil::Alignment& axis = shape.object->geometry;
    const auto foot = axis.stationOffset(place_);
    if (!foot) return;
    const std::size_t count = axis.elements().size();
    std::size_t first = 0;
    for (std::size_t end = count; first < end;) {
      const std::size_t middle = first + (end - first) / 2;
      if (axis.stationOfElement(middle) < foot->station - kWay * radius_)
        first = middle + 1;
      else
        end = middle;
    }
    if (first > 0) --first;
    for (std::size_t i = first; i <= count && i < first + kMostEnds; ++i) {
      const double station = axis.stationOfElement(i);
      const auto pose = axis.poseAt(station);
      if (pose && isNearer(pose->point)) {
        take(SnapKind::End, pose->point, std::nullopt, shape.object->handle);
        found_->station = station;
      }
      if (station > foot->station + kWay * radius_) break;
    }
  }
  /// Than what was found, or as near as the radius where nothing was.
  [[nodiscard]] bool isNearer(Vec2 place) const {
    const double distance = civil::length(place - place_);
    return distance < least_ || (!found_ && distance == least_);
  }
  void take(SnapKind kind, Vec2 place, std::optional<double> elevation, civil::Handle handle) {
    found_ = Snap{kind, place, elevation, handle, {}, {}};
    least_ = civil::length(place - place_);
  }

  const PlanScene& scene_;
  Vec2 place_;
  Box near_;
  double radius_;
  double least_;
  std::optional<Snap> found_;
};

}  // namespace

std::optional<Snap> snapAt(const PlanScene& scene, Vec2 place, double radius, SnapKinds kinds) {
  if (!std::isfinite(place.x) || !std::isfinite(place.y) || !(radius >= 0.0)) return std::nullopt;
  Search search(scene, place, radius);
  if (kinds.has(SnapKind::Point)) search.lookAtPoints();
  if (kinds.has(SnapKind::End)) search.lookAtEnds();
  if (kinds.has(SnapKind::Vertex)) search.lookAtVertices();
  if (!search.hasFound() && kinds.has(SnapKind::Axis)) search.lookAtAxes();
  return search.found();
}

}  // namespace lvx::view
