#include "cli/report_run.h"

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "advice/exception_advice.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/host_setup.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "host/dialog_controls.h"
#include "platform/utf8.h"
#include "runtime/command_runner.h"
#include "runtime/module_loader.h"
#include "runtime/standin_host.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/folder_mark.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

using platform::fromUtf8;

namespace {

struct Form {
  const char* name;
  int checkBox;
};
constexpr std::array<Form, 3> kForms{
    {{"txt", host::kIdCheckAscii}, {"xls", host::kIdCheckExcel}, {"html", host::kIdCheckHtml}}};

std::vector<DialogStep> closingSteps(const options::CommonOptions& common, const std::string& stem) {
  using Kind = DialogStep::Kind;
  std::vector<DialogStep> steps{{Kind::Type, host::kIdOutputStem, 0, fromUtf8(stem)}};
  for (const Form& form : kForms)
    steps.push_back({common.writes(form.name) ? Kind::Tick : Kind::Untick, form.checkBox, 0, {}});
  steps.push_back({Kind::Click, host::kIdOk, 0, {}});
  return steps;
}

struct Expected {
  std::string path;
  bool stood = false;  ///< something stood there before the command
};

/// What the command is to write, in its order.
std::vector<Expected> expectedFiles(runtime::StandinHost& host, const options::CommonOptions& common,
                                    const std::string& stem) {
  std::vector<Expected> expected;
  for (const Form& form : kForms) {
    if (!common.writes(form.name)) continue;
    std::string path = stem + "." + form.name;
    const bool stood = host.platform().exists(fromUtf8(path));
    expected.push_back({std::move(path), stood});
  }
  return expected;
}

/// True for a file that is made anew in its folder, and no device or pipe, nor a link to another place.
bool isMadeInFolder(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_type type = std::filesystem::symlink_status(path, error).type();
  return type == std::filesystem::file_type::not_found || type == std::filesystem::file_type::regular;
}

/// The commands themselves say nothing where the folder is missing, and a failure in the middle is worth less than one
/// before the begin: so the user is told of outputs that can't be before the command starts.
void requirePlaces(runtime::StandinHost& host, const std::string& stem, const std::vector<Expected>& expected) {
  const host::CString wide = fromUtf8(stem);
  const std::size_t mark = host.platform().lastFolderMark(wide);
  // A root keeps its mark: without it, the name of a drive is no folder.
  const bool isRoot = mark == 0 || wide[mark - 1] == L':';
  const std::string folder = platform::toUtf8(wide.substr(0, isRoot ? mark + 1 : mark));
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error))
    throw Failure(kNotWritten, "nothing was written: " + (std::filesystem::exists(folder, error)
                                                              ? "'" + folder + "' is no folder"
                                                              : "there is no folder '" + folder + "'"));
  for (const Expected& file : expected) {
    const std::error_code forbidden = standin_platform::whyNoNameOfFile(file.path);
    if (const std::string reason = forbidden ? forbidden.message() : host.whyNoOutput(file.path); !reason.empty())
      throw Failure(kNotWritten, "nothing was written: '" + file.path + "' can't be an output: " + reason);
  }
  const auto isMade = [](const Expected& file) { return isMadeInFolder(file.path); };
  if (!std::any_of(expected.begin(), expected.end(), isMade)) return;
  if (const std::error_code reason = standin_platform::whyNoNewFile(folder))
    throw Failure(kNotWritten,
                  "nothing was written: the folder '" + folder + "' takes no new file: " + reason.message());
}

