#include "desktop/panels/console_view.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBrowser>
#include <QTextCursor>
#include <QVBoxLayout>

namespace lvx::desktop {

ConsoleView::ConsoleView(QWidget* parent)
    : QWidget(parent),
      history_(new QTextBrowser),
      prompt_(new QLabel),
      edit_(new QLineEdit),
      completer_(new QCompleter(this)),
      commands_(new QStringListModel(this)) {
  setObjectName(QStringLiteral("console"));
  history_->setObjectName(QStringLiteral("consoleHistory"));
  history_->setOpenLinks(false);
  history_->setFrameShape(QFrame::NoFrame);
  history_->setUndoRedoEnabled(false);
  constexpr int kMostBlocks = 10'000;
  history_->document()->setMaximumBlockCount(kMostBlocks);
  history_->setAccessibleName(tr("Messages"));
  prompt_->setObjectName(QStringLiteral("consolePrompt"));
  edit_->setObjectName(QStringLiteral("consoleEdit"));
  edit_->setAccessibleName(tr("Command line"));
  edit_->installEventFilter(this);
  completer_->setModel(commands_);
  completer_->setCaseSensitivity(Qt::CaseInsensitive);
  completer_->setFilterMode(Qt::MatchContains);
  edit_->setCompleter(completer_);

  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(history_, 1);
  auto* const line = new QHBoxLayout;
  constexpr int kGap = 6;
  line->setContentsMargins(kGap, kGap / 2, kGap, kGap / 2);
  line->addWidget(prompt_);
  line->addWidget(edit_, 1);
  layout->addLayout(line);
  setFocusProxy(edit_);
  setPrompt({});

  connect(edit_, &QLineEdit::returnPressed, this, &ConsoleView::enter);
  connect(history_, &QTextBrowser::anchorClicked, this, &ConsoleView::linkActivated);
}

void ConsoleView::append(const QString& html) {
  // Who reads further up stays there.
  QScrollBar* const bar = history_->verticalScrollBar();
  const bool atEnd = bar->value() >= bar->maximum() - bar->singleStep();
  QTextCursor cursor(history_->document());
  cursor.movePosition(QTextCursor::End);
  if (!history_->document()->isEmpty()) cursor.insertBlock();
  cursor.insertHtml(html);
  if (atEnd) bar->setValue(bar->maximum());
}

void ConsoleView::print(const QString& text) {
  QString words = text;
  while (words.endsWith(QLatin1Char('\n'))) words.chop(1);
  while (words.startsWith(QLatin1Char('\n'))) words.remove(0, 1);
  if (words.isEmpty()) return;
  append(words.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>")));
}

void ConsoleView::printError(const QString& text) {
  // Readable on light and on dark, where a bare "red" isn't.
  const bool dark = palette().color(QPalette::Base).lightness() < 128;
  append(QStringLiteral("<span style=\"color:%1\">%2</span>")
             .arg(dark ? QStringLiteral("#ff8a80") : QStringLiteral("#b3261e"),
                  text.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"))));
}

void ConsoleView::printHtml(const QString& html) { append(html); }

void ConsoleView::setPrompt(const QString& prompt) {
  prompt_->setText(prompt.isEmpty() ? tr("Command:") : prompt.trimmed());
  QFont font = prompt_->font();
  font.setBold(!prompt.isEmpty());
  prompt_->setFont(font);
  edit_->setPlaceholderText(prompt.isEmpty() ? tr("such as ZOOM or HELP")
                                             : tr("click in the drawing or in the tree; Escape gives up"));
}

void ConsoleView::setCommands(const QStringList& commands) { commands_->setStringList(commands); }

QString ConsoleView::history() const { return history_->toPlainText(); }

void ConsoleView::focusPrompt() { edit_->setFocus(Qt::OtherFocusReason); }

void ConsoleView::enter() {
  const QString text = edit_->text().trimmed();
  completer_->popup()->hide();
  edit_->clear();
  recalled_ = 0;
  if (text.isEmpty()) {
    Q_EMIT enteredNothing();
    return;
  }
  entered_.removeAll(text);
  entered_.prepend(text);
  Q_EMIT entered(text);
}

void ConsoleView::recall(int step) {
  const qsizetype wanted = recalled_ + step;
  if (wanted < 0 || wanted > entered_.size()) return;
  if (recalled_ == 0) unfinished_ = edit_->text();
  recalled_ = wanted;
  edit_->setText(wanted == 0 ? unfinished_ : entered_[wanted - 1]);
}

bool ConsoleView::eventFilter(QObject* target, QEvent* event) {
  if (target != edit_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(target, event);
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
      recall(1);
      return true;
    case Qt::Key_Down:
      recall(-1);
      return true;
    case Qt::Key_Escape:
      if (edit_->text().isEmpty())
        Q_EMIT escaped();
      else
        edit_->clear();
      return true;
    default:
      return QWidget::eventFilter(target, event);
  }
}

}  // namespace lvx::desktop
