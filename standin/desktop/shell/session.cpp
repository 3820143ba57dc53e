#include "desktop/shell/session.h"

#include <algorithm>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/shell/long_work.h"

namespace lvx::desktop {

namespace {

runtime::HostOptions optionsFor(const runtime::HostChoices& choices, LongWork& work) {
  runtime::HostOptions options = runtime::hostOptions(choices);
  options.isInterrupted = [&work] { return work.check(); };
  options.startProgress = [&work](const std::string& step) { return work.startProgress(step); };
  return options;
}

/// The last word on each file that the journal tells of since `first`.
std::vector<runtime::FileEvent> outcomes(const std::vector<runtime::FileEvent>& events, std::size_t first) {
  std::vector<runtime::FileEvent> last;
  for (std::size_t i = first; i < events.size(); ++i) {
    const auto same = std::find_if(last.begin(), last.end(),
                                   [&](const runtime::FileEvent& event) { return event.path == events[i].path; });
    if (same == last.end())
      last.push_back(events[i]);
    else
      *same = events[i];
  }
  return last;
}

}  // namespace

Session::Session(const runtime::HostChoices& choices, runtime::FrontEnd& frontEnd, LongWork& work)
    : work_(work),
      moduleFile_(runtime::chosenModule(choices)),
      host_(std::make_unique<runtime::StandinHost>(frontEnd, optionsFor(choices, work))) {
  loadModule();
  runner_.emplace(*host_, false);
}

Session::~Session() = default;

void Session::loadModule() {
  moduleProblem_.clear();
  try {
    module_.emplace(host_->loadModule(moduleFile_));
  } catch (const runtime::ModuleError& error) {
    moduleProblem_ = toQt(std::string(error.what()));
  }
}

void Session::open(runtime::OpenDrawingRef drawing) {
  // The module keeps references of a drawing for as long as it is loaded, and with them the whole drawing.
  module_.reset();
  host_->open(std::move(drawing));
  loadModule();
}

void Session::freeDrawing() {
  if (!std::exchange(mayHold_, false)) return;
  module_.reset();
  loadModule();
}

QStringList Session::commands() const {
  QStringList names;
  for (const runtime::RegisteredCommand& command : host_->commands().commands()) names << toQt(command.localName);
  return names;
}

QString Session::commandOf(const QString& typed) const {
  for (const QString& name : commands())
    if (name.compare(typed, Qt::CaseInsensitive) == 0) return name;
  return {};
}

QString Session::takeMissingFolder() {
  QString folder = toQt(host_->journal().missing());
  host_->journal().forgetMissing();
  return folder;
}

CommandReport Session::run(const QString& name) {
  CommandReport report;
  report.name = name;
  const std::size_t before = host_->journal().events().size();
  host_->journal().forgetMissing();
  running_ = name;
  mayHold_ = true;
  Q_EMIT commandStarted(name);
  {
    const LongWork::Run run(work_, name);
    const runtime::CommandOutcome outcome = runner_->run(toWide(name));
    report.found = outcome.found;
    report.interrupted = outcome.raisedByHost != nullptr;  // windows raise nothing else
    if (outcome.exception) {
      const std::string& words = outcome.exception->words;
      report.exception = words.empty() ? tr("something that has no words") : toQt(words);
    }
  }
  report.files = outcomes(host_->journal().events(), before);
  const QString missing = takeMissingFolder();
  if (report.files.empty() && !report.interrupted && report.exception.isEmpty()) report.missingFolder = missing;
  running_.clear();
  return report;
}

}  // namespace lvx::desktop
