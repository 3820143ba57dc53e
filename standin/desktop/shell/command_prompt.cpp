#include "desktop/shell/command_prompt.h"

#include <QApplication>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "desktop/panels/console_view.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/desktop_front_end.h"
#include "desktop/shell/document.h"
#include "desktop/shell/report_names.h"
#include "desktop/shell/session.h"

namespace lvx::desktop {

CommandPrompt::CommandPrompt(ConsoleView& console, PlanView& plan, const Session& session, const Document& document,
                             const DesktopFrontEnd& frontEnd)
    : console_(console), session_(session), document_(document), frontEnd_(frontEnd) {
  connect(&console_, &ConsoleView::entered, this, &CommandPrompt::enter);
  connectPicks(plan);
  console_.setCommands(known());
}

void CommandPrompt::connectPicks(PlanView& plan) {
  connect(&plan, &PlanView::promptChanged, this, [this](const QString& prompt) {
    if (!prompt.isEmpty()) console_.print(prompt);
    console_.setPrompt(prompt);
  });
  connect(&console_, &ConsoleView::escaped, this, [&plan] {
    if (plan.isInteracting()) plan.cancelInteraction();
  });
  connect(&console_, &ConsoleView::enteredNothing, this, [&plan] {
    if (!plan.isInteracting()) return;
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(&plan, &enter);
  });
}

void CommandPrompt::add(OwnCommand command) {
  own_.push_back(std::move(command));
  console_.setCommands(known());
}

QStringList CommandPrompt::known() const {
  QStringList words = session_.commands();
  for (const OwnCommand& command : own_) words << command.word;
  return words;
}

void CommandPrompt::enter(const QString& text) {
  const QString report = session_.commandOf(text);
  console_.print(QStringLiteral("> ") + (report.isEmpty() ? text : report));
  if (document_.isBusy() || frontEnd_.isPicking())
    tellBusy();
  else if (!report.isEmpty())
    Q_EMIT reportEntered(report);
  else if (!runOwn(text))
    console_.printError(tr("There is no command '%1'. There is %2.").arg(text, known().join(QStringLiteral(", "))));
}

void CommandPrompt::tellBusy() {
  console_.print(frontEnd_.isPicking() && session_.isRunning()
                     ? tr("%1 waits for a pick in the drawing or in the tree; Escape ends it.")
                           .arg(ReportNames::title(session_.running()))
                     : tr("Something else is running; wait for its end or press Escape."));
}

bool CommandPrompt::runOwn(const QString& text) {
  const QString word = text.section(QLatin1Char(' '), 0, 0).toUpper();
  const QString rest = text.section(QLatin1Char(' '), 1).trimmed();
  const auto own =
      std::find_if(own_.begin(), own_.end(), [&](const OwnCommand& command) { return command.word == word; });
  if (own == own_.end()) return false;
  if (own->needsDrawing && !document_.isOpen()) {
    console_.printError(tr("No drawing is open. OPEN opens one."));
    return true;
  }
  return own->run(rest);
}

}  // namespace lvx::desktop
