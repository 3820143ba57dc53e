#include "view/surface_tiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

namespace lvx::view {

using civil::Box;
using civil::TinSurface;
using civil::Triangle;
using civil::Vec2;
using civil::Vec3;

namespace {

/// Triangles that share a box.
constexpr std::size_t kRun = 256;
/// Corners are moved to the nearest 256th of a pixel, so that all sides of a seam count in the same whole numbers.
constexpr int kSubBits = 8;
constexpr std::int64_t kSub = std::int64_t{1} << kSubBits;
constexpr std::int64_t kHalf = kSub / 2;
/// Corners farther off than this are cut back before they are counted in whole numbers: products of two must fit.
constexpr double kFarthest = 0x1p28;
/// Beyond this a coordinate is no longer exact in 256ths of a pixel.
constexpr double kMostExact = 0x1p52;
/// Heights look twice as steep as they are: road ground is too gentle to be seen otherwise.
constexpr double kSteeper = 2.0;
/// Edges come up between these sizes of triangles in pixels.
constexpr double kEdgesFrom = 8.0;
constexpr double kEdgesFull = 16.0;
/// Weight of a triangle as large as a pixel.
constexpr std::uint32_t kWhole = 1024;

// By value: these become single instructions, where a list of three becomes branches that nothing can predict.
template <class T>
T least(T a, T b, T c) {
  const T ab = a < b ? a : b;
  return ab < c ? ab : c;
}
template <class T>
T most(T a, T b, T c) {
  const T ab = a > b ? a : b;
  return ab > c ? ab : c;
}

// ---------------------------------------------------------------- colours

struct Colour {
  double red;
  double green;
  double blue;
};

Colour mixed(const Colour& a, const Colour& b, double part) {
  return {a.red + part * (b.red - a.red), a.green + part * (b.green - a.green), a.blue + part * (b.blue - a.blue)};
}

std::uint32_t packed(const Colour& colour) {
  const auto byte = [](double value) { return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 255.0))); };
  return 0xff000000U | byte(colour.red) << 16 | byte(colour.green) << 8 | byte(colour.blue);
}

/// The light of level ground under the sun at 45 degrees, of 255.
constexpr double kLevelLight = 0.70710678118654752;

/// From shadow over level ground to the sunny slope.
Colour reliefColour(double light, bool isDark) {
  const std::array<Colour, 3> stops = isDark
                                          ? std::array<Colour, 3>{{{22, 24, 27}, {64, 66, 68}, {116, 117, 114}}}
                                          : std::array<Colour, 3>{{{126, 124, 121}, {222, 219, 211}, {251, 249, 244}}};
  if (light < kLevelLight) return mixed(stops[0], stops[1], light / kLevelLight);
  return mixed(stops[1], stops[2], (light - kLevelLight) / (1.0 - kLevelLight));
}

/// Evenly lighter from low to high, so that it reads without a legend and in grey.
Colour rampColour(double part, bool isDark) {
  constexpr std::array<Colour, 6> kStops{
      {{38, 86, 104}, {58, 122, 112}, {112, 152, 98}, {176, 174, 104}, {222, 196, 142}, {248, 234, 212}}};
  const double place = std::clamp(part, 0.0, 1.0) * (kStops.size() - 1);
  const auto below = std::min(static_cast<std::size_t>(place), kStops.size() - 2);
  const Colour colour = mixed(kStops[below], kStops[below + 1], place - static_cast<double>(below));
  // Lines and labels are drawn over it, dark ones on paper and light ones on a dark screen.
  return isDark ? mixed({0.0, 0.0, 0.0}, colour, 0.62) : mixed(colour, {255.0, 255.0, 255.0}, 0.35);
}

/// How bright a colour of the ramp is under the light, in 256ths.
double shadeFactor(double light) {
  return light < kLevelLight ? 0.58 + 0.42 * light / kLevelLight
                             : 1.0 + 0.18 * (light - kLevelLight) / (1.0 - kLevelLight);
}

/// All colours of a look.
class Palette {
 public:
  explicit Palette(const SurfaceLook& look) : isRelief_(look.style == SurfaceStyle::Relief) {
    for (std::size_t i = 0; i < 256; ++i) {
      const double part = static_cast<double>(i) / 255.0;
      colours_[i] = packed(isRelief_ ? reliefColour(part, look.isDark) : rampColour(part, look.isDark));
      factors_[i] = static_cast<std::uint32_t>(std::lround(256.0 * shadeFactor(part)));
    }
    ink_ = look.isDark ? 0xffc8ccd0U : 0xff4a4d50U;
  }

