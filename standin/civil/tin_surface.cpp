#include "civil/tin_surface.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "civil/detail/block_tree.h"
#include "civil/detail/predicates.h"
#include "civil/detail/start_grid.h"
#include "civil/detail/tin_build.h"
#include "civil/detail/triangle_links.h"

namespace lvx::civil {

using namespace detail;

namespace {

/// The surface's parts, as the walks below need them.
struct Mesh {
  PlainArray<Vec3> points;
  PlainArray<Triangle> triangles;  // counter-clockwise; those without area last
  std::size_t groundCount = 0;     // triangles with area
  TinSurface::Counts counts;
  Box box;
  double minElevation = 0.0;
  double maxElevation = 0.0;
  TriangleLinks links;
  BlockTree blocks;
  StartGrid grid;

  [[nodiscard]] std::span<const Triangle> ground() const { return triangles.all().first(groundCount); }
  [[nodiscard]] const Vec3& point(std::int32_t number) const { return points[static_cast<std::size_t>(number)]; }
  [[nodiscard]] std::array<const Vec3*, 3> cornersAt(std::size_t triangle) const {
    const Triangle& t = triangles[triangle];
    return {&point(t.a), &point(t.b), &point(t.c)};
  }
};

/// Points of a segment closer than this part of its length are one.
constexpr double kSamePlace = 1e-9;
/// How far rounding may move a place along the segment before it is computed again exactly.
constexpr double kPlaceError = 1e-11;

/// How a sample came about: what counts first where several fall on one place. An end is one of the segment's own.
enum class Rank : std::uint8_t { End, Vertex, Edge, Face, None };

struct Ground {
  double elevation = 0.0;
  Rank rank = Rank::None;

