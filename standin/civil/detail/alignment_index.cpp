#include "civil/detail/alignment_index.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "civil/detail/frame.h"

namespace lvx::civil::detail {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
// A child that isn't there is nearest to nothing: squares of such distances are infinite.
constexpr double kNowhere = 1e300;
// Turn of a piece at most: keeps the capsules slim.
constexpr double kTurnOfPiece = 0.3;
// Elements that turn by more radians than this (30 full circles) are a slip of some file and no geometry; cut into pieces
// they would eat the memory.
constexpr double kMostTurn = 200.0;
// Ends further apart than this are a gap on purpose, not a rounding.
constexpr double kGap = 0.01;

// Whether the curvature follows another law than the clothoid's.
bool hasLaw(const Element& element) {
  return element.kind > ElementKind::Clothoid && element.startCurvature != element.endCurvature;
}

struct Bend {
  double curvature = 0.0;
  double rate = 0.0;
};

// Of an element with a law: the curvature as a series over the piece between two distances.
std::array<double, kLawTerms> curvatureSeries(const Element& element, double from, double to) {
  const double rise = element.endCurvature - element.startCurvature;
  std::array<double, kLawTerms> series =
      lawSeries(element.kind, 0.5 * (from + to) / element.length, 0.5 * (to - from) / element.length);
  for (double& term : series) term *= rise;
  series[0] += element.startCurvature;
  return series;
}

// Whether `count` pieces of equal length between two distances have series that err by a rounding.
bool isAccurate(const Element& element, double from, double to, double count) {
  const double step = (to - from) / count;
  for (std::int64_t piece = 0; static_cast<double>(piece) < count; ++piece) {
    const auto k = static_cast<double>(piece);
    if (!ClothoidSeries::isAccurate(curvatureSeries(element, from + k * step, from + (k + 1.0) * step), 0.5 * step)) {
      return false;
    }
  }
  return true;
}

double distanceToSegment(Vec2 p, Vec2 a, Vec2 b) {
  const Vec2 d = b - a;
  const double square = dot(d, d);
  const double t = square > 0.0 ? std::clamp(dot(p - a, d) / square, 0.0, 1.0) : 0.0;
  return length(p - a - t * d);
}

}  // namespace

// ---------------------------------------------------------------- building

AlignmentIndex::AlignmentIndex(std::span<const Element> elements, std::span<const double> stations) {
  bool hasOrigin = false;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (!(stations[i + 1] > stations[i])) continue;
    if (!hasOrigin) origin_ = elements[i].start;
    hasOrigin = true;
    addElement(elements[i], stations[i]);
  }
  for (std::size_t i = 0; i + 1 < pieces_.size(); ++i) {
    const Piece& piece = pieces_[i];
    const Piece& next = pieces_[i + 1];
    const Vec2 end = piece.middle + fromLocal(piece.endPoint, piece.tangent);
    const Vec2 start = next.middle + fromLocal(next.startPoint, next.tangent);
    pieces_[i].joinsNext = length(start - end) < kGap;
  }
  if (pieces_.empty()) return;
  buildTree();
  buildRuns();
}

