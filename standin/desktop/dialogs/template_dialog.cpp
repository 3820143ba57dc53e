#include "desktop/dialogs/template_dialog.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProxyStyle>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyleOption>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/dialogs/modal_windows.h"
#include "desktop/dialogs/picture_widgets.h"
#include "framework/exceptions.h"
#include "host/dialog_controls.h"

namespace lvx::desktop {

using framework::CString;
using host::ControlKind;
using host::ControlTemplate;

namespace {

constexpr int kLetters = 52;
/// A closed drop-down list is as high as an edit box; its template's height is that of the opened one.
constexpr int kClosedListHeight = 13;
constexpr int kUnitsAcross = 4;
constexpr int kUnitsDown = 8;
/// Pixels between a group's title and the line on both sides of it.
constexpr int kTitleGap = 3;
/// How much of the text's colour a group's frame has.
constexpr float kFrameStrength = 0.28F;

/// Without the marks of access keys.
QString plainCaption(const QString& caption) {
  QString plain;
  for (qsizetype at = 0; at < caption.size(); ++at) {
    if (caption[at] == u'&' && ++at == caption.size()) break;
    plain += caption[at];
  }
  return plain;
}

/// Text for a tip, where text that looks like markup is text all the same.
QString tipText(const QString& text) {
  if (!Qt::mightBeRichText(text)) return text;
  return QStringLiteral("<span style=\"white-space:pre\">%1</span>").arg(text.toHtmlEscaped());
}

/// A static text. Its access key belongs to the dialog: Qt's own label would press a button behind it.
class CaptionLabel final : public QLabel {
 public:
  using QLabel::QLabel;

  [[nodiscard]] bool isOneLine() const { return height() < 2 * QFontMetricsF(font()).height(); }
  /// The text as it is to be drawn, marks of access keys included.
  void setCaption(const QString& caption) {
    caption_ = caption;
    setText(plainCaption(caption));
    update();
  }
  [[nodiscard]] int flags() const {
    return Qt::AlignLeft | Qt::AlignTop | Qt::TextShowMnemonic | (isOneLine() ? 0 : int(Qt::TextWordWrap));
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    style()->drawItemText(&painter, rect(), flags(), palette(), isEnabled(), caption_, QPalette::WindowText);
  }

 private:
  QString caption_;
};

/// A frame with its title in the upper line: templates put the first row where other styles would draw that line. Its
/// access key leads to what stands behind it in the template, since its controls aren't its children.
class GroupFrame final : public QGroupBox {
 public:
  using QGroupBox::QGroupBox;
  std::function<void()> onAccessKey;

  /// Pixels from an edge to the title.
  [[nodiscard]] int titleInset() const { return 2 * fontMetrics().horizontalAdvance(u'i') + kTitleGap; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QFontMetrics metrics(font());
    const QRect text(titleInset(), 0, metrics.size(Qt::TextShowMnemonic, title()).width(), metrics.height());
    painter.save();
    if (!title().isEmpty()) painter.setClipRegion(QRegion(rect()) - text.adjusted(-kTitleGap, 0, kTitleGap, 0));
    painter.setRenderHint(QPainter::Antialiasing);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(kFrameStrength);
    painter.setPen(line);
    const int middle = metrics.height() / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5 + middle, -0.5, -0.5), 2, 2);
    painter.restore();
    style()->drawItemText(&painter, text, Qt::AlignLeft | Qt::AlignTop | Qt::TextShowMnemonic, palette(), isEnabled(),
                          title(), QPalette::WindowText);
  }

  bool event(QEvent* event) override {
    if (event->type() != QEvent::Shortcut) return QGroupBox::event(event);
    onAccessKey();
    return true;
  }
};

/// A list drops down from its box, as wide as its longest row.
class DropDownList final : public QComboBox {
 public:
  using QComboBox::QComboBox;

  void setOpenedHeight(int pixels) { openedHeight_ = pixels; }
  void showPopup() override {
    const int rowHeight = std::max(view()->sizeHintForRow(0), 1);
    setMaxVisibleItems(std::max((openedHeight_ - height()) / rowHeight, 1));
    const int scrollBar = count() > maxVisibleItems() ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + scrollBar);
    QComboBox::showPopup();
  }

 protected:
  /// The wheel changes the list that the user works with, not one that the mouse happens to pass.
  void wheelEvent(QWheelEvent* event) override {
    if (hasFocus())
      QComboBox::wheelEvent(event);
    else
      event->ignore();
  }

 private:
  int openedHeight_ = 0;
};