  /// `light` and `height` from 0 to 255; `line` is the part of the pixel that an edge covers, of 255.
  [[nodiscard]] std::uint32_t colour(std::uint32_t light, std::uint32_t height, std::uint32_t line) const {
    std::uint32_t colour = isRelief_ ? colours_[light] : shaded(colours_[height], factors_[light]);
    if (line > 0) colour = blended(colour, ink_, line * kInk / 255);
    return colour;
  }

 private:
  static constexpr std::uint32_t kInk = 92;  // of 256: edges stay behind what is drawn over them

  static std::uint32_t shaded(std::uint32_t colour, std::uint32_t factor) {
    const auto channel = [&](unsigned shift) {
      return std::min(255U, ((colour >> shift & 0xffU) * factor) >> 8) << shift;
    };
    return 0xff000000U | channel(16) | channel(8) | channel(0);
  }
  static std::uint32_t blended(std::uint32_t under, std::uint32_t over, std::uint32_t part) {
    const auto channel = [&](unsigned shift) {
      return (((under >> shift & 0xffU) * (256 - part) + (over >> shift & 0xffU) * part) >> 8) << shift;
    };
    return 0xff000000U | channel(16) | channel(8) | channel(0);
  }

  bool isRelief_;
  std::array<std::uint32_t, 256> colours_{};
  std::array<std::uint32_t, 256> factors_{};
  std::uint32_t ink_;
};

// ---------------------------------------------------------------- triangles into pixels

/// What a pixel gathers.
struct Gathered {
  std::uint32_t light = 0;   // sum of light times weight
  std::uint32_t height = 0;  // sum of height times weight
  std::uint32_t weight = 0;
  std::uint16_t line = 0;
  std::uint16_t hasGround = 0;
};

struct Corner {
  std::int64_t x = 0;
  std::int64_t y = 0;
};

struct Face {
  // Corners in 256ths of a pixel from the area's upper left corner, clockwise as seen; whole numbers unless huge.
  std::array<double, 3> x;
  std::array<double, 3> y;
  std::array<double, 3> height;  // 0 to 255
  std::uint32_t light = 0;
  std::uint32_t meanHeight = 0;
};

