#include "desktop/shell/report_adviser.h"

#include <algorithm>

#include "advice/exception_advice.h"
#include "desktop/common/qt_text.h"
#include "desktop/panels/console_view.h"
#include "desktop/panels/notice_bar.h"
#include "desktop/shell/session.h"
#include "host/dialog_controls.h"

namespace lvx::desktop {

namespace {

/// Diagnostics of a report's objects that the console shows; all stand in their panel.
constexpr std::size_t kMostDiagnostics = 10;

/// Advice as a sentence of its own.
QString asSentence(const std::string& advice) {
  QString sentence = toQt(advice) + QLatin1Char('.');
  sentence[0] = sentence[0].toUpper();
  return sentence;
}

}  // namespace

ReportAdviser::ReportAdviser(Session& session, ConsoleView& console, NoticeBar& notice)
    : session_(session), console_(console), notice_(notice) {}

ReportAdviser::~ReportAdviser() = default;

void ReportAdviser::begin() {
  picked_.clear();
  choices_.reset();
  told_.clear();
  if (!inBar_.isEmpty() && notice_.text() == inBar_) notice_.hide();
  inBar_.clear();
}

void ReportAdviser::accept(const QString& dialog, const host::DialogWindow& window) {
  if (!session_.drawing()) return;
  const civil::Drawing& drawing = session_.drawing()->drawing();
  choices_ = advice::choicesIn(toUtf8(dialog), window, drawing, session_.drawing()->index(), picked_);
  if (!choices_) return;

  const advice::SortedDiagnostics diagnostics = advice::diagnosticsOf(drawing, choices_->objects);
  const std::size_t shown = std::min(diagnostics.ofReport.size(), kMostDiagnostics);
  for (std::size_t i = 0; i < shown; ++i) tell(toQt(diagnostics.ofReport[i]->text));
  if (diagnostics.ofReport.size() > shown)
    tell(tr("%n more odd thing(s) in what the report is of; see Diagnostics.", nullptr,
            static_cast<int>(diagnostics.ofReport.size() - shown)));

  QStringList warnings;
  if (const std::string reason = advice::whyOutOfReach(choices_->objects); !reason.empty())
    warnings << asSentence(reason);
  for (const std::string& warning : advice::warnings(drawing, choices_->objects, choices_->stem, choices_->forms,
                                                     session_.host().platform(), advice::HintsFor::Desktop))
    warnings << asSentence(warning);
  for (const QString& warning : warnings) tell(tr("Warning: %1").arg(warning));
  showInBar(warnings);
}

civil::Handle ReportAdviser::profilesWanted(const QString& dialog, int button, const host::DialogWindow& window) const {
  if (!session_.drawing() || dialog != QLatin1String(host::kGlsDialog) || button != host::kIdPickProfile) return 0;
  const auto choices =
      advice::choicesIn(toUtf8(dialog), window, session_.drawing()->drawing(), session_.drawing()->index(), picked_);
  return choices && choices->objects.alignment != nullptr ? choices->objects.alignment->handle : 0;
}

ReportAdvice ReportAdviser::end(const CommandReport& report) {
  ReportAdvice advice{whatToChange(report), missingFiles(report)};
  choices_.reset();
  if (!advice.changes.isEmpty()) showInBar(advice.changes);
  return advice;
}

QStringList ReportAdviser::whatToChange(const CommandReport& report) const {
  QStringList changes;
  if (report.exception.isEmpty() || report.interrupted) return changes;
  if (choices_)
    for (const std::string& sentence : advice::whatToChange(choices_->objects, advice::messagesOf(session_.host())))
      changes << asSentence(sentence);
  for (const runtime::FileEvent& event : report.files)
    if (event.fate == runtime::FileFate::Failed && toQt(event.path).endsWith(QLatin1String(".xls")))
      changes << tr(
          "The command ends where its workbook can't be saved, so that a page behind it is missing too. "
          "Choose a place that can be written, or leave the workbook out.");
  if (changes.isEmpty())
    changes << tr(
        "The report could not go on with these objects. Diagnostics tells what is odd about them; with others it may "
        "run.");
  return changes;
}

QStringList ReportAdviser::missingFiles(const CommandReport& report) const {
  QStringList missing;
  const bool hasFailed = std::any_of(report.files.begin(), report.files.end(), [](const runtime::FileEvent& event) {
    return event.fate == runtime::FileFate::Failed;
  });
  if (!choices_ || report.interrupted || (report.exception.isEmpty() && !hasFailed)) return missing;
  const auto look = [&](bool isWanted, const char* ending) {
    const bool isTold = std::any_of(report.files.begin(), report.files.end(), [&](const runtime::FileEvent& event) {
      return event.fate != runtime::FileFate::Removed && toQt(event.path).endsWith(QLatin1String(ending));
    });
    if (isWanted && !isTold) missing << toQt(choices_->stem) + QLatin1String(ending);
  };
  look(choices_->forms.text, ".txt");
  look(choices_->forms.workbook, ".xls");
  look(choices_->forms.page, ".html");
  return missing;
}

void ReportAdviser::tell(const QString& sentence) {
  if (told_.contains(sentence)) return;
  told_ << sentence;
  console_.printError(sentence);
}

void ReportAdviser::showInBar(const QStringList& sentences) {
  const bool isAnothers = notice_.isVisible() && notice_.text() != inBar_;
  if (sentences.isEmpty() || isAnothers) return;
  inBar_ = sentences.front();
  if (sentences.size() > 1)
    inBar_ += QLatin1Char(' ') + tr("(%n more in the console)", nullptr, static_cast<int>(sentences.size() - 1));
  notice_.tell(inBar_, {}, tr("Close"));
}

}  // namespace lvx::desktop
