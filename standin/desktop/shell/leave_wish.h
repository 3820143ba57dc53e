#pragma once

#include <QObject>

namespace lvx::desktop {

/// The user's wish to close the window while something runs. What runs ends first, by its own rules and without further
/// questions; whoever ran it then calls follow().
class LeaveWish : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  [[nodiscard]] bool isThere() const { return isThere_; }
  void note() { isThere_ = true; }
  /// The user changed their mind.
  void drop() { isThere_ = false; }
  /// Nothing runs any more: emits due() from the event loop where there is a wish, else does nothing.
  void follow();

 Q_SIGNALS:
  void due();

 private:
  bool isThere_ = false;
};

}  // namespace lvx::desktop
