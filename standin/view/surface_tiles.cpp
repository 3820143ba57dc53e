#include "view/surface_tiles.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "view/detail/ground_colours.h"
#include "view/detail/ground_raster.h"

namespace lvx::view {

using civil::Box;
using civil::TinSurface;
using civil::Triangle;
using civil::Vec2;
using civil::Vec3;
using detail::kSub;
using detail::least;
using detail::most;

namespace {

/// Triangles that share a box.
constexpr std::size_t kRun = 256;
/// Beyond this a coordinate is no longer exact in 256ths of a pixel.
constexpr double kMostExact = 0x1p52;
/// Heights look twice as steep as they are: road ground is too gentle to be seen otherwise.
constexpr double kSteeper = 2.0;

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
  if (!(square > 0.0F) || !std::isfinite(square)) return static_cast<std::uint32_t>(255.0 * detail::kLevelLight);
  const float light = (0.5F * (ny - nx) + static_cast<float>(detail::kLevelLight) * nz) / std::sqrt(square);
  return detail::rounded(255.0F * (light > 0.0F ? light : 0.0F));
}

/// Where the drawing lies in an area, in 256ths of a pixel from its upper left corner: whole numbers, the same for every
/// area, unless the surface is too large for its scale.
class AreaPlace {
 public:
  /// `extent`: from the origin to the farthest coordinate.
  AreaPlace(const PixelArea& area, Vec2 origin, double extent)
      : origin_(origin),
        perUnit_(area.scale * static_cast<double>(kSub)),
        isExact_(extent * perUnit_ < kMostExact),
        left_(static_cast<double>(area.left) * static_cast<double>(kSub)),
        top_(static_cast<double>(area.top) * static_cast<double>(kSub)) {
    const double pixel = 1.0 / area.scale;
    visible = {origin.x + (static_cast<double>(area.left) - 1.0) * pixel,
               origin.y - (static_cast<double>(area.top) + area.height + 1.0) * pixel,
               origin.x + (static_cast<double>(area.left) + area.width + 1.0) * pixel,
               origin.y - (static_cast<double>(area.top) - 1.0) * pixel};
  }

  [[nodiscard]] double across(double x) const { return rounded((x - origin_.x) * perUnit_) - left_; }
  [[nodiscard]] double down(double y) const { return rounded((origin_.y - y) * perUnit_) - top_; }

  /// The area's part of the drawing, with a pixel around it.
  Box visible;

 private:
  /// To the same 256th of a pixel for every area: first rounded, then moved.
  [[nodiscard]] double rounded(double distance) const {
    const double halfUp = distance + 0.5;
    return isExact_ ? static_cast<double>(static_cast<std::int64_t>(halfUp)) : distance;
  }

  Vec2 origin_;
  double perUnit_;
  bool isExact_;
  double left_;
  double top_;
};

std::int64_t clampedTile(double number) {
  return static_cast<std::int64_t>(std::clamp(std::floor(number), -kMostExact, kMostExact));
}

}  // namespace

std::uint32_t heightColour(double part, bool isDark) { return detail::heightColour(part, isDark); }

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
  findHeightRange();
}

void SurfaceTiles::findHeightRange() {
  const std::span<const Vec3> points = surface_->points();
  const std::span<const Triangle> triangles = surface_->triangles();
  // One spike to elevation 0 would leave the rest of the ground a single colour.
  constexpr std::size_t kSamples = 50'000;
  std::vector<double> elevations;
  const std::size_t stride = std::max<std::size_t>(1, groundCount_ / kSamples);
  for (std::size_t i = 0; i < groundCount_; i += stride)
    for (const std::int32_t corner : {triangles[i].a, triangles[i].b, triangles[i].c})
      elevations.push_back(points[static_cast<std::size_t>(corner)].z);
  const auto at = [&](std::size_t place) {
    const auto nth = elevations.begin() + static_cast<std::ptrdiff_t>(place);
    std::nth_element(elevations.begin(), nth, elevations.end());
    return *nth;
  };
  double area = 0.0;
  double rise = 0.0;
  for (std::size_t i = 0; i < groundCount_; i += stride) {
    const auto corner = [&](std::int32_t index) { return points[static_cast<std::size_t>(index)]; };
    const Vec3 a = corner(triangles[i].a);
    const Vec3 b = corner(triangles[i].b);
    const Vec3 c = corner(triangles[i].c);
    const double nx = (b.y - a.y) * (c.z - a.z) - (b.z - a.z) * (c.y - a.y);
    const double ny = (b.z - a.z) * (c.x - a.x) - (b.x - a.x) * (c.z - a.z);
    const double nz = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    if (!std::isfinite(nx * nx + ny * ny) || !std::isfinite(nz)) continue;
    area += std::abs(nz);
    rise += std::hypot(nx, ny);
  }
  if (area > 0.0) meanSlope_ = rise / area;
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
  if (look.style == SurfaceStyle::Bare || !meet(boxOf(address), surface_->box())) return tile;
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
  detail::Raster raster(area, look);
  if (!fill(raster, area, look, cancel)) return false;
  hasGround = raster.finish(look, pixels);
  return true;
}

