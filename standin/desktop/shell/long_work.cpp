#include "desktop/shell/long_work.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QWidget>

#include "desktop/common/qt_text.h"
#include "desktop/panels/progress_strip.h"

namespace lvx::desktop {

namespace {
constexpr qint64 kBreath = 50;       // milliseconds between two paints
constexpr qint64 kShownAfter = 250;  // shorter work needs no bar
}  // namespace

LongWork::LongWork(ProgressStrip& strip) : strip_(strip) {
  connect(&strip_, &ProgressStrip::cancelled, this, &LongWork::cancel);
}

void LongWork::begin(const QString& name) {
  name_ = name;
  step_.clear();
  done_ = total_ = 0;
  running_ = true;
  cancelled_ = shown_ = false;
  questions_ = 0;
  sinceStart_.start();
  sinceBreath_.start();
}

void LongWork::end() {
  running_ = false;
  if (shown_) strip_.end();
  shown_ = false;
}

void LongWork::pause() {
  if (++questions_ == 1 && shown_) {
    strip_.end();
    shown_ = false;
  }
}

void LongWork::resume() {
  if (--questions_ > 0) return;
  sinceStart_.start();
  sinceBreath_.start();
}

void LongWork::cancel() {
  if (running_) cancelled_ = true;
}

void LongWork::setProgress(const QString& step, quint64 done, quint64 total) {
  step_ = step;
  done_ = done;
  total_ = total;
}

std::function<void(std::uint64_t, std::uint64_t)> LongWork::startProgress(const std::string& step) {
  return [this, name = toQt(step)](std::uint64_t done, std::uint64_t total) { setProgress(name, done, total); };
}

bool LongWork::check() {
  if (!running_ || cancelled_) return cancelled_;
  if (questions_ > 0 || breathing_ || sinceBreath_.elapsed() < kBreath) return false;
  if (!shown_ && sinceStart_.elapsed() >= kShownAfter) {
    strip_.begin(name_);
    shown_ = true;
  }
  if (shown_) strip_.setProgress(step_.isEmpty() ? name_ : step_, done_, total_);
  breathing_ = true;
  qApp->installEventFilter(this);
  QApplication::processEvents(QEventLoop::AllEvents, static_cast<int>(kBreath));
  qApp->removeEventFilter(this);
  breathing_ = false;
  sinceBreath_.restart();
  return cancelled_;
}

bool LongWork::letThrough(QObject* target, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
      // Windows hand these on to the widget under the mouse, which is looked at then.
      return !target->isWidgetType() || target == strip_.cancelButton();
    case QEvent::KeyPress:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) cancel();
      return false;
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::InputMethod:
      return false;
    default:
      return true;
  }
}

bool LongWork::eventFilter(QObject* target, QEvent* event) { return !letThrough(target, event); }

}  // namespace lvx::desktop
