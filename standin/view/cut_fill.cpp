#include "view/cut_fill.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lvx::view {

using civil::Vec2;

namespace {

/// A straight piece of heights over x, with x0 < x1.
struct Piece {
  double x0 = 0.0;
  double y0 = 0.0;
  double x1 = 0.0;
  double y1 = 0.0;
  [[nodiscard]] double at(double x) const {
    if (x == x1) return y1;
    return y0 + (y1 - y0) * ((x - x0) / (x1 - x0));
  }
};

std::vector<Piece> piecesOf(const Lines& lines) {
  std::vector<Piece> pieces;
  const auto isFinite = [](Vec2 place) { return std::isfinite(place.x) && std::isfinite(place.y); };
  for (const Line& line : lines)
    for (std::size_t i = 1; i < line.size(); ++i) {
      Vec2 a = line[i - 1];
      Vec2 b = line[i];
      if (!isFinite(a) || !isFinite(b) || a.x == b.x) continue;
      if (a.x > b.x) std::swap(a, b);
      pieces.push_back({a.x, a.y, b.x, b.y});
    }
  std::stable_sort(pieces.begin(), pieces.end(), [](const Piece& a, const Piece& b) { return a.x0 < b.x0; });
  return pieces;
}

/// The upper edge as pieces that follow each other; those of one line aren't cut where nothing changes.
class UpperPieces {
 public:
  explicit UpperPieces(std::vector<Piece> pieces) : pieces_(std::move(pieces)) {
    if (!overlaps()) {
      edge_ = pieces_;
      return;
    }
    std::vector<double> ends;
    for (const Piece& piece : pieces_) ends.insert(ends.end(), {piece.x0, piece.x1});
    std::sort(ends.begin(), ends.end());
    ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
    std::size_t next = 0;
    std::vector<std::size_t> present;
    for (std::size_t i = 1; i < ends.size(); ++i) {
      std::erase_if(present, [&](std::size_t at) { return pieces_[at].x1 <= ends[i - 1]; });
      for (; next < pieces_.size() && pieces_[next].x0 <= ends[i - 1]; ++next) present.push_back(next);
      if (!present.empty()) addBetween(ends[i - 1], ends[i], present);
    }
  }
  [[nodiscard]] std::vector<Piece> take() { return std::move(edge_); }

 private:
  [[nodiscard]] bool overlaps() const {
    for (std::size_t i = 1; i < pieces_.size(); ++i)
      if (pieces_[i].x0 < pieces_[i - 1].x1) return true;
    return false;
  }

  // Between two neighbouring ends all present pieces run through.
  void addBetween(double from, double to, const std::vector<std::size_t>& present) {
    double x = from;
    std::size_t top = highestFrom(x, to, present);
    while (x < to) {
      double end = to;
      std::size_t next = top;
      for (const std::size_t other : present) {
        const auto crossing = overtaken(top, other, x, to);
        if (!crossing || *crossing > end) continue;
        if (*crossing == end && next != top && pieces_[other].at(to) <= pieces_[next].at(to)) continue;
        end = *crossing;
        next = other;
      }
      // Each one that comes on top is higher at `to` than the one before, so this ends.
      if (end > x) add(top, x, end);
      x = end;
      top = next;
    }
  }

  [[nodiscard]] std::size_t highestFrom(double x, double to, const std::vector<std::size_t>& present) const {
    std::size_t best = present.front();
    for (const std::size_t other : present) {
      const double higher = pieces_[other].at(x) - pieces_[best].at(x);
      if (higher > 0.0 || (higher == 0.0 && pieces_[other].at(to) > pieces_[best].at(to))) best = other;
    }
    return best;
  }

  /// Where from `x` on another one comes above `top`, before `to`.
  [[nodiscard]] std::optional<double> overtaken(std::size_t top, std::size_t other, double x, double to) const {
    if (other == top) return std::nullopt;
    const double atEnd = pieces_[other].at(to) - pieces_[top].at(to);
    const double atStart = pieces_[other].at(x) - pieces_[top].at(x);
    if (!(atEnd > 0.0)) return std::nullopt;
    if (!(atStart < 0.0)) return x;
    const double crossing = x + (to - x) * (atStart / (atStart - atEnd));
    if (!(crossing < to)) return std::nullopt;
    return crossing;
  }

