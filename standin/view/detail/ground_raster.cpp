#include "view/detail/ground_raster.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "view/detail/ground_colours.h"

namespace lvx::view::detail {

using civil::Vec2;

namespace {

constexpr std::int64_t kHalf = kSub / 2;
/// Corners farther off than this are cut back before they are counted in whole numbers: products of two must fit.
constexpr double kFarthest = 0x1p28;
/// Edges come up between these sizes of triangles in pixels.
constexpr double kEdgesFrom = 8.0;
constexpr double kEdgesFull = 16.0;
/// Weight of a triangle as large as a pixel.
constexpr std::uint32_t kWhole = 1024;

/// Keeps the part of a polygon where `inside` isn't negative. An edge is cut at the same place from both its sides.
template <class Inside>
void cut(std::vector<Vec2>& polygon, Inside inside) {
  std::vector<Vec2> kept;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    Vec2 a = polygon[i];
    Vec2 b = polygon[(i + 1) % polygon.size()];
    if (inside(a) >= 0.0) kept.push_back(a);
    if ((inside(a) >= 0.0) == (inside(b) >= 0.0)) continue;
    if (std::pair(b.x, b.y) < std::pair(a.x, a.y)) std::swap(a, b);
    const double part = inside(a) / (inside(a) - inside(b));
    kept.push_back(a + part * (b - a));
  }
  polygon.swap(kept);
}

}  // namespace

/// The pixels of a triangle, row by row: per edge its value at the first centre, and how it grows by a pixel to the right
/// and down; within where all are 0 or more.
struct Raster::Rows {
  Rows(const Corners& c, std::int64_t left, std::int64_t right, std::int64_t top, std::int64_t bottom)
      : left_(left), right_(right), top_(top), bottom_(bottom) {
    for (std::size_t i = 0; i < 3; ++i) {
      const Corner& a = c[i];
      const Corner& b = c[(i + 1) % 3];
      const std::int64_t dx = b.x - a.x;
      const std::int64_t dy = b.y - a.y;
      const bool isTopOrLeft = dy < 0 || (dy == 0 && dx > 0);
      value_[i] = dx * (top * kSub + kHalf - a.y) - dy * (left * kSub + kHalf - a.x) - (isTopOrLeft ? 0 : 1);
      across_[i] = -dy * kSub;
      down_[i] = dx * kSub;
    }
  }

  /// Calls `row(from, to, y)` for the pixels of each row where no edge's value is negative.
  template <class Row>
  void visit(Row row) const {
    constexpr std::int64_t kNarrow = 8;
    if (right_ - left_ < kNarrow)
      visitNarrow(row);
    else
      visitWide(row);
  }

 private:
  /// Pixel by pixel, which beats a division where there are few.
  template <class Row>
  void visitNarrow(Row row) const {
    std::array<std::int64_t, 3> value = value_;
    for (std::int64_t y = top_; y <= bottom_; ++y) {
      std::int64_t a = value[0];
      std::int64_t b = value[1];
      std::int64_t c = value[2];
      const auto step = [&] { a += across_[0], b += across_[1], c += across_[2]; };
      std::int64_t from = left_;
      for (; from <= right_ && (a | b | c) < 0; ++from) step();
      std::int64_t end = from;
      for (; end <= right_ && (a | b | c) >= 0; ++end) step();
      if (from < end) row(from, end - 1, y);
      for (std::size_t i = 0; i < 3; ++i) value[i] += down_[i];
    }
  }

  template <class Row>
  void visitWide(Row row) const {
    std::array<std::int64_t, 3> value = value_;
    for (std::int64_t y = top_; y <= bottom_; ++y) {
      std::int64_t from = 0;
      std::int64_t to = right_ - left_;
      for (std::size_t i = 0; i < 3; ++i) {
        if (across_[i] > 0) {
          if (value[i] < 0) from = std::max(from, (-value[i] + across_[i] - 1) / across_[i]);
        } else if (value[i] < 0) {
          to = -1;
        } else if (across_[i] < 0) {
          to = std::min(to, value[i] / -across_[i]);
        }
        value[i] += down_[i];
      }
      if (from <= to) row(left_ + from, left_ + to, y);
    }
  }

  std::int64_t left_;
  std::int64_t right_;
  std::int64_t top_;
  std::int64_t bottom_;
  std::array<std::int64_t, 3> value_{};
  std::array<std::int64_t, 3> across_{};
  std::array<std::int64_t, 3> down_{};
};

