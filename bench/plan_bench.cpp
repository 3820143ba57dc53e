// The plan of a drawing: how long it takes to prepare, what it weighs, and how fast its surface is drawn in tiles.
//
//   bench_plan                                        1 and 5 million triangles of its own
//   bench_plan triangles=200000 points=100000 pictures=FOLDER
//
// Tiles are checked against one large picture before anything is timed. `pictures` keeps the frames as PPM files. Prints
// a table for each size; all times are processor time of one thread.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "generator/scaled_drawing.h"
#include "landxml/reader.h"
#include "measuring.h"
#include "view/plan_scene.h"
#include "view/tile_cache.h"
#include "view/viewport.h"

namespace {

using lvx::civil::Box;
using lvx::civil::Drawing;
using lvx::civil::TinSurface;
using lvx::civil::Triangle;
using lvx::civil::Vec2;
using lvx::civil::Vec3;
using namespace lvx::view;

/// Processor time: one thread draws, and other programs on the machine shouldn't count.
class Clock {
 public:
  [[nodiscard]] double milliseconds() const {
    return 1000.0 * static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC;
  }

 private:
  std::clock_t start_ = std::clock();
};

/// Hills that fill a window: points on a jittered grid of 3 metres.
TinSurface hills(std::size_t triangles) {
  std::mt19937_64 random(5);
  const auto noise = [&] { return static_cast<double>(random() >> 11) * 0x1p-53 - 0.5; };
  constexpr double kCell = 3.0;
  const auto rows = static_cast<std::size_t>(std::sqrt(static_cast<double>(triangles) / 2.0 / 1.6));
  const std::size_t columns = triangles / 2 / std::max<std::size_t>(rows, 1);
  std::vector<Vec3> points;
  std::vector<Triangle> faces;
  for (std::size_t r = 0; r <= rows; ++r)
    for (std::size_t c = 0; c <= columns; ++c) {
      const double x = kCell * (static_cast<double>(c) + 0.7 * noise());
      const double y = kCell * (static_cast<double>(r) + 0.7 * noise());
      const double height = 60 * std::sin(x / 610) * std::cos(y / 430) + 12 * std::sin(x / 130 + y / 170) +
                            3 * std::sin(x / 31) * std::sin(y / 27) + 0.2 * noise();
      points.push_back({2'600'000 + x, 1'200'000 + y, 430 + height});
    }
  for (std::size_t r = 0; r < rows; ++r)
    for (std::size_t c = 0; c < columns; ++c) {
      const auto a = static_cast<std::int32_t>(r * (columns + 1) + c);
      const auto d = static_cast<std::int32_t>(a + static_cast<std::int32_t>(columns) + 1);
      faces.push_back({a, a + 1, d + 1});
      faces.push_back({a, d + 1, d});
    }
  return {std::move(points), std::move(faces)};
}

/// A road with all that lies along it, and the hills as its last surface.
Drawing drawingOf(std::size_t triangles, std::uint32_t points) {
  lvx::generator::TextOutput text;
  lvx::generator::DrawingSize size;
  size.points = points;
  size.elements = 300;
  size.sampleLines = 700;
  size.corridorSections = 1000;
  writeScaledDrawing(text, size);
  Drawing drawing = lvx::landxml::readDrawingText(text.text(), "bench");
  drawing.surfaces.push_back({~lvx::civil::Handle{}, "Hills", "", hills(triangles)});
  return drawing;
}

/// As the window does it: tiles are enlarged by a sixth at most.
int levelOf(const Viewport& port) { return SurfaceTiles::levelFor(0.84 * port.scale()); }

/// A window's worth of tiles, drawn one after the other as the render thread of a window does.
struct Frame {
  int width = 1600;
  int height = 1000;
  Viewport port{width, height};
};

struct Drawn {
  double milliseconds = 0.0;
  std::size_t tiles = 0;
  double slowest = 0.0;
};

Drawn drawTiles(const SurfaceTiles& tiles, const Frame& frame, const SurfaceLook& look, TileCache* cache) {
  Drawn drawn;
  const int level = levelOf(frame.port);
  const TileRange range = tiles.tilesIn(frame.port.visible(), level);
  const Clock start;
  for (std::int64_t row = range.top; row <= range.bottom; ++row)
    for (std::int64_t column = range.left; column <= range.right; ++column) {
      const Clock tileStart;
      const TileAddress address{level, column, row};
      const auto tile = tiles.render(address, look);
      if (cache) cache->insert({0, address, look}, tile);
      drawn.slowest = std::max(drawn.slowest, tileStart.milliseconds());
      ++drawn.tiles;
    }
  drawn.milliseconds = start.milliseconds();
  return drawn;
}

void checkTiles(const SurfaceTiles& tiles, const Frame& frame, const SurfaceLook& look) {
  const int level = levelOf(frame.port);
  const TileRange range = tiles.tilesIn(frame.port.visible(), level);
  const PixelArea area{SurfaceTiles::scaleOf(level), range.left * Tile::kSize, range.top * Tile::kSize,
                       static_cast<int>(range.right - range.left + 1) * Tile::kSize,
                       static_cast<int>(range.bottom - range.top + 1) * Tile::kSize};
  std::vector<std::uint32_t> picture(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height));
  tiles.render(area, look, picture.data());
  for (std::int64_t row = range.top; row <= range.bottom; ++row)
    for (std::int64_t column = range.left; column <= range.right; ++column) {
      const auto tile = tiles.render({level, column, row}, look);
      for (std::size_t y = 0; y < Tile::kSize; ++y)
        for (std::size_t x = 0; x < Tile::kSize; ++x) {
          const std::size_t at =
              (static_cast<std::size_t>(row - range.top) * Tile::kSize + y) * static_cast<std::size_t>(area.width) +
              static_cast<std::size_t>(column - range.left) * Tile::kSize + x;
          if ((tile->isEmpty() ? 0 : tile->pixels[y * Tile::kSize + x]) != picture[at])
            throw std::runtime_error("a tile differs from the whole picture");
        }
    }
}