void AlignmentIndex::addElement(const Element& element, double station) {
  const double rate = (element.endCurvature - element.startCurvature) / element.length;
  const double bend = std::max(std::abs(element.startCurvature), std::abs(element.endCurvature));
  const bool isLine = element.kind == ElementKind::Line;
  if (!isFinite(element.start - origin_) || !std::isfinite(element.direction)) return;
  if (!isLine && !(bend * element.length <= kMostTurn && std::isfinite(rate))) return;

  // A transition is cut where its curvature changes sign: each piece bends to one side; and a biquadratic where its law
  // changes.
  std::array<double, 4> cuts{0.0, element.length, element.length, element.length};
  if (const auto inflection = element.inflection()) cuts[1] = *inflection;
  if (element.kind == ElementKind::Biquadratic && hasLaw(element)) cuts[2] = 0.5 * element.length;
  std::sort(cuts.begin(), cuts.end());
  Vec2 at = element.start - origin_;
  for (std::size_t part = 0; part + 1 < cuts.size(); ++part) {
    const double from = cuts[part];
    const double to = cuts[part + 1];
    if (!(to > from)) continue;
    double count = 1.0;
    if (!isLine) {
      const double sharpest = std::max(std::abs(element.curvatureAt(from)), std::abs(element.curvatureAt(to)));
      count = std::max(std::ceil(sharpest * (to - from) / kTurnOfPiece), 1.0);
      if (hasLaw(element)) {
        count = std::max(count, std::ceil(0.5 * (to - from) / (element.length * largestStep(element.kind))));
        while (!isAccurate(element, from, to, count)) ++count;
      }
      while (rate != 0.0 && !hasLaw(element) && !ClothoidSeries::isAccurate(sharpest, rate, 0.5 * (to - from) / count))
        ++count;
    }
    for (std::int64_t piece = 0; static_cast<double>(piece) < count; ++piece) {
      const auto k = static_cast<double>(piece);
      const double next = k + 1.0 < count ? from + (to - from) * (k + 1.0) / count : to;
      addPiece(element, station, from + (to - from) * k / count, next, at);
    }
  }
}

// The piece of an element between two distances, starting `at` a point that moves on to its end.
void AlignmentIndex::addPiece(const Element& element, double station, double from, double to, Vec2& at) {
  Piece piece;
  const double middle = 0.5 * (from + to);
  const bool isLine =
      element.kind == ElementKind::Line || (element.startCurvature == 0.0 && element.endCurvature == 0.0);
  const bool isArc = element.kind == ElementKind::Arc || element.startCurvature == element.endCurvature;
  piece.kind = isLine ? ElementKind::Line : isArc ? ElementKind::Arc : element.kind;
  piece.half = 0.5 * (to - from);
  piece.station = station + middle;
  piece.startStation = station + from;
  piece.endStation = station + to;
  double turn = 0.0;
  if (hasLaw(element)) {
    CurvatureSeries law;
    law.terms = curvatureSeries(element, from, to);
    law.inverseHalf = 1.0 / piece.half;
    law.sharpest = std::max(std::abs(element.curvatureAt(from)), std::abs(element.curvatureAt(to)));
    law.largestBend = largestBend(element.kind) * std::abs(element.endCurvature - element.startCurvature) /
                      (element.length * element.length);
    piece.law = static_cast<std::uint32_t>(laws_.size());
    piece.curvature = law.terms[0];
    piece.rate = law.terms[1] * law.inverseHalf;
    piece.series = ClothoidSeries(law.terms, piece.half);
    turn = turnOf(element, middle);
    laws_.push_back(law);
  } else if (!isLine) {
    piece.curvature = isArc ? element.startCurvature : element.curvatureAt(middle);
    piece.rate = isArc ? 0.0 : (element.endCurvature - element.startCurvature) / element.length;
    turn = middle * (element.startCurvature + 0.5 * piece.rate * middle);
  }
  piece.tangent = unit(element.direction + turn);
  if (!hasLaw(element)) piece.series = ClothoidSeries(piece.curvature, piece.rate, piece.half);
  const ClothoidSeries::Local start = piece.series.at(-1.0);
  const ClothoidSeries::Local end = piece.series.at(1.0);
  piece.startPoint = start.point;
  piece.startTangent = start.tangent;
  piece.endPoint = end.point;
  piece.endTangent = end.tangent;
  piece.middle = at - fromLocal(start.point, piece.tangent);
  at = piece.middle + fromLocal(end.point, piece.tangent);
  if (!isFinite(at) || !isFinite(start.tangent) || !isFinite(end.tangent)) return;
  pieces_.push_back(piece);
}

