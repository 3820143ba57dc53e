#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "runtime/command_runner.h"
#include "runtime/file_journal.h"
#include "runtime/host_choices.h"
#include "runtime/standin_host.h"

namespace lvx::desktop {

class LongWork;

/// How a command of the module ended.
struct CommandReport {
  QString name;
  /// False: the module has no command of that name, and nothing ran.
  bool found = false;
  /// The user stopped it.
  bool interrupted = false;
  /// What it raised, in its words; empty where it ended by itself.
  QString exception;
  /// What became of files, the last word on each, in the order of their first mention.
  std::vector<runtime::FileEvent> files;
  /// The output's folder, where it isn't there and the command ended over that; else empty.
  QString missingFolder;
};

/// The host behind the windows, with its module and the drawing that is open. Commands run in the windows' own thread and
/// wait in event loops of their own while the user answers; what takes long lets the windows live (see LongWork).
class Session : public QObject {
  Q_OBJECT
 public:
  /// `frontEnd` and `work` outlive the session. Throws std::invalid_argument for choices that can't be: an unknown code
  /// page, a message file that isn't there. A module that can't be loaded leaves a session without commands.
  Session(const runtime::HostChoices& choices, runtime::FrontEnd& frontEnd, LongWork& work);
  ~Session() override;

  /// Why there are no reports; empty where there are.
  [[nodiscard]] const QString& moduleProblem() const { return moduleProblem_; }

  /// Opens a drawing in place of the one that was open; not while a command runs.
  void open(runtime::OpenDrawingRef drawing);
  /// Makes the module let go of what it keeps of the open drawing, which may be edited then; not while a command runs.
  void freeDrawing();
  /// Empty where none is open.
  [[nodiscard]] const runtime::OpenDrawingRef& drawing() const { return host_->openDrawing(); }

  /// What the module works with.
  [[nodiscard]] runtime::StandinHost& host() { return *host_; }

  /// Names of the module's commands.
  [[nodiscard]] QStringList commands() const;
  /// The command that a user means by a name, in any case; empty where there is none.
  [[nodiscard]] QString commandOf(const QString& typed) const;
  /// The running command; empty where none runs.
  [[nodiscard]] const QString& running() const { return running_; }
  [[nodiscard]] bool isRunning() const { return !running_.isEmpty(); }
  /// The folder that the running command has looked for in vain, before it asks its user again; told once.
  [[nodiscard]] QString takeMissingFolder();
  /// Runs a command to its end. Not while one runs.
  CommandReport run(const QString& name);

 Q_SIGNALS:
  void commandStarted(const QString& name);

 private:
  void loadModule();

  LongWork& work_;
  std::filesystem::path moduleFile_;
  std::unique_ptr<runtime::StandinHost> host_;
  std::optional<runtime::LoadedModule> module_;
  std::optional<runtime::CommandRunner> runner_;
  QString moduleProblem_;
  QString running_;
  /// A command ran since the module was loaded.
  bool mayHold_ = false;
};

}  // namespace lvx::desktop
