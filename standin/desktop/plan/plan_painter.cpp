#include "desktop/plan/plan_painter.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <unordered_set>

#include "desktop/plan/ground_painter.h"
#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_furniture.h"
#include "desktop/plan/plan_labels.h"
#include "desktop/plan/plan_tool.h"
#include "view/alignment_shape.h"
#include "view/lines.h"

namespace lvx::desktop {

using civil::Box;
using civil::Handle;
using civil::ObjectKind;
using civil::Vec2;
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
/// Of very many selected lines about so many are drawn.
constexpr std::size_t kMostSelectedLines = 1000;
/// Seen from farther away, roads lie too near one another for halos around their edges.
constexpr double kLeastHaloScale = 0.5;
/// New labels a frame, about ten milliseconds.
constexpr int kFreshLabels = 60;

void drawLines(QPainter& painter, const Viewport& viewport, const view::Lines& lines) {
  QPolygonF pixels;
  for (const view::Line& line : lines) {
    pixels.clear();
    pixels.reserve(static_cast<qsizetype>(line.size()));
    for (const Vec2 vertex : line) pixels.push_back(pixelOf(viewport, vertex));
    painter.drawPolyline(pixels);
  }
}

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
  std::vector<view::ContourLabel> contourLabels;
  if (frame.look.surface != SurfaceLook::None || frame.look.contours) {
    GroundPainter ground(painter, frame, cache, tiles == Tiles::AllNow);
    result.isSharp = ground.paint();
    result.wanted = ground.takeWanted();
    result.wantedBytes = ground.wantedBytes();
    contourLabels = ground.contourLabels();
  }
  if (frame.groundOverlay != nullptr) frame.groundOverlay->paint(painter, frame.viewport, colours);
  painter.setRenderHint(QPainter::Antialiasing);
  preparePoints(frame);
  // Dots by the thousand would hide the roads; crosses are few and belong on top.
  if (isCrowded_) paintPoints(painter, frame);
  paintLines(painter, frame);
  if (frame.preview != nullptr) {
    painter.setPen(roundPen(colours.preview, 1.6));
    painter.setBrush(Qt::NoBrush);
    drawLines(painter, frame.viewport,
              frame.preview->lines(seen(frame.viewport), kLineTolerance / frame.viewport.scale()));
  }
  if (!isCrowded_) paintPoints(painter, frame);
  if (frame.selected != nullptr && frame.selected->size() > 0) paintSelected(painter, frame);

