#include "view/surface_border.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace lvx::view {

using civil::Triangle;
using civil::Vec2;
using civil::Vec3;

namespace {

/// The edges with an odd number of triangles so far. Neighbours come close to each other in a surface's order, so few
/// are open at a time.
class OpenEdges {
 public:
  struct Edge {
    std::int32_t from = kNone;
    std::int32_t to = kNone;
  };

  /// Adds the edge, or takes it out if it is there in either direction.
  void toggle(std::int32_t from, std::int32_t to) {
    for (std::size_t slot = home(from, to);; slot = (slot + 1) & mask_) {
      Edge& edge = slots_[slot];
      if (edge.from == kNone) {
        edge = {from, to};
        if (++count_ * 2 > slots_.size()) grow();
        return;
      }
      if ((edge.from == to && edge.to == from) || (edge.from == from && edge.to == to)) {
        remove(slot);
        return;
      }
    }
  }

  [[nodiscard]] std::vector<Edge> all() const {
    std::vector<Edge> edges;
    edges.reserve(count_);
    std::copy_if(slots_.begin(), slots_.end(), std::back_inserter(edges),
                 [](const Edge& edge) { return edge.from != kNone; });
    return edges;
  }

 private:
  static constexpr std::int32_t kNone = -1;

  [[nodiscard]] std::size_t home(std::int32_t from, std::int32_t to) const {
    const auto [low, high] = std::minmax(from, to);
    std::uint64_t hash =
        (static_cast<std::uint64_t>(low) << 32 | static_cast<std::uint64_t>(high)) * 0x9e3779b97f4a7c15ULL;
    hash ^= hash >> 32;
    return static_cast<std::size_t>(hash) & mask_;
  }

  /// Moves those behind forward, so that a search never meets a gap before what it looks for.
  void remove(std::size_t gap) {
    for (std::size_t slot = (gap + 1) & mask_; slots_[slot].from != kNone; slot = (slot + 1) & mask_) {
      const std::size_t wanted = home(slots_[slot].from, slots_[slot].to);
      if (((slot - wanted) & mask_) < ((slot - gap) & mask_)) continue;
      slots_[gap] = slots_[slot];
      gap = slot;
    }
    slots_[gap] = {};
    --count_;
  }

  void grow() {
    std::vector<Edge> old(slots_.size() * 2);
    old.swap(slots_);
    mask_ = slots_.size() - 1;
    for (const Edge& edge : old) {
      if (edge.from == kNone) continue;
      std::size_t slot = home(edge.from, edge.to);
      while (slots_[slot].from != kNone) slot = (slot + 1) & mask_;
      slots_[slot] = edge;
    }
  }

  std::vector<Edge> slots_ = std::vector<Edge>(1024);
  std::size_t mask_ = 1023;
  std::size_t count_ = 0;
};

}  // namespace

LineSet surfaceBorder(const civil::TinSurface& surface, const std::function<bool(double)>& progress) {
  LineSet border;
  const std::size_t groundCount = surface.counts().triangles - surface.counts().degenerate;
  const std::span<const Triangle> ground = surface.triangles().first(groundCount);
  OpenEdges open;
  constexpr std::size_t kTold = std::size_t{1} << 18;
  for (std::size_t i = 0; i < groundCount; ++i) {
    if (progress && i % kTold == 0 && !progress(static_cast<double>(i) / static_cast<double>(groundCount)))
      throw Cancelled();
    const Triangle& t = ground[i];
    open.toggle(t.a, t.b);
    open.toggle(t.b, t.c);
    open.toggle(t.c, t.a);
  }

  using Edge = OpenEdges::Edge;
  std::vector<Edge> edges = open.all();
  std::sort(edges.begin(), edges.end(),
            [](const Edge& a, const Edge& b) { return std::pair(a.from, a.to) < std::pair(b.from, b.to); });
  std::vector<bool> isDone(edges.size());
  const auto place = [&](std::int32_t number) {
    const Vec3& p = surface.points()[static_cast<std::size_t>(number)];
    return Vec2{p.x, p.y};
  };
  Line line;
  for (std::size_t start = 0; start < edges.size(); ++start) {
    if (isDone[start]) continue;
    line = {place(edges[start].from)};
    for (std::size_t at = start; at < edges.size();) {
      isDone[at] = true;
      const std::int32_t end = edges[at].to;
      line.push_back(place(end));
      at = static_cast<std::size_t>(
          std::lower_bound(edges.begin(), edges.end(), end, [](const Edge& e, std::int32_t v) { return e.from < v; }) -
          edges.begin());
      // Where corners of the ground touch several lines leave; each is walked once.
      while (at < edges.size() && edges[at].from == end && isDone[at]) ++at;
      if (at < edges.size() && edges[at].from != end) break;
    }
    border.add(line);
  }
  return border;
}

}  // namespace lvx::view
