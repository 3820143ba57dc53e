#include "view/contours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>

#include "view/plan_shapes.h"

namespace lvx::view {

using civil::Box;
using civil::Triangle;
using civil::Vec2;
using civil::Vec3;

namespace {

/// Beyond this a double has no fractions, and neither have elevations.
constexpr double kMostSteps = 9007199254740992.0;
/// Of one triangle: a wall of noise isn't ground that anybody reads by its lines.
constexpr std::int64_t kMostStepsOfTriangle = 10'000;

std::uint64_t edgeOf(std::int32_t one, std::int32_t other) {
  return static_cast<std::uint64_t>(std::min(one, other)) << 32 | static_cast<std::uint64_t>(std::max(one, other));
}

std::uint64_t mixed(std::uint64_t key) {
  key ^= key >> 31;
  key *= 0x9e3779b97f4a7c15ULL;
  return key ^ key >> 29;
}

bool isSame(Vec2 one, Vec2 other) { return one.x == other.x && one.y == other.y; }

/// Which piece begins at an edge; of several each once.
class Beginnings {
 public:
  template <class EdgeOfPiece>
  Beginnings(std::size_t count, const EdgeOfPiece& edgeOfPiece) {
    std::size_t size = 16;
    while (size < 2 * count) size *= 2;
    slots_.assign(size, kNone);
    edges_.resize(size);
    for (std::size_t i = 0; i < count; ++i) {
      std::size_t slot = mixed(edgeOfPiece(i)) & (size - 1);
      while (slots_[slot] != kNone) slot = (slot + 1) & (size - 1);
      slots_[slot] = static_cast<std::uint32_t>(i);
      edges_[slot] = edgeOfPiece(i);
    }
  }
  /// A piece that isn't taken yet.
  [[nodiscard]] std::optional<std::size_t> find(std::uint64_t edge, const std::vector<char>& isTaken) const {
    for (std::size_t slot = mixed(edge) & (slots_.size() - 1); slots_[slot] != kNone;
         slot = (slot + 1) & (slots_.size() - 1))
      if (edges_[slot] == edge && isTaken[slots_[slot]] == 0) return slots_[slot];
    return std::nullopt;
  }

 private:
  static constexpr std::uint32_t kNone = 0xffffffff;
  std::vector<std::uint32_t> slots_;
  std::vector<std::uint64_t> edges_;
};

}  // namespace

// ---------------------------------------------------------------- triangles to pieces

// How many levels an elevation reaches, itself included: the one just at it counts.
std::int64_t ContourGatherer::stepsBelow(double elevation) const {
  const double steps = elevation / plan_.interval;
  if (!(std::abs(steps) < kMostSteps)) return 0;
  auto step = static_cast<std::int64_t>(std::floor(steps));
  // The quotient is rounded; the level itself decides.
  while (static_cast<double>(step + 1) * plan_.interval <= elevation) ++step;
  while (static_cast<double>(step) * plan_.interval > elevation) --step;
  return step;
}

void ContourGatherer::add(const Triangle& triangle) {
  const std::array<std::int32_t, 3> corners{triangle.a, triangle.b, triangle.c};
  std::array<std::int64_t, 3> below{};
  for (std::size_t i = 0; i < 3; ++i) below[i] = stepsBelow(points_[static_cast<std::size_t>(corners[i])].z);
  const auto [least, most] = std::minmax_element(below.begin(), below.end());
  if (*least == *most || *most - *least > kMostStepsOfTriangle) return;
  const auto at = [&](std::size_t i) {
    const Vec3& point = points_[static_cast<std::size_t>(corners[i])];
    return Vec2{point.x, point.y};
  };
  const double turn = (at(1).x - at(0).x) * (at(2).y - at(0).y) - (at(1).y - at(0).y) * (at(2).x - at(0).x);
  if (turn == 0.0) return;
  for (std::int64_t step = *least + 1; step <= *most; ++step) {
    const std::array<bool, 3> isAbove{below[0] >= step, below[1] >= step, below[2] >= step};
    // Around a triangle counter-clockwise: from the side on which the ground falls below the level to that on which it
    // rises again, what is higher lies on the left.
    std::uint64_t falling = 0;
    std::uint64_t rising = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      const std::size_t next = (i + 1) % 3;
      if (isAbove[i] && !isAbove[next]) falling = edgeOf(corners[i], corners[next]);
      if (!isAbove[i] && isAbove[next]) rising = edgeOf(corners[i], corners[next]);
    }
    if (turn > 0.0)
      pieces_.push_back({step, falling, rising});
    else
      pieces_.push_back({step, rising, falling});
  }
}

// ---------------------------------------------------------------- pieces to lines

