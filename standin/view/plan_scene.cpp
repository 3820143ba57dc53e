#include "view/plan_scene.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <unordered_set>
#include <utility>
#include <variant>

#include "view/surface_border.h"

namespace lvx::view {

using civil::Box;
using civil::Corridor;
using civil::Drawing;
using civil::Handle;
using civil::ObjectKind;
using civil::Point;
using civil::SampleLine;
using civil::SampleLineGroup;
using civil::Site;
using civil::SurfaceObject;
using civil::Vec2;

namespace {

constexpr std::size_t kPointRun = 64;
/// Baselines are kept as lines this close to their alignments.
constexpr double kBaselineTolerance = 0.01;

Vec2 placeOf(const Point& point) { return {point.position.x, point.position.y}; }

std::string nameOf(const Point& point) {
  if (!point.texts.name().empty()) return std::string(point.texts.name());
  std::array<char, 16> digits{};
  return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), point.number).ptr};
}

template <class Object>
std::string nameOf(const Object& object) {
  return object.name;
}

/// The bits of a number with a gap after each.
std::uint64_t spreadBits(std::uint32_t number) {
  std::uint64_t bits = number;
  bits = (bits | bits << 16) & 0x0000ffff0000ffffULL;
  bits = (bits | bits << 8) & 0x00ff00ff00ff00ffULL;
  bits = (bits | bits << 4) & 0x0f0f0f0f0f0f0f0fULL;
  bits = (bits | bits << 2) & 0x3333333333333333ULL;
  return (bits | bits << 1) & 0x5555555555555555ULL;
}

/// In which order points are left out where there are too many: as good as by lot, and always the same.
std::uint32_t lotOf(std::uint32_t index) {
  std::uint32_t lot = index * 0x9e3779b1U;
  lot = (lot ^ lot >> 15) * 0x85ebca77U;
  lot = (lot ^ lot >> 13) * 0xc2b2ae3dU;
  return lot ^ lot >> 16;
}

void addCorridorLines(const civil::Baseline& baseline, CorridorShape& shape) {
  if (!baseline.alignment) return;
  const civil::Alignment& alignment = baseline.alignment->geometry;
  const Box everywhere = grown(boxAround(alignment), 1.0);
  for (const civil::Region& region : baseline.regions) {
    for (const Line& line :
         polylines(alignment, everywhere, kBaselineTolerance, region.startStation, region.endStation))
      shape.baselines.add(line);
    Line left;
    Line right;
    for (const civil::CorridorSection& section : region.sections) {
      double least = std::numeric_limits<double>::infinity();
      double most = -least;
      for (const civil::SectionPart& part : section.parts)
        for (const civil::SectionPoint& point : part.points) {
          least = std::min(least, point.offset);
          most = std::max(most, point.offset);
        }
      if (!(least <= most)) continue;
      // A section off the alignment has no place.
      const auto leftPose = alignment.pointLocation(section.station, least);
      const auto rightPose = alignment.pointLocation(section.station, most);
      if (!leftPose || !rightPose) continue;
      left.push_back(leftPose->point);
      right.push_back(rightPose->point);
    }
    shape.edges.add(left);
    shape.edges.add(right);
  }
}

CorridorShape shapeOf(const Corridor& corridor) {
  CorridorShape shape;
  shape.object = &corridor;
  for (const civil::Baseline& baseline : corridor.baselines) addCorridorLines(baseline, shape);
  extend(shape.box, shape.edges.box());
  extend(shape.box, shape.baselines.box());
  return shape;
}

/// Distance within the alignment's stations; infinite elsewhere.
double distanceOf(const civil::Alignment& alignment, Vec2 place) {
  const auto at = alignment.stationOffset(place);
  const bool isBeside = at && at->station >= alignment.startStation() && at->station <= alignment.endStation();
  return isBeside ? std::abs(at->offset) : std::numeric_limits<double>::infinity();
}

double distanceOf(const SampleLine& line, Vec2 place) {
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 1; i < line.vertices.size(); ++i)
    least = std::min(least, distanceTo(line.vertices[i - 1], line.vertices[i], place));
  return least;
}

