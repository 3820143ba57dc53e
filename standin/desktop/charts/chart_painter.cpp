#include "desktop/charts/chart_painter.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/charts/chart_fills.h"
#include "desktop/charts/chart_texts.h"
#include "desktop/common/qt_text.h"
#include "text/number_text.h"
#include "view/contours.h"

namespace lvx::desktop {

using civil::Box;
using civil::Vec2;

namespace {

// Units of 1/96 inch.
constexpr double kRoom = 6.0;
constexpr double kBandHeight = 50.0;
constexpr double kLeastHeightForBand = 190.0;
constexpr double kLeastHeightForTitle = 130.0;
/// Dots on points stand at least this far apart on average.
constexpr double kDotDistance = 9.0;

int decimalsOf(double step) { return std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-6)), 0, 6); }

std::vector<double> multiples(double step, double from, double to) {
  std::vector<double> places;
  const double first = std::ceil(from / step);
  const double last = std::floor(to / step);
  // A window shows some dozen; more only where rounding has the better of it.
  if (!(last - first < 1000.0)) return places;
  const int count = static_cast<int>(last - first) + 1;
  for (int i = 0; i < count; ++i) places.push_back((first + i) * step);
  return places;
}

/// What stands at an element of the axis where there is room, and what where there is less.
QStringList bandTexts(const view::AxisElement& element) {
  QString size;
  switch (element.kind) {
    case civil::ElementKind::Line:
    case civil::ElementKind::Bloss:
    case civil::ElementKind::Cosine:
    case civil::ElementKind::Biquadratic:
    case civil::ElementKind::Sinusoid:
      break;
    case civil::ElementKind::Arc:
      size = QStringLiteral("R=") + toQt(text::shortText(1.0 / std::abs(element.startCurvature)));
      break;
    case civil::ElementKind::Clothoid:
      size = QStringLiteral("A=") + toQt(text::shortText(element.parameter()));
      break;
  }
  const QString length = QStringLiteral("L=") + toQt(text::shortText(element.length()));
  return size.isEmpty() ? QStringList{length} : QStringList{size + QStringLiteral("  ") + length, size};
}

/// Between `from` and `to`, above or below the band's `middle`.
void paintBandText(QPainter& painter, const view::AxisElement& element, double from, double to, double middle) {
  const QFontMetricsF metrics(painter.font());
  // In the half that the picture of the turn leaves free.
  const double turn = element.startCurvature + element.endCurvature;
  const double base = turn > 0.0 ? middle - 5.0 : middle + metrics.ascent() + 3.0;
  for (const QString& text : bandTexts(element)) {
    const double width = metrics.horizontalAdvance(text);
    if (width + kRoom > to - from) continue;
    painter.drawText(QPointF((from + to - width) / 2, base), text);
    break;
  }
}

/// Where a place of the drawing stands on the paper.
QPointF pointOf(const QRect& plot, const view::Viewport& port, Vec2 place) {
  const Vec2 pixel = port.toPixels(place);
  return {plot.left() + pixel.x, plot.top() + pixel.y};
}

/// Many points on one column of dots are drawn as first, lowest, highest and last: the same picture at the price of the
/// columns.
class PathMaker {
 public:
  explicit PathMaker(QPainterPath& path) : path_(path) {}
  void add(QPointF point) {
    if (isEmpty_) {
      path_.moveTo(point);
      isEmpty_ = false;
      startColumn(point);
      return;
    }
    if (std::abs(point.x() - columnX_) < kColumn) {
      if (point.y() < top_.y()) top_ = point;
      if (point.y() > bottom_.y()) bottom_ = point;
      last_ = point;
      ++count_;
      return;
    }
    finishColumn();
    path_.lineTo(point);
    startColumn(point);
  }
  void finish() {
    finishColumn();
    isEmpty_ = true;
  }

