#include "civil/ground_profile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "civil/ground_walk.h"

namespace lvx::civil {

namespace {

/// The number of chords that `element` is walked by.
std::size_t chordsOf(const Element& element, double chordError) {
  const double curvature = std::max(std::abs(element.startCurvature), std::abs(element.endCurvature));
  if (curvature == 0.0) return 1;
  // A chord of length c leaves a circle by c^2 curvature / 8.
  const double chord = std::sqrt(8.0 * chordError / curvature);
  constexpr double kMostChords = 100'000;
  return static_cast<std::size_t>(std::clamp(std::ceil(element.length / chord), 1.0, kMostChords));
}

/// Appends the points of `run` that the others can't stand for within their tolerance: each point may be missed by its
/// own, `tolerance` on an edge and at least kGroundBetweenEdges elsewhere. From each point kept the next one is the last
/// to which a straight line comes close enough to all in between, found by narrowing the cone of such lines.
std::vector<ProfilePoint> thinned(const std::vector<GroundPoint>& run, double tolerance) {
  std::vector<ProfilePoint> points;
  const auto keep = [&](const GroundPoint& point) { points.push_back({point.station, point.elevation}); };
  std::size_t anchor = 0;
  keep(run.front());
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
  for (std::size_t i = 1; i < run.size(); ++i) {
    const auto slopeTo = [&](const GroundPoint& point, double shift) {
      return (point.elevation + shift - run[anchor].elevation) / (point.station - run[anchor].station);
    };
    const double slope = slopeTo(run[i], 0.0);
    if (anchor + 1 < i && !(slope >= low && slope <= high)) {
      anchor = i - 1;
      keep(run[anchor]);
      low = -std::numeric_limits<double>::infinity();
      high = std::numeric_limits<double>::infinity();
    }
    const double reach = run[i].isOnEdge ? tolerance : std::max(tolerance, kGroundBetweenEdges);
    if (run[i].isOnEdge && tolerance == 0.0) {
      // Kept itself, so the next line starts here.
      if (i + 1 < run.size()) {
        anchor = i;
        keep(run[i]);
        low = -std::numeric_limits<double>::infinity();
        high = std::numeric_limits<double>::infinity();
      }
      continue;
    }
    low = std::max(low, slopeTo(run[i], -reach));
    high = std::min(high, slopeTo(run[i], reach));
  }
  if (run.size() > 1) keep(run.back());
  return points;
}

}  // namespace

std::vector<std::vector<GroundPoint>> groundAlong(const Alignment& axis, const TinSurface& surface, double chordError) {
  struct Leg {
    Vec2 start;
    Vec2 end;
    double station = 0.0;
    double scale = 1.0;  ///< stations to a unit of chord
  };
  std::vector<Leg> legs;
  GroundWalk walk(surface);
  const auto elements = axis.elements();
  for (std::size_t e = 0; e < elements.size(); ++e) {
    const Element& element = elements[e];
    if (!(element.length > 0.0) || !std::isfinite(element.length)) continue;
    const std::size_t chords = chordsOf(element, chordError);
    const double run = element.length / static_cast<double>(chords);
    Vec2 from = element.poseAt(0.0).point;
    for (std::size_t i = 0; i < chords; ++i) {
      const Vec2 to = element.poseAt(i + 1 == chords ? element.length : static_cast<double>(i + 1) * run).point;
      const double chord = length(to - from);
      if (!std::isfinite(chord)) break;
      legs.push_back(
          {from, to, axis.stationOfElement(e) + static_cast<double>(i) * run, chord > 0.0 ? run / chord : 1.0});
      walk.add(from, to);
      from = to;
    }
  }
  const auto isAt = [](Vec2 a, Vec2 b) {
    return length(a - b) <= kSamePoint + 1e-14 * (std::abs(a.x) + std::abs(a.y));
  };
  std::vector<std::vector<GroundPoint>> runs;
  for (const GroundWalk::Piece& piece : walk.pieces()) {
    std::vector<GroundPoint>& run = runs.emplace_back();
    for (const GroundWalk::Sample& sample : piece) {
      const Leg& leg = legs[sample.leg];
      const Vec2 place{sample.place.x, sample.place.y};
      const GroundPoint point{leg.station + length(place - leg.start) * leg.scale, sample.place.z,
                              !isAt(leg.start, place) && !isAt(leg.end, place)};
      const bool isRepeated = !run.empty() && std::hypot(point.station - run.back().station,
                                                         point.elevation - run.back().elevation) <= kSamePoint;
      if (!isRepeated) run.push_back(point);
    }
    // The border, but for the ends of the alignment itself.
    run.front().isOnEdge = run.back().isOnEdge = true;
  }
  return runs;
}

Profile groundProfile(const Alignment& axis, const TinSurface& surface, const GroundProfileOptions& options) {
  if (!(options.thinning >= 0.0) || !std::isfinite(options.thinning)) {
    throw std::invalid_argument("ground profile: the thinning has to be 0 or above");
  }
  if (!(options.chordError > 0.0) || !std::isfinite(options.chordError)) {
    throw std::invalid_argument("ground profile: the chord error has to be above 0");
  }
  std::vector<std::vector<ProfilePoint>> lines;
  for (const auto& run : groundAlong(axis, surface, options.chordError)) {
    lines.push_back(thinned(run, options.thinning));
  }
  return Profile::ground(std::move(lines));
}

}  // namespace lvx::civil
