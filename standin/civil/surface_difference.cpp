#include "civil/surface_difference.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <mutex>
#include <vector>

#include "civil/detail/convex_piece.h"
#include "civil/detail/ground_layers.h"

namespace lvx::civil {

using namespace detail;

namespace {

/// Runs of triangles that are worked off at a time: few enough that many threads have work, many enough that their sums
/// are few.
constexpr std::size_t kRunsAtOnce = 16;
/// Of a surface's area, what rounding may leave of one that is none.
constexpr double kAreaRounding = 1e-12;

/// A sum that keeps what rounding drops (Neumaier, ZAMM 54, 1974): millions of small pieces lose nothing.
class Sum {
 public:
  void add(double value) {
    const double next = sum_ + value;
    dropped_ += std::abs(sum_) >= std::abs(value) ? (sum_ - next) + value : (value - next) + sum_;
    sum_ = next;
  }
  void add(const Sum& other) {
    add(other.sum_);
    add(other.dropped_);
  }
  [[nodiscard]] double value() const { return sum_ + dropped_; }

 private:
  double sum_ = 0.0;
  double dropped_ = 0.0;
};

struct Sums {
  Sum cut;
  Sum fill;
  Sum cutArea;
  Sum fillArea;
  Sum equalArea;
  Sum fineArea;  // of the surface that the other one is laid over
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -std::numeric_limits<double>::infinity();

  void add(const Sums& other) {
    cut.add(other.cut);
    fill.add(other.fill);
    cutArea.add(other.cutArea);
    fillArea.add(other.fillArea);
    equalArea.add(other.equalArea);
    fineArea.add(other.fineArea);
    lowest = std::min(lowest, other.lowest);
    highest = std::max(highest, other.highest);
  }

  /// A triangle of `area` with the differences at its corners.
  void addPrism(double area, double d1, double d2, double d3) {
    if (!(area > 0.0)) return;
    const int above = (d1 > 0.0 ? 1 : 0) + (d2 > 0.0 ? 1 : 0) + (d3 > 0.0 ? 1 : 0);
    const int below = (d1 < 0.0 ? 1 : 0) + (d2 < 0.0 ? 1 : 0) + (d3 < 0.0 ? 1 : 0);
    const double whole = area * (d1 + d2 + d3) / 3.0;
    if (above == 0 && below == 0) {
      equalArea.add(area);
    } else if (below == 0) {
      fill.add(whole);
      fillArea.add(area);
    } else if (above == 0) {
      cut.add(-whole);
      cutArea.add(area);
    } else {
      // The corner that is alone on its side comes first.
      const double sign = above == 1 ? 1.0 : -1.0;
      if (sign * d2 > 0.0) std::swap(d1, d2);
      if (sign * d3 > 0.0) std::swap(d1, d3);
      const double base = area * (d1 / (d1 - d2)) * (d1 / (d1 - d3));
      const double pyramid = base * d1 / 3.0;
      const double rest = std::max(0.0, sign * (pyramid - whole));
      (above == 1 ? fill : cut).add(std::abs(pyramid));
      (above == 1 ? fillArea : cutArea).add(base);
      (above == 1 ? cut : fill).add(rest);
      (above == 1 ? cutArea : fillArea).add(area - base);
    }
  }
};

/// Lays one surface over the triangles of another, the finer one: that makes most small pieces of work, whichever of the
/// two is the existing one. `sign` is that of the coarse surface less the fine one.
class Overlay {
 public:
  Overlay(const GroundLayers& fine, const GroundLayers& coarse, double sign)
      : fine_(fine), coarse_(coarse), sign_(sign) {}

  void addRun(std::size_t run) {
    near_.clear();
    boxes_.clear();
    coarse_.collect(fine_.boxOfRun(run), near_, boxes_);
    const std::size_t first = run * GroundLayers::kRun;
    const std::size_t end = std::min(first + GroundLayers::kRun, fine_.size());
    for (std::size_t triangle = first; triangle < end; ++triangle) addTriangle(triangle);
  }
  [[nodiscard]] const Sums& sums() const { return sums_; }

 private:
  void addTriangle(std::size_t triangle) {
    const Vec3 origin = fine_.firstCorner(triangle);
    const Corners own = fine_.cornersOf(triangle, origin);
    const Box box = fine_.boxOf(triangle);
    sums_.fineArea.add(fine_.visibleArea(triangle));
    for (std::size_t i = 0; i < near_.size(); ++i) {
      const Box& near = boxes_[i];
      if (near.minX >= box.maxX || near.maxX <= box.minX || near.minY >= box.maxY || near.maxY <= box.minY) continue;
      const Corners other = coarse_.cornersOf(near_[i], origin);
      if (areApart(own, other)) continue;
      piece_.assign(own.begin(), own.end());
      cutToOutline(piece_, scratch_, other);
      if (!fine_.isShared(triangle) && !coarse_.isShared(near_[i])) {
        addPiece(piece_, other);
        continue;
      }
      for (ConvexPiece& part : fine_.uppermost(triangle, origin, piece_)) {
        for (Vec3& p : part) p.z = elevationIn(other, p);
        for (ConvexPiece& seen : coarse_.uppermost(near_[i], origin, std::move(part))) {
          for (Vec3& p : seen) p.z = elevationIn(own, p);
          addPiece(seen, other);
        }
      }
    }
  }

