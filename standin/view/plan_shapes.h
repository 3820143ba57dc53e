#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <stdexcept>
#include <vector>

#include "civil/drawing.h"
#include "view/lines.h"

/// The small parts that the plan is made of. Places and lengths in drawing units.
namespace lvx::view {

/// The user gave up what was being prepared.
class Cancelled : public std::runtime_error {
 public:
  Cancelled() : std::runtime_error("view: cancelled") {}
};

/// Kinds of objects that may be picked; an empty set stands for all of them.
class KindSet {
 public:
  constexpr KindSet() = default;
  constexpr KindSet(std::initializer_list<civil::ObjectKind> kinds) {
    for (const civil::ObjectKind kind : kinds) bits_ |= bitOf(kind);
  }
  constexpr void add(civil::ObjectKind kind) { bits_ |= bitOf(kind); }
  [[nodiscard]] constexpr bool has(civil::ObjectKind kind) const { return bits_ == 0 || (bits_ & bitOf(kind)) != 0; }
  bool operator==(const KindSet&) const = default;

 private:
  static constexpr std::uint32_t bitOf(civil::ObjectKind kind) { return 1U << static_cast<unsigned>(kind); }
  std::uint32_t bits_ = 0;
};

// ---------------------------------------------------------------- boxes

void extend(civil::Box& box, const civil::Box& other);
/// Points that aren't finite have no place.
[[nodiscard]] civil::Box boxAround(std::span<const civil::Vec2> points);
/// By `by` on each side; an empty one stays empty.
[[nodiscard]] civil::Box grown(const civil::Box& box, double by);
/// The box with two opposite corners, in any order.
[[nodiscard]] civil::Box boxOf(civil::Vec2 one, civil::Vec2 other);
/// The box with room around its middle up to `extent` across and up, where it has less. It isn't empty.
[[nodiscard]] civil::Box withLeastExtent(const civil::Box& box, double extent);
/// Borders count as within.
[[nodiscard]] bool holds(const civil::Box& box, civil::Vec2 point);
/// Whether all of `inner` lies in `outer`; an empty one lies nowhere.
[[nodiscard]] bool holds(const civil::Box& outer, const civil::Box& inner);
/// Whether they have a point in common, on a border too.
[[nodiscard]] bool meet(const civil::Box& a, const civil::Box& b);
/// Whether the segment has a point in the box.
[[nodiscard]] bool meets(const civil::Box& box, civil::Vec2 a, civil::Vec2 b);
/// From a point to a segment; where it has no length to its point.
[[nodiscard]] double distanceTo(civil::Vec2 a, civil::Vec2 b, civil::Vec2 point);

// ---------------------------------------------------------------- lines

/// Lines that are drawn and searched often: kept in one row and found by the boxes of their pieces. A query costs the
/// pieces and the vertices of those that meet what is asked for.
class LineSet {
 public:
  /// Points that aren't finite are left out; a line of one point is a place that can be found but not seen.
  void add(std::span<const civil::Vec2> vertices);

  [[nodiscard]] bool isEmpty() const { return pieces_.empty(); }
  [[nodiscard]] const civil::Box& box() const { return box_; }
  [[nodiscard]] std::size_t vertexCount() const { return vertices_.size(); }
  [[nodiscard]] std::size_t bytes() const;

  /// What a window that shows `visible` needs: the pieces of the lines that may be seen, pieces that follow one another
  /// joined, without vertices that lie within `tolerance` of the one drawn before.
  [[nodiscard]] Lines lines(const civil::Box& visible, double tolerance) const;
  /// To the nearest line; infinite beyond `radius`.
  [[nodiscard]] double distance(civil::Vec2 point, double radius) const;
  /// Whether a line has a point in the box.
  [[nodiscard]] bool touches(const civil::Box& box) const;

 private:
  struct Piece {
    civil::Box box;
    std::uint32_t first = 0;
    std::uint32_t count = 0;  ///< with the vertex that the next piece of the same line begins with
  };
  std::vector<civil::Vec2> vertices_;
  std::vector<Piece> pieces_;
  civil::Box box_;
};

}  // namespace lvx::view