 private:
  static constexpr double kColumn = 0.25;
  void startColumn(QPointF point) {
    columnX_ = point.x();
    top_ = bottom_ = last_ = point;
    count_ = 0;
  }
  void finishColumn() {
    if (count_ == 0) return;
    if (count_ > 2) {
      path_.lineTo(top_);
      path_.lineTo(bottom_);
    } else if (count_ == 2) {
      path_.lineTo(last_ == bottom_ ? top_ : bottom_);
    }
    path_.lineTo(last_);
    count_ = 0;
  }

  QPainterPath& path_;
  bool isEmpty_ = true;
  double columnX_ = 0.0;
  QPointF top_;
  QPointF bottom_;
  QPointF last_;
  int count_ = 0;
};

}  // namespace

// ---------------------------------------------------------------- layout

ChartPainter::ChartPainter(const Chart& chart, ChartLook look, const QFont& font)
    : chart_(chart), look_(std::move(look)), font_(font) {
  if (font_.pixelSize() <= 0) font_.setPixelSize(std::max(QFontInfo(font).pixelSize(), 8));
}

QRect ChartPainter::plotArea(const QRectF& area) const {
  const QFontMetricsF metrics(font_);
  const double line = metrics.height();
  const bool hasTitles = area.height() >= kLeastHeightForTitle;
  // Room for heights of four digits and two decimals, so that the plot doesn't move while one zooms.
  const double left = metrics.horizontalAdvance(QStringLiteral("8888.88")) + 2 * kRoom + (hasTitles ? line : 0.0);
  double bottom = line + kRoom + (hasTitles ? line + 2.0 : 0.0);
  if (hasBand() && area.height() >= kLeastHeightForBand) bottom += kBandHeight;
  const double right = 3 * kRoom;
  const double top = line / 2 + kRoom;
  const int x = static_cast<int>(std::ceil(area.left() + left));
  const int y = static_cast<int>(std::ceil(area.top() + top));
  const int width = static_cast<int>(area.right() - right) - x;
  const int height = static_cast<int>(area.bottom() - bottom) - y;
  return {x, y, std::max(width, 1), std::max(height, 1)};
}

view::Viewport ChartPainter::viewportFor(const QRectF& area, double exaggeration) const {
  const QRect plot = plotArea(area);
  view::Viewport port(plot.width(), plot.height());
  if (exaggeration > 0.0) port.setExaggeration(exaggeration);
  const Box box = chart_.box();
  if (box.isEmpty()) return port;
  const double across = std::max(box.maxX - box.minX, 1e-3);
  const double up = std::max(box.maxY - box.minY, 1e-3);
  const double width = plot.width() * 0.95;
  const double height = plot.height() * heightShare();
  if (!(exaggeration > 0.0)) port.setExaggeration(enlargement(up * width / across, height));
  port.setScale(std::min(width / across, height / (up * port.exaggeration())));
  port.setCentre({(box.minX + box.maxX) / 2, (box.minY + box.maxY) / 2});
  return port;
}

double ChartPainter::heightShare() const {
  const bool hasTexts = std::any_of(chart_.series.begin(), chart_.series.end(), [](const ChartSeries& series) {
    return series.isShown && (!series.marks.empty() || !series.notes.empty());
  });
  return hasTexts ? 0.62 : 0.84;
}

double ChartPainter::enlargement(double up, double room) const {
  constexpr double kFlat = 0.1;
  double fitting = 1.0;
  for (const double factor : {2.0, 5.0, 10.0, 20.0, 50.0, 100.0}) {
    if (factor > chart_.mostEnlargement || up * factor > room) break;
    if (factor > chart_.usualEnlargement && up * fitting >= kFlat * room) break;
    fitting = factor;
  }
  return fitting;
}

QString ChartPainter::xText(double x, int decimals) const {
  return toQt(chart_.measure == ChartMeasure::Station ? text::stationText(x, decimals) : text::fixedText(x, decimals));
}

