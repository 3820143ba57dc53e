#include "desktop/common/scheme.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>

namespace lvx::desktop {

namespace {

/// The colours in which the two palettes differ.
struct Colours {
  QRgb window, windowText, base, alternateBase, button, midlight, mid, dark, shadow, highlight, highlightedText, link,
      visited, placeholder, disabledText, toolTip, toolTipText;
};

constexpr Colours kLight{0xfff2f3f5, 0xff1c212b, 0xffffffff, 0xfff6f7f9, 0xffe8eaee, 0xfff7f8fa,
                         0xffb8bdc7, 0xff9aa0ac, 0xff5c6370, 0xff1f5fae, 0xffffffff, 0xff1a5aa8,
                         0xff6a3d9a, 0xff6b7280, 0xff8b919c, 0xfffffbe6, 0xff1c212b};
constexpr Colours kDark{0xff25282e, 0xffe3e6eb, 0xff1a1d21, 0xff20242a, 0xff343840, 0xff3d424b,
                        0xff69717f, 0xff15171a, 0xff0c0d0f, 0xff2f6cc4, 0xffffffff, 0xff82b4ff,
                        0xffc3a3f5, 0xff8d95a3, 0xff767d8a, 0xff3a3f48, 0xffe3e6eb};

QPalette paletteOf(const Colours& colours) {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(colours.window));
  palette.setColor(QPalette::WindowText, QColor(colours.windowText));
  palette.setColor(QPalette::Base, QColor(colours.base));
  palette.setColor(QPalette::AlternateBase, QColor(colours.alternateBase));
  palette.setColor(QPalette::Text, QColor(colours.windowText));
  palette.setColor(QPalette::Button, QColor(colours.button));
  palette.setColor(QPalette::ButtonText, QColor(colours.windowText));
  palette.setColor(QPalette::BrightText, QColor(colours.highlightedText));
  palette.setColor(QPalette::Light, QColor(colours.midlight).lighter(105));
  palette.setColor(QPalette::Midlight, QColor(colours.midlight));
  palette.setColor(QPalette::Mid, QColor(colours.mid));
  palette.setColor(QPalette::Dark, QColor(colours.dark));
  palette.setColor(QPalette::Shadow, QColor(colours.shadow));
  palette.setColor(QPalette::Highlight, QColor(colours.highlight));
  palette.setColor(QPalette::HighlightedText, QColor(colours.highlightedText));
  palette.setColor(QPalette::Link, QColor(colours.link));
  palette.setColor(QPalette::LinkVisited, QColor(colours.visited));
  palette.setColor(QPalette::PlaceholderText, QColor(colours.placeholder));
  palette.setColor(QPalette::ToolTipBase, QColor(colours.toolTip));
  palette.setColor(QPalette::ToolTipText, QColor(colours.toolTipText));
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, QColor(colours.disabledText));
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(colours.mid));
  palette.setColor(QPalette::Disabled, QPalette::Base, QColor(colours.window));
  return palette;
}

/// The drawn style takes the outlines of boxes and fields from the window's colour, darkened: on a dark window nobody sees
/// them. There they are drawn once more in a colour that shows.
class OutlinedStyle final : public QProxyStyle {
 public:
  OutlinedStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (!isDark()) return;
    QRectF box = option->rect;
    constexpr double kRound = 2.0;
    switch (element) {
      case PE_IndicatorCheckBox:
      case PE_IndicatorItemViewItemCheck: {
        // As the style itself: the largest square, in the middle.
        const double side = std::min(box.width(), box.height());
        box = QRectF(box.center().x() - side / 2, box.center().y() - side / 2, side, side);
        break;
      }
      case PE_FrameLineEdit:
        break;
      default:
        return;
    }
    const bool isFocused = element == PE_FrameLineEdit && option->state.testFlag(State_HasFocus);
    const QPalette::ColorGroup group = option->state.testFlag(State_Enabled) ? QPalette::Active : QPalette::Disabled;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(option->palette.color(group, isFocused ? QPalette::Highlight : QPalette::Mid));
    constexpr double kHalf = 0.5;
    painter->drawRoundedRect(box.adjusted(kHalf, kHalf, -kHalf, -kHalf), kRound, kRound);
    painter->restore();
  }
};

constexpr int kMiddleLightness = 128;

bool isDarkPalette(const QPalette& palette) { return palette.color(QPalette::Window).lightness() < kMiddleLightness; }

}  // namespace

void applyScheme(Scheme scheme) {
  if (dynamic_cast<const OutlinedStyle*>(QApplication::style()) == nullptr)
    QApplication::setStyle(new OutlinedStyle);  // the application owns it
  bool dark = scheme == Scheme::Dark;
  if (scheme == Scheme::System) {
    QApplication::setPalette(QPalette());  // back to what the desktop says
    dark = isDarkPalette(QApplication::palette());
  }
  QApplication::setPalette(paletteOf(dark ? kDark : kLight));
}

bool isDark() { return isDarkPalette(QApplication::palette()); }

void paintFocus(QPainter& painter, const QRect& area, const QPalette& palette) {
  constexpr double kWidth = 2.0;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setPen(QPen(palette.color(QPalette::Highlight), kWidth));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(QRectF(area).adjusted(kWidth / 2, kWidth / 2, -kWidth / 2, -kWidth / 2));
  painter.restore();
}

QString schemeName(Scheme scheme) {
  switch (scheme) {
    case Scheme::System:
      return QStringLiteral("system");
    case Scheme::Light:
      return QStringLiteral("light");
    case Scheme::Dark:
      return QStringLiteral("dark");
  }
  return {};
}

std::optional<Scheme> schemeOf(const QString& name) {
  for (const Scheme scheme : {Scheme::System, Scheme::Light, Scheme::Dark})
    if (schemeName(scheme) == name) return scheme;
  return std::nullopt;
}

}  // namespace lvx::desktop
