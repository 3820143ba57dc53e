#include "civil/detail/border_rings.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "civil/detail/predicates.h"
#include "civil/detail/tin_build.h"

namespace lvx::civil::detail {

namespace {

int sign(double value) { return (value > 0.0) - (value < 0.0); }

/// Along y, then along x: what is lowest.
bool isLower(Vec2 p, Vec2 q) { return std::pair(p.y, p.x) < std::pair(q.y, q.x); }

bool isBetween(double low, double high, double value) {
  return std::min(low, high) <= value && value <= std::max(low, high);
}

/// Whether two segments have a point in common.
bool doTouch(Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
  if (std::max(a.x, b.x) < std::min(c.x, d.x) || std::max(c.x, d.x) < std::min(a.x, b.x)) return false;
  if (std::max(a.y, b.y) < std::min(c.y, d.y) || std::max(c.y, d.y) < std::min(a.y, b.y)) return false;
  const int sideC = sign(signedSide(a, b, c));
  const int sideD = sign(signedSide(a, b, d));
  const int sideA = sign(signedSide(c, d, a));
  const int sideB = sign(signedSide(c, d, b));
  if (sideC * sideD < 0 && sideA * sideB < 0) return true;
  const auto isOn = [](Vec2 p, Vec2 q, Vec2 r) { return isBetween(p.x, q.x, r.x) && isBetween(p.y, q.y, r.y); };
  return (sideC == 0 && isOn(a, b, c)) || (sideD == 0 && isOn(a, b, d)) || (sideA == 0 && isOn(c, d, a)) ||
         (sideB == 0 && isOn(c, d, b));
}

}  // namespace

BorderRings::BorderRings(std::span<const Vec3> points, const std::int32_t* corners, std::vector<Link> edges)
    : points_(points), corners_(corners), edges_(std::move(edges)) {
  std::sort(edges_.begin(), edges_.end());
  edges_.erase(std::unique(edges_.begin(), edges_.end()), edges_.end());
  const std::size_t count = edges_.size();

  std::vector<std::pair<std::int32_t, std::size_t>> starts(count);
  std::vector<std::int32_t> ends(count);
  for (std::size_t i = 0; i < count; ++i) {
    starts[i] = {startOf(i), i};
    ends[i] = endOf(i);
  }
  std::sort(starts.begin(), starts.end());
  std::sort(ends.begin(), ends.end());
  nextOf_.resize(count);
  std::vector<bool> isOneAhead(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t vertex = endOf(i);
    const auto ahead = std::lower_bound(starts.begin(), starts.end(), std::pair(vertex, std::size_t{0}));
    const bool isOne =
        ahead != starts.end() && ahead->first == vertex && (ahead + 1 == starts.end() || (ahead + 1)->first != vertex);
    const auto arriving = std::equal_range(ends.begin(), ends.end(), vertex);
    isOneAhead[i] = isOne && arriving.second - arriving.first == 1;
    nextOf_[i] = isOneAhead[i] ? ahead->second : i;
  }

  constexpr std::size_t kNoRing = static_cast<std::size_t>(-1);
  ringOf_.assign(count, kNoRing);
  for (std::size_t first = 0; first < count; ++first) {
    if (ringOf_[first] != kNoRing) continue;
    const std::size_t ring = isClosed_.size();
    std::size_t edge = first;
    while (ringOf_[edge] == kNoRing && isOneAhead[edge]) {
      ringOf_[edge] = ring;
      edge = nextOf_[edge];
    }
    // A chain that ends, or runs into another one.
    const bool closes = edge == first && isOneAhead[first];
    if (ringOf_[edge] == kNoRing) ringOf_[edge] = ring;
    isClosed_.push_back(closes);
  }
}

std::size_t BorderRings::numberOf(Link edge) const {
  return static_cast<std::size_t>(std::lower_bound(edges_.begin(), edges_.end(), edge) - edges_.begin());
}

std::int32_t BorderRings::startOf(std::size_t number) const {
  const auto edge = static_cast<std::size_t>(edges_[number]);
  return corners_[edge / 4 * 3 + (edge % 4 + 1) % 3];
}

std::int32_t BorderRings::endOf(std::size_t number) const {
  const auto edge = static_cast<std::size_t>(edges_[number]);
  return corners_[edge / 4 * 3 + (edge % 4 + 2) % 3];
}

Vec2 BorderRings::at(std::int32_t point) const { return plan(points_[static_cast<std::size_t>(point)]); }

bool BorderRings::doMeet(Link one, Link other) const {
  std::size_t before = numberOf(one);
  std::size_t behind = numberOf(other);
  if (nextOf_[behind] == before && behind != before) std::swap(before, behind);
  const Vec2 a = at(startOf(before));
  const Vec2 b = at(endOf(before));
  const Vec2 c = at(startOf(behind));
  const Vec2 d = at(endOf(behind));
  if (nextOf_[before] != behind || before == behind) return doTouch(a, b, c, d);
  if (startOf(before) == endOf(behind)) return true;  // there and back
  // One follows the other: they meet elsewhere too only where it turns back on one line.
  return signedSide(a, b, d) == 0.0 && (d.x - b.x) * (b.x - a.x) + (d.y - b.y) * (b.y - a.y) <= 0.0;
}

void BorderRings::requireOneLayer(std::vector<bool>& isPlain) const {
  const std::size_t count = edges_.size();
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  // The edge of each ring that arrives at its lowest point.
  std::vector<std::size_t> lowest(isPlain.size(), kNone);
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t& low = lowest[ringOf_[i]];
    if (low == kNone || isLower(at(endOf(i)), at(endOf(low)))) low = i;
  }
  struct Lowest {
    double y;
    std::size_t edge;
  };
  std::vector<Lowest> places;
  for (std::size_t ring = 0; ring < isPlain.size(); ++ring)
    if (isPlain[ring]) places.push_back({at(endOf(lowest[ring])).y, lowest[ring]});
  std::sort(places.begin(), places.end(), [](const Lowest& p, const Lowest& q) { return p.y < q.y; });

  // What lies just below a ring's lowest point lies outside the ring, and has as many layers as other borders go round it.
  std::vector<int> layers(isPlain.size(), 0);
  std::size_t budget = 64 * (count + places.size()) + 1024;
  for (std::size_t i = 0; i < count; ++i) {
    const Vec2 from = at(startOf(i));
    const Vec2 to = at(endOf(i));
    const bool isRising = from.y < to.y;
    const Vec2 lower = isRising ? from : to;
    const Vec2 upper = isRising ? to : from;
    auto place =
        std::upper_bound(places.begin(), places.end(), lower.y, [](double y, const Lowest& p) { return y < p.y; });
    for (; place != places.end() && place->y <= upper.y; ++place) {
      if (budget-- == 0) {
        isPlain.assign(isPlain.size(), false);
        return;
      }
      const std::size_t ring = ringOf_[place->edge];
      if (ring == ringOf_[i]) continue;
      // Edges left of the point count; those that rise have what they enclose on their left.
      if (signedSide(lower, upper, at(endOf(place->edge))) < 0.0) layers[ring] += isRising ? -1 : 1;
    }
  }
  for (const Lowest& place : places) {
    const std::size_t ring = ringOf_[place.edge];
    const int turn = sign(signedSide(at(startOf(place.edge)), at(endOf(place.edge)), at(endOf(nextOf_[place.edge]))));
    const int wanted = turn > 0 ? 0 : 1;  // outside a rim there is nothing, outside a hole one layer
    if (turn == 0 || layers[ring] != wanted) isPlain[ring] = false;
  }
}

}  // namespace lvx::civil::detail
