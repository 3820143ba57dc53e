#include "desktop/panels/progress_strip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "desktop/common/elided_label.h"

namespace lvx::desktop {

ProgressStrip::ProgressStrip(QWidget* parent)
    : QWidget(parent), work_(new ElidedLabel), bar_(new QProgressBar), cancel_(new QPushButton(tr("Cancel"))) {
  setObjectName(QStringLiteral("progressStrip"));
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  work_->setObjectName(QStringLiteral("progressText"));
  bar_->setObjectName(QStringLiteral("progressBar"));
  cancel_->setObjectName(QStringLiteral("progressCancel"));
  cancel_->setToolTip(tr("End this work (Escape)"));
  cancel_->setFocusPolicy(Qt::NoFocus);  // the keyboard stays where the user works
  constexpr int kBarWidth = 180;
  bar_->setFixedWidth(kBarWidth);
  bar_->setTextVisible(false);
  layout->addWidget(work_);
  layout->addWidget(bar_);
  layout->addWidget(cancel_);
  connect(cancel_, &QPushButton::clicked, this, &ProgressStrip::cancelled);
  hide();
}

void ProgressStrip::begin(const QString& work) {
  work_->setText(work);
  bar_->setRange(0, 0);
  cancel_->setEnabled(true);
  show();
}

void ProgressStrip::setProgress(const QString& work, quint64 done, quint64 total) {
  constexpr int kSteps = 1000;
  work_->setText(work);
  if (total == 0) {
    bar_->setRange(0, 0);
    return;
  }
  bar_->setRange(0, kSteps);
  bar_->setValue(static_cast<int>(static_cast<double>(done) / static_cast<double>(total) * kSteps));
}

void ProgressStrip::end() { hide(); }

QString sizeText(quint64 bytes) {
  constexpr quint64 kThousand = 1000;
  if (bytes < kThousand) return ProgressStrip::tr("%1 bytes").arg(bytes);
  constexpr double kStep = 1000.0;
  double size = static_cast<double>(bytes) / kStep;
  const char* unit = "kB";
  for (const char* next : {"MB", "GB"}) {
    if (size < kStep) break;
    size /= kStep;
    unit = next;
  }
  return QStringLiteral("%1 %2").arg(QString::number(size, 'f', 1), QLatin1String(unit));
}

}  // namespace lvx::desktop
