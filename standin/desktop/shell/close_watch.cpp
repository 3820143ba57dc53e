#include "desktop/shell/close_watch.h"

#include <QApplication>
#include <QWidget>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <QtGui/qguiapplication_platform.h>

#if LVX_HAS_XCB
#include <xcb/xcb.h>
#endif

namespace lvx::desktop {

#if LVX_HAS_XCB

namespace {

std::uint32_t atom(xcb_connection_t* connection, std::string_view name) {
  const xcb_intern_atom_cookie_t cookie =
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
      xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
  return reply ? reply->atom : 0;
}

}  // namespace

CloseWatch::CloseWatch(QWidget& window) : window_(window) {
  const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr || x11->connection() == nullptr) return;
  protocols_ = atom(x11->connection(), "WM_PROTOCOLS");
  deleteWindow_ = atom(x11->connection(), "WM_DELETE_WINDOW");
  qApp->installNativeEventFilter(this);
}

bool CloseWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
  if (eventType != "xcb_generic_event_t" || QApplication::activeModalWidget() == nullptr) return false;
  const auto* const event = static_cast<const xcb_client_message_event_t*>(message);
  constexpr std::uint8_t kSentByClients = 0x80;
  constexpr std::uint8_t kWords = 32;
  if ((event->response_type & ~kSentByClients) != XCB_CLIENT_MESSAGE || event->window != window_.winId() ||
      event->format != kWords || event->type != protocols_ || event->data.data32[0] != deleteWindow_)
    return false;
  QMetaObject::invokeMethod(
      &window_, [this] { window_.close(); }, Qt::QueuedConnection);
  return true;
}

#else

CloseWatch::CloseWatch(QWidget& window) : window_(window) {}

bool CloseWatch::nativeEventFilter(const QByteArray&, void*, qintptr*) { return false; }

#endif

CloseWatch::~CloseWatch() { qApp->removeNativeEventFilter(this); }

}  // namespace lvx::desktop
