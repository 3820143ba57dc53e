// Runs: for the cells of a grid, the few pieces that hold the foot of every point in the cell.
//
// Along a smooth stretch of the chain the distance s by which a point lies ahead of the normal falls by
// 1 - curvature * n per length, n being how far the point lies to the left. Where that stays above 0 over a stretch, for
// every point of a cell, s passes 0 once at most: one foot, and the signs of s at the joints tell its piece. A cell has a
// run where that holds over all pieces that can come as near to a point of the cell as its foot does. Small gaps and
// corners at joints, the rounding of a drawing's numbers, make s jump and the distance drop a little; so a foot must keep
// clear of joints. Where s has grown to m at a joint, the square of the distance has grown by m^2 / b at least, b the
// largest 1 - curvature * n; the distance so by more than what all gaps together can take away. Whatever comes nearer to a
// joint is searched for in the tree.
#include <algorithm>
#include <limits>

#include "civil/detail/alignment_index.h"
#include "civil/detail/frame.h"

namespace lvx::civil::detail {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
// Cells at most, for each piece and in all of a short chain.
constexpr double kCellsOfPiece = 64.0;
constexpr double kLeastCells = 256.0;
// Words hold the numbers of pieces.
constexpr std::size_t kMostPieces = std::size_t{1} << 27;
// The largest clearance, as part of a cell; each other one is half of the next.
constexpr double kMostClearance = 0.25;
// Directions that differ by more than this make a corner.
constexpr double kCorner = 1e-3;
// A run's proof looks at so many pieces.
constexpr std::uint32_t kMostPiecesOfRun = 64;
// 1 - curvature * n over a run.
constexpr double kLeastBend = 0.1;
constexpr double kMostBend = 2.0;

// Without the care that the library takes for squares out of range: those give no run.
double size(Vec2 a) { return std::sqrt(dot(a, a)); }

}  // namespace

AlignmentIndex::End AlignmentIndex::startOf(const Piece& piece) {
  return {piece.middle + fromLocal(piece.startPoint, piece.tangent), fromLocal(piece.startTangent, piece.tangent)};
}

AlignmentIndex::End AlignmentIndex::endOf(const Piece& piece) {
  return {piece.middle + fromLocal(piece.endPoint, piece.tangent), fromLocal(piece.endTangent, piece.tangent)};
}

double AlignmentIndex::sharpestOf(const Piece& piece) const {
  return piece.kind > ElementKind::Clothoid ? laws_[piece.law].sharpest
                                            : std::abs(piece.curvature) + std::abs(piece.rate) * piece.half;
}

void AlignmentIndex::buildRuns() {
  if (pieces_.size() > kMostPieces) return;
  Vec2 low{kInfinity, kInfinity};
  Vec2 high{-kInfinity, -kInfinity};
  double lengths = 0.0;
  std::size_t corners = 0;
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    lengths += 2.0 * pieces_[i].half;
    for (const End& end : {startOf(pieces_[i]), endOf(pieces_[i])}) {
      low = {std::min(low.x, end.point.x), std::min(low.y, end.point.y)};
      high = {std::max(high.x, end.point.x), std::max(high.y, end.point.y)};
    }
    if (i > 0 && !(length(startOf(pieces_[i]).tangent - endOf(pieces_[i - 1]).tangent) < kCorner)) ++corners;
  }
  // Between corners runs are rare.
  if (2 * corners > pieces_.size()) return;
  const auto count = static_cast<double>(pieces_.size());
  grid_ = NearGrid(low, high, lengths / count, std::max(kCellsOfPiece * count, kLeastCells));
  double clearance = kMostClearance * grid_.side();
  for (std::size_t i = clearances_.size(); i-- > 0; clearance *= 0.5) clearances_[i] = clearance;
  for (std::vector<double>* line : {&startLines_.dx, &startLines_.dy, &startLines_.at})
    line->reserve(pieces_.size() + Run::kJoints);
  for (const Piece& piece : pieces_) {
    const End start = startOf(piece);
    startLines_.dx.push_back(start.tangent.x);
    startLines_.dy.push_back(start.tangent.y);
    startLines_.at.push_back(dot(start.tangent, start.point));
  }
  startLines_.dx.resize(pieces_.size() + Run::kJoints, 0.0);
  startLines_.dy.resize(pieces_.size() + Run::kJoints, 0.0);
  startLines_.at.resize(pieces_.size() + Run::kJoints, kInfinity);
}

