#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QLineEdit;
class QToolButton;

namespace lvx::desktop {

/// What can be searched: gives how often a text stands in it, and shows one of these places, counted from 0.
struct Searched {
  std::function<qsizetype(const QString& text)> search;
  std::function<void(qsizetype number)> show;
  /// The place that shows, after the search; -1: none. Empty: nothing changes the order of places.
  std::function<qsizetype()> shown{};
};

/// A line to find text by: how often it is there, the next, the one before. Opened by Ctrl+F in its window, with F3 and
/// Shift+F3 for the next and the one before, and closed by Escape.
class FindBar : public QWidget {
  Q_OBJECT
 public:
  /// `window` is whose keys it takes.
  explicit FindBar(QWidget* window);

  /// From now on this is searched; a text that stands in the line is looked for anew at the next key.
  void setSearched(Searched searched);
  /// What is searched has another order: the next key goes on from the place that shows.
  void searchAgain();
  void open();

 Q_SIGNALS:
  void closed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void go(int step);

  QLineEdit* edit_;
  QLabel* told_;
  QToolButton* before_;
  QToolButton* next_;
  Searched searched_;
  /// What was looked for last, how often it is there, and which one shows; -1: none.
  QString text_;
  qsizetype count_ = 0;
  qsizetype at_ = -1;
  /// The text was looked for in another order.
  bool isOld_ = false;
};

}  // namespace lvx::desktop
