#include "cli/lines_command.h"

#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/answer.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/made_objects.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "text/number_text.h"

namespace lvx::cli {

namespace {

std::string toldLines(const std::string& group, const civil::AlignmentObject& alignment,
                      const std::vector<civil::MadeSampleLine>& lines) {
  return "'" + group + "' on alignment '" + alignment.name + "': " + text::countText(lines.size(), "sample line") +
         ", " + text::stationText(lines.front().station) + " to " + text::stationText(lines.back().station) + "\n";
}

}  // namespace

ExitCode runLines(const options::Options& options) {
  const options::NewGroupOptions& wanted = options.newGroup;
  requireUsableName(wanted, "sample line group");
  requireSaveFromInput(options, true);
  const civil::SampleLineRules rules = rulesOf(options.lines);
  const bool quiet = options.common.quiet;
  civil::Drawing drawing = loadDrawing(options, civil::GroundSearch::WhenAsked);
  if (!quiet) tellDiagnostics(drawing);
  requireSaveTarget(drawing, options);
  const civil::AlignmentObject& alignment =
      *findAlignment(drawing, options.report.alignment, options.report.site).alignment;
  const civil::SampleLineGroup* const taken = groupToReplace(
      alignment.sampleLineGroups, wanted, "alignment '" + alignment.name + "'", "sample line group", "lines");
  const std::vector<civil::MadeSampleLine> lines = makeLines(drawing, alignment, rules, "", quiet);
  if (taken != nullptr)
    civil::changingSampleLineGroup(taken->handle, std::nullopt, civil::sampleLinesOf(lines))->make(drawing);
  else
    civil::addingSampleLineGroup(alignment.handle, wanted.name, civil::sampleLinesOf(lines))->make(drawing);
  if (!maySave(drawing, options)) return kNotWritten;
  const std::string told = toldLines(wanted.name, alignment, lines);
  answer().set("group", {{"name", wanted.name},
                         {"alignment", alignment.name},
                         {"lines", lines.size()},
                         {"leastStation", lines.front().station},
                         {"greatestStation", lines.back().station}});
  saveAndTell(drawing, options, told);
  return kDone;
}

}  // namespace lvx::cli
