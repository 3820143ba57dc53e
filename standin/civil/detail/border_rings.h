#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "civil/detail/triangle_links.h"
#include "civil/tin_surface.h"

namespace lvx::civil::detail {

/// The border edges of a triangulation as rings, and what tells whether a ring is a border in good order. Edges that hang
/// together by vertices are one ring, which may touch itself in vertices. All decisions are exact. An edge is named as links pack it, 4 * triangle + edge, and has its triangle on its left.
class BorderRings {
 public:
  /// Any order, repeated or not. The arrays must outlive this. O(n log n).
  BorderRings(std::span<const Vec3> points, const std::int32_t* corners, std::vector<Link> edges);

  /// By ring: around each of its vertices border edges leave and arrive in turn, as a rule one of each.
  [[nodiscard]] const std::vector<bool>& isClosed() const { return isClosed_; }
  [[nodiscard]] std::size_t ringOf(Link edge) const { return ringOf_[numberOf(edge)]; }
  /// Whether two edges have more in common than a vertex.
  [[nodiscard]] bool doMeet(Link one, Link other) const;
  /// Takes those out of `isPlain` (by ring) that don't part one layer of triangles from none. Those in it must not meet
  /// other borders. O(n log n) and a step for each edge beside a ring's lowest point; rings beyond a budget of such steps
  /// are taken out too.
  void requireOneLayer(std::vector<bool>& isPlain) const;

 private:
  /// One end of an edge.
  struct End {
    std::int32_t vertex = 0;
    std::size_t edge = 0;
    bool leaves = false;  // the vertex is where the edge starts
  };
  template <class Use>
  void eachVertex(Use use);
  [[nodiscard]] bool sortAround(std::span<End> here) const;
  /// The other end of its edge.
  [[nodiscard]] Vec2 rayOf(const End& end) const;
  [[nodiscard]] std::size_t numberOf(Link edge) const;
  [[nodiscard]] std::int32_t startOf(std::size_t number) const;
  [[nodiscard]] std::int32_t endOf(std::size_t number) const;
  [[nodiscard]] Vec2 at(std::int32_t point) const;

  std::span<const Vec3> points_;
  const std::int32_t* corners_;
  std::vector<Link> edges_;          // ascending
  std::vector<End> ends_;            // by vertex, around each counter-clockwise from the right
  std::vector<std::size_t> ringOf_;  // by edge
  std::vector<bool> isClosed_;       // by ring
};

}  // namespace lvx::civil::detail
