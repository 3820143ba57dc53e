#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "civil/detail/plain_array.h"
#include "civil/tin_surface.h"

namespace lvx::civil::detail {

/// The way across an edge. Edge i of a triangle lies opposite to its corner i and runs from corner i + 1 to corner i
/// + 2. A link packs the triangle beyond and the number of the same edge there: 4 * triangle + edge.
using Link = std::int32_t;
inline constexpr Link kNoLink = std::numeric_limits<Link>::min();
inline constexpr std::size_t kMostTriangles = std::size_t{1} << 29;

/// The links of all triangles, in 6 bytes a triangle: as steps to the triangle beyond, which lies close in memory along a
/// space-filling curve; the few that lead farther stand apart.
class TriangleLinks {
 public:
  TriangleLinks() = default;
  /// The triangles must be wound counter-clockwise. O(n) where points and triangles are numbered along a curve; O(n log n)
  /// else, and for many edges at one vertex. For a moment it takes a few megabytes a thread.
  TriangleLinks(std::size_t pointCount, std::span<const Triangle> triangles, SpareMemory& spare,
                const RunPieces& run = inOrder);

  /// Bytes of the largest array of the links, by the number of triangles.
  [[nodiscard]] static std::size_t stepsSize(std::size_t triangles) { return 3 * triangles * sizeof(Step); }

  /// kNoLink where no triangle lies beyond, and on edges that are more than a seam of two triangles (more than two, or both
  /// on one side).
  [[nodiscard]] Link across(std::size_t triangle, std::size_t edge) const;
  /// Calls `use(slot)` for each edge that no triangle lies beyond, 3 * triangle + edge, ascending, until it returns false.
  template <class Use>
  void eachBorder(Use use) const;
  /// Edges with more than two triangles.
  [[nodiscard]] std::size_t overlappingEdges() const { return overlappingEdges_; }

  /// Whether a triangle is alone where it lies, so that nothing is overlooked who walks into it: all are until told
  /// otherwise.
  [[nodiscard]] bool isAlone(std::size_t triangle) const;
  /// By triangle, 64 a number.
  void tellShared(std::vector<std::uint64_t> shared) { shared_ = std::move(shared); }

  /// The same by plain pointers, for a loop.
  class View;
  [[nodiscard]] View view() const;

 private:
  /// The link less four times the own triangle; no link has 3 for its edge.
  using Step = std::int16_t;
  static constexpr Step kBorder = 3;
  static constexpr Step kFar = 7;
  struct Far {
    std::uint32_t slot = 0;
    Link link = 0;
  };
  static constexpr unsigned kFarShift = 9;

  class Matching;
  [[nodiscard]] Link farLink(std::size_t slot) const;

  PlainArray<Step> steps_;             // three a triangle
  std::vector<Far> far_;               // ascending by slot
  std::vector<std::uint32_t> firsts_;  // by slot >> kFarShift: where they begin in far_, and the end
  std::vector<std::uint64_t> shared_;
  std::size_t overlappingEdges_ = 0;
};

class TriangleLinks::View {
 public:
  [[nodiscard]] Link across(std::size_t triangle, std::size_t edge) const {
    const Step step = steps_[3 * triangle + edge];
    if ((step & 3) != 3) return static_cast<Link>(4 * triangle) + step;
    return step == kBorder ? kNoLink : links_->farLink(3 * triangle + edge);
  }
  [[nodiscard]] bool isAlone(std::size_t triangle) const {
    return shared_ == nullptr || (shared_[triangle / 64] >> triangle % 64 & 1U) == 0;
  }

 private:
  friend class TriangleLinks;
  explicit View(const TriangleLinks& links)
      : steps_(links.steps_.all().data()),
        shared_(links.shared_.empty() ? nullptr : links.shared_.data()),
        links_(&links) {}
  const Step* steps_;
  const std::uint64_t* shared_;
  const TriangleLinks* links_;
};

template <class Use>
void TriangleLinks::eachBorder(Use use) const {
  // Borders are few: many slots are looked at together.
  constexpr std::size_t kTogether = 64;
  const Step* const steps = steps_.all().data();
  for (std::size_t first = 0; first < steps_.size(); first += kTogether) {
    const std::size_t end = std::min(first + kTogether, steps_.size());
    std::uint16_t found = 0;
    for (std::size_t slot = first; slot < end; ++slot) found |= steps[slot] == kBorder ? 1 : 0;
    for (std::size_t slot = first; found != 0 && slot < end; ++slot)
      if (steps[slot] == kBorder && !use(slot)) return;
  }
}

inline TriangleLinks::View TriangleLinks::view() const { return View(*this); }
inline Link TriangleLinks::across(std::size_t triangle, std::size_t edge) const {
  return view().across(triangle, edge);
}
inline bool TriangleLinks::isAlone(std::size_t triangle) const { return view().isAlone(triangle); }

}  // namespace lvx::civil::detail
