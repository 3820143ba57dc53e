#pragma once

#include <QCoreApplication>
#include <QMetaObject>
#include <QPoint>
#include <QString>
#include <Qt>
#include <chrono>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>

class QWidget;

namespace lvx::test {

/// Runs `work` on the thread of the windows, between two of its events, and gives its result. Works while a dialog, a
/// message box or a menu is open, since those run event loops of their own.
template <class Work>
auto onGui(Work work) -> decltype(work()) {
  if constexpr (std::is_void_v<decltype(work())>) {
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::BlockingQueuedConnection);
  } else {
    decltype(work()) result{};
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&result, &work] { result = work(); }, Qt::BlockingQueuedConnection);
    return result;
  }
}

/// A person at the keyboard and the mouse. Tests run on a thread of their own and do everything through the display
/// server, so focus, tab order, grabs and modality are those of real windows; nothing is called in the windows but to look
/// at them.
///
///     user.click(button);                          // moves the mouse there and presses its left button
///     QWidget* dialog = user.waitForWindow("Profiles projection");
///     user.key(Qt::Key_Tab);
///     EXPECT_TRUE(user.waitFor([&] { return edit->hasFocus(); }));
///
/// Widgets may be looked at in onGui() and in the conditions of waitFor(), which run on the windows' thread.
class DesktopUser {
 public:
  DesktopUser();
  DesktopUser(const DesktopUser&) = delete;
  DesktopUser& operator=(const DesktopUser&) = delete;
  ~DesktopUser();

  /// Waits until `condition` holds; false when it doesn't in time.
  bool waitFor(const std::function<bool()>& condition,
               std::chrono::milliseconds timeout = std::chrono::seconds(20)) const;
  /// The visible top-level window whose title contains `title`; null when none comes in time.
  QWidget* waitForWindow(const QString& title, std::chrono::milliseconds timeout = std::chrono::seconds(20)) const;
  /// The same, once it has the keyboard; modal dialogs and message boxes are taken from here.
  QWidget* waitForActiveWindow(const QString& title,
                               std::chrono::milliseconds timeout = std::chrono::seconds(20)) const;

  /// Lets everything that was sent arrive, at the window manager too.
  void settle() const;

  // ---- mouse; places are in the widget's own coordinates, as Qt counts them (scaling is taken care of)
  void moveTo(QWidget* widget, QPoint place);
  void click(QWidget* widget);
  void click(QWidget* widget, QPoint place, Qt::MouseButton button = Qt::LeftButton,
             Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  void doubleClick(QWidget* widget, QPoint place);
  void drag(QWidget* widget, QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton,
            Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  /// Turns the wheel where the mouse is; positive: away from the user.
  void wheel(int clicks);

  // ---- keyboard, to whatever has the focus
  void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  /// Types a text of printable ASCII.
  void type(const std::string& text);

  /// The whole screen as a PNG file, for people to look at.
  static bool screenshot(const std::string& file);

 private:
  struct Devices;
  void sendKey(unsigned long symbol, bool shift, Qt::KeyboardModifiers modifiers);
  void setModifiers(Qt::KeyboardModifiers modifiers, bool down);
  void moveToGlobal(QPoint device);

  Devices* devices_;
};

}  // namespace lvx::test
