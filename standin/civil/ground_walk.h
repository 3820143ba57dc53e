#pragma once

#include <vector>

#include "civil/geometry.h"
#include "civil/tin_surface.h"

namespace lvx::civil {

/// A walk over a surface along the legs of a line, in pieces: one ends where the ground does. The samples are those of
/// TinSurface::sample, leg by leg, so a leg's end and the next one's start both stand.
class GroundWalk {
 public:
  struct Sample {
    Vec3 place;
    std::size_t leg = 0;
  };
  using Piece = std::vector<Sample>;

  explicit GroundWalk(const TinSurface& surface) : surface_(&surface) {}
  /// Walks the next leg; legs join where one starts at the former one's end.
  void add(Vec2 from, Vec2 to);
  [[nodiscard]] const std::vector<Piece>& pieces() const { return pieces_; }
  /// Whether the walk's first sample is its very start.
  [[nodiscard]] bool startsOnGround() const { return startsOnGround_; }

 private:
  [[nodiscard]] bool isGroundBetween(const Vec3& a, const Vec3& b) const;

  const TinSurface* surface_;
  std::vector<Piece> pieces_;
  std::vector<Vec3> scratch_;
  std::size_t leg_ = 0;
  bool startsOnGround_ = false;
  bool endsOnGround_ = false;
};

}  // namespace lvx::civil