bool SurfaceTiles::fill(detail::Raster& raster, const PixelArea& area, const SurfaceLook& look,
                        const CancelFlag* cancel) const {
  const std::span<const Vec3> points = surface_->points();
  const std::span<const Triangle> triangles = surface_->triangles();
  const AreaPlace place(area, origin_, extent_);
  const bool hasHeights = look.style == SurfaceStyle::Heights;
  const double perHeight = high_ > low_ ? 255.0 / (high_ - low_) : 0.0;
  const auto height = [&](double z) { return std::clamp((z - low_) * perHeight, 0.0, 255.0); };

  const Box& visible = place.visible;
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
      detail::Face face{{place.across(a.x), place.across(b.x), place.across(c.x)},
                        {place.down(a.y), place.down(b.y), place.down(c.y)},
                        {},
                        lightOf(a, c, b),
                        0};
      if (hasHeights) {
        face.height = {height(a.z), height(b.z), height(c.z)};
        face.meanHeight = detail::rounded((face.height[0] + face.height[1] + face.height[2]) / 3.0);
      }
      raster.add(face);
    }
    return true;
  });
  return !isCancelled;
}

double SurfaceTiles::contourInterval(double scale) const {
  constexpr double kApart = 16.0;
  constexpr double kLeast = 0.01;
  constexpr double kMost = 1e9;
  const double least = kApart * meanSlope_ / scale;
  return std::isfinite(least) ? roundInterval(std::clamp(least, kLeast, kMost)) : kMost;
}

std::vector<Contour> SurfaceTiles::contours(const Box& box, ContourPlan plan, const CancelFlag* cancel) const {
  if (!(plan.interval > 0.0) || groundCount_ == 0 || box.isEmpty()) return {};
  // Some 200 MB of pieces; a picture has fewer pixels.
  constexpr std::size_t kMostPieces = 8'000'000;
  constexpr double kCoarser = 10.0;
  const std::span<const Vec3> points = surface_->points();
  const std::span<const Triangle> triangles = surface_->triangles();
  for (;; plan.interval *= kCoarser) {
    ContourGatherer gatherer(points, plan);
    bool isCancelled = false;
    bool isTooMuch = false;
    blocks_.visit(box, [&](std::size_t first, std::size_t end, bool isInside) {
      isCancelled = cancel && cancel->load(std::memory_order_relaxed);
      if (isCancelled) return false;
      for (std::size_t i = first; i < end && !isTooMuch; ++i) {
        const auto corner = [&](std::int32_t index) -> const Vec3& { return points[static_cast<std::size_t>(index)]; };
        const Vec3& a = corner(triangles[i].a);
        const Vec3& b = corner(triangles[i].b);
        const Vec3& c = corner(triangles[i].c);
        if (!isInside && (most(a.x, b.x, c.x) < box.minX || least(a.x, b.x, c.x) > box.maxX ||
                          most(a.y, b.y, c.y) < box.minY || least(a.y, b.y, c.y) > box.maxY))
          continue;
        gatherer.add(triangles[i]);
        isTooMuch = gatherer.pieceCount() > kMostPieces;
      }
      return !isTooMuch;
    });
    if (isCancelled) return {};
    if (!isTooMuch) return gatherer.take();
  }
}

std::size_t SurfaceTiles::bytes() const { return sizeof(*this) + blocks_.bytes(); }

}  // namespace lvx::view
