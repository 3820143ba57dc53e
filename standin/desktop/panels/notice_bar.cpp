#include "desktop/panels/notice_bar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "desktop/common/icons.h"
#include "desktop/common/scheme.h"

namespace lvx::desktop {

NoticeBar::NoticeBar(QWidget* parent)
    : QFrame(parent), text_(new QLabel), first_(new QPushButton), second_(new QPushButton) {
  setObjectName(QStringLiteral("noticeBar"));
  setAutoFillBackground(true);
  text_->setObjectName(QStringLiteral("noticeText"));
  text_->setWordWrap(true);
  first_->setObjectName(QStringLiteral("noticeFirst"));
  second_->setObjectName(QStringLiteral("noticeSecond"));
  auto* const layout = new QHBoxLayout(this);
  constexpr int kGap = 6;
  layout->setContentsMargins(2 * kGap, kGap, 2 * kGap, kGap);
  auto* const sign = new QLabel;
  constexpr int kSide = 20;
  sign->setPixmap(icon(QStringLiteral("warning")).pixmap(kSide, kSide));
  layout->addWidget(sign);
  layout->addWidget(text_, 1);
  layout->addWidget(first_);
  layout->addWidget(second_);
  connect(first_, &QPushButton::clicked, this, [this] {
    hide();
    Q_EMIT accepted();
  });
  connect(second_, &QPushButton::clicked, this, [this] { hide(); });
  colour();
  hide();
}

void NoticeBar::tell(const QString& text, const QString& first, const QString& second) {
  text_->setText(text);
  first_->setText(first);
  first_->setVisible(!first.isEmpty());
  second_->setText(second);
  show();
}

QString NoticeBar::text() const { return text_->text(); }

void NoticeBar::colour() {
  QPalette palette = this->palette();
  palette.setColor(QPalette::Window, isDark() ? QColor(0x4a, 0x3b, 0x14) : QColor(0xff, 0xf1, 0xc9));
  setPalette(palette);
}

void NoticeBar::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::ApplicationPaletteChange) colour();
}

}  // namespace lvx::desktop
