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
struct CommandReport;

/// Tells the user how a report ended: line by line in the console, with links that open what was written, and in a box
/// where something that was asked for isn't there.
class ReportOutcome : public QObject {
  Q_OBJECT
 public:
  /// All three outlive it; boxes stand over `window`. `codePage`: of text reports, as runtime::HostChoices has it.
  ReportOutcome(QWidget& window, ConsoleView& console, const LeaveWish& leave, std::string codePage);

  /// Returns once the user has answered the box, if there is one. No box comes while the user wants to leave. `changes`:
  /// what the user can change where an exception ended the command.
  void tell(const CommandReport& report, bool hasUnsavedSections, const QStringList& changes = {});
  /// The running command found no such folder and is about to ask its user again.
  void printMissingFolder(const QString& folder);

 private:
  /// Gives what couldn't be written, each with its reason.
  QStringList printFiles(const CommandReport& report);
  void printEnd(const CommandReport& report, const QStringList& changes);
  void tellNotWritten(const QString& title, const QStringList& failed, const QStringList& changes);
  void tellMissingFolder(const QString& folder);
  void activateLink(const QUrl& url);

  QWidget& window_;
  ConsoleView& console_;
  const LeaveWish& leave_;
  std::string codePage_;
};

}  // namespace lvx::desktop
