#include "desktop/shell/report_outcome.h"

#include <QMessageBox>
#include <QUrl>
#include <QUrlQuery>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/panels/console_view.h"
#include "desktop/panels/report_viewer.h"
#include "desktop/shell/leave_wish.h"
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

ReportOutcome::ReportOutcome(QWidget& window, ConsoleView& console, const LeaveWish& leave, std::string codePage)
    : window_(window), console_(console), leave_(leave), codePage_(std::move(codePage)) {
  connect(&console_, &ConsoleView::linkActivated, this, &ReportOutcome::activateLink);
}

void ReportOutcome::tell(const CommandReport& report, bool hasUnsavedSections, const QStringList& changes) {
  const QStringList failed = printFiles(report);
  printEnd(report, changes);
  if (hasUnsavedSections) console_.print(tr("The drawing has new sections that aren't saved yet."));
  if (!leave_.isThere() && !report.missingFolder.isEmpty()) tellMissingFolder(report.missingFolder);
  if (!leave_.isThere() && !failed.isEmpty() && !report.interrupted)
    tellNotWritten(ReportNames::title(report.name), failed, changes);
}

QStringList ReportOutcome::printFiles(const CommandReport& report) {
  QStringList failed;
  for (const runtime::FileEvent& event : report.files) {
    const QString path = toQt(event.path);
    switch (event.fate) {
      case runtime::FileFate::Written:
        console_.printHtml(QStringLiteral("%1 &nbsp;%2 &nbsp; %3 &nbsp;·&nbsp; %4")
                               .arg(path.toHtmlEscaped(), tr("%1 bytes").arg(event.bytes),
                                    link(kOpenLink, path, tr("Open")), link(kFolderLink, path, tr("Show in folder"))));
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

void ReportOutcome::printEnd(const CommandReport& report, const QStringList& changes) {
  const QString title = ReportNames::title(report.name);
  if (report.interrupted)
    console_.print(tr("%1 was cancelled; no unfinished file was left.").arg(title));
  else if (!report.exception.isEmpty())
    console_.printError(tr("%1 ended by an exception: %2").arg(title, report.exception));
  else if (report.files.empty())
    console_.print(tr("%1 ended and wrote nothing.").arg(title));
  for (const QString& change : changes) console_.printError(change);
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

void ReportOutcome::printMissingFolder(const QString& folder) {
  console_.printError(tr("There is no folder %1, and nothing was written.").arg(folder));
}

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
  const QString problem =
      url.path() == QLatin1String(kOpenLink) ? openReport(path, codePage_, &window_) : showInFolder(path);
  if (!problem.isEmpty()) console_.printError(problem);
}

}  // namespace lvx::desktop