  void add(std::size_t piece, double from, double to) {
    if (!edge_.empty() && last_ == piece && edge_.back().x1 == from) {
      edge_.back().x1 = to;
      edge_.back().y1 = pieces_[piece].at(to);
      return;
    }
    edge_.push_back({from, pieces_[piece].at(from), to, pieces_[piece].at(to)});
    last_ = piece;
  }

  std::vector<Piece> pieces_;
  std::vector<Piece> edge_;
  std::size_t last_ = 0;
};

std::vector<Piece> upperPieces(const Lines& lines) { return UpperPieces(piecesOf(lines)).take(); }

void append(Line& line, Vec2 place) {
  if (line.empty() || line.back() != place) line.push_back(place);
}

/// Collects stretches of one sign.
class AreaMaker {
 public:
  explicit AreaMaker(CutFill& result) : result_(result) {}

  /// Between `from` and `to` the design lies on one side of the ground all along.
  void add(double from, double to, double designFrom, double designTo, double groundFrom, double groundTo) {
    const double rise = (designFrom - groundFrom) + (designTo - groundTo);
    if (std::abs(designFrom - groundFrom) <= kSameHeight && std::abs(designTo - groundTo) <= kSameHeight) {
      finish();
      return;
    }
    const bool isFill = rise > 0.0;
    if (!upper_.empty() && (isFill != isFill_ || upper_.back().x != from)) finish();
    isFill_ = isFill;
    append(upper_, {from, designFrom});
    append(upper_, {to, designTo});
    append(lower_, {from, groundFrom});
    append(lower_, {to, groundTo});
    area_ += std::abs(rise) / 2.0 * (to - from);
  }

  void finish() {
    if (upper_.empty()) return;
    CutFillArea area{isFill_, std::move(upper_), area_};
    for (auto place = lower_.rbegin(); place != lower_.rend(); ++place)
      if (area.outline.back() != *place) area.outline.push_back(*place);
    if (area.outline.size() > 1 && area.outline.back() == area.outline.front()) area.outline.pop_back();
    (isFill_ ? result_.fill : result_.cut) += area_;
    if (area.outline.size() > 2) result_.areas.push_back(std::move(area));
    upper_.clear();
    lower_.clear();
    area_ = 0.0;
  }

 private:
  CutFill& result_;
  bool isFill_ = false;
  Line upper_;
  Line lower_;
  double area_ = 0.0;
};

}  // namespace

Lines upperEdge(const Lines& lines) {
  Lines edge;
  double end = 0.0;
  for (const Piece& piece : upperPieces(lines)) {
    if (edge.empty() || piece.x0 > end) edge.emplace_back();
    append(edge.back(), {piece.x0, piece.y0});
    append(edge.back(), {piece.x1, piece.y1});
    end = piece.x1;
  }
  return edge;
}

CutFill cutFillBetween(const Lines& design, const Lines& ground) {
  CutFill result;
  AreaMaker maker(result);
  const std::vector<Piece> above = upperPieces(design);
  const std::vector<Piece> below = upperPieces(ground);
  std::size_t a = 0;
  std::size_t b = 0;
  while (a < above.size() && b < below.size()) {
    const Piece& top = above[a];
    const Piece& floor = below[b];
    const double from = std::max(top.x0, floor.x0);
    const double to = std::min(top.x1, floor.x1);
    if (from < to) {
      const double d0 = top.at(from) - floor.at(from);
      const double d1 = top.at(to) - floor.at(to);
      const double middle = from + (to - from) * (d0 / (d0 - d1));
      if (d0 * d1 < 0.0 && middle > from && middle < to) {
        const double height = floor.at(middle);
        maker.add(from, middle, top.at(from), height, floor.at(from), height);
        maker.add(middle, to, height, top.at(to), height, floor.at(to));
      } else {
        maker.add(from, to, top.at(from), top.at(to), floor.at(from), floor.at(to));
      }
    }
    if (top.x1 <= floor.x1)
      ++a;
    else
      ++b;
  }
  maker.finish();
  return result;
}