  /// Takes over a better elevation of the same place: that of a vertex before that of an edge before that within a
  /// triangle, then the highest.
  void improve(Ground other) {
    if (other.rank < rank || (other.rank == rank && other.elevation > elevation)) *this = other;
  }
};

/// Elevation in a triangle at a point within it or on its border. The same to the last bit however the corners are
/// ordered.
double elevationWithin(std::array<const Vec3*, 3> corners, Vec2 p) {
  // By x, then by y, told by counting: no processor foresees an order.
  const auto isBefore = [&corners](std::size_t i, std::size_t j) -> std::size_t {
    const Vec3 &q = *corners[i], &r = *corners[j];
    return (q.x < r.x) | ((q.x == r.x) & (q.y < r.y));
  };
  const std::size_t first = isBefore(0, 1), second = isBefore(1, 2), third = isBefore(2, 0);
  std::array<const Vec3*, 3> ordered{};
  ordered[1 - first + third] = corners[0];
  ordered[1 - second + first] = corners[1];
  ordered[1 - third + second] = corners[2];
  const auto [a, b, c] = ordered;
  const double atA = std::abs(accurateSide(plan(*b), plan(*c), p));
  const double atB = std::abs(accurateSide(plan(*c), plan(*a), p));
  const double atC = std::abs(accurateSide(plan(*a), plan(*b), p));
  return a->z + (atB * (b->z - a->z) + atC * (c->z - a->z)) / (atA + atB + atC);
}

/// Elevation of an edge at a point of it. The same to the last bit for both directions of the edge.
double elevationOnEdge(const Vec3* a, const Vec3* b, Vec2 p) {
  if (std::pair(b->x, b->y) < std::pair(a->x, a->y)) std::swap(a, b);
  const double along =
      std::abs(b->x - a->x) >= std::abs(b->y - a->y) ? (p.x - a->x) / (b->x - a->x) : (p.y - a->y) / (b->y - a->y);
  return along <= 0.5 ? a->z + along * (b->z - a->z) : b->z - (1.0 - along) * (b->z - a->z);
}

/// What a counter-clockwise triangle holds at a point; nothing if the point lies outside. Decided exactly.
Ground groundIn(const std::array<const Vec3*, 3>& corners, Vec2 p) {
  const auto [a, b, c] = corners;
  if (std::min({a->x, b->x, c->x}) > p.x || std::max({a->x, b->x, c->x}) < p.x) return {};
  if (std::min({a->y, b->y, c->y}) > p.y || std::max({a->y, b->y, c->y}) < p.y) return {};
  std::array<bool, 3> isOn{};  // the edge opposite to the corner
  for (std::size_t i = 0; i < 3; ++i) {
    const double side = signedSide(plan(*corners[(i + 1) % 3]), plan(*corners[(i + 2) % 3]), p);
    if (side < 0.0) return {};
    isOn[i] = side == 0.0;
  }
  for (std::size_t i = 0; i < 3; ++i)
    if (isOn[(i + 1) % 3] && isOn[(i + 2) % 3]) return {corners[i]->z, Rank::Vertex};
  for (std::size_t i = 0; i < 3; ++i)
    if (isOn[i]) return {elevationOnEdge(corners[(i + 1) % 3], corners[(i + 2) % 3], p), Rank::Edge};
  return {elevationWithin(corners, p), Rank::Face};
}

/// A triangle that holds a place: in its interior, on an edge, or at a corner.
struct Holder {
  std::int32_t triangle = kNoLink;  // complemented where another triangle may hold the place too
  std::uint8_t onEdges = 0;         // a bit for each edge that the place lies on
};

/// Walks to a triangle that holds `p`. kNoLink where that isn't plain: at borders, when the way gets long.
Holder locate(const Mesh& mesh, Vec2 p) {
  constexpr int kMostSteps = 200;
  const std::int32_t* corners = cornersOf(mesh.ground());
  const std::int32_t near = mesh.grid.triangleNear(p);
  if (near == kNoLink) return {};
  auto at = static_cast<std::size_t>(near >= 0 ? near : ~near);
  for (int step = 0; step < kMostSteps; ++step) {
    const std::size_t first = 3 * at;
    const std::array<Vec2, 3> c{plan(mesh.point(corners[first])), plan(mesh.point(corners[first + 1])),
                                plan(mesh.point(corners[first + 2]))};
    const std::array<RoughSide, 3> sides{roughSide(c[1], c[2] - c[1], p), roughSide(c[2], c[0] - c[2], p),
                                         roughSide(c[0], c[1] - c[0], p)};
    // The first edge that leaves it on its right, found without branches: no processor foresees which it is.
    const unsigned rights = static_cast<unsigned>(sides[0].isRight()) |
                            static_cast<unsigned>(sides[1].isRight()) << 1U |
                            static_cast<unsigned>(sides[2].isRight()) << 2U | 8U;
    auto out = static_cast<std::size_t>(std::countr_zero(rights));
    std::uint8_t onEdges = 0;
    if (out == 3) {
      for (std::size_t i = 0; i < 3 && out == 3; ++i) {
        if (sides[i].isLeft()) continue;
        const double side = exactSide(c[(i + 1) % 3], c[(i + 2) % 3], p);
        if (side < 0.0) out = i;
        if (side == 0.0) onEdges |= static_cast<std::uint8_t>(1U << i);
      }
    }
    if (out == 3) {
      const auto number = static_cast<std::int32_t>(at);
      return {mesh.links.isAlone(at) ? number : ~number, onEdges};
    }
    const Link link = mesh.links.across(at, out);
    if (link == kNoLink) return {};
    at = static_cast<std::size_t>(link >> 2);
  }
  return {};
}

/// Products of coordinates must not overflow. False for what isn't a number.
bool isWorkable(double coordinate) { return std::abs(coordinate) <= 1e100; }

/// The first one that isn't good; `count` where all are.
template <class IsGood>
std::size_t firstBad(const RunPieces& run, std::size_t count, IsGood isGood) {
  std::atomic<std::size_t> bad = count;
  eachStretch(run, count, [&](std::size_t first, std::size_t end) {
    while (first < end && isGood(first)) ++first;
    if (first == end) return;
    std::size_t known = bad;
    while (first < known && !bad.compare_exchange_weak(known, first)) {
    }
  });
  return bad;
}

/// Gives the box of the points.
Box checkInput(std::span<const Vec3> points, std::span<const Triangle> triangles, const RunPieces& run) {
  if (triangles.size() >= kMostTriangles || points.size() > std::numeric_limits<std::int32_t>::max())
    throw std::invalid_argument("civil: a surface of " + std::to_string(triangles.size()) + " triangles and " +
                                std::to_string(points.size()) + " points is too large");
  const auto isPlace = [](const Vec3& p) { return isWorkable(p.x) && isWorkable(p.y) && isWorkable(p.z); };
  const auto isPoint = [&](std::int32_t corner) {
    return corner >= 0 && static_cast<std::size_t>(corner) < points.size();
  };
  const auto hasPoints = [&](std::size_t i) {
    return isPoint(triangles[i].a) && isPoint(triangles[i].b) && isPoint(triangles[i].c);
  };
  std::atomic<bool> areAllPlaces = true;
  const Box box = boxAround(run, points.size(), [&](std::size_t first, std::size_t end) {
    Box here;
    bool areHere = true;
    for (std::size_t i = first; i < end; ++i) {
      areHere &= isPlace(points[i]);
      here.add(plan(points[i]));
    }
    if (!areHere) areAllPlaces = false;
    return here;
  });
  if (!areAllPlaces) {
    const std::size_t bad = firstBad(run, points.size(), [&](std::size_t i) { return isPlace(points[i]); });
    throw std::invalid_argument("civil: surface point " + std::to_string(bad) + " isn't at a finite place");
  }
  if (const auto bad = firstBad(run, triangles.size(), hasPoints); bad < triangles.size())
    throw std::invalid_argument("civil: surface triangle " + std::to_string(bad) + " has a corner that isn't a point");
  return box;
}

/// Box and elevations of the ground: of the triangles with area. The first `usedPoints` are those of all triangles.
void measure(Mesh& mesh, std::size_t usedPoints, const RunPieces& run) {
  if (mesh.groundCount == 0) return;
  const std::int32_t* corners = cornersOf(mesh.ground());
  // Without triangles that are no ground all points are of the ground, each once.
  const bool isAllGround = mesh.groundCount == mesh.triangles.size();
  mesh.minElevation = std::numeric_limits<double>::infinity();
  mesh.maxElevation = -mesh.minElevation;
  std::mutex mutex;
  mesh.box = boxAround(run, isAllGround ? usedPoints : 3 * mesh.groundCount, [&](std::size_t first, std::size_t end) {
    Box box;
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -lowest;
    for (std::size_t i = first; i < end; ++i) {
      const Vec3& p = isAllGround ? mesh.points[i] : mesh.point(corners[i]);
      box.add(plan(p));
      lowest = std::min(lowest, p.z);
      highest = std::max(highest, p.z);
    }
    const std::lock_guard lock(mutex);
    mesh.minElevation = std::min(mesh.minElevation, lowest);
    mesh.maxElevation = std::max(mesh.maxElevation, highest);
    return box;
  });
}

/// Samples one segment.
///
/// Two ways lead to the same samples. `walk` goes from triangle to triangle while everything is plain: triangles alone
/// where they lie, edges crossed clearly, through vertices and along edges that lie on the segment exactly, over holes with
/// plain borders from cell to cell of the grid. `gather` takes all triangles near a part of the segment, decides every touch
/// exactly and sorts; it bridges the part from where a walk gave up to where another can begin.
class SegmentSampler {
 public:
  SegmentSampler(const Mesh& mesh, Vec2 a, Vec2 b, std::vector<Vec3>& samples)
      : mesh_(mesh),
        a_(a),
        b_(b),
        d_(b - a),
        square_(dot(d_, d_)),
        perSquare_(1.0 / square_),
        line_{a_, d_, square_, perSquare_},
        samples_(samples) {}

  /// Whether the length is more than a point's, so that places along the segment can be told.
  [[nodiscard]] bool hasLength() const { return square_ > 1e-290; }

  void sample() {
    const Way way = beginAtStart();
    if (way == Way::ToTheEnd) return;
    bool canWalk = way == Way::Inside;
    if (!canWalk && !startsOnGround_ && mayStartInGap()) {
      const Gap gap = crossGap(Behind::Unknown);
      if (gap == Gap::ToTheEnd) return;
      canWalk = gap == Gap::Crossed;
    }
    while (!canWalk || !walk()) {
      canWalk = beginFurther();
      gather(canWalk ? last_ : 1.0);
      if (!canWalk) return;
    }
  }

