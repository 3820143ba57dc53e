#pragma once

#include <QAbstractNativeEventFilter>
#include <cstdint>

class QWidget;

namespace lvx::desktop {

/// While a modal window stands over another one, Qt drops the user's wish to close the lower one, with no word to the
/// program. Here the program hears it: the main window closes itself, and what stands over it is given up first. X11 only;
/// elsewhere the modal window has to be closed before.
class CloseWatch : private QAbstractNativeEventFilter {
 public:
  /// Calls `window.close()` from the event loop whenever the user asks for it and Qt would drop that.
  explicit CloseWatch(QWidget& window);
  CloseWatch(const CloseWatch&) = delete;
  CloseWatch& operator=(const CloseWatch&) = delete;
  ~CloseWatch() override;

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  QWidget& window_;
  std::uint32_t protocols_ = 0;
  std::uint32_t deleteWindow_ = 0;
};

}  // namespace lvx::desktop