class Raster {
 public:
  Raster(const PixelArea& area, const SurfaceLook& look)
      : width_(area.width),
        height_(area.height),
        hasHeights_(look.style == SurfaceStyle::Heights),
        hasEdges_(look.hasTriangles),
        pixels_(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height)) {}

  void add(const Face& face) {
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
    std::array<Corner, 3> corners;
    for (std::size_t i = 0; i < 3; ++i)
      corners[i] = {static_cast<std::int64_t>(face.x[i]), static_cast<std::int64_t>(face.y[i])};
    const std::int64_t area = (corners[1].x - corners[0].x) * (corners[2].y - corners[0].y) -
                              (corners[1].y - corners[0].y) * (corners[2].x - corners[0].x);
    if (area < 2 * kSub * kSub) average(corners, area, face);
    fill(corners, area, face);
  }

  /// Into pixels; false if there is no ground.
  bool finish(const SurfaceLook& look, std::uint32_t* out) const {
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

 private:
  /// A triangle smaller than a pixel takes part in the colour of that which holds its middle, whether it holds the
  /// pixel's centre or not: from afar a surface is the mean of its triangles and not a choice of them.
  void average(const std::array<Corner, 3>& corners, std::int64_t area, const Face& face) {
    const std::int64_t sumX = corners[0].x + corners[1].x + corners[2].x;
    const std::int64_t sumY = corners[0].y + corners[1].y + corners[2].y;
    if (sumX < 0 || sumY < 0 || sumX >= 3 * kSub * width_ || sumY >= 3 * kSub * height_) return;
    const std::int64_t x = sumX / 3;
    const std::int64_t y = sumY / 3;
    const auto weight = static_cast<std::uint32_t>(std::max<std::int64_t>(area, 0) >> 7) + 1;
    gather(at(x >> kSubBits, y >> kSubBits), face.light, face.meanHeight, weight);
  }

  static void gather(Gathered& pixel, std::uint32_t light, std::uint32_t height, std::uint32_t weight) {
    pixel.light += light * weight;
    pixel.height += height * weight;
    pixel.weight += weight;
  }

  Gathered& at(std::int64_t x, std::int64_t y) {
    return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)];
  }

  /// All pixels whose centre the triangle holds.
  void fill(const std::array<Corner, 3>& c, std::int64_t area, const Face& face) {
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

    // Per edge its value at the first centre, and how it grows by a pixel to the right and down; within where all are 0
    // or more.
    std::array<std::int64_t, 3> value;
    std::array<std::int64_t, 3> right1;
    std::array<std::int64_t, 3> down1;
    for (std::size_t i = 0; i < 3; ++i) {
      const Corner& a = c[i];
      const Corner& b = c[(i + 1) % 3];
      const std::int64_t dx = b.x - a.x;
      const std::int64_t dy = b.y - a.y;
      const bool isTopOrLeft = dy < 0 || (dy == 0 && dx > 0);
      value[i] = dx * (top * kSub + kHalf - a.y) - dy * (left * kSub + kHalf - a.x) - (isTopOrLeft ? 0 : 1);
      right1[i] = -dy * kSub;
      down1[i] = dx * kSub;
    }
    // Nothing that changes from pixel to pixel.
    const bool isPlain =
        area < 2 * kSub * kSub ||
        (!hasHeights_ && (!hasEdges_ || static_cast<double>(area) <= kEdgesFrom * kEdgesFrom * kSub * kSub));
    if (isPlain) {
      visitRows(value, right1, down1, left, right, top, bottom,
                [&](std::int64_t from, std::int64_t to, std::int64_t y) {
                  Gathered* pixel = &at(from, y);
                  for (std::int64_t x = from; x <= to; ++x, ++pixel) {
                    gather(*pixel, face.light, face.meanHeight, kWhole);
                    pixel->hasGround = 1;
                  }
                });
      return;
    }
    const Paint paint(*this, face, area);
    visitRows(value, right1, down1, left, right, top, bottom,
              [&](std::int64_t from, std::int64_t to, std::int64_t y) { paint.row(from, to, y); });
  }

  /// Calls `row(from, to, y)` for the pixels of each row where no edge's value is negative.
  template <class Row>
  static void visitRows(std::array<std::int64_t, 3> value, const std::array<std::int64_t, 3>& right1,
                        const std::array<std::int64_t, 3>& down1, std::int64_t left, std::int64_t right,
                        std::int64_t top, std::int64_t bottom, Row row) {
    constexpr std::int64_t kNarrow = 8;
    if (right - left < kNarrow) {
      for (std::int64_t y = top; y <= bottom; ++y) {
        auto [a, b, c] = value;
        const auto step = [&] { a += right1[0], b += right1[1], c += right1[2]; };
        std::int64_t from = left;
        for (; from <= right && (a | b | c) < 0; ++from) step();
        std::int64_t end = from;
        for (; end <= right && (a | b | c) >= 0; ++end) step();
        if (from < end) row(from, end - 1, y);
        for (std::size_t i = 0; i < 3; ++i) value[i] += down1[i];
      }
      return;
    }
    for (std::int64_t y = top; y <= bottom; ++y) {
      std::int64_t from = 0;
      std::int64_t to = right - left;
      for (std::size_t i = 0; i < 3; ++i) {
        if (right1[i] > 0) {
          if (value[i] < 0) from = std::max(from, (-value[i] + right1[i] - 1) / right1[i]);
        } else if (value[i] < 0) {
          to = -1;
        } else if (right1[i] < 0) {
          to = std::min(to, value[i] / -right1[i]);
        }
        value[i] += down1[i];
      }
      if (from <= to) row(left + from, left + to, y);
    }
  }

  /// How a triangle's pixels are coloured.
  class Paint {
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
          height = static_cast<std::uint32_t>(std::clamp(exact, 0.0, 255.0) + 0.5);
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

  /// Cuts a triangle back to the surroundings of the area first.
  void addFar(const Face& face) {
    std::vector<Vec2> polygon{{face.x[0], face.y[0]}, {face.x[1], face.y[1]}, {face.x[2], face.y[2]}};
    const double far = 0.25 * kFarthest;
    cut(polygon, [&](Vec2 p) { return p.x + far; });
    cut(polygon, [&](Vec2 p) { return far - p.x; });
    cut(polygon, [&](Vec2 p) { return p.y + far; });
    cut(polygon, [&](Vec2 p) { return far - p.y; });
    const auto corner = [&](std::size_t i) { return Corner{std::llround(polygon[i].x), std::llround(polygon[i].y)}; };
    for (std::size_t i = 2; i < polygon.size(); ++i) {
      const std::array<Corner, 3> corners{corner(0), corner(i - 1), corner(i)};
      const std::int64_t area = (corners[1].x - corners[0].x) * (corners[2].y - corners[0].y) -
                                (corners[1].y - corners[0].y) * (corners[2].x - corners[0].x);
      fill(corners, area, face);
    }
  }

  /// Keeps the part of a polygon where `inside` isn't negative. An edge is cut at the same place from both its sides.
  template <class Inside>
  static void cut(std::vector<Vec2>& polygon, Inside inside) {
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

  int width_;
  int height_;
  bool hasHeights_;
  bool hasEdges_;
  std::vector<Gathered> pixels_;
};

/// From the north-west, halfway up. Differences in doubles, the rest is finer than 255 steps of light in floats too.
std::uint32_t lightOf(const Vec3& a, const Vec3& b, const Vec3& c) {
  const auto ux = static_cast<float>(b.x - a.x);
  const auto uy = static_cast<float>(b.y - a.y);
  const auto uz = static_cast<float>(kSteeper * (b.z - a.z));
  const auto vx = static_cast<float>(c.x - a.x);
  const auto vy = static_cast<float>(c.y - a.y);
  const auto vz = static_cast<float>(kSteeper * (c.z - a.z));
  const float nx = uy * vz - uz * vy;
  const float ny = uz * vx - ux * vz;
  const float nz = ux * vy - uy * vx;
  const float square = nx * nx + ny * ny + nz * nz;
  // Beyond any map, floats end; such ground is as good as level.
  if (!(square > 0.0F) || !std::isfinite(square)) return static_cast<std::uint32_t>(255.0 * kLevelLight);
  const float light = (0.5F * (ny - nx) + static_cast<float>(kLevelLight) * nz) / std::sqrt(square);
  return static_cast<std::uint32_t>(255.0F * (light > 0.0F ? light : 0.0F) + 0.5F);
}

std::int64_t clampedTile(double number) {
  return static_cast<std::int64_t>(std::clamp(std::floor(number), -kMostExact, kMostExact));
}

}  // namespace