 private:
  /// A vertex as seen from the segment.
  struct Corner {
    const Vec3* point;
    RoughSide side;
  };
  struct Crossing {
    double along;   // 0 at the segment's start, 1 at its end
    double onEdge;  // 0 at the edge's right end, 1 at its left end
    bool isSafe;
  };
  /// A sample that isn't yet compared with its neighbours.
  struct Hit {
    double along;
    Rank rank;
    Vec3 point;
    [[nodiscard]] bool isBefore(const Hit& other) const {
      if (along != other.along) return along < other.along;
      return rank != other.rank ? rank < other.rank : point.z > other.point.z;
    }
  };
  /// An edge on the segment's line.
  struct EdgeAlong {
    double from;
    double to;
    const Vec3* start;
    const Vec3* end;
  };

  /// Outside of the ground's box.
  [[nodiscard]] bool isOutside(Vec2 p) const {
    const Box& box = mesh_.box;
    return p.x < box.minX || p.x > box.maxX || p.y < box.minY || p.y > box.maxY;
  }

  /// The segment as a line of its own length.
  struct Line {
    Vec2 a;
    Vec2 d;
    double square;
    double perSquare;

    [[nodiscard]] Corner corner(const Vec3& point) const { return {&point, roughSide(a, d, plan(point))}; }

    /// Where it crosses the edge from `right`, on its right, to `left`, on its left.
    [[nodiscard]] Crossing crossing(const Corner& right, const Corner& left) const {
      const double total = left.side.value - right.side.value;
      const double onEdge = -right.side.value / total;
      const Vec2 edge = plan(*left.point) - plan(*right.point);
      const double reach = dot(edge, d);
      const double along = (dot(plan(*right.point) - a, d) + onEdge * reach) * perSquare;
      // What rounding moves a corner off the line moves the crossing along it, the more the flatter they meet.
      const double error = RoughSide::kError * (right.side.magnitude + left.side.magnitude) * std::abs(reach);
      return {along, onEdge, error < kPlaceError * total * square};
    }

    [[nodiscard]] Vec3 pointAt(const Crossing& crossing, const Vec3& right, const Vec3& left) const {
      return {a.x + crossing.along * d.x, a.y + crossing.along * d.y, right.z + crossing.onEdge * (left.z - right.z)};
    }
  };
  [[nodiscard]] Corner cornerAt(std::int32_t number) const { return line_.corner(mesh_.point(number)); }
  [[nodiscard]] Crossing crossing(const Corner& right, const Corner& left) const { return line_.crossing(right, left); }
  [[nodiscard]] Vec3 pointAt(const Crossing& crossing, const Vec3& right, const Vec3& left) const {
    return line_.pointAt(crossing, right, left);
  }

  enum class Gap : std::uint8_t {
    Crossed,   ///< a walk goes on from the border behind it, whose sample stands
    ToTheEnd,  ///< no ground comes any more
    Unclear,
  };

  /// A corner of a triangle that lies on the segment's line.
  struct OnLine {
    std::size_t triangle = 0;
    std::size_t corner = 0;
    std::int32_t vertex = 0;
    std::int32_t before = kNoLink;  ///< the vertex from where an edge on the line leads here
  };
  /// Where a segment goes from a vertex or an edge on its line.
  enum class Way : std::uint8_t {
    Inside,    ///< into a triangle, in which the walk goes on
    Along,     ///< along an edge to another vertex
    ToTheEnd,  ///< the segment's end is there, with its sample
    Unclear,
  };

  Way beginAtStart();
  [[nodiscard]] Way enter(std::size_t triangle, std::size_t in, OnLine& vertex);
  [[nodiscard]] Way wayFrom(OnLine& vertex);
  [[nodiscard]] Way passVertices(OnLine vertex);
  [[nodiscard]] bool isOnLine(const Corner& corner) const { return exactSide(a_, b_, plan(*corner.point)) == 0.0; }
  [[nodiscard]] bool isAhead(const Vec3& from, const Vec3& to) const { return dot(plan(to) - plan(from), d_) > 0.0; }
  /// What lies behind a gap's begin: a border that was crossed, or what is to be found out.
  enum class Behind : std::uint8_t { Border, Unknown };
  [[nodiscard]] bool mayStartInGap() const;
  Gap crossGap(Behind behind);
  bool beginFurther();
  bool walk();
  bool walkPlainly();
  void gather(double to);
  void clip(std::size_t triangle, double to);
  void hitVertex(const Vec3& vertex);
  void hitEdge(const Corner& right, const Corner& left);
  void runAlong(const Vec3& start, const Vec3& end);
  void raiseToEdgesAlong();
  void mergeHits();

  const Mesh& mesh_;
  Vec2 a_;
  Vec2 b_;
  Vec2 d_;
  double square_;
  double perSquare_;
  Line line_;
  std::vector<Vec3>& samples_;

  bool startsOnGround_ = false;  // as far as it is known
  // The walk's state: within a triangle, about to leave it by an edge whose ends lie on both sides.
  std::size_t triangle_ = 0;
  std::size_t out_ = 0;
  Corner right_{};
  Corner left_{};

