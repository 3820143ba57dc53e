#include "desktop/shell/document.h"

#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QShortcut>
#include <algorithm>
#include <exception>
#include <string>

#include "desktop/common/file_boxes.h"
#include "desktop/common/qt_text.h"
#include "desktop/panels/console_view.h"
#include "desktop/panels/notice_bar.h"
#include "desktop/panels/progress_strip.h"
#include "desktop/panels/text_window.h"
#include "desktop/shell/leave_wish.h"
#include "desktop/shell/long_work.h"
#include "desktop/shell/session.h"
#include "landxml/project.h"
#include "standin_platform/file_stamp.h"

namespace lvx::desktop {

namespace {
constexpr const char* kSaveQuestion = "saveChanges";

std::string encodedPath(const QString& path) { return QFile::encodeName(path).toStdString(); }

/// The path itself, or that of a file beside a compressed one: a drawing is saved unpacked.
QString unpackedName(const QString& path) {
  QString name = path;
  for (const QString& ending : {QStringLiteral(".gz"), QStringLiteral(".zip")})
    if (name.endsWith(ending, Qt::CaseInsensitive)) name.chop(ending.size());
  if (name != path && !name.endsWith(QStringLiteral(".xml"), Qt::CaseInsensitive)) name += QStringLiteral(".xml");
  return name;
}
}  // namespace

Document::Document(const DocumentSurroundings& surroundings, Session& session, LongWork& work, RecentDrawings& recent,
                   LeaveWish& leave)
    : at_(surroundings),
      session_(session),
      work_(work),
      recent_(recent),
      leave_(leave),
      stopReading_(new QShortcut(QKeySequence(Qt::Key_Escape), &at_.window)) {
  connectReading();
  connectFiles();
  connect(this, &Document::stateChanged, this, [this] { stopReading_->setEnabled(loader_.isRunning()); });
}

Document::~Document() = default;

void Document::connectReading() {
  connect(&at_.progress, &ProgressStrip::cancelled, &loader_, &DrawingLoader::cancel);
  connect(stopReading_, &QShortcut::activated, &loader_, &DrawingLoader::cancel);
  connect(&loader_, &DrawingLoader::progressed, this,
          [this](const QString& step, const QString& path, quint64 done, quint64 total) {
            const QString name = QFileInfo(path).fileName();
            // Bytes are told while a file is read; what follows has no unit.
            at_.progress.setProgress(step == DrawingLoader::tr("Reading")
                                         ? tr("%1 %2: %3 of %4").arg(step, name, sizeText(done), sizeText(total))
                                         : tr("%1: %2").arg(name, step),
                                     done, total);
          });
  connect(&loader_, &DrawingLoader::loaded, this, &Document::take);
  connect(&loader_, &DrawingLoader::failed, this, &Document::handleFailure);
  connect(&loader_, &DrawingLoader::cancelled, this, [this] {
    at_.progress.end();
    at_.console.print(tr("Opening %1 was cancelled.").arg(loader_.sources().files.front().path));
    Q_EMIT stateChanged();
  });
}

void Document::connectFiles() {
  connect(&files_, &DrawingFileSet::changed, this, [this](const QString& changed) {
    at_.notice.tell(tr("%1 was changed by another program.").arg(changed), tr("Reload"), tr("Keep"));
  });
  connect(&files_, &DrawingFileSet::vanished, this, [this](const QString& gone) {
    at_.notice.tell(
        (gone == path() ? tr("%1 isn't there any more. The drawing stays open; Save as writes it to a new place.")
                        : tr("%1 isn't there any more. What was read of it stays open."))
            .arg(gone),
        {}, tr("Keep"));
  });
  connect(&files_, &DrawingFileSet::restored, &at_.notice, &NoticeBar::hide);
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
  const QStringList chosen = askDrawings(&at_.window, tr("Open a drawing"), recent_.folder());
  if (!chosen.isEmpty()) open(DrawingSources(chosen), FileOrder::AlignmentFirst);
}

void Document::askReload() {
  if (!isBusy() && isOpen()) open(sources_);
}

void Document::open(const DrawingSources& drawing, FileOrder order) {
  if (session_.isRunning() || work_.isRunning() || drawing.files.isEmpty()) return;
  if (!settleChanges()) return;
  replaced_ = {};
  read(drawing, order);
}

void Document::change(const DrawingSources& drawing, FileOrder order) {
  if (isBusy() || drawing.files.isEmpty() || !settleChanges()) return;
  replaced_ = sources_;
  read(drawing, order);
}

void Document::read(const DrawingSources& drawing, FileOrder order) {
  loader_.start(drawing, order);
  at_.progress.begin(tr("Reading %1").arg(drawing.title()));
  Q_EMIT stateChanged();
}

void Document::cancelReading() { loader_.cancel(); }

void Document::take(const LoadedDrawing& loaded) {
  at_.progress.end();
  Q_EMIT letGo();
  at_.notice.hide();
  session_.open(loaded.drawing);
  sources_ = loaded.sources;
  setDrawingFolder(QFileInfo(sources_.files.front().path).absolutePath());
  files_.hold(sources_.paths(), loaded.stamps);
  Q_EMIT opened(loaded);
  tellOpened();
  recent_.remember(sources_, replaced_);
  Q_EMIT stateChanged();
}

void Document::tellOpened() {
  const QStringList added = sources_.paths().mid(1);
  at_.console.print(added.isEmpty() ? tr("%1 is open.").arg(path())
                                    : tr("%1 is open, with %2.").arg(path(), added.join(QStringLiteral(", "))));
  const auto& diagnostics = session_.drawing()->drawing().diagnostics;
  const auto severe = std::count_if(diagnostics.begin(), diagnostics.end(), [](const civil::Diagnostic& diagnostic) {
    return diagnostic.severity != civil::Severity::Note;
  });
  if (severe > 0)
    at_.console.printError(
        tr("The reader found %n odd thing(s) in it; see Diagnostics.", nullptr, static_cast<int>(severe)));
}

void Document::handleFailure(const LoadFailure& failure) {
  at_.progress.end();
  Q_EMIT stateChanged();
  if (!failure.isUnitMismatch) {
    tellReadError(failure);
    return;
  }
  if (!asksToConvert(failure)) {
    at_.console.print(tr("Opening %1 was cancelled.").arg(failure.sources.title()));
    return;
  }
  DrawingSources converted = failure.sources;
  converted.convertUnits = true;
  read(converted, FileOrder::AsGiven);
}

bool Document::asksToConvert(const LoadFailure& failure) {
  const auto inWords = [](const QString& unit) { return unit.isEmpty() ? tr("no unit, so in meters") : unit; };
  const QString first = QFileInfo(failure.sources.files.front().path).fileName();
  QMessageBox box(
      QMessageBox::Question, tr("The files are in different units"),
      tr("%1 is in %2, %3 in %4.")
          .arg(QFileInfo(failure.path).fileName(), inWords(failure.unit), first, inWords(failure.drawingUnit)),
      QMessageBox::Cancel, &at_.window);
  box.setObjectName(QStringLiteral("convertUnits"));
  box.setInformativeText(
      tr("Lengths of the other files can be converted to the unit of %1, exactly by the definitions of the units. The "
         "files themselves stay as they are.")
          .arg(first));
  QPushButton* const convert = box.addButton(tr("&Convert"), QMessageBox::AcceptRole);
  box.setDefaultButton(convert);
  box.exec();
  return box.clickedButton() == convert;
}

void Document::tellReadError(const LoadFailure& failure) {
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
  const auto target =
      askTarget(&at_.window, {tr("Save the drawing as"), FilePurpose::Drawing, unpackedName(path()), savedForms(),
                              [this](const QString& chosen) { return !isOthersFile(chosen); }});
  return target && saveTo(*target);
}

bool Document::saveAs(const QString& name) {
  if (!isOpen() || isBusy()) return false;
  const QString target = QFileInfo(name).suffix().isEmpty() && !QFileInfo::exists(name)
                             ? withEnding(name, savedForms().front(), {})
                             : name;
  if (QFileInfo(target).isFile() && isOthersFile(target) && !asksToReplace(&at_.window, target)) return false;
  return saveTo(target);
}

QList<FileForm> Document::savedForms() {
  return {{tr("LandXML drawings"), {QStringLiteral("xml"), QStringLiteral("landxml")}}, {tr("All files"), {}}};
}

bool Document::isOthersFile(const QString& target) const {
  return !isOwnFile(target) && session_.host().whyNoOutput(encodedPath(target)).empty();
}

bool Document::isOwnFile(const QString& target) const {
  return standin_platform::leadToOneFile(encodedPath(target), encodedPath(path()));
}

bool Document::saveTo(const QString& target) {
  const bool isOwnName = isOwnFile(target);
  if (const QString file = changedByOthers(target); !file.isEmpty() && !asksToUndoOthers(file)) return false;
  if (!isOwnName && !session_.host().whyNoOutput(encodedPath(target)).empty()) {
    tellSaveError(target, tr("It is read itself: as a file of the drawing or as the message file."));
    return false;
  }
  if (!isOwnName && !askForOtherFiles(target)) return false;
  QString problem;
  bool isCancelled = false;
  try {
    write(target);
  } catch (const landxml::Cancelled&) {
    isCancelled = true;
  } catch (const landxml::SaveError& error) {
    // The user knows what was opened by its path, whatever it was read under.
    std::string file = error.file();
    for (std::size_t number = 0; number < files_.size(); ++number)
      if (file == QFile::encodeName(files_.at(number).readablePath()).toStdString())
        file = toUtf8(files_.at(number).path());
    problem = toQt(error.description(file));
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
  Q_EMIT saved();
  if (!isOwnName) Q_EMIT savedElsewhere(target);
  at_.console.print(tr("%1 is saved, %2.").arg(target, sizeText(files_.at(0).size())));
  recent_.remember(sources_);
  Q_EMIT stateChanged();
  return true;
}

QString Document::changedByOthers(const QString& target) const {
  if (isOwnFile(target) && files_.at(0).isReplaced()) return path();
  for (const std::string& added : landxml::changedAddedFiles(session_.drawing()->drawing()))
    for (std::size_t number = 1; number < files_.size(); ++number)
      if (encodedPath(files_.at(number).path()) == added && files_.at(number).isReplaced())
        return files_.at(number).path();
  return {};
}

bool Document::asksToUndoOthers(const QString& file) {
  const bool isFirst = file == path();
  QMessageBox box(QMessageBox::Warning, tr("Somebody else changed the file"),
                  tr("%1 was changed by another program since it was opened.").arg(QFileInfo(file).fileName()),
                  QMessageBox::Cancel, &at_.window);
  box.setObjectName(QStringLiteral("changedByOthers"));
  box.setInformativeText(
      isFirst ? tr("Save as writes the drawing as it is here under another name, and both are kept. Replacing the file "
                   "loses what the other program wrote.")
              : tr("What is new here belongs into that file. Replacing it loses what the other program wrote; Cancel "
                   "leaves the drawing open and unsaved."));
  QPushButton* const elsewhere = isFirst ? box.addButton(tr("Save &as…"), QMessageBox::AcceptRole) : nullptr;
  const QPushButton* const replace = box.addButton(tr("&Replace the file"), QMessageBox::DestructiveRole);
  if (elsewhere != nullptr)
    box.setDefaultButton(elsewhere);
  else
    box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  if (elsewhere != nullptr && box.clickedButton() == elsewhere)
    QMetaObject::invokeMethod(this, "askSaveAs", Qt::QueuedConnection);
  if (box.clickedButton() == replace) return true;
  at_.console.printError(tr("%1 isn't saved: it was changed by another program since it was opened.").arg(file));
  return false;
}

bool Document::askForOtherFiles(const QString& target) {
  const std::vector<std::string> changed = landxml::changedAddedFiles(session_.drawing()->drawing());
  if (changed.empty()) return true;
  QStringList names;
  for (const std::string& file : changed) names << QFile::decodeName(file.c_str());
  QMessageBox box(QMessageBox::Question, tr("Save other files too?"),
                  tr("What is new belongs into other files than %1.").arg(QFileInfo(target).fileName()),
                  QMessageBox::Save | QMessageBox::Cancel, &at_.window);
  box.setObjectName(QStringLiteral("otherFilesQuestion"));
  box.setInformativeText(tr("Saving changes them in their own places:") + QLatin1Char('\n') +
                         names.join(QLatin1Char('\n')));
  box.setDefaultButton(QMessageBox::Save);
  return box.exec() == QMessageBox::Save;
}

void Document::write(const QString& target) {
  const std::string targetPath = encodedPath(target);
  const QString words =
      tr("Saving %1").arg(sources_.files.size() == 1 ? QFileInfo(target).fileName() : sources_.title());
  const LongWork::Run run(work_, words);
  Q_EMIT stateChanged();
  landxml::SaveOptions options;
  options.progress = [&](const landxml::Progress& progress) {
    work_.setProgress(words, progress.bytesDone, progress.bytesTotal);
    return !work_.check();
  };
  options.sourceOf = [&](civil::FileNumber file) {
    return QFile::encodeName(files_.at(file).readablePath()).toStdString();
  };
  std::vector<landxml::SavedFile> written;
  session_.drawing()->save([&](civil::Drawing& drawing) {
    written = landxml::saveProject(drawing, targetPath, options);
    drawing.file = written.front().mark;
    drawing.path = targetPath;
    for (civil::AddedFile& file : drawing.addedFiles)
      for (const landxml::SavedFile& saved : written)
        if (saved.path == file.path) file.mark = saved.mark;
  });
  files_.holdAgain(0, target);
  sources_.files.front().path = target;
  for (std::size_t file = 1; file < files_.size(); ++file)
    for (const landxml::SavedFile& saved : written)
      if (saved.path == QFile::encodeName(files_.at(file).path()).toStdString())
        files_.holdAgain(file, files_.at(file).path());
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
