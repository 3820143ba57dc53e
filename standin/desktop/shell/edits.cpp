#include "desktop/shell/edits.h"

#include <QMessageBox>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/shell/long_work.h"
#include "desktop/shell/session.h"

namespace lvx::desktop {

Edits::Edits(QWidget& window, Session& session, LongWork& work) : window_(window), session_(session), work_(work) {}

Edits::~Edits() = default;

bool Edits::isPossible() const {
  return session_.drawing() && !session_.isRunning() && !work_.isRunning() && (!isHindered_ || !isHindered_());
}

void Edits::setHindrance(std::function<bool()> isThere) { isHindered_ = std::move(isThere); }

civil::Handle Edits::make(const QString& name, civil::ReversibleChangePtr change) {
  if (!isPossible()) return 0;
  if (history_ == nullptr) history_ = std::make_unique<runtime::EditHistory>(*session_.drawing());
  Q_EMIT aboutToChange();
  session_.freeDrawing();
  civil::Handle about = 0;
  QString problem;
  try {
    about = history_->make(toUtf8(name), std::move(change));
  } catch (const civil::EditError& error) {
    problem = toQt(std::string(error.what()));
  }
  Q_EMIT changed(about);
  if (!problem.isEmpty()) {
    QMessageBox box(QMessageBox::Warning, tr("The drawing can't be changed so"), tr("“%1” can't be done.").arg(name),
                    QMessageBox::Ok, &window_);
    box.setObjectName(QStringLiteral("editFailed"));
    box.setInformativeText(
        tr("What it is about isn't there any more, or its name is taken. The drawing is as it was. In detail: %1.")
            .arg(problem));
    box.exec();
  }
  return about;
}

void Edits::undo() {
  if (!isPossible() || undoName().isEmpty()) return;
  Q_EMIT aboutToChange();
  session_.freeDrawing();
  Q_EMIT changed(history_->undo());
}

void Edits::redo() {
  if (!isPossible() || redoName().isEmpty()) return;
  Q_EMIT aboutToChange();
  session_.freeDrawing();
  Q_EMIT changed(history_->redo());
}

QString Edits::undoName() const { return history_ == nullptr ? QString() : toQt(history_->undoName()); }

QString Edits::redoName() const { return history_ == nullptr ? QString() : toQt(history_->redoName()); }

void Edits::forget() { history_.reset(); }

}  // namespace lvx::desktop