  /// Where the last sample lies along the segment; and the first of those that fell together in it, from where a
  /// gathering finds it again.
  double last_ = 0.0;
  double first_ = 0.0;
  std::vector<Hit> hits_;
  std::vector<EdgeAlong> edgesAlong_;
  Ground atStart_;
  Ground atEnd_;
};

/// Begins a walk at the segment's start, with its sample. Never `Along`.
SegmentSampler::Way SegmentSampler::beginAtStart() {
  const Holder start = locate(mesh_, a_);
  if (start.triangle < 0) return Way::Unclear;
  startsOnGround_ = true;
  triangle_ = static_cast<std::size_t>(start.triangle);
  const std::int32_t* corners = cornersOf(mesh_.ground()) + 3 * triangle_;
  const std::array<Corner, 3> ends{cornerAt(corners[0]), cornerAt(corners[1]), cornerAt(corners[2])};
  const auto at = [&](std::size_t corner) { return OnLine{triangle_, corner, corners[corner]}; };
  const auto follow = [&](Way way, const OnLine& vertex) {
    if (way == Way::Along) way = passVertices(vertex);
    // The gathering finds it again.
    if (way == Way::Unclear) samples_.pop_back();
    return way;
  };
  OnLine vertex;
  if (start.onEdges == 0) {
    const auto leaves = [&ends](std::size_t from, std::size_t to) {
      return static_cast<std::size_t>(ends[from].side.isRight()) & static_cast<std::size_t>(ends[to].side.isLeft());
    };
    out_ = 3 - 3 * leaves(1, 2) - 2 * leaves(2, 0) - leaves(0, 1);
    if (out_ < 3) {
      right_ = ends[(out_ + 1) % 3];
      left_ = ends[(out_ + 2) % 3];
      samples_.push_back({a_.x, a_.y, elevationWithin(mesh_.cornersAt(triangle_), a_)});
      return Way::Inside;
    }
    for (std::size_t i = 0; i < 3; ++i) {
      if (ends[i].side.isLeft() || ends[i].side.isRight()) continue;
      if (dot(plan(*ends[i].point) - a_, d_) <= 0.0 || !isOnLine(ends[i])) continue;
      samples_.push_back({a_.x, a_.y, elevationWithin(mesh_.cornersAt(triangle_), a_)});
      return follow(Way::Along, at(i));
    }
    return Way::Unclear;
  }
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t from = (i + 1) % 3;
    const std::size_t to = (i + 2) % 3;
    // At a corner it lies on two edges.
    if ((start.onEdges >> from & 1U) != 0 && (start.onEdges >> to & 1U) != 0) {
      samples_.push_back({a_.x, a_.y, ends[i].point->z});
      vertex = at(i);
      return follow(wayFrom(vertex), vertex);
    }
  }
  for (std::size_t i = 0; i < 3; ++i) {
    if (start.onEdges >> i != 1U) continue;
    const std::size_t from = (i + 1) % 3;
    const std::size_t to = (i + 2) % 3;
    samples_.push_back({a_.x, a_.y, elevationOnEdge(ends[from].point, ends[to].point, a_)});
    if (ends[from].side.isLeft() && ends[to].side.isRight()) {
      right_ = ends[to];
      left_ = ends[from];
      return follow(enter(triangle_, i, vertex), vertex);
    }
    if (ends[from].side.isRight() && ends[to].side.isLeft()) {
      const Link link = mesh_.links.across(triangle_, i);
      if (link == kNoLink || !mesh_.links.isAlone(static_cast<std::size_t>(link >> 2)))
        return follow(Way::Unclear, vertex);
      right_ = ends[from];
      left_ = ends[to];
      return follow(enter(static_cast<std::size_t>(link >> 2), static_cast<std::size_t>(link & 3), vertex), vertex);
    }
    if (!isOnLine(ends[from]) || !isOnLine(ends[to])) return follow(Way::Unclear, vertex);
    const bool isForward = isAhead(*ends[from].point, *ends[to].point);
    vertex = at(isForward ? to : from);
    vertex.before = corners[isForward ? from : to];
    return follow(Way::Along, vertex);
  }
  return Way::Unclear;
}

/// Into a triangle by its edge `in`, whose ends are `right_` and `left_`: to the edge by which it is left, or to the corner
/// ahead.
SegmentSampler::Way SegmentSampler::enter(std::size_t triangle, std::size_t in, OnLine& vertex) {
  const std::int32_t number = cornersOf(mesh_.ground())[3 * triangle + in];
  const Corner ahead = cornerAt(number);
  triangle_ = triangle;
  if (ahead.side.isLeft()) {
    left_ = ahead;
    out_ = in == 2 ? 0 : in + 1;
    return Way::Inside;
  }
  if (ahead.side.isRight()) {
    right_ = ahead;
    out_ = in == 0 ? 2 : in - 1;
    return Way::Inside;
  }
  if (!isOnLine(ahead)) return Way::Unclear;
  vertex = {triangle, in, number};
  return Way::Along;
}

/// Looks around a vertex on the line for where the segment goes from there.
SegmentSampler::Way SegmentSampler::wayFrom(OnLine& vertex) {
  constexpr int kMostTurns = 64;
  const std::int32_t* corners = cornersOf(mesh_.ground());
  const Vec3& here = mesh_.point(vertex.vertex);
  std::size_t triangle = vertex.triangle;
  std::size_t corner = vertex.corner;
  const auto cornerBehind = [&](std::size_t steps) {
    const std::size_t which = (corner + steps) % 3;
    return OnLine{triangle, which, corners[3 * triangle + which], vertex.vertex};
  };
  const auto isNext = [&](const OnLine& other, const Corner& its) {
    return other.vertex != vertex.before && !its.side.isLeft() && !its.side.isRight() && isOnLine(its) &&
           isAhead(here, *its.point);
  };
  OnLine first = cornerBehind(1);
  Corner right = cornerAt(first.vertex);
  if (!mesh_.links.isAlone(triangle)) return Way::Unclear;
  if (isNext(first, right)) {
    vertex = first;
    return Way::Along;
  }
  for (int turn = 0; turn < kMostTurns; ++turn) {
    const OnLine second = cornerBehind(2);
    const Corner left = cornerAt(second.vertex);
    if (right.side.isRight() && left.side.isLeft()) {
      triangle_ = triangle;
      out_ = corner;
      right_ = right;
      left_ = left;
      return Way::Inside;
    }
    if (isNext(second, left)) {
      vertex = second;
      return Way::Along;
    }
    const Link link = mesh_.links.across(triangle, (corner + 1) % 3);
    if (link == kNoLink) return Way::Unclear;
    triangle = static_cast<std::size_t>(link >> 2);
    corner = (static_cast<std::size_t>(link & 3) + 1) % 3;
    if (triangle == vertex.triangle || !mesh_.links.isAlone(triangle)) return Way::Unclear;
    right = left;
  }
  return Way::Unclear;
}

/// From a vertex ahead through all that follow without a crossing between them. Never `Along`.
SegmentSampler::Way SegmentSampler::passVertices(OnLine vertex) {
  for (;;) {
    const Vec3& point = mesh_.point(vertex.vertex);
    const double along = dot(plan(point) - a_, d_) * perSquare_;
    if (along > 1.0 - kSamePlace) {
      if (1.0 - last_ < kSamePlace) return Way::Unclear;
      double elevation = point.z;
      if (along > 1.0 + kSamePlace)
        elevation = vertex.before == kNoLink ? elevationWithin(mesh_.cornersAt(vertex.triangle), b_)
                                             : elevationOnEdge(&mesh_.point(vertex.before), &point, b_);
      else if (plan(point) != b_)
        return Way::Unclear;
      samples_.push_back({b_.x, b_.y, elevation});
      return Way::ToTheEnd;
    }
    if (along - last_ < kSamePlace) return Way::Unclear;
    samples_.push_back(point);
    first_ = last_ = along;
    const Way way = wayFrom(vertex);
    if (way != Way::Along) return way;
  }
}

/// Looks along the segment, beyond the last sample, for a triangle to walk on from. Its sample is where the segment enters
/// it, and still to be gathered.
bool SegmentSampler::beginFurther() {
  // Only within the box of the ground: segments may come from far away.
  double begin = last_;
  double end = 1.0;
  const auto cut = [&](double start, double step, double low, double high) {
    if (step == 0.0) return;
    const auto [enter, leave] = std::minmax({(low - start) / step, (high - start) / step});
    begin = std::max(begin, enter);
    end = std::min(end, leave);
  };
  cut(a_.x, d_.x, mesh_.box.minX, mesh_.box.maxX);
  cut(a_.y, d_.y, mesh_.box.minY, mesh_.box.maxY);

  constexpr double kShortestStep = 1e-12;  // a segment so long that doubles can't count such steps is gathered
  const double step = mesh_.grid.cellSize() * std::sqrt(perSquare_);
  if (!(step > kShortestStep)) return false;
  const auto at = [begin, step](std::int64_t count) { return begin + static_cast<double>(count) * step; };
  for (std::int64_t count = 1; at(count) < end; ++count) {
    const double along = at(count);
    const Vec2 p = a_ + along * d_;
    if (mesh_.grid.triangleNear(p) < 0) continue;
    const Holder there = locate(mesh_, p);
    if (there.triangle < 0 || there.onEdges != 0) continue;
    const std::int32_t* corners = cornersOf(mesh_.ground()) + 3 * static_cast<std::size_t>(there.triangle);
    const std::array<Corner, 3> ends{cornerAt(corners[0]), cornerAt(corners[1]), cornerAt(corners[2])};
    std::size_t in = 3;
    std::size_t out = 3;
    for (std::size_t i = 0; i < 3; ++i) {
      const RoughSide& from = ends[(i + 1) % 3].side;
      const RoughSide& to = ends[(i + 2) % 3].side;
      if (from.isLeft() && to.isRight()) in = i;
      if (from.isRight() && to.isLeft()) out = i;
    }
    if (in == 3 || out == 3) continue;
    const Crossing entry = crossing(ends[(in + 2) % 3], ends[(in + 1) % 3]);
    if (!entry.isSafe || entry.along < last_ + kSamePlace || entry.along > 1.0 - kSamePlace) continue;
    triangle_ = static_cast<std::size_t>(there.triangle);
    out_ = out;
    right_ = ends[(out + 1) % 3];
    left_ = ends[(out + 2) % 3];
    last_ = entry.along;
    return true;
  }
  return false;
}

/// Whether there may be no ground at the segment's start, so that the borders ahead tell.
bool SegmentSampler::mayStartInGap() const {
  if (!mesh_.grid.hasCovers()) return false;
  if (isOutside(a_)) return true;
  const StartGrid::Cover cover = mesh_.grid.coverOf(mesh_.grid.cellOf(a_));
  return cover == StartGrid::Cover::None || cover == StartGrid::Cover::PlainBorder;
}

/// From a place without ground behind it, the last sample's or the segment's start: to the next border that the segment
/// crosses. It looks at the cells on the way there alone. A start that may lie on ground doesn't where the first border
/// ahead leads onto ground, nor where there is none and the segment sees a cell without ground.
SegmentSampler::Gap SegmentSampler::crossGap(Behind behind) {
  const StartGrid& grid = mesh_.grid;
  if (!grid.canVisit(a_, d_)) return Gap::Unclear;
  const std::int32_t* corners = cornersOf(mesh_.ground());
  struct Entry {
    Crossing crossing{};
    Link border = 0;
    Corner from;  // of the border edge
    Corner to;
  };
  std::optional<Entry> next;
  bool isClear = true;
  bool isGap = behind == Behind::Border || isOutside(a_) || isOutside(b_);
  grid.visitAlong(a_, d_, last_, 1.0, [&](std::size_t cell, double end) {
    const StartGrid::Cover cover = grid.coverOf(cell);
    if (cover == StartGrid::Cover::None) return isGap = true;
    if (cover != StartGrid::Cover::PlainBorder) return isClear = false;
    for (const Link border : grid.bordersIn(cell)) {
      const auto packed = static_cast<std::size_t>(border >= 0 ? border : ~border);
      const std::int32_t* triangle = corners + packed / 4 * 3;
      const Corner from = cornerAt(triangle[(packed % 4 + 1) % 3]);
      const Corner to = cornerAt(triangle[(packed % 4 + 2) % 3]);
      if ((from.side.isLeft() && to.side.isLeft()) || (from.side.isRight() && to.side.isRight())) continue;
      const bool isEntry = from.side.isLeft() && to.side.isRight();
      if (!isEntry && !(from.side.isRight() && to.side.isLeft())) return isClear = false;
      const Crossing hit = isEntry ? crossing(to, from) : crossing(from, to);
      if (!hit.isSafe) return isClear = false;
      // Behind the segment's part that is looked at, or where it left the ground.
      if (hit.along < last_ - kSamePlace || hit.along > 1.0 + kSamePlace) continue;
      if (!isEntry && hit.along <= last_ && behind == Behind::Border) continue;
      if (!isEntry || border < 0 || hit.along < last_ + kSamePlace || hit.along > 1.0 - kSamePlace) {
        // Ground ends where none was, or what doubles can't tell: unless another border comes before.
        if (!next || hit.along < next->crossing.along) return isClear = false;
        continue;
      }
      if (!next || hit.along < next->crossing.along) next = Entry{hit, border, from, to};
    }
    return !(next && next->crossing.along <= end);
  });
  if (!isClear) return Gap::Unclear;
  if (!next) return isGap ? Gap::ToTheEnd : Gap::Unclear;

  const auto packed = static_cast<std::size_t>(next->border);
  triangle_ = packed / 4;
  const std::size_t in = packed % 4;
  const Corner ahead = cornerAt(corners[3 * triangle_ + in]);
  // The edge's end lies right of the segment, its start left.
  right_ = next->to;
  left_ = next->from;
  if (ahead.side.isLeft()) {
    left_ = ahead;
    out_ = in == 2 ? 0 : in + 1;
  } else if (ahead.side.isRight()) {
    right_ = ahead;
    out_ = in == 0 ? 2 : in - 1;
  } else {
    return Gap::Unclear;
  }
  samples_.push_back(pointAt(next->crossing, *next->to.point, *next->from.point));
  first_ = last_ = next->crossing.along;
  return Gap::Crossed;
}

/// Returns whether it got to the end. If not, it leaves its last sample to the gathering, as it may be one with what
/// follows. After a vertex it takes a careful step first: where vertices follow one another, nothing is plain.
bool SegmentSampler::walk() {
  bool isPlain = true;
  for (;;) {
    if (isPlain && walkPlainly()) {
      samples_.push_back({b_.x, b_.y, elevationWithin(mesh_.cornersAt(triangle_), b_)});
      return true;
    }
    const Crossing hit = crossing(right_, left_);
    if (!hit.isSafe) break;
    if (hit.along > 1.0 + kSamePlace) {
      samples_.push_back({b_.x, b_.y, elevationWithin(mesh_.cornersAt(triangle_), b_)});
      return true;
    }
    const Link link = mesh_.links.across(triangle_, out_);
    if ((link != kNoLink && !mesh_.links.isAlone(static_cast<std::size_t>(link >> 2))) ||
        hit.along - last_ < kSamePlace || hit.along > 1.0 - kSamePlace)
      break;
    samples_.push_back(pointAt(hit, *right_.point, *left_.point));
    first_ = last_ = hit.along;
    if (link == kNoLink) {
      const Gap gap = crossGap(Behind::Border);
      if (gap == Gap::ToTheEnd) return true;
      if (gap == Gap::Unclear) break;
      isPlain = true;
      continue;
    }
    const auto next = static_cast<std::size_t>(link >> 2);
    const auto in = static_cast<std::size_t>(link & 3);
    OnLine vertex;
    Way way = enter(next, in, vertex);
    isPlain = way == Way::Inside;
    if (way == Way::Along) way = passVertices(vertex);
    if (way == Way::ToTheEnd) return true;
    if (way == Way::Unclear) break;
  }
  samples_.pop_back();
  return false;
}

/// Goes on as long as nothing needs care: over crossings and past corners that a bound on the rounding all over this ground
/// makes sure of. Where it stops, the careful step looks again. True where it got into the triangle of the segment's end,
/// whose sample is still to be made.
///
/// Most of a sample's time goes here: a function of its own, as its values fit into the registers only without those of
/// its callers.
[[gnu::noinline]] bool SegmentSampler::walkPlainly() {
  // No corner of the ground has a larger sum of products, so none is less sure of its side.
  const Box& box = mesh_.box;
  const double widest = std::max(std::abs(box.minX - a_.x), std::abs(box.maxX - a_.x));
  const double highest = std::max(std::abs(box.minY - a_.y), std::abs(box.maxY - a_.y));
  const double sure = RoughSide::kError * (std::abs(d_.x) * highest + std::abs(d_.y) * widest);
  // A crossing is safe where its edge reaches along the segment less than this part of what it reaches across it.
  constexpr double kRounding = 1.0 + 1e-14;
  const double steepest = 2.0 * sure * kRounding / (kPlaceError * square_);
  constexpr double kSmallest = 1e-60;  // products that lose digits near 0 are left to the care
  if (!(sure > kSmallest && square_ > kSmallest)) return false;

  // What the loop needs stays in registers: nothing that it calls can change it.
  const Vec2 a = a_;
  const Vec2 d = d_;
  const double perSquare = perSquare_;
  const std::int32_t* const corners = cornersOf(mesh_.ground());
  const Vec3* const points = mesh_.points.all().data();
  const TriangleLinks::View links = mesh_.links.view();
  std::size_t triangle = triangle_;
  std::size_t out = out_;
  const Vec3* right = right_.point;
  const Vec3* left = left_.point;
  double rightSide = right_.side.value;
  double leftSide = left_.side.value;
  double rightAlong = dot(plan(*right) - a, d);
  double last = last_;
  constexpr std::size_t kBlock = 64;
  alignas(Vec3) std::byte memory[kBlock * sizeof(Vec3)];
  Vec3* const block = reinterpret_cast<Vec3*>(memory);
  Vec3* sample = block;
  bool isBeyond = false;
  for (;;) {
    const double total = leftSide - rightSide;
    const double onEdge = -rightSide / total;
    const double reach = dot(plan(*left) - plan(*right), d);
    const double along = (rightAlong + onEdge * reach) * perSquare;
    if (!(std::abs(reach) * steepest < total)) break;
    if (!(along <= 1.0 - kSamePlace)) {
      isBeyond = along > 1.0 + kSamePlace;
      break;
    }
    if (!(along - last >= kSamePlace)) break;
    const Link link = links.across(triangle, out);
    if (link == kNoLink) break;
    const std::size_t next = static_cast<std::uint32_t>(link) >> 2U;
    const std::size_t in = static_cast<std::uint32_t>(link) & 3U;
    if (!links.isAlone(next)) break;
    const Vec3& ahead = points[static_cast<std::uint32_t>(corners[3 * next + in])];
    const Vec2 from = plan(ahead) - a;
    const double side = d.x * from.y - d.y * from.x;
    if (!(std::abs(side) > sure)) break;
    *sample++ = {a.x + along * d.x, a.y + along * d.y, right->z + onEdge * (left->z - right->z)};
    triangle = next;
    last = along;
    if (side > 0.0) {
      left = &ahead;
      leftSide = side;
      out = in == 2 ? 0 : in + 1;
    } else {
      right = &ahead;
      rightSide = side;
      rightAlong = dot(from, d);
      out = in == 0 ? 2 : in - 1;
    }
    if (sample == block + kBlock) {
      samples_.insert(samples_.end(), block, sample);
      sample = block;
    }
  }
  samples_.insert(samples_.end(), block, sample);
  triangle_ = triangle;
  if (isBeyond) return true;
  if (last == last_) return false;
  out_ = out;
  right_ = line_.corner(*right);
  left_ = line_.corner(*left);
  first_ = last_ = last;
  return false;
}

/// From the last sample, which it finds again, up to the sample at `to`.
void SegmentSampler::gather(double to) {
  hits_.clear();
  edgesAlong_.clear();
  atStart_ = atEnd_ = {};
  const Vec2 from = first_ > 0.0 ? a_ + (first_ - kSamePlace) * d_ : a_;
  const Vec2 until = to < 1.0 ? a_ + (to + kSamePlace) * d_ : b_;
  mesh_.blocks.visitNear(from, until, [&](std::size_t triangle) { clip(triangle, to); });
  if (atStart_.rank != Rank::None) hits_.push_back({0.0, Rank::End, {a_.x, a_.y, atStart_.elevation}});
  if (atEnd_.rank != Rank::None) hits_.push_back({1.0, Rank::End, {b_.x, b_.y, atEnd_.elevation}});
  // Half of the distance that makes two samples of two: well off rounding, and off any sample outside the part.
  const double low = first_ > 0.0 ? first_ - 0.5 * kSamePlace : 0.0;
  const double high = to < 1.0 ? to + 0.5 * kSamePlace : 1.0;
  std::erase_if(hits_, [&](const Hit& hit) { return hit.along < low || hit.along > high; });
  mergeHits();
}

void SegmentSampler::clip(std::size_t triangle, double to) {
  const std::array<const Vec3*, 3> points = mesh_.cornersAt(triangle);
  std::array<Corner, 3> corners{};
  for (std::size_t i = 0; i < 3; ++i) corners[i] = {points[i], roughSide(a_, d_, plan(*points[i]))};
  // Most candidates lie clearly on one side; this asks for all corners at once.
  const auto& [p, q, r] = corners;
  const double error = RoughSide::kError * std::max({p.side.magnitude, q.side.magnitude, r.side.magnitude});
  const double lowest = std::min({p.side.value, q.side.value, r.side.value});
  const double highest = std::max({p.side.value, q.side.value, r.side.value});
  if ((lowest > error) | (highest < -error)) return;

  std::array<int, 3> signs{};
  for (std::size_t i = 0; i < 3; ++i) {
    double side = corners[i].side.value;
    if (std::abs(side) <= error) side = exactSide(a_, b_, plan(*points[i]));
    signs[i] = (side > 0.0) - (side < 0.0);
  }
  if (signs[0] * signs[1] > 0 && signs[1] * signs[2] > 0) return;

  if (first_ == 0.0) atStart_.improve(groundIn(points, a_));
  if (to == 1.0) atEnd_.improve(groundIn(points, b_));
  for (std::size_t i = 0; i < 3; ++i) {
    if (signs[i] == 0) hitVertex(*points[i]);
    // An edge of two triangles is near for both: the first one takes it.
    const Link link = mesh_.links.across(triangle, (i + 2) % 3);
    if (link != kNoLink && static_cast<std::size_t>(link >> 2) < triangle) continue;
    const std::size_t j = (i + 1) % 3;
    if (signs[i] == 0 && signs[j] == 0) runAlong(*points[i], *points[j]);
    if (signs[i] < 0 && signs[j] > 0) hitEdge(corners[i], corners[j]);
    if (signs[i] > 0 && signs[j] < 0) hitEdge(corners[j], corners[i]);
  }
}

/// Takes a vertex on the segment's line if it lies between the ends.
void SegmentSampler::hitVertex(const Vec3& vertex) {
  // On one line the order of any one coordinate that differs is the order along it.
  const bool byX = a_.x != b_.x;
  const double place = byX ? vertex.x : vertex.y;
  const double start = byX ? a_.x : a_.y;
  const double end = byX ? b_.x : b_.y;
  if (place <= std::min(start, end) || place >= std::max(start, end)) return;
  hits_.push_back({std::clamp(dot(plan(vertex) - a_, d_) * perSquare_, 0.0, 1.0), Rank::Vertex, vertex});
}

/// Takes the crossing with an edge whose ends lie strictly on both sides, if it lies strictly between the segment's
/// ends.
void SegmentSampler::hitEdge(const Corner& right, const Corner& left) {
  constexpr double kClearlyBetween = 1e-6;
  Crossing hit = crossing(right, left);
  if (!hit.isSafe || hit.along < kClearlyBetween || hit.along > 1.0 - kClearlyBetween) {
    const Vec2 from = plan(*right.point);
    const Vec2 to = plan(*left.point);
    const double before = exactSide(from, to, a_);
    const double behind = exactSide(from, to, b_);
    // The start lies left of the edge from right to left, the end right of it.
    if (before <= 0.0 || behind >= 0.0) return;
    // It is between the ends, whatever rounding says.
    hit.along = std::clamp(hit.along, 0.0, 1.0);
    if (!hit.isSafe) {
      hit.along = before / (before - behind);
      const double rightSide = exactSide(a_, b_, from);
      hit.onEdge = rightSide / (rightSide - exactSide(a_, b_, to));
    }
  }
  hits_.push_back({hit.along, Rank::Edge, pointAt(hit, *right.point, *left.point)});
}

/// Takes note of an edge on the segment's line. It makes no sample itself, but where triangles lie over one another edges
/// of others may cross it.
void SegmentSampler::runAlong(const Vec3& start, const Vec3& end) {
  const double p = dot(plan(start) - a_, d_) * perSquare_;
  const double q = dot(plan(end) - a_, d_) * perSquare_;
  edgesAlong_.push_back({std::min(p, q), std::max(p, q), &start, &end});
}

/// Of the edges at one place the highest counts, whether they cross the segment or run along it. The hits must be sorted.
void SegmentSampler::raiseToEdgesAlong() {
  bool isRaised = false;
  for (const EdgeAlong& edge : edgesAlong_) {
    auto hit = std::lower_bound(hits_.begin(), hits_.end(), edge.from,
                                [](const Hit& h, double from) { return h.along < from; });
    for (; hit != hits_.end() && hit->along <= edge.to; ++hit) {
      if (hit->rank != Rank::Edge) continue;
      const double elevation = elevationOnEdge(edge.start, edge.end, plan(hit->point));
      if (elevation <= hit->point.z) continue;
      hit->point.z = elevation;
      isRaised = true;
    }
  }
  if (isRaised) std::sort(hits_.begin(), hits_.end(), [](const Hit& p, const Hit& q) { return p.isBefore(q); });
}

void SegmentSampler::mergeHits() {
  /// Places that differ by rounding only.
  constexpr double kRounding = 1e-12;
  std::sort(hits_.begin(), hits_.end(), [](const Hit& p, const Hit& q) { return p.isBefore(q); });
  raiseToEdgesAlong();
  for (std::size_t i = 0; i < hits_.size();) {
    Hit best = hits_[i];
    first_ = best.along;
    for (++i; i < hits_.size() && hits_[i].along - best.along < kSamePlace; ++i) {
      const Hit& other = hits_[i];
      const bool isHigher =
          other.rank == best.rank && other.along - best.along < kRounding && other.point.z > best.point.z;
      if (other.rank < best.rank || isHigher) best = other;
    }
    samples_.push_back(best.point);
  }
}

}  // namespace

