#pragma once

#include <QCache>
#include <QColor>
#include <QFont>
#include <QHash>
#include <QImage>
#include <QPointF>
#include <QSizeF>
#include <QString>

class QPainter;

namespace lvx::desktop {

/// Small texts with a halo in the colour of the ground, so that they can be read over lines and shading. Each is drawn
/// once and kept as an image: hundreds of labels in a moving plan cost little more than copying them.
class HaloText {
 public:
  struct Style {
    QFont font;
    QColor colour;
    QColor halo;
  };

  /// Without the halo, in logical pixels.
  [[nodiscard]] QSizeF sizeOf(const QString& text, const QFont& font);
  /// How many texts that it hasn't drawn before it may draw until this is called again; the others wait for another
  /// frame.
  void allowFresh(int count) { fresh_ = count; }
  /// Whether one had to wait since then.
  [[nodiscard]] bool isWaiting() const { return fresh_ < 0; }
  /// Centred on `centre`, turned clockwise by `degrees`, on whole pixels of the device.
  void draw(QPainter& painter, QPointF centre, const QString& text, const Style& style, double degrees = 0.0);
  /// From now on as text with its halo around it, each anew: for paper.
  void drawAsText(bool isText) { isText_ = isText; }
  void clear();

 private:
  static constexpr int kMostKilobytes = 24'576;

  [[nodiscard]] static QImage render(const QString& text, const Style& style, double degrees, double pixelRatio);

  int fresh_ = 0;
  bool isText_ = false;
  QHash<QString, QSizeF> sizes_;
  QCache<QString, QImage> images_{kMostKilobytes};
};

}  // namespace lvx::desktop