ChartPainter::Ticks ChartPainter::xTicks(const view::Viewport& port) const {
  const QFontMetricsF metrics(font_);
  const Box visible = port.visible();
  Ticks ticks;
  double least = 48.0 / port.scale();
  for (int tries = 0; tries < 12; ++tries) {
    ticks.step = view::roundInterval(least);
    ticks.decimals = decimalsOf(ticks.step);
    const double widest = std::max(metrics.horizontalAdvance(xText(visible.minX, ticks.decimals)),
                                   metrics.horizontalAdvance(xText(visible.maxX, ticks.decimals)));
    if (ticks.step * port.scale() >= widest + 3 * kRoom) break;
    least = ticks.step * 1.01;
  }
  ticks.places = multiples(ticks.step, visible.minX, visible.maxX);
  ticks.between = multiples(ticks.step / 5.0, visible.minX, visible.maxX);
  return ticks;
}

ChartPainter::Ticks ChartPainter::yTicks(const view::Viewport& port) const {
  const Box visible = port.visible();
  const double scale = port.scale() * port.exaggeration();
  Ticks ticks;
  ticks.step = view::roundInterval(2.2 * QFontMetricsF(font_).height() / scale);
  ticks.decimals = decimalsOf(ticks.step);
  ticks.places = multiples(ticks.step, visible.minY, visible.maxY);
  ticks.between = multiples(ticks.step / 5.0, visible.minY, visible.maxY);
  return ticks;
}

// ---------------------------------------------------------------- painting

void ChartPainter::paint(QPainter& painter, const QRectF& area, const view::Viewport& port, int highlighted) const {
  const QRect plot = plotArea(area);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(font_);
  paintGrid(painter, plot, port);
  paintFills(painter, chart_, look_, plot, port);
  if (hasBand() && area.height() >= kLeastHeightForBand) paintBand(painter, plot, port);
  paintAxes(painter, area, plot, port);
  // The first of the legend lies on top.
  const int count = static_cast<int>(chart_.series.size());
  for (int index = count; index-- > 0;) {
    const ChartSeries& series = chart_.series[static_cast<std::size_t>(index)];
    if (series.isShown && index != highlighted) paintSeries(painter, plot, port, series, false);
  }
  if (highlighted >= 0 && highlighted < count && chart_.series[static_cast<std::size_t>(highlighted)].isShown)
    paintSeries(painter, plot, port, chart_.series[static_cast<std::size_t>(highlighted)], true);
  paintTexts(painter, chart_, look_, font_, plot, port);
  painter.restore();
}

void ChartPainter::paintGrid(QPainter& painter, const QRect& plot, const view::Viewport& port) const {
  constexpr double kLeastFine = 7.0;
  const Ticks across = xTicks(port);
  const Ticks up = yTicks(port);
  const auto vertical = [&](double x) {
    const double at = plot.left() + port.toPixels({x, 0.0}).x;
    painter.drawLine(QPointF(at, plot.top()), QPointF(at, plot.bottom()));
  };
  const auto horizontal = [&](double y) {
    const double at = plot.top() + port.toPixels({0.0, y}).y;
    painter.drawLine(QPointF(plot.left(), at), QPointF(plot.right(), at));
  };
  painter.setPen(QPen(look_.fineGrid, 0.6));
  if (across.step / 5.0 * port.scale() >= kLeastFine)
    for (const double x : across.between) vertical(x);
  if (up.step / 5.0 * port.scale() * port.exaggeration() >= kLeastFine)
    for (const double y : up.between) horizontal(y);
  painter.setPen(QPen(look_.grid, 0.8));
  for (const double x : across.places) vertical(x);
  for (const double y : up.places) horizontal(y);
  const Box visible = port.visible();
  if (chart_.measure == ChartMeasure::Offset && visible.minX < 0.0 && visible.maxX > 0.0) {
    QPen axis(look_.faintInk, 1.0);
    axis.setDashPattern({12.0, 3.0, 2.0, 3.0});
    painter.setPen(axis);
    vertical(0.0);
  }
}