AlignmentIndex::Capsule AlignmentIndex::capsuleOf(const Piece& piece) const {
  // Against its chord, a curve of curvature up to k departs by k L^2 / 8 at most, to one side: the capsule's axis runs
  // in the middle of that strip. Two sharpest curvatures bound the transition's.
  const double rise = 0.5 * sharpestOf(piece) * piece.half * piece.half;
  const Vec2 start = piece.middle + fromLocal(piece.startPoint, piece.tangent);
  const Vec2 end = piece.middle + fromLocal(piece.endPoint, piece.tangent);
  const Vec2 chord = end - start;
  const double chordLength = length(chord);
  Vec2 shift;
  // The curve lies to the right of its chord when it turns left.
  if (chordLength > 0.0) {
    shift = (0.5 * std::copysign(rise, piece.curvature) / chordLength) * Vec2{chord.y, -chord.x};
  }
  const double rounding = 1e-9 + 1e-13 * (std::abs(start.x) + std::abs(start.y) + chordLength);
  return {start + shift, end + shift, 0.5 * rise * (1.0 + 1e-12) + rounding};
}

void AlignmentIndex::buildTree() {
  std::vector<Capsule> bounds;
  bounds.reserve(pieces_.size());
  for (const Piece& piece : pieces_) bounds.push_back(capsuleOf(piece));
  std::uint32_t firstChild = 0;
  bool isLeaf = true;
  do {
    const auto firstNode = static_cast<std::uint32_t>(nodes_.size());
    std::vector<Capsule> above;
    for (std::size_t i = 0; i < bounds.size(); i += 4) {
      Node node;
      node.x.fill(kNowhere);
      node.child = firstChild + static_cast<std::uint32_t>(i);
      node.count = static_cast<std::uint8_t>(std::min<std::size_t>(4, bounds.size() - i));
      node.isLeaf = isLeaf;
      Capsule around{bounds[i].start, bounds[i + node.count - 1].end, 0.0};
      for (std::size_t k = 0; k < node.count; ++k) {
        const Capsule& bound = bounds[i + k];
        const Vec2 chord = bound.end - bound.start;
        const double chordLength = length(chord);
        node.x[k] = bound.start.x;
        node.y[k] = bound.start.y;
        node.dx[k] = chordLength > 0.0 ? chord.x / chordLength : 1.0;
        node.dy[k] = chordLength > 0.0 ? chord.y / chordLength : 0.0;
        node.length[k] = chordLength;
        node.radius[k] = bound.radius;
        const double reach = std::max(distanceToSegment(bound.start, around.start, around.end),
                                      distanceToSegment(bound.end, around.start, around.end));
        around.radius = std::max(around.radius, (reach + bound.radius) * (1.0 + 1e-12));
      }
      above.push_back(around);
      nodes_.push_back(node);
    }
    bounds = std::move(above);
    firstChild = firstNode;
    isLeaf = false;
  } while (bounds.size() > 1);
  root_ = static_cast<std::uint32_t>(nodes_.size() - 1);
}

// ---------------------------------------------------------------- searching

inline std::array<AlignmentIndex::Two, 2> AlignmentIndex::squaresToAxes(Vec2 point, const Node& node) {
  const auto load = [](const double* at) {
    Two two;
    std::memcpy(&two, at, sizeof(two));
    return two;
  };
  std::array<Two, 2> squares;
  for (std::size_t half = 0; half < 2; ++half) {
    const std::size_t k = 2 * half;
    const Two dx = load(&node.dx[k]);
    const Two dy = load(&node.dy[k]);
    const Two x = point.x - load(&node.x[k]);
    const Two y = point.y - load(&node.y[k]);
    const Two length = load(&node.length[k]);
    const Two ahead = x * dx + y * dy;
    const Two fromStart = ahead > 0.0 ? ahead : Two{};
    const Two along = fromStart < length ? fromStart : length;
    const Two restX = x - along * dx;
    const Two restY = y - along * dy;
    squares[half] = restX * restX + restY * restY;
  }
  return squares;
}

