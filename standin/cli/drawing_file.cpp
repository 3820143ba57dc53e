#include "cli/drawing_file.h"

#include <algorithm>
#include <new>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "civil/drawing_files.h"
#include "cli/failure.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "landxml/project.h"
#include "runtime/input_files.h"
#include "runtime/open_drawing.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/input_file.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

using standin_platform::isInterrupted;
using standin_platform::leadToOneFile;

namespace {

/// The files of the drawing in their order.
std::vector<landxml::ProjectFile> projectFiles(const options::Options& options) {
  std::vector<landxml::ProjectFile> files{{options.drawing}};
  for (const std::string& path : options.files.with) files.push_back({path});
  for (const std::string& swapped : options.files.swapAxes) {
    const auto file = std::find_if(files.begin(), files.end(), [&](const landxml::ProjectFile& candidate) {
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

civil::Drawing loadDrawing(const options::Options& options) {
  const std::vector<landxml::ProjectFile> files = projectFiles(options);
  std::string reading = options.drawing;
  std::optional<ProgressLine> line(std::in_place, options.common.progressMode(), "reading " + reading);
  landxml::ProjectOptions project;
  project.convertUnits = options.files.convertUnits;
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
  if (leadToOneFile(*options.report.saveTo, drawing.path)) return;  // in place is meant
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

std::string readSteeringFile(const std::string& path, const char* speaker) {
  const auto fail = [&](const std::string& reason) {
    throw Failure(kUsage, std::string(speaker) + ": can't read '" + path + "': " + reason);
  };
  try {
    standin_platform::InputFile file(path);
    if (file.kind() == standin_platform::InputFile::Kind::Folder) fail("it is a folder");
    return file.readAll();
  } catch (const std::system_error& error) {
    if (isInterrupted()) throw runtime::Interrupted();
    fail(error.code().message());
  }
  return {};
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
  if (leadToOneFile(target, drawing.path)) return;  // in place is meant
  runtime::InputFiles inputs;
  inputs.add(drawing);
  if (const auto& messages = options.common.host.messages) inputs.add(*messages, "the message file");
  if (const std::string reason = inputs.whyNoOutput(target); !reason.empty()) refuse(reason);
}

bool maySave(const civil::Drawing& drawing, const options::Options& options) {
  if (!options.report.saveTo) return true;
  const std::string& target = *options.report.saveTo;
  std::error_code error;
  if (leadToOneFile(target, drawing.path) || !std::filesystem::exists(target, error)) return true;
  if (mayOverwrite(options.common.overwriteMode(), target + " exists. Overwrite it?")) return true;
  say("the drawing was not saved: kept '" + target + "', which exists; --overwrite replaces it");
  return false;
}

std::vector<std::string> saveAndTell(civil::Drawing& drawing, const options::Options& options,
                                     const std::string& made) {
  refuseOtherTargets(drawing, options);
  const std::string target = options.report.saveTo.value_or(drawing.path);
  std::vector<landxml::SavedFile> saved;
  {
    ProgressLine line(options.common.progressMode(), "saving " + target);
    landxml::SaveOptions saving;
    saving.progress = [&line](const landxml::Progress& state) {
      line.update(state.bytesDone, state.bytesTotal);
      return !isInterrupted();
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
    if (!options.common.quiet) print(file.path + "  " + std::to_string(file.mark.size) + " bytes\n");
    written.push_back(file.path);
  }
  return written;
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

}  // namespace

void tellDiagnostics(const civil::Drawing& drawing) {
  std::size_t told = 0;
  for (const civil::Diagnostic& diagnostic : drawing.diagnostics) {
    if (diagnostic.severity == civil::Severity::Note) continue;
    if (++told <= kMostTold) tell(diagnosticText(drawing, diagnostic) + "\n");
  }
  if (told > kMostTold)
    tell(drawing.path + ": " + std::to_string(told - kMostTold) + " more warnings; 'lvxhost info' lists all of them\n");
}

void tellDiagnostics(const civil::Drawing& drawing, const advice::SortedDiagnostics& diagnostics) {
  const std::size_t told = std::min(kMostTold, diagnostics.ofReport.size());
  for (std::size_t i = 0; i < told; ++i) tell(diagnosticText(drawing, *diagnostics.ofReport[i]) + "\n");
  const std::size_t others = diagnostics.ofReport.size() - told + diagnostics.others;
  if (others == 0) return;
  tell(drawing.path + ": " + (told > 0 ? "and " : "") + std::to_string(others) +
       (told > 0 ? (others == 1 ? " other warning" : " other warnings")
                 : (others == 1 ? " warning, of nothing that the report uses"
                                : " warnings, of nothing that the report uses")) +
       "; 'lvxhost info' lists all of them\n");
}

}  // namespace lvx::cli