void ChartPainter::paintAxes(QPainter& painter, const QRectF& area, const QRect& plot,
                             const view::Viewport& port) const {
  const QFontMetricsF metrics(font_);
  const bool band = hasBand() && area.height() >= kLeastHeightForBand;
  const double line = metrics.height();
  painter.setPen(QPen(look_.ink, 1.0));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(plot);

  const double under = plot.bottom() + (band ? kBandHeight : 0.0);
  const Ticks across = xTicks(port);
  for (const double x : across.places) {
    const double at = plot.left() + port.toPixels({x, 0.0}).x;
    painter.setPen(QPen(look_.ink, 1.0));
    painter.drawLine(QPointF(at, under), QPointF(at, under + 4.0));
    const QString text = xText(x, across.decimals);
    const double width = metrics.horizontalAdvance(text);
    // Labels at the ends would run into the other axis or off the picture.
    if (at - width / 2 < area.left() || at + width / 2 > area.right()) continue;
    painter.drawText(QPointF(at - width / 2, under + kRoom + metrics.ascent()), text);
  }
  const Ticks up = yTicks(port);
  double widest = 0.0;
  for (const double y : up.places) {
    const double at = plot.top() + port.toPixels({0.0, y}).y;
    painter.setPen(QPen(look_.ink, 1.0));
    painter.drawLine(QPointF(plot.left() - 4.0, at), QPointF(plot.left(), at));
    const QString text = toQt(text::fixedText(y, up.decimals));
    const double width = metrics.horizontalAdvance(text);
    widest = std::max(widest, width);
    painter.drawText(QPointF(plot.left() - kRoom - width, at + metrics.capHeight() / 2), text);
  }
  if (area.height() < kLeastHeightForTitle) return;
  painter.setPen(look_.faintInk);
  const double xWidth = metrics.horizontalAdvance(chart_.xTitle);
  painter.drawText(QPointF(plot.center().x() - xWidth / 2, under + kRoom + line + metrics.ascent() + 1.0),
                   chart_.xTitle);
  const double yWidth = metrics.horizontalAdvance(chart_.yTitle);
  if (yWidth <= plot.height() && plot.left() - kRoom - widest - line > area.left()) {
    painter.save();
    painter.translate(area.left() + metrics.ascent() + 2.0, plot.center().y() + yWidth / 2);
    painter.rotate(-90.0);
    painter.drawText(QPointF(0.0, 0.0), chart_.yTitle);
    painter.restore();
  }
}

// The usual curvature picture: straight in the middle, turns to the right above it, to the left below, clothoids aslant,
// other transitions by their laws.
void ChartPainter::paintBand(QPainter& painter, const QRect& plot, const view::Viewport& port) const {
  QFont small = font_;
  small.setPixelSize(std::max(font_.pixelSize() - 1, 8));
  painter.save();
  painter.setFont(small);
  const QRectF band(plot.left(), plot.top() + plot.height(), plot.width(), kBandHeight);
  const double middle = band.center().y();
  const double most = kBandHeight / 2 - 5.0;
  double sharpest = 0.0;
  for (const view::AxisElement& element : chart_.elements)
    sharpest = std::max({sharpest, std::abs(element.startCurvature), std::abs(element.endCurvature)});
  // Gentle curves still show that they turn.
  const auto level = [&](double curvature) {
    if (curvature == 0.0 || sharpest == 0.0) return middle;
    return middle + std::copysign(most * (0.45 + 0.55 * std::abs(curvature) / sharpest), curvature);
  };
  const Box visible = port.visible();
  const auto at = [&](double station) { return plot.left() + port.toPixels({station, 0.0}).x; };

  painter.setPen(QPen(look_.grid, 0.8));
  painter.drawLine(QPointF(band.left(), middle), QPointF(band.right(), middle));
  for (const view::AxisElement& element : chart_.elements) {
    if (element.endStation < visible.minX || element.startStation > visible.maxX) continue;
    const double start = std::clamp(element.startStation, visible.minX, visible.maxX);
    const double end = std::clamp(element.endStation, visible.minX, visible.maxX);
    const double from = at(start);
    const double to = at(end);
    const auto heightAt = [&](double station) {
      const double first = level(element.startCurvature);
      return first + (level(element.endCurvature) - first) * element.curvatureShareAt(station);
    };
    painter.setPen(QPen(look_.grid, 0.8));
    if (start == element.startStation) painter.drawLine(QPointF(from, band.top()), QPointF(from, band.bottom()));
    if (end == element.endStation) painter.drawLine(QPointF(to, band.top()), QPointF(to, band.bottom()));
    painter.setPen(QPen(look_.ink, 1.6));
    QPolygonF curvature{QPointF(from, heightAt(start))};
    if (element.kind > civil::ElementKind::Clothoid) {
      constexpr int kSteps = 32;
      for (int i = 1; i < kSteps; ++i) {
        const double station = start + (end - start) * i / kSteps;
        curvature << QPointF(at(station), heightAt(station));
      }
    }
    curvature << QPointF(to, heightAt(end));
    painter.drawPolyline(curvature);
    painter.setPen(look_.ink);
    paintBandText(painter, element, from, to, middle);
  }
  painter.setPen(QPen(look_.ink, 1.0));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(band);
  painter.restore();
}

