#pragma once

#include <QStringList>
#include <QUrl>
#include <QWidget>

class QCompleter;
class QLabel;
class QLineEdit;
class QStringListModel;
class QTextBrowser;

namespace lvx::desktop {

/// What the program and its commands said, and the line in which commands are typed. A pick's prompt stands there while
/// it runs.
class ConsoleView : public QWidget {
  Q_OBJECT
 public:
  explicit ConsoleView(QWidget* parent = nullptr);

  /// One message, on lines of its own.
  void print(const QString& text);
  void printError(const QString& text);
  /// A line of our own HTML, with links.
  void printHtml(const QString& html);
  /// What stands before the edit; empty: the usual word.
  void setPrompt(const QString& prompt);
  /// What can be typed.
  void setCommands(const QStringList& commands);
  /// Everything said so far, as plain text.
  [[nodiscard]] QString history() const;
  void focusPrompt();

 Q_SIGNALS:
  /// Enter on a text that isn't empty.
  void entered(const QString& text);
  void enteredNothing();
  void escaped();
  void linkActivated(const QUrl& url);

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  void enter();
  void append(const QString& html);
  void recall(int step);

  QTextBrowser* history_;
  QLabel* prompt_;
  QLineEdit* edit_;
  QCompleter* completer_;
  QStringListModel* commands_;
  QStringList entered_;
  qsizetype recalled_ = 0;
  QString unfinished_;
};

}  // namespace lvx::desktop