/// The application's style, but for lists that drop down where it would lay them over their box.
class DropDownStyle final : public QProxyStyle {
 public:
  using QProxyStyle::QProxyStyle;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
  }

  /// The one for the application's present style; it lives as long as the application, since widgets only borrow it.
  static QStyle* instance() {
    static QPointer<DropDownStyle> current;
    const QString name = QApplication::style()->name();
    if (!current || current->objectName() != name) {
      current = new DropDownStyle(name);
      current->setParent(QCoreApplication::instance());
      current->setObjectName(name);
    }
    return current;
  }
};

bool takesFocus(const QWidget* widget) { return (widget->focusPolicy() & Qt::TabFocus) != 0; }

}  // namespace

DialogBaseUnits dialogBaseUnits(const QFont& font) {
  const QFontMetricsF metrics(font);
  const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
  return {metrics.horizontalAdvance(letters) / kLetters, std::ceil(metrics.height())};
}

QRect pixelsOf(const host::DialogUnits& rectangle, const DialogBaseUnits& units) {
  const auto across = [&](int x) { return static_cast<int>(std::lround(x * units.width / kUnitsAcross)); };
  const auto down = [&](int y) { return static_cast<int>(std::lround(y * units.height / kUnitsDown)); };
  const QPoint upperLeft(across(rectangle.x), down(rectangle.y));
  return {upperLeft, QSize(across(rectangle.x + rectangle.width) - upperLeft.x(),
                           down(rectangle.y + rectangle.height) - upperLeft.y())};
}

QFont fontOf(const host::DialogTemplate& made) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
  if (!made.fontName.starts_with(L"MS Shell Dlg")) font.setFamily(toQt(CString(made.fontName)));
  font.setPointSize(made.fontPoints);
  return font;
}

std::uint32_t faceColour(const QPalette& palette) {
  const QColor colour = palette.color(QPalette::Active, QPalette::Window);
  return static_cast<std::uint32_t>(colour.red()) | static_cast<std::uint32_t>(colour.green()) << 8U |
         static_cast<std::uint32_t>(colour.blue()) << 16U;
}

