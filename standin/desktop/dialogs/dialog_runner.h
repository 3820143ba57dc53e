#pragma once

#include <QPoint>
#include <map>
#include <string>

#include "host/dialog_window.h"

namespace lvx::desktop {

/// Runs the dialogs of modules as windows. A dialog opens where the last one of its name was closed in this session, at
/// first over the middle of its parent. Windows' thread only; dialogs may stand over one another.
class QtDialogRunner final : public host::DialogRunner {
 public:
  /// `parent` is a QWidget or null. Rethrows what the behaviour raised.
  int runModal(host::DialogBehaviour& dialog, void* parent) override;

  /// Closes whatever dialog, message box or file box is open, as Cancel, and until reopen() every further one at once,
  /// through its behaviour: it opens unseen and is cancelled. For a program that ends while a command waits. Callable from
  /// any event; the windows are gone when the command has run on.
  static void closeAll();
  static void reopen();

 private:
  std::map<std::string, QPoint, std::less<>> places_;
};

}  // namespace lvx::desktop
