#include "cli/drawing_file.h"

#include <algorithm>
#include <new>
#include <optional>
#include <span>
#include <system_error>
#include <utility>
#include <vector>

#include "civil/drawing_files.h"
#include "cli/answer.h"
#include "cli/failure.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "landxml/project.h"
#include "runtime/input_files.h"
#include "runtime/open_drawing.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/input_file.h"
#include "standin_platform/interruption.h"
#include "standin_platform/standard_input.h"

namespace lvx::cli {

using standin_platform::isInterrupted;
using standin_platform::leadToOneFile;

namespace {

bool isFromInput(const options::Options& options) { return options.drawing == options::kStandardInput; }

/// The drawing of standard input, read to its end by the first call and kept as long as the program runs, since saving
/// reads it again.
const standin_platform::StandardInputFile& inputDrawing() {
  static const standin_platform::StandardInputFile file;
  return file;
}

/// The files of the drawing in their order.
std::vector<landxml::ProjectFile> projectFiles(const options::Options& options) {
  std::vector<landxml::ProjectFile> files{{options.drawing}};
  if (isFromInput(options)) files.front().path = kStandardInputName;
  for (const std::string& path : options.files.with) {
    if (path == options::kStandardInput)
      throw Failure(kUsage, "--with names standard input, which can be DRAWING alone; './-' is a file of that name");
    files.push_back({path});
  }
  for (const std::string& swapped : options.files.swapAxes) {
    const auto file = std::find_if(files.begin(), files.end(), [&](const landxml::ProjectFile& candidate) {
      if (isFromInput(options) && &candidate == files.data()) return swapped == options::kStandardInput;
      return leadToOneFile(candidate.path, swapped);
    });
    if (file == files.end()) {
      std::vector<std::string> paths;
      for (const landxml::ProjectFile& known : files) paths.push_back(known.path);
      throw Failure(kUsage, "--swap-axes names '" + swapped + "', which is none of the drawing's files; there is " +
                                offered(std::move(paths), swapped));
    }
    file->swapAxes = true;
  }
  return files;
}

}  // namespace

void requireSwappedFiles(const options::Options& options) { static_cast<void>(projectFiles(options)); }

civil::Drawing loadDrawing(const options::Options& options, civil::GroundSearch groundSearch) {
  std::vector<landxml::ProjectFile> files = projectFiles(options);
  std::string reading = files.front().path;
  try {
    if (isFromInput(options)) files.front().source = inputDrawing().path().string();
  } catch (const std::system_error& error) {
    if (isInterrupted()) throw runtime::Interrupted();
    throw Failure(kBadDrawing, landxml::ReadError("can't read it: " + error.code().message(), reading).what());
  }
  std::optional<ProgressLine> line(std::in_place, options.common.progressMode(), "reading " + reading);
  landxml::ProjectOptions project;
  project.convertUnits = options.files.convertUnits;
  project.groundSearch = groundSearch;
  project.threads = static_cast<unsigned>(options.common.threads.value_or(0));
  project.progress = [&](const std::string& path, const landxml::Progress& state) {
    if (path != reading) {
      reading = path;
      line.emplace(options.common.progressMode(), "reading " + reading);
    }
    line->update(state.bytesDone, state.bytesTotal);
    return !isInterrupted();
  };
  try {
    return landxml::readProject(files, project);
  } catch (const landxml::Error& error) {
    // Cancelled, or a system call that the user's signal broke off.
    if (isInterrupted()) throw runtime::Interrupted();
    throw Failure(kBadDrawing, error.what());
  } catch (const std::bad_alloc&) {
    throw Failure(kBadDrawing, landxml::ReadError("not enough memory for this drawing", reading).what());
  }
}

namespace {

/// A user who names a file to save into wants the others to stay as they are.
void refuseOtherTargets(const civil::Drawing& drawing, const options::Options& options) {
  if (!options.report.saveTo) return;
  if (!isFromInput(options) && leadToOneFile(*options.report.saveTo, drawing.path)) return;  // in place is meant
  const std::vector<std::string> changed = landxml::changedAddedFiles(drawing);
  if (changed.empty()) return;
  // The GLS report saves only where --save says so.
  const std::string orWithout =
      options.newGroup.name.empty() ? "" : ", or leave --save out to have it saved in that file";
  throw Failure(kBadDrawing, "the drawing isn't saved: --save names '" + *options.report.saveTo +
                                 "', but what is new belongs into '" + changed.front() +
                                 "', which stays as it is; give that file first and '" + drawing.path + "' by --with" +
                                 orWithout);
}

}  // namespace

void addStandardInput(runtime::InputFiles& inputs, const options::Options& options) {
  if (isFromInput(options)) inputs.add(standin_platform::standardInputName().string(), "the drawing on standard input");
}

std::string steeringName(const std::string& path) {
  return path == options::kStandardInput ? kStandardInputName : path;
}

std::string readSteeringFile(const std::string& path, const char* speaker) {
  const auto fail = [&](const std::string& reason) {
    throw Failure(kUsage, std::string(speaker) + ": can't read '" + steeringName(path) + "': " + reason);
  };
  try {
    if (path == options::kStandardInput) return standin_platform::readStandardInput();
    standin_platform::InputFile file(path);
    if (file.kind() == standin_platform::InputFile::Kind::Folder) fail("it is a folder");
    return file.readAll();
  } catch (const std::system_error& error) {
    if (isInterrupted()) throw runtime::Interrupted();
    fail(error.code().message());
  }
  return {};
}

void requireSaveFromInput(const options::Options& options, bool isNeeded) {
  if (!isFromInput(options)) return;
  if (!options.report.saveTo) {
    if (isNeeded)
      throw Failure(kUsage, "the drawing comes on standard input and has no place of its own: --save says where to");
    return;
  }
  if (*options.report.saveTo == options::kStandardInput)
    throw Failure(kUsage, "--save names standard input, which the drawing comes on; './-' is a file of that name");
}

void requireSaveTarget(const civil::Drawing& drawing, const options::Options& options,
                       const std::vector<std::string>& outputs) {
  if (!options.report.saveTo) return;
  const std::string& target = *options.report.saveTo;
  const auto refuse = [&target](const std::string& reason) {
    throw Failure(kBadDrawing, "nothing was written: --save names '" + target + "', which can't be: " + reason);
  };
  for (const std::string& output : outputs)
    if (leadToOneFile(output, target)) refuse("it is a report of this run");
  runtime::InputFiles inputs;
  addStandardInput(inputs, options);
  if (!isFromInput(options) && leadToOneFile(target, drawing.path)) return;  // in place is meant
  inputs.add(drawing);
  if (const auto& messages = options.common.host.messages) inputs.add(*messages, "the message file");
  if (const std::string reason = inputs.whyNoOutput(target); !reason.empty()) refuse(reason);
}

bool maySave(const civil::Drawing& drawing, const options::Options& options) {
  if (!options.report.saveTo) return true;
  const std::string& target = *options.report.saveTo;
  std::error_code error;
  if (!std::filesystem::exists(target, error)) return true;
  if (!isFromInput(options) && leadToOneFile(target, drawing.path)) return true;
  if (mayOverwrite(options.common.overwriteMode(), target + " exists. Overwrite it?")) return true;
  say("the drawing was not saved: kept '" + target + "', which exists; --overwrite replaces it", Severity::Error,
      target);
  return false;
}

std::vector<std::string> saveAndTell(civil::Drawing& drawing, const options::Options& options, const std::string& made,
                                     const std::function<void(const NewFiles&)>& beforeReplacing) {
  refuseOtherTargets(drawing, options);
  const std::string target = options.report.saveTo.value_or(drawing.path);
  std::vector<landxml::SavedFile> saved;
  {
    ProgressLine line(options.common.progressMode(), "saving " + target);
    landxml::SaveOptions saving;
    if (isFromInput(options))
      saving.sourceOf = [](civil::FileNumber file) {
        return file == 0 ? inputDrawing().path().string() : std::string();
      };
    saving.progress = [&line](const landxml::Progress& state) {
      line.update(state.bytesDone, state.bytesTotal);
      return !isInterrupted();
    };
    saving.beforeReplacing = [&](std::span<const landxml::NewFile> files) {
      NewFiles told;
      for (const landxml::NewFile& file : files) told.emplace_back(file.target, file.path);
      if (beforeReplacing) beforeReplacing(told);
    };
    try {
      saved = landxml::saveProject(drawing, target, saving);
    } catch (const landxml::Error& error) {
      if (isInterrupted()) throw runtime::Interrupted();
      throw Failure(kBadDrawing, error.what());
    } catch (const std::bad_alloc&) {
      throw Failure(kBadDrawing, landxml::SaveError("not enough memory to save the drawing", target).what());
    }
  }
  if (!options.common.quiet) print(made);
  std::vector<std::string> written;
  for (const landxml::SavedFile& file : saved) {
    if (!file.isWritten) continue;
    printFile(file.path, file.mark.size, options.common.quiet);
    written.push_back(file.path);
  }
  return written;
}

ToldDiagnostic toldDiagnostic(const civil::Drawing& drawing, const civil::Diagnostic& diagnostic) {
  const std::string& path = civil::pathOf(drawing, diagnostic.file);
  return {diagnostic.severity, diagnostic.text, path.empty() ? drawing.path : path, diagnostic.line};
}

std::string diagnosticText(const civil::Drawing& drawing, const civil::Diagnostic& diagnostic) {
  const std::string& path = civil::pathOf(drawing, diagnostic.file);
  std::string text = path.empty() ? drawing.path : path;
  if (diagnostic.line != 0) text += ":" + std::to_string(diagnostic.line);
  switch (diagnostic.severity) {
    case civil::Severity::Note:
      return text + ": note: " + diagnostic.text;
    case civil::Severity::Warning:
      return text + ": warning: " + diagnostic.text;
    case civil::Severity::Error:
      return text + ": error: " + diagnostic.text;
  }
  return text + ": " + diagnostic.text;
}

namespace {

/// Of many diagnostics as many are told.
constexpr std::size_t kMostTold = 10;

void tellLine(const std::string& text) {
  if (!answer().isQuiet()) tell(text + "\n");
}

}  // namespace

void tellDiagnostics(const civil::Drawing& drawing) {
  std::size_t told = 0;
  for (const civil::Diagnostic& diagnostic : drawing.diagnostics) {
    if (diagnostic.severity == civil::Severity::Note) continue;
    answer().add(toldDiagnostic(drawing, diagnostic));
    if (++told <= kMostTold) tellLine(diagnosticText(drawing, diagnostic));
  }
  if (told > kMostTold)
    tellLine(drawing.path + ": " + std::to_string(told - kMostTold) +
             " more warnings; 'lvxhost info' lists all of them");
}

void tellDiagnostics(const civil::Drawing& drawing, const advice::SortedDiagnostics& diagnostics) {
  for (const civil::Diagnostic* diagnostic : diagnostics.ofReport) answer().add(toldDiagnostic(drawing, *diagnostic));
  const std::size_t told = std::min(kMostTold, diagnostics.ofReport.size());
  for (std::size_t i = 0; i < told; ++i) tellLine(diagnosticText(drawing, *diagnostics.ofReport[i]));
  const std::size_t others = diagnostics.ofReport.size() - told + diagnostics.others;
  if (others == 0) return;
  tellLine(drawing.path + ": " + (told > 0 ? "and " : "") + std::to_string(others) +
           (told > 0 ? (others == 1 ? " other warning" : " other warnings")
                     : (others == 1 ? " warning, of nothing that the report uses"
                                    : " warnings, of nothing that the report uses")) +
           "; 'lvxhost info' lists all of them");
}

}  // namespace lvx::cli
