#include "desktop/panels/find_bar.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QToolButton>
#include <utility>

namespace lvx::desktop {

FindBar::FindBar(QWidget* window)
    : edit_(new QLineEdit), told_(new QLabel), before_(new QToolButton), next_(new QToolButton) {
  setObjectName(QStringLiteral("findBar"));
  edit_->setObjectName(QStringLiteral("findEdit"));
  edit_->setClearButtonEnabled(true);
  told_->setObjectName(QStringLiteral("findTold"));
  auto* const label = new QLabel(tr("&Find:"));
  label->setBuddy(edit_);
  before_->setObjectName(QStringLiteral("findBefore"));
  before_->setText(tr("Previous"));
  before_->setToolTip(tr("The one before (Shift+F3)"));
  next_->setObjectName(QStringLiteral("findNext"));
  next_->setText(tr("Next"));
  next_->setToolTip(tr("The next one (F3)"));
  auto* const layout = new QHBoxLayout(this);
  constexpr int kGap = 8;
  layout->setContentsMargins(kGap, kGap / 2, kGap, kGap / 2);
  layout->addWidget(label);
  layout->addWidget(edit_, 1);
  for (QToolButton* const button : {before_, next_}) {
    button->setFocusPolicy(Qt::TabFocus);
    layout->addWidget(button);
  }
  layout->addWidget(told_, 1);
  connect(before_, &QToolButton::clicked, this, [this] { go(-1); });
  connect(next_, &QToolButton::clicked, this, [this] { go(1); });
  connect(edit_, &QLineEdit::textChanged, told_, &QLabel::clear);
  connect(new QShortcut(QKeySequence::Find, window), &QShortcut::activated, this, &FindBar::open);
  connect(new QShortcut(QKeySequence(Qt::Key_F3), window), &QShortcut::activated, this, [this] { go(1); });
  connect(new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F3), window), &QShortcut::activated, this, [this] { go(-1); });
  hide();
}

void FindBar::setSearched(Searched searched) {
  searched_ = std::move(searched);
  text_.clear();
  at_ = -1;
  isOld_ = false;
  told_->clear();
}

void FindBar::searchAgain() {
  isOld_ = true;
  told_->clear();
}

void FindBar::open() {
  show();
  edit_->setFocus(Qt::ShortcutFocusReason);
  edit_->selectAll();
}

void FindBar::go(int step) {
  if (!isVisible()) return open();
  const QString text = edit_->text();
  if (text.isEmpty() || !searched_.search) return;
  if (text != text_ || isOld_) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    count_ = searched_.search(text);
    QApplication::restoreOverrideCursor();
    at_ = step > 0 ? -1 : 0;
    if (const qsizetype shown = text == text_ && searched_.shown ? searched_.shown() : -1; shown >= 0) at_ = shown;
    text_ = text;
    isOld_ = false;
  }
  if (count_ == 0) {
    told_->setText(tr("Not found"));
    return;
  }
  at_ = (at_ + step + count_) % count_;
  searched_.show(at_);
  //: Which of how many places that were found.
  told_->setText(tr("%1 of %2").arg(at_ + 1).arg(count_));
}

void FindBar::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isEnter && edit_->hasFocus()) {
    go(event->modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
  } else if (event->key() == Qt::Key_Escape) {
    hide();
    Q_EMIT closed();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace lvx::desktop