/// What became of one form, on standard output or standard error. A command that didn't end by itself asked about no file.
bool tellOutcome(const runtime::StandinHost& host, const Expected& expected, bool hasEnded, bool quiet,
                 ReportRun& run) {
  const runtime::FileEvent* event = host.journal().last(expected.path);
  if (event != nullptr && event->fate == runtime::FileFate::Written) {
    printFile(expected.path, event->bytes, quiet);
    return true;
  }
  const auto unwritten = [&](const std::string& words) { say(words, Severity::Error, expected.path); };
  if (event != nullptr && event->fate == runtime::FileFate::Failed)
    unwritten("can't write '" + expected.path + "': " + event->reason);
  else if (expected.stood && (event != nullptr || !hasEnded))
    unwritten("'" + expected.path + "' was not written; what stood there still does");
  else if (expected.stood) {
    run.kept.push_back(expected.path);
    unwritten("kept '" + expected.path + "', which exists; --overwrite replaces it");
  } else
    unwritten("'" + expected.path + "' was not written");
  return false;
}

/// The words of the exception that ended the command; empty where it ended by itself.
std::string runModuleCommand(runtime::StandinHost& host, const options::CommonOptions& common, const wchar_t* name) {
  try {
    const auto module = host.loadModule(runtime::chosenModule(common.host));
    const runtime::CommandOutcome outcome = runtime::CommandRunner(host, false).run(name);
    if (!outcome.found) return "the module registered no command '" + platform::toUtf8(name) + "'";
    return runtime::wordsOf(outcome);
  } catch (const runtime::ModuleError& error) {
    throw Failure(kNotWritten, error.what());
  }
}

/// What the user should know of the report's objects before the command runs.
void tellAdvice(runtime::StandinHost& host, const options::CommonOptions& common, const std::string& stem,
                const advice::ReportObjects& objects) {
  const civil::Drawing& drawing = host.openDrawing()->drawing();
  tellDiagnostics(drawing, advice::diagnosticsOf(drawing, objects));
  const advice::Forms forms{common.writes("txt"), common.writes("xls"), common.writes("html")};
  for (const std::string& warning : advice::warnings(drawing, objects, stem, forms, host.platform())) warn(warning);
}

/// Behind the technical text of an exception: what the user can change.
void tellWhatToChange(runtime::StandinHost& host, const advice::ReportObjects& objects, const std::string& stem) {
  for (const std::string& sentence : advice::whatToChange(objects, advice::messagesOf(host))) say(sentence);
  const std::string workbook = stem + ".xls";
  const auto* event = host.journal().last(workbook);
  if (event != nullptr && event->fate == runtime::FileFate::Failed && host.journal().whyNoReport().empty())
    say("the command ends where its workbook can't be saved, so that a page behind it is missing too; make '" +
        workbook + "' a place that can be written, or leave the workbook out by --forms");
}

/// A file counts while it stands.
void noteWritten(ReportRun& run, const runtime::FileEvent& event) {
  std::erase(run.written, event.path);
  if (event.fate == runtime::FileFate::Written) run.written.push_back(event.path);
}

bool nothingHappened(const runtime::StandinHost& host, const CommandLineFrontEnd& frontEnd,
                     const std::vector<Expected>& expected) {
  if (frontEnd.questions() > 0) return false;
  for (const Expected& form : expected)
    if (host.journal().last(form.path) != nullptr) return false;
  return true;
}

}  // namespace

std::string dialogStem(const std::string& given) {
  const std::size_t mark = standin_platform::lastFolderMark(std::string_view(given));
  if (given.empty() || mark == given.size() - 1)
    throw Failure(kUsage, "--out needs a file name without extension, such as 'out/road'" +
                              (given.empty() ? std::string() : ", not just the folder '" + given + "'"));
  return mark == std::string::npos ? "./" + given : given;
}

const civil::SampleLineGroup& groupFor(MadeForReport& made, const civil::AlignmentObject& alignment,
                                       const options::Options& options, const std::string& profile) {
  if (const auto& rules = options.report.lines) return made.addLines(alignment, *rules, profile, options.common.quiet);
  return findGroup(alignment, options.report.group.value());
}