template <class Use>
void AlignmentIndex::forEachNear(Vec2 point, double& limit, double slack, Use&& use) const {
  struct Near {
    double lower;
    std::uint32_t number;
  };
  // A node leaves at most three brothers waiting on each of the tree's levels (16 for 2^32 pieces).
  std::array<Near, 64> waiting;
  std::size_t waitingCount = 0;
  std::array<Near, 32> near;
  std::size_t nearCount = 0;
  const auto usePieces = [&] {
    // The one of the least bound first: it mostly rules out the others.
    std::size_t first = 0;
    for (std::size_t i = 1; i < nearCount; ++i) first = near[i].lower < near[first].lower ? i : first;
    if (first > 0) std::swap(near[0], near[first]);
    for (std::size_t i = 0; i < nearCount; ++i) {
      if (near[i].lower <= limit + slack) use(near[i].number);
    }
    nearCount = 0;
  };

  const auto useLeaf = [&](const Node& node, const std::array<double, 4>& distance) {
    for (std::size_t k = 0; k < node.count; ++k) limit = std::min(limit, distance[k] + node.radius[k]);
    if (nearCount + 4 > near.size()) usePieces();
    const double reach = limit + slack;
    for (std::size_t k = 0; k < node.count; ++k) {
      near[nearCount] = {distance[k] - node.radius[k], node.child + static_cast<std::uint32_t>(k)};
      nearCount += near[nearCount].lower <= reach ? 1 : 0;
    }
  };
  for (std::uint32_t number = root_;;) {
    const Node& node = nodes_[number];
    const std::array<Two, 2> squares = squaresToAxes(point, node);
    const std::array<double, 4> square{squares[0][0], squares[0][1], squares[1][0], squares[1][1]};
    std::array<double, 4> distance;
    for (std::size_t k = 0; k < 4; ++k) distance[k] = std::sqrt(square[k]);
    bool descends = false;
    if (node.isLeaf) {
      useLeaf(node, distance);
    } else {
      std::array<double, 4> lower;
      for (std::size_t k = 0; k < 4; ++k) lower[k] = distance[k] - node.radius[k];
      // Down to the child with the nearest axis; the others wait. Which one it is nobody can foresee, so nothing branches on
      // it, and nothing waits for roots.
      const std::size_t first = square[1] < square[0] ? 1 : 0;
      const std::size_t second = square[3] < square[2] ? 3 : 2;
      const std::size_t nearest = square[second] < square[first] ? second : first;
      const double reach = limit + slack;
      for (std::size_t k = 0; k < 4; ++k) {
        waiting[waitingCount] = {lower[k], node.child + static_cast<std::uint32_t>(k)};
        waitingCount += static_cast<std::size_t>((k != nearest) & (k < node.count) & (lower[k] <= reach));
      }
      descends = lower[nearest] <= reach;
      number = node.child + static_cast<std::uint32_t>(nearest);
    }
    while (!descends && waitingCount > 0) {
      const Near& next = waiting[--waitingCount];
      descends = next.lower <= limit + slack;
      number = next.number;
    }
    if (!descends) break;
  }
  usePieces();
}

// About where the foot on a transition lies, mostly so well that one step on the true curve is all that is left to do: the
// foot on the circle of the middle, then a step on the curve's first terms.
inline double AlignmentIndex::firstFoot(const Piece& piece, Vec2 local) {
  const double along = local.x / (1.0 - piece.curvature * local.y);
  const double x = piece.curvature * along;
  const double u = along * (1.0 - x * x / 3.0);
  const double bent = piece.rate * u;
  const double curvature = piece.curvature + bent;
  const double turn = u * (piece.curvature + 0.5 * bent);
  const double sine = turn * (1.0 - turn * turn / 6.0);
  const double cosine = 1.0 - 0.5 * turn * turn;
  const Vec2 rest{local.x * cosine + local.y * sine - u +
                      u * u * u / 6.0 * (curvature * curvature - 0.75 * curvature * bent + 0.15 * bent * bent),
                  local.y * cosine - local.x * sine + u * u * (0.5 * curvature - bent / 6.0)};
  const double bend = 1.0 - curvature * rest.y;
  const double third = curvature * curvature * rest.x - piece.rate * rest.y;
  const double step = 2.0 * rest.x * bend / (2.0 * bend * bend + rest.x * third);
  return std::abs(step) < piece.half ? u + step : u;
}

