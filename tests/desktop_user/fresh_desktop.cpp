#include "desktop_user/fresh_desktop.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QPalette>
#include <QStringList>
#include <QStyle>
#include <QStyleFactory>
#include <QToolTip>
#include <QWidget>
#include <stdexcept>
#include <utility>

#include "desktop_user/desktop_user.h"

// Behind Qt's headers, since it makes macros of words such as None and Bool.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace lvx::test {

FreshDesktop::FreshDesktop(std::filesystem::path home)
    : home_(std::move(home)),
      folder_(std::filesystem::current_path()),
      style_(QApplication::style()->name()),
      font_(QApplication::font()),
      display_(XOpenDisplay(nullptr)) {
  if (display_ == nullptr) throw std::runtime_error("there is no display to be kept fresh");
}

FreshDesktop::~FreshDesktop() { XCloseDisplay(display_); }

void FreshDesktop::OnTestStart(const testing::TestInfo&) { resetDevices(); }

void FreshDesktop::OnTestEnd(const testing::TestInfo&) {
  const QString left = onGui([this] { return closeWindows(); });
  EXPECT_EQ(left.toStdString(), "") << "left open";
  onGui([this] { resetApplication(); });
  std::filesystem::current_path(folder_);
  for (const auto& entry : std::filesystem::directory_iterator(home_)) std::filesystem::remove_all(entry.path());
}

QString FreshDesktop::closeWindows() const {
  QToolTip::hideText();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QStringList names;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (!window->isVisible() || window->windowType() == Qt::ToolTip) continue;
    names << QStringLiteral("%1 (%2)").arg(window->windowTitle(),
                                           QString::fromLatin1(window->metaObject()->className()));
    window->hide();
    if (window->parent() == nullptr) window->deleteLater();
  }
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return names.join(QStringLiteral(", "));
}

void FreshDesktop::resetApplication() const {
  while (QApplication::overrideCursor() != nullptr) QApplication::restoreOverrideCursor();
  QApplication::setStyle(QStyleFactory::create(style_));
  QApplication::setPalette(QPalette());
  QApplication::setFont(font_);
  for (const auto mode : {QClipboard::Clipboard, QClipboard::Selection}) QApplication::clipboard()->clear(mode);
}

void FreshDesktop::resetDevices() const {
  char keys[32];
  constexpr int kKeysAByte = 8;
  XQueryKeymap(display_, keys);
  for (int key = 0; key < static_cast<int>(sizeof keys) * kKeysAByte; ++key)
    if ((keys[key / kKeysAByte] >> (key % kKeysAByte) & 1) != 0)
      XTestFakeKeyEvent(display_, static_cast<unsigned>(key), False, CurrentTime);
  Window root = None;
  Window child = None;
  int x = 0;
  int y = 0;
  unsigned pressed = 0;
  XQueryPointer(display_, DefaultRootWindow(display_), &root, &child, &x, &y, &x, &y, &pressed);
  const std::pair<unsigned, unsigned> buttons[] = {
      {Button1Mask, Button1}, {Button2Mask, Button2}, {Button3Mask, Button3}};
  for (const auto& [mask, button] : buttons)
    if ((pressed & mask) != 0) XTestFakeButtonEvent(display_, button, False, CurrentTime);
  const int screen = DefaultScreen(display_);
  XTestFakeMotionEvent(display_, screen, DisplayWidth(display_, screen) / 2, DisplayHeight(display_, screen) / 2,
                       CurrentTime);
  XSync(display_, False);
}

}  // namespace lvx::test