std::vector<DialogStep> alignmentSteps(const civil::Drawing& drawing, const FoundAlignment& found) {
  using Kind = DialogStep::Kind;
  return {{Kind::SelectRow, host::kIdSites, rowOf(siteRows(drawing), found.site), fromUtf8(found.site->name)},
          {Kind::SelectRow, host::kIdAlignments, rowOf(found.site->alignments, found.alignment),
           fromUtf8(found.alignment->name)}};
}

ExitCode runReport(const options::Options& options, const wchar_t* command, ReportRun& run, const ReportPlan& plan) {
  const options::CommonOptions& common = options.common;
  const std::string stem = dialogStem(options.report.stem);
  CommandLineFrontEnd frontEnd(common.overwriteMode(), runtime::helpFolder(common.host.language));
  requireSaveFromInput(options, false);
  runtime::InputFiles inputs;
  addStandardInput(inputs, options);
  const auto host = makeHost(frontEnd, common, inputs);
  if (!run.drawing) run.drawing = std::make_shared<runtime::OpenDrawing>(loadDrawing(options, run.groundSearch));
  host->open(run.drawing);
  host->journal().listener = [&run](const runtime::FileEvent& event) { noteWritten(run, event); };
  MadeForReport made(*host->openDrawing());
  PlannedReport planned;
  try {
    planned = plan(made, closingSteps(common, stem), frontEnd);
  } catch (const Failure&) {
    // What the reader left out may be what was looked for.
    if (!common.quiet) tellDiagnostics(host->openDrawing()->drawing());
    throw;
  }
  if (!common.quiet) tellAdvice(*host, common, stem, planned.objects);
  if (const std::string reason = advice::whyOutOfReach(planned.objects); !reason.empty())
    throw Failure(kNotWritten, "nothing was written: " + reason);
  const std::vector<Expected> expected = expectedFiles(*host, common, stem);
  requirePlaces(*host, stem, expected);
  std::vector<std::string> reports;
  for (const Expected& form : expected) reports.push_back(form.path);
  requireSaveTarget(host->openDrawing()->drawing(), options, reports);

  const std::string endedBy = runModuleCommand(*host, common, command);
  if (endedBy.empty() && !planned.nothingWritten.empty() && nothingHappened(*host, frontEnd, expected)) {
    say(planned.nothingWritten);
    return kNotWritten;
  }
  bool complete = true;
  for (const Expected& form : expected)
    complete = tellOutcome(*host, form, endedBy.empty(), common.quiet, run) && complete;
  if (!endedBy.empty()) {
    say("the command ended by an exception: " + endedBy);
    tellWhatToChange(*host, planned.objects, stem);
    if (options.report.saveTo)
      say("the drawing was not saved to '" + *options.report.saveTo + "', since the command didn't end by itself");
    return kException;
  }
  // A form that was being written then is among those that were told; the module itself goes on to the next.
  if (!complete && standin_platform::isInterrupted()) throw runtime::Interrupted();
  if (const std::string& missing = host->journal().missing(); !missing.empty() && !complete) {
    // It looked for its folder, didn't find it, and did nothing.
    say("'" + missing + "' could not be found any more");
    if (options.report.saveTo)
      say("the drawing was not saved to '" + *options.report.saveTo + "', since the command did nothing");
    return kNotWritten;
  }
  if (options.report.saveTo) {
    made.remove();
    if (!maySave(host->openDrawing()->drawing(), options)) {
      run.kept.push_back(*options.report.saveTo);
      return kNotWritten;
    }
    const auto beforeReplacing = [&](const NewFiles& files) {
      if (run.beforeSaving) run.beforeSaving(complete ? kDone : kNotWritten, files);
    };
    host->openDrawing()->save([&](civil::Drawing& changed) {
      for (std::string& path : saveAndTell(changed, options, "", beforeReplacing))
        run.written.push_back(std::move(path));
    });
  }
  return complete ? kDone : kNotWritten;
}

}  // namespace lvx::cli