void ChartPainter::paintSeries(QPainter& painter, const QRect& plot, const view::Viewport& port,
                               const ChartSeries& series, bool isHighlighted) const {
  const Box visible = port.visible();
  const auto toPoint = [&](Vec2 place) { return pointOf(plot, port, place); };
  const view::Lines lines = view::clipped(series.lines, visible);
  QPainterPath path;
  QPainterPath dots;
  dots.setFillRule(Qt::WindingFill);  // dots that overlap stay full
  PathMaker maker(path);
  std::size_t points = 0;
  for (const view::Line& line : lines) {
    if (line.size() == 1) dots.addEllipse(toPoint(line.front()), series.pen.width, series.pen.width);
    for (const Vec2 place : line) maker.add(toPoint(place));
    maker.finish();
    points += line.size();
  }
  QPen pen = look_.penOf(series.pen);
  painter.setBrush(Qt::NoBrush);
  if (isHighlighted) {
    QColor glow = look_.highlight;
    glow.setAlpha(90);
    painter.setPen(QPen(glow, series.pen.width + 7.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(path);
    pen.setWidthF(series.pen.width + 0.8);
  }
  painter.setPen(pen);
  painter.drawPath(path);

  // A road of a few metres in a section of a hundred would be one blot.
  const QRectF drawn = path.boundingRect();
  if (series.hasDots && static_cast<double>(points) * kDotDistance <= std::max(drawn.width(), drawn.height())) {
    for (const view::Line& line : lines)
      for (const Vec2 place : line)
        if (line.size() > 1) dots.addEllipse(toPoint(place), series.pen.width + 0.4, series.pen.width + 0.4);
  }
  if (!dots.isEmpty()) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(look_.colourOf(series.pen));
    painter.drawPath(dots);
  }
  paintTangents(painter, plot, port, series);
}

// Tangents under the curves, and a ring at each intersection.
void ChartPainter::paintTangents(QPainter& painter, const QRect& plot, const view::Viewport& port,
                                 const ChartSeries& series) const {
  const Box visible = port.visible();
  const auto toPoint = [&](Vec2 place) { return pointOf(plot, port, place); };
  const auto isVisible = [&](Vec2 p) {
    return p.x >= visible.minX && p.x <= visible.maxX && p.y >= visible.minY && p.y <= visible.maxY;
  };
  for (const ChartMark& mark : series.marks) {
    painter.setBrush(Qt::NoBrush);
    if (mark.curveStart.x < mark.curveEnd.x) {
      painter.setPen(QPen(look_.faintInk, 0.8, Qt::DashLine));
      const view::Lines tangents = view::clipped({{mark.curveStart, mark.place, mark.curveEnd}}, visible);
      for (const view::Line& line : tangents)
        for (std::size_t i = 1; i < line.size(); ++i) painter.drawLine(toPoint(line[i - 1]), toPoint(line[i]));
      painter.setPen(QPen(look_.colourOf(series.pen), 1.2));
      for (const Vec2 end : {mark.curveStart, mark.curveEnd}) {
        if (!isVisible(end)) continue;
        const QPointF at = toPoint(end);
        painter.drawLine(at - QPointF(0.0, 4.0), at + QPointF(0.0, 4.0));
      }
    }
    if (!isVisible(mark.place)) continue;
    painter.setPen(QPen(look_.colourOf(series.pen), 1.2));
    painter.setBrush(look_.paper);
    painter.drawEllipse(toPoint(mark.place), kMarkRadius, kMarkRadius);
  }
}

void ChartPainter::paintSample(QPainter& painter, const QRectF& area, const ChartPen& pen) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(look_.penOf(pen));
  painter.drawLine(QPointF(area.left() + 1.0, area.center().y()), QPointF(area.right() - 1.0, area.center().y()));
  painter.restore();
}

