#include "civil/detail/triangle_links.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <memory>
#include <tuple>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "civil/detail/tin_build.h"

namespace lvx::civil::detail {

namespace {

struct Corners {
  std::int32_t from;
  std::int32_t to;
};

Corners cornersOfEdge(const std::int32_t* triangle, std::size_t edge) {
  return {triangle[edge == 2 ? 0 : edge + 1], triangle[edge == 0 ? 2 : edge - 1]};
}

}  // namespace

/// Matches the triangles in stretches, each for itself. A point that no other stretch uses has all its edges in the one, so
/// those are matched there; what is left, edges between points of several stretches, is matched at the end. So nobody
/// touches what is another's, and the edges of one stretch lie close in memory.
class TriangleLinks::Matching {
 public:
  Matching(TriangleLinks& links, std::size_t pointCount, std::span<const Triangle> triangles, const RunPieces& run)
      : links_(links),
        corners_(detail::cornersOf(triangles)),
        count_(triangles.size()),
        stretches_((count_ + kStretch - 1) / kStretch),
        firstPoints_(stretches_ + 1, 0),
        isForeign_((pointCount + kPointsAWord - 1) / kPointsAWord),
        run_(run) {}

  void match() {
    sharePoints();
    std::vector<Found> found(stretches_);
    run_(stretches_, [&](std::size_t stretch) { matchWithin(stretch, found[stretch]); });
    matchBetween(found);
    keepFar(found);
  }

 private:
  static constexpr std::size_t kStretch = std::size_t{1} << 15;
  static constexpr std::size_t kPointsAWord = 32;
  static bool isBefore(const Far& p, const Far& q) { return p.slot < q.slot; }
  /// Triangles whose edges are told apart at a time.
  static constexpr std::size_t kBlock = 256;
  /// Edges that wait at a point in a row, as a rule all.
  static constexpr std::size_t kInRow = 6;
  /// Edges that wait at a point at all; where there are more, the others are sorted, so that a point of thousands of edges
  /// doesn't cost their square.
  static constexpr std::uint8_t kMostWaiting = 24;
  static constexpr std::uint8_t kCrowded = kMostWaiting + 1;
  /// An edge as one triangle has it.
  struct Side {
    std::int32_t lower = 0;
    std::int32_t upper = 0;
    Link edge = 0;
  };
  static constexpr std::int32_t kEnd = -1;
  static constexpr std::int32_t kNotOwn = -2;
  /// The edges that wait at a point. No larger than a line of a processor's cache.
  struct alignas(16) Row {
    std::array<std::int32_t, 8> others{};  // the ends that they don't wait at, of the first kInRow
    std::array<Link, kInRow> edges{};
    std::int32_t chain = kEnd;  // of the further ones; kNotOwn where the point is another stretch's too
    std::uint8_t waiting = 0;
    std::uint8_t matched = 0;  // a bit for each in the row
    std::uint8_t undone = 0;   // of those, what is no seam of two triangles