std::uint32_t heightColour(double part, bool isDark) { return packed(rampColour(part, isDark)); }

SurfaceTiles::SurfaceTiles(const TinSurface& surface, const std::function<bool(double)>& progress)
    : surface_(&surface), groundCount_(surface.counts().triangles - surface.counts().degenerate) {
  if (surface.isEmpty()) return;
  const Box box = surface.box();
  // A whole number, so that coordinates lose nothing when it is taken from them.
  origin_ = {std::floor(box.minX), std::ceil(box.maxY)};
  extent_ = std::max(box.maxX - origin_.x, origin_.y - box.minY);

  const std::span<const Vec3> points = surface.points();
  const std::span<const Triangle> triangles = surface.triangles();
  const auto point = [&](std::int32_t number) -> const Vec3& { return points[static_cast<std::size_t>(number)]; };
  constexpr std::size_t kTold = kRun * 1024;
  blocks_ = BoxTree(groundCount_, kRun, [&](std::size_t first, std::size_t end) {
    if (progress && first % kTold == 0 && !progress(static_cast<double>(first) / static_cast<double>(groundCount_)))
      throw Cancelled();
    Box run;
    for (std::size_t i = first; i < end; ++i)
      for (const std::int32_t corner : {triangles[i].a, triangles[i].b, triangles[i].c}) {
        const Vec3& p = point(corner);
        run.minX = std::min(run.minX, p.x);
        run.minY = std::min(run.minY, p.y);
        run.maxX = std::max(run.maxX, p.x);
        run.maxY = std::max(run.maxY, p.y);
      }
    return run;
  });

  // One spike to elevation 0 would leave the rest of the ground a single colour.
  constexpr std::size_t kSamples = 50'000;
  std::vector<double> elevations;
  const std::size_t stride = std::max<std::size_t>(1, groundCount_ / kSamples);
  for (std::size_t i = 0; i < groundCount_; i += stride)
    for (const std::int32_t corner : {triangles[i].a, triangles[i].b, triangles[i].c})
      elevations.push_back(point(corner).z);
  const auto at = [&](std::size_t place) {
    const auto nth = elevations.begin() + static_cast<std::ptrdiff_t>(place);
    std::nth_element(elevations.begin(), nth, elevations.end());
    return *nth;
  };
  const std::size_t outliers = elevations.size() / 200;
  low_ = at(outliers);
  high_ = at(elevations.size() - 1 - outliers);
}

