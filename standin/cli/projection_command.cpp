#include "cli/projection_command.h"

#include <array>
#include <exception>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "cli/command_line_front_end.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/host_setup.h"
#include "cli/installation.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "runtime/standin_host.h"

namespace lvx::cli {

using platform::fromUtf8;

namespace {

// Controls of the dialog that the command opens.
constexpr const char* kDialog = "CMyDialog1";
constexpr int kSites = 261;
constexpr int kAlignments = 263;
constexpr int kGroups = 262;
constexpr int kSurfaces = 268;
constexpr int kStem = 100;

struct Form {
  const char* name;
  int checkBox;
};
constexpr std::array<Form, 3> kForms{{{"txt", 274}, {"xls", 275}, {"html", 276}}};

template <class Objects, class Object>
int rowOf(const Objects& objects, const Object* wanted) {
  int row = 0;
  for (const auto& object : objects) {
    if constexpr (requires { object.get(); }) {
      if (object.get() == wanted) return row;
    } else if constexpr (std::is_pointer_v<std::decay_t<decltype(object)>>) {
      if (object == wanted) return row;
    } else {
      if (&object == wanted) return row;
    }
    ++row;
  }
  return -1;
}

/// Every name is looked up before the command runs, so that a wrong one is told with what the dialog's lists would
/// offer.
std::vector<DialogStep> stepsFor(const civil::Drawing& drawing, const CommonOptions& common,
                                 const ProjectionOptions& options, const std::string& stem) {
  using Kind = DialogStep::Kind;
  const auto [site, alignment] = findAlignment(drawing, options.alignment, options.siteGiven ? &options.site : nullptr);
  const civil::SampleLineGroup& group = findGroup(*alignment, options.group);
  const civil::SurfaceObject& surface = findSurface(drawing, options.surface);
  if (group.lines.empty())
    say("sample line group '" + group.name + "' holds no sample lines: the reports have their header alone");
  if (surface.surface.isEmpty())
    say("surface '" + surface.name + "' holds no triangles: the reports have headings without rows");

  std::vector<DialogStep> steps{
      {Kind::SelectRow, kSites, rowOf(siteRows(drawing), site), fromUtf8(site->name)},
      {Kind::SelectRow, kAlignments, rowOf(site->alignments, alignment), fromUtf8(alignment->name)},
      {Kind::SelectRow, kGroups, rowOf(alignment->sampleLineGroups, &group), fromUtf8(group.name)},
      {Kind::SelectRow, kSurfaces, rowOf(drawing.surfaces, &surface), fromUtf8(surface.name)},
      {Kind::Type, kStem, 0, fromUtf8(stem)}};
  for (const Form& form : kForms)
    steps.push_back({common.writes(form.name) ? Kind::Tick : Kind::Untick, form.checkBox, 0, {}});
  steps.push_back({Kind::Click, dialogs::kIdOk, 0, {}});
  return steps;
}

/// The command itself ends without a word where the folder is missing, so the user is told before it starts.
void requireFolder(runtime::StandinHost& host, const std::string& stem) {
  const host::CString wide = fromUtf8(stem);
  const std::size_t mark = host.platform().lastFolderMark(wide);
  const std::string folder = platform::toUtf8(wide.substr(0, mark == 0 ? 1 : mark));
  std::error_code error;
  if (std::filesystem::is_directory(folder, error)) return;
  throw Failure(kNotWritten, "nothing was written: " + (std::filesystem::exists(folder, error)
                                                            ? "'" + folder + "' is no folder"
                                                            : "there is no folder '" + folder + "'"));
}

struct Expected {
  std::string path;
  bool stood = false;  ///< something stood there before the command
};

/// What became of one form, on standard output or standard error.
bool tellOutcome(const runtime::StandinHost& host, const Expected& expected, bool quiet) {
  const runtime::FileEvent* event = host.journal().last(expected.path);
  if (event != nullptr && event->fate == runtime::FileFate::Written) {
    if (!quiet) print(expected.path + "  " + std::to_string(event->bytes) + " bytes\n");
    return true;
  }
  if (event != nullptr && event->fate == runtime::FileFate::Failed)
    say("can't write '" + expected.path + "': " + event->reason);
  else if (event == nullptr && expected.stood)
    say("kept '" + expected.path + "', which exists; --overwrite replaces it");
  else
    say("'" + expected.path + "' was not written");
  return false;
}

/// Runs a command of the loaded module by its name.
void runCommand(runtime::StandinHost& host, const wchar_t* name) {
  const runtime::RegisteredCommand* command = host.commands().find(name);
  if (command == nullptr) throw std::runtime_error("the module registered no command '" + platform::toUtf8(name) + "'");
  command->function();
}

}  // namespace

std::string dialogStem(const std::string& given) {
  const std::size_t mark = given.find_last_of("/\\");
  if (given.empty() || mark == given.size() - 1)
    throw Failure(kUsage, "--out needs a file name without extension, such as 'out/road'" +
                              (given.empty() ? std::string() : ", not just the folder '" + given + "'"));
  return mark == std::string::npos ? "./" + given : given;
}

ExitCode runProjection(const CommonOptions& common, const ProjectionOptions& options) {
  const std::string stem = dialogStem(options.stem);
  CommandLineFrontEnd frontEnd(common.overwriteMode(), helpFolder(common.language));
  const auto host = makeHost(frontEnd, common);
  civil::Drawing drawing = loadDrawing(options.drawing, common.progressMode());
  if (!common.quiet) tellDiagnostics(drawing);
  frontEnd.steps().expect(kDialog, stepsFor(drawing, common, options, stem));
  requireFolder(*host, stem);

  std::vector<Expected> expected;
  for (const Form& form : kForms) {
    if (!common.writes(form.name)) continue;
    std::string path = stem + "." + form.name;
    const bool stood = host->platform().exists(fromUtf8(path));
    expected.push_back({std::move(path), stood});
  }

  host->open(std::move(drawing));
  std::string endedBy;
  try {
    const auto module = host->loadModule(common.module.empty() ? moduleFile() : std::filesystem::path(common.module));
    try {
      runCommand(*host, L"lvx_Report_Que");
    } catch (const runtime::Interrupted&) {
      throw;
    } catch (const std::exception& error) {
      endedBy = error.what();
    }
  } catch (const runtime::ModuleError& error) {
    throw Failure(kNotWritten, error.what());
  }
  bool complete = true;
  for (const Expected& form : expected) complete = tellOutcome(*host, form, common.quiet) && complete;
  if (!endedBy.empty()) {
    say("the command ended by an exception: " + endedBy);
    return kException;
  }
  return complete ? kDone : kNotWritten;
}

}  // namespace lvx::cli
