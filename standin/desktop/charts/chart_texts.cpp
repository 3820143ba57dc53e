#include "desktop/charts/chart_texts.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "view/lines.h"

namespace lvx::desktop {

using civil::Box;
using civil::Vec2;

namespace {

/// Between which heights a series runs in each column of a plot, so that texts can keep clear of it at a small price.
class SeriesColumns {
 public:
  explicit SeriesColumns(const QRect& plot) : plot_(plot), columns_(static_cast<std::size_t>(plot.width()) + 1) {}
  /// Counted from the plot's corner.
  void add(Vec2 from, Vec2 to) {
    const Vec2 left = from.x <= to.x ? from : to;
    const Vec2 right = from.x <= to.x ? to : from;
    const double rise = right.x > left.x ? (right.y - left.y) / (right.x - left.x) : 0.0;
    const int last = columnOf(right.x);
    for (int column = columnOf(left.x); column <= last; ++column) {
      Range& range = columns_[static_cast<std::size_t>(column)];
      range.add(left.y + (std::clamp<double>(column, left.x, right.x) - left.x) * rise);
      range.add(right.y - (right.x - std::clamp<double>(column + 1, left.x, right.x)) * rise);
    }
  }
  [[nodiscard]] bool crosses(const QRectF& area) const {
    const QRectF inside = area.translated(-plot_.topLeft());
    const int last = columnOf(inside.right());
    for (int column = columnOf(inside.left()); column <= last; ++column) {
      const Range& range = columns_[static_cast<std::size_t>(column)];
      if (range.top <= inside.bottom() && range.bottom >= inside.top()) return true;
    }
    return false;
  }

 private:
  struct Range {
    double top = std::numeric_limits<double>::infinity();
    double bottom = -std::numeric_limits<double>::infinity();
    void add(double y) {
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  };
  [[nodiscard]] int columnOf(double x) const {
    return static_cast<int>(std::clamp(x, 0.0, static_cast<double>(plot_.width())));
  }

  QRect plot_;
  std::vector<Range> columns_;
};

/// Where texts may still stand in a plot.
class TextRoom {
 public:
  TextRoom(const Chart& chart, const QRect& plot, const view::Viewport& port)
      : plot_(plot), port_(port), inside_(QRectF(plot).adjusted(3.0, 3.0, -3.0, -3.0)) {
    for (const ChartSeries& series : chart.series) {
      if (!series.isShown) continue;
      SeriesColumns& columns = series_.emplace_back(plot);
      for (const view::Line& line : view::clipped(series.lines, visible()))
        for (std::size_t i = 1; i < line.size(); ++i) columns.add(port.toPixels(line[i - 1]), port.toPixels(line[i]));
    }
  }
  [[nodiscard]] QPointF toPoint(Vec2 place) const {
    const Vec2 pixel = port_.toPixels(place);
    return plot_.topLeft() + QPointF(pixel.x, pixel.y);
  }
  [[nodiscard]] Box visible() const { return port_.visible(); }
  [[nodiscard]] bool isVisible(Vec2 place) const { return QRectF(plot_).contains(toPoint(place)); }
  /// Inside the plot and no text there.
  [[nodiscard]] bool isFree(const QRectF& area) const {
    return inside_.contains(area) &&
           std::none_of(taken_.begin(), taken_.end(), [&](const QRectF& other) { return other.intersects(area); });
  }
  [[nodiscard]] bool crossesLine(const QRectF& area) const {
    return std::any_of(series_.begin(), series_.end(),
                       [&](const SeriesColumns& columns) { return columns.crosses(area); });
  }
  void take(const QRectF& area) { taken_.push_back(area); }

