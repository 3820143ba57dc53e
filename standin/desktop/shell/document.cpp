#include "desktop/shell/document.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QShortcut>
#include <algorithm>
#include <exception>
#include <string>

#include "desktop/common/qt_text.h"
#include "desktop/panels/console_view.h"
#include "desktop/panels/notice_bar.h"
#include "desktop/panels/progress_strip.h"
#include "desktop/panels/text_window.h"
#include "desktop/shell/leave_wish.h"
#include "desktop/shell/long_work.h"
#include "desktop/shell/session.h"
#include "landxml/project.h"

namespace lvx::desktop {

namespace {
constexpr const char* kSaveQuestion = "saveChanges";
}

Document::Document(const DocumentSurroundings& surroundings, Session& session, LongWork& work, RecentDrawings& recent,
                   LeaveWish& leave)
    : at_(surroundings),
      session_(session),
      work_(work),
      recent_(recent),
      leave_(leave),
      stopReading_(new QShortcut(QKeySequence(Qt::Key_Escape), &at_.window)) {
  connectReading();
  connectFile();
  connect(this, &Document::stateChanged, this, [this] { stopReading_->setEnabled(loader_.isRunning()); });
}

Document::~Document() = default;

void Document::connectReading() {
  connect(&at_.progress, &ProgressStrip::cancelled, &loader_, &DrawingLoader::cancel);
  connect(stopReading_, &QShortcut::activated, &loader_, &DrawingLoader::cancel);
  connect(&loader_, &DrawingLoader::progressed, this, [this](const QString& step, quint64 done, quint64 total) {
    const QString name = QFileInfo(loader_.path()).fileName();
    // Bytes are told while the file is read; what follows has no unit.
    at_.progress.setProgress(step == DrawingLoader::tr("Reading")
                                 ? tr("%1 %2: %3 of %4").arg(step, name, sizeText(done), sizeText(total))
                                 : tr("%1: %2").arg(name, step),
                             done, total);
  });
  connect(&loader_, &DrawingLoader::loaded, this, &Document::take);
  connect(&loader_, &DrawingLoader::failed, this, &Document::tellReadError);
  connect(&loader_, &DrawingLoader::cancelled, this, [this] {
    at_.progress.end();
    at_.console.print(tr("Opening %1 was cancelled.").arg(loader_.path()));
    Q_EMIT stateChanged();
  });
}

void Document::connectFile() {
  connect(&file_, &DrawingFile::changed, this,
          [this] { at_.notice.tell(tr("%1 was changed by another program.").arg(path()), tr("Reload"), tr("Keep")); });
  connect(&file_, &DrawingFile::vanished, this, [this] {
    at_.notice.tell(
        tr("%1 isn't there any more. The drawing stays open; Save as writes it to a new place.").arg(path()), {},
        tr("Keep"));
  });
  connect(&file_, &DrawingFile::restored, &at_.notice, &NoticeBar::hide);
  connect(&at_.notice, &NoticeBar::accepted, this, &Document::askReload);
}

bool Document::isBusy() const { return session_.isRunning() || work_.isRunning() || loader_.isRunning(); }

bool Document::isOpen() const { return static_cast<bool>(session_.drawing()); }

bool Document::isChanged() const { return isOpen() && session_.drawing()->isChanged(); }

QString Document::path() const {
  return isOpen() ? QFile::decodeName(QByteArray::fromStdString(session_.drawing()->drawing().path)) : QString();
}

// ---------------------------------------------------------------- opening

void Document::askOpen() {
  if (isBusy()) return;
  const QString chosen = QFileDialog::getOpenFileName(&at_.window, tr("Open a drawing"), recent_.folder(),
                                                      tr("LandXML drawings (*.xml *.landxml);;All files (*)"));
  if (!chosen.isEmpty()) open(chosen);
}

void Document::askReload() {
  if (!isBusy() && isOpen()) open(path());
}

void Document::open(const QString& path) {
  if (session_.isRunning() || work_.isRunning()) return;
  if (!settleChanges()) return;
  const QString absolute = QFileInfo(path).absoluteFilePath();
  loader_.start(absolute);
  at_.progress.begin(tr("Reading %1").arg(QFileInfo(absolute).fileName()));
  Q_EMIT stateChanged();
}

void Document::cancelReading() { loader_.cancel(); }

void Document::take(const LoadedDrawing& loaded) {
  at_.progress.end();
  Q_EMIT letGo();
  at_.notice.hide();
  session_.open(loaded.drawing);
  file_.hold(path(), loaded.stamp);
  Q_EMIT opened(loaded);
  tellOpened();
  recent_.remember(path());
  Q_EMIT stateChanged();
}

void Document::tellOpened() {
  at_.console.print(tr("%1 is open.").arg(path()));
  const auto& diagnostics = session_.drawing()->drawing().diagnostics;
  const auto severe = std::count_if(diagnostics.begin(), diagnostics.end(), [](const civil::Diagnostic& diagnostic) {
    return diagnostic.severity != civil::Severity::Note;
  });
  if (severe > 0)
    at_.console.printError(
        tr("The reader found %n odd thing(s) in it; see Diagnostics.", nullptr, static_cast<int>(severe)));
}

void Document::tellReadError(const LoadFailure& failure) {
  at_.progress.end();
  Q_EMIT stateChanged();
  at_.console.printError(tr("%1 can't be opened: %2").arg(failure.path, failure.reason));
  QMessageBox box(QMessageBox::Critical, tr("The drawing can't be opened"),
                  tr("%1 can't be opened.").arg(QFileInfo(failure.path).fileName()), QMessageBox::Ok, &at_.window);
  box.setObjectName(QStringLiteral("openFailed"));
  box.setEscapeButton(QMessageBox::Ok);
  const QString kept = isOpen() ? tr("The drawing that was open stays open.") : QString();
  box.setInformativeText(QStringList{failure.reason, failure.advice, kept}
                             .filter(QRegularExpression(QStringLiteral(".")))
                             .join(QStringLiteral("\n\n")));
  QPushButton* const show = failure.line > 0 ? box.addButton(tr("&Show the line"), QMessageBox::ActionRole) : nullptr;
  box.exec();
  if (show != nullptr && box.clickedButton() == show)
    (new TextWindow(failure.path, failure.line, decodeUtf8OrLatin1, &at_.window))->show();
}

// ---------------------------------------------------------------- saving

bool Document::isQuestion(const QWidget& box) const {
  return asksForChanges_ && box.objectName() == QLatin1String(kSaveQuestion);
}

bool Document::settleChanges() {
  if (!asksForChanges_ || !isChanged()) return true;
  const bool isEdited = session_.drawing()->isEdited();
  QMessageBox box(QMessageBox::Question, tr("Save the drawing?"),
                  (isEdited ? tr("%1 has changes that aren't saved.") : tr("%1 has sections that aren't saved."))
                      .arg(QFileInfo(path()).fileName()),
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, &at_.window);
  box.setObjectName(QLatin1String(kSaveQuestion));
  box.setInformativeText(isEdited ? tr("Without saving, what was made and changed in it is lost.")
                                  : tr("Without saving, the sections that the GLS report added are lost."));
  box.button(QMessageBox::Discard)->setText(tr("&Don't save"));
  box.setDefaultButton(QMessageBox::Save);
  switch (box.exec()) {
    case QMessageBox::Save:
      return save();
    case QMessageBox::Discard:
      return true;
    default:
      return false;
  }
}

bool Document::save() {
  if (!isOpen() || isBusy()) return false;
  return saveTo(path());
}

bool Document::askSaveAs() {
  if (!isOpen() || isBusy()) return false;
  const QString target = QFileDialog::getSaveFileName(&at_.window, tr("Save the drawing as"), path(),
                                                      tr("LandXML drawings (*.xml);;All files (*)"));
  return !target.isEmpty() && saveTo(target);
}

bool Document::saveTo(const QString& target) {
  const bool isOwnName = QFileInfo(target).absoluteFilePath() == QFileInfo(path()).absoluteFilePath();
  if (isOwnName && file_.isReplaced()) {
    tellSaveError(target,
                  tr("The file was changed by another program since it was opened, and saving would undo that."));
    return false;
  }
  const QString from = file_.readablePath();
  QString problem;
  bool isCancelled = false;
  try {
    write(from, target);
  } catch (const landxml::Cancelled&) {
    isCancelled = true;
  } catch (const landxml::SaveError& error) {
    // The user knows what was opened by its path, whatever it was read under.
    const bool isOwn = error.file() == QFile::encodeName(from).toStdString();
    problem = toQt(isOwn ? error.description(toUtf8(path())) : error.description());
  } catch (const std::exception& error) {
    problem = toQt(std::string(error.what()));
  }
  Q_EMIT stateChanged();
  leave_.follow();
  if (isCancelled) {
    at_.console.print(tr("Saving %1 was cancelled; the drawing isn't saved.").arg(target));
    return false;
  }
  if (!problem.isEmpty()) {
    if (!leave_.isThere()) tellSaveError(target, problem);
    return false;
  }
  file_.hold(target, stampOf(target));
  at_.notice.hide();
  Q_EMIT saved();
  at_.console.print(tr("%1 is saved, %2.").arg(target, sizeText(file_.size())));
  recent_.remember(target);
  Q_EMIT stateChanged();
  return true;
}

void Document::write(const QString& from, const QString& target) {
  const std::string sourcePath = QFile::encodeName(from).toStdString();
  const std::string targetPath = QFile::encodeName(target).toStdString();
  const QString words = tr("Saving %1").arg(QFileInfo(target).fileName());
  const LongWork::Run run(work_, words);
  Q_EMIT stateChanged();
  landxml::SaveOptions options;
  options.progress = [&](const landxml::Progress& progress) {
    work_.setProgress(words, progress.bytesDone, progress.bytesTotal);
    return !work_.check();
  };
  options.sourceOf = [&](civil::FileNumber file) { return file == 0 ? sourcePath : std::string(); };
  session_.drawing()->save([&](civil::Drawing& drawing) {
    drawing.file = landxml::saveProject(drawing, targetPath, options).front().mark;
    drawing.path = targetPath;
  });
}

void Document::tellSaveError(const QString& target, const QString& reason) {
  at_.console.printError(tr("%1 can't be saved: %2").arg(target, reason));
  QMessageBox box(QMessageBox::Critical, tr("The drawing can't be saved"),
                  tr("%1 can't be saved.").arg(QFileInfo(target).fileName()), QMessageBox::NoButton, &at_.window);
  box.setObjectName(QStringLiteral("saveFailed"));
  box.setInformativeText(reason + QStringLiteral("\n\n") +
                         tr("The drawing stays open with its changes, and nothing was written. Save it under another "
                            "name or in another folder, or make room and try again."));
  QPushButton* const elsewhere = box.addButton(tr("Save &as…"), QMessageBox::AcceptRole);
  box.addButton(QMessageBox::Close);
  box.setDefaultButton(elsewhere);
  box.exec();
  if (box.clickedButton() == elsewhere) QMetaObject::invokeMethod(this, "askSaveAs", Qt::QueuedConnection);
}

}  // namespace lvx::desktop
