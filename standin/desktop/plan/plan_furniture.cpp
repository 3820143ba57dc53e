#include "desktop/plan/plan_furniture.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "desktop/common/qt_text.h"

namespace lvx::desktop {
namespace {

constexpr double kMargin = 14.0;
constexpr double kMostBar = 180.0;
constexpr double kRampWidth = 12.0;
constexpr double kMostRamp = 168.0;
constexpr double kPadding = 8.0;

/// As many decimals as a step needs.
QString stepText(double value, double step) {
  const int decimals = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 6);
  return QString::number(value, 'f', decimals);
}

/// As outlines, like the labels beside it: drawn as text, a font's letters would come out a little otherwise from then on.
void drawOutlines(QPainter& painter, QPointF baseline, const QFont& font, const QString& text, const QColor& colour) {
  QPainterPath outlines;
  outlines.addText(baseline, font, text);
  painter.fillPath(outlines, colour);
}

QColor veil(const PlanColours& colours) {
  QColor fill = colours.ground;
  fill.setAlpha(205);
  return fill;
}

}  // namespace

QString unitSign(const std::string& linearUnit) {
  if (linearUnit.empty() || linearUnit == "meter") return QStringLiteral("m");
  if (linearUnit == "foot" || linearUnit == "USSurveyFoot") return QStringLiteral("ft");
  return toQt(linearUnit);
}

double PlanFurniture::roundStep(double most) {
  const double power = std::pow(10.0, std::floor(std::log10(most)));
  for (const double digit : {5.0, 2.0})
    if (digit * power <= most) return digit * power;
  return power;
}

PlanFurniture::PlanFurniture(const QRectF& area, double scale, const QString& unit, const Heights* heights,
                             const QFont& font)
    : font_(font), unit_(unit), heights_(heights) {
  const QFontMetricsF metrics(font_);
  const QRectF inside = area.adjusted(kMargin, kMargin, -kMargin, -kMargin);
  barLength_ = roundStep(std::min(kMostBar, std::max(60.0, inside.width() / 4)) / scale);
  barPixels_ = barLength_ * scale;
  const double labelWidth =
      metrics.horizontalAdvance(stepText(barLength_, barLength_) + QLatin1Char(' ') + unit_) + kPadding;
  bar_ = QRectF(inside.left(), inside.bottom() - metrics.height() - 14.0, barPixels_ + labelWidth + kPadding,
                metrics.height() + 14.0);
  arrow_ = QRectF(inside.right() - 30.0, inside.top(), 30.0, 52.0);
  if (heights_ != nullptr) {
    const double width = kRampWidth + 10.0 +
                         std::max(metrics.horizontalAdvance(QString::number(heights_->most, 'f', 1)),
                                  metrics.horizontalAdvance(QString::number(heights_->least, 'f', 1))) +
                         2 * kPadding;
    const double height = std::min(kMostRamp, inside.height() / 2) + 2 * kPadding + 1.6 * metrics.height();
    legend_ = QRectF(inside.right() - width, inside.bottom() - height, width, height);
  }
}

std::vector<QRectF> PlanFurniture::places() const {
  std::vector<QRectF> places{arrow_, bar_};
  if (heights_ != nullptr) places.push_back(legend_);
  return places;
}

void PlanFurniture::paint(QPainter& painter, const PlanColours& colours) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  paintNorthArrow(painter, colours);
  paintScaleBar(painter, colours);
  if (heights_ != nullptr) paintLegend(painter, colours);
  painter.restore();
}

