#include "cli/group_command.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "civil/reversible_change.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/name_lookup.h"
#include "cli/point_choice.h"
#include "cli/terminal.h"

namespace lvx::cli {

namespace {

/// The group to replace; null for a new one.
const civil::PointGroup* groupToReplace(const civil::Drawing& drawing, const options::NewGroupOptions& wanted) {
  std::vector<std::string> names;
  const civil::PointGroup* taken = nullptr;
  for (const civil::PointGroup& group : drawing.pointGroups) {
    names.push_back(group.name);
    if (group.name == wanted.name && taken == nullptr) taken = &group;
  }
  if (taken != nullptr && !wanted.replace)
    throw Failure(kNotWritten, "nothing was written: the drawing has a point group '" + wanted.name +
                                   "' already; --replace gives it the new points. There is " +
                                   offered(std::move(names), wanted.name));
  return taken;
}

}  // namespace

ExitCode runGroup(const options::Options& options) {
  const options::NewGroupOptions& wanted = options.newGroup;
  if (wanted.name.empty()) throw Failure(kUsage, "--name: a point group needs a name");
  const WantedPoints points = parsePoints(options.report.points);
  const bool quiet = options.common.quiet;
  civil::Drawing drawing = loadDrawing(options);
  if (!quiet) tellDiagnostics(drawing);
  const civil::PointGroup* const taken = groupToReplace(drawing, wanted);
  std::vector<std::int32_t> numbers = findPoints(drawing, civil::DrawingIndex(drawing), points, quiet).numbers;
  const std::string told =
      "'" + wanted.name + "': " + std::to_string(numbers.size()) + (numbers.size() == 1 ? " point\n" : " points\n");
  if (taken != nullptr) civil::removingPointGroup(taken->handle)->make(drawing);
  civil::addingPointGroup(wanted.name, std::move(numbers))->make(drawing);
  saveAndTell(drawing, options, told);
  return kDone;
}

}  // namespace lvx::cli
