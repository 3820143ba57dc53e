#include "desktop/charts/chart_page.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

namespace {

constexpr double kUnitsPerMillimetre = 96.0 / 25.4;
constexpr QSizeF kA4(297.0, 210.0);
constexpr QSizeF kA3(420.0, 297.0);
constexpr double kMargin = 10.0;  ///< mm
constexpr double kSampleWidth = 40.0;
constexpr double kGap = 10.0;
constexpr int kTitleSize = 20;
constexpr int kTextSize = 13;

/// The scales that plans are drawn in.
constexpr double kScales[] = {1.0, 2.0, 5.0, 10.0,  20.0, 25.0, 50.0, 100.0, 200.0, 250.0, 500.0, 1e3, 2e3, 2.5e3,
                              5e3, 1e4, 2e4, 2.5e4, 5e4,  1e5,  2e5,  2.5e5, 5e5,   1e6,   2e6,   5e6, 1e7};

QFont textFont(const QFont& font) {
  QFont text(font);
  text.setPixelSize(kTextSize);
  return text;
}

QFont titleFont(const QFont& font) {
  QFont title(font);
  title.setPixelSize(kTitleSize);
  title.setBold(true);
  return title;
}

QString scaleNumber(double scale) { return toQt(text::fixedText(scale, scale == std::floor(scale) ? 0 : 1)); }

}  // namespace

ChartPage::ChartPage(const Chart& chart, const QFont& font, double exaggeration)
    : chart_(chart), painter_(chart, ChartLook::printed(), textFont(font)) {
  // The larger sheet is for what the smaller one shows too small to read off.
  const double worth = chart.measure == ChartMeasure::Offset ? 250.0 : 1000.0;
  layOut(kA4);
  chooseScale(exaggeration);
  const double onSmall = scale_;
  if (onSmall > 0.0 && onSmall <= worth) return;
  layOut(kA3);
  chooseScale(exaggeration);
  isA3_ = scale_ > 0.0 && scale_ < onSmall;
  if (isA3_) return;
  layOut(kA4);
  chooseScale(exaggeration);
}

double ChartPage::legendHeight() const {
  const QFontMetricsF metrics(painter_.font());
  double rows = 0.0;
  double x = 0.0;
  for (const ChartEntry& entry : listedEntries(chart_)) {
    const double width = kSampleWidth + metrics.horizontalAdvance(entry.name) + 3 * kGap;
    if (rows == 0.0 || x + width > frame_.width() - 2 * kGap) {
      rows += 1.0;
      x = 0.0;
    }
    x += width;
  }
  return rows * (metrics.height() + 4.0);
}

void ChartPage::layOut(QSizeF millimetres) {
  size_ = millimetres;
  frame_ =
      QRectF(QPointF(kMargin, kMargin), QSizeF(millimetres.width() - 2 * kMargin, millimetres.height() - 2 * kMargin));
  frame_ = QRectF(frame_.topLeft() * kUnitsPerMillimetre, frame_.size() * kUnitsPerMillimetre);
  const double head =
      QFontMetricsF(titleFont(painter_.font())).height() + QFontMetricsF(painter_.font()).height() + 2.5 * kGap;
  const double legend = legendHeight();
  legend_ = QRectF(frame_.left() + kGap, frame_.top() + head + kGap / 2, frame_.width() - 2 * kGap, legend);
  area_ = QRectF(frame_.left() + kGap / 2, legend_.bottom() + kGap / 2, frame_.width() - kGap,
                 frame_.bottom() - legend_.bottom() - kGap);
}

void ChartPage::chooseScale(double exaggeration) {
  scale_ = 0.0;
  exaggeration_ = exaggeration > 0.0 ? exaggeration : 1.0;
  const civil::Box box = chart_.box();
  if (box.isEmpty()) return;
  const QRect plot = painter_.plotArea(area_);
  const double paper = chart_.unitMillimetres * kUnitsPerMillimetre;  // units of paper for one of the drawing at 1:1
  const double across = (box.maxX - box.minX) * paper / (plot.width() * 0.99);
  const double up = (box.maxY - box.minY) * paper;
  const double room = plot.height() * painter_.heightShare();
  const auto fitting = [&](double least) {
    for (const double scale : kScales)
      if (scale >= least) return scale;
    return 0.0;
  };
  scale_ = fitting(std::max(across, up * exaggeration_ / room));
  if (scale_ > 0.0 && !(exaggeration > 0.0)) exaggeration_ = painter_.enlargement(up / scale_, room);
}

QString ChartPage::scaleText() const {
  if (scale_ == 0.0) return {};
  if (exaggeration_ == 1.0) return tr("Scale 1:%1").arg(scaleNumber(scale_));
  return tr("Scale 1:%1, heights 1:%2").arg(scaleNumber(scale_), scaleNumber(scale_ / exaggeration_));
}

void ChartPage::paint(QPainter& painter) const {
  const ChartLook& look = painter_.look();
  const QFont title = titleFont(painter_.font());
  const QFontMetricsF titleMetrics(title);
  const QFontMetricsF metrics(painter_.font());
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(QRectF(QPointF(0.0, 0.0), size_ * kUnitsPerMillimetre), look.paper);
  painter.setPen(QPen(look.ink, 1.4));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(frame_);

  const double left = frame_.left() + kGap;
  const double right = frame_.right() - kGap;
  const double first = frame_.top() + kGap + titleMetrics.ascent();
  const double second = first + titleMetrics.descent() + 2.0 + metrics.ascent();
  painter.setFont(painter_.font());
  painter.setPen(look.ink);
  double widest = 0.0;
  const auto atRight = [&](const QString& text, double base) {
    const QString shown = metrics.elidedText(text, Qt::ElideMiddle, frame_.width() * 0.4);
    const double width = metrics.horizontalAdvance(shown);
    widest = std::max(widest, width);
    painter.drawText(QPointF(right - width, base), shown);
  };
  atRight(chart_.fileName, first);
  atRight(scaleText(), second);
  const double room = right - left - widest - 2 * kGap;
  painter.drawText(QPointF(left, second), metrics.elidedText(chart_.subtitle, Qt::ElideRight, room));
  painter.setFont(title);
  painter.drawText(QPointF(left, first), titleMetrics.elidedText(chart_.title, Qt::ElideRight, room));
  const double under = legend_.top() - kGap / 2;
  painter.setPen(QPen(look.ink, 1.0));
  painter.drawLine(QPointF(frame_.left(), under), QPointF(frame_.right(), under));

  painter.setFont(painter_.font());
  double x = legend_.left();
  double y = legend_.top();
  const double row = metrics.height() + 4.0;
  for (const ChartEntry& entry : listedEntries(chart_)) {
    const double width = kSampleWidth + metrics.horizontalAdvance(entry.name) + 3 * kGap;
    if (x > legend_.left() && x + width > legend_.right()) {
      x = legend_.left();
      y += row;
    }
    painter_.paintEntry(painter, QRectF(x, y, kSampleWidth, row), entry);
    painter.setPen(look.ink);
    painter.drawText(QPointF(x + kSampleWidth + kGap / 2, y + 2.0 + metrics.ascent()), entry.name);
    x += width;
  }

  view::Viewport port = painter_.viewportFor(area_, exaggeration_);
  if (scale_ > 0.0) port.setScale(chart_.unitMillimetres * kUnitsPerMillimetre / scale_);
  painter_.paint(painter, area_, port);
  painter.restore();
}

}  // namespace lvx::desktop