int SurfaceTiles::levelFor(double scale) {
  if (!(scale > 0.0)) return kLeastLevel;
  const double level = std::ceil(std::log2(scale) - 1e-9);
  return static_cast<int>(std::clamp(level, double{kLeastLevel}, double{kMostLevel}));
}

double SurfaceTiles::scaleOf(int level) { return std::ldexp(1.0, std::clamp(level, kLeastLevel, kMostLevel)); }

TileRange SurfaceTiles::tilesIn(const Box& visible, int level) const {
  const Box all = surface_->box();
  if (groundCount_ == 0 || visible.isEmpty() || !meet(all, visible)) return {};
  const double perTile = scaleOf(level) / Tile::kSize;
  return {clampedTile((std::max(all.minX, visible.minX) - origin_.x) * perTile),
          clampedTile((origin_.y - std::min(all.maxY, visible.maxY)) * perTile),
          clampedTile((std::min(all.maxX, visible.maxX) - origin_.x) * perTile),
          clampedTile((origin_.y - std::max(all.minY, visible.minY)) * perTile)};
}

Box SurfaceTiles::boxOf(const TileAddress& address) const {
  const double size = Tile::kSize / scaleOf(address.level);
  const double left = origin_.x + static_cast<double>(address.column) * size;
  const double top = origin_.y - static_cast<double>(address.row) * size;
  return {left, top - size, left + size, top};
}

std::shared_ptr<const Tile> SurfaceTiles::render(const TileAddress& address, const SurfaceLook& look,
                                                 const CancelFlag* cancel) const {
  auto tile = std::make_shared<Tile>();
  const PixelArea area{scaleOf(address.level), address.column * Tile::kSize, address.row * Tile::kSize, Tile::kSize,
                       Tile::kSize};
  if (!meet(boxOf(address), surface_->box())) return tile;
  tile->pixels.resize(std::size_t{Tile::kSize} * Tile::kSize);
  bool hasGround = false;
  if (!render(area, look, tile->pixels.data(), hasGround, cancel)) return nullptr;
  if (!hasGround) tile->pixels = {};
  return tile;
}

bool SurfaceTiles::render(const PixelArea& area, const SurfaceLook& look, std::uint32_t* pixels,
                          const CancelFlag* cancel) const {
  bool hasGround = false;
  return render(area, look, pixels, hasGround, cancel);
}

bool SurfaceTiles::render(const PixelArea& area, const SurfaceLook& look, std::uint32_t* pixels, bool& hasGround,
                          const CancelFlag* cancel) const {
  hasGround = false;
  if (area.width <= 0 || area.height <= 0) return true;
  if (!(area.scale > 0.0) || groundCount_ == 0) {
    std::fill_n(pixels, static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height), 0U);
    return true;
  }
  Raster raster(area, look);
  const std::span<const Vec3> points = surface_->points();
  const std::span<const Triangle> triangles = surface_->triangles();
  const double perUnit = area.scale * static_cast<double>(kSub);
  const bool isExact = extent_ * perUnit < kMostExact;
  const double left = static_cast<double>(area.left) * static_cast<double>(kSub);
  const double top = static_cast<double>(area.top) * static_cast<double>(kSub);
  const double perHeight = high_ > low_ ? 255.0 / (high_ - low_) : 0.0;
  // To the same 256th of a pixel for every area: first rounded, then moved.
  const auto across = [&](double x) {
    const double distance = (x - origin_.x) * perUnit;
    return (isExact ? static_cast<double>(static_cast<std::int64_t>(distance + 0.5)) : distance) - left;
  };
  const auto down = [&](double y) {
    const double distance = (origin_.y - y) * perUnit;
    return (isExact ? static_cast<double>(static_cast<std::int64_t>(distance + 0.5)) : distance) - top;
  };

  const bool hasHeights = look.style == SurfaceStyle::Heights;
  const auto height = [&](double z) { return std::clamp((z - low_) * perHeight, 0.0, 255.0); };

  const double pixel = 1.0 / area.scale;
  const Box visible{origin_.x + (static_cast<double>(area.left) - 1.0) * pixel,
                    origin_.y - (static_cast<double>(area.top) + area.height + 1.0) * pixel,
                    origin_.x + (static_cast<double>(area.left) + area.width + 1.0) * pixel,
                    origin_.y - (static_cast<double>(area.top) - 1.0) * pixel};
  bool isCancelled = false;
  blocks_.visit(visible, [&](std::size_t first, std::size_t end, bool) {
    isCancelled = cancel && cancel->load(std::memory_order_relaxed);
    if (isCancelled) return false;
    for (std::size_t i = first; i < end; ++i) {
      // Clockwise as seen, pixels count downwards.
      const Vec3& a = points[static_cast<std::size_t>(triangles[i].a)];
      const Vec3& b = points[static_cast<std::size_t>(triangles[i].c)];
      const Vec3& c = points[static_cast<std::size_t>(triangles[i].b)];
      if (most(a.x, b.x, c.x) < visible.minX || least(a.x, b.x, c.x) > visible.maxX ||
          most(a.y, b.y, c.y) < visible.minY || least(a.y, b.y, c.y) > visible.maxY)
        continue;
      Face face{{across(a.x), across(b.x), across(c.x)}, {down(a.y), down(b.y), down(c.y)}, {}, lightOf(a, c, b), 0};
      if (hasHeights) {
        face.height = {height(a.z), height(b.z), height(c.z)};
        face.meanHeight = static_cast<std::uint32_t>((face.height[0] + face.height[1] + face.height[2]) / 3.0 + 0.5);
      }
      raster.add(face);
    }
    return true;
  });
  if (isCancelled) return false;
  hasGround = raster.finish(look, pixels);
  return true;
}

