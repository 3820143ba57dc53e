#include "desktop/panels/go_to_box.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/panels/property_words.h"
#include "text/number_text.h"

namespace lvx::desktop {

using properties::GoTo;
using properties::GoToAnswer;
using properties::GoToTrouble;
using properties::Term;

namespace {

Term termOf(civil::ObjectKind kind) {
  switch (kind) {
    case civil::ObjectKind::Site:
      return Term::Site;
    case civil::ObjectKind::Alignment:
      return Term::Alignment;
    case civil::ObjectKind::Profile:
      return Term::Profile;
    case civil::ObjectKind::SampleLineGroup:
      return Term::SampleLineGroup;
    case civil::ObjectKind::SampleLine:
      return Term::SampleLine;
    case civil::ObjectKind::Surface:
      return Term::Surface;
    case civil::ObjectKind::Point:
      return Term::Point;
    case civil::ObjectKind::PointGroup:
      return Term::PointGroup;
    case civil::ObjectKind::Corridor:
      return Term::Corridor;
  }
  return Term::Name;
}

}  // namespace

GoToBox::GoToBox(QWidget* over) : QFrame(over), edit_(new QLineEdit), list_(new QListWidget), told_(new QLabel) {
  setObjectName(QStringLiteral("goToBox"));
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  edit_->setObjectName(QStringLiteral("goToEdit"));
  edit_->setPlaceholderText(tr("Point, station, easting and northing, or a name"));
  edit_->setClearButtonEnabled(true);
  auto* const label = new QLabel(tr("&Go to:"));
  label->setBuddy(edit_);
  list_->setObjectName(QStringLiteral("goToList"));
  list_->setAccessibleName(tr("What it may be"));
  list_->setFrameShape(QFrame::NoFrame);
  list_->setFocusPolicy(Qt::NoFocus);  // worked from the line, so that one goes on typing
  list_->setUniformItemSizes(true);
  told_->setObjectName(QStringLiteral("goToTold"));
  told_->setTextFormat(Qt::PlainText);
  told_->setWordWrap(true);
  auto* const line = new QHBoxLayout;
  line->addWidget(label);
  line->addWidget(edit_, 1);
  auto* const layout = new QVBoxLayout(this);
  constexpr int kGap = 8;
  layout->setContentsMargins(kGap, kGap, kGap, kGap);
  layout->addLayout(line);
  layout->addWidget(list_);
  layout->addWidget(told_);
  connect(edit_, &QLineEdit::textChanged, this, &GoToBox::understand);
  connect(list_, &QListWidget::itemClicked, this, &GoToBox::accept);
  edit_->installEventFilter(this);
  over->installEventFilter(this);
  hide();
}

void GoToBox::open(const civil::Drawing& drawing, const civil::DrawingIndex& index,
                   const civil::AlignmentObject* chosen) {
  drawing_ = &drawing;
  index_ = &index;
  chosen_ = chosen;
  if (!isVisible()) before_ = QApplication::focusWidget();
  understand();
  show();
  raise();
  edit_->setFocus(Qt::ShortcutFocusReason);
  edit_->selectAll();
}

void GoToBox::leave() {
  const bool hadKeyboard = isVisible() && (edit_->hasFocus() || list_->hasFocus());
  hide();
  drawing_ = nullptr;
  index_ = nullptr;
  chosen_ = nullptr;
  places_.clear();
  if (hadKeyboard) parentWidget()->setFocus(Qt::OtherFocusReason);
}

QString GoToBox::wordsOf(const GoTo& place, const civil::DrawingIndex& index) {
  const auto length = [](double value) { return toQt(text::fixedText(value)); };
  const QString coordinates =
      //: Easting and northing of a place, as their letters.
      tr("E %1   N %2").arg(length(place.place.x), length(place.place.y));
  switch (place.kind) {
    case GoTo::Kind::Coordinates:
      return tr("Coordinates  %1").arg(coordinates);
    case GoTo::Kind::Station: {
      const QString station = toQt(text::stationText(place.station));
      const QString name = toQt(place.alignment->name);
      if (place.offset == 0.0) return tr("Station %1 of %2").arg(station, name);
      return place.offset < 0.0 ? tr("Station %1 of %2, %3 left").arg(station, name, length(-place.offset))
                                : tr("Station %1 of %2, %3 right").arg(station, name, length(place.offset));
    }
    case GoTo::Kind::Point:
      return tr("Point %1   %2").arg(toQt(place.text), coordinates);
    case GoTo::Kind::Object:
      break;
  }
  const auto entry = index.byHandle(place.handle);
  const QString kind = entry ? PropertyWords::term(termOf(entry->kind())) : QString();
  const QString words = QStringLiteral("%1  %2").arg(kind, toQt(place.text));
  // Sample lines of many alignments have one name.
  return entry && entry->alignment != nullptr && entry->kind() != civil::ObjectKind::Alignment
             ? tr("%1 of %2").arg(words, toQt(entry->alignment->name))
             : words;
}

void GoToBox::understand() {
  if (drawing_ == nullptr) return;
  constexpr std::size_t kMost = 8;
  const std::string typed = toUtf8(edit_->text());
  GoToAnswer answer = properties::understand(*drawing_, *index_, chosen_, typed, kMost);
  tell(answer);
  places_ = std::move(answer.places);
  place();
}

void GoToBox::tell(const GoToAnswer& answer) {
  list_->clear();
  for (const GoTo& found : answer.places) list_->addItem(wordsOf(found, *index_));
  list_->setVisible(!answer.places.empty());
  if (!answer.places.empty()) list_->setCurrentRow(0);
  QString words;
  switch (answer.trouble) {
    case GoToTrouble::None:
      words = tr("Enter goes there, Tab completes");
      break;
    case GoToTrouble::Empty:
      words =
          tr("A point as 17 or GP3, a station as 1+020.5 or 1+020.5, -3 (left), easting and northing as 4500123.4; "
             "5400456.7, or an object's name");
      break;
    case GoToTrouble::NothingFits:
      words = tr("Nothing here is called “%1”, and it is neither a station nor easting and northing")
                  .arg(edit_->text().trimmed());
      break;
    case GoToTrouble::NoAlignment:
      words = tr("The drawing has no alignment that the station could be on");
      break;
    case GoToTrouble::OutsideStation:
      words = answer.alignment->geometry.isEmpty()
                  ? tr("%1 has no length").arg(toQt(answer.alignment->name))
                  : tr("%1 goes from %2 to %3")
                        .arg(toQt(answer.alignment->name),
                             toQt(text::stationText(answer.alignment->geometry.startStation())),
                             toQt(text::stationText(answer.alignment->geometry.endStation())));
      break;
  }
  told_->setText(words);
  // What a screen reader says of the line: what it means now.
  edit_->setAccessibleDescription(answer.places.empty() ? words : list_->item(0)->text());
}

void GoToBox::place() {
  constexpr int kWidth = 560;
  constexpr int kTop = 12;
  const int width = std::min(kWidth, parentWidget()->width() - 2 * kTop);
  if (const int rows = list_->count(); rows > 0) list_->setFixedHeight(rows * list_->sizeHintForRow(0) + 2);
  setFixedWidth(std::max(width, 1));
  layout()->activate();
  resize(width, layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height());
  move((parentWidget()->width() - width) / 2, kTop);
}

void GoToBox::accept() {
  const auto row = static_cast<std::size_t>(list_->currentRow());
  if (list_->currentRow() < 0 || row >= places_.size()) return;
  const GoTo chosen = places_[row];
  leave();
  Q_EMIT wanted(chosen);
}

void GoToBox::complete() {
  const auto row = static_cast<std::size_t>(list_->currentRow());
  if (list_->currentRow() >= 0 && row < places_.size()) edit_->setText(toQt(places_[row].text));
}

bool GoToBox::eventFilter(QObject* target, QEvent* event) {
  if (target == parentWidget() && event->type() == QEvent::Resize && isVisible()) place();
  if (target != edit_) return QFrame::eventFilter(target, event);
  if (event->type() == QEvent::FocusOut && isVisible()) {
    // A box that nobody types into is in the way; a menu of the line keeps it.
    if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason)
      QMetaObject::invokeMethod(
          this,
          [this] {
            if (!edit_->hasFocus()) leave();
          },
          Qt::QueuedConnection);
    return false;
  }
  if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
    return QFrame::eventFilter(target, event);
  const auto* const key = static_cast<QKeyEvent*>(event);
  const bool isPress = event->type() == QEvent::KeyPress;
  switch (key->key()) {
    case Qt::Key_Escape:
      if (isPress)
        leave();
      else
        event->accept();  // before the window's own Escape
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (isPress) accept();
      return isPress;
    case Qt::Key_Tab:
      if (isPress) complete();
      return isPress;
    case Qt::Key_Up:
    case Qt::Key_Down: {
      if (!isPress || list_->count() == 0) return false;
      const int step = key->key() == Qt::Key_Down ? 1 : list_->count() - 1;
      list_->setCurrentRow((list_->currentRow() + step) % list_->count());
      edit_->setAccessibleDescription(list_->currentItem()->text());
      return true;
    }
    default:
      return false;
  }
}

}  // namespace lvx::desktop
