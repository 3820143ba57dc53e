#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace lvx::desktop {

/// How far long work is, and the button that ends it; lives in the status line and hides while nothing runs.
class ProgressStrip : public QWidget {
  Q_OBJECT
 public:
  explicit ProgressStrip(QWidget* parent = nullptr);
  /// Shows the strip with the work's name and no figure yet.
  void begin(const QString& work);
  /// `total` 0: how much is left isn't known.
  void setProgress(const QString& work, quint64 done, quint64 total);
  void end();
  [[nodiscard]] QPushButton* cancelButton() const { return cancel_; }

 Q_SIGNALS:
  void cancelled();

 private:
  QLabel* work_;
  QProgressBar* bar_;
  QPushButton* cancel_;
};

/// "12.3 MB"; bytes below a thousand as they are.
[[nodiscard]] QString sizeText(quint64 bytes);

}  // namespace lvx::desktop