// From the same end of the edge for all triangles, so that all of them find the same place.
Vec2 ContourGatherer::crossing(std::uint64_t edge, double elevation) const {
  const Vec3& a = points_[static_cast<std::size_t>(edge >> 32)];
  const Vec3& b = points_[static_cast<std::size_t>(edge & 0xffffffffU)];
  if (a.z == elevation) return {a.x, a.y};
  if (b.z == elevation) return {b.x, b.y};
  const double part = std::clamp((elevation - a.z) / (b.z - a.z), 0.0, 1.0);
  return {a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
}

void ContourGatherer::join(std::span<const Piece> pieces, std::vector<Contour>& into) const {
  const std::int64_t step = pieces.front().step;
  const double elevation = static_cast<double>(step) * plan_.interval;
  const Beginnings beginnings(pieces.size(), [&](std::size_t i) { return pieces[i].from; });
  const Beginnings ends(pieces.size(), [&](std::size_t i) { return pieces[i].to; });
  std::vector<char> isTaken(pieces.size(), 0);
  std::vector<std::uint64_t> before;
  std::vector<std::uint64_t> edges;
  for (std::size_t first = 0; first < pieces.size(); ++first) {
    if (isTaken[first] != 0) continue;
    isTaken[first] = 1;
    edges = {pieces[first].from, pieces[first].to};
    while (const auto next = beginnings.find(edges.back(), isTaken)) {
      isTaken[*next] = 1;
      edges.push_back(pieces[*next].to);
      if (edges.back() == edges.front()) break;
    }
    const bool isClosed = edges.size() > 2 && edges.back() == edges.front();
    before.clear();
    if (!isClosed) {
      for (std::uint64_t edge = edges.front();;) {
        const auto previous = ends.find(edge, isTaken);
        if (!previous) break;
        isTaken[*previous] = 1;
        edge = pieces[*previous].from;
        before.push_back(edge);
      }
    }
    Contour contour{.step = step,
                    .elevation = elevation,
                    .isIndex = plan_.indexEvery > 0 && step % plan_.indexEvery == 0,
                    .isClosed = isClosed,
                    .line = {}};
    contour.line.reserve(before.size() + edges.size());
    const auto add = [&](std::uint64_t edge) {
      const Vec2 place = crossing(edge, elevation);
      if (contour.line.empty() || !isSame(contour.line.back(), place)) contour.line.push_back(place);
    };
    for (auto edge = before.rbegin(); edge != before.rend(); ++edge) add(*edge);
    for (const std::uint64_t edge : edges) add(edge);
    // Around one vertex that lies just at the level.
    if (contour.line.size() < 2) continue;
    into.push_back(std::move(contour));
  }
}

std::vector<Contour> ContourGatherer::take() {
  std::vector<Piece> pieces = std::exchange(pieces_, {});
  std::stable_sort(pieces.begin(), pieces.end(),
                   [](const Piece& one, const Piece& other) { return one.step < other.step; });
  std::vector<Contour> result;
  for (std::size_t first = 0; first < pieces.size();) {
    std::size_t end = first;
    while (end < pieces.size() && pieces[end].step == pieces[first].step) ++end;
    join(std::span(pieces).subspan(first, end - first), result);
    first = end;
  }
  return result;
}

std::vector<Contour> contours(const civil::TinSurface& surface, const ContourPlan& plan) {
  if (!(plan.interval > 0.0)) throw std::invalid_argument("contours: the interval must be above 0");
  ContourGatherer gatherer(surface.points(), plan);
  for (const Triangle& triangle : surface.triangles()) gatherer.add(triangle);
  return gatherer.take();
}

double roundInterval(double least) {
  if (!(least > 0.0) || !std::isfinite(least)) return 1.0;
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double part : {1.0, 2.0, 5.0})
    if (part * power >= least * (1.0 - 1e-9)) return part * power;
  return 10.0 * power;
}

// ---------------------------------------------------------------- places for labels

std::vector<ContourLabel> labelPlaces(const std::vector<Contour>& contours, const Box& box, double length) {
  std::vector<ContourLabel> places;
  for (const Contour& contour : contours) {
    for (const Line& line : clipped({contour.line}, box)) {
      // Along the line: the stretch of that length whose ends lie farthest apart.
      std::vector<double> along(line.size(), 0.0);
      for (std::size_t i = 1; i < line.size(); ++i)
        along[i] = along[i - 1] + std::hypot(line[i].x - line[i - 1].x, line[i].y - line[i - 1].y);
      if (along.back() < 1.5 * length) continue;
      const auto placeAt = [&](double distance) {
        const auto at = static_cast<std::size_t>(
            std::clamp<std::ptrdiff_t>(std::upper_bound(along.begin(), along.end(), distance) - along.begin(), 1,
                                       static_cast<std::ptrdiff_t>(line.size()) - 1));
        const double gap = along[at] - along[at - 1];
        const double part = gap > 0.0 ? std::clamp((distance - along[at - 1]) / gap, 0.0, 1.0) : 0.0;
        return Vec2{line[at - 1].x + part * (line[at].x - line[at - 1].x),
                    line[at - 1].y + part * (line[at].y - line[at - 1].y)};
      };
      constexpr int kTries = 12;
      double best = 0.0;
      ContourLabel label{.place = {}, .direction = {}, .elevation = contour.elevation, .isIndex = contour.isIndex};
      for (int i = 0; i <= kTries; ++i) {
        const double from = (along.back() - length) * i / kTries;
        const Vec2 a = placeAt(from);
        const Vec2 b = placeAt(from + length);
        const double apart = std::hypot(b.x - a.x, b.y - a.y);
        if (apart <= best * (1.0 + 1e-6)) continue;
        best = apart;
        label.place = placeAt(from + 0.5 * length);
        label.direction = {(b.x - a.x) / apart, (b.y - a.y) / apart};
      }
      constexpr double kStraight = 0.85;
      if (best >= kStraight * length) places.push_back(label);
    }
  }
  return places;
}

}  // namespace lvx::view