void PlanFurniture::paintNorthArrow(QPainter& painter, const PlanColours& colours) const {
  painter.setPen(Qt::NoPen);
  painter.setBrush(veil(colours));
  painter.drawRoundedRect(arrow_, 6, 6);
  const QPointF top(arrow_.center().x(), arrow_.top() + 19.0);
  const QPointF notch = top + QPointF(0, 21.0);
  painter.setPen(QPen(colours.text, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(colours.text);
  painter.drawPolygon(QPolygonF({top, top + QPointF(-8, 27), notch}));
  painter.setBrush(colours.ground);
  painter.drawPolygon(QPolygonF({top, top + QPointF(8, 27), notch}));
  QFont bold = font_;
  bold.setBold(true);
  //: North, above the arrow of a plan.
  const QString north = tr("N");
  const double across = QFontMetricsF(bold).horizontalAdvance(north);
  drawOutlines(painter, QPointF(arrow_.center().x() - across / 2, arrow_.top() + 15.0), bold, north, colours.text);
}

void PlanFurniture::paintScaleBar(QPainter& painter, const PlanColours& colours) const {
  painter.setPen(Qt::NoPen);
  painter.setBrush(veil(colours));
  painter.drawRoundedRect(bar_, 6, 6);
  const double left = bar_.left() + kPadding;
  const double y = bar_.bottom() - 12.0;
  // Four fields, every other one filled, as on a drawn plan.
  painter.setPen(QPen(colours.text, 1.0));
  for (int field = 0; field < 4; ++field) {
    painter.setBrush(field % 2 == 0 ? colours.text : colours.ground);
    painter.drawRect(QRectF(left + barPixels_ * field / 4, y, barPixels_ / 4, 5.0));
  }
  const double base = y - 5.0;
  drawOutlines(painter, QPointF(left - 1, base), font_, QStringLiteral("0"), colours.text);
  const QString end = stepText(barLength_, barLength_) + QLatin1Char(' ') + unit_;
  const QFontMetricsF metrics(font_);
  const double half = metrics.horizontalAdvance(stepText(barLength_, barLength_)) / 2;
  drawOutlines(painter, QPointF(left + barPixels_ - half, base), font_, end, colours.text);
}

void PlanFurniture::paintLegend(QPainter& painter, const PlanColours& colours) const {
  const QFontMetricsF metrics(font_);
  painter.setPen(Qt::NoPen);
  painter.setBrush(veil(colours));
  painter.drawRoundedRect(legend_, 6, 6);
  drawOutlines(painter, QPointF(legend_.left() + kPadding, legend_.top() + kPadding + metrics.ascent()), font_,
               tr("Height") + QLatin1Char(' ') + unit_, colours.text);
  const QRectF ramp(legend_.left() + kPadding, legend_.top() + kPadding + 1.6 * metrics.height(), kRampWidth,
                    legend_.height() - 2 * kPadding - 1.6 * metrics.height());
  const double range = heights_->most - heights_->least;
  const int rows = static_cast<int>(ramp.height());
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (int row = 0; row < rows; ++row) {
    const double height = heights_->most - range * (row + 0.5) / rows;
    painter.fillRect(QRectF(ramp.left(), ramp.top() + row, ramp.width(), 1.0), heights_->colourOf(height));
  }
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colours.quietText, 1.0));
  painter.drawRect(ramp);
  painter.setPen(QPen(colours.text, 1.0));
  const auto mark = [&](double height, double step) {
    const double y = ramp.bottom() - (range > 0.0 ? (height - heights_->least) / range : 0.5) * ramp.height();
    painter.drawLine(QPointF(ramp.right(), y), QPointF(ramp.right() + 4.0, y));
    drawOutlines(painter, QPointF(ramp.right() + 8.0, y + metrics.capHeight() / 2), font_, stepText(height, step),
                 colours.text);
  };
  if (range <= 0.0) {
    mark(heights_->least, 0.1);
    return;
  }
  // Round heights, no nearer than a line and a half.
  double step = roundStep(range);
  while (step * ramp.height() / range > 3.9 * metrics.height()) step = roundStep(step * 0.51);
  const double first = std::ceil(heights_->least / step) * step;
  const int last = static_cast<int>(std::floor((heights_->most - first) / step + 1e-9));
  for (int i = 0; i <= last; ++i) mark(first + i * step, step);
}

}  // namespace lvx::desktop
