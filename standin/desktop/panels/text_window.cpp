#include "desktop/panels/text_window.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QVBoxLayout>
#include <utility>

namespace lvx::desktop {

namespace {
constexpr int kLinesShown = 2000;
constexpr QSize kUsualSize(900, 640);
}  // namespace

TextWindow::TextWindow(const QString& path, std::uint64_t line, Decode decode, QWidget* parent)
    : QWidget(parent, Qt::Window),
      path_(path),
      marked_(line),
      decode_(std::move(decode)),
      place_(new QLabel),
      text_(new QPlainTextEdit),
      earlier_(new QPushButton(tr("&Earlier lines"))),
      later_(new QPushButton(tr("&Later lines"))) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName(QStringLiteral("textWindow"));
  setWindowTitle(QFileInfo(path).fileName());
  text_->setObjectName(QStringLiteral("text"));
  text_->setReadOnly(true);
  text_->setAccessibleName(windowTitle());
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setFrameShape(QFrame::NoFrame);
  place_->setObjectName(QStringLiteral("place"));
  place_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  earlier_->setObjectName(QStringLiteral("earlier"));
  later_->setObjectName(QStringLiteral("later"));
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  auto* const bar = new QHBoxLayout;
  constexpr int kGap = 8;
  bar->setContentsMargins(kGap, kGap / 2, kGap, kGap / 2);
  bar->addWidget(place_, 1);
  bar->addWidget(earlier_);
  bar->addWidget(later_);
  layout->addLayout(bar);
  layout->addWidget(text_, 1);
  connect(earlier_, &QPushButton::clicked, this, [this] { showFrom(first_ > kLinesShown ? first_ - kLinesShown : 1); });
  connect(later_, &QPushButton::clicked, this, [this] { showFrom(first_ + shown_); });
  resize(kUsualSize);
  constexpr std::uint64_t kBefore = kLinesShown / 2;
  showFrom(line > kBefore ? line - kBefore : 1);
}

void TextWindow::showFrom(std::uint64_t first) {
  const FileLines found = readLines(path_, first, kLinesShown, decode_);
  if (!found.problem.isEmpty()) {
    text_->clear();
    place_->setText(tr("%1 can't be read: %2").arg(path_, found.problem));
    earlier_->hide();
    later_->hide();
    return;
  }
  first_ = found.first;
  shown_ = static_cast<std::uint64_t>(found.lines.size());
  text_->setPlainText(found.lines.join(QLatin1Char('\n')));
  const bool whole = first_ == 1 && !found.more;
  place_->setText(whole ? path_ : tr("%1, lines %2 to %3").arg(path_).arg(first_).arg(first_ + shown_ - 1));
  earlier_->setVisible(!whole);
  later_->setVisible(!whole);
  earlier_->setEnabled(first_ > 1);
  later_->setEnabled(found.more);
  if (marked_ < first_ || marked_ >= first_ + shown_) return;

  QTextCursor cursor(text_->document()->findBlockByNumber(static_cast<int>(marked_ - first_)));
  QTextEdit::ExtraSelection mark;
  mark.cursor = cursor;
  mark.format.setBackground(palette().color(QPalette::Highlight));
  mark.format.setForeground(palette().color(QPalette::HighlightedText));
  mark.format.setProperty(QTextFormat::FullWidthSelection, true);
  text_->setExtraSelections({mark});
  text_->setTextCursor(cursor);
  text_->centerCursor();
  setWindowTitle(tr("%1, line %2").arg(QFileInfo(path_).fileName()).arg(marked_));
}

void TextWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    close();
  else
    QWidget::keyPressEvent(event);
}

}  // namespace lvx::desktop