template <class Curvature>
std::optional<double> AlignmentIndex::footOnTransition(const Piece& piece, const Curvature& curvatureAt,
                                                       double largestBend, Vec2 local, double startSlope,
                                                       double endSlope, double& left) {
  const double half = piece.half;
  double low = -half;
  double high = half;
  if (!(startSlope < 0.0 && endSlope > 0.0)) {
    // No bracket. An inner minimum may still hide between two ends of one sign: see the head of the header.
    const auto evoluteSide = [&](double u, Vec2 point, Vec2 tangent) {
      const Vec2 rest = toLocal(local - point, tangent);
      const double curvature = curvatureAt(u).curvature;
      return (1.0 - curvature * rest.y) * tangent.x - curvature * rest.x * tangent.y;
    };
    const double sign = startSlope < 0.0 && endSlope <= 0.0 ? 1.0 : startSlope >= 0.0 && endSlope > 0.0 ? -1.0 : 0.0;
    if (sign == 0.0) return std::nullopt;
    if (!(sign * evoluteSide(-half, piece.startPoint, piece.startTangent) > 0.0 &&
          sign * evoluteSide(half, piece.endPoint, piece.endTangent) < 0.0)) {
      return std::nullopt;
    }
    double from = -half;
    double to = half;
    bool found = false;
    for (int i = 0; i < 64 && !found && to - from > 1e-14 * half; ++i) {
      const double u = 0.5 * (from + to);
      const ClothoidSeries::Local at = piece.series.atDistance(u);
      const double slope = -dot(local - at.point, at.tangent);
      found = sign * slope > 0.0;
      if (found) (sign > 0.0 ? high : low) = u;
      (sign * evoluteSide(u, at.point, at.tangent) > 0.0 ? from : to) = u;
    }
    if (!found) return std::nullopt;
  }

  // By Halley's step inside the bracket. The step's error is of third order, so the last one needs no evaluation after it.
  double u = 1.0 - piece.curvature * local.y > 0.0 ? firstFoot(piece, local) : 0.5 * (low + high);
  if (!(u > low && u < high)) u = !(u > low) ? low + 0.25 * (high - low) : high - 0.25 * (high - low);
  for (int i = 0; i < 100; ++i) {
    const ClothoidSeries::Local at = piece.series.atDistance(u);
    const Vec2 rest = toLocal(local - at.point, at.tangent);
    const auto [curvature, rate] = curvatureAt(u);
    const double slope = -rest.x;
    const double bend = 1.0 - curvature * rest.y;
    const double third = curvature * curvature * rest.x - rate * rest.y;
    (slope < 0.0 ? low : high) = u;
    const double denominator = 2.0 * bend * bend - slope * third;
    double step = denominator != 0.0 ? -2.0 * slope * bend / denominator : kInfinity;
    // What a step leaves out, in the station and in the offset, times the square of `bend`.
    const double square = bend * bend;
    double size =
        (curvature * curvature + std::abs(curvature * third) + std::abs(rate * bend)) * square + third * third;
    if (largestBend > 0.0) size += largestBend * std::abs(rest.y * bend);
    const double cubic = std::abs(step * step * step) * size;
    const bool isInside = u + step >= low && u + step <= high;
    if (isInside && cubic < 1e-12 * square) {
      left = rest.y - 0.5 * curvature * bend * step * step;
      return u + step;
    }
    if (high - low <= 4.0 * std::numeric_limits<double>::epsilon() * half) {
      left = std::copysign(length(rest), rest.y);
      return u;
    }
    // A step that leaves the bracket, or creeps at a flat place, halves it instead.
    if (!isInside || !(bend > 0.0) || i > 20) step = 0.5 * (low + high) - u;
    u += step;
  }
  const ClothoidSeries::Local at = piece.series.atDistance(u);
  const Vec2 rest = toLocal(local - at.point, at.tangent);
  left = std::copysign(length(rest), rest.y);
  return u;
}

