#include "cli/dialog_command.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/answer.h"
#include "cli/drawing_file.h"
#include "cli/host_setup.h"
#include "cli/pick_dialogs.h"
#include "cli/point_choice.h"
#include "cli/terminal.h"
#include "native/automation_client.h"
#include "native/window_dialog.h"
#include "native/window_interface.h"
#include "platform/utf8.h"
#include "runtime/command_runner.h"
#include "runtime/front_end.h"
#include "runtime/help_topics.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

using host::CString;
using platform::fromUtf8;
using platform::toUtf8;

namespace {

struct NamedCommand {
  std::string_view name;
  const wchar_t* command;
};

/// The reports by the names of the commands that write them without dialogs.
constexpr std::array kReports{NamedCommand{"projection", L"lvx_Report_Que"},
                              NamedCommand{"points", L"lvx_Report_Points"}, NamedCommand{"gls", L"lvx_Report_GLS"}};

CString commandOf(const std::string& name) {
  for (const NamedCommand& report : kReports)
    if (name == report.name) return report.command;
  return fromUtf8(name);
}

/// A person before the system's windows.
class PersonFrontEnd final : public runtime::FrontEnd {
 public:
  explicit PersonFrontEnd(const options::CommonOptions& common)
      : language_(common.host.language),
        helpFolder_(runtime::helpFolder(common.host.language)),
        boxes_(nullptr, L"lvxhost") {}

  void setDrawing(runtime::OpenDrawingRef drawing) { drawing_ = std::move(drawing); }

  [[nodiscard]] host::DialogRunner& dialogs() override { return dialogs_; }
  [[nodiscard]] void* mainWindow() override { return nullptr; }
  void console(const CString& text) override {
    // A bare line feed only parts prompts from what stood before them.
    if (text != L"\n") tellConsole(toUtf8(text));
  }
  [[nodiscard]] std::optional<civil::Handle> pickEntity(const CString& prompt) override {
    const std::vector<PickRow> rows = pickRows(drawing_->drawing(), language_);
    PickObjectDialog dialog(prompt, rows, language_);
    dialogs_.runModal(dialog, nullptr);
    return dialog.picked();
  }
  [[nodiscard]] std::optional<std::vector<civil::Handle>> selectEntities(const CString& addPrompt,
                                                                         const CString& /*removePrompt*/,
                                                                         const CString& /*classTag*/) override {
    PickPointsDialog dialog(
        addPrompt, [this](const std::string& text) { return handlesOf(text); }, language_);
    dialogs_.runModal(dialog, nullptr);
    return dialog.picked();
  }
  host::BoxAnswer messageBox(const CString& text, host::BoxButtons buttons, host::BoxIcon icon) override {
    return boxes_.messageBox(text, buttons, icon);
  }
  [[nodiscard]] std::optional<CString> saveFileBox(const CString& filter, std::uint32_t flags) override {
    return boxes_.saveFileBox(filter, flags);
  }
  void showHelp(const CString& topic) override {
    const std::filesystem::path page = runtime::helpPage(topic, helpFolder_);
    say("help: " + (page.empty() ? toUtf8(topic) : page.string()), Severity::Note);
    boxes_.showHelp(topic);
  }
  [[nodiscard]] std::uint32_t buttonFaceColour() override { return boxes_.buttonFaceColour(); }

 private:
  [[nodiscard]] std::vector<civil::Handle> handlesOf(const std::string& text) const {
    options::PointChoice choice;
    choice.numbers = text;
    const WantedPoints wanted = parsePoints(choice);
    if (!wanted.numbers.empty()) return handlesOfPoints(drawing_->index(), wanted.numbers);
    std::vector<civil::Handle> handles;
    for (const auto& point : drawing_->drawing().points) handles.push_back(point.handle);
    return handles;
  }

  std::string language_;
  std::filesystem::path helpFolder_;
  runtime::OpenDrawingRef drawing_;
  native::WindowDialogs dialogs_;
  native::WindowInterface boxes_;
};

/// Each file as its fate is known; what counts is how each ended.
class FileTeller {
 public:
  explicit FileTeller(bool isQuiet) : isQuiet_(isQuiet) {}
  void take(const runtime::FileEvent& event) {
    std::erase(failed_, event.path);
    switch (event.fate) {
      case runtime::FileFate::Written:
        printFile(event.path, event.bytes, isQuiet_);
        return;
      case runtime::FileFate::Failed:
        failed_.push_back(event.path);
        say("can't write '" + event.path + "': " + event.reason, Severity::Error, event.path);
        return;
      default:
        answer().removeWritten(event.path);
    }
  }
  [[nodiscard]] bool allWritten() const { return failed_.empty(); }

 private:
  bool isQuiet_;
  std::vector<std::string> failed_;
};

}  // namespace

ExitCode runDialog(const options::Options& options) {
  if (!native::hasWindows())
    throw Failure(kUsage,
                  "dialog: this system has no windows that the module's dialogs could be; lvxhost-desktop shows them");
  PersonFrontEnd person(options.common);
  runtime::InputFiles inputs;
  addStandardInput(inputs, options);
  const auto host = makeHost(person, options.common, inputs);
  civil::Drawing drawing = loadDrawing(options);
  if (!options.common.quiet) tellDiagnostics(drawing);
  FileTeller files(options.common.quiet);
  host->journal().listener = [&files](const runtime::FileEvent& event) { files.take(event); };
  host->open(std::move(drawing));
  person.setDrawing(host->openDrawing());
  try {
    const auto module = host->loadModule(runtime::chosenModule(options.common.host));
    const runtime::CommandOutcome outcome = runtime::CommandRunner(*host, false).run(commandOf(options.dialog.command));
    if (!outcome.found)
      throw Failure(kUsage, "dialog: the module has no command '" + options.dialog.command +
                                "'; its reports are projection, points and gls");
    if (const std::string words = runtime::wordsOf(outcome); !words.empty()) {
      say("the command ended by an exception: " + words);
      return kException;
    }
  } catch (const runtime::ModuleError& error) {
    throw Failure(kNotWritten, error.what());
  }
  if (standin_platform::isInterrupted()) throw runtime::Interrupted();
  return files.allWritten() ? kDone : kNotWritten;
}

}  // namespace lvx::cli
