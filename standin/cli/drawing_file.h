#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "advice/report_advice.h"
#include "civil/drawing.h"
#include "cli/answer.h"
#include "options/options.h"
#include "runtime/input_files.h"

namespace lvx::cli {

/// Files that are to take their names: the target of each, and where its content can be read until then.
using NewFiles = std::vector<std::pair<std::string, std::string>>;

/// Name of a drawing that comes on standard input, in messages and wherever a path is told.
inline constexpr const char* kStandardInputName = "standard input";

/// Reads the drawing of `options`, all of its files, with progress; one of standard input is kept for saving it. Throws Failure where it can't be read (kBadDrawing)
/// and for --swap-axes of what is none of its files (kUsage), and runtime::Interrupted where the user stopped it.
[[nodiscard]] civil::Drawing loadDrawing(const options::Options& options,
                                         civil::GroundSearch groundSearch = civil::GroundSearch::AtOnce);

/// Throws Failure (kBadDrawing) where --save names what can't be saved to: a file that the run reads, but for the drawing's
/// own first one, which is saved in place; one of `outputs`, which the same run writes; a name with a zero character.
void requireSaveTarget(const civil::Drawing& drawing, const options::Options& options,
                       const std::vector<std::string>& outputs = {});

/// Whether the drawing may be saved as --save says: a file that exists and isn't the drawing's own is overwritten by the
/// rules of the reports (see mayOverwrite). Where it is kept, that is told.
[[nodiscard]] bool maySave(const civil::Drawing& drawing, const options::Options& options);

/// Puts what comes on standard input among `inputs`, where the drawing does.
void addStandardInput(runtime::InputFiles& inputs, const options::Options& options);

/// The name of a file that steers a command, in messages.
[[nodiscard]] std::string steeringName(const std::string& path);

/// All of a file that steers a command, or of standard input for "-": `speaker` names it in messages. Throws Failure (kUsage) where it can't be read,
/// a folder included, and runtime::Interrupted where the user stopped the waiting for a pipe.
[[nodiscard]] std::string readSteeringFile(const std::string& path, const char* speaker);

/// Throws Failure (kUsage) for --swap-axes of what is none of the drawing's files.
void requireSwappedFiles(const options::Options& options);

/// Saves the files of a drawing that changed, with progress: the first one under --save, else in its place. Then tells
/// `made` and the files on standard output, unless --quiet. Throws Failure (kBadDrawing) where one can't be saved, also
/// where --save names a new file and what changed belongs into an added one, which would be written in its place; and
/// runtime::Interrupted where the user stopped it. What stood there then still does. Gives the paths that were written.
///
/// `beforeReplacing` is told once all new files are whole; what it throws leaves all files as they were.
std::vector<std::string> saveAndTell(civil::Drawing& drawing, const options::Options& options, const std::string& made,
                                     const std::function<void(const NewFiles&)>& beforeReplacing = {});

/// Throws Failure (kUsage) where --save can't be what is meant with a drawing that comes on standard input: it names
/// standard input too, or isn't there though the command saves in any case (`isNeeded`).
void requireSaveFromInput(const options::Options& options, bool isNeeded);

/// "road.xml:118: warning: …", with the file that it is of; the line left out where there is none.
[[nodiscard]] std::string diagnosticText(const civil::Drawing& drawing, const civil::Diagnostic& diagnostic);

/// The same for programs.
[[nodiscard]] ToldDiagnostic toldDiagnostic(const civil::Drawing& drawing, const civil::Diagnostic& diagnostic);

/// Warnings and errors of the reader on standard error; of many the first ones and how many more there are.
void tellDiagnostics(const civil::Drawing& drawing);

/// Those of a report's objects on standard error, of many the first ones, and how many others there are.
void tellDiagnostics(const civil::Drawing& drawing, const advice::SortedDiagnostics& diagnostics);

}  // namespace lvx::cli