inline std::optional<double> AlignmentIndex::footOn(const Piece& piece, Vec2 local, double startSlope, double endSlope,
                                                    double& left) const {
  if (piece.kind == ElementKind::Clothoid) {
    const auto curvatureAt = [&](double at) { return Bend{piece.curvature + piece.rate * at, piece.rate}; };
    return footOnTransition(piece, curvatureAt, 0.0, local, startSlope, endSlope, left);
  }
  const CurvatureSeries& law = laws_[piece.law];
  const auto curvatureAt = [&](double at) {
    // Even and odd powers run as chains of their own.
    const double w = at * law.inverseHalf;
    const double v = w * w;
    double even = law.terms[kLawTerms - 2];
    double odd = law.terms[kLawTerms - 1];
    double evenSlope = double(kLawTerms - 2) * even;
    double oddSlope = double(kLawTerms - 1) * odd;
    for (std::size_t n = kLawTerms - 2; n > 0; n -= 2) {
      even = v * even + law.terms[n - 2];
      odd = v * odd + law.terms[n - 1];
      if (n > 2) evenSlope = v * evenSlope + double(n - 2) * law.terms[n - 2];
      oddSlope = v * oddSlope + double(n - 1) * law.terms[n - 1];
    }
    return Bend{even + w * odd, law.inverseHalf * (oddSlope + w * evenSlope)};
  };
  return footOnTransition(piece, curvatureAt, law.largestBend, local, startSlope, endSlope, left);
}

template <class Use>
void AlignmentIndex::forEachFoot(std::uint32_t number, Vec2 point, Use&& use) const {
  const Piece& piece = pieces_[number];
  const Vec2 local = toLocal(point - piece.middle, piece.tangent);
  double u = 0.0;
  double left = 0.0;
  bool isInside = false;
  Vec2 fromStart = local - piece.startPoint;
  Vec2 fromEnd = local - piece.endPoint;
  const double startSlope = -dot(fromStart, piece.startTangent);
  const double endSlope = -dot(fromEnd, piece.endTangent);
  switch (piece.kind) {
    case ElementKind::Line:
      u = local.x;
      left = local.y;
      isInside = startSlope < 0.0 && endSlope > 0.0;
      break;
    case ElementKind::Arc: {
      const double across = 1.0 - piece.curvature * local.y;
      const double along = piece.curvature * local.x;
      const double reach = std::sqrt(across * across + along * along);  // distance to the centre over the radius
      if (reach <= kEqualDistance * std::abs(piece.curvature)) {
        // In the centre all of the arc is equally near: its start has the smallest station.
        use(Foot{length(fromStart), piece.startStation, std::copysign(length(fromStart), piece.curvature), number,
                 FootPlace::Inside});
        return;
      }
      u = std::atan2(along, across) / piece.curvature;
      left = (2.0 * local.y - piece.curvature * dot(local, local)) / (1.0 + reach);
      isInside = std::abs(u) < piece.half;
      break;
    }
    default:
      if (const auto foot = footOn(piece, local, startSlope, endSlope, left)) {
        u = *foot;
        isInside = true;
      }
      break;
  }
  if (isInside) use(Foot{std::abs(left), piece.station + u, left, number, FootPlace::Inside});
  const bool isDone = isInside && !isTransition(piece.kind);
  // An arc without a foot may have a slope of the wrong sign at an end that the foot just misses.
  if (!isDone && (startSlope >= 0.0 || (!isInside && endSlope > 0.0))) {
    use(Foot{length(fromStart), piece.startStation, 0.0, number, FootPlace::Start});
  }
  if (!isDone && (endSlope <= 0.0 || (!isInside && startSlope < 0.0))) {
    use(Foot{length(fromEnd), piece.endStation, 0.0, number, FootPlace::End});
  }
}

