#include "desktop/shell/report_outcome.h"

#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>
#include <QUrlQuery>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/panels/console_view.h"
#include "desktop/panels/notice_bar.h"
#include "desktop/panels/report_viewer.h"
#include "desktop/shell/leave_wish.h"
#include "desktop/shell/report_adviser.h"
#include "desktop/shell/report_names.h"
#include "desktop/shell/session.h"

namespace lvx::desktop {

namespace {

constexpr const char* kBoxName = "notWritten";
constexpr const char* kOpenLink = "open";
constexpr const char* kFolderLink = "folder";
constexpr const char* kFileOfLink = "file";

QString link(const char* what, const QString& path, const QString& words) {
  QUrl url;
  url.setScheme(QStringLiteral("lvx"));
  url.setPath(QString::fromLatin1(what));
  QUrlQuery query;
  query.addQueryItem(QLatin1String(kFileOfLink), QString::fromLatin1(path.toUtf8().toPercentEncoding()));
  url.setQuery(query);
  return QStringLiteral("<a href=\"%1\">%2</a>").arg(QString::fromLatin1(url.toEncoded()).toHtmlEscaped(), words);
}

}  // namespace

ReportOutcome::ReportOutcome(QWidget& window, ConsoleView& console, NoticeBar& bar, const LeaveWish& leave,
                             std::string codePage)
    : window_(window), console_(console), bar_(bar), leave_(leave), codePage_(std::move(codePage)) {
  connect(&console_, &ConsoleView::linkActivated, this, &ReportOutcome::activateLink);
  connect(&bar_, &NoticeBar::openWanted, this, &ReportOutcome::open);
  connect(&bar_, &NoticeBar::folderWanted, this, &ReportOutcome::openFolder);
}

void ReportOutcome::begin() { bar_.hide(); }

void ReportOutcome::tell(const CommandReport& report, bool hasUnsavedSections, const ReportAdvice& advice) {
  const QStringList failed = printFiles(report);
  printEnd(report, advice);
  showInBar(report, failed, advice.missing);
  if (hasUnsavedSections) console_.print(tr("The drawing has new sections that aren't saved yet."));
  if (!leave_.isThere() && !report.missingFolder.isEmpty()) tellMissingFolder(report.missingFolder);
  if (!leave_.isThere() && !failed.isEmpty() && !report.interrupted)
    tellNotWritten(ReportNames::title(report.name), failed + advice.missing, advice.changes);
}

void ReportOutcome::tellExported(const QString& path) {
  printWritten(path, static_cast<quint64>(QFileInfo(path).size()));
  bar_.tellOfFiles(NoticeBar::Sign::Done, tr("%1 is written.").arg(path), {path});
}

void ReportOutcome::tellSaved(const QString& path) { bar_.tellOfSaved(tr("%1 is saved.").arg(path), path); }

void ReportOutcome::printWritten(const QString& path, quint64 bytes) {
  console_.printHtml(QStringLiteral("%1 &nbsp;%2 &nbsp; %3 &nbsp;·&nbsp; %4")
                         .arg(path.toHtmlEscaped(), tr("%1 bytes").arg(bytes), link(kOpenLink, path, tr("Open")),
                              link(kFolderLink, path, tr("Show in folder"))));
}

QStringList ReportOutcome::printFiles(const CommandReport& report) {
  QStringList failed;
  for (const runtime::FileEvent& event : report.files) {
    const QString path = toQt(event.path);
    switch (event.fate) {
      case runtime::FileFate::Written:
        printWritten(path, event.bytes);
        break;
      case runtime::FileFate::Failed:
        failed << tr("%1: %2").arg(path, toQt(event.reason));
        console_.printError(tr("%1 was not written: %2").arg(path, toQt(event.reason)));
        break;
      case runtime::FileFate::Removed:
        console_.print(tr("%1 was removed.").arg(path));
        break;
    }
  }
  return failed;
}

void ReportOutcome::showInBar(const CommandReport& report, const QStringList& failed, const QStringList& missing) {
  const QString title = ReportNames::title(report.name);
  QStringList written;
  QStringList names;
  for (const runtime::FileEvent& event : report.files) {
    if (event.fate != runtime::FileFate::Written) continue;
    written << toQt(event.path);
    names << QFileInfo(written.back()).fileName();
  }
  QStringList sentences;
  if (const QString end = endOf(report); !end.isEmpty()) sentences << end;
  if (!failed.isEmpty()) sentences << tr("Not written: %1").arg(failed.join(QStringLiteral("; ")));
  if (!missing.isEmpty()) sentences << endedBefore(missing);
  if (!report.missingFolder.isEmpty()) sentences << isMissing(report.missingFolder);
  const bool isDone = sentences.isEmpty();
  if (isDone && written.isEmpty()) return;
  if (!written.isEmpty()) sentences << tr("%1 wrote %2.").arg(title, names.join(QStringLiteral(", ")));
  bar_.tellOfFiles(isDone ? NoticeBar::Sign::Done : NoticeBar::Sign::Warning, sentences.join(QLatin1Char(' ')),
                   written);
}

QString ReportOutcome::endOf(const CommandReport& report) {
  const QString title = ReportNames::title(report.name);
  if (report.interrupted) return tr("%1 was cancelled; no unfinished file was left.").arg(title);
  if (!report.exception.isEmpty()) return tr("%1 ended by an exception: %2").arg(title, report.exception);
  return {};
}

QString ReportOutcome::endedBefore(const QStringList& missing) {
  return tr("The command ended before %1.").arg(missing.join(QStringLiteral(", ")));
}

QString ReportOutcome::isMissing(const QString& folder) {
  return tr("There is no folder %1, and nothing was written.").arg(folder);
}

void ReportOutcome::printEnd(const CommandReport& report, const ReportAdvice& advice) {
  const QString end = endOf(report);
  if (report.interrupted)
    console_.print(end);
  else if (!end.isEmpty())
    console_.printError(end);
  else if (report.files.empty())
    console_.print(tr("%1 ended and wrote nothing.").arg(ReportNames::title(report.name)));
  if (!advice.missing.isEmpty()) console_.printError(endedBefore(advice.missing));
  for (const QString& change : advice.changes) console_.printError(change);
}

void ReportOutcome::tellNotWritten(const QString& title, const QStringList& failed, const QStringList& changes) {
  QMessageBox box(QMessageBox::Warning, tr("Not everything was written"),
                  tr("%1 could not write %n file(s).", nullptr, static_cast<int>(failed.size())).arg(title),
                  QMessageBox::Ok, &window_);
  box.setObjectName(QLatin1String(kBoxName));
  box.setInformativeText(failed.join(QLatin1Char('\n')) + QStringLiteral("\n\n") +
                         tr("Run the report again and choose a folder that you may write to and that has room. What "
                            "stood under these names is as it was.") +
                         (changes.isEmpty() ? QString() : QStringLiteral("\n\n") + changes.join(QLatin1Char('\n'))));
  box.exec();
}

void ReportOutcome::printMissingFolder(const QString& folder) { console_.printError(isMissing(folder)); }

void ReportOutcome::tellMissingFolder(const QString& folder) {
  // The command says nothing of it.
  printMissingFolder(folder);
  QMessageBox box(QMessageBox::Warning, tr("Nothing was written"), tr("There is no folder %1.").arg(folder),
                  QMessageBox::Ok, &window_);
  box.setObjectName(QLatin1String(kBoxName));
  box.setInformativeText(tr("Make it, or choose another place for the output file."));
  box.exec();
}

void ReportOutcome::activateLink(const QUrl& url) {
  const QString path = QUrl::fromPercentEncoding(
      QUrlQuery(url).queryItemValue(QLatin1String(kFileOfLink), QUrl::FullyDecoded).toLatin1());
  if (url.path() == QLatin1String(kOpenLink))
    open(path);
  else
    openFolder(path);
}

void ReportOutcome::open(const QString& path) {
  if (const QString problem = openReport(path, codePage_, &window_); !problem.isEmpty()) console_.printError(problem);
}

void ReportOutcome::openFolder(const QString& path) {
  if (const QString problem = showInFolder(path); !problem.isEmpty()) console_.printError(problem);
}

}  // namespace lvx::desktop