bool touches(const civil::Alignment& alignment, const Box& box) {
  const double size = std::max(box.maxX - box.minX, box.maxY - box.minY);
  if (!(size > 0.0)) return false;
  for (const Line& line : polylines(alignment, box, 1e-4 * size))
    for (std::size_t i = 1; i < line.size(); ++i)
      if (meets(box, line[i - 1], line[i])) return true;
  return false;
}

bool touches(const SampleLine& line, const Box& box) {
  for (std::size_t i = 1; i < line.vertices.size(); ++i)
    if (meets(box, line.vertices[i - 1], line.vertices[i])) return true;
  return false;
}

bool touches(const SurfaceShape& shape, const Box& box) {
  if (shape.border.touches(box)) return true;
  // No border within: all of the box is ground or none of it.
  return shape.object->surface.elevationAt({0.5 * (box.minX + box.maxX), 0.5 * (box.minY + box.maxY)}).has_value();
}

}  // namespace

struct PlanScene::Named {
  Handle handle = 0;
  civil::DrawingEntry entry;
};

PlanScene::PlanScene(const Drawing& drawing, const Progress& progress) : drawing_(drawing) {
  addLists();

  // Points and triangles by what they cost.
  double whole = 1.0 + 4.0 * static_cast<double>(drawing.points.size());
  for (const SurfaceObject& surface : drawing.surfaces)
    whole += 2.0 * static_cast<double>(surface.surface.counts().triangles);
  double done = 0.0;
  const auto step = [&](double size) -> Progress {
    if (!progress) return {};
    const double before = std::exchange(done, done + size);
    return [&progress, before, size, whole](double part) { return progress((before + part * size) / whole); };
  };
  if (progress && !progress(0.0)) throw Cancelled();
  addPoints(step(4.0 * static_cast<double>(drawing.points.size())));
  surfaces_.reserve(drawing.surfaces.size());
  for (const SurfaceObject& surface : drawing.surfaces) {
    const auto size = static_cast<double>(surface.surface.counts().triangles);
    SurfaceShape shape;
    shape.object = &surface;
    shape.box = surface.surface.box();
    shape.border = surfaceBorder(surface.surface, step(size));
    shape.tiles = std::make_unique<SurfaceTiles>(surface.surface, step(size));
    surfaces_.push_back(std::move(shape));
  }
  refreshCorridors();
  if (progress && !progress(1.0)) throw Cancelled();
}

PlanScene::~PlanScene() = default;

void PlanScene::addLists() {
  alignments_.clear();
  sampleLines_.clear();
  named_.clear();
  addAlignments(drawing_.siteless);
  for (const Site& site : drawing_.sites) addAlignments(site);
  for (const civil::PointGroup& group : drawing_.pointGroups) named_.push_back({group.handle, {&group}});
  for (const Corridor& corridor : drawing_.corridors) named_.push_back({corridor.handle, {&corridor}});
  for (const SurfaceObject& surface : drawing_.surfaces) named_.push_back({surface.handle, {&surface}});
  // Of several objects with one handle the first counts.
  std::stable_sort(named_.begin(), named_.end(), [](const Named& a, const Named& b) { return a.handle < b.handle; });
}

void PlanScene::addAlignments(const Site& site) {
  named_.push_back({site.handle, {&site}});
  for (const auto& alignment : site.alignments) {
    if (!alignment) continue;
    alignments_.push_back({alignment.get(), boxAround(alignment->geometry)});
    named_.push_back({alignment->handle, {alignment.get(), alignment.get()}});
    for (const civil::ProfileObject& profile : alignment->profiles)
      named_.push_back({profile.handle, {&profile, alignment.get()}});
    for (const SampleLineGroup& group : alignment->sampleLineGroups) {
      named_.push_back({group.handle, {&group, alignment.get()}});
      for (const SampleLine& line : group.lines) {
        sampleLines_.push_back({&line, group.handle, boxAround(line.vertices)});
        named_.push_back({line.handle, {&line, alignment.get()}});
      }
    }
  }
}

