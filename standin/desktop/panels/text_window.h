#pragma once

#include <QString>
#include <QWidget>
#include <cstdint>

#include "desktop/panels/file_lines.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace lvx::desktop {

/// A text file to read, a stretch of lines at a time, so that its size doesn't matter. Deletes itself when it is closed.
class TextWindow : public QWidget {
  Q_OBJECT
 public:
  /// Shows `path` around `line` (1-based), which is marked; 0: from the start, nothing marked.
  explicit TextWindow(const QString& path, std::uint64_t line = 0, Decode decode = decodeUtf8OrLatin1,
                      QWidget* parent = nullptr);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void showFrom(std::uint64_t first);

  QString path_;
  std::uint64_t marked_;
  Decode decode_;
  std::uint64_t first_ = 1;
  std::uint64_t shown_ = 0;
  QLabel* place_;
  QPlainTextEdit* text_;
  QPushButton* earlier_;
  QPushButton* later_;
};

}  // namespace lvx::desktop
