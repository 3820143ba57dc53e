#include "desktop/panels/start_page.h"

#include <QCommandLinkButton>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLayoutItem>
#include <QScrollArea>
#include <QVBoxLayout>

#include "desktop/common/icons.h"

namespace lvx::desktop {

StartPage::StartPage(QWidget* over) : QWidget(over), column_(new QVBoxLayout) {
  setObjectName(QStringLiteral("startPage"));
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Base);
  auto* const middle = new QWidget;
  auto* const sides = new QHBoxLayout(middle);
  constexpr int kWidest = 620;
  auto* const narrow = new QWidget;
  narrow->setMaximumWidth(kWidest);
  narrow->setLayout(column_);
  sides->addStretch(1);
  sides->addWidget(narrow, 8);
  sides->addStretch(1);
  middle->setBackgroundRole(QPalette::Base);
  auto* const scroll = new QScrollArea;
  scroll->setObjectName(QStringLiteral("startScroll"));
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidgetResizable(true);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setWidget(middle);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(scroll);
  over->installEventFilter(this);
  setGeometry(over->rect());
}

void StartPage::addHeading(const QString& text) {
  auto* const heading = new QLabel(text);
  QFont font = heading->font();
  constexpr double kLarger = 1.25;
  font.setPointSizeF(font.pointSizeF() * kLarger);
  heading->setFont(font);
  constexpr int kAbove = 12;
  heading->setContentsMargins(0, kAbove, 0, 0);
  column_->addWidget(heading);
}

template <class Work>
void StartPage::addButton(const QString& name, const QString& text, const QString& place, bool isThere, Work work) {
  // An "&" in a name is no access key.
  auto* const button = new QCommandLinkButton(QString(text).replace(QLatin1Char('&'), QStringLiteral("&&")), place);
  button->setObjectName(name);
  button->setIcon(icon(QStringLiteral("file")));
  button->setEnabled(isThere);
  button->setToolTip(place);
  button->setAccessibleName(text);
  button->setAccessibleDescription(place);
  connect(button, &QAbstractButton::clicked, this, work, Qt::QueuedConnection);
  column_->addWidget(button);
}

void StartPage::setEntries(const QList<Entry>& recent, const QString& example) {
  while (QLayoutItem* const item = column_->takeAt(0)) {
    delete item->widget();
    delete item;
  }
  column_->addStretch(1);
  addHeading(tr("Open a drawing"));
  addButton(QStringLiteral("startOpen"), tr("Open…"), tr("A LandXML file; or drop one here"), true,
            [this] { Q_EMIT openWanted(); });
  if (!example.isEmpty())
    addButton(QStringLiteral("startExample"), tr("The example"), example, true, [this] { Q_EMIT exampleWanted(); });
  if (!recent.isEmpty()) addHeading(tr("Recent drawings"));
  for (int number = 0; number < recent.size(); ++number) {
    const Entry& entry = recent[number];
    addButton(QStringLiteral("startRecent%1").arg(number + 1), entry.name, entry.place, entry.isThere,
              [this, number] { Q_EMIT recentWanted(number); });
  }
  column_->addStretch(2);
}

bool StartPage::eventFilter(QObject* target, QEvent* event) {
  if (target == parentWidget() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  return QWidget::eventFilter(target, event);
}

void StartPage::keyPressEvent(QKeyEvent* event) {
  // Up and down go through the buttons as through a list.
  if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up)
    focusNextPrevChild(event->key() == Qt::Key_Down);
  else
    QWidget::keyPressEvent(event);
}

}  // namespace lvx::desktop