struct TinSurface::Data : Mesh {
  /// Grid and tree, built by the first question.
  void findSearch() {
    if (!hasSearch.load(std::memory_order_acquire)) buildSearch(inOrder);
  }
  /// Builds grid and tree, once, whoever asks first.
  void buildSearch(const RunPieces& run) {
    if (hasSearch.load(std::memory_order_acquire)) return;
    const std::lock_guard lock(searchMutex);
    if (hasSearch.load(std::memory_order_relaxed)) return;
    blocks = BlockTree(ground(), box, spare);
    // Neither asks for the other.
    run(2, [&](std::size_t which) {
      if (which == 0)
        grid = StartGrid(points.all(), ground(), box, links, spare);
      else
        blocks.fill(points.all(), ground());
    });
    spare = {};
    hasSearch.store(true, std::memory_order_release);
  }

  SpareMemory spare;
  std::mutex searchMutex;
  std::atomic<bool> hasSearch = false;
};

TinSurface::TinSurface() = default;
TinSurface::TinSurface(TinSurface&&) noexcept = default;
TinSurface& TinSurface::operator=(TinSurface&&) noexcept = default;
TinSurface::~TinSurface() = default;

void inOrder(std::size_t count, const std::function<void(std::size_t)>& piece) {
  for (std::size_t i = 0; i < count; ++i) piece(i);
}

