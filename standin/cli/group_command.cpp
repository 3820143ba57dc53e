#include "cli/group_command.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "civil/reversible_change.h"
#include "cli/answer.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/name_lookup.h"
#include "cli/point_choice.h"
#include "cli/terminal.h"
#include "text/number_text.h"

namespace lvx::cli {

ExitCode runGroup(const options::Options& options) {
  const options::NewGroupOptions& wanted = options.newGroup;
  requireUsableName(wanted, "point group");
  requireSaveFromInput(options, true);
  const WantedPoints points = parsePoints(options.report.points);
  const bool quiet = options.common.quiet;
  civil::Drawing drawing = loadDrawing(options, civil::GroundSearch::WhenAsked);
  if (!quiet) tellDiagnostics(drawing);
  requireSaveTarget(drawing, options);
  const civil::PointGroup* const taken =
      groupToReplace(drawing.pointGroups, wanted, "the drawing", "point group", "points");
  std::vector<std::int32_t> numbers = findPoints(drawing, civil::DrawingIndex(drawing), points, quiet).numbers;
  const std::string told = "'" + wanted.name + "': " + text::countText(numbers.size(), "point") + "\n";
  answer().set("group", {{"name", wanted.name}, {"points", numbers.size()}});
  if (taken != nullptr) civil::removingPointGroup(taken->handle)->make(drawing);
  civil::addingPointGroup(wanted.name, std::move(numbers))->make(drawing);
  if (!maySave(drawing, options)) return kNotWritten;
  saveAndTell(drawing, options, told);
  return kDone;
}

}  // namespace lvx::cli