std::size_t SurfaceTiles::bytes() const { return sizeof(*this) + blocks_.bytes(); }

// ---------------------------------------------------------------- cache

std::size_t TileCache::Hash::operator()(const TileKey& key) const {
  std::uint64_t hash = 14695981039346656037ULL;
  const auto mix = [&](std::uint64_t value) { hash = (hash ^ value ^ (hash >> 29)) * 1099511628211ULL; };
  mix(key.surface);
  mix(static_cast<std::uint64_t>(static_cast<std::int64_t>(key.address.level)));
  mix(static_cast<std::uint64_t>(key.address.column));
  mix(static_cast<std::uint64_t>(key.address.row));
  mix(static_cast<std::uint64_t>(key.look.style) << 2 | (key.look.hasTriangles ? 2U : 0U) |
      (key.look.isDark ? 1U : 0U));
  return static_cast<std::size_t>(hash ^ hash >> 32);
}

std::shared_ptr<const Tile> TileCache::findLocked(const TileKey& key) {
  const auto place = places_.find(key);
  if (place == places_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, place->second);
  return place->second->tile;
}

std::shared_ptr<const Tile> TileCache::find(const TileKey& key) {
  const std::lock_guard lock(mutex_);
  return findLocked(key);
}

std::optional<CoarserTile> TileCache::findCoarser(const TileKey& key, int levels) {
  const std::lock_guard lock(mutex_);
  TileKey coarser = key;
  for (int above = 1; above <= std::min(levels, 8); ++above) {
    --coarser.address.level;
    // Shifted rather than divided: rounds down on both sides of 0.
    coarser.address.column = key.address.column >> above;
    coarser.address.row = key.address.row >> above;
    if (auto tile = findLocked(coarser)) {
      const double size = std::ldexp(Tile::kSize, -above);
      const auto within = [&](std::int64_t number, std::int64_t parent) {
        return static_cast<double>(number - (parent << above)) * size;
      };
      return CoarserTile{std::move(tile), within(key.address.column, coarser.address.column),
                         within(key.address.row, coarser.address.row), size};
    }
  }
  return std::nullopt;
}

void TileCache::insert(const TileKey& key, std::shared_ptr<const Tile> tile) {
  if (!tile) return;
  const std::lock_guard lock(mutex_);
  if (const auto place = places_.find(key); place != places_.end()) {
    bytes_ -= place->second->tile->bytes();
    entries_.erase(place->second);
    places_.erase(place);
  }
  bytes_ += tile->bytes();
  entries_.push_front({key, std::move(tile)});
  places_.emplace(key, entries_.begin());
  while (bytes_ > limit_ && entries_.size() > 1) {
    bytes_ -= entries_.back().tile->bytes();
    places_.erase(entries_.back().key);
    entries_.pop_back();
  }
}

void TileCache::clear() {
  const std::lock_guard lock(mutex_);
  places_.clear();
  entries_.clear();
  bytes_ = 0;
}

std::size_t TileCache::bytes() const {
  const std::lock_guard lock(mutex_);
  return bytes_;
}

std::size_t TileCache::count() const {
  const std::lock_guard lock(mutex_);
  return entries_.size();
}

}  // namespace lvx::view