TinSurface::TinSurface(std::vector<Vec3> points, std::vector<Triangle> triangles, const RunPieces& run,
                       GroundSearch search)
    : data_(std::make_unique<Data>()) {
  const Box place = checkInput(points, triangles, run);
  AlongCurve ordered = renumberAlongCurve(std::move(points), std::move(triangles), place, run);

  Mesh& mesh = *data_;
  mesh.points = std::move(ordered.points);
  mesh.triangles = std::move(ordered.triangles);
  mesh.groundCount = windAndPartition(mesh.points.all(), mesh.triangles.all(), run);

  const std::span<const Triangle> ground = mesh.ground();
  ordered.spare.shrinkTo(TriangleLinks::stepsSize(ground.size()) + BlockTree::boundsSize(ground.size()) +
                         StartGrid::startsSize(ground.size()));
  mesh.links = TriangleLinks(mesh.points.size(), ground, ordered.spare, run);
  mesh.counts = {mesh.points.size(), mesh.triangles.size(), mesh.triangles.size() - mesh.groundCount,
                 mesh.links.overlappingEdges()};
  measure(mesh, ordered.usedPoints, run);
  data_->spare = std::move(ordered.spare);
  if (search == GroundSearch::AtOnce) data_->buildSearch(run);
}

bool TinSurface::isEmpty() const { return !data_ || data_->groundCount == 0; }
TinSurface::Counts TinSurface::counts() const { return data_ ? data_->counts : Counts{}; }
Box TinSurface::box() const { return data_ ? data_->box : Box{}; }
double TinSurface::minElevation() const { return data_ ? data_->minElevation : 0.0; }
double TinSurface::maxElevation() const { return data_ ? data_->maxElevation : 0.0; }
std::span<const Vec3> TinSurface::points() const { return data_ ? data_->points.all() : std::span<const Vec3>(); }
std::span<const Triangle> TinSurface::triangles() const {
  return data_ ? data_->triangles.all() : std::span<const Triangle>();
}

