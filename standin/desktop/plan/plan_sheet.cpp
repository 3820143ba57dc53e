#include "desktop/plan/plan_sheet.h"

#include <QFontMetricsF>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

#include "civil/drawing_files.h"
#include "desktop/common/qt_text.h"
#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_furniture.h"
#include "desktop/plan/plan_selection.h"
#include "desktop/plan/plan_tool.h"
#include "desktop/plan/tile_drawing.h"
#include "view/plan_shapes.h"

namespace lvx::desktop {

using civil::Box;
using civil::Vec2;

namespace {

constexpr double kFoot = 24.0;               // below the map, millimetres
constexpr double kGridRoom = 5.0;            // for the labels of the grid, around the map
constexpr double kPixelMm = 25.4 / 96.0;     // of the plan's own sizes: pens, texts
constexpr double kDotsPerMm = 200.0 / 25.4;  // of the ground, unless the paper is large

QFont sheetFont(double millimetres, bool isBold = false) {
  QFont font(QStringLiteral("sans-serif"));
  // In whole pixels of the plan's own, scaled afterwards: fonts of parts of a pixel come out as they like.
  constexpr double kFine = 16.0;
  font.setPixelSize(static_cast<int>(std::lround(millimetres * kFine)));
  font.setBold(isBold);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

/// Texts in millimetres: `height` of the font, at a place of the paper.
class SheetText {
 public:
  explicit SheetText(double height, bool isBold = false) : font_(sheetFont(height, isBold)) {}
  [[nodiscard]] double width(const QString& text) const { return QFontMetricsF(font_).horizontalAdvance(text) / kFine; }
  void draw(QPainter& painter, QPointF baseline, const QString& text, double degrees = 0.0) const {
    painter.save();
    painter.translate(baseline);
    painter.rotate(degrees);
    painter.scale(1.0 / kFine, 1.0 / kFine);
    painter.setFont(font_);
    painter.drawText(QPointF(0.0, 0.0), text);
    painter.restore();
  }
  [[nodiscard]] QString cut(const QString& text, double most) const {
    return QFontMetricsF(font_).elidedText(text, Qt::ElideRight, most * kFine);
  }

 private:
  static constexpr double kFine = 16.0;
  QFont font_;
};

/// Of contours that were drawn; none where they don't tell it.
std::optional<double> intervalOf(const std::vector<view::Contour>& contours) {
  for (const view::Contour& contour : contours)
    if (contour.step != 0) return contour.elevation / static_cast<double>(contour.step);
  return std::nullopt;
}

/// Places for labels on each stretch of a contour: one that runs across a large sheet is named again and again, and where one
/// stretch has no room for its name another may. `scale`: the plan's pixels a drawing unit. O(vertices).
std::vector<view::ContourLabel> labelsByStretches(const std::vector<view::Contour>& contours, const Box& box,
                                                  double scale) {
  const double labelLength = 52.0 / scale;
  const double stretchLength = 1.6 * labelLength;
  std::vector<view::Contour> stretches;
  for (const view::Contour& contour : contours) {
    for (const view::Line& line : view::clipped({contour.line}, box)) {
      view::Contour stretch{.elevation = contour.elevation, .isIndex = contour.isIndex, .line = {}};
      double length = 0.0;
      for (const Vec2 place : line) {
        if (!stretch.line.empty()) length += civil::length(place - stretch.line.back());
        stretch.line.push_back(place);
        if (length < stretchLength) continue;
        stretches.push_back(stretch);
        stretch.line = {place};
        length = 0.0;
      }
      if (stretch.line.size() > 1) stretches.push_back(std::move(stretch));
    }
  }
  return view::labelPlaces(stretches, box, labelLength);
}

}  // namespace

double PlanSheet::roundScale(double least) {
  double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double part : {1.0, 2.0, 2.5, 5.0})
    if (part * power >= least * (1.0 - 1e-9)) return part * power;
  return 10.0 * power;
}

PlanSheet::PlanSheet(const view::PlanScene& scene, const PlanLook& look, PlanSheetWish wish)
    : scene_(scene), look_(look), wish_(std::move(wish)) {
  look_.dark = false;
  perUnit_ = 1000.0 * civil::metresPerUnit(scene.drawing().linearUnit).value_or(1.0);
  const QRectF frame = QRectF(QPointF(0, 0), wish_.paper).adjusted(kMargin, kMargin, -kMargin, -kMargin);
  const double room = wish_.hasGrid ? kGridRoom : 0.0;
  map_ = frame.adjusted(room, room, -room, -room - kFoot);
  const Box part = view::withLeastExtent(wish_.part, 1.0);
  centre_ = {0.5 * (part.minX + part.maxX), 0.5 * (part.minY + part.maxY)};
  scale_ = wish_.scale > 0.0 ? wish_.scale
                             : roundScale(perUnit_ * std::max((part.maxX - part.minX) / map_.width(),
                                                              (part.maxY - part.minY) / map_.height()));
}

Box PlanSheet::shown() const {
  const double across = 0.5 * map_.width() * scale_ / perUnit_;
  const double up = 0.5 * map_.height() * scale_ / perUnit_;
  return {centre_.x - across, centre_.y - up, centre_.x + across, centre_.y + up};
}

bool PlanSheet::showsAll() const { return view::holds(view::grown(shown(), 1e-6 * scale_ / perUnit_), wish_.part); }

QPointF PlanSheet::onPaper(Vec2 place) const {
  const double per = perUnit_ / scale_;
  return map_.center() + QPointF((place.x - centre_.x) * per, (centre_.y - place.y) * per);
}

void PlanSheet::paint(QPainter& painter) const {
  const PlanColours& colours = planColours(false);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(QRectF(QPointF(0, 0), wish_.paper), Qt::white);
  painter.save();
  painter.setClipRect(map_);
  if (look_.surface != SurfaceLook::None) paintGround(painter);
  // The plan's own painter counts in pixels; its window is the map.
  view::Viewport viewport(static_cast<int>(std::ceil(map_.width() / kPixelMm)),
                          static_cast<int>(std::ceil(map_.height() / kPixelMm)));
  viewport.setScale(perUnit_ / scale_ / kPixelMm);
  viewport.setCentre(centre_);
  painter.translate(map_.center());
  painter.scale(kPixelMm, kPixelMm);
  painter.translate(-0.5 * viewport.width(), -0.5 * viewport.height());
  QFont font(QStringLiteral("sans-serif"));
  constexpr int kFontPixels = 10;
  font.setPixelSize(kFontPixels);
  const PlanFrame frame{.scene = scene_, .viewport = viewport, .look = look_, .font = font};
  if (wish_.groundOverlay != nullptr) wish_.groundOverlay->paintWhole(painter, viewport, colours);
  std::vector<view::ContourLabel> labels;
  const double contourInterval = look_.contours ? paintContours(painter, frame, labels) : 0.0;
  PlanPainter().paintOnPaper(painter, frame, labels);
  if (wish_.groundOverlay != nullptr) wish_.groundOverlay->paintKey(painter, colours);
  painter.restore();
  if (wish_.hasGrid) paintGrid(painter);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colours.text, 0.35));
  painter.drawRect(map_);
  paintFoot(painter, contourInterval);
}

