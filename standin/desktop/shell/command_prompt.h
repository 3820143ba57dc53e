#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <vector>

namespace lvx::desktop {

class ConsoleView;
class DesktopFrontEnd;
class Document;
class PlanView;
class Session;

/// The line in which commands are typed: the module's by their names, the window's own by words that are added here, both
/// in any case. While a command asks for a pick its prompt stands there, Enter ends a selection and Escape gives up.
///
///     CommandPrompt prompt(console, plan, session, document, frontEnd);
///     prompt.add({QStringLiteral("ZOOM"), false, [&](const QString&) { plan.zoomToAll(); return true; }});
///     connect(&prompt, &CommandPrompt::reportEntered, ...);
class CommandPrompt : public QObject {
  Q_OBJECT
 public:
  /// One of the window's own commands.
  struct OwnCommand {
    QString word;  ///< in capitals
    bool needsDrawing = false;
    /// Runs it; `rest` is what was typed behind the word. False where that makes no sense, and nothing ran.
    std::function<bool(const QString& rest)> run;
  };

  /// All that is given outlives it.
  CommandPrompt(ConsoleView& console, PlanView& plan, const Session& session, const Document& document,
                const DesktopFrontEnd& frontEnd);

  void add(OwnCommand command);

 Q_SIGNALS:
  /// A command of the module's, by its name.
  void reportEntered(const QString& name);

 private:
  void connectPicks(PlanView& plan);
  void enter(const QString& text);
  void tellBusy();
  /// False where it is none.
  bool runOwn(const QString& text);
  /// Module's and own.
  [[nodiscard]] QStringList known() const;

  ConsoleView& console_;
  const Session& session_;
  const Document& document_;
  const DesktopFrontEnd& frontEnd_;
  std::vector<OwnCommand> own_;
};

}  // namespace lvx::desktop