void PlanScene::addPoints(const Progress& progress) {
  const std::vector<Point>& points = drawing_.points;
  const auto isLess = [](const Point& a, const Point& b) { return a.handle < b.handle; };
  hasAscendingPoints_ = std::is_sorted(points.begin(), points.end(), isLess);
  if (!hasAscendingPoints_) {
    pointsByHandle_.resize(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) pointsByHandle_[i] = static_cast<std::uint32_t>(i);
    std::stable_sort(pointsByHandle_.begin(), pointsByHandle_.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return isLess(points[a], points[b]); });
  }

  // Along a curve that fills the plane, so that runs of points have small boxes wherever the points lie close.
  Box box;
  for (const Point& point : points)
    if (isFinite(placeOf(point))) extend(box, placeOf(point));
  const double size = std::max(box.maxX - box.minX, box.maxY - box.minY);
  const double perUnit = size > 0.0 && std::isfinite(size) ? 4294967295.0 / size : 0.0;
  struct Row {
    std::uint64_t place;
    std::uint32_t index;
  };
  std::vector<Row> rows;
  rows.reserve(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Vec2 place = placeOf(points[i]);
    if (!isFinite(place)) continue;
    const auto part = [&](double distance) {
      return static_cast<std::uint32_t>(std::clamp(distance * perUnit, 0.0, 4294967295.0));
    };
    rows.push_back({spreadBits(part(place.x - box.minX)) | spreadBits(part(place.y - box.minY)) << 1,
                    static_cast<std::uint32_t>(i)});
  }
  if (progress && !progress(0.2)) throw Cancelled();
  std::sort(rows.begin(), rows.end(),
            [](const Row& a, const Row& b) { return std::pair(a.place, a.index) < std::pair(b.place, b.index); });
  if (progress && !progress(0.8)) throw Cancelled();
  pointOrder_.reserve(rows.size());
  for (const Row& row : rows) pointOrder_.push_back(row.index);
  pointRuns_ = BoxTree(pointOrder_.size(), kPointRun, [&](std::size_t first, std::size_t end) {
    const auto begin = pointOrder_.begin();
    std::sort(begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(end),
              [](std::uint32_t a, std::uint32_t b) { return lotOf(a) < lotOf(b); });
    Box run;
    for (std::size_t i = first; i < end; ++i) extend(run, placeOf(points[pointOrder_[i]]));
    return run;
  });
}

void PlanScene::refreshCorridors() {
  corridors_.clear();
  corridors_.reserve(drawing_.corridors.size());
  for (const Corridor& corridor : drawing_.corridors) corridors_.push_back(shapeOf(corridor));
  measure();
}

void PlanScene::refreshLists() {
  addLists();
  refreshCorridors();
}

void PlanScene::measure() {
  box_ = pointRuns_.box();
  for (const AlignmentShape& shape : alignments_) extend(box_, shape.box);
  for (const SampleLineShape& shape : sampleLines_) extend(box_, shape.box);
  for (const SurfaceShape& shape : surfaces_) extend(box_, shape.box);
  for (const CorridorShape& shape : corridors_) extend(box_, shape.box);
}

void PlanScene::setVisibility(Visibility visibility) {
  visibility_ = std::move(visibility);
  hiddenPoints_.clear();
  const auto hide = [&](const Point* point) {
    if (hiddenPoints_.empty()) hiddenPoints_.resize(drawing_.points.size());
    hiddenPoints_[static_cast<std::size_t>(point - drawing_.points.data())] = true;
  };
  for (const Handle handle : visibility_.hidden())
    if (const Point* const point = findPoint(handle)) hide(point);
}