// ---------------------------------------------------------------- the map

void PlanSheet::paintGround(QPainter& painter) const {
  const double area = map_.width() * map_.height();
  const double perMm = std::min(kDotsPerMm, std::sqrt(static_cast<double>(kMostPixels) / area));
  const double scale = perMm * perUnit_ / scale_;  // pixels a drawing unit
  const Box box = shown();
  const auto look = view::SurfaceLook{
      .style = look_.surface == SurfaceLook::Heights ? view::SurfaceStyle::Heights : view::SurfaceStyle::Relief,
      .hasTriangles = look_.triangles,
      .isDark = false};
  for (const view::SurfaceShape& shape : scene_.surfaces()) {
    if (!shape.tiles || scene_.isHidden(shape.object->handle) || !view::meet(shape.box, box)) continue;
    // Whole pixels of the surface, which lie where they belong whatever the map's edges are.
    const Vec2 origin = shape.tiles->origin();
    const Box part{std::max(box.minX, shape.box.minX), std::max(box.minY, shape.box.minY),
                   std::min(box.maxX, shape.box.maxX), std::min(box.maxY, shape.box.maxY)};
    const auto left = static_cast<std::int64_t>(std::floor((part.minX - origin.x) * scale));
    const auto top = static_cast<std::int64_t>(std::floor((origin.y - part.maxY) * scale));
    const auto width = static_cast<int>(std::ceil((part.maxX - origin.x) * scale) - static_cast<double>(left));
    const auto height = static_cast<int>(std::ceil((origin.y - part.minY) * scale) - static_cast<double>(top));
    if (width <= 0 || height <= 0) continue;
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    // In bands: drawing takes four times the memory of what is drawn.
    constexpr int kBand = 512;
    for (int row = 0; row < height; row += kBand)
      shape.tiles->render({scale, left, top + row, width, std::min(kBand, height - row)}, look,
                          reinterpret_cast<std::uint32_t*>(image.scanLine(row)));
    const QPointF corner =
        onPaper({origin.x + static_cast<double>(left) / scale, origin.y - static_cast<double>(top) / scale});
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(corner, QSizeF(width / perMm, height / perMm)), image);
  }
}

