#include "civil/detail/border_rings.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <tuple>
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
  ends_.reserve(2 * edges_.size());
  for (std::size_t i = 0; i < edges_.size(); ++i) {
    ends_.push_back({startOf(i), i, true});
    ends_.push_back({endOf(i), i, false});
  }
  std::sort(ends_.begin(), ends_.end(), [](const End& p, const End& q) {
    return std::tie(p.vertex, p.edge, p.leaves) < std::tie(q.vertex, q.edge, q.leaves);
  });

  // Edges with a vertex in common are of one ring: each edge knows one of its ring, the first of all knows itself.
  std::vector<std::size_t> heads(edges_.size());
  std::iota(heads.begin(), heads.end(), std::size_t{0});
  const auto headOf = [&](std::size_t edge) {
    while (heads[edge] != edge) edge = heads[edge] = heads[heads[edge]];
    return edge;
  };
  eachVertex([&](std::span<End> here) {
    for (const End& end : here)
      heads[std::max(headOf(end.edge), headOf(here.front().edge))] =
          std::min(headOf(end.edge), headOf(here.front().edge));
  });
  ringOf_.resize(edges_.size());
  for (std::size_t i = 0; i < edges_.size(); ++i) {
    if (heads[i] == i) {
      ringOf_[i] = isClosed_.size();
      isClosed_.push_back(true);
    } else {
      ringOf_[i] = ringOf_[headOf(i)];
    }
  }
  eachVertex([&](std::span<End> here) {
    if (!sortAround(here)) isClosed_[ringOf_[here.front().edge]] = false;
  });
}

template <class Use>
void BorderRings::eachVertex(Use use) {
  for (std::size_t first = 0; first < ends_.size();) {
    std::size_t end = first + 1;
    while (end < ends_.size() && ends_[end].vertex == ends_[first].vertex) ++end;
    use(std::span(ends_).subspan(first, end - first));
    first = end;
  }
}

Vec2 BorderRings::rayOf(const End& end) const { return at(end.leaves ? endOf(end.edge) : startOf(end.edge)); }

/// Puts the edges at a vertex into the order in which they stand around it, counter-clockwise from the right. False where
/// they don't leave and arrive in turn.
bool BorderRings::sortAround(std::span<End> here) const {
  constexpr std::size_t kMost = 16;  // where more meet, nothing is in good order
  if (here.size() % 2 != 0 || here.size() > kMost) return false;
  const Vec2 vertex = at(here.front().vertex);
  // The upper half of the directions begins on the right and ends before the left.
  const auto isUpper = [&](Vec2 p) { return p.y > vertex.y || (p.y == vertex.y && p.x > vertex.x); };
  std::sort(here.begin(), here.end(), [&](const End& p, const End& q) {
    const Vec2 one = rayOf(p);
    const Vec2 other = rayOf(q);
    if (isUpper(one) != isUpper(other)) return isUpper(one);
    return signedSide(vertex, one, other) > 0.0;
  });
  for (std::size_t i = 1; i < here.size(); ++i) {
    const Vec2 before = rayOf(here[i - 1]);
    const Vec2 behind = rayOf(here[i]);
    if (here[i].leaves == here[i - 1].leaves) return false;
    if (isUpper(before) == isUpper(behind) && signedSide(vertex, before, behind) == 0.0) return false;
  }
  return true;
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
  const std::size_t p = numberOf(one);
  const std::size_t q = numberOf(other);
  const std::array<std::int32_t, 2> first{startOf(p), endOf(p)};
  const std::array<std::int32_t, 2> second{startOf(q), endOf(q)};
  for (const std::size_t i : {0U, 1U}) {
    for (const std::size_t j : {0U, 1U}) {
      if (first[i] != second[j]) continue;
      if (first[1 - i] == second[1 - j]) return true;
      // From one vertex they meet elsewhere too only where they run the same way.
      const Vec2 vertex = at(first[i]);
      const Vec2 along = at(first[1 - i]) - vertex;
      const Vec2 alongOther = at(second[1 - j]) - vertex;
      return signedSide(vertex, at(first[1 - i]), at(second[1 - j])) == 0.0 && dot(along, alongOther) >= 0.0;
    }
  }
  return doTouch(at(first[0]), at(first[1]), at(second[0]), at(second[1]));
}

void BorderRings::requireOneLayer(std::vector<bool>& isPlain) const {
  const std::size_t count = edges_.size();
  // The edge of each ring that comes first around the ring's lowest vertex, from where nothing of it lies.
  std::vector<const End*> lowest(isPlain.size(), nullptr);
  for (std::size_t i = 0; i < ends_.size(); ++i) {
    if (i > 0 && ends_[i].vertex == ends_[i - 1].vertex) continue;
    const End*& low = lowest[ringOf_[ends_[i].edge]];
    if (low == nullptr || isLower(at(ends_[i].vertex), at(low->vertex))) low = &ends_[i];
  }
  struct Lowest {
    double y;
    const End* first;
  };
  std::vector<Lowest> places;
  for (std::size_t ring = 0; ring < isPlain.size(); ++ring)
    if (isPlain[ring]) places.push_back({at(lowest[ring]->vertex).y, lowest[ring]});
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
      const std::size_t ring = ringOf_[place->first->edge];
      if (ring == ringOf_[i]) continue;
      // Edges left of the point count; those that rise have what they enclose on their left.
      if (signedSide(lower, upper, at(place->first->vertex)) < 0.0) layers[ring] += isRising ? -1 : 1;
    }
  }
  for (const Lowest& place : places) {
    // An edge that leaves has its layer behind it, one that arrives before it.
    const int wanted = place.first->leaves ? 0 : 1;
    const std::size_t ring = ringOf_[place.first->edge];
    if (layers[ring] != wanted) isPlain[ring] = false;
  }
}

}  // namespace lvx::civil::detail
