#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <string>

class QUrl;
class QWidget;

namespace lvx::desktop {

class ConsoleView;
class LeaveWish;
class NoticeBar;
struct CommandReport;
struct ReportAdvice;

/// Tells the user how a report ended: line by line in the console, with links that open what was written; in a bar over
/// the plan, which is seen where the console isn't; and in a box where something that was asked for isn't there. Tells of
/// exported charts in the same way.
class ReportOutcome : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it; boxes stand over `window`. `codePage`: of text reports, as runtime::HostChoices has it.
  ReportOutcome(QWidget& window, ConsoleView& console, NoticeBar& bar, const LeaveWish& leave, std::string codePage);

  /// A command begins: what the bar tells of the one before goes.
  void begin();
  /// Returns once the user has answered the box, if there is one. No box comes while the user wants to leave.
  void tell(const CommandReport& report, bool hasUnsavedSections, const ReportAdvice& advice);
  /// A file was written as the user asked.
  void tellExported(const QString& path);
  /// The open drawing was saved, to another place than its own.
  void tellSaved(const QString& path);
  /// The running command found no such folder and is about to ask its user again.
  void printMissingFolder(const QString& folder);

 private:
  void printWritten(const QString& path, quint64 bytes);
  /// Gives what couldn't be written, each with its reason.
  QStringList printFiles(const CommandReport& report);
  /// How a command ended that didn't end as its user meant; else empty.
  [[nodiscard]] static QString endOf(const CommandReport& report);
  [[nodiscard]] static QString endedBefore(const QStringList& missing);
  [[nodiscard]] static QString isMissing(const QString& folder);
  void printEnd(const CommandReport& report, const ReportAdvice& advice);
  void showInBar(const CommandReport& report, const QStringList& failed, const QStringList& missing);
  void tellNotWritten(const QString& title, const QStringList& failed, const QStringList& changes);
  void tellMissingFolder(const QString& folder);
  void open(const QString& path);
  void openFolder(const QString& path);
  void activateLink(const QUrl& url);

  QWidget& window_;
  ConsoleView& console_;
  NoticeBar& bar_;
  const LeaveWish& leave_;
  std::string codePage_;
};

}  // namespace lvx::desktop
