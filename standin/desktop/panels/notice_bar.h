#pragma once

#include <QFrame>
#include <QStringList>
#include <cstdint>

class QLabel;
class QPushButton;

namespace lvx::desktop {

/// A line above the drawing that says what happened, with what can be done about it; gone once it was answered.
class NoticeBar : public QFrame {
  Q_OBJECT
 public:
  enum class Sign : std::uint8_t { Warning, Done };

  /// Its parts are called by `name`: "noticeText".
  explicit NoticeBar(const QString& name, QWidget* parent = nullptr);
  /// Replaces what stands there. `first` is the button that does something; `second` closes the bar.
  void tell(const QString& text, const QString& first, const QString& second);
  /// The same of files that were written, which may be none: they can be opened and shown in their folder.
  void tellOfFiles(Sign sign, const QString& text, const QStringList& written);
  /// The same of the open drawing, which lies elsewhere now: its folder can be shown.
  void tellOfSaved(const QString& text, const QString& path);
  /// What stands there.
  [[nodiscard]] QString text() const;

 Q_SIGNALS:
  void accepted();
  void openWanted(const QString& path);
  void folderWanted(const QString& path);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void tell(Sign sign, const QString& text);
  void colour();

  QLabel* sign_;
  QLabel* text_;
  QPushButton* first_;
  QPushButton* folder_;
  QPushButton* second_;
  Sign shown_ = Sign::Warning;
  QStringList files_;
};

}  // namespace lvx::desktop