void TinSurface::sample(Vec2 a, Vec2 b, std::vector<Vec3>& samples) const {
  if (isEmpty() || !isWorkable(a.x) || !isWorkable(a.y) || !isWorkable(b.x) || !isWorkable(b.y)) return;
  data_->findSearch();
  SegmentSampler sampler(*data_, a, b, samples);
  if (sampler.hasLength()) {
    sampler.sample();
  } else if (const auto elevation = elevationAt(a)) {
    samples.push_back({a.x, a.y, *elevation});
  }
}

std::optional<double> TinSurface::elevationAt(Vec2 point) const {
  if (isEmpty() || !isWorkable(point.x) || !isWorkable(point.y)) return std::nullopt;
  data_->findSearch();
  const Mesh& mesh = *data_;
  if (const Holder holder = locate(mesh, point); holder.triangle >= 0 && holder.onEdges == 0)
    return elevationWithin(mesh.cornersAt(static_cast<std::size_t>(holder.triangle)), point);
  Ground ground;
  mesh.blocks.visitNear(point, point,
                        [&](std::size_t triangle) { ground.improve(groundIn(mesh.cornersAt(triangle), point)); });
  if (ground.rank == Rank::None) return std::nullopt;
  return ground.elevation;
}

}  // namespace lvx::civil
