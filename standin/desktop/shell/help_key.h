#pragma once

#include <QObject>
#include <functional>

class QWidget;

namespace lvx::desktop {

/// F1 in dialogs and questions, which keep the window's own key away: a dialog with a Help button is asked for its own
/// page, any other opens the contents. Boxes stand in the way of their parent's window alone, so that the help can be read
/// while they wait.
class HelpKey : public QObject {
 public:
  /// Listens in the whole application while it lives.
  explicit HelpKey(std::function<void()> showContents);
  ~HelpKey() override;

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  std::function<void()> showContents_;
};

}  // namespace lvx::desktop