const view::SurfaceShape* PlanSheet::contourSurface() const {
  const view::SurfaceShape* last = nullptr;
  for (const view::SurfaceShape& shape : scene_.surfaces()) {
    if (!shape.tiles || scene_.isHidden(shape.object->handle) || !view::meet(shape.box, shown())) continue;
    if (wish_.selected != nullptr && wish_.selected->has(shape.object->handle)) return &shape;
    last = &shape;
  }
  return last;
}

double PlanSheet::paintContours(QPainter& painter, const PlanFrame& frame,
                                std::vector<view::ContourLabel>& labels) const {
  const view::SurfaceShape* const shape = contourSurface();
  if (shape == nullptr) return 0.0;
  const PlanColours& colours = planColours(false);
  const double scale = frame.viewport.scale();
  const view::ContourPlan plan{.interval = look_.contourInterval > 0.0 ? look_.contourInterval
                                                                       : shape->tiles->contourInterval(scale)};
  const Box box = shown();
  const std::vector<view::Contour> contours = shape->tiles->contours(box, plan);
  painter.setBrush(Qt::NoBrush);
  constexpr double kLeastStep = 0.3;
  for (const view::Contour& contour : contours) {
    QColor colour = contour.isIndex ? colours.indexContour : colours.contour;
    painter.setPen(QPen(colour, contourWidth(contour.isIndex), Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
    for (const view::Line& line : view::clipped({contour.line}, view::grown(box, 4.0 / scale))) {
      QPolygonF pixels;
      for (std::size_t i = 0; i < line.size(); ++i) {
        const QPointF pixel = pixelOf(frame.viewport, line[i]);
        const bool isLast = i + 1 == line.size();
        if (pixels.isEmpty() || isLast || (pixel - pixels.back()).manhattanLength() >= kLeastStep)
          pixels.push_back(pixel);
      }
      painter.drawPolyline(pixels);
    }
  }
  labels = labelsByStretches(contours, box, scale);
  return intervalOf(contours).value_or(plan.interval);
}

void PlanSheet::paintGrid(QPainter& painter) const {
  const PlanColours& colours = planColours(false);
  constexpr double kApart = 40.0;
  const double step = roundScale(kApart * scale_ / perUnit_);
  const int decimals = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 3);
  const Box box = shown();
  const SheetText text(2.3);
  QColor line = colours.quietText;
  constexpr int kAlpha = 120;
  line.setAlpha(kAlpha);
  const QPen thin(line, 0.1);
  constexpr double kTick = 1.2;
  for (double index = std::ceil(box.minX / step); index * step <= box.maxX; ++index) {
    const double x = onPaper({index * step, box.minY}).x();
    const QString label = QString::number(index * step, 'f', decimals);
    painter.setPen(thin);
    painter.drawLine(QPointF(x, map_.top()), QPointF(x, map_.bottom()));
    painter.setPen(QPen(colours.text, 0.25));
    painter.drawLine(QPointF(x, map_.top() - kTick), QPointF(x, map_.top()));
    painter.drawLine(QPointF(x, map_.bottom()), QPointF(x, map_.bottom() + kTick));
    const double left = std::clamp(x - text.width(label) / 2, map_.left(), map_.right() - text.width(label));
    text.draw(painter, QPointF(left, map_.top() - kTick - 0.6), label);
    text.draw(painter, QPointF(left, map_.bottom() + kTick + 2.3), label);
  }
  for (double index = std::ceil(box.minY / step); index * step <= box.maxY; ++index) {
    const double y = onPaper({box.minX, index * step}).y();
    const QString label = QString::number(index * step, 'f', decimals);
    painter.setPen(thin);
    painter.drawLine(QPointF(map_.left(), y), QPointF(map_.right(), y));
    painter.setPen(QPen(colours.text, 0.25));
    painter.drawLine(QPointF(map_.left() - kTick, y), QPointF(map_.left(), y));
    painter.drawLine(QPointF(map_.right(), y), QPointF(map_.right() + kTick, y));
    const double bottom = std::clamp(y + text.width(label) / 2, map_.top() + text.width(label), map_.bottom());
    text.draw(painter, QPointF(map_.left() - kTick - 0.6, bottom), label, -90.0);
    text.draw(painter, QPointF(map_.right() + kTick + 2.3, bottom), label, -90.0);
  }
}

// ---------------------------------------------------------------- below the map

void PlanSheet::paintFoot(QPainter& painter, double contourInterval) const {
  const PlanColours& colours = planColours(false);
  const QRectF frame = QRectF(QPointF(0, 0), wish_.paper).adjusted(kMargin, kMargin, -kMargin, -kMargin);
  const QRectF foot(frame.left(), frame.bottom() - kFoot + 2.0, frame.width(), kFoot - 2.0);
  const double title = std::min(90.0, 0.36 * foot.width());
  const double bar = std::min(80.0, 0.3 * foot.width());
  const QRectF titlePlace(foot.right() - title, foot.top(), title, foot.height());
  const QRectF barPlace(titlePlace.left() - bar, foot.top(), bar, foot.height());
  const QRectF legendPlace(foot.left(), foot.top(), barPlace.left() - foot.left(), foot.height());
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colours.text, 0.35));
  painter.drawRect(foot);
  painter.drawLine(titlePlace.topLeft(), titlePlace.bottomLeft());
  painter.drawLine(barPlace.topLeft(), barPlace.bottomLeft());
  paintTitle(painter, titlePlace);
  paintScaleBar(painter, barPlace);
  if (wish_.hasLegend) paintLegend(painter, legendPlace, contourInterval);
}

