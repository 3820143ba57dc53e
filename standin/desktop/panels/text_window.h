#pragma once

#include <QString>
#include <QWidget>
#include <cstdint>

#include "desktop/panels/file_lines.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;

namespace lvx::desktop {

class FindBar;
class ValueTable;

/// A text file to read, a stretch of lines at a time, so that its size doesn't matter: to find in, to print. A text report
/// has a second page with its table, which sorts and copies. Deletes itself when it is closed.
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
  /// Adds the page with the table where the text is a report's.
  void offerTable();
  void fillTable();
  void searchWhatShows();
  void showFound(const FoundText& place);
  void print(bool asPdf);

  QString path_;
  std::uint64_t marked_;
  Decode decode_;
  std::uint64_t first_ = 1;
  std::uint64_t shown_ = 0;
  QLabel* place_;
  QPlainTextEdit* text_;
  QPushButton* earlier_;
  QPushButton* later_;
  QTabWidget* pages_;
  FindBar* find_;
  /// Null where there is no table, or nobody looked at it yet.
  ValueTable* table_ = nullptr;
  QWidget* tablePage_ = nullptr;
  std::vector<FoundText> found_;
  qsizetype foundLetters_ = 0;
};

}  // namespace lvx::desktop
