#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "advice/dialog_choices.h"

namespace lvx::host {
class DialogWindow;
}

namespace lvx::desktop {

class ConsoleView;
class NoticeBar;
class Session;
struct CommandReport;

/// What a command that ended leaves to be said.
struct ReportAdvice {
  /// What its user can change where an exception ended it, a sentence each.
  QStringList changes;
  /// Files that were asked for and that nobody wrote or tried to: the command ended before them.
  QStringList missing;
};

/// Tells the user what a report doesn't say by itself (lvx::advice), by what stands in its dialog when that is accepted:
/// in the console, the first of it in the notice bar, where nothing else is asked.
///
///     adviser.begin();                                   // a command starts
///     adviser.selectPoints(handles);                     // while it runs
///     adviser.accept(name, window);
///     outcome.tell(report, isChanged, adviser.end(report));
class ReportAdviser : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  ReportAdviser(Session& session, ConsoleView& console, NoticeBar& notice);
  ~ReportAdviser() override;

  /// What was told of the command before goes from the notice bar.
  void begin();
  /// The running command's user picked these.
  void selectPoints(const std::vector<civil::Handle>& handles) { picked_ = handles; }
  /// The running command's user accepts a dialog. Of one that comes back it tells only what it hasn't told.
  void accept(const QString& dialog, const host::DialogWindow& window);
  /// The alignment whose profiles a pressed button asks for, as the dialog stands; 0: it asks for none.
  [[nodiscard]] civil::Handle profilesWanted(const QString& dialog, int button, const host::DialogWindow& window) const;
  /// The command ended.
  ReportAdvice end(const CommandReport& report);

 private:
  void tell(const QString& sentence);
  [[nodiscard]] QStringList whatToChange(const CommandReport& report) const;
  [[nodiscard]] QStringList missingFiles(const CommandReport& report) const;
  void showInBar(const QStringList& sentences);

  Session& session_;
  ConsoleView& console_;
  NoticeBar& notice_;
  std::vector<civil::Handle> picked_;
  std::optional<advice::DialogChoices> choices_;
  QStringList told_;
  QString inBar_;
};

}  // namespace lvx::desktop