QString PlanSheet::scaleText() const { return QStringLiteral("1:") + QString::number(scale_, 'g', 12); }

void PlanSheet::paintTitle(QPainter& painter, const QRectF& place) const {
  const PlanColours& colours = planColours(false);
  const SheetText small(2.4);
  const SheetText large(4.2, true);
  const double row = place.height() / 2;
  const double half = place.left() + place.width() / 2;
  painter.setPen(QPen(colours.text, 0.2));
  painter.drawLine(QPointF(place.left(), place.top() + row), QPointF(place.right(), place.top() + row));
  painter.drawLine(QPointF(half, place.top() + row), QPointF(half, place.bottom()));
  const auto field = [&](QPointF corner, const QString& name, const QString& value, double width) {
    painter.setPen(colours.quietText);
    small.draw(painter, corner + QPointF(1.5, 3.2), name);
    painter.setPen(colours.text);
    large.draw(painter, corner + QPointF(1.5, 8.6), large.cut(value, width - 3.0));
  };
  field(place.topLeft(), tr("Drawing"), wish_.title, place.width());
  field({place.left(), place.top() + row}, tr("Scale"), scaleText(), place.width() / 2);
  field({half, place.top() + row}, tr("Date"), wish_.date, place.width() / 2);
}

void PlanSheet::paintScaleBar(QPainter& painter, const QRectF& place) const {
  const PlanColours& colours = planColours(false);
  // North is up the sheet.
  const QPointF top(place.right() - 8.0, place.top() + 6.0);
  painter.setPen(QPen(colours.text, 0.25, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(colours.text);
  painter.drawPolygon(QPolygonF({top, top + QPointF(-3.2, 11.0), top + QPointF(0, 8.6)}));
  painter.setBrush(Qt::white);
  painter.drawPolygon(QPolygonF({top, top + QPointF(3.2, 11.0), top + QPointF(0, 8.6)}));
  const SheetText bold(3.2, true);
  const QString north = PlanFurniture::tr("N");
  bold.draw(painter, top + QPointF(-bold.width(north) / 2, -1.2), north);

  const SheetText text(2.6);
  const double most = place.width() - 28.0;
  if (most < 10.0) return;
  const double length = PlanFurniture::roundStep(most * scale_ / perUnit_);
  const double across = length * perUnit_ / scale_;
  const QPointF left(place.left() + 4.0, place.top() + 13.0);
  constexpr int kFields = 4;
  painter.setPen(QPen(colours.text, 0.2));
  for (int i = 0; i < kFields; ++i) {
    painter.setBrush(i % 2 == 0 ? colours.text : QColor(Qt::white));
    painter.drawRect(QRectF(left + QPointF(across * i / kFields, 0.0), QSizeF(across / kFields, 1.8)));
  }
  const QString end = QLocale().toString(length, 'g', 8) + QLatin1Char(' ') + unitSign(scene_.drawing().linearUnit);
  text.draw(painter, left + QPointF(0.0, -1.2), QStringLiteral("0"));
  text.draw(painter, left + QPointF(std::max(3.0, across - text.width(end) / 2), -1.2), end);
  text.draw(painter, left + QPointF(0.0, 5.6), scaleText());
}

void PlanSheet::paintLegend(QPainter& painter, const QRectF& place, double contourInterval) const {
  const PlanColours& colours = planColours(false);
  struct Entry {
    bool isShown;
    QString name;
    QPen pen;
    bool isPoint;
  };
  const Box box = shown();
  const auto any = [&](const auto& shapes, const auto& handleOf) {
    return std::any_of(shapes.begin(), shapes.end(), [&](const auto& shape) {
      return view::meet(shape.box, box) && !scene_.isHidden(handleOf(shape));
    });
  };
  const auto ofObject = [](const auto& shape) { return shape.object->handle; };
  const bool hasGround = any(scene_.surfaces(), ofObject);
  QString contours = tr("Contours");
  if (contourInterval > 0.0)
    contours = tr("Contours every %1 %2")
                   .arg(QLocale().toString(contourInterval, 'g', 6), unitSign(scene_.drawing().linearUnit));
  const Entry entries[] = {
      {look_.alignments && any(scene_.alignments(), ofObject), tr("Alignment"), QPen(colours.alignment, 0.5), false},
      {look_.sampleLines && any(scene_.sampleLines(), [](const auto& shape) { return shape.line->handle; }),
       tr("Sample line"), QPen(colours.sampleLine, 0.3), false},
      {look_.corridors && any(scene_.corridors(), ofObject), tr("Corridor"), QPen(colours.corridor, 0.4), false},
      {look_.points && scene_.visiblePoints(box, 1).count > 0, tr("Point"), QPen(colours.point, 0.3), true},
      {look_.border && hasGround, tr("Border of a surface"), QPen(colours.border, 0.35), false},
      {look_.contours && hasGround, contours, QPen(colours.indexContour, 0.4), false},
  };
  constexpr double kRow = 4.6;
  constexpr double kSample = 9.0;
  const SheetText text(2.6);
  const int rows = std::max(1, static_cast<int>((place.height() - 3.0) / kRow));
  double left = place.left() + 3.0;
  double widest = 0.0;
  int row = 0;
  for (const Entry& entry : entries) {
    if (!entry.isShown) continue;
    if (row == rows) {
      left += kSample + widest + 7.0;
      row = 0;
      widest = 0.0;
    }
    if (left + kSample + 2.0 + text.width(entry.name) > place.right() - 1.0) return;
    const double y = place.top() + 3.2 + row * kRow;
    painter.setPen(entry.pen);
    if (entry.isPoint) {
      const QPointF middle(left + kSample / 2, y);
      painter.drawLine(middle + QPointF(-0.9, -0.9), middle + QPointF(0.9, 0.9));
      painter.drawLine(middle + QPointF(-0.9, 0.9), middle + QPointF(0.9, -0.9));
    } else {
      painter.drawLine(QPointF(left, y), QPointF(left + kSample, y));
    }
    painter.setPen(colours.text);
    text.draw(painter, QPointF(left + kSample + 2.0, y + 0.9), entry.name);
    widest = std::max(widest, text.width(entry.name));
    ++row;
  }
}

}  // namespace lvx::desktop