  std::optional<PlanFurniture::Heights> heights;
  if (frame.look.surface == SurfaceLook::Heights) {
    for (const view::SurfaceShape& shape : frame.scene.surfaces()) {
      if (shape.box.isEmpty() || !shape.tiles || !view::meet(shape.box, frame.viewport.visible()) ||
          frame.scene.isHidden(shape.object->handle))
        continue;
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
  PlanLabels(painter, frame, text_, placer)
      .paint(isCrowded_ ? std::span<const civil::Point* const>() : points_.points, contourLabels);
  furniture.paint(painter, colours);
  result.isUnfinished = text_.isWaiting();
  return result;
}

void PlanPainter::paintOnPaper(QPainter& painter, const Frame& frame, const std::vector<view::ContourLabel>& contours) {
  find(frame.scene);
  painter.setRenderHint(QPainter::Antialiasing);
  text_.drawAsText(true);
  isOnPaper_ = true;
  preparePoints(frame);
  if (isCrowded_) paintPoints(painter, frame);
  paintLines(painter, frame);
  if (!isCrowded_) paintPoints(painter, frame);
  LabelPlacer placer(QRectF(0, 0, frame.viewport.width(), frame.viewport.height()));
  PlanLabels(painter, frame, text_, placer)
      .paint(isCrowded_ ? std::span<const civil::Point* const>() : points_.points, contours);
  isOnPaper_ = false;
  text_.drawAsText(false);
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
      if (!frame.scene.isHidden(shape.object->handle))
        drawLines(painter, viewport, shown(shape.border, visible, kBorderTolerance / viewport.scale()));
  }
  if (frame.look.corridors) {
    for (const view::CorridorShape& shape : frame.scene.corridors()) {
      if (frame.scene.isHidden(shape.object->handle)) continue;
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
      if (!view::meet(shape.box, visible) || frame.scene.isHidden(shape.line->handle)) continue;
      const std::vector<Vec2>& vertices = shape.line->vertices;
      for (std::size_t index = 1; index < vertices.size(); ++index)
        pixels.push_back(QLineF(pixelOf(viewport, vertices[index - 1]), pixelOf(viewport, vertices[index])));
    }
    painter.setPen(QPen(colours.sampleLine, 1.0, Qt::SolidLine, Qt::FlatCap));
    painter.drawLines(pixels);
  }
  if (!frame.look.alignments) return;
  for (const view::AlignmentShape& shape : frame.scene.alignments()) {
    if (!view::meet(shape.box, visible) || frame.scene.isHidden(shape.object->handle)) continue;
    const view::Lines lines = view::polylines(shape.object->geometry, visible, tolerance);
    painter.setPen(roundPen(withAlpha(colours.ground, 170), 4.4));
    drawLines(painter, viewport, lines);
    painter.setPen(roundPen(colours.alignment, 2.0));
    drawLines(painter, viewport, lines);
    if (!frame.look.stations) continue;
    std::array<QList<QLineF>, 2> marks;
    for (const view::Tick& tick : view::ticks(shape.object->geometry, visible, viewport.scale())) {
      const QPointF at = pixelOf(viewport, tick.place);
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
  const auto draw = [&](QPainter& mark) {
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
  };
  if (isOnPaper_) {
    for (const civil::Point* const one : points_.points) {
      const QPointF at = pixelOf(frame.viewport, {one->position.x, one->position.y});
      painter.translate(at);
      draw(painter);
      painter.translate(-at);
    }
    return;
  }
  const Stamp stamp(12.0, painter.device()->devicePixelRatioF(), draw);
  for (const civil::Point* const one : points_.points)
    stamp.at(painter, pixelOf(frame.viewport, {one->position.x, one->position.y}));
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
  const Box visible = seen(frame.viewport);
  std::vector<Handle> lines;
  for (const view::SampleLineShape& shape : frame.scene.sampleLines())
    if (frame.selected->has(shape.line->handle) && view::meet(shape.box, visible)) lines.push_back(shape.line->handle);
  for (const auto& [handle, place] : places_)
    if (place.kind != civil::ObjectKind::SampleLine && frame.selected->has(handle))
      paintObject(painter, frame, handle, colour, 2.6);
  // Lines this close cover each other; some of them show that all are selected.
  const std::size_t step = 1 + lines.size() / kMostSelectedLines;
  for (std::size_t i = 0; i < lines.size(); i += step) paintObject(painter, frame, lines[i], colour, 2.6);
  const Stamp stamp(10.0, painter.device()->devicePixelRatioF(), [&](QPainter& mark) {
    mark.setPen(QPen(colour, 1.6));
    mark.setBrush(withAlpha(colour, 90));
    mark.drawEllipse(QPointF(), 3.4, 3.4);
  });
  if (!frame.look.points) points_ = frame.scene.visiblePoints(seen(frame.viewport), kMostPoints);
  for (const civil::Point* const one : points_.points)
    if (frame.selected->has(one->handle))
      stamp.at(painter, pixelOf(frame.viewport, {one->position.x, one->position.y}));
}

void PlanPainter::paintHover(QPainter& painter, const Frame& frame, Handle handle) {
  find(frame.scene);
  painter.setRenderHint(QPainter::Antialiasing);
  paintObject(painter, frame, handle, planColours(frame.look.dark).hover, 3.0);
}

void PlanPainter::paintObject(QPainter& painter, const Frame& frame, Handle handle, const QColor& colour,
                              double width) {
  if (frame.scene.isHidden(handle)) return;
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
    const QPointF at = pixelOf(viewport, {box->minX, box->minY});
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

}  // namespace lvx::desktop
