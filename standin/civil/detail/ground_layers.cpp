#include "civil/detail/ground_layers.h"

#include <algorithm>
#include <utility>

#include "civil/surface_difference.h"

namespace lvx::civil::detail {

namespace {

bool doMeet(const Box& a, const Box& b) {
  return a.minX <= b.maxX && b.minX <= a.maxX && a.minY <= b.maxY && b.minY <= a.maxY;
}

Box around(std::span<const Box> boxes) {
  Box all;
  for (const Box& box : boxes) {
    all.add({box.minX, box.minY});
    all.add({box.maxX, box.maxY});
  }
  return all;
}

}  // namespace

GroundLayers::GroundLayers(const TinSurface& surface, const RunPieces& run)
    : points_(surface.points()),
      triangles_(surface.triangles()),
      size_(surface.counts().triangles - surface.counts().degenerate) {
  if (size_ == 0) return;
  constexpr std::size_t kRunsAtOnce = 512;
  std::vector<Box> runs((size_ + kRun - 1) / kRun);
  run((runs.size() + kRunsAtOnce - 1) / kRunsAtOnce, [&](std::size_t part) {
    const std::size_t end = std::min((part + 1) * kRunsAtOnce, runs.size());
    for (std::size_t i = part * kRunsAtOnce; i < end; ++i)
      for (std::size_t triangle = i * kRun; triangle < std::min((i + 1) * kRun, size_); ++triangle) {
        const Box box = boxOf(triangle);
        runs[i].add({box.minX, box.minY});
        runs[i].add({box.maxX, box.maxY});
      }
  });
  levels_.push_back(std::move(runs));
  while (levels_.back().size() > kFan) {
    const std::vector<Box>& below = levels_.back();
    std::vector<Box> above;
    for (std::size_t first = 0; first < below.size(); first += kFan)
      above.push_back(around(std::span(below).subspan(first, std::min(kFan, below.size() - first))));
    levels_.push_back(std::move(above));
  }
}

Box GroundLayers::boxOf(std::size_t triangle) const {
  const Triangle& t = triangles_[triangle];
  Box box;
  for (const std::int32_t corner : {t.a, t.b, t.c}) {
    const Vec3& p = points_[static_cast<std::size_t>(corner)];
    box.add({p.x, p.y});
  }
  return box;
}

const Vec3& GroundLayers::firstCorner(std::size_t triangle) const {
  return points_[static_cast<std::size_t>(triangles_[triangle].a)];
}

Corners GroundLayers::cornersOf(std::size_t triangle, const Vec3& origin) const {
  const Triangle& t = triangles_[triangle];
  Corners corners;
  std::size_t i = 0;
  for (const std::int32_t corner : {t.a, t.b, t.c}) {
    const Vec3& p = points_[static_cast<std::size_t>(corner)];
    corners[i++] = {p.x - origin.x, p.y - origin.y, p.z - origin.z};
  }
  return corners;
}

void GroundLayers::collect(const Box& box, std::vector<std::uint32_t>& triangles, std::vector<Box>& boxes) const {
  if (levels_.empty()) return;
  const auto descend = [&](const auto& self, std::size_t level, std::size_t first, std::size_t end) -> void {
    for (std::size_t i = first; i < end; ++i) {
      if (!doMeet(levels_[level][i], box)) continue;
      if (level > 0) {
        self(self, level - 1, i * kFan, std::min((i + 1) * kFan, levels_[level - 1].size()));
        continue;
      }
      for (std::size_t triangle = i * kRun; triangle < std::min((i + 1) * kRun, size_); ++triangle) {
        const Box own = boxOf(triangle);
        if (!doMeet(own, box)) continue;
        triangles.push_back(static_cast<std::uint32_t>(triangle));
        boxes.push_back(own);
      }
    }
  };
  descend(descend, levels_.size() - 1, 0, levels_.back().size());
}

void GroundLayers::findShared(std::size_t run, std::vector<Pair>& pairs) const {
  std::vector<std::uint32_t> near;
  std::vector<Box> boxes;
  collect(boxOfRun(run), near, boxes);
  for (std::size_t triangle = run * kRun; triangle < std::min((run + 1) * kRun, size_); ++triangle) {
    const Box own = boxOf(triangle);
    const Vec3& origin = firstCorner(triangle);
    const Corners corners = cornersOf(triangle, origin);
    for (auto i = static_cast<std::size_t>(std::upper_bound(near.begin(), near.end(), triangle) - near.begin());
         i < near.size(); ++i)
      if (doMeet(own, boxes[i]) && !areApart(corners, cornersOf(near[i], origin)))
        pairs.emplace_back(static_cast<std::uint32_t>(triangle), near[i]);
  }
}

void GroundLayers::tellShared(std::vector<Pair> pairs) {
  // So that the pieces don't depend on which thread found what.
  std::sort(pairs.begin(), pairs.end());
  for (const auto& [lower, higher] : pairs) {
    shared_[lower].push_back(higher);
    shared_[higher].push_back(lower);
  }
}

// Asked for in one order of the two, whichever of them asks, so that both get the same answer.
bool GroundLayers::isSameGround(std::size_t lower, std::size_t higher, const Vec3& origin) const {
  const Corners one = cornersOf(lower, origin);
  const Corners other = cornersOf(higher, origin);
  ConvexPiece piece(one.begin(), one.end());
  ConvexPiece scratch;
  cutToOutline(piece, scratch, other);
  for (const Vec3& p : piece)
    if (std::abs(p.z - elevationIn(other, p)) > kSameElevation) return false;
  return true;
}

std::vector<ConvexPiece> GroundLayers::uppermost(std::size_t triangle, const Vec3& origin, ConvexPiece whole) const {
  std::vector<ConvexPiece> pieces;
  pieces.push_back(std::move(whole));
  if (!isShared(triangle)) return pieces;
  std::vector<ConvexPiece> next;
  const auto keep = [&next](const ConvexPiece& piece) {
    if (piece.size() >= 3 && twiceArea(piece) > 0.0) next.push_back(piece);
  };
  ConvexPiece kept;
  ConvexPiece rest;
  for (const std::size_t other : shared_.at(static_cast<std::uint32_t>(triangle))) {
    const std::size_t lower = std::min(triangle, other);
    const bool isSame = isSameGround(lower, std::max(triangle, other), firstCorner(lower));
    if (isSame && triangle < other) continue;  // this one counts, the other one's pieces go
    const Corners above = cornersOf(other, origin);
    next.clear();
    for (ConvexPiece& piece : pieces) {
      for (std::size_t i = 0; i < 3 && piece.size() >= 3; ++i) {
        const Vec3& from = above[i];
        const Vec3& to = above[(i + 1) % 3];
        cut(piece, kept, [&](const Vec3& p) { return -sideOf(from, to, p); });
        keep(kept);
        cut(piece, rest, [&](const Vec3& p) { return sideOf(from, to, p); });
        piece.swap(rest);
      }
      if (isSame || piece.size() < 3) continue;
      cut(piece, kept, [&](const Vec3& p) { return p.z - elevationIn(above, p); });
      keep(kept);
    }
    pieces.swap(next);
  }
  return pieces;
}

double GroundLayers::visibleArea(std::size_t triangle) const {
  const Vec3& origin = firstCorner(triangle);
  const Corners corners = cornersOf(triangle, origin);
  if (!isShared(triangle)) return 0.5 * sideOf(corners[0], corners[1], corners[2]);
  double twice = 0.0;
  for (const ConvexPiece& piece : uppermost(triangle, origin, {corners.begin(), corners.end()}))
    twice += twiceArea(piece);
  return 0.5 * twice;
}

}  // namespace lvx::civil::detail