// Whether the distance rises on both sides of a foot, the neighbouring piece included.
bool AlignmentIndex::isMinimumOfChain(const Foot& foot, Vec2 point) const {
  if (foot.place == FootPlace::End && pieces_[foot.piece].joinsNext) {
    const Piece& next = pieces_[foot.piece + 1];
    return dot(toLocal(point - next.middle, next.tangent) - next.startPoint, next.startTangent) <= 0.0;
  }
  if (foot.place == FootPlace::Start && foot.piece > 0 && pieces_[foot.piece - 1].joinsNext) {
    const Piece& before = pieces_[foot.piece - 1];
    return dot(toLocal(point - before.middle, before.tangent) - before.endPoint, before.endTangent) >= 0.0;
  }
  return true;
}

AlignmentIndex::Answer AlignmentIndex::answer(const Foot& foot, Vec2 point, double noise) const {
  const Piece& piece = pieces_[foot.piece];
  double station = foot.station;
  double left = foot.left;
  if (foot.place != FootPlace::Inside) {
    const bool atStart = foot.place == FootPlace::Start;
    const Vec2 tangent = fromLocal(atStart ? piece.startTangent : piece.endTangent, piece.tangent);
    const Vec2 from = point - piece.middle - fromLocal(atStart ? piece.startPoint : piece.endPoint, piece.tangent);
    if (foot.piece == 0 && atStart) {
      station += std::min(dot(from, tangent), 0.0);
      left = cross(tangent, from);
    } else if (foot.piece + 1 == pieces_.size() && !atStart) {
      station += std::max(dot(from, tangent), 0.0);
      left = cross(tangent, from);
    } else {
      const Piece& other = pieces_[atStart ? foot.piece - 1 : foot.piece + 1];
      const Vec2 otherTangent = fromLocal(atStart ? other.endTangent : other.startTangent, other.tangent);
      Vec2 bisector = tangent + otherTangent;
      // Straight back: taken as the limit of a turn to the left.
      if (dot(bisector, bisector) < 1e-18) {
        const Vec2 arriving = atStart ? otherTangent : tangent;
        bisector = {-arriving.y, arriving.x};
      }
      left = std::copysign(foot.distance, cross(bisector, from));
    }
  }
  // On the line but for the rounding of its coordinates: 0, and without a sign.
  return {station, std::abs(left) <= noise ? 0.0 : -left};
}

Foot AlignmentIndex::nearestFoot(Vec2 point, double slack, double& second) const {
  Foot best;
  best.distance = kInfinity;
  second = kInfinity;
  double limit = kInfinity;
  forEachNear(point, limit, slack, [&](std::uint32_t piece) {
    forEachFoot(piece, point, [&](const Foot& foot) {
      if (foot.distance < best.distance) {
        if (foot.station != best.station) second = best.distance;
        best = foot;
        limit = std::min(limit, foot.distance);
      } else if (foot.station != best.station) {
        second = std::min(second, foot.distance);
      }
    });
  });
  return best;
}

AlignmentIndex::Stretch AlignmentIndex::stretchAround(Vec2 point, double more) const {
  Stretch stretch{static_cast<std::uint32_t>(pieces_.size()), 0, kInfinity};
  forEachNear(point, stretch.nearest, more, [&](std::uint32_t piece) {
    stretch.first = std::min(stretch.first, piece);
    stretch.last = std::max(stretch.last, piece);
  });
  return stretch;
}

std::optional<AlignmentIndex::Answer> AlignmentIndex::search(Vec2 point, double noise) const {
  const double slack = kEqualDistance + noise;
  double second = kInfinity;
  Foot best = nearestFoot(point, slack, second);
  if (!(best.distance < kInfinity)) return std::nullopt;
  if (second <= best.distance + slack) {
    // Equal distances: again, for the smallest station among the minima that a rounding holds apart. An element's end
    // beside a foot that lies a hair beyond it is no minimum, even where rounding brings it nearer.
    const double equal = best.distance + slack;
    std::optional<Foot> earliest;
    double limit = best.distance;
    forEachNear(point, limit, slack, [&](std::uint32_t piece) {
      forEachFoot(piece, point, [&](const Foot& foot) {
        if (!(foot.distance <= equal) || (earliest && foot.station >= earliest->station)) return;
        if (isMinimumOfChain(foot, point)) earliest = foot;
      });
    });
    if (earliest) best = *earliest;
  }
  return answer(best, point, 1e-12 + noise);
}

