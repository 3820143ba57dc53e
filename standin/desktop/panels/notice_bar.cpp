#include "desktop/panels/notice_bar.h"

#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

#include "desktop/common/icons.h"
#include "desktop/common/scheme.h"

namespace lvx::desktop {

NoticeBar::NoticeBar(const QString& name, QWidget* parent)
    : QFrame(parent),
      sign_(new QLabel),
      text_(new QLabel),
      first_(new QPushButton(tr("Open"))),
      folder_(new QPushButton(tr("Show in folder"))),
      second_(new QPushButton(tr("Close"))) {
  setObjectName(name + QStringLiteral("Bar"));
  setAutoFillBackground(true);
  text_->setObjectName(name + QStringLiteral("Text"));
  text_->setTextFormat(Qt::PlainText);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  text_->setWordWrap(true);
  first_->setObjectName(name + QStringLiteral("First"));
  folder_->setObjectName(name + QStringLiteral("Folder"));
  second_->setObjectName(name + QStringLiteral("Second"));
  auto* const layout = new QHBoxLayout(this);
  constexpr int kGap = 6;
  layout->setContentsMargins(2 * kGap, kGap, 2 * kGap, kGap);
  layout->addWidget(sign_);
  layout->addWidget(text_, 1);
  layout->addWidget(first_);
  layout->addWidget(folder_);
  layout->addWidget(second_);
  connect(first_, &QPushButton::clicked, this, [this] {
    if (files_.size() > 1) return;  // its menu does it
    if (files_.size() == 1) {
      Q_EMIT openWanted(files_.front());
      return;
    }
    hide();
    Q_EMIT accepted();
  });
  connect(folder_, &QPushButton::clicked, this, [this] { Q_EMIT folderWanted(files_.front()); });
  connect(second_, &QPushButton::clicked, this, [this] { hide(); });
  colour();
  hide();
}

void NoticeBar::tell(Sign sign, const QString& text) {
  shown_ = sign;
  text_->setText(text);
  setAccessibleName(text);
  colour();
  show();
}

void NoticeBar::tell(const QString& text, const QString& first, const QString& second) {
  files_.clear();
  first_->setMenu(nullptr);
  first_->setText(first);
  first_->setVisible(!first.isEmpty());
  folder_->hide();
  second_->setText(second);
  tell(Sign::Warning, text);
}

void NoticeBar::tellOfFiles(Sign sign, const QString& text, const QStringList& written) {
  files_ = written;
  delete first_->menu();
  first_->setText(tr("Open"));
  first_->setVisible(!files_.isEmpty());
  folder_->setVisible(!files_.isEmpty());
  second_->setText(tr("Close"));
  if (files_.size() > 1) {
    auto* const menu = new QMenu(first_);
    for (const QString& file : files_)
      connect(menu->addAction(QFileInfo(file).fileName()), &QAction::triggered, this,
              [this, file] { Q_EMIT openWanted(file); });
    first_->setMenu(menu);
  }
  tell(sign, text);
}

void NoticeBar::tellOfSaved(const QString& text, const QString& path) {
  tellOfFiles(Sign::Done, text, {path});
  first_->hide();
}

QString NoticeBar::text() const { return text_->text(); }

void NoticeBar::colour() {
  const bool isDone = shown_ == Sign::Done;
  constexpr int kSide = 20;
  sign_->setPixmap(icon(isDone ? QStringLiteral("done") : QStringLiteral("warning")).pixmap(kSide, kSide));
  QPalette palette = this->palette();
  const QColor warning = isDark() ? QColor(0x4a, 0x3b, 0x14) : QColor(0xff, 0xf1, 0xc9);
  const QColor done = isDark() ? QColor(0x1c, 0x3f, 0x2a) : QColor(0xdd, 0xf3, 0xe1);
  palette.setColor(QPalette::Window, isDone ? done : warning);
  setPalette(palette);
}

void NoticeBar::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::ApplicationPaletteChange) colour();
}

}  // namespace lvx::desktop
