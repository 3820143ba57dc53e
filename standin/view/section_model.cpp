#include "view/section_model.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "civil/corridor.h"
#include "civil/ground_walk.h"
#include "view/cut_fill.h"
#include "view/sample_line_edit.h"

namespace lvx::view {

using civil::Vec2;

namespace {

struct Found {
  const civil::AlignmentObject* alignment = nullptr;
  const civil::SampleLineGroup* group = nullptr;
  const civil::SampleLine* line = nullptr;
};

bool findIn(const civil::Site& site, civil::Handle handle, Found& found) {
  for (const auto& alignment : site.alignments)
    for (const civil::SampleLineGroup& group : alignment->sampleLineGroups)
      for (const civil::SampleLine& line : group.lines)
        if (line.handle == handle) {
          found = {alignment.get(), &group, &line};
          return true;
        }
  return false;
}

std::optional<Found> find(const civil::Drawing& drawing, civil::Handle handle) {
  Found found;
  if (handle == 0) return std::nullopt;
  if (findIn(drawing.siteless, handle, found)) return found;
  for (const civil::Site& site : drawing.sites)
    if (findIn(site, handle, found)) return found;
  return std::nullopt;
}

const civil::AlignmentObject* alignmentOf(const civil::Drawing& drawing, civil::Handle handle) {
  const auto in = [handle](const civil::Site& site) -> const civil::AlignmentObject* {
    for (const auto& alignment : site.alignments)
      if (alignment->handle == handle) return alignment.get();
    return nullptr;
  };
  if (handle == 0) return nullptr;
  if (const auto* found = in(drawing.siteless)) return found;
  for (const civil::Site& site : drawing.sites)
    if (const auto* found = in(site)) return found;
  return nullptr;
}

/// A vertex of the sample line with its offset.
struct Vertex {
  Vec2 place;
  double offset = 0.0;
};

/// The two sides of a sample line, each from the alignment outward.
struct Sides {
  std::vector<Vertex> left;
  std::vector<Vertex> right;
};

// The projection report sorts a side's vertices by offset, later ones of equal offset first, and puts the alignment's
// own point where no vertex lies on it; a side of one vertex always gets it.
Sides sidesOf(const civil::Alignment& axis, const civil::SampleLine& line) {
  constexpr double kCentreTolerance = 0.0001;
  Sides sides;
  for (const Vec2 vertex : line.vertices) {
    const auto measured = axis.stationOffset(vertex);
    if (!measured) continue;
    (measured->offset < 0.0 ? sides.left : sides.right).push_back({vertex, measured->offset});
  }
  const auto byOffset = [](const Vertex& a, const Vertex& b) { return a.offset < b.offset; };
  for (std::vector<Vertex>* side : {&sides.left, &sides.right}) {
    std::reverse(side->begin(), side->end());
    std::stable_sort(side->begin(), side->end(), byOffset);
  }
  std::reverse(sides.left.begin(), sides.left.end());
  if (const auto centre = axis.poseAt(line.station)) {
    const Vertex middle{centre->point, 0.0};
    const auto isOff = [](const std::vector<Vertex>& side) {
      return side.size() < 2 || std::abs(side.front().offset) > kCentreTolerance;
    };
    if (isOff(sides.left)) sides.left.insert(sides.left.begin(), middle);
    if (isOff(sides.right)) sides.right.insert(sides.right.begin(), middle);
  } else if (!sides.left.empty() && !sides.right.empty()) {
    // A line beside the alignment's stations has no point on it: its sides meet by their leg across.
    sides.right.insert(sides.right.begin(), sides.left.front());
  }
  return sides;
}

void append(Line& line, Vec2 place) {
  if (line.empty() || length(place - line.back()) > civil::kSamePoint) line.push_back(place);
}

/// One side of the ground, outward.
Lines outward(const civil::GroundWalk& walk, const std::vector<Vertex>& side, double sign) {
  Lines lines;
  for (const civil::GroundWalk::Piece& piece : walk.pieces()) {
    Line& line = lines.emplace_back();
    for (const civil::GroundWalk::Sample& sample : piece) {
      const Vertex& inner = side[sample.leg];
      const double dx = sample.place.x - inner.place.x;
      const double dy = sample.place.y - inner.place.y;
      append(line, {inner.offset + sign * std::sqrt(dx * dx + dy * dy), sample.place.z});
    }
  }
  return lines;
}

Lines groundOf(const civil::TinSurface& surface, const Sides& sides) {
  const auto walk = [&](const std::vector<Vertex>& side) {
    civil::GroundWalk ground(surface);
    for (std::size_t i = 1; i < side.size(); ++i) ground.add(side[i - 1].place, side[i].place);
    return ground;
  };
  const civil::GroundWalk left = walk(sides.left);
  const civil::GroundWalk right = walk(sides.right);
  Lines lines = outward(left, sides.left, -1.0);
  std::reverse(lines.begin(), lines.end());
  for (Line& line : lines) std::reverse(line.begin(), line.end());
  Lines rest = outward(right, sides.right, 1.0);
  auto next = rest.begin();
  if (!lines.empty() && !rest.empty() && left.startsOnGround() && right.startsOnGround()) {
    for (const Vec2 place : rest.front()) append(lines.back(), place);
    ++next;
  }
  lines.insert(lines.end(), std::make_move_iterator(next), std::make_move_iterator(rest.end()));
  return lines;
}

SectionCorridor pictureOf(const civil::Corridor& corridor, const civil::Baseline& baseline,
                          const civil::CorridorSection& section, double station) {
  SectionCorridor picture;
  picture.corridor = corridor.handle;
  picture.name = corridor.name;
  picture.baseline = baseline.name;
  picture.label = section.label;
  picture.isComputed = section.origin == civil::SectionOrigin::Computed;
  if (baseline.profile != nullptr)
    picture.profileElevation = baseline.profile->profile.elevationAt(station).value_or(0.0);
  for (const civil::SectionPart& part : section.parts) {
    SectionShape& shape = picture.parts.emplace_back();
    shape.codes = part.codes.list();
    shape.isClosed = part.isClosed;
    for (const civil::SectionPoint& point : part.points)
      shape.points.push_back({{point.offset, picture.profileElevation + point.elevation}, point.codes.list()});
  }
  return picture;
}

/// What a line across the alignment shows; the names of the line aren't set.
SectionModel sectionAlong(const civil::Drawing& drawing, const civil::AlignmentObject& alignment,
                          const civil::SampleLine& line) {
  SectionModel model;
  model.alignment = alignment.handle;
  model.alignmentName = alignment.name;
  model.station = line.station;
  const Sides sides = sidesOf(alignment.geometry, line);
  if (!sides.left.empty()) model.leastOffset = sides.left.back().offset;
  if (!sides.right.empty()) model.greatestOffset = sides.right.back().offset;
  for (const civil::SurfaceObject& surface : drawing.surfaces)
    model.grounds.push_back({surface.handle, surface.name, groundOf(surface.surface, sides)});
  for (const civil::Corridor& corridor : drawing.corridors) {
    for (const civil::Baseline& baseline : corridor.baselines) {
      if (baseline.alignment != &alignment) continue;
      if (const auto* section = civil::sectionAt(baseline, model.station))
        model.corridors.push_back(pictureOf(corridor, baseline, *section, model.station));
    }
  }
  return model;
}

}  // namespace

Lines SectionCorridor::top() const { return upperEdge(lines()); }

Lines SectionCorridor::lines() const {
  Lines lines;
  for (const SectionShape& part : parts) {
    Line& line = lines.emplace_back();
    for (const SectionPlace& point : part.points) line.push_back(point.place);
    if (part.isClosed && part.points.size() > 2 && line.front() != line.back())
      line.push_back(part.points.front().place);
  }
  return lines;
}

std::optional<double> SectionModel::levelAtAxis() const {
  for (const SectionGround& ground : grounds)
    if (const auto elevation = elevationAt(ground.lines, 0.0)) return elevation;
  const civil::Box all = box();
  if (all.isEmpty()) return std::nullopt;
  return (all.minY + all.maxY) / 2.0;
}

civil::Box SectionModel::box() const {
  civil::Box box;
  for (const SectionGround& ground : grounds) extend(box, ground.lines);
  for (const SectionCorridor& corridor : corridors) extend(box, corridor.lines());
  return box;
}

std::optional<SectionVertex> SectionModel::nearest(
    Vec2 place, Vec2 reach, const std::function<bool(SectionVertex::Owner, std::size_t)>& isShown) const {
  using Owner = SectionVertex::Owner;
  std::optional<SectionVertex> best;
  const auto consider = [&](Owner owner, std::size_t index, const Lines& lines) {
    const auto near = nearestPoint(lines, place, reach);
    if (!near || (best && best->distance <= near->distance)) return false;
    best = SectionVertex{owner, index, near->place, {}, near->distance};
    return true;
  };
  for (std::size_t i = 0; i < corridors.size(); ++i) {
    if (isShown && !isShown(Owner::Corridor, i)) continue;
    for (const SectionShape& part : corridors[i].parts) {
      for (const SectionPlace& point : part.points) {
        if (!consider(Owner::Corridor, i, {{point.place}})) continue;
        best->codes = point.codes;
        best->codes.insert(best->codes.end(), part.codes.begin(), part.codes.end());
      }
    }
  }
  for (std::size_t i = 0; i < grounds.size(); ++i)
    if (!isShown || isShown(Owner::Ground, i)) consider(Owner::Ground, i, grounds[i].lines);
  return best;
}

std::optional<SectionModel> sectionOf(const civil::Drawing& drawing, civil::Handle sampleLine) {
  const auto found = find(drawing, sampleLine);
  if (!found) return std::nullopt;
  SectionModel model = sectionAlong(drawing, *found->alignment, *found->line);
  model.sampleLine = sampleLine;
  model.name = found->line->name;
  model.groupName = found->group->name;
  return model;
}

SectionReach reachAt(const civil::Drawing& drawing, civil::Handle alignment, civil::Handle group, double station) {
  SectionReach reach{kLeastReach, kLeastReach};
  const civil::AlignmentObject* const object = alignmentOf(drawing, alignment);
  if (object == nullptr) return reach;
  for (const civil::Corridor& corridor : drawing.corridors)
    for (const civil::Baseline& baseline : corridor.baselines) {
      const auto* const section = baseline.alignment == object ? civil::sectionAt(baseline, station) : nullptr;
      if (section == nullptr) continue;
      constexpr double kMore = 1.25;
      for (const civil::SectionPart& part : section->parts)
        for (const civil::SectionPoint& point : part.points) {
          if (!std::isfinite(point.offset)) continue;
          reach.left = std::max(reach.left, -point.offset * kMore);
          reach.right = std::max(reach.right, point.offset * kMore);
        }
    }
  for (const civil::SampleLineGroup& lines : object->sampleLineGroups) {
    if (group != 0 && lines.handle != group) continue;
    const auto like = lineAmong(lines, object->geometry, station, kLeastReach);
    const auto widths = like ? widthsOf(*like, object->geometry) : std::nullopt;
    if (widths) {
      reach.left = std::max(reach.left, widths->left);
      reach.right = std::max(reach.right, widths->right);
    }
    break;
  }
  return reach;
}

std::optional<SectionModel> sectionAcross(const civil::Drawing& drawing, civil::Handle alignment, double station,
                                          SectionReach reach) {
  const civil::AlignmentObject* const object = alignmentOf(drawing, alignment);
  if (object == nullptr) return std::nullopt;
  const civil::Alignment& axis = object->geometry;
  const auto left = axis.pointLocation(station, -reach.left);
  const auto middle = axis.poseAt(station);
  const auto right = axis.pointLocation(station, reach.right);
  if (!left || !middle || !right) return std::nullopt;
  civil::SampleLine line;
  line.station = station;
  line.vertices = {left->point, middle->point, right->point};
  return sectionAlong(drawing, *object, line);
}

std::vector<SectionStop> sectionStops(const civil::Drawing& drawing, civil::Handle alignment, civil::Handle group) {
  std::vector<SectionStop> stops;
  const civil::AlignmentObject* const object = alignmentOf(drawing, alignment);
  if (object == nullptr) return stops;
  const auto byStation = [](const SectionStop& a, const SectionStop& b) { return a.station < b.station; };
  for (const civil::SampleLineGroup& lines : object->sampleLineGroups)
    if (group != 0 && lines.handle == group)
      for (const civil::SampleLine& line : lines.lines) stops.push_back({line.station, line.handle, line.name});
  std::stable_sort(stops.begin(), stops.end(), byStation);
  const std::size_t lines = stops.size();
  const auto isThere = [&](double station, std::size_t from, std::size_t to) {
    const auto end = stops.begin() + static_cast<std::ptrdiff_t>(to);
    const auto next = std::lower_bound(stops.begin() + static_cast<std::ptrdiff_t>(from), end,
                                       SectionStop{station - civil::kSameStation, 0, {}}, byStation);
    return next != end && next->station <= station + civil::kSameStation;
  };
  for (const civil::Corridor& corridor : drawing.corridors)
    for (const civil::Baseline& baseline : corridor.baselines) {
      if (baseline.alignment != object) continue;
      for (const civil::Region& region : baseline.regions)
        for (const civil::CorridorSection& section : region.sections)
          if (!isThere(section.station, 0, lines) && object->geometry.poseAt(section.station))
            stops.push_back({section.station, 0, section.label.empty() ? corridor.name : section.label});
    }
  std::stable_sort(stops.begin(), stops.end(), byStation);
  // Where regions meet, or corridors stand beside each other, one station is in several sets.
  const auto end = std::unique(stops.begin(), stops.end(), [](const SectionStop& a, const SectionStop& b) {
    return a.sampleLine == 0 && b.sampleLine == 0 && b.station - a.station <= civil::kSameStation;
  });
  stops.erase(end, stops.end());
  return stops;
}

std::optional<std::size_t> nearestStop(const std::vector<SectionStop>& stops, double station) {
  if (stops.empty()) return std::nullopt;
  const auto next = std::lower_bound(stops.begin(), stops.end(), station,
                                     [](const SectionStop& stop, double wanted) { return stop.station < wanted; });
  if (next == stops.begin()) return 0;
  const auto index = static_cast<std::size_t>(next - stops.begin());
  if (next == stops.end() || station - stops[index - 1].station <= next->station - station) return index - 1;
  return index;
}

std::optional<Vec2> placeAtOffset(const civil::Drawing& drawing, const SectionModel& section, double offset) {
  if (section.sampleLine == 0) {
    const civil::AlignmentObject* const object = alignmentOf(drawing, section.alignment);
    if (object == nullptr) return std::nullopt;
    const auto place = object->geometry.pointLocation(section.station,
                                                      std::clamp(offset, section.leastOffset, section.greatestOffset));
    return place ? std::optional(place->point) : std::nullopt;
  }
  const auto found = find(drawing, section.sampleLine);
  if (!found) return std::nullopt;
  const Sides sides = sidesOf(found->alignment->geometry, *found->line);
  const std::vector<Vertex>& side = offset < 0.0 ? sides.left : sides.right;
  if (side.empty()) return std::nullopt;
  for (std::size_t i = 1; i < side.size(); ++i) {
    const Vertex& inner = side[i - 1];
    const Vec2 leg = side[i].place - inner.place;
    const double reach = length(leg);
    const double along = std::abs(offset) - std::abs(inner.offset);
    if (!(along <= reach) || reach == 0.0) continue;
    return inner.place + (std::max(along, 0.0) / reach) * leg;
  }
  return side.back().place;
}

civil::Handle firstGroupOf(const civil::Drawing& drawing, civil::Handle alignment) {
  const civil::AlignmentObject* const object = alignmentOf(drawing, alignment);
  return object == nullptr || object->sampleLineGroups.empty() ? 0 : object->sampleLineGroups.front().handle;
}

civil::Handle groupOf(const civil::Drawing& drawing, civil::Handle sampleLine) {
  const auto found = find(drawing, sampleLine);
  return found ? found->group->handle : 0;
}

std::vector<SampleLineEntry> sampleLinesBeside(const civil::Drawing& drawing, civil::Handle sampleLine) {
  std::vector<SampleLineEntry> entries;
  const auto found = find(drawing, sampleLine);
  if (!found) return entries;
  for (const civil::SampleLine& line : found->group->lines) entries.push_back({line.handle, line.name, line.station});
  std::stable_sort(entries.begin(), entries.end(),
                   [](const SampleLineEntry& a, const SampleLineEntry& b) { return a.station < b.station; });
  return entries;
}

}  // namespace lvx::view
