#include "desktop_user/desktop_user.h"

#include <QApplication>
#include <QPixmap>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <stdexcept>
#include <thread>

// Behind Qt's headers, since it makes macros of words such as None and Bool.
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace lvx::test {

namespace {

constexpr std::chrono::milliseconds kPause{10};
constexpr std::chrono::seconds kMostPatience{20};

/// A widget's place in pixels of the screen.
QPoint devicePlace(QWidget* widget, QPoint place) {
  return onGui([&] {
    const QPoint global = widget->mapToGlobal(place);
    const double ratio = widget->devicePixelRatioF();
    return QPoint(qRound(global.x() * ratio), qRound(global.y() * ratio));
  });
}

QPoint centre(QWidget* widget) {
  return onGui([&] { return widget->rect().center(); });
}

KeySym symbolOf(Qt::Key key) {
  switch (key) {
    case Qt::Key_Tab:
      return XK_Tab;
    case Qt::Key_Return:
      return XK_Return;
    case Qt::Key_Enter:
      return XK_KP_Enter;
    case Qt::Key_Escape:
      return XK_Escape;
    case Qt::Key_Space:
      return XK_space;
    case Qt::Key_Backspace:
      return XK_BackSpace;
    case Qt::Key_Delete:
      return XK_Delete;
    case Qt::Key_Home:
      return XK_Home;
    case Qt::Key_End:
      return XK_End;
    case Qt::Key_Left:
      return XK_Left;
    case Qt::Key_Right:
      return XK_Right;
    case Qt::Key_Up:
      return XK_Up;
    case Qt::Key_Down:
      return XK_Down;
    case Qt::Key_PageUp:
      return XK_Page_Up;
    case Qt::Key_PageDown:
      return XK_Page_Down;
    case Qt::Key_F1:
      return XK_F1;
    case Qt::Key_F2:
      return XK_F2;
    case Qt::Key_F3:
      return XK_F3;
    case Qt::Key_F4:
      return XK_F4;
    case Qt::Key_F11:
      return XK_F11;
    case Qt::Key_F5:
      return XK_F5;
    case Qt::Key_Plus:
      return XK_plus;
    case Qt::Key_Minus:
      return XK_minus;
    default:
      break;
  }
  if (key >= Qt::Key_A && key <= Qt::Key_Z) return XK_a + (static_cast<unsigned long>(key) - Qt::Key_A);
  if (key > Qt::Key_Space && key < Qt::Key_A) return static_cast<KeySym>(key);
  throw std::invalid_argument("a key that the test's user doesn't know");
}

unsigned buttonNumber(Qt::MouseButton button) {
  if (button == Qt::LeftButton) return 1;
  return button == Qt::MiddleButton ? 2 : 3;
}

}  // namespace

struct DesktopUser::Devices {
  Display* display = nullptr;
  /// Never shown: the manager is asked about it.
  Window question = None;
  Atom ask = None;
  Atom answer = None;

  void open() {
    display = XOpenDisplay(nullptr);
    if (display == nullptr) throw std::runtime_error("the test's user finds no display");
    question = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    XSelectInput(display, question, PropertyChangeMask);
    ask = XInternAtom(display, "_NET_REQUEST_FRAME_EXTENTS", False);
    answer = XInternAtom(display, "_NET_FRAME_EXTENTS", False);
  }

  /// Asks the window manager something and waits for its answer: it has then dealt with all that happened before.
  void waitForManager() const {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = question;
    event.xclient.message_type = ask;
    event.xclient.format = 32;
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
    XSync(display, False);
    const auto end = std::chrono::steady_clock::now() + kMostPatience;
    while (std::chrono::steady_clock::now() < end) {
      while (XCheckWindowEvent(display, question, PropertyChangeMask, &event) == True)
        if (event.xproperty.atom == answer && event.xproperty.state == PropertyNewValue) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    throw std::runtime_error("the window manager doesn't answer");
  }
};

DesktopUser::DesktopUser() : devices_(new Devices) {
  try {
    devices_->open();
  } catch (...) {
    delete devices_;
    throw;
  }
}

DesktopUser::~DesktopUser() {
  XCloseDisplay(devices_->display);
  delete devices_;
}

bool DesktopUser::waitFor(const std::function<bool()>& condition, std::chrono::milliseconds timeout) const {
  const auto end = std::chrono::steady_clock::now() + timeout;
  do {
    if (onGui(condition)) return true;
    std::this_thread::sleep_for(kPause);
  } while (std::chrono::steady_clock::now() < end);
  return false;
}

QWidget* DesktopUser::waitForWindow(const QString& title, std::chrono::milliseconds timeout) const {
  QWidget* found = nullptr;
  waitFor(
      [&] {
        for (QWidget* window : QApplication::topLevelWidgets())
          if (window->isVisible() && window->windowTitle().contains(title)) found = window;
        return found != nullptr;
      },
      timeout);
  return found;
}

QWidget* DesktopUser::waitForActiveWindow(const QString& title, std::chrono::milliseconds timeout) const {
  QWidget* found = nullptr;
  waitFor(
      [&] {
        QWidget* const window = QApplication::activeWindow();
        if (window != nullptr && window->isVisible() && window->windowTitle().contains(title)) found = window;
        return found != nullptr;
      },
      timeout);
  return found;
}

void DesktopUser::settle() const {
  // To the server and from there to the windows, whose answer (a popup that closes) is at the server before the next
  // event is: a click must not meet a window that is on its way out. Reading a pixel is a question to the server on the
  // windows' own connection.
  const auto askServer = [] { QApplication::primaryScreen()->grabWindow(0, 0, 0, 1, 1); };
  XSync(devices_->display, False);
  // A click comes to the manager first, which passes it on when it gets to it; keys don't wait for that.
  devices_->waitForManager();
  std::this_thread::sleep_for(kPause);
  onGui(askServer);
  onGui([] {});
  onGui(askServer);
  // What the windows did about it, such as going away, may move the keyboard.
  devices_->waitForManager();
}

void DesktopUser::moveToGlobal(QPoint device) {
  XTestFakeMotionEvent(devices_->display, -1, device.x(), device.y(), CurrentTime);
  settle();
}

void DesktopUser::moveTo(QWidget* widget, QPoint place) { moveToGlobal(devicePlace(widget, place)); }

void DesktopUser::click(QWidget* widget) { click(widget, centre(widget)); }

void DesktopUser::click(QWidget* widget, QPoint place, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
  moveTo(widget, place);
  setModifiers(modifiers, true);
  XTestFakeButtonEvent(devices_->display, buttonNumber(button), True, CurrentTime);
  settle();
  XTestFakeButtonEvent(devices_->display, buttonNumber(button), False, CurrentTime);
  setModifiers(modifiers, false);
  settle();
}

void DesktopUser::doubleClick(QWidget* widget, QPoint place) {
  moveTo(widget, place);
  for (int times = 0; times < 2; ++times) {
    XTestFakeButtonEvent(devices_->display, 1, True, CurrentTime);
    XTestFakeButtonEvent(devices_->display, 1, False, CurrentTime);
    XFlush(devices_->display);
  }
  settle();
}

void DesktopUser::drag(QWidget* widget, QPoint from, QPoint to, Qt::MouseButton button,
                       Qt::KeyboardModifiers modifiers) {
  moveTo(widget, from);
  const QPoint start = devicePlace(widget, from);
  const QPoint end = devicePlace(widget, to);
  setModifiers(modifiers, true);
  XTestFakeButtonEvent(devices_->display, buttonNumber(button), True, CurrentTime);
  settle();
  constexpr int kSteps = 5;
  for (int step = 1; step <= kSteps; ++step) moveToGlobal(start + (end - start) * step / kSteps);
  XTestFakeButtonEvent(devices_->display, buttonNumber(button), False, CurrentTime);
  setModifiers(modifiers, false);
  settle();
}

void DesktopUser::wheel(int clicks) {
  for (int turn = 0; turn < std::abs(clicks); ++turn) {
    XTestFakeButtonEvent(devices_->display, clicks > 0 ? 4 : 5, True, CurrentTime);
    XTestFakeButtonEvent(devices_->display, clicks > 0 ? 4 : 5, False, CurrentTime);
  }
  settle();
}

void DesktopUser::setModifiers(Qt::KeyboardModifiers modifiers, bool down) {
  const std::pair<Qt::KeyboardModifier, KeySym> keys[] = {
      {Qt::ControlModifier, XK_Control_L}, {Qt::AltModifier, XK_Alt_L}, {Qt::ShiftModifier, XK_Shift_L}};
  for (const auto& [modifier, symbol] : keys)
    if (modifiers.testFlag(modifier))
      XTestFakeKeyEvent(devices_->display, XKeysymToKeycode(devices_->display, symbol), down ? True : False,
                        CurrentTime);
}

void DesktopUser::sendKey(unsigned long symbol, bool shift, Qt::KeyboardModifiers modifiers) {
  if (shift) modifiers |= Qt::ShiftModifier;
  const KeyCode code = XKeysymToKeycode(devices_->display, symbol);
  if (code == 0) throw std::invalid_argument("the keyboard has no such key");
  setModifiers(modifiers, true);
  XTestFakeKeyEvent(devices_->display, code, True, CurrentTime);
  XTestFakeKeyEvent(devices_->display, code, False, CurrentTime);
  setModifiers(modifiers, false);
}

void DesktopUser::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  sendKey(symbolOf(key), false, modifiers);
  settle();
}

void DesktopUser::type(const std::string& text) {
  for (const char letter : text) {
    const auto symbol = static_cast<KeySym>(static_cast<unsigned char>(letter));  // the same numbers as in Latin-1
    const KeyCode code = XKeysymToKeycode(devices_->display, symbol);
    const bool shift = XkbKeycodeToKeysym(devices_->display, code, 0, 0) != symbol;
    sendKey(symbol, shift, Qt::NoModifier);
  }
  settle();
}

bool DesktopUser::screenshot(const std::string& file) {
  return onGui([&] { return QApplication::primaryScreen()->grabWindow(0).save(QString::fromStdString(file), "PNG"); });
}

}  // namespace lvx::test