// ---------------------------------------------------------------- near the alignment

// An angle by its tangent, from the square of the tangent: a piece turns by 0.15 at most to each side of its middle, so
// that a short series gives it to a rounding.
inline double AlignmentIndex::angleByTangent(double square) {
  const double v = square * square;
  // Even and odd powers run as chains of their own.
  double even = 1.0 / 21.0;
  double odd = -1.0 / 23.0;
  for (const double n : {17.0, 13.0, 9.0, 5.0, 1.0}) {
    even = v * even + 1.0 / n;
    odd = v * odd - 1.0 / (n + 2.0);
  }
  return even + square * odd;
}

inline std::optional<AlignmentIndex::Answer> AlignmentIndex::answerNear(Vec2 point, double noise) const {
  NearGrid::Word* const word = grid_.wordAt(point);
  if (word == nullptr) return std::nullopt;
  std::uint32_t run = word->load(std::memory_order_relaxed);
  if (run < Run::kClearances) {
    if (run == Run::kUnknown) word->store(run = runOf(grid_.squareOf(word)), std::memory_order_relaxed);
    if (run == Run::kNone) return std::nullopt;
  }
  const std::uint32_t first = run / Run::kClearances - 1;
  // As the distance ahead of the starts falls along a run, the starts behind the point count up to its piece.
  const auto load = [](const double* at) {
    Two two;
    std::memcpy(&two, at, sizeof(two));
    return two;
  };
  const auto reached = [&](std::size_t k) {
    return load(&startLines_.dx[k]) * point.x + load(&startLines_.dy[k]) * point.y >= load(&startLines_.at[k]);
  };
  const auto both = reached(first + 1) + reached(first + 3);
  const std::uint32_t number = first - static_cast<std::uint32_t>(both[0] + both[1]);

  const Piece& piece = pieces_[number];
  const Vec2 local = toLocal(point - piece.middle, piece.tangent);
  const double clearance = clearances_[run % Run::kClearances];
  const double startSlope = -dot(local - piece.startPoint, piece.startTangent);
  const double endSlope = -dot(local - piece.endPoint, piece.endTangent);
  if (!((startSlope < -clearance) & (endSlope > clearance))) return std::nullopt;
  double u = 0.0;
  double left = 0.0;
  if (!isTransition(piece.kind)) {
    // A line is an arc without curvature.
    const double across = 1.0 - piece.curvature * local.y;
    const double along = local.x / across;
    const double tangent = piece.curvature * along;
    const double square = tangent * tangent;
    const double reach = across * std::sqrt(1.0 + square);
    u = along * angleByTangent(square);
    left = (2.0 * local.y - piece.curvature * dot(local, local)) / (1.0 + reach);
  } else if (const auto foot = footOn(piece, local, startSlope, endSlope, left)) {
    u = *foot;
  } else {
    return std::nullopt;
  }
  return Answer{piece.station + u, std::abs(left) <= 1e-12 + noise ? 0.0 : -left};
}

std::optional<AlignmentIndex::Answer> AlignmentIndex::stationOffset(Vec2 absolute) const {
  const Vec2 point = absolute - origin_;
  const double noise =
      4.0 * std::numeric_limits<double>::epsilon() * std::max(std::abs(absolute.x), std::abs(absolute.y));
  if (const auto found = answerNear(point, noise)) return found;
  if (pieces_.empty() || !std::isfinite(dot(point, point))) return std::nullopt;
  return search(point, noise);
}

}  // namespace lvx::civil::detail
