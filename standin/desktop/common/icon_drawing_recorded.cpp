#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPicture>

#include "desktop/common/detail/icon_drawing.h"

namespace lvx::desktop {

namespace {

/// The side of the square that the pictures were recorded in.
constexpr double kSide = 24.0;

QByteArray builtIn(const QString& name, const char* ending) {
  QFile file(QStringLiteral(":/desktop/%1.%2").arg(name, QLatin1String(ending)));
  if (!file.open(QIODevice::ReadOnly)) qFatal("icon '%s' isn't built in", qUtf8Printable(name));
  return file.readAll();
}

QImage played(const QByteArray& recorded, const QSize& size) {
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPicture picture;
  picture.setData(recorded.constData(), static_cast<uint>(recorded.size()));
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size.width() / kSide, size.height() / kSide);
  painter.drawPicture(0, 0, picture);
  return image;
}

}  // namespace

IconDrawing::IconDrawing(const QString& name) : parts_{builtIn(name, "plain"), builtIn(name, "coloured")} {}

void IconDrawing::paint(QPainter& painter, const QSize& size, const QColor& colour) const {
  if (size.isEmpty()) return;
  QImage image = played(parts_[0], size);
  QPainter both(&image);
  both.setCompositionMode(QPainter::CompositionMode_SourceIn);
  both.fillRect(image.rect(), colour);
  both.setCompositionMode(QPainter::CompositionMode_SourceOver);
  both.drawImage(0, 0, played(parts_[1], size));
  both.end();
  painter.drawImage(0, 0, image);
}

}  // namespace lvx::desktop