std::optional<double> heightOver(const Lines& design, const Lines& ground, double x) {
  const auto highest = [x](const Lines& lines) {
    std::optional<double> height;
    for (const Piece& piece : piecesOf(lines)) {
      if (x < piece.x0 || x > piece.x1) continue;
      height = std::max(height.value_or(piece.at(x)), piece.at(x));
    }
    return height;
  };
  const auto top = highest(design);
  const auto floor = highest(ground);
  if (!top || !floor) return std::nullopt;
  return *top - *floor;
}

Line clippedOutline(const Line& outline, const civil::Box& box) {
  Line left = outline;
  // One side of the box after the other: what lies inside of it stays, with the crossings.
  const auto clip = [&left](auto inside, auto crossing) {
    Line kept;
    for (std::size_t i = 0; i < left.size(); ++i) {
      const Vec2 a = left[i];
      const Vec2 b = left[(i + 1) % left.size()];
      if (inside(a)) kept.push_back(a);
      if (inside(a) != inside(b)) kept.push_back(crossing(a, b));
    }
    left = std::move(kept);
  };
  const auto atX = [](double x) {
    return [x](Vec2 a, Vec2 b) { return Vec2{x, a.y + (b.y - a.y) * ((x - a.x) / (b.x - a.x))}; };
  };
  const auto atY = [](double y) {
    return [y](Vec2 a, Vec2 b) { return Vec2{a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y)), y}; };
  };
  clip([&](Vec2 p) { return p.x >= box.minX; }, atX(box.minX));
  clip([&](Vec2 p) { return p.x <= box.maxX; }, atX(box.maxX));
  clip([&](Vec2 p) { return p.y >= box.minY; }, atY(box.minY));
  clip([&](Vec2 p) { return p.y <= box.maxY; }, atY(box.maxY));
  if (left.size() < 3) left.clear();
  return left;
}

Lines hatched(const Line& outline, double spacing, double angle) {
  Lines strokes;
  if (outline.size() < 3 || !(spacing > 0.0) || !std::isfinite(spacing)) return strokes;
  constexpr double kMostStrokes = 1e6;
  const Vec2 along{std::cos(angle), std::sin(angle)};
  // Turned so that the strokes are level: u along them, v across.
  const auto turned = [along](Vec2 p) { return Vec2{p.x * along.x + p.y * along.y, p.y * along.x - p.x * along.y}; };
  const auto back = [along](double u, double v) { return Vec2{u * along.x - v * along.y, u * along.y + v * along.x}; };
  struct Crossing {
    double row;
    double u;
  };
  std::vector<Crossing> crossings;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    Vec2 a = turned(outline[i]);
    Vec2 b = turned(outline[(i + 1) % outline.size()]);
    if (a.y > b.y) std::swap(a, b);
    // Half open, so that a corner on a stroke counts once for each of its sides that goes up.
    const double first = std::ceil(a.y / spacing);
    const double last = std::ceil(b.y / spacing) - 1.0;
    if (!(last - first + static_cast<double>(crossings.size()) < 2.0 * kMostStrokes)) return {};
    // Where doubles have no ones left there is no next row.
    if (!(std::max(std::abs(first), std::abs(last)) < 0x1p52)) return {};
    for (double row = first; row <= last; row += 1.0)
      crossings.push_back({row, a.x + (b.x - a.x) * ((row * spacing - a.y) / (b.y - a.y))});
  }
  std::sort(crossings.begin(), crossings.end(),
            [](const Crossing& a, const Crossing& b) { return a.row != b.row ? a.row < b.row : a.u < b.u; });
  for (std::size_t i = 1; i < crossings.size(); i += 2) {
    const double v = crossings[i].row * spacing;
    strokes.push_back({back(crossings[i - 1].u, v), back(crossings[i].u, v)});
  }
  return strokes;
}

}  // namespace lvx::view
