#include <QFile>
#include <QPainter>
#include <QRectF>
#include <QSvgRenderer>

#include "desktop/common/detail/icon_drawing.h"

namespace lvx::desktop {

IconDrawing::IconDrawing(const QString& name) {
  QFile file(QStringLiteral(":/desktop/%1.svg").arg(name));
  if (!file.open(QIODevice::ReadOnly)) qFatal("icon '%s' isn't built in", qUtf8Printable(name));
  parts_.push_back(file.readAll());
}

void IconDrawing::paint(QPainter& painter, const QSize& size, const QColor& colour) const {
  QSvgRenderer renderer(QByteArray(parts_.front()).replace("currentColor", colour.name().toLatin1()));
  renderer.render(&painter, QRectF(QPointF(0, 0), size));
}

}  // namespace lvx::desktop
