#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

namespace lvx::desktop {

/// A line above the drawing that says what happened, with what can be done about it; gone once it was answered.
class NoticeBar : public QFrame {
  Q_OBJECT
 public:
  explicit NoticeBar(QWidget* parent = nullptr);
  /// Replaces what stands there. `first` is the button that does something; `second` closes the bar.
  void tell(const QString& text, const QString& first, const QString& second);
  /// What stands there.
  [[nodiscard]] QString text() const;

 Q_SIGNALS:
  void accepted();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void colour();
  QLabel* text_;
  QPushButton* first_;
  QPushButton* second_;
};

}  // namespace lvx::desktop
