#include "view/free_section.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "civil/ground_walk.h"
#include "civil/section_shape.h"

namespace lvx::view {

using civil::Vec2;

FreeLine::FreeLine(const std::vector<Vec2>& points) {
  for (const Vec2 point : points) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) continue;
    if (vertices_.empty()) {
      vertices_.push_back(point);
      distances_.push_back(0.0);
      continue;
    }
    const double leg = civil::length(point - vertices_.back());
    if (!(leg > civil::kSamePoint) || !std::isfinite(leg)) continue;
    distances_.push_back(distances_.back() + leg);
    vertices_.push_back(point);
  }
}

Vec2 FreeLine::placeAt(double distance) const {
  const auto next = std::upper_bound(distances_.begin(), distances_.end(), distance);
  if (next == distances_.begin()) return vertices_.front();
  if (next == distances_.end()) return vertices_.back();
  const auto index = static_cast<std::size_t>(next - distances_.begin());
  const double share = (distance - distances_[index - 1]) / (distances_[index] - distances_[index - 1]);
  return vertices_[index - 1] + share * (vertices_[index] - vertices_[index - 1]);
}

Lines groundAlong(const FreeLine& line, const civil::TinSurface& surface) {
  Lines lines;
  if (line.isEmpty()) return lines;
  civil::GroundWalk walk(surface);
  const std::vector<Vec2>& vertices = line.vertices();
  for (std::size_t i = 1; i < vertices.size(); ++i) walk.add(vertices[i - 1], vertices[i]);
  for (const civil::GroundWalk::Piece& piece : walk.pieces()) {
    Line& ground = lines.emplace_back();
    for (const civil::GroundWalk::Sample& sample : piece) {
      const Vec2 from = vertices[sample.leg];
      const double distance =
          line.distances()[sample.leg] + std::hypot(sample.place.x - from.x, sample.place.y - from.y);
      const Vec2 place{distance, sample.place.z};
      if (ground.empty() || civil::length(place - ground.back()) > civil::kSamePoint) ground.push_back(place);
    }
  }
  return lines;
}

namespace {

/// The top of a corridor at places of the plan.
class CorridorTop {
 public:
  explicit CorridorTop(const civil::Baseline& baseline) : baseline_(baseline) {
    for (const civil::Region& region : baseline.regions)
      for (const civil::CorridorSection& section : region.sections)
        for (const civil::SectionPart& part : section.parts)
          for (const civil::SectionPoint& point : part.points)
            if (std::isfinite(point.offset)) reach_ = std::max(reach_, std::abs(point.offset));
  }

  [[nodiscard]] std::optional<double> at(Vec2 place) const {
    const civil::Alignment& axis = baseline_.alignment->geometry;
    const auto measured = axis.stationOffset(place);
    if (!measured || std::abs(measured->offset) > reach_ || !axis.poseAt(measured->station)) return std::nullopt;
    const auto pair = around(measured->station);
    if (!pair) return std::nullopt;
    const auto top = highest(*pair, measured->offset);
    if (!top) return std::nullopt;
    const double level =
        baseline_.profile != nullptr ? baseline_.profile->profile.elevationAt(measured->station).value_or(0.0) : 0.0;
    return level + *top;
  }

 private:
  struct Pair {
    const civil::CorridorSection* from = nullptr;
    const civil::CorridorSection* to = nullptr;
    double share = 0.0;
  };

  [[nodiscard]] std::optional<Pair> around(double station) const {
    for (const civil::Region& region : baseline_.regions) {
      const auto& sections = region.sections;
      if (sections.empty() || station < sections.front().station - civil::kSameStation ||
          station > sections.back().station + civil::kSameStation)
        continue;
      auto next = std::upper_bound(sections.begin(), sections.end(), station,
                                   [](double s, const civil::CorridorSection& section) { return s < section.station; });
      if (next == sections.begin()) return Pair{&*next, &*next, 0.0};
      const auto& from = *std::prev(next);
      if (next == sections.end() || !civil::haveSameShape(from, *next)) return Pair{&from, &from, 0.0};
      return Pair{&from, &*next, (station - from.station) / (next->station - from.station)};
    }
    return std::nullopt;
  }

