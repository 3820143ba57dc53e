#include "desktop/plan/plan_painter.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <unordered_set>

#include "desktop/common/qt_text.h"
#include "desktop/plan/plan_furniture.h"
#include "view/alignment_shape.h"
#include "view/lines.h"

namespace lvx::desktop {

using civil::Box;
using civil::Handle;
using civil::ObjectKind;
using civil::Vec2;
using view::SurfaceTiles;
using view::TileKey;
using view::Viewport;

namespace {

/// Lines may be off by this much.
constexpr double kLineTolerance = 0.2;
/// Borders are ragged and long: more than this nobody sees of them.
constexpr double kBorderTolerance = 0.6;
/// Points that are drawn at most, and up to how many they have numbers.
constexpr std::size_t kMostPoints = 8'000;
constexpr std::size_t kMostPointLabels = 3'000;
/// Points share cells of this size where there is no room for crosses and numbers: so many to a cell and they become
/// dots, so many and they are crosses again; between them they stay as they were, so that nothing flickers.
constexpr double kCrowdCell = 18.0;
constexpr double kCrowdBegins = 1.7;
constexpr double kCrowdEnds = 1.4;
/// A selection larger than this is looked up among the points that show, not one by one.
constexpr std::size_t kManySelected = 2'000;
/// Tiles are enlarged by a sixth at most, which nobody sees, rather than drawn at up to four times the pixels.
constexpr double kTileSlack = 0.84;
/// Seen from farther away, roads lie too near one another for halos around their edges.
constexpr double kLeastHaloScale = 0.5;
constexpr double kMinorTick = 4.0;
constexpr double kMajorTick = 8.0;
constexpr double kLeastNamedLine = 36.0;
/// New labels a frame, about ten milliseconds.
constexpr int kFreshLabels = 60;
/// Pixels between repetitions of an alignment's name.
constexpr double kNameDistance = 600.0;

QPointF point(Vec2 place) { return {place.x, place.y}; }

double degreesOf(QPointF direction) {
  double degrees = std::atan2(direction.y(), direction.x()) * 180.0 / std::numbers::pi;
  // Readable from below or from the right, as texts of plans are; a row of nearly upright ones doesn't turn about midway.
  constexpr double kUpright = 75.0;
  if (degrees >= kUpright) degrees -= 180.0;
  if (degrees < kUpright - 180.0) degrees += 180.0;
  return degrees;
}

QFont labelFont(const QFont& base, double factor, bool bold = false) {
  QFont font = base;
  font.setPixelSize(std::max(8, static_cast<int>(std::lround(QFontInfo(base).pixelSize() * factor))));
  font.setBold(bold);
  // Turned letters can't be fitted to pixels; and fitted ones would be as wide as whoever asked first happened to see.
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

void drawLines(QPainter& painter, const Viewport& viewport, const view::Lines& lines) {
  QPolygonF pixels;
  for (const view::Line& line : lines) {
    pixels.clear();
    pixels.reserve(static_cast<qsizetype>(line.size()));
    for (const Vec2 vertex : line) pixels.push_back(point(viewport.toPixels(vertex)));
    painter.drawPolyline(pixels);
  }
}

Box seen(const Viewport& viewport) { return view::grown(viewport.visible(), 24.0 / viewport.scale()); }

/// What shows of lines that are kept in pieces, whose rest may lie far outside, where the painter would stroke it in vain.
view::Lines shown(const view::LineSet& lines, const Box& visible, double tolerance) {
  return view::clipped(lines.lines(visible, tolerance), visible);
}

QPen roundPen(const QColor& colour, double width) {
  return {colour, width, Qt::SolidLine, Qt::RoundCap, width > 3.0 ? Qt::RoundJoin : Qt::BevelJoin};
}

QColor withAlpha(QColor colour, int alpha) {
  colour.setAlpha(alpha);
  return colour;
}

/// A small mark, drawn once and stamped on whole device pixels.
class Stamp {
 public:
  template <class Draw>
  Stamp(double size, double ratio, Draw draw) : ratio_(ratio) {
    const int pixels = static_cast<int>(std::ceil(size * ratio)) | 1;
    image_ = QImage(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image_.setDevicePixelRatio(ratio);
    image_.fill(Qt::transparent);
    QPainter painter(&image_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(pixels / ratio / 2, pixels / ratio / 2);
    draw(painter);
  }
  void at(QPainter& painter, QPointF place) const {
    const QPointF corner = place * ratio_ - QPointF(image_.width(), image_.height()) / 2;
    painter.drawImage(QPointF(std::round(corner.x()), std::round(corner.y())) / ratio_, image_);
  }

 private:
  double ratio_;
  QImage image_;
};

void paintTile(QPainter& painter, const QRectF& target, const view::Tile& tile, const QRectF& source) {
  if (tile.isEmpty()) return;
  const QImage image(reinterpret_cast<const uchar*>(tile.pixels.data()), view::Tile::kSize, view::Tile::kSize,
                     view::Tile::kSize * 4, QImage::Format_ARGB32_Premultiplied);
  painter.drawImage(target, image, source);
}

/// Small numbers for indices that stay when every other one has to go, as the fourth, the eighth, ...
int rankOf(std::size_t index) { return index == 0 ? -64 : -std::countr_zero(index); }

}  // namespace

// ---------------------------------------------------------------- a frame

void PlanPainter::clear() {
  text_.clear();
  places_.clear();
  known_ = nullptr;
}

void PlanPainter::find(const view::PlanScene& scene) {
  if (known_ == &scene) return;
  places_.clear();
  known_ = &scene;
  const auto add = [this](ObjectKind kind, Handle handle, std::size_t index) {
    places_.emplace(handle, Place{.kind = kind, .index = index});
  };
  for (std::size_t index = 0; index < scene.alignments().size(); ++index)
    add(ObjectKind::Alignment, scene.alignments()[index].object->handle, index);
  for (std::size_t index = 0; index < scene.sampleLines().size(); ++index)
    add(ObjectKind::SampleLine, scene.sampleLines()[index].line->handle, index);
  for (std::size_t index = 0; index < scene.surfaces().size(); ++index)
    add(ObjectKind::Surface, scene.surfaces()[index].object->handle, index);
  for (std::size_t index = 0; index < scene.corridors().size(); ++index)
    add(ObjectKind::Corridor, scene.corridors()[index].object->handle, index);
}

PlanPainter::Result PlanPainter::paint(QPainter& painter, const Frame& frame, view::TileCache& cache, Tiles tiles) {
  find(frame.scene);
  const PlanColours& colours = planColours(frame.look.dark);
  const QRectF area(0, 0, frame.viewport.width(), frame.viewport.height());
  painter.fillRect(area, colours.ground);

  Result result;
  if (frame.look.surface != SurfaceLook::None) paintTiles(painter, frame, cache, tiles, result);
  painter.setRenderHint(QPainter::Antialiasing);
  preparePoints(frame);
  // Dots by the thousand would hide the roads; crosses are few and belong on top.
  if (isCrowded_) paintPoints(painter, frame);
  paintLines(painter, frame);
  if (!isCrowded_) paintPoints(painter, frame);
  if (frame.selected != nullptr && frame.selected->size() > 0) paintSelected(painter, frame);

  std::optional<PlanFurniture::Heights> heights;
  if (frame.look.surface == SurfaceLook::Heights) {
    for (const view::SurfaceShape& shape : frame.scene.surfaces()) {
      if (shape.box.isEmpty() || !shape.tiles || !view::meet(shape.box, frame.viewport.visible())) continue;
      heights.emplace();
      heights->least = shape.tiles->lowElevation();
      heights->most = shape.tiles->highElevation();
      const double range = heights->most - heights->least;
      heights->colourOf = [low = heights->least, range, dark = frame.look.dark](double height) {
        return QColor::fromRgb(view::heightColour(range > 0.0 ? (height - low) / range : 0.5, dark));
      };
    }
  }
  const PlanFurniture furniture(area, frame.viewport.scale(), unitSign(frame.scene.drawing().linearUnit),
                                heights ? &*heights : nullptr, labelFont(frame.font, 0.85));
  text_.allowFresh(tiles == Tiles::AllNow ? std::numeric_limits<int>::max() : kFreshLabels);
  LabelPlacer placer(area);
  for (const QRectF& place : furniture.places()) placer.reserve(place);
  paintLabels(painter, frame, placer);
  furniture.paint(painter, colours);
  result.isUnfinished = text_.isWaiting();
  return result;
}

void PlanPainter::paintEmpty(QPainter& painter, const QRectF& area, const PlanLook& look, const QFont& font,
                             const QString& title, const QString& text) {
  constexpr double kLarge = 1.35;
  const PlanColours& colours = planColours(look.dark);
  painter.fillRect(area, colours.ground);
  QFont large = font;
  large.setPointSizeF(QFontInfo(font).pointSizeF() * kLarge);
  const double half = QFontMetricsF(large).height();
  painter.setFont(large);
  painter.setPen(colours.text);
  painter.drawText(QRectF(area.left(), area.center().y() - 2 * half, area.width(), 2 * half),
                   Qt::AlignCenter | Qt::TextWordWrap, title);
  painter.setFont(font);
  painter.setPen(colours.quietText);
  painter.drawText(QRectF(area.left(), area.center().y(), area.width(), 2 * half),
                   Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, text);
}

// ---------------------------------------------------------------- ground

void PlanPainter::paintTiles(QPainter& painter, const Frame& frame, view::TileCache& cache, Tiles tiles,
                             Result& result) {
  constexpr std::size_t kTileBytes = std::size_t{4} * view::Tile::kSize * view::Tile::kSize;
  constexpr double kSize = view::Tile::kSize;
  const double ratio = painter.device()->devicePixelRatioF();
  const Box visible = frame.viewport.visible();
  const int level = SurfaceTiles::levelFor(frame.viewport.scale() * ratio * kTileSlack);
  const view::SurfaceLook look{
      .style = frame.look.surface == SurfaceLook::Heights ? view::SurfaceStyle::Heights : view::SurfaceStyle::Relief,
      .hasTriangles = frame.look.triangles,
      .isDark = frame.look.dark};
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.setRenderHint(QPainter::Antialiasing, false);

  const auto targetOf = [&](const Box& box) {
    // Neighbours share their edges on whole device pixels: no seam, and nothing twice.
    const Vec2 from = frame.viewport.toPixels({box.minX, box.maxY});
    const Vec2 to = frame.viewport.toPixels({box.maxX, box.minY});
    const QPointF topLeft(std::round(from.x * ratio), std::round(from.y * ratio));
    const QPointF bottomRight(std::round(to.x * ratio), std::round(to.y * ratio));
    return QRectF(topLeft / ratio, bottomRight / ratio);
  };

  std::vector<TileKey> overview;
  std::vector<std::pair<double, TileKey>> missing;
  std::vector<TileKey> next;
  std::size_t held = 0;
  for (std::size_t index = 0; index < frame.scene.surfaces().size(); ++index) {
    const view::SurfaceShape& shape = frame.scene.surfaces()[index];
    if (!shape.tiles || shape.box.isEmpty() || !view::meet(shape.box, visible)) continue;
    const auto keyOf = [&](const view::TileAddress& address) {
      return TileKey{.surface = static_cast<std::uint32_t>(index), .address = address, .look = look};
    };
    const auto collect = [&](const Box& box, int atLevel, std::vector<TileKey>& into) {
      const view::TileRange range = shape.tiles->tilesIn(box, atLevel);
      for (std::int64_t row = range.top; row <= range.bottom; ++row)
        for (std::int64_t column = range.left; column <= range.right; ++column) {
          ++held;
          const TileKey key = keyOf({.level = atLevel, .column = column, .row = row});
          if (!cache.find(key)) into.push_back(key);
        }
    };

    const view::TileRange range = shape.tiles->tilesIn(visible, level);
    for (std::int64_t row = range.top; row <= range.bottom; ++row) {
      for (std::int64_t column = range.left; column <= range.right; ++column) {
        const TileKey key = keyOf({.level = level, .column = column, .row = row});
        const Box box = shape.tiles->boxOf(key.address);
        const QRectF target = targetOf(box);
        ++held;
        std::shared_ptr<const view::Tile> tile = cache.find(key);
        if (!tile && tiles == Tiles::AllNow) {
          tile = shape.tiles->render(key.address, look);
          cache.insert(key, tile);
        }
        if (tile) {
          paintTile(painter, target, *tile, QRectF(0, 0, kSize, kSize));
          continue;
        }
        const QPointF middle(frame.viewport.width() / 2.0, frame.viewport.height() / 2.0);
        missing.emplace_back((target.center() - middle).manhattanLength(), key);
        // Finer ones where all four are there, as after zooming out; else the best that is coarser, and over it what
        // there is of the finer.
        std::array<std::shared_ptr<const view::Tile>, 4> finer;
        for (std::size_t part = 0; part < finer.size(); ++part)
          finer[part] = cache.find(keyOf({.level = level + 1,
                                          .column = 2 * column + static_cast<std::int64_t>(part % 2),
                                          .row = 2 * row + static_cast<std::int64_t>(part / 2)}));
        if (std::find(finer.begin(), finer.end(), nullptr) != finer.end())
          if (const auto coarser = cache.findCoarser(key, SurfaceTiles::kMostLevel - SurfaceTiles::kLeastLevel))
            paintTile(painter, target, *coarser->tile,
                      QRectF(coarser->left, coarser->top, coarser->size, coarser->size));
        for (std::size_t part = 0; part < finer.size(); ++part)
          if (finer[part])
            paintTile(painter,
                      targetOf(shape.tiles->boxOf({.level = level + 1,
                                                   .column = 2 * column + static_cast<std::int64_t>(part % 2),
                                                   .row = 2 * row + static_cast<std::int64_t>(part / 2)})),
                      *finer[part], QRectF(0, 0, kSize, kSize));
      }
    }
    if (tiles == Tiles::AsThere) {
      // All of the surface, coarse, so that there is always something to show; and what zooming out shows next.
      const double extent = std::max(shape.box.maxX - shape.box.minX, shape.box.maxY - shape.box.minY);
      if (extent > 0.0) {
        const int whole = SurfaceTiles::levelFor(kSize / extent);
        if (whole < level) collect(shape.box, whole, overview);
      }
      if (level > SurfaceTiles::kLeastLevel) collect(visible, level - 1, next);
    }
  }
  result.isSharp = missing.empty();
  std::stable_sort(missing.begin(), missing.end(),
                   [](const auto& one, const auto& other) { return one.first < other.first; });
  result.wanted = std::move(overview);
  for (const auto& [distance, key] : missing) result.wanted.push_back(key);
  result.wanted.insert(result.wanted.end(), next.begin(), next.end());
  result.wantedBytes = held * kTileBytes;
}

// ---------------------------------------------------------------- lines

void PlanPainter::paintLines(QPainter& painter, const Frame& frame) {
  const PlanColours& colours = planColours(frame.look.dark);
  const Viewport& viewport = frame.viewport;
  const Box visible = seen(viewport);
  const double tolerance = kLineTolerance / viewport.scale();
  painter.setBrush(Qt::NoBrush);

  if (frame.look.border) {
    painter.setPen(roundPen(colours.border, 1.4));
    for (const view::SurfaceShape& shape : frame.scene.surfaces())
      drawLines(painter, viewport, shown(shape.border, visible, kBorderTolerance / viewport.scale()));
  }
  if (frame.look.corridors) {
    for (const view::CorridorShape& shape : frame.scene.corridors()) {
      const view::Lines edges = shown(shape.edges, visible, 2 * tolerance);
      if (viewport.scale() > kLeastHaloScale) {
        painter.setPen(roundPen(withAlpha(colours.ground, 150), 3.4));
        drawLines(painter, viewport, edges);
      }
      painter.setPen(roundPen(colours.corridor, 1.6));
      drawLines(painter, viewport, edges);
    }
  }
  if (frame.look.sampleLines) {
    QList<QLineF> pixels;
    for (const view::SampleLineShape& shape : frame.scene.sampleLines()) {
      if (!view::meet(shape.box, visible)) continue;
      const std::vector<Vec2>& vertices = shape.line->vertices;
      for (std::size_t index = 1; index < vertices.size(); ++index)
        pixels.push_back(
            QLineF(point(viewport.toPixels(vertices[index - 1])), point(viewport.toPixels(vertices[index]))));
    }
    painter.setPen(QPen(colours.sampleLine, 1.0, Qt::SolidLine, Qt::FlatCap));
    painter.drawLines(pixels);
  }
  if (!frame.look.alignments) return;
  for (const view::AlignmentShape& shape : frame.scene.alignments()) {
    if (!view::meet(shape.box, visible)) continue;
    const view::Lines lines = view::polylines(shape.object->geometry, visible, tolerance);
    painter.setPen(roundPen(withAlpha(colours.ground, 170), 4.4));
    drawLines(painter, viewport, lines);
    painter.setPen(roundPen(colours.alignment, 2.0));
    drawLines(painter, viewport, lines);
    if (!frame.look.stations) continue;
    std::array<QList<QLineF>, 2> marks;
    for (const view::Tick& tick : view::ticks(shape.object->geometry, visible, viewport.scale())) {
      const QPointF at = point(viewport.toPixels(tick.place));
      const QPointF right(std::sin(tick.direction), std::cos(tick.direction));
      const double reach = tick.isMajor ? kMajorTick : kMinorTick;
      marks[tick.isMajor ? 1 : 0].push_back(QLineF(at - right * reach, at + right * reach));
    }
    painter.setPen(QPen(colours.alignment, 1.0));
    painter.drawLines(marks[0]);
    painter.setPen(QPen(colours.alignment, 1.4));
    painter.drawLines(marks[1]);
  }
}

void PlanPainter::preparePoints(const Frame& frame) {
  points_ = {};
  if (!frame.look.points) {
    isCrowded_ = false;
    return;
  }
  points_ = frame.scene.visiblePoints(seen(frame.viewport), kMostPoints);
  judgeCrowd(frame.viewport);
}

void PlanPainter::paintPoints(QPainter& painter, const Frame& frame) {
  const PlanColours& colours = planColours(frame.look.dark);
  const Stamp stamp(12.0, painter.device()->devicePixelRatioF(), [&](QPainter& mark) {
    if (isCrowded_) {
      mark.setPen(Qt::NoPen);
      mark.setBrush(withAlpha(colours.ground, 200));
      mark.drawEllipse(QPointF(), 2.2, 2.2);
      mark.setBrush(colours.point);
      mark.drawEllipse(QPointF(), 1.3, 1.3);
      return;
    }
    for (const auto& [colour, width] :
         {std::pair(withAlpha(colours.ground, 200), 3.2), std::pair(colours.point, 1.2)}) {
      mark.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap));
      mark.drawLine(QLineF(-3, -3, 3, 3));
      mark.drawLine(QLineF(-3, 3, 3, -3));
    }
  });
  for (const civil::Point* const one : points_.points)
    stamp.at(painter, point(frame.viewport.toPixels({one->position.x, one->position.y})));
}

void PlanPainter::judgeCrowd(const Viewport& viewport) {
  if (points_.points.empty()) return;
  std::unordered_set<std::int64_t> cells;
  for (const civil::Point* const one : points_.points) {
    const Vec2 pixel = viewport.toPixels({one->position.x, one->position.y});
    cells.insert(static_cast<std::int64_t>(std::floor(pixel.x / kCrowdCell)) * 100'000 +
                 static_cast<std::int64_t>(std::floor(pixel.y / kCrowdCell)));
  }
  const double share = static_cast<double>(points_.points.size()) / static_cast<double>(cells.size());
  if (points_.count > kMostPointLabels || share > kCrowdBegins)
    isCrowded_ = true;
  else if (share < kCrowdEnds)
    isCrowded_ = false;
}

// ---------------------------------------------------------------- highlights

void PlanPainter::paintSelected(QPainter& painter, const Frame& frame) {
  const QColor colour = planColours(frame.look.dark).selected;
  if (frame.selected->size() <= kManySelected) {
    for (const Handle handle : frame.selected->handles()) paintObject(painter, frame, handle, colour, 2.6);
    return;
  }
  for (const auto& [handle, place] : places_)
    if (frame.selected->has(handle)) paintObject(painter, frame, handle, colour, 2.6);
  const Stamp stamp(10.0, painter.device()->devicePixelRatioF(), [&](QPainter& mark) {
    mark.setPen(QPen(colour, 1.6));
    mark.setBrush(withAlpha(colour, 90));
    mark.drawEllipse(QPointF(), 3.4, 3.4);
  });
  if (!frame.look.points) points_ = frame.scene.visiblePoints(seen(frame.viewport), kMostPoints);
  for (const civil::Point* const one : points_.points)
    if (frame.selected->has(one->handle))
      stamp.at(painter, point(frame.viewport.toPixels({one->position.x, one->position.y})));
}

void PlanPainter::paintHover(QPainter& painter, const Frame& frame, Handle handle) {
  find(frame.scene);
  painter.setRenderHint(QPainter::Antialiasing);
  paintObject(painter, frame, handle, planColours(frame.look.dark).hover, 3.0);
}

void PlanPainter::paintObject(QPainter& painter, const Frame& frame, Handle handle, const QColor& colour,
                              double width) {
  const Viewport& viewport = frame.viewport;
  const Box visible = seen(viewport);
  const double tolerance = kLineTolerance / viewport.scale();
  painter.setBrush(Qt::NoBrush);
  const auto draw = [&](const view::Lines& lines) {
    painter.setPen(roundPen(withAlpha(colour, 80), width + 6.0));
    drawLines(painter, viewport, lines);
    painter.setPen(roundPen(colour, width));
    drawLines(painter, viewport, lines);
  };
  const auto found = places_.find(handle);
  if (found == places_.end()) {
    const std::optional<view::Description> object = frame.scene.describe(handle);
    const std::optional<Box> box = frame.scene.boxOf(handle);
    if (!object || object->kind != ObjectKind::Point || !box || !view::meet(*box, visible)) return;
    const QPointF at = point(viewport.toPixels({box->minX, box->minY}));
    painter.setPen(roundPen(withAlpha(colour, 80), width + 2.0));
    painter.drawEllipse(at, 6.0, 6.0);
    painter.setPen(roundPen(colour, 2.0));
    painter.setBrush(withAlpha(colour, 60));
    painter.drawEllipse(at, 6.0, 6.0);
    return;
  }
  const std::size_t index = found->second.index;
  switch (found->second.kind) {
    case ObjectKind::Alignment:
      draw(view::polylines(frame.scene.alignments()[index].object->geometry, visible, tolerance));
      break;
    case ObjectKind::SampleLine:
      if (view::meet(frame.scene.sampleLines()[index].box, visible))
        draw({frame.scene.sampleLines()[index].line->vertices});
      break;
    case ObjectKind::Surface:
      draw(shown(frame.scene.surfaces()[index].border, visible, kBorderTolerance / viewport.scale()));
      break;
    case ObjectKind::Corridor:
      draw(shown(frame.scene.corridors()[index].edges, visible, tolerance));
      break;
    default:
      break;
  }
}

// ---------------------------------------------------------------- labels

void PlanPainter::paintLabels(QPainter& painter, const Frame& frame, LabelPlacer& placer) {
  if (frame.look.alignments)
    for (const view::AlignmentShape& shape : frame.scene.alignments())
      if (view::meet(shape.box, frame.viewport.visible())) labelAlignment(painter, frame, shape, placer);
  if (frame.look.sampleLines) labelSampleLines(painter, frame, placer);
  if (frame.look.points && !isCrowded_) labelPoints(painter, frame, placer);
}

void PlanPainter::labelAlignment(QPainter& painter, const Frame& frame, const view::AlignmentShape& shape,
                                 LabelPlacer& placer) {
  const PlanColours& colours = planColours(frame.look.dark);
  const Viewport& viewport = frame.viewport;
  const civil::Alignment& geometry = shape.object->geometry;
  const std::vector<view::Tick> ticks = view::ticks(geometry, viewport.visible(), viewport.scale());

  // The name on the left, at places of the alignment, not of the window, so that it moves with the drawing.
  const HaloText::Style nameStyle{labelFont(frame.font, 1.0, true), colours.alignment, colours.ground};
  const QString name = toQt(shape.object->name);
  const QSizeF nameSize = text_.sizeOf(name, nameStyle.font);
  if (!name.isEmpty() && geometry.length() * viewport.scale() > nameSize.width() / 2) {
    const double middle = (geometry.startStation() + geometry.endStation()) / 2;
    const double step = PlanFurniture::roundStep(kNameDistance / viewport.scale());
    const double from = ticks.empty() ? middle : ticks.front().station;
    const double to = ticks.empty() ? middle : ticks.back().station;
    for (double index = std::ceil((from - middle) / step); middle + index * step <= to; ++index) {
      const auto pose = geometry.poseAt(middle + index * step);
      if (!pose) continue;
      const QPointF left(-std::sin(pose->direction), -std::cos(pose->direction));
      const QPointF along(std::cos(pose->direction), -std::sin(pose->direction));
      const QPointF centre = point(viewport.toPixels(pose->point)) + left * (kMajorTick + 5.0 + nameSize.height() / 2);
      const double degrees = degreesOf(along);
      if (placer.place(centre, nameSize + QSizeF(10, 8), degrees))
        text_.draw(painter, centre, name, nameStyle, degrees);
    }
  }
  if (!frame.look.stations) return;
  const HaloText::Style style{labelFont(frame.font, 0.85), colours.alignment, colours.ground};
  for (const view::Tick& tick : ticks) {
    if (!tick.isMajor) continue;
    const QString text = toQt(tick.text);
    const QSizeF size = text_.sizeOf(text, style.font);
    const QPointF right(std::sin(tick.direction), std::cos(tick.direction));
    const QPointF centre = point(viewport.toPixels(tick.place)) + right * (kMajorTick + 4.0 + size.width() / 2);
    const double degrees = degreesOf(right);
    if (placer.place(centre, size + QSizeF(6, 6), degrees)) text_.draw(painter, centre, text, style, degrees);
  }
}

void PlanPainter::labelSampleLines(QPainter& painter, const Frame& frame, LabelPlacer& placer) {
  const PlanColours& colours = planColours(frame.look.dark);
  const Viewport& viewport = frame.viewport;
  const Box visible = seen(viewport);
  const HaloText::Style style{labelFont(frame.font, 0.85), colours.sampleLine, colours.ground};
  const auto lines = frame.scene.sampleLines();
  std::vector<std::size_t> order;
  for (std::size_t index = 0; index < lines.size(); ++index)
    if (lines[index].line->vertices.size() > 1 && view::meet(lines[index].box, visible)) order.push_back(index);
  // Where not all find room, every second, fourth, ... does, and the same ones while the view moves.
  std::stable_sort(order.begin(), order.end(),
                   [](std::size_t one, std::size_t other) { return rankOf(one) < rankOf(other); });
  for (const std::size_t index : order) {
    const civil::SampleLine& line = *lines[index].line;
    const QPointF end = point(viewport.toPixels(line.vertices.front()));
    const QPointF before = point(viewport.toPixels(line.vertices[1]));
    const QPointF other = point(viewport.toPixels(line.vertices.back()));
    if (std::hypot(end.x() - other.x(), end.y() - other.y()) < kLeastNamedLine) continue;
    QPointF outwards = end - before;
    const double length = std::hypot(outwards.x(), outwards.y());
    if (length <= 0.0) continue;
    outwards /= length;
    const QString text = toQt(line.name);
    const QSizeF size = text_.sizeOf(text, style.font);
    const QPointF centre = end + outwards * (5.0 + size.width() / 2);
    const double degrees = degreesOf(outwards);
    if (placer.place(centre, size + QSizeF(6, 5), degrees)) text_.draw(painter, centre, text, style, degrees);
  }
}

void PlanPainter::labelPoints(QPainter& painter, const Frame& frame, LabelPlacer& placer) {
  const PlanColours& colours = planColours(frame.look.dark);
  const HaloText::Style style{labelFont(frame.font, 0.8), colours.point, colours.ground};
  std::vector<const civil::Point*> order = points_.points;
  std::stable_sort(order.begin(), order.end(), [](const civil::Point* one, const civil::Point* other) {
    return rankOf(static_cast<std::size_t>(one->number)) < rankOf(static_cast<std::size_t>(other->number));
  });
  // A number may cover its own mark's surroundings, never the mark of another point.
  std::vector<QPointF> places;
  places.reserve(order.size());
  for (const civil::Point* const one : order) {
    places.push_back(point(frame.viewport.toPixels({one->position.x, one->position.y})));
    placer.reserve(QRectF(places.back() - QPointF(2.5, 2.5), QSizeF(5, 5)));
  }
  for (std::size_t index = 0; index < order.size(); ++index) {
    const QString text = QString::number(order[index]->number);
    const QSizeF size = text_.sizeOf(text, style.font);
    const double aside = 5.0 + size.width() / 2;
    const double above = 3.0 + size.height() / 2;
    for (const QPointF& offset :
         {QPointF(aside, -above), QPointF(aside, above), QPointF(-aside, -above), QPointF(-aside, above)}) {
      if (!placer.place(places[index] + offset, size + QSizeF(3, 3), 0.0)) continue;
      text_.draw(painter, places[index] + offset, text, style);
      break;
    }
  }
}

}  // namespace lvx::desktop