TemplateDialog::TemplateDialog(host::DialogBehaviour& behaviour, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowCloseButtonHint),
      behaviour_(behaviour) {
  const host::DialogTemplate& made = behaviour.dialogTemplate();
  setObjectName(QString::fromLatin1(made.name.data(), static_cast<qsizetype>(made.name.size())));
  setWindowModality(parent != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
  setAttribute(Qt::WA_AlwaysShowToolTips);
  setFont(fontOf(made));
  units_ = dialogBaseUnits(font());
  setFixedSize(pixelsOf({0, 0, made.width, made.height}, units_).size());
  setWindowTitle(toQt(CString(made.title)));

  QWidget* previous = nullptr;
  controls_.reserve(made.controls.size());
  for (const ControlTemplate& control : made.controls) {
    places_[control.id] = controls_.size();
    Control& state = controls_.emplace_back();
    state.made = &control;
    state.text = control.text;
    state.widget = makeWidget(control);
    state.widget->setObjectName(QStringLiteral("control%1").arg(control.id));
    host::DialogUnits rectangle = control.rectangle;
    if (control.kind == ControlKind::DropDownList) rectangle.height = std::min(rectangle.height, kClosedListHeight);
    state.widget->setGeometry(pixelsOf(rectangle, units_));
    state.widget->setEnabled(control.startsEnabled);
    state.widget->installEventFilter(this);
    showCaption(state);
    if (!takesFocus(state.widget)) continue;
    if (previous != nullptr) setTabOrder(previous, state.widget);
    previous = state.widget;
  }
  alignLabels();
}

void TemplateDialog::alignLabels() {
  for (const Control& field : controls_) {
    if (field.made->kind != ControlKind::DropDownList && field.made->kind != ControlKind::EditBox) continue;
    const Control* const found = labelOf(field);
    if (found == nullptr) continue;
    auto* const label = static_cast<CaptionLabel*>(found->widget);
    label->setBuddy(field.widget);
    if (!label->isOneLine()) continue;
    QRect place = label->geometry();
    place.moveCenter({place.center().x(), field.widget->geometry().center().y()});
    label->setGeometry(place);
  }
}

const TemplateDialog::Control* TemplateDialog::labelOf(const Control& field) const {
  const QRect place = field.widget->geometry();
  for (const Control& other : controls_) {
    if (other.made->kind != ControlKind::Label) continue;
    const QRect its = other.widget->geometry();
    if (its.center().y() >= place.top() && its.center().y() <= place.bottom() && its.right() < place.left())
      return &other;
  }
  return nullptr;
}

QWidget* TemplateDialog::makeWidget(const ControlTemplate& made) {
  const int id = made.id;
  switch (made.kind) {
    case ControlKind::PushButton:
    case ControlKind::DefaultButton:
    case ControlKind::PictureButton: {
      QPushButton* button = made.kind == ControlKind::PictureButton ? new PictureButton(this) : new QPushButton(this);
      button->setAutoDefault(true);
      button->setDefault(made.kind == ControlKind::DefaultButton);
      connect(button, &QPushButton::clicked, this, [this, id] { dispatch([&] { behaviour_.onClick(*this, id); }); });
      return button;
    }
    case ControlKind::GroupBox: {
      auto* group = new GroupFrame(this);
      group->onAccessKey = [this, group] { focusBehind(group); };
      group->lower();  // wherever the template lists it, its controls lie on it
      return group;
    }
    case ControlKind::Label:
      return new CaptionLabel(this);
    case ControlKind::Picture:
      return new PictureLabel(this);
    case ControlKind::DropDownList: {
      auto* list = new DropDownList(this);
      list->setStyle(DropDownStyle::instance());
      list->setOpenedHeight(pixelsOf(made.rectangle, units_).height());
      list->setFocusPolicy(Qt::StrongFocus);
      connect(list, &QComboBox::activated, this,
              [this, id] { dispatch([&] { behaviour_.onSelectionChanged(*this, id); }); });
      return list;
    }
    case ControlKind::CheckBox:
      return new QCheckBox(this);
    case ControlKind::EditBox: {
      auto* edit = new QLineEdit(this);
      connect(edit, &QLineEdit::textEdited, this,
              [this, id] { dispatch([&] { behaviour_.onTextChanged(*this, id); }); });
      return edit;
    }
  }
  return new QWidget(this);
}

const TemplateDialog::Control* TemplateDialog::find(int id) const {
  const auto found = places_.find(id);
  return found == places_.end() ? nullptr : &controls_[found->second];
}

TemplateDialog::Control* TemplateDialog::find(int id) {
  const auto found = places_.find(id);
  return found == places_.end() ? nullptr : &controls_[found->second];
}

template <class Widget>
Widget* TemplateDialog::widgetOf(int id) const {
  const Control* control = find(id);
  return control == nullptr ? nullptr : qobject_cast<Widget*>(control->widget);
}

// ---------------------------------------------------------------- opening and closing

int TemplateDialog::runModal() {
  dispatch([this] {
    behaviour_.onOpening(*this);
    opening_ = false;
  });
  if (!isOver()) {
    nameControls();
    focusFirst();
    exec();
    cancelForGood();  // unless it is over: the application was told to quit while the dialog stood open
  }
  if (failure_) std::rethrow_exception(failure_);
  return closedWith_.value_or(host::kIdCancel);
}

template <class Event>
void TemplateDialog::dispatch(Event event) {
  runEvent(event);
  if (areModalWindowsRefused() && runningEvents_ == 0) cancelForGood();
  closeWhenOver();
}

template <class Event>
void TemplateDialog::runEvent(Event event) {
  ++runningEvents_;
  try {
    event();
  } catch (...) {
    if (!failure_) failure_ = std::current_exception();
  }
  --runningEvents_;
}

void TemplateDialog::cancelForGood() {
  if (isOver()) return;
  runEvent([this] { behaviour_.onClick(*this, host::kIdCancel); });
  if (!isOver()) closedWith_ = host::kIdCancel;
}

void TemplateDialog::closeWhenOver() {
  if (runningEvents_ == 0 && isOver() && isVisible()) done(Accepted);
}

void TemplateDialog::end(int code) {
  closedWith_ = code;
  closeWhenOver();
}

void TemplateDialog::reject() {
  // Within an event the dialog waits for its answer and hears of the program's end when that has come.
  if (runningEvents_ > 0 || isOver()) return;
  if (areModalWindowsRefused())
    cancelForGood();
  else
    runEvent([this] { behaviour_.onClick(*this, host::kIdCancel); });
  closeWhenOver();
}

void TemplateDialog::focusFirst() {
  for (const Control& control : controls_)
    if (takesFocus(control.widget) && control.widget->isEnabled()) {
      control.widget->setFocus(Qt::TabFocusReason);
      return;
    }
}

void TemplateDialog::focusBehind(const QWidget* control) {
  auto next = std::find_if(controls_.begin(), controls_.end(), [&](const Control& c) { return c.widget == control; });
  for (; next != controls_.end(); ++next)
    if (takesFocus(next->widget) && next->widget->isEnabled()) {
      next->widget->setFocus(Qt::ShortcutFocusReason);
      return;
    }
}

// ---------------------------------------------------------------- texts

void TemplateDialog::setTitle(const CString& title) { setWindowTitle(toQt(title)); }

void TemplateDialog::setText(int id, const CString& text) {
  Control* control = find(id);
  if (control == nullptr) return;
  control->text = text;
  showCaption(*control);
  if (!opening_ && control->made->kind == ControlKind::EditBox) behaviour_.onTextChanged(*this, id);
}

CString TemplateDialog::text(int id) const {
  if (const auto* edit = widgetOf<QLineEdit>(id)) return toWide(edit->text());
  const Control* control = find(id);
  return control == nullptr ? CString() : control->text;
}

void TemplateDialog::showCaption(Control& control) {
  const QString caption = toQt(control.text);
  const QFontMetrics metrics(font());
  const auto fitted = [&](int room) {
    control.isCut = metrics.size(Qt::TextShowMnemonic | Qt::TextSingleLine, caption).width() > room;
    return control.isCut ? metrics.elidedText(caption, Qt::ElideRight, room, Qt::TextShowMnemonic) : caption;
  };
  switch (control.made->kind) {
    case ControlKind::PushButton:
    case ControlKind::DefaultButton: {
      auto* button = static_cast<QPushButton*>(control.widget);
      QStyleOptionButton option;
      option.initFrom(button);
      button->setText(fitted(style()->subElementRect(QStyle::SE_PushButtonContents, &option, button).width()));
      break;
    }
    case ControlKind::CheckBox: {
      auto* box = static_cast<QCheckBox*>(control.widget);
      QStyleOptionButton option;
      option.initFrom(box);
      box->setText(fitted(style()->subElementRect(QStyle::SE_CheckBoxContents, &option, box).width()));
      break;
    }
    case ControlKind::GroupBox: {
      auto* group = static_cast<GroupFrame*>(control.widget);
      group->setTitle(fitted(group->width() - 2 * group->titleInset()));
      break;
    }
    case ControlKind::Label: {
      auto* label = static_cast<CaptionLabel*>(control.widget);
      if (label->isOneLine()) {
        label->setCaption(fitted(label->width()));
      } else {
        label->setCaption(caption);
        control.isCut = metrics.boundingRect(label->rect(), label->flags(), caption).height() > label->height();
      }
      setAccessKey(control, caption);
      break;
    }
    case ControlKind::EditBox: {
      const QSignalBlocker quiet(control.widget);
      static_cast<QLineEdit*>(control.widget)->setText(caption);
      break;
    }
    case ControlKind::Picture:
    case ControlKind::PictureButton:
    case ControlKind::DropDownList:
      break;
  }
}

void TemplateDialog::setAccessKey(Control& control, const QString& caption) {
  delete std::exchange(control.accessKey, nullptr);
  const QKeySequence key = QKeySequence::mnemonic(caption);
  if (key.isEmpty()) return;
  control.accessKey = new QShortcut(key, this);
  const QWidget* label = control.widget;
  connect(control.accessKey, &QShortcut::activated, this, [this, label] { focusBehind(label); });
}

void TemplateDialog::nameControls() {
  for (const Control& control : controls_) {
    const ControlKind kind = control.made->kind;
    if (kind != ControlKind::DropDownList && kind != ControlKind::EditBox && kind != ControlKind::PictureButton)
      continue;
    const Control* named = labelOf(control);
    for (const Control& other : controls_)
      if (named == nullptr && other.made->kind == ControlKind::GroupBox &&
          other.widget->geometry().contains(control.widget->geometry().center()))
        named = &other;
    if (named != nullptr) control.widget->setAccessibleName(plainCaption(toQt(named->text)));
  }
}

// ---------------------------------------------------------------- states

void TemplateDialog::enable(int id, bool enabled) {
  if (const Control* control = find(id)) {
    control->widget->setEnabled(enabled);
    if (control->accessKey != nullptr) control->accessKey->setEnabled(enabled);
  }
}

bool TemplateDialog::isEnabled(int id) const {
  const Control* control = find(id);
  return control != nullptr && control->widget->isEnabled();
}

void TemplateDialog::tick(int id, bool ticked) {
  if (auto* box = widgetOf<QCheckBox>(id)) box->setChecked(ticked);
}

bool TemplateDialog::isTicked(int id) const {
  const auto* box = widgetOf<QCheckBox>(id);
  return box != nullptr && box->isChecked();
}

// ---------------------------------------------------------------- lists

void TemplateDialog::emptyList(int id) {
  if (auto* list = widgetOf<QComboBox>(id)) list->clear();
}

void TemplateDialog::insertRow(int id, int position, const CString& text) {
  auto* list = widgetOf<QComboBox>(id);
  if (list == nullptr || position < 0 || position > list->count()) return;
  const bool hadSelection = list->currentIndex() >= 0;
  list->insertItem(position, toQt(text));
  if (!hadSelection) list->setCurrentIndex(-1);  // of itself the first row of an empty list is selected
}

int TemplateDialog::rowCount(int id) const {
  const auto* list = widgetOf<QComboBox>(id);
  return list == nullptr ? 0 : list->count();
}

CString TemplateDialog::rowText(int id, int row) const {
  const auto* list = widgetOf<QComboBox>(id);
  if (list == nullptr || row < 0 || row >= list->count()) throw framework::InvalidArgumentException();
  return toWide(list->itemText(row));
}

void TemplateDialog::select(int id, int row) {
  if (auto* list = widgetOf<QComboBox>(id)) list->setCurrentIndex(row >= 0 && row < list->count() ? row : -1);
}

int TemplateDialog::selection(int id) const {
  const auto* list = widgetOf<QComboBox>(id);
  return list == nullptr ? kNone : list->currentIndex();
}

// ---------------------------------------------------------------- pictures and tips

void TemplateDialog::setPicture(int id, const host::PictureBits& picture) {
  const QImage image = imageOf(picture);
  if (auto* label = widgetOf<PictureLabel>(id))
    label->setImage(image, palette().color(QPalette::Window));
  else if (auto* pictureButton = widgetOf<PictureButton>(id))
    pictureButton->setImage(image);
  else if (auto* button = widgetOf<QPushButton>(id))
    button->setIcon(QIcon(crispPixmap(image, devicePixelRatioF())));
}

void TemplateDialog::setTip(int id, const CString& text) {
  if (const Control* control = find(id)) control->widget->setToolTip(toQt(text));
}

QString TemplateDialog::tipFor(const Control& control) const {
  if (!control.widget->toolTip().isEmpty()) return control.widget->toolTip();
  if (const auto* list = qobject_cast<const QComboBox*>(control.widget)) {
    QStyleOptionComboBox option;
    option.initFrom(list);
    const QRect field = list->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, list);
    const bool isWhole = list->fontMetrics().horizontalAdvance(list->currentText()) <= field.width();
    return isWhole ? QString() : list->currentText();
  }
  return control.isCut ? plainCaption(toQt(control.text)) : QString();
}

bool TemplateDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QDialog::eventFilter(watched, event);
  const auto control =
      std::find_if(controls_.begin(), controls_.end(), [&](const Control& c) { return c.widget == watched; });
  if (control == controls_.end()) return false;
  const QString tip = tipFor(*control);
  if (tip.isEmpty()) return false;
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tipText(tip), control->widget);
  return true;
}

}  // namespace lvx::desktop