void ChartPainter::paintEntry(QPainter& painter, const QRectF& area, const ChartEntry& entry) const {
  if (entry.series != nullptr) paintSample(painter, area, entry.series->pen);
  if (entry.fill != nullptr) paintFillSample(painter, area, *entry.fill, look_);
}

void ChartPainter::paintTag(QPainter& painter, const QRectF& tag, const QString& text) const {
  painter.setPen(Qt::NoPen);
  painter.setBrush(look_.ink);
  painter.drawRoundedRect(tag, 2.0, 2.0);
  painter.setPen(look_.paper);
  painter.drawText(tag, Qt::AlignCenter, text);
}

void ChartPainter::paintCross(QPainter& painter, const QRectF& area, const view::Viewport& port, Vec2 place) const {
  const QRect plot = plotArea(area);
  const QFontMetricsF metrics(font_);
  const QPointF at = pointOf(plot, port, place);
  painter.save();
  painter.setFont(font_);
  painter.setPen(QPen(look_.faintInk, 1.0, Qt::DotLine));
  painter.drawLine(QPointF(at.x(), plot.top()), QPointF(at.x(), plot.bottom()));
  painter.drawLine(QPointF(plot.left(), at.y()), QPointF(plot.right(), at.y()));
  painter.setRenderHint(QPainter::Antialiasing);
  const bool band = hasBand() && area.height() >= kLeastHeightForBand;
  const QString x = xText(place.x, 3);
  const double width = metrics.horizontalAdvance(x) + 2 * kRoom;
  const double left = std::clamp(at.x() - width / 2, area.left(), std::max(area.left(), area.right() - width));
  paintTag(painter, {left, plot.bottom() + (band ? kBandHeight : 0.0) + 4.0, width, metrics.height() + 2.0}, x);
  const QString y = toQt(text::fixedText(place.y, 3));
  const double yWidth = metrics.horizontalAdvance(y) + kRoom;
  paintTag(painter, {plot.left() - yWidth - 2.0, at.y() - metrics.height() / 2 - 1.0, yWidth, metrics.height() + 2.0},
           y);
  painter.restore();
}

void ChartPainter::paintSnap(QPainter& painter, const QRectF& area, const view::Viewport& port, Vec2 place,
                             const QString& text) const {
  const QRect plot = plotArea(area);
  const QFontMetricsF metrics(font_);
  const QPointF at = pointOf(plot, port, place);
  painter.save();
  painter.setFont(font_);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(look_.highlight, 2.0));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(at, 5.0, 5.0);
  const QStringList lines = text.split(QLatin1Char('\n'));
  double width = 0.0;
  for (const QString& line : lines) width = std::max(width, metrics.horizontalAdvance(line));
  QRectF box(0.0, 0.0, width + 2 * kRoom, metrics.height() * static_cast<double>(lines.size()) + kRoom);
  box.moveBottomLeft(at + QPointF(10.0, -10.0));
  if (box.right() > plot.right()) box.moveRight(at.x() - 10.0);
  if (box.top() < plot.top()) box.moveTop(at.y() + 12.0);
  if (box.left() < plot.left()) box.moveLeft(plot.left());
  painter.setPen(QPen(look_.faintInk, 1.0));
  painter.setBrush(look_.paper);
  painter.drawRoundedRect(box, 3.0, 3.0);
  painter.setPen(look_.ink);
  double base = box.top() + kRoom / 2 + metrics.ascent();
  for (const QString& line : lines) {
    painter.drawText(QPointF(box.left() + kRoom, base), line);
    base += metrics.height();
  }
  painter.restore();
}

}  // namespace lvx::desktop