 private:
  QRect plot_;
  view::Viewport port_;
  QRectF inside_;
  std::vector<SeriesColumns> series_;
  std::vector<QRectF> taken_;
};

void paintMarkText(QPainter& painter, const ChartMark& mark, const ChartLook& look, TextRoom& room) {
  const QFontMetricsF metrics(painter.font());
  const QPointF foot = room.toPoint(mark.place);
  double width = 0.0;
  for (const QString& line : mark.text) width = std::max(width, metrics.horizontalAdvance(line));
  const double height = metrics.height() * static_cast<double>(mark.text.size());
  const auto findPlace = [&]() -> std::optional<QRectF> {
    for (const bool above : {mark.isTextAbove, !mark.isTextAbove}) {
      for (const double distance : {14.0, 26.0, 44.0, 70.0, 100.0}) {
        for (const double aside : {0.0, -0.5, 0.5}) {
          const double top = above ? foot.y() - distance - height : foot.y() + distance;
          const QRectF area(foot.x() - width / 2 + aside * width - 3.0, top - 1.0, width + 6.0, height + 2.0);
          if (room.isFree(area) && !room.crossesLine(area)) return area;
        }
      }
    }
    return {};
  };
  const auto place = findPlace();
  if (!place) return;
  room.take(*place);
  painter.setPen(QPen(look.faintInk, 0.8));
  const bool above = place->center().y() < foot.y();
  painter.drawLine(QPointF(foot.x(), foot.y() + (above ? -kMarkRadius : kMarkRadius)),
                   QPointF(foot.x(), above ? place->bottom() : place->top()));
  painter.setPen(look.ink);
  double base = place->top() + 1.0 + metrics.ascent();
  for (const QString& line : mark.text) {
    painter.drawText(QPointF(place->center().x() - metrics.horizontalAdvance(line) / 2, base), line);
    base += metrics.height();
  }
}

void paintNote(QPainter& painter, const ChartNote& note, TextRoom& room) {
  const QFontMetricsF metrics(painter.font());
  const view::Lines part = view::clipped({{note.start, note.end}}, room.visible());
  if (part.empty() || part.front().size() < 2) return;
  const QPointF from = room.toPoint(part.front().front());
  const QPointF to = room.toPoint(part.front().back());
  const double run = std::hypot(to.x() - from.x(), to.y() - from.y());
  const double width = metrics.horizontalAdvance(note.text);
  const double angle = std::atan2(to.y() - from.y(), to.x() - from.x());
  const QPointF along(std::cos(angle), std::sin(angle));
  const QPointF across(-std::sin(angle), std::cos(angle));
  const double size = metrics.ascent();
  constexpr double kOff = 4.0;
  const auto crossesLine = [&](QPointF centre) {
    // In pieces, since the line below is as slanted as the text.
    const double half = std::max(size / 2 - 1.0, 1.0);
    const int pieces = static_cast<int>(width / half);
    for (int i = 1; i <= pieces; ++i) {
      const QPointF piece = centre + (i * half - width / 2) * along;
      if (room.crossesLine(QRectF(piece - QPointF(half, half), QSizeF(2 * half, 2 * half)))) return true;
    }
    return false;
  };
  for (const bool mayCross : {false, true}) {
    for (const double share : {0.5, 0.35, 0.65, 0.2, 0.8}) {
      if (std::min(share, 1.0 - share) * run < width / 2 + 2.0) continue;
      for (const bool above : {true, false}) {
        const double away = above ? -kOff : kOff + size;  // of the text's foot from the line
        const QPointF centre = from + share * (to - from) + (away - size / 2) * across;
        const double boxWidth = width * std::abs(along.x()) + size * std::abs(along.y());
        const double boxHeight = width * std::abs(along.y()) + size * std::abs(along.x());
        const QRectF area(centre - QPointF(boxWidth / 2, boxHeight / 2), QSizeF(boxWidth, boxHeight));
        if (!room.isFree(area) || (!mayCross && crossesLine(centre))) continue;
        room.take(area);
        painter.save();
        painter.translate(from + share * (to - from));
        painter.rotate(angle * 180.0 / civil::kPi);
        painter.drawText(QPointF(-width / 2, away), note.text);
        painter.restore();
        return;
      }
    }
  }
}

}  // namespace

void paintTexts(QPainter& painter, const Chart& chart, const ChartLook& look, const QFont& font, const QRect& plot,
                const view::Viewport& port) {
  QFont small = font;
  small.setPixelSize(std::max(font.pixelSize() - 1, 8));
  painter.save();
  painter.setFont(small);
  TextRoom room(chart, plot, port);
  for (const ChartSeries& series : chart.series) {
    if (!series.isShown) continue;
    for (const ChartMark& mark : series.marks)
      if (!mark.text.isEmpty() && room.isVisible(mark.place)) paintMarkText(painter, mark, look, room);
  }
  for (const ChartSeries& series : chart.series) {
    if (!series.isShown) continue;
    painter.setPen(look.colourOf(series.pen));
    for (const ChartNote& note : series.notes) paintNote(painter, note, room);
  }
  painter.restore();
}

}  // namespace lvx::desktop