    [[nodiscard]] std::uint32_t inUse() const { return (1U << std::min<std::size_t>(waiting, kInRow)) - 1; }
    /// A bit for each edge in the row with that end; all are looked at, since no guess where it stands would be right.
    [[nodiscard]] std::uint32_t placesOf(std::int32_t other) const {
      std::uint32_t same = 0;
#ifdef __SSE2__
      const auto* const four = reinterpret_cast<const __m128i*>(others.data());
      const __m128i wanted = _mm_set1_epi32(other);
      const __m128i all = _mm_packs_epi32(_mm_cmpeq_epi32(four[0], wanted), _mm_cmpeq_epi32(four[1], wanted));
      same = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(all, _mm_setzero_si128())));
#else
      for (std::size_t i = 0; i < kInRow; ++i) same |= static_cast<std::uint32_t>(others[i] == other) << i;
#endif
      return same & inUse();
    }
  };
  /// Calls `use` with the number of each bit that is set, from the lowest on.
  template <class Use>
  static void eachBit(std::uint32_t bits, Use use) {
    for (; bits != 0; bits &= bits - 1) use(static_cast<std::size_t>(std::countr_zero(bits)));
  }
  /// What a stretch leaves.
  struct Found {
    std::vector<Link> between;  // edges with both ends in several stretches
    std::vector<Far> far;
    std::size_t overlapping = 0;
  };

  [[nodiscard]] std::size_t endOf(std::size_t stretch) const { return std::min((stretch + 1) * kStretch, count_); }

  /// Gives each stretch a range of points, which are mostly its own, and marks those that others use too.
  void sharePoints() {
    run_(stretches_, [&](std::size_t stretch) {
      std::int32_t last = -1;
      for (std::size_t i = 3 * stretch * kStretch; i < 3 * endOf(stretch); ++i) last = std::max(last, corners_[i]);
      firstPoints_[stretch + 1] = last + 1;
    });
    for (std::size_t i = 1; i < firstPoints_.size(); ++i)
      firstPoints_[i] = std::max(firstPoints_[i], firstPoints_[i - 1]);
    run_(stretches_, [&](std::size_t stretch) {
      const std::int32_t first = firstPoints_[stretch];
      // None lies behind the range.
      for (std::size_t i = 3 * stretch * kStretch; i < 3 * endOf(stretch); ++i)
        if (corners_[i] < first) markForeign(static_cast<std::size_t>(corners_[i]));
    });
  }

  void markForeign(std::size_t point) {
    const std::uint32_t bit = std::uint32_t{1} << point % kPointsAWord;
    std::atomic<std::uint32_t>& word = isForeign_[point / kPointsAWord];
    if ((word.load(std::memory_order_relaxed) & bit) == 0) word.fetch_or(bit, std::memory_order_relaxed);
  }

  [[nodiscard]] bool isForeign(std::size_t point) const {
    return (isForeign_[point / kPointsAWord].load(std::memory_order_relaxed) >> point % kPointsAWord & 1U) != 0;
  }

  /// Edges that run from the smaller corner to the larger wait at the own one of their ends, the smaller one of two, where
  /// those of the other direction find them: the first few in a row that is looked through at one glance, some more in a
  /// chain. Beyond that they are sorted at the end.
  void matchWithin(std::size_t stretch, Found& found) {
    const std::int32_t first = firstPoints_[stretch];
    const auto ownCount = static_cast<std::size_t>(firstPoints_[stretch + 1] - first);
    const std::size_t begin = stretch * kStretch;
    const std::size_t end = endOf(stretch);
    std::vector<Row> rows(ownCount);
    for (std::size_t i = 0; i < ownCount; ++i)
      if (isForeign(static_cast<std::size_t>(first) + i)) rows[i].chain = kNotOwn;
    // Edges that may have more than two triangles, or whose point is crowded.
    std::vector<Link> odd;
    struct Waiting {
      std::int32_t other;
      std::int32_t next;
      Link edge;
      Link matched;
    };
    const std::size_t mostSides = 2 * (end - begin);  // of one direction: no triangle has three
    const auto waiting = std::make_unique_for_overwrite<Waiting[]>(mostSides);
    std::int32_t waitingCount = 0;

    // Where an edge waits or looks; nothing where neither end is own.
    struct Place {
      Row* row;
      std::int32_t other;
    };
    const auto placeOf = [&](const Side& side) -> Place {
      if (side.lower >= first) {
        Row& row = rows[static_cast<std::size_t>(side.lower - first)];
        if (row.chain != kNotOwn) return {&row, side.upper};
      }
      if (side.upper >= first) {
        Row& row = rows[static_cast<std::size_t>(side.upper - first)];
        if (row.chain != kNotOwn) return {&row, side.lower};
      }
      return {nullptr, 0};
    };
    // Which direction an edge has is as good as chance, so both lists are written and one of them grows.
    const auto falling = std::make_unique_for_overwrite<Side[]>(mostSides + 1);
    std::array<Side, 3 * kBlock + 1> rising;
    std::size_t fallingCount = 0;
    for (std::size_t block = begin; block < end; block += kBlock) {
      std::size_t risingCount = 0;
      for (std::size_t t = block; t < std::min(block + kBlock, end); ++t) {
        for (std::size_t edge = 0; edge < 3; ++edge) {
          const auto [from, to] = cornersOfEdge(corners_ + 3 * t, edge);
          const Side side{std::min(from, to), std::max(from, to), static_cast<Link>(4 * t + edge)};
          rising[risingCount] = side;
          falling[fallingCount] = side;
          risingCount += from < to ? 1 : 0;
          fallingCount += from < to ? 0 : 1;
        }
      }
      for (const Side& side : std::span(rising).first(risingCount)) {
        const auto [row, other] = placeOf(side);
        if (row == nullptr) {
          found.between.push_back(side.edge);
          continue;
        }
        if (row->waiting >= kMostWaiting) {
          row->waiting = kCrowded;
          noLink(side.edge);
          odd.push_back(side.edge);
          continue;
        }
        const std::size_t next = row->waiting++;
        if (next < kInRow) {
          row->others[next] = other;
          row->edges[next] = side.edge;
          continue;
        }
        waiting[static_cast<std::size_t>(waitingCount)] = {other, row->chain, side.edge, kNoLink};
        row->chain = waitingCount++;
      }
    }
    const auto at = [&](std::int32_t number) -> Waiting& { return waiting[static_cast<std::size_t>(number)]; };
    for (std::size_t i = 0; i < fallingCount; ++i) {
      const Side& side = falling[i];
      const auto [row, other] = placeOf(side);
      if (row == nullptr) {
        found.between.push_back(side.edge);
        continue;
      }
      if (const std::uint32_t same = row->placesOf(other); same != 0) {
        const auto which = static_cast<std::size_t>(std::countr_zero(same));
        if ((row->matched >> which & 1U) == 0) {
          row->matched = static_cast<std::uint8_t>(row->matched | 1U << which);
          link(side.edge, row->edges[which], found);
          link(row->edges[which], side.edge, found);
        } else {
          noLink(side.edge);
          odd.push_back(side.edge);
        }
        continue;
      }
      std::int32_t number = row->chain;
      while (number != kEnd && at(number).other != other) number = at(number).next;
      if (number == kEnd || at(number).matched != kNoLink) {
        noLink(side.edge);
        odd.push_back(side.edge);
        continue;
      }
      Waiting& counterpart = at(number);
      counterpart.matched = side.edge;
      link(side.edge, counterpart.edge, found);
      link(counterpart.edge, side.edge, found);
    }
    for (const Row& row : rows) {
      eachBit(row.inUse() & ~std::uint32_t{row.matched}, [&](std::size_t j) {
        noLink(row.edges[j]);
        odd.push_back(row.edges[j]);
      });
    }
    for (std::int32_t number = 0; number < waitingCount; ++number) {
      if (at(number).matched != kNoLink) continue;
      noLink(at(number).edge);
      odd.push_back(at(number).edge);
    }
    // With an edge that found none goes what was matched of the same: the rules count all of it. Two that lie on both sides
    // of one edge and were matched with nothing come from a crowded point.
    bool isAnyUndone = false;
    eachSameEdge(sidesOf(odd), [&](std::span<const Side> sides) {
      const auto [row, other] = placeOf(sides.front());
      std::size_t count = sides.size();
      const std::uint32_t undone = row->placesOf(other) & row->matched;
      eachBit(undone, [&, row = row](std::size_t j) {
        count += 2;
        noLink(row->edges[j]);
      });
      row->undone = static_cast<std::uint8_t>(row->undone | undone);
      isAnyUndone = isAnyUndone || undone != 0;
      for (std::int32_t number = row->chain; number != kEnd; number = at(number).next) {
        const Waiting& its = at(number);
        if (its.other != other || its.matched == kNoLink) continue;
        count += 2;
        noLink(its.edge);
        noLink(its.matched);
      }
      if (count > 2) ++found.overlapping;
      if (count != 2 || sides.size() != 2 || isRising(sides[0]) == isRising(sides[1])) return;
      link(sides[0].edge, sides[1].edge, found);
      link(sides[1].edge, sides[0].edge, found);
    });
    for (std::size_t i = 0; isAnyUndone && i < fallingCount; ++i) {
      const auto [row, other] = placeOf(falling[i]);
      if (row != nullptr && (row->placesOf(other) & row->undone) != 0) noLink(falling[i].edge);
    }
    std::sort(found.far.begin(), found.far.end(), isBefore);
  }

  [[nodiscard]] Corners cornersOf(Link edge) const {
    return cornersOfEdge(corners_ + 3 * static_cast<std::size_t>(edge >> 2), static_cast<std::size_t>(edge & 3));
  }
  [[nodiscard]] bool isRising(const Side& side) const { return cornersOf(side.edge).from == side.lower; }
  [[nodiscard]] Side sideOf(Link edge) const {
    const auto [from, to] = cornersOf(edge);
    return {std::min(from, to), std::max(from, to), edge};
  }
  [[nodiscard]] std::vector<Side> sidesOf(std::span<const Link> edges) const {
    std::vector<Side> sides;
    sides.reserve(edges.size());
    for (const Link edge : edges) sides.push_back(sideOf(edge));
    return sides;
  }
  /// Calls `use` with all sides of one edge among those given, edge by edge.
  template <class Use>
  static void eachSameEdge(std::vector<Side> sides, Use use) {
    std::sort(sides.begin(), sides.end(), [](const Side& p, const Side& q) {
      return std::tie(p.lower, p.upper, p.edge) < std::tie(q.lower, q.upper, q.edge);
    });
    for (std::size_t i = 0; i < sides.size();) {
      std::size_t end = i + 1;
      while (end < sides.size() && sides[end].lower == sides[i].lower && sides[end].upper == sides[i].upper) ++end;
      use(std::span<const Side>(sides).subspan(i, end - i));
      i = end;
    }
  }

  [[nodiscard]] static std::size_t slotOf(Link edge) {
    return 3 * static_cast<std::size_t>(edge >> 2) + static_cast<std::size_t>(edge & 3);
  }
  void noLink(Link edge) { links_.steps_[slotOf(edge)] = kBorder; }
  void link(Link edge, Link there, Found& found) {
    const Link step = there - (edge & ~3);
    const bool isNear = step >= std::numeric_limits<Step>::min() && step <= std::numeric_limits<Step>::max();
    links_.steps_[slotOf(edge)] = isNear ? static_cast<Step>(step) : kFar;
    if (!isNear) found.far.push_back({static_cast<std::uint32_t>(slotOf(edge)), there});
  }

  void matchBetween(std::vector<Found>& found) {
    std::size_t count = 0;
    for (const Found& its : found) count += its.between.size();
    std::vector<Side> between;
    between.reserve(count);
    for (Found& its : found) {
      for (const Link edge : its.between) between.push_back(sideOf(edge));
      its.between = {};
    }
    Found& rest = found.emplace_back();
    eachSameEdge(std::move(between), [&](std::span<const Side> sides) {
      for (const Side& side : sides) noLink(side.edge);
      if (sides.size() > 2) ++rest.overlapping;
      if (sides.size() != 2 || isRising(sides[0]) == isRising(sides[1])) return;
      link(sides[0].edge, sides[1].edge, rest);
      link(sides[1].edge, sides[0].edge, rest);
    });
    std::sort(rest.far.begin(), rest.far.end(), isBefore);
  }

  void keepFar(std::vector<Found>& found) {
    for (const Found& its : found) links_.overlappingEdges_ += its.overlapping;
    std::vector<Far>& far = links_.far_;
    std::size_t total = 0;
    for (const Found& its : found) total += its.far.size();
    far.reserve(total);
    for (const Found& its : found) far.insert(far.end(), its.far.begin(), its.far.end());
    const auto middle = far.end() - static_cast<std::ptrdiff_t>(found.back().far.size());
    std::inplace_merge(far.begin(), middle, far.end(), isBefore);
    links_.firsts_.assign((3 * count_ >> kFarShift) + 2, 0);
    for (const Far& its : far) ++links_.firsts_[(its.slot >> kFarShift) + 1];
    for (std::size_t i = 1; i < links_.firsts_.size(); ++i) links_.firsts_[i] += links_.firsts_[i - 1];
  }

  TriangleLinks& links_;
  const std::int32_t* corners_;
  std::size_t count_;
  std::size_t stretches_;
  std::vector<std::int32_t> firstPoints_;  // of the range of each stretch, and the end
  std::vector<std::atomic<std::uint32_t>> isForeign_;
  const RunPieces& run_;
};

TriangleLinks::TriangleLinks(std::size_t pointCount, std::span<const Triangle> triangles, SpareMemory& spare,
                             const RunPieces& run)
    : steps_(spare.array<Step>(3 * triangles.size())) {
  Matching(*this, pointCount, triangles, run).match();
}

/// By itself, out of the way of the near ones.
Link TriangleLinks::farLink(std::size_t slot) const {
  const auto first = far_.begin() + static_cast<std::ptrdiff_t>(firsts_[slot >> kFarShift]);
  const auto end = far_.begin() + static_cast<std::ptrdiff_t>(firsts_[(slot >> kFarShift) + 1]);
  return std::lower_bound(first, end, slot, [](const Far& its, std::size_t wanted) { return its.slot < wanted; })->link;
}

}  // namespace lvx::civil::detail