/// How a triangle's pixels are coloured.
class Raster::Paint {
 public:
  Paint(Raster& raster, const Face& face, std::int64_t area) : raster_(raster), face_(face) {
    const double size = std::sqrt(static_cast<double>(area)) / static_cast<double>(kSub);
    hasHeights_ = raster.hasHeights_;
    if (raster.hasEdges_) ink_ = std::clamp((size - kEdgesFrom) / (kEdgesFull - kEdgesFrom), 0.0, 1.0);
    const auto& [x, y, height, light, mean] = face;
    const double twice = (x[1] - x[0]) * (y[2] - y[0]) - (y[1] - y[0]) * (x[2] - x[0]);
    const double rise1 = height[1] - height[0];
    const double rise2 = height[2] - height[0];
    if (twice > 0.0) {
      heightX_ = (rise1 * (y[2] - y[0]) - rise2 * (y[1] - y[0])) / twice;
      heightY_ = (rise2 * (x[1] - x[0]) - rise1 * (x[2] - x[0])) / twice;
    }
    for (std::size_t i = 0; i < 3; ++i) {
      const double dx = x[(i + 1) % 3] - x[i];
      const double dy = y[(i + 1) % 3] - y[i];
      const double perLength = 1.0 / (std::sqrt(dx * dx + dy * dy) * static_cast<double>(kSub));
      alongX_[i] = dx * perLength;
      alongY_[i] = dy * perLength;
    }
  }

  void row(std::int64_t from, std::int64_t to, std::int64_t y) const {
    Gathered* pixel = &raster_.at(from, y);
    const auto centreY = static_cast<double>(y * kSub + kHalf);
    for (std::int64_t x = from; x <= to; ++x, ++pixel) {
      std::uint32_t height = face_.meanHeight;
      const auto centreX = static_cast<double>(x * kSub + kHalf);
      if (hasHeights_) {
        const double exact = face_.height[0] + heightX_ * (centreX - face_.x[0]) + heightY_ * (centreY - face_.y[0]);
        height = rounded(std::clamp(exact, 0.0, 255.0));
      }
      gather(*pixel, face_.light, height, kWhole);
      pixel->hasGround = 1;
      if (ink_ > 0.0) {
        double nearest = 1.0;
        for (std::size_t i = 0; i < 3; ++i)
          nearest = std::min(nearest, alongX_[i] * (centreY - face_.y[i]) - alongY_[i] * (centreX - face_.x[i]));
        // A line a pixel wide, half of it on each side of the edge.
        const double covered = std::clamp(1.0 - nearest, 0.0, 1.0);
        pixel->line = static_cast<std::uint16_t>(255.0 * covered * ink_);
      }
    }
  }

 private:
  Raster& raster_;
  const Face& face_;
  bool hasHeights_ = false;
  double ink_ = 0.0;
  double heightX_ = 0.0;
  double heightY_ = 0.0;
  std::array<double, 3> alongX_{};
  std::array<double, 3> alongY_{};
};

Raster::Raster(const PixelArea& area, const SurfaceLook& look)
    : width_(area.width),
      height_(area.height),
      hasHeights_(look.style == SurfaceStyle::Heights),
      hasEdges_(look.hasTriangles),
      pixels_(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height)) {}

void Raster::add(const Face& face) {
  const double leftmost = least(face.x[0], face.x[1], face.x[2]);
  const double rightmost = most(face.x[0], face.x[1], face.x[2]);
  const double topmost = least(face.y[0], face.y[1], face.y[2]);
  const double lowest = most(face.y[0], face.y[1], face.y[2]);
  const auto edge = static_cast<double>(kSub);
  if (rightmost < 0.0 || lowest < 0.0 || leftmost > edge * width_ || topmost > edge * height_) return;
  if (leftmost < -kFarthest || topmost < -kFarthest || rightmost > kFarthest || lowest > kFarthest) {
    addFar(face);
    return;
  }
  Corners corners;
  for (std::size_t i = 0; i < 3; ++i)
    corners[i] = {static_cast<std::int64_t>(face.x[i]), static_cast<std::int64_t>(face.y[i])};
  const std::int64_t area = (corners[1].x - corners[0].x) * (corners[2].y - corners[0].y) -
                            (corners[1].y - corners[0].y) * (corners[2].x - corners[0].x);
  if (area < 2 * kSub * kSub) average(corners, area, face);
  fill(corners, area, face);
}