VisiblePoints PlanScene::visiblePoints(const Box& box, std::size_t limit) const {
  VisiblePoints result;
  if (box.isEmpty()) return result;
  const std::vector<Point>& points = drawing_.points;
  pointRuns_.visit(box, [&](std::size_t first, std::size_t end, bool isInside) {
    if (isInside && hiddenPoints_.empty()) {
      result.count += end - first;
    } else {
      for (std::size_t i = first; i < end; ++i)
        if (!isPointHidden(pointOrder_[i]))
          result.count += isInside || holds(box, placeOf(points[pointOrder_[i]])) ? 1 : 0;
    }
    return true;
  });
  if (limit == 0) return result;
  // Halved until few enough are left, so that the same points stay while the view moves.
  std::vector<std::uint32_t> chosen;
  std::uint64_t lots = std::uint64_t{1} << 32;
  for (std::size_t expected = result.count; expected > limit; expected /= 2) lots /= 2;
  for (;; lots /= 2) {
    chosen.clear();
    const bool isComplete = pointRuns_.visit(box, [&](std::size_t first, std::size_t end, bool isInside) {
      for (std::size_t i = first; i < end && lotOf(pointOrder_[i]) < lots; ++i) {
        if (isPointHidden(pointOrder_[i]) || (!isInside && !holds(box, placeOf(points[pointOrder_[i]])))) continue;
        if (chosen.size() == limit) return false;
        chosen.push_back(pointOrder_[i]);
      }
      return true;
    });
    if (isComplete) break;
  }
  std::sort(chosen.begin(), chosen.end());
  result.points.reserve(chosen.size());
  for (const std::uint32_t index : chosen) result.points.push_back(&points[index]);
  return result;
}

// ---------------------------------------------------------------- by handle

const PlanScene::Named* PlanScene::find(Handle handle) const {
  const auto at = std::lower_bound(named_.begin(), named_.end(), handle,
                                   [](const Named& named, Handle wanted) { return named.handle < wanted; });
  return handle != 0 && at != named_.end() && at->handle == handle ? &*at : nullptr;
}

const Point* PlanScene::findPoint(Handle handle) const {
  const std::vector<Point>& points = drawing_.points;
  if (handle == 0) return nullptr;
  if (hasAscendingPoints_) {
    const auto at = std::lower_bound(points.begin(), points.end(), handle,
                                     [](const Point& point, Handle wanted) { return point.handle < wanted; });
    return at != points.end() && at->handle == handle ? &*at : nullptr;
  }
  const auto at = std::lower_bound(pointsByHandle_.begin(), pointsByHandle_.end(), handle,
                                   [&](std::uint32_t index, Handle wanted) { return points[index].handle < wanted; });
  return at != pointsByHandle_.end() && points[*at].handle == handle ? &points[*at] : nullptr;
}

std::optional<Box> PlanScene::boxOf(Handle handle) const {
  Box box;
  if (const Point* point = findPoint(handle)) {
    if (isFinite(placeOf(*point))) extend(box, placeOf(*point));
  } else if (const Named* named = find(handle)) {
    const civil::DrawingEntry& entry = named->entry;
    if (const auto* const site = entry.as<Site>()) {
      for (const auto& alignment : site->alignments)
        if (alignment) extend(box, boxAround(alignment->geometry));
    } else if (const auto* const group = entry.as<SampleLineGroup>()) {
      for (const SampleLine& line : group->lines) extend(box, boxAround(line.vertices));
    } else if (const auto* const line = entry.as<SampleLine>()) {
      extend(box, boxAround(line->vertices));
    } else if (entry.alignment != nullptr) {  // its own, or the one that stands for a profile
      extend(box, boxAround(entry.alignment->geometry));
    } else if (const auto* const surface = entry.as<SurfaceObject>()) {
      extend(box, surface->surface.box());
    } else if (const auto* const points = entry.as<civil::PointGroup>()) {
      const std::unordered_set<std::int32_t> members(points->numbers.begin(), points->numbers.end());
      for (const Point& member : drawing_.points)
        if (members.contains(member.number) && isFinite(placeOf(member))) extend(box, placeOf(member));
    } else if (const auto* const corridor = entry.as<Corridor>()) {
      for (const CorridorShape& shape : corridors_)
        if (shape.object == corridor) extend(box, shape.box);
    }
  }
  if (box.isEmpty()) return std::nullopt;
  return box;
}

std::optional<Description> PlanScene::describe(Handle handle) const {
  if (const Named* named = find(handle))
    return Description{named->entry.kind(),
                       std::visit([](const auto* object) { return nameOf(*object); }, named->entry.object)};
  if (const Point* point = findPoint(handle)) return Description{ObjectKind::Point, nameOf(*point)};
  return std::nullopt;
}

