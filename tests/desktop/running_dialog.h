#pragma once

#include <QApplication>
#include <QThread>
#include <QWidget>
#include <atomic>
#include <exception>
#include <string>

#include "desktop/common/qt_text.h"
#include "desktop/dialogs/dialog_runner.h"
#include "desktop_user/desktop_user.h"
#include "host/dialog_window.h"

namespace lvx::test {

/// Looks at windows from either thread: within waitFor() a test is on theirs already.
template <class Work>
auto look(Work work) -> decltype(work()) {
  return QThread::currentThread() == QCoreApplication::instance()->thread() ? work() : onGui(work);
}

/// A dialog that runs on the thread of the windows, as a command runs it, while the test works it as its user. Whoever
/// destroys it before the dialog is closed gives it up.
///
///     RunningDialog running(runner, behaviour);
///     user.click(running.control(host::kIdPickAlignment));
///     EXPECT_EQ(running.code(user), host::kIdPickAlignment);
class RunningDialog {
 public:
  RunningDialog(desktop::QtDialogRunner& runner, host::DialogBehaviour& behaviour, QWidget* parent = nullptr)
      : name_(behaviour.dialogTemplate().name) {
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [this, &runner, &behaviour, parent] {
          try {
            code_ = runner.runModal(behaviour, parent);
          } catch (...) {
            failure_ = std::current_exception();
          }
          isOver_ = true;
        },
        Qt::QueuedConnection);
  }
  RunningDialog(const RunningDialog&) = delete;
  RunningDialog& operator=(const RunningDialog&) = delete;
  ~RunningDialog() {
    if (isOver_) return;
    onGui([] { desktop::QtDialogRunner::closeAll(); });
    while (!isOver_) onGui([] {});
    onGui([] { desktop::QtDialogRunner::reopen(); });
  }

  /// The window, once it has the keyboard; null when it doesn't come or is over already.
  QWidget* window(const DesktopUser& user) {
    const auto waitUntilActive = [&] {
      window_ = nullptr;
      user.waitFor([this] {
        QWidget* const active = QApplication::activeWindow();
        if (active != nullptr && active->isVisible() && active->objectName().toStdString() == name_) window_ = active;
        return window_ != nullptr || isOver_;
      });
    };
    waitUntilActive();
    // A window that has just gone may still move the keyboard.
    user.settle();
    waitUntilActive();
    return window_;
  }
  /// A control of the window, which must have come; on either thread.
  template <class Widget = QWidget>
  [[nodiscard]] Widget* control(int id) const {
    return look([&] { return window_->findChild<Widget*>(QStringLiteral("control%1").arg(id)); });
  }
  [[nodiscard]] bool isOver() const { return isOver_; }
  /// The code with which it closed; a number that no dialog has when it doesn't close in time.
  int code(const DesktopUser& user) {
    if (!user.waitFor([this] { return isOver_.load(); })) return kStillOpen;
    if (failure_) std::rethrow_exception(failure_);
    return code_;
  }

  static constexpr int kStillOpen = -1000;

 private:
  std::string name_;
  QWidget* window_ = nullptr;
  int code_ = kStillOpen;
  std::exception_ptr failure_;
  std::atomic<bool> isOver_ = false;
};

}  // namespace lvx::test