bool Raster::finish(const SurfaceLook& look, std::uint32_t* out) const {
  const Palette palette(look);
  bool hasAny = false;
  for (const Gathered& pixel : pixels_) {
    if (pixel.hasGround == 0 || pixel.weight == 0) {
      *out++ = 0;
      continue;
    }
    hasAny = true;
    // One triangle alone has most pixels, and division is what takes the time here.
    const bool isAlone = pixel.weight == kWhole;
    const std::uint32_t half = pixel.weight / 2;
    const std::uint32_t light = isAlone ? pixel.light / kWhole : (pixel.light + half) / pixel.weight;
    const std::uint32_t height = isAlone ? pixel.height / kWhole : (pixel.height + half) / pixel.weight;
    *out++ = palette.colour(std::min(255U, light), std::min(255U, height), pixel.line);
  }
  return hasAny;
}

void Raster::average(const Corners& corners, std::int64_t area, const Face& face) {
  const std::int64_t sumX = corners[0].x + corners[1].x + corners[2].x;
  const std::int64_t sumY = corners[0].y + corners[1].y + corners[2].y;
  if (sumX < 0 || sumY < 0 || sumX >= 3 * kSub * width_ || sumY >= 3 * kSub * height_) return;
  const std::int64_t x = sumX / 3;
  const std::int64_t y = sumY / 3;
  const auto weight = static_cast<std::uint32_t>(std::max<std::int64_t>(area, 0) >> 7) + 1;
  gather(at(x >> kSubBits, y >> kSubBits), face.light, face.meanHeight, weight);
}

void Raster::fill(const Corners& c, std::int64_t area, const Face& face) {
  const std::int64_t minX = least(c[0].x, c[1].x, c[2].x);
  const std::int64_t maxX = most(c[0].x, c[1].x, c[2].x);
  const std::int64_t minY = least(c[0].y, c[1].y, c[2].y);
  const std::int64_t maxY = most(c[0].y, c[1].y, c[2].y);
  const std::int64_t left = std::max<std::int64_t>((minX + kHalf - 1) >> kSubBits, 0);
  const std::int64_t right = std::min<std::int64_t>((maxX - kHalf) >> kSubBits, width_ - 1);
  const std::int64_t top = std::max<std::int64_t>((minY + kHalf - 1) >> kSubBits, 0);
  const std::int64_t bottom = std::min<std::int64_t>((maxY - kHalf) >> kSubBits, height_ - 1);
  // Rounding may have turned a sliver over; its neighbours hold its pixels then.
  if (left > right || top > bottom || area <= 0) return;

  const Rows rows(c, left, right, top, bottom);
  if (isPlain(area)) {
    rows.visit([&](std::int64_t from, std::int64_t to, std::int64_t y) {
      Gathered* pixel = &at(from, y);
      for (std::int64_t x = from; x <= to; ++x, ++pixel) {
        gather(*pixel, face.light, face.meanHeight, kWhole);
        pixel->hasGround = 1;
      }
    });
    return;
  }
  const Paint paint(*this, face, area);
  rows.visit([&](std::int64_t from, std::int64_t to, std::int64_t y) { paint.row(from, to, y); });
}

bool Raster::isPlain(std::int64_t area) const {
  return area < 2 * kSub * kSub ||
         (!hasHeights_ && (!hasEdges_ || static_cast<double>(area) <= kEdgesFrom * kEdgesFrom * kSub * kSub));
}

void Raster::addFar(const Face& face) {
  std::vector<Vec2> polygon{{face.x[0], face.y[0]}, {face.x[1], face.y[1]}, {face.x[2], face.y[2]}};
  const double far = 0.25 * kFarthest;
  cut(polygon, [&](Vec2 p) { return p.x + far; });
  cut(polygon, [&](Vec2 p) { return far - p.x; });
  cut(polygon, [&](Vec2 p) { return p.y + far; });
  cut(polygon, [&](Vec2 p) { return far - p.y; });
  const auto corner = [&](std::size_t i) { return Corner{std::llround(polygon[i].x), std::llround(polygon[i].y)}; };
  for (std::size_t i = 2; i < polygon.size(); ++i) {
    const Corners corners{corner(0), corner(i - 1), corner(i)};
    const std::int64_t area = (corners[1].x - corners[0].x) * (corners[2].y - corners[0].y) -
                              (corners[1].y - corners[0].y) * (corners[2].x - corners[0].x);
    fill(corners, area, face);
  }
}

}  // namespace lvx::view::detail