void keepPicture(const SurfaceTiles& tiles, const Frame& frame, const SurfaceLook& look, const std::string& path) {
  const Box visible = frame.port.visible();
  const double scale = frame.port.scale();
  const PixelArea area{scale, std::llround((visible.minX - tiles.origin().x) * scale),
                       std::llround((tiles.origin().y - visible.maxY) * scale), frame.width, frame.height};
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height));
  tiles.render(area, look, pixels.data());
  std::ofstream out(path, std::ios::binary);
  out << "P6\n" << area.width << ' ' << area.height << "\n255\n";
  const std::uint32_t paper = look.isDark ? 0x1e1f22 : 0xffffff;
  for (std::uint32_t pixel : pixels) {
    if (pixel == 0) pixel = paper;
    out.put(static_cast<char>(pixel >> 16 & 0xff)).put(static_cast<char>(pixel >> 8 & 0xff));
    out.put(static_cast<char>(pixel & 0xff));
  }
  if (!out.flush()) throw std::runtime_error("can't write " + path);
}

void measure(std::size_t triangles, std::uint32_t points, const std::string& pictures) {
  const Drawing drawing = drawingOf(triangles, points);
  const Clock start;
  const PlanScene scene(drawing);
  const double built = start.milliseconds();
  const SurfaceShape& shown = scene.surfaces().back();
  const SurfaceTiles& tiles = *shown.tiles;
  const std::size_t count = drawing.surfaces.back().surface.counts().triangles;
  std::printf("\n%zu triangles, %zu points: scene in %.0f ms, %.2f MB (%.2f bytes a triangle for the surface)\n", count,
              drawing.points.size(), built, static_cast<double>(scene.bytes()) / 1e6,
              static_cast<double>(tiles.bytes() + shown.border.bytes()) / static_cast<double>(count));

  const Box box = shown.box;
  const Vec2 middle{0.5 * (box.minX + box.maxX), 0.5 * (box.minY + box.maxY)};
  std::printf("%-22s %10s %6s %10s %10s %10s %10s\n", "1600x1000 window", "px/unit", "tiles", "frame ms", "tile ms",
              "slowest", "ms, dark h.");
  Frame frame;
  frame.port.show(box);
  for (const int zoom : {1, 4, 16, 64, 256, 1024}) {
    Frame view = frame;
    view.port.setCentre(zoom == 1 ? frame.port.centre() : middle);
    view.port.setScale(frame.port.scale() * zoom);
    const SurfaceLook relief;
    const SurfaceLook heights{SurfaceStyle::Heights, true, true};
    checkTiles(tiles, view, heights);
    // The best of a few: a machine does other things too.
    Drawn best = drawTiles(tiles, view, relief, nullptr);
    double bestHeights = drawTiles(tiles, view, heights, nullptr).milliseconds;
    for (int run = 0; run < 4; ++run) {
      const Drawn drawn = drawTiles(tiles, view, relief, nullptr);
      if (drawn.milliseconds < best.milliseconds) best = drawn;
      bestHeights = std::min(bestHeights, drawTiles(tiles, view, heights, nullptr).milliseconds);
    }
    std::printf("%-22s %10.3g %6zu %10.1f %10.2f %10.2f %10.1f\n",
                zoom == 1 ? "whole" : ("whole x " + std::to_string(zoom)).c_str(), view.port.scale(), best.tiles,
                best.milliseconds, best.milliseconds / static_cast<double>(std::max<std::size_t>(best.tiles, 1)),
                best.slowest, bestHeights);
    if (!pictures.empty()) {
      const std::string name = pictures + "/plan-" + std::to_string(triangles) + "-x" + std::to_string(zoom);
      keepPicture(tiles, view, relief, name + "-relief.ppm");
      keepPicture(tiles, view, heights, name + "-heights-dark.ppm");
      keepPicture(tiles, view, {SurfaceStyle::Heights, true, false}, name + "-heights.ppm");
      keepPicture(tiles, view, {SurfaceStyle::Relief, true, true}, name + "-relief-dark.ppm");
    }
  }

  // What a moving window asks for without drawing: cached tiles, lines, ticks, points, the object under the mouse.
  TileCache cache;
  drawTiles(tiles, frame, {}, &cache);
  const Clock lookUp;
  std::size_t found = 0;
  constexpr int kFrames = 100;
  const int level = levelOf(frame.port);
  for (int i = 0; i < kFrames; ++i) {
    const TileRange range = tiles.tilesIn(frame.port.visible(), level);
    for (std::int64_t row = range.top; row <= range.bottom; ++row)
      for (std::int64_t column = range.left; column <= range.right; ++column)
        found += cache.find({0, {level, column, row}, {}}) ? 1U : 0U;
  }
  const double found1 = lookUp.milliseconds() / kFrames;
  frame.port.show(scene.surfaces()[0].box);
  const double tolerance = 0.25 / frame.port.scale();
  const Clock lines;
  std::size_t vertices = 0;
  for (int i = 0; i < kFrames; ++i) {
    const Box visible = frame.port.visible();
    for (const SurfaceShape& shape : scene.surfaces())
      for (const Line& line : shape.border.lines(visible, tolerance)) vertices += line.size();
    for (const CorridorShape& shape : scene.corridors())
      for (const Line& line : shape.edges.lines(visible, tolerance)) vertices += line.size();
    for (const AlignmentShape& shape : scene.alignments()) {
      for (const Line& line : polylines(shape.object->geometry, visible, tolerance)) vertices += line.size();
      vertices += ticks(shape.object->geometry, visible, frame.port.scale()).size();
    }
  }
  const double lines1 = lines.milliseconds() / kFrames;
  const Clock chosen;
  std::size_t given = 0;
  for (int i = 0; i < kFrames; ++i) given += scene.visiblePoints(frame.port.visible(), 3000).points.size();
  const double points1 = chosen.milliseconds() / kFrames;
  const Clock hits;
  std::size_t hit = 0;
  for (int i = 0; i < kFrames; ++i)
    hit += scene.hit(frame.port.toDrawing({i * 16.0, 500.0 + i % 7 * 20.0}), 6 / frame.port.scale()) ? 1U : 0U;
  const double hits1 = hits.milliseconds() / kFrames;
  std::printf(
      "whole view of the road, per frame: %zu cached tiles %.3f ms, lines and ticks %.3f ms (%zu vertices), %zu of %zu "
      "points "
      "%.3f ms, a hit %.3f ms (%zu of %d)\n",
      found / kFrames, found1, lines1, vertices / kFrames, given / kFrames, drawing.points.size(), points1, hits1, hit,
      kFrames);
}

}  // namespace

int main(int argc, char** argv) try {
  constexpr const char* kUsage = "bench_plan [triangles=N] [points=N] [pictures=FOLDER]";
  constexpr std::string_view kPictures = "pictures=";
  int triangles = 0;
  int points = 1'000'000;
  std::string pictures;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    triangles = lvx::bench::valueOf(argument, "triangles=", triangles, kUsage);
    points = lvx::bench::valueOf(argument, "points=", points, kUsage);
    if (argument.starts_with(kPictures)) pictures = argument.substr(kPictures.size());
  }
  lvx::bench::printMachine();
  for (const int size : {1'000'000, 5'000'000})
    if (triangles == 0 || size == 1'000'000)
      measure(static_cast<std::size_t>(triangles == 0 ? size : triangles), static_cast<std::uint32_t>(points),
              pictures);
  return EXIT_SUCCESS;
} catch (const std::exception& error) {
  std::fprintf(stderr, "bench_plan: %s\n", error.what());
  return EXIT_FAILURE;
}
