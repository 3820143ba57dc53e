#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "view/plan_scene.h"

/// What a place that the user points at is taken for: a point of the drawing, a corner of a surface, an end, the foot on
/// an alignment.
///
///     if (const auto snap = snapAt(scene, mouse, 8 / port.scale())) use(snap->place);
namespace lvx::view {

enum class SnapKind : std::uint8_t {
  Point,   ///< of the drawing
  End,     ///< of an element of an alignment, a vertex of a sample line
  Vertex,  ///< of a surface
  Axis,    ///< the foot on an alignment
};

struct Snap {
  SnapKind kind = SnapKind::Point;
  civil::Vec2 place;
  /// The object's own; empty where it has none, as an axis.
  std::optional<double> elevation;
  civil::Handle handle = 0;
  /// Of the object: a point's number where it has no name.
  std::string name;
  /// On an alignment.
  std::optional<double> station;
};

/// Kinds of snaps; all of them at first.
class SnapKinds {
 public:
  constexpr SnapKinds() = default;
  constexpr void set(SnapKind kind, bool isWanted) { bits_ = isWanted ? bits_ | bitOf(kind) : bits_ & ~bitOf(kind); }
  [[nodiscard]] constexpr bool has(SnapKind kind) const { return (bits_ & bitOf(kind)) != 0; }

 private:
  static constexpr unsigned bitOf(SnapKind kind) { return 1U << static_cast<unsigned>(kind); }
  unsigned bits_ = 0xF;
};

/// The nearest point, end or vertex within `radius` drawing units; of several at one place that of the kind named first
/// above. An alignment's foot only where there is none of those. Hidden objects aren't found. Vertices of a surface are
/// passed over where more than some ten thousand triangles lie around: they can't be told apart there, and each move of
/// the mouse asks anew. O(alignments + sample lines + log points + log triangles), well below a millisecond.
[[nodiscard]] std::optional<Snap> snapAt(const PlanScene& scene, civil::Vec2 place, double radius,
                                         SnapKinds kinds = {});

}  // namespace lvx::view
