#include "desktop/plan/halo_text.h"

#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>
#include <QTransform>
#include <algorithm>
#include <cmath>

namespace lvx::desktop {
namespace {

constexpr double kHaloWidth = 3.0;

QString keyOf(const QString& text, const QFont& font) { return text + QLatin1Char('\x1f') + font.key(); }

}  // namespace

QSizeF HaloText::sizeOf(const QString& text, const QFont& font) {
  constexpr qsizetype kMostSizes = 50'000;
  if (sizes_.size() > kMostSizes) sizes_.clear();
  QSizeF& size = sizes_[keyOf(text, font)];
  if (size.isEmpty()) {
    const QFontMetricsF metrics(font);
    size = QSizeF(metrics.horizontalAdvance(text), metrics.capHeight());
  }
  return size;
}

void HaloText::draw(QPainter& painter, QPointF centre, const QString& text, const Style& style, double degrees) {
  if (isText_) {
    const QSizeF plain = sizeOf(text, style.font);
    const QPointF baseline(-plain.width() / 2, plain.height() / 2);
    QPainterPath outline;
    outline.addText(baseline, style.font, text);
    painter.save();
    painter.translate(centre);
    painter.rotate(degrees);
    painter.strokePath(outline, QPen(style.halo, kHaloWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setFont(style.font);
    painter.setPen(style.colour);
    painter.drawText(baseline, text);
    painter.restore();
    return;
  }
  const double ratio = painter.device()->devicePixelRatioF();
  // Half a degree is less than a pixel at the end of a label.
  const double angle = std::round(degrees * 2.0) / 2.0;
  const QString key = keyOf(text, style.font) + QStringLiteral("\x1f%1\x1f%2\x1f%3\x1f%4")
                                                    .arg(style.colour.rgba(), 0, 16)
                                                    .arg(style.halo.rgba(), 0, 16)
                                                    .arg(angle)
                                                    .arg(ratio);
  const QImage* image = images_.object(key);
  QImage fresh;
  if (image == nullptr) {
    if (fresh_ <= 0) {
      fresh_ = -1;
      return;
    }
    --fresh_;
    fresh = render(text, style, angle, ratio);
    image = &fresh;
  }
  const QSizeF size = image->deviceIndependentSize();
  // On whole device pixels: letters stay as sharp as they were drawn.
  const QPointF corner = (centre - QPointF(size.width(), size.height()) / 2) * ratio;
  painter.drawImage(QPointF(std::round(corner.x()), std::round(corner.y())) / ratio, *image);
  if (!fresh.isNull())
    images_.insert(key, new QImage(fresh), std::max(1, static_cast<int>(fresh.sizeInBytes() / 1024)));
}

void HaloText::clear() {
  sizes_.clear();
  images_.clear();
}

QImage HaloText::render(const QString& text, const Style& style, double degrees, double pixelRatio) {
  const QFontMetricsF metrics(style.font);
  const QSizeF plain(metrics.horizontalAdvance(text), metrics.capHeight());
  const QSizeF roomy(plain.width() + 2 * kHaloWidth + 4, metrics.height() + 2 * kHaloWidth);
  QTransform turn;
  turn.rotate(degrees);
  const QRectF box = turn.mapRect(QRectF(QPointF(-roomy.width() / 2, -roomy.height() / 2), roomy));
  const QSize size(static_cast<int>(std::ceil(box.width() * pixelRatio)) + 1,
                   static_cast<int>(std::ceil(box.height() * pixelRatio)) + 1);
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(pixelRatio);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  painter.translate(size.width() / pixelRatio / 2, size.height() / pixelRatio / 2);
  painter.rotate(degrees);
  const QPointF baseline(-plain.width() / 2, plain.height() / 2);
  QPainterPath outline;
  outline.addText(baseline, style.font, text);
  painter.setPen(QPen(style.halo, kHaloWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(outline);
  painter.fillPath(outline, style.colour);
  return image;
}

}  // namespace lvx::desktop