  [[nodiscard]] static std::optional<double> highest(const Pair& pair, double offset) {
    std::optional<double> top;
    for (std::size_t part = 0; part < pair.from->parts.size(); ++part) {
      const auto& from = pair.from->parts[part].points;
      const auto& to = pair.to->parts[part].points;
      const auto between = [&](std::size_t i) {
        return Vec2{from[i].offset + (to[i].offset - from[i].offset) * pair.share,
                    from[i].elevation + (to[i].elevation - from[i].elevation) * pair.share};
      };
      const std::size_t legs = from.size() < 2 ? 0 : pair.from->parts[part].isClosed ? from.size() : from.size() - 1;
      for (std::size_t i = 0; i < legs; ++i) {
        Vec2 a = between(i);
        Vec2 b = between((i + 1) % from.size());
        if (a.x > b.x) std::swap(a, b);
        if (!(offset >= a.x && offset <= b.x)) continue;
        const double height = a.x == b.x ? std::max(a.y, b.y) : a.y + (b.y - a.y) * ((offset - a.x) / (b.x - a.x));
        if (std::isfinite(height)) top = std::max(top.value_or(height), height);
      }
    }
    return top;
  }

  const civil::Baseline& baseline_;
  double reach_ = 0.0;
};

/// Follows heights over a distance by chords, and finds where they begin and end.
class HeightFollower {
 public:
  HeightFollower(const FreeLine& line, const CorridorTop& top) : line_(line), top_(top) {}

  Lines follow(double step) {
    const auto count = static_cast<std::size_t>(std::ceil(line_.length() / step));
    Sample before = sampleAt(0.0);
    if (before.height) begin(before);
    for (std::size_t i = 1; i <= count; ++i) {
      const Sample next =
          sampleAt(i == count ? line_.length() : line_.length() * static_cast<double>(i) / static_cast<double>(count));
      between(before, next, 0);
      before = next;
    }
    return std::move(lines_);
  }

 private:
  struct Sample {
    double distance = 0.0;
    std::optional<double> height;
  };
  [[nodiscard]] Sample sampleAt(double distance) const { return {distance, top_.at(line_.placeAt(distance))}; }
  void begin(const Sample& sample) { lines_.push_back({{sample.distance, *sample.height}}); }

  void between(const Sample& a, const Sample& b, int depth) {
    constexpr int kDeepest = 14;
    if (!a.height && !b.height) return;
    const Sample middle = sampleAt((a.distance + b.distance) / 2.0);
    if (a.height && b.height && middle.height) {
      const double bend = std::abs(*middle.height - (*a.height + *b.height) / 2.0);
      if (bend > kCorridorError && depth < kDeepest) {
        between(a, middle, depth + 1);
        between(middle, b, depth + 1);
      } else {
        lines_.back().push_back({b.distance, *b.height});
      }
      return;
    }
    if (depth < 2 * kDeepest) {
      between(a, middle, depth + 1);
      between(middle, b, depth + 1);
      return;
    }
    if (!a.height) begin(b);
  }

  const FreeLine& line_;
  const CorridorTop& top_;
  Lines lines_;
};

}  // namespace

Lines topAlong(const FreeLine& line, const civil::Baseline& baseline) {
  if (line.isEmpty() || baseline.alignment == nullptr) return {};
  constexpr double kMostSteps = 4000.0;
  const CorridorTop top(baseline);
  return HeightFollower(line, top).follow(std::max(kCorridorStep, line.length() / kMostSteps));
}

FreeSectionWork::FreeSectionWork(const civil::Drawing& drawing, FreeLine line) {
  section_.line = std::move(line);
  for (const civil::Corridor& corridor : drawing.corridors)
    for (const civil::Baseline& baseline : corridor.baselines) {
      section_.parts.push_back({corridor.handle, true, corridor.name, baseline.name, {}});
      baselines_.push_back(&baseline);
    }
  for (const civil::SurfaceObject& surface : drawing.surfaces) {
    section_.parts.push_back({surface.handle, false, surface.name, {}, {}});
    surfaces_.push_back(&surface.surface);
  }
}

bool FreeSectionWork::step() {
  if (isDone()) return false;
  FreeSectionPart& part = section_.parts[next_];
  part.lines = next_ < baselines_.size() ? topAlong(section_.line, *baselines_[next_])
                                         : groundAlong(section_.line, *surfaces_[next_ - baselines_.size()]);
  ++next_;
  return !isDone();
}