std::uint32_t AlignmentIndex::runOf(NearGrid::Square square) const {
  const Vec2 middle = square.middle;
  const double radius = std::numbers::sqrt2 * square.half;
  const Vec2 absolute = middle + origin_;
  const double noise = 4.0 * std::numeric_limits<double>::epsilon() *
                       (std::max(std::abs(absolute.x), std::abs(absolute.y)) + square.half);
  const double slack = kEqualDistance + noise;
  // For points of the cell, all others are farther than their feet here.
  const auto [first, last, nearest] = stretchAround(middle, 2.0 * radius + 4.0 * slack);
  if (!(nearest < kInfinity) || first > last || last - first >= kMostPiecesOfRun) return Run::kNone;

  double gaps = slack;
  double steepest = 1.0;
  double least = 0.0;  // for the clearance
  double most = kInfinity;
  End before;
  for (std::uint32_t k = first; k <= last; ++k) {
    const Piece& piece = pieces_[k];
    const End start = startOf(piece);
    const End end = endOf(piece);
    const double away = std::max(size(middle - start.point), size(middle - end.point)) + piece.half + radius;
    // How far the cell lies to the left of the piece: at the piece's ends, and what that changes between them.
    const double sharpest = sharpestOf(piece);
    const double side = std::copysign(sharpest, piece.curvature);
    const double atStart = side * cross(start.tangent, middle - start.point);
    const double atEnd = side * cross(end.tangent, middle - end.point);
    const double change = sharpest * (sharpest * away * piece.half + radius);
    const double bend = 1.0 - std::max(std::max(atStart, atEnd) + change, 0.0);
    const double mostBend = 1.0 - (std::min(atStart, atEnd) - change);
    if (!(bend >= kLeastBend && mostBend <= kMostBend)) return Run::kNone;
    steepest = std::max(steepest, mostBend);
    most = std::min(most, bend * piece.half);
    if (k > first) {
      const double gap = size(start.point - before.point);
      gaps += gap;
      const double jump = gap + away * size(start.tangent - before.tangent);
      if (!(jump < kInfinity)) return Run::kNone;
      least = std::max(least, jump);
    }
    before = end;
  }
  // m^2 / b = gaps (2 d + m), d the farthest foot of the cell: no m below this one.
  const double rise = steepest * gaps;
  least = std::max(least, rise + std::sqrt(2.0 * rise * (nearest + radius)));
  const auto clearance = std::find_if(clearances_.begin(), clearances_.end(), [&](double c) { return c >= least; });
  if (clearance == clearances_.end() || !(*clearance <= most)) return Run::kNone;

  // How far ahead of an end the cell lies: its middle, and what its corners add.
  const auto ahead = [&](const End& end) { return dot(end.tangent, middle - end.point); };
  const auto more = [&](const End& end) { return square.half * (std::abs(end.tangent.x) + std::abs(end.tangent.y)); };
  const auto isPassed = [&](const End& end) { return ahead(end) - more(end) > *clearance; };
  const auto isAhead = [&](const End& end) { return ahead(end) + more(end) < -*clearance; };
  std::uint32_t from = last + 1;
  while (from > first && !isPassed(startOf(pieces_[from - 1]))) --from;
  if (from == first) return Run::kNone;
  --from;
  std::uint32_t to = from;
  while (to <= last && !isAhead(endOf(pieces_[to]))) ++to;
  if (to > last || to - from > Run::kJoints) return Run::kNone;
  for (std::uint32_t k = to + 1; k <= from + Run::kJoints && k < pieces_.size(); ++k) {
    if (!isAhead(startOf(pieces_[k]))) return Run::kNone;
  }
  return (from + 1) * Run::kClearances + static_cast<std::uint32_t>(clearance - clearances_.begin());
}

}  // namespace lvx::civil::detail
