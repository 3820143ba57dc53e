#pragma once

#include <QByteArray>
#include <QColor>
#include <QSize>
#include <QString>
#include <vector>

class QPainter;

namespace lvx::desktop {

/// One of the program's pictures, as it is built in: as SVG where Qt can draw that, else as it was recorded when the
/// program was built.
class IconDrawing {
 public:
  /// By the file name without extension. Ends the program where no such picture is built in.
  explicit IconDrawing(const QString& name);
  /// From the painter's origin on; `colour` for lines that have none of their own.
  void paint(QPainter& painter, const QSize& size, const QColor& colour) const;

 private:
  std::vector<QByteArray> parts_;
};

}  // namespace lvx::desktop