std::vector<FreeSectionRow> tableOf(const FreeSection& section, const std::vector<std::size_t>& parts) {
  std::vector<FreeSectionRow> rows;
  if (section.line.isEmpty()) return rows;
  std::vector<double> distances = section.line.distances();
  const std::size_t columns = std::max<std::size_t>(parts.size(), 1);
  const auto settle = [&distances] {
    std::sort(distances.begin(), distances.end());
    const auto isSame = [](double a, double b) { return b - a <= civil::kSamePoint; };
    distances.erase(std::unique(distances.begin(), distances.end(), isSame), distances.end());
  };
  for (const std::size_t part : parts)
    for (const Line& line : section.parts[part].lines)
      for (const Vec2 place : line) distances.push_back(place.x);
  settle();
  if (distances.size() > kMostCells / columns) {
    distances = section.line.distances();
    const std::size_t steps = std::max<std::size_t>(kMostCells / columns / 2, 1);
    for (std::size_t i = 1; i < steps; ++i)
      distances.push_back(section.line.length() * static_cast<double>(i) / static_cast<double>(steps));
    settle();
  }
  for (const double distance : distances) rows.push_back({distance, section.line.placeAt(distance), {}});
  for (const std::size_t part : parts) {
    // Forward only, as the rows go.
    const Lines& lines = section.parts[part].lines;
    auto line = lines.begin();
    std::size_t leg = 1;
    for (FreeSectionRow& row : rows) {
      while (line != lines.end() && (line->empty() || line->back().x < row.distance - civil::kSamePoint)) {
        ++line;
        leg = 1;
      }
      std::optional<double>& elevation = row.elevations.emplace_back();
      if (line == lines.end() || row.distance < line->front().x - civil::kSamePoint) continue;
      while (leg < line->size() && (*line)[leg].x < row.distance) ++leg;
      if (leg >= line->size()) {
        elevation = line->back().y;
        continue;
      }
      const Vec2 a = (*line)[leg - 1];
      const Vec2 b = (*line)[leg];
      elevation = b.x > a.x ? a.y + (b.y - a.y) * (std::clamp(row.distance - a.x, 0.0, b.x - a.x) / (b.x - a.x)) : a.y;
    }
  }
  return rows;
}

std::optional<civil::SampleLine> sampleLineAlong(const FreeLine& line, const civil::Alignment& alignment) {
  if (line.isEmpty()) return std::nullopt;
  constexpr int kStepsOfALeg = 200;
  constexpr double kOnAxis = 1e-6;
  const auto offsetAt = [&](double distance) -> std::optional<double> {
    const auto measured = alignment.stationOffset(line.placeAt(distance));
    if (!measured || !alignment.poseAt(measured->station)) return std::nullopt;
    return measured->offset;
  };
  std::optional<double> best;
  const auto consider = [&](double distance) {
    const double middle = line.length() / 2.0;
    if (!best || std::abs(distance - middle) < std::abs(*best - middle)) best = distance;
  };
  double from = 0.0;
  std::optional<double> before = offsetAt(0.0);
  for (std::size_t leg = 1; leg < line.vertices().size(); ++leg) {
    const double start = line.distances()[leg - 1];
    const double end = line.distances()[leg];
    for (int i = 1; i <= kStepsOfALeg; ++i) {
      const double to = i == kStepsOfALeg ? end : start + (end - start) * i / kStepsOfALeg;
      const std::optional<double> next = offsetAt(to);
      if (before && next && (*before < 0.0) != (*next < 0.0)) {
        double low = from;
        double high = to;
        const bool isLeft = *before < 0.0;
        for (int halving = 0; halving < 80; ++halving) {
          const double middle = (low + high) / 2.0;
          const auto offset = offsetAt(middle);
          if (!offset) break;
          ((*offset < 0.0) == isLeft ? low : high) = middle;
        }
        // Where the nearest foot leaps from one bend to another, the sign changes without a crossing.
        const auto offset = offsetAt(high);
        if (offset && std::abs(*offset) <= kOnAxis) consider(high);
      }
      before = next;
      from = to;
    }
  }
  if (!best || *best <= civil::kSamePoint || *best >= line.length() - civil::kSamePoint) return std::nullopt;
  const auto centre = alignment.stationOffset(line.placeAt(*best));
  const auto pose = centre ? alignment.poseAt(centre->station) : std::nullopt;
  if (!pose) return std::nullopt;
  civil::SampleLine made;
  made.station = centre->station;
  bool isIn = false;
  for (std::size_t i = 0; i < line.vertices().size(); ++i) {
    const double distance = line.distances()[i];
    if (!isIn && distance >= *best - civil::kSamePoint) {
      made.vertices.push_back(pose->point);
      isIn = true;
      if (distance <= *best + civil::kSamePoint) continue;
    }
    made.vertices.push_back(line.vertices()[i]);
  }
  // From left to right: the side on which the line comes to the alignment.
  const auto ahead = offsetAt(std::max(*best - line.length() / kStepsOfALeg / 10.0, 0.0));
  if (ahead && *ahead > 0.0) std::reverse(made.vertices.begin(), made.vertices.end());
  return made;
}

}  // namespace lvx::view
