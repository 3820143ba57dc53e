#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "advice/report_advice.h"
#include "cli/command_line_front_end.h"
#include "cli/drawing_file.h"
#include "cli/made_objects.h"
#include "cli/name_lookup.h"
#include "options/exit_codes.h"
#include "options/options.h"
#include "runtime/open_drawing.h"

/// What the report commands share: they run the module's own command over one drawing, answer its dialog as a user
/// would, and tell what became of the files.
namespace lvx::cli {

/// What a plan found in the drawing.
struct PlannedReport {
  /// What the report is asked of.
  advice::ReportObjects objects;
  /// The sentence for a command that ends without having written or asked anything; empty where that can't be.
  std::string nothingWritten;
};

/// Tells the front end what to do in the command's dialogs, given the open drawing, and makes there what the report alone
/// needs. `closing` are the steps with which the last opening ends: stem typed, forms ticked, OK clicked. Every name is
/// looked up here, before the command runs, so that a wrong one is told (Failure, kUnknownName) with what the dialog's
/// lists would offer.
using ReportPlan = std::function<PlannedReport(MadeForReport& made, const std::vector<DialogStep>& closing,
                                               CommandLineFrontEnd& frontEnd)>;

/// What a report runs over beside its options, and what it leaves behind, also where it ends by an exception.
struct ReportRun {
  /// The drawing of the options where somebody has read it already; null: it is read. What the report makes in it stays.
  runtime::OpenDrawingRef drawing;
  /// Of a drawing that is read.
  civil::GroundSearch groundSearch = civil::GroundSearch::AtOnce;
  /// Paths of the files that were written, in that order, each once; the saved files of the drawing behind them.
  std::vector<std::string> written;
  /// Paths of reports that weren't written since something stood there that was to be kept.
  std::vector<std::string> kept;
  /// Told with what the run will end with before the files of a saved drawing take their names, when all reports stand.
  /// May be empty; what it throws leaves the drawing's files as they were.
  std::function<void(options::ExitCode, const NewFiles&)> beforeSaving;
};

/// Runs the module's command over the drawing of `options` and lists what was written on standard output, what wasn't on
/// standard error, where before it stands what is odd about the report's objects and behind it what the user can change
/// about an exception. A report that would be of another alignment than the one asked for isn't run (Failure,
/// kNotWritten). Where the options say so, saves the drawing once the command ended by itself, without what was
/// made for the report. Throws Failure, and runtime::Interrupted where the user stopped it.
[[nodiscard]] options::ExitCode runReport(const options::Options& options, const wchar_t* command, ReportRun& run,
                                          const ReportPlan& plan);

/// The stem as it goes into the dialog: the module wants a folder in it, so a bare name gets the current one. Throws
/// Failure (kUsage) for a stem without a file name.
[[nodiscard]] std::string dialogStem(const std::string& given);

/// The group of --group, or the one that --lines asks for, which is made; `profile` is for rules that need one and name
/// none. Throws Failure as findGroup() and MadeForReport::addLines() do.
[[nodiscard]] const civil::SampleLineGroup& groupFor(MadeForReport& made, const civil::AlignmentObject& alignment,
                                                     const options::Options& options, const std::string& profile);

/// The steps that select an alignment in the dialogs' lists of sites and alignments.
[[nodiscard]] std::vector<DialogStep> alignmentSteps(const civil::Drawing& drawing, const FoundAlignment& found);

/// Position of an object in a list of objects, of pointers or of owners; -1 where it isn't there.
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

}  // namespace lvx::cli
