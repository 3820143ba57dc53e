#include "desktop/plan/plan_pointer.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <cmath>
#include <utility>

namespace lvx::desktop {

namespace {

constexpr double kPadding = 7.0;
constexpr QPointF kBeside(18.0, 18.0);

QPointF cornerFor(const QSizeF& size, const QRectF& area, std::optional<QPointF> pointer) {
  if (!pointer) return {12.0, 12.0};
  QPointF corner = *pointer + kBeside;
  if (corner.x() + size.width() > area.width() - 4.0) corner.setX(pointer->x() - kBeside.x() - size.width());
  if (corner.y() + size.height() > area.height() - 4.0) corner.setY(pointer->y() - kBeside.y() - size.height());
  return {std::clamp(corner.x(), 4.0, std::max(4.0, area.width() - 4.0 - size.width())),
          std::clamp(corner.y(), 4.0, std::max(4.0, area.height() - 4.0 - size.height()))};
}

}  // namespace

QCursor pickCursor(double pixelRatio) {
  constexpr int kSize = 41;
  constexpr double kMiddle = kSize / 2.0;
  QImage image(QSize(kSize, kSize) * pixelRatio, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(pixelRatio);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  for (const auto& [colour, width] : {std::pair(QColor(Qt::white), 3.0), std::pair(QColor(Qt::black), 1.0)}) {
    painter.setPen(QPen(colour, width));
    for (const double side : {-1.0, 1.0}) {
      painter.drawLine(QPointF(kMiddle + side * kPickRadius, kMiddle), QPointF(kMiddle + side * 18.0, kMiddle));
      painter.drawLine(QPointF(kMiddle, kMiddle + side * kPickRadius), QPointF(kMiddle, kMiddle + side * 18.0));
    }
    painter.drawRect(QRectF(kMiddle - kPickRadius, kMiddle - kPickRadius, 2 * kPickRadius, 2 * kPickRadius));
  }
  painter.end();
  return QCursor(QPixmap::fromImage(image), kSize / 2, kSize / 2);
}

void paintSelectionWindow(QPainter& painter, QPointF from, QPointF to, const PlanColours& colours) {
  const bool crossing = to.x() < from.x();
  QColor colour = crossing ? colours.crossing : colours.window;
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setPen(QPen(colour, 1.4, crossing ? Qt::DashLine : Qt::SolidLine));
  colour.setAlpha(46);
  painter.setBrush(colour);
  painter.drawRect(QRectF(from, to).normalized());
}

void paintPointerBox(QPainter& painter, const QRectF& area, const PointerBox& box, std::optional<QPointF> pointer,
                     const QFont& font, const PlanColours& colours) {
  QFont bold = font;
  bold.setBold(true);
  const QFontMetricsF metrics(font);
  const double line = metrics.height() + 2.0;
  double across = 0.0;
  for (const QString& text : box.lines) {
    const bool isFirst = box.hasPrompt && &text == &box.lines.first();
    across = std::max(across, (isFirst ? QFontMetricsF(bold) : metrics).horizontalAdvance(text));
  }
  const QSizeF size(std::min(across + 2 * kPadding, area.width() - 8.0),
                    line * static_cast<double>(box.lines.size()) + 2 * kPadding - 2.0);
  const QRectF frame(cornerFor(size, area, pointer), size);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(colours.boxFrame, 1.0));
  painter.setBrush(colours.boxFill);
  painter.drawRoundedRect(frame, 5, 5);
  double baseline = frame.top() + kPadding + metrics.ascent();
  for (const QString& text : box.lines) {
    const bool isFirst = box.hasPrompt && &text == &box.lines.first();
    const bool isHint = box.hasHint && &text == &box.lines.last();
    painter.setFont(isFirst ? bold : font);
    painter.setPen(isHint ? colours.quietText : colours.text);
    painter.drawText(QPointF(frame.left() + kPadding, baseline),
                     painter.fontMetrics().elidedText(text, Qt::ElideRight,
                                                      static_cast<int>(std::ceil(frame.width() - 2 * kPadding)) + 1));
    baseline += line;
  }
}

}  // namespace lvx::desktop
