#pragma once

#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>

#include "host/picture_bits.h"

/// Small pictures on controls.
namespace lvx::desktop {

/// A picture of a module as an image without transparency.
[[nodiscard]] QImage imageOf(const host::PictureBits& picture);

/// `image` for a screen of `ratio` device pixels a pixel. Whole ratios repeat pixels, so that drawn edges stay sharp;
/// others are smoothed down from the next whole one.
[[nodiscard]] QPixmap crispPixmap(const QImage& image, qreal ratio);

/// A picture without a frame, at the upper left of its rectangle.
class PictureLabel final : public QLabel {
  Q_OBJECT

 public:
  using QLabel::QLabel;
  /// A null image takes the picture away. What has the colour `face` of the dialog is left out, so that the picture lies
  /// well on whatever is behind it, a group box or a colour scheme that changes.
  void setImage(const QImage& image, const QColor& face);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage image_;
};

/// A push button that shows a picture in place of a caption.
class PictureButton final : public QPushButton {
  Q_OBJECT

 public:
  using QPushButton::QPushButton;
  void setImage(const QImage& image);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage image_;
};

}  // namespace lvx::desktop
