#include "view/plan_shapes.h"

#include <algorithm>
#include <limits>

namespace lvx::view {

using civil::Box;
using civil::Vec2;

namespace {

/// So many vertices share a box: few enough that a window into a long border draws little of what it doesn't show.
constexpr std::size_t kPiece = 64;

}  // namespace

void extend(Box& box, const Box& other) {
  if (other.isEmpty()) return;
  extend(box, Vec2{other.minX, other.minY});
  extend(box, Vec2{other.maxX, other.maxY});
}

Box boxAround(std::span<const Vec2> points) {
  Box box;
  for (const Vec2 point : points)
    if (isFinite(point)) extend(box, point);
  return box;
}

Box grown(const Box& box, double by) {
  if (box.isEmpty()) return box;
  return {box.minX - by, box.minY - by, box.maxX + by, box.maxY + by};
}

Box boxOf(Vec2 one, Vec2 other) {
  return {std::min(one.x, other.x), std::min(one.y, other.y), std::max(one.x, other.x), std::max(one.y, other.y)};
}

Box withLeastExtent(const Box& box, double extent) {
  const Vec2 centre{(box.minX + box.maxX) / 2, (box.minY + box.maxY) / 2};
  const double half = extent / 2;
  return {std::min(box.minX, centre.x - half), std::min(box.minY, centre.y - half), std::max(box.maxX, centre.x + half),
          std::max(box.maxY, centre.y + half)};
}

bool holds(const Box& box, Vec2 point) {
  return point.x >= box.minX && point.x <= box.maxX && point.y >= box.minY && point.y <= box.maxY;
}

bool holds(const Box& outer, const Box& inner) {
  return !inner.isEmpty() && inner.minX >= outer.minX && inner.maxX <= outer.maxX && inner.minY >= outer.minY &&
         inner.maxY <= outer.maxY;
}

bool meet(const Box& a, const Box& b) {
  return a.minX <= b.maxX && b.minX <= a.maxX && a.minY <= b.maxY && b.minY <= a.maxY;
}

bool meets(const Box& box, Vec2 a, Vec2 b) {
  // The part of the segment between each pair of sides; what remains of it is within.
  double from = 0.0;
  double to = 1.0;
  const auto cut = [&](double start, double step, double low, double high) {
    if (step == 0.0) return start >= low && start <= high;
    double in = (low - start) / step;
    double out = (high - start) / step;
    if (in > out) std::swap(in, out);
    from = std::max(from, in);
    to = std::min(to, out);
    return from <= to;
  };
  return !box.isEmpty() && cut(a.x, b.x - a.x, box.minX, box.maxX) && cut(a.y, b.y - a.y, box.minY, box.maxY);
}

double distanceTo(Vec2 a, Vec2 b, Vec2 point) {
  const Vec2 along = b - a;
  const double square = dot(along, along);
  const double part = square > 0.0 ? std::clamp(dot(point - a, along) / square, 0.0, 1.0) : 0.0;
  return length(point - (a + part * along));
}

// ---------------------------------------------------------------- lines

void LineSet::add(std::span<const Vec2> vertices) {
  const std::size_t begin = vertices_.size();
  for (const Vec2 vertex : vertices)
    if (isFinite(vertex)) vertices_.push_back(vertex);
  std::size_t first = begin;
  while (first < vertices_.size()) {
    const std::size_t count = std::min(kPiece + 1, vertices_.size() - first);
    Piece piece{{}, static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(count)};
    for (std::size_t i = first; i < first + count; ++i) extend(piece.box, vertices_[i]);
    extend(box_, piece.box);
    pieces_.push_back(piece);
    first += count == kPiece + 1 && first + count < vertices_.size() ? kPiece : count;
  }
}

std::size_t LineSet::bytes() const { return vertices_.capacity() * sizeof(Vec2) + pieces_.capacity() * sizeof(Piece); }

Lines LineSet::lines(const Box& visible, double tolerance) const {
  Lines result;
  const double least = tolerance > 0.0 ? tolerance * tolerance : 0.0;
  std::size_t next = std::numeric_limits<std::size_t>::max();  // where the line that is being made would go on
  for (const Piece& piece : pieces_) {
    if (!meet(piece.box, visible)) continue;
    const bool continues = piece.first == next;
    if (!continues) result.push_back({vertices_[piece.first]});
    Line& line = result.back();
    const std::size_t last = piece.first + piece.count - 1;
    for (std::size_t i = piece.first + 1; i <= last; ++i) {
      const Vec2 step = vertices_[i] - line.back();
      // Ends stay, so that closed lines close.
      if (i == last || dot(step, step) > least) line.push_back(vertices_[i]);
    }
    next = last;
  }
  return result;
}

double LineSet::distance(Vec2 point, double radius) const {
  double least = std::numeric_limits<double>::infinity();
  if (!(radius >= 0.0) || !isFinite(point)) return least;
  const Box near = grown({point.x, point.y, point.x, point.y}, radius);
  for (const Piece& piece : pieces_) {
    if (!meet(piece.box, near)) continue;
    const Vec2* vertex = &vertices_[piece.first];
    least = std::min(least, distanceTo(vertex[0], vertex[0], point));
    for (std::size_t i = 1; i < piece.count; ++i) least = std::min(least, distanceTo(vertex[i - 1], vertex[i], point));
  }
  return least <= radius ? least : std::numeric_limits<double>::infinity();
}

bool LineSet::touches(const Box& box) const {
  for (const Piece& piece : pieces_) {
    if (!meet(piece.box, box)) continue;
    const Vec2* vertex = &vertices_[piece.first];
    if (holds(box, vertex[0])) return true;
    for (std::size_t i = 1; i < piece.count; ++i)
      if (meets(box, vertex[i - 1], vertex[i])) return true;
  }
  return false;
}

}  // namespace lvx::view
