#include "desktop_user/foreign_windows.h"

#include <QWidget>
#include <chrono>
#include <cstring>
#include <memory>
#include <thread>

#include "desktop_user/desktop_user.h"

// Behind Qt's headers, since it makes macros of words such as None and Bool.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace lvx::test {

namespace {

using Connection = std::unique_ptr<Display, decltype(&XCloseDisplay)>;

Connection connect() { return {XOpenDisplay(nullptr), &XCloseDisplay}; }

/// A property's bytes (in words of a long each where its format is 32), and how many items.
struct Property {
  std::unique_ptr<unsigned char, decltype(&XFree)> bytes{nullptr, &XFree};
  unsigned long count = 0;
};

Property property(Display* display, Window window, const char* name) {
  Property found;
  Atom type = None;
  int format = 0;
  unsigned long rest = 0;
  unsigned char* bytes = nullptr;
  constexpr long kMost = 4096;
  XGetWindowProperty(display, window, XInternAtom(display, name, False), 0, kMost, False, AnyPropertyType, &type,
                     &format, &found.count, &rest, &bytes);
  found.bytes.reset(bytes);
  return found;
}

}  // namespace

void closeByManager(unsigned long window) {
  const Connection connection = connect();
  Display* const display = connection.get();
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "_NET_CLOSE_WINDOW", False);
  event.xclient.format = 32;
  constexpr long kFromAUser = 2;
  event.xclient.data.l[1] = kFromAUser;
  XSendEvent(display, DefaultRootWindow(display), False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
  XSync(display, False);
}

void closeByManager(QWidget* window) {
  closeByManager(onGui([window] { return static_cast<unsigned long>(window->winId()); }));
}

unsigned long findWindow(const std::string& title) {
  const Connection connection = connect();
  Display* const display = connection.get();
  const Property clients = property(display, DefaultRootWindow(display), "_NET_CLIENT_LIST");
  for (unsigned long index = 0; index < clients.count; ++index) {
    Window window = None;
    std::memcpy(&window, clients.bytes.get() + index * sizeof window, sizeof window);
    const Property name = property(display, window, "_NET_WM_NAME");
    if (name.bytes == nullptr) continue;
    std::string text(name.count, '\0');
    std::memcpy(text.data(), name.bytes.get(), name.count);
    if (text.find(title) != std::string::npos) return window;
  }
  return 0;
}

unsigned long waitForForeignWindow(const std::string& title) {
  for (int tries = 0; tries < 1000; ++tries) {
    if (const unsigned long found = findWindow(title)) return found;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return 0;
}

}  // namespace lvx::test
