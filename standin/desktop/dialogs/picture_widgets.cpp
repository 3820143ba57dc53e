#include "desktop/dialogs/picture_widgets.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <cmath>

#include "host/image_button.h"

namespace lvx::desktop {

namespace {

/// Draws at the device pixel that lies nearest to `place`: between two of them a small picture blurs.
void drawOnPixels(QPainter& painter, QPointF place, const QPixmap& pixmap) {
  const QTransform toDevice = painter.deviceTransform();
  const QPointF device = toDevice.map(place);
  const QPointF whole(std::round(device.x()), std::round(device.y()));
  painter.drawPixmap(toDevice.inverted().map(whole), pixmap);
}

host::Rectangle rectangleOf(const QRect& rect) {
  return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

QRect rectOf(const host::Rectangle& rectangle) {
  return {rectangle.left, rectangle.top, rectangle.width(), rectangle.height()};
}

}  // namespace

QImage imageOf(const host::PictureBits& picture) {
  QImage image(host::kPictureSide, host::kPictureSide, QImage::Format_ARGB32);
  for (int y = 0; y < host::kPictureSide; ++y)
    for (int x = 0; x < host::kPictureSide; ++x) {
      const int at = 4 * (y * host::kPictureSide + x);
      const std::uint8_t* pixel = &picture.bytes[static_cast<std::size_t>(at)];
      image.setPixel(x, y, qRgb(pixel[2], pixel[1], pixel[0]));
    }
  return image;
}

QPixmap crispPixmap(const QImage& image, qreal ratio) {
  const auto whole = static_cast<int>(std::ceil(ratio));
  QImage enlarged = image.scaled(image.size() * whole, Qt::IgnoreAspectRatio, Qt::FastTransformation);
  const QSize size(qRound(image.width() * ratio), qRound(image.height() * ratio));
  if (enlarged.size() != size) enlarged = enlarged.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  QPixmap pixmap = QPixmap::fromImage(enlarged);
  pixmap.setDevicePixelRatio(ratio);
  return pixmap;
}

void PictureLabel::setImage(const QImage& image, const QColor& face) {
  image_ = image;
  for (int y = 0; y < image_.height(); ++y)
    for (int x = 0; x < image_.width(); ++x)
      if (image_.pixel(x, y) == face.rgb()) image_.setPixel(x, y, qRgba(0, 0, 0, 0));
  update();
}

void PictureLabel::paintEvent(QPaintEvent*) {
  if (image_.isNull()) return;
  QPainter painter(this);
  QStyleOption option;
  option.initFrom(this);
  QPixmap pixmap = crispPixmap(image_, devicePixelRatioF());
  if (!isEnabled()) pixmap = style()->generatedIconPixmap(QIcon::Disabled, pixmap, &option);
  drawOnPixels(painter, {0, 0}, pixmap);
}

void PictureButton::setImage(const QImage& image) {
  image_ = image;
  update();
}

void PictureButton::paintEvent(QPaintEvent* event) {
  QStyleOptionButton option;
  initStyleOption(&option);
  host::ButtonState state;
  state.themesActive = true;
  state.disabled = !isEnabled();
  state.selected = isDown();
  state.hot = underMouse();
  state.isDefault = isDefault();
  state.focused = hasFocus();
  if (!image_.isNull()) state.image = {host::ImageKind::Bitmap, image_.width(), image_.height(), false};
  state.content = rectangleOf(style()->subElementRect(QStyle::SE_PushButtonContents, &option, this));

  const host::ButtonDrawing drawing = host::imageButtonDrawing(host::DrawStage::PrePaint, state);
  if (!drawing.custom) {
    QPushButton::paintEvent(event);
    return;
  }
  using host::PushButtonState;
  option.state.setFlag(QStyle::State_Enabled, drawing.state != PushButtonState::Disabled);
  option.state.setFlag(QStyle::State_Sunken, drawing.state == PushButtonState::Pressed);
  option.state.setFlag(QStyle::State_MouseOver, drawing.state == PushButtonState::Hot);
  option.features.setFlag(QStyleOptionButton::DefaultButton, drawing.state == PushButtonState::Defaulted);
  QPainter painter(this);
  style()->drawControl(QStyle::CE_PushButtonBevel, &option, &painter, this);

  QPixmap pixmap = crispPixmap(image_, devicePixelRatioF());
  if (drawing.pictureDisabled) pixmap = style()->generatedIconPixmap(QIcon::Disabled, pixmap, &option);
  drawOnPixels(painter, QPointF(drawing.picture.left, drawing.picture.top), pixmap);

  if (drawing.focusRectangle) {
    QStyleOptionFocusRect focus;
    focus.QStyleOption::operator=(option);
    focus.rect = rectOf(drawing.focus);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
  }
}

}  // namespace lvx::desktop