// ---------------------------------------------------------------- by place

const Point* PlanScene::nearestPoint(Vec2 place, double radius) const {
  const Point* nearest = nullptr;
  double least = radius;
  pointRuns_.visit(grown({place.x, place.y, place.x, place.y}, radius), [&](std::size_t first, std::size_t end, bool) {
    for (std::size_t i = first; i < end; ++i) {
      if (isPointHidden(pointOrder_[i])) continue;
      const Point& point = drawing_.points[pointOrder_[i]];
      const double distance = length(placeOf(point) - place);
      // Of points at one place the last, which is drawn over the others.
      if (distance < least || (distance == least && (!nearest || nearest < &point))) {
        least = distance;
        nearest = &point;
      }
    }
    return true;
  });
  return nearest;
}

template <class Offer>
void PlanScene::offerLines(Vec2 place, double radius, KindSet kinds, const Offer& offer) const {
  const Box near = grown({place.x, place.y, place.x, place.y}, radius);
  if (kinds.has(ObjectKind::Alignment))
    for (const AlignmentShape& shape : alignments_)
      if (meet(shape.box, near) && !isHidden(shape.object->handle))
        offer(distanceOf(shape.object->geometry, place), shape.object->handle, ObjectKind::Alignment,
              shape.object->name);
  if (kinds.has(ObjectKind::SampleLine))
    for (const SampleLineShape& shape : sampleLines_)
      if (meet(shape.box, near) && !isHidden(shape.line->handle))
        offer(distanceOf(*shape.line, place), shape.line->handle, ObjectKind::SampleLine, shape.line->name);
  if (kinds.has(ObjectKind::Corridor))
    for (const CorridorShape& shape : corridors_)
      if (meet(shape.box, near) && !isHidden(shape.object->handle))
        // A baseline kept as a line may lie that much nearer than the alignment that it follows.
        offer(
            std::min(shape.edges.distance(place, radius), shape.baselines.distance(place, radius) + kBaselineTolerance),
            shape.object->handle, ObjectKind::Corridor, shape.object->name);
  if (kinds.has(ObjectKind::Surface))
    for (const SurfaceShape& shape : surfaces_)
      if (meet(shape.box, near) && !isHidden(shape.object->handle))
        offer(shape.border.distance(place, radius), shape.object->handle, ObjectKind::Surface, shape.object->name);
}

std::optional<Hit> PlanScene::hit(Vec2 place, double radius, KindSet kinds) const {
  if (!isFinite(place) || !(radius >= 0.0)) return std::nullopt;
  if (kinds.has(ObjectKind::Point))
    if (const Point* point = nearestPoint(place, radius)) return Hit{point->handle, ObjectKind::Point, nameOf(*point)};

  std::optional<Hit> best;
  double least = std::numeric_limits<double>::infinity();
  offerLines(place, radius, kinds, [&](double distance, Handle handle, ObjectKind kind, const std::string& name) {
    if (!(distance <= radius) || !(distance < least)) return;
    least = distance;
    best = Hit{handle, kind, name};
  });
  if (best || !kinds.has(ObjectKind::Surface)) return best;
  for (auto shape = surfaces_.rbegin(); shape != surfaces_.rend(); ++shape)
    if (holds(shape->box, place) && !isHidden(shape->object->handle) && shape->object->surface.elevationAt(place))
      return Hit{shape->object->handle, ObjectKind::Surface, shape->object->name};
  return std::nullopt;
}