  /// A piece of the fine surface's plane at a triangle of the coarse one.
  void addPiece(const ConvexPiece& piece, const Corners& other) {
    if (piece.size() < 3 || !(twiceArea(piece) > 0.0)) return;
    differences_.clear();
    for (const Vec3& p : piece) {
      const double difference = sign_ * (elevationIn(other, p) - p.z);
      differences_.push_back(std::abs(difference) <= kSameElevation ? 0.0 : difference);
      sums_.lowest = std::min(sums_.lowest, differences_.back());
      sums_.highest = std::max(sums_.highest, differences_.back());
    }
    for (std::size_t i = 2; i < piece.size(); ++i)
      sums_.addPrism(0.5 * sideOf(piece[0], piece[i - 1], piece[i]), differences_[0], differences_[i - 1],
                     differences_[i]);
  }

  const GroundLayers& fine_;
  const GroundLayers& coarse_;
  double sign_;
  Sums sums_;
  std::vector<std::uint32_t> near_;
  std::vector<Box> boxes_;
  ConvexPiece piece_;
  ConvexPiece scratch_;
  std::vector<double> differences_;
};

/// Tells how far all of the work is, whichever thread has done it.
class Teller {
 public:
  Teller(const DifferenceProgress& progress, std::size_t all)
      : progress_(progress), all_(std::max<std::size_t>(all, 1)) {}

  /// Whether the work goes on.
  [[nodiscard]] bool goesOn() const { return !isLeft_.load(std::memory_order_relaxed); }
  void tell(std::size_t more) {
    const std::lock_guard lock(mutex_);
    done_ += more;
    if (progress_ && goesOn() && !progress_(static_cast<double>(done_) / static_cast<double>(all_))) isLeft_ = true;
  }

 private:
  const DifferenceProgress& progress_;
  std::size_t all_;
  std::size_t done_ = 0;
  std::mutex mutex_;
  std::atomic<bool> isLeft_ = false;
};

/// Calls `work(part, run)` for all runs, part by part of them.
template <class Work>
void eachRun(const GroundLayers& layers, const RunPieces& run, Teller& teller, Work work) {
  const std::size_t count = layers.runCount();
  run((count + kRunsAtOnce - 1) / kRunsAtOnce, [&](std::size_t part) {
    if (!teller.goesOn()) return;
    const std::size_t first = part * kRunsAtOnce;
    const std::size_t end = std::min(first + kRunsAtOnce, count);
    work(part, first, end);
    teller.tell(end - first);
  });
}

void findLayers(GroundLayers& layers, const RunPieces& run, Teller& teller) {
  std::mutex mutex;
  std::vector<GroundLayers::Pair> all;
  eachRun(layers, run, teller, [&](std::size_t, std::size_t first, std::size_t end) {
    std::vector<GroundLayers::Pair> found;
    for (std::size_t i = first; i < end; ++i) layers.findShared(i, found);
    const std::lock_guard lock(mutex);
    all.insert(all.end(), found.begin(), found.end());
  });
  layers.tellShared(std::move(all));
}

double areaOf(const GroundLayers& layers, const RunPieces& run, Teller& teller) {
  std::vector<Sum> parts((layers.runCount() + kRunsAtOnce - 1) / kRunsAtOnce);
  eachRun(layers, run, teller, [&](std::size_t part, std::size_t first, std::size_t end) {
    const std::size_t last = std::min(end * GroundLayers::kRun, layers.size());
    for (std::size_t triangle = first * GroundLayers::kRun; triangle < last; ++triangle)
      parts[part].add(layers.visibleArea(triangle));
  });
  Sum all;
  for (const Sum& part : parts) all.add(part);
  return all.value();
}

double areaLeft(double all, double common) {
  const double left = all - common;
  return left > kAreaRounding * all ? left : 0.0;
}

}  // namespace

std::optional<SurfaceDifference> surfaceDifference(const TinSurface& existing, const TinSurface& next,
                                                   const RunPieces& run, const DifferenceProgress& progress) {
  GroundLayers below(existing, run);
  GroundLayers above(next, run);
  const bool isNextFiner = above.size() > below.size();
  const GroundLayers& fine = isNextFiner ? above : below;
  const GroundLayers& coarse = isNextFiner ? below : above;
  // Laying one over the other takes most of the time, so the fine surface's runs are told for it and for their layers.
  Teller teller(progress, 2 * below.runCount() + 2 * above.runCount());
  findLayers(below, run, teller);
  findLayers(above, run, teller);
  const double coarseArea = areaOf(coarse, run, teller);
  std::vector<Sums> parts((fine.runCount() + kRunsAtOnce - 1) / kRunsAtOnce);
  eachRun(fine, run, teller, [&](std::size_t part, std::size_t first, std::size_t end) {
    Overlay overlay(fine, coarse, isNextFiner ? -1.0 : 1.0);
    for (std::size_t i = first; i < end; ++i) overlay.addRun(i);
    parts[part] = overlay.sums();
  });
  if (!teller.goesOn()) return std::nullopt;

  Sums all;
  for (const Sums& part : parts) all.add(part);
  SurfaceDifference result;
  result.cut = all.cut.value();
  result.fill = all.fill.value();
  result.cutArea = all.cutArea.value();
  result.fillArea = all.fillArea.value();
  result.equalArea = all.equalArea.value();
  const double onlyFine = areaLeft(all.fineArea.value(), result.commonArea());
  const double onlyCoarse = areaLeft(coarseArea, result.commonArea());
  result.onlyExisting = isNextFiner ? onlyCoarse : onlyFine;
  result.onlyNew = isNextFiner ? onlyFine : onlyCoarse;
  if (all.lowest <= all.highest) {
    result.lowest = all.lowest;
    result.highest = all.highest;
  }
  return result;
}

}  // namespace lvx::civil
