#pragma once

#include <QApplication>
#include <QPalette>

#include "desktop_user/desktop_user.h"

namespace lvx::test {

/// Colours of a dark desktop.
inline QPalette darkPalette() {
  QPalette palette;
  const QColor window(0x35, 0x37, 0x3a);
  const QColor base(0x25, 0x27, 0x2a);
  const QColor text(0xe6, 0xe6, 0xe6);
  for (const auto role : {QPalette::Window, QPalette::AlternateBase}) palette.setColor(role, window);
  for (const auto role : {QPalette::Base, QPalette::ToolTipBase}) palette.setColor(role, base);
  for (const auto role : {QPalette::WindowText, QPalette::ToolTipText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(role, text);
  palette.setColor(QPalette::Button, QColor(0x43, 0x46, 0x4a));
  palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xb5));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, QColor(0x85, 0x87, 0x8a));
  return palette;
}

/// The application's style in light or dark colours.
inline void useScheme(bool dark) {
  onGui([&] {
    QApplication::setStyle(QStringLiteral("fusion"));
    QApplication::setPalette(dark ? darkPalette() : QPalette());
  });
}

}  // namespace lvx::test