std::vector<Hit> PlanScene::hits(Vec2 place, double radius, KindSet kinds) const {
  std::vector<Hit> found;
  if (!isFinite(place) || !(radius >= 0.0)) return found;
  std::vector<std::pair<double, Hit>> near;
  const auto takeNear = [&] {
    std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& entry : near) found.push_back(std::move(entry.second));
    near.clear();
  };
  if (kinds.has(ObjectKind::Point)) {
    std::vector<const Point*> points;
    pointRuns_.visit(grown({place.x, place.y, place.x, place.y}, radius),
                     [&](std::size_t first, std::size_t end, bool) {
                       for (std::size_t i = first; i < end; ++i)
                         if (!isPointHidden(pointOrder_[i])) points.push_back(&drawing_.points[pointOrder_[i]]);
                       return true;
                     });
    // Of points at one place the last goes first, which is drawn over the others.
    std::sort(points.begin(), points.end(), std::greater<>());
    for (const Point* const point : points) {
      const double distance = length(placeOf(*point) - place);
      if (distance <= radius) near.emplace_back(distance, Hit{point->handle, ObjectKind::Point, nameOf(*point)});
    }
    takeNear();
  }
  offerLines(place, radius, kinds, [&](double distance, Handle handle, ObjectKind kind, const std::string& name) {
    if (distance <= radius) near.emplace_back(distance, Hit{handle, kind, name});
  });
  takeNear();
  if (!kinds.has(ObjectKind::Surface)) return found;
  const auto isFound = [&](Handle handle) {
    return std::any_of(found.begin(), found.end(), [&](const Hit& hit) { return hit.handle == handle; });
  };
  for (auto shape = surfaces_.rbegin(); shape != surfaces_.rend(); ++shape)
    if (holds(shape->box, place) && !isHidden(shape->object->handle) && !isFound(shape->object->handle) &&
        shape->object->surface.elevationAt(place))
      found.push_back({shape->object->handle, ObjectKind::Surface, shape->object->name});
  return found;
}

std::vector<Handle> PlanScene::inside(const Box& box, bool crossing, KindSet kinds) const {
  std::vector<Handle> found;
  if (box.isEmpty()) return found;
  const auto offer = [&](Handle handle, const Box& its, const auto& touchesBox) {
    if (isHidden(handle)) return;
    if (holds(box, its) || (crossing && meet(box, its) && touchesBox())) found.push_back(handle);
  };
  auto line = sampleLines_.begin();
  for (const AlignmentShape& shape : alignments_) {
    if (kinds.has(ObjectKind::Alignment))
      offer(shape.object->handle, shape.box, [&] { return touches(shape.object->geometry, box); });
    // Sample lines stand in the order of their alignments.
    for (const SampleLineGroup& group : shape.object->sampleLineGroups)
      for (std::size_t i = 0; i < group.lines.size(); ++i, ++line)
        if (kinds.has(ObjectKind::SampleLine))
          offer(line->line->handle, line->box, [&] { return touches(*line->line, box); });
  }
  if (kinds.has(ObjectKind::Surface))
    for (const SurfaceShape& shape : surfaces_)
      offer(shape.object->handle, shape.box, [&] { return touches(shape, box); });
  if (kinds.has(ObjectKind::Point)) {
    std::vector<std::uint32_t> points;
    pointRuns_.visit(box, [&](std::size_t first, std::size_t end, bool isInside) {
      for (std::size_t i = first; i < end; ++i)
        if (!isPointHidden(pointOrder_[i]) && (isInside || holds(box, placeOf(drawing_.points[pointOrder_[i]]))))
          points.push_back(pointOrder_[i]);
      return true;
    });
    std::sort(points.begin(), points.end());
    for (const std::uint32_t index : points) found.push_back(drawing_.points[index].handle);
  }
  if (kinds.has(ObjectKind::Corridor))
    for (const CorridorShape& shape : corridors_)
      offer(shape.object->handle, shape.box, [&] { return shape.edges.touches(box) || shape.baselines.touches(box); });
  return found;
}

std::size_t PlanScene::bytes() const {
  std::size_t sum = sizeof(*this) + alignments_.capacity() * sizeof(AlignmentShape) +
                    sampleLines_.capacity() * sizeof(SampleLineShape) + named_.capacity() * sizeof(Named) +
                    (pointOrder_.capacity() + pointsByHandle_.capacity()) * sizeof(std::uint32_t) + pointRuns_.bytes();
  for (const SurfaceShape& shape : surfaces_) sum += sizeof(shape) + shape.border.bytes() + shape.tiles->bytes();
  for (const CorridorShape& shape : corridors_) sum += sizeof(shape) + shape.edges.bytes() + shape.baselines.bytes();
  return sum;
}

}  // namespace lvx::view
