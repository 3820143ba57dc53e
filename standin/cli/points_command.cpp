#include "cli/points_command.h"

#include <algorithm>
#include <utility>

#include "cli/name_lookup.h"
#include "cli/point_choice.h"
#include "cli/report_run.h"
#include "cli/terminal.h"
#include "host/dialog_controls.h"
#include "platform/utf8.h"
#include "text/number_text.h"

namespace lvx::cli {

using platform::fromUtf8;

namespace {

void tellWithoutElevation(std::size_t count) {
  if (count > 0)
    say("points without an elevation: " + std::to_string(count) + "; the report shows 0.000 for them",
        Severity::Warning);
}

/// Chooses a group in the dialog; the sentence for a report without rows.
std::string planGroup(const runtime::OpenDrawing& drawing, const std::string& name, bool quiet,
                      std::vector<DialogStep>& steps, advice::ReportObjects& objects) {
  const civil::PointGroup& group = findPointGroup(drawing.drawing(), name);
  steps.push_back({DialogStep::Kind::SelectRow, host::kIdPointGroups, rowOf(drawing.drawing().pointGroups, &group),
                   fromUtf8(group.name)});
  objects.pointGroup = &group;
  for (const std::int32_t number : group.numbers)
    if (const civil::Point* point = drawing.index().pointByNumber(number)) objects.points.push_back(point);
  if (!quiet) {
    tellWithoutElevation(static_cast<std::size_t>(
        std::count_if(group.numbers.begin(), group.numbers.end(), [&drawing](std::int32_t number) {
          const civil::Point* point = drawing.index().pointByNumber(number);
          return point != nullptr && !point->hasElevation;
        })));
  }
  const std::string nothing = "nothing was written: ";
  if (group.numbers.empty()) return nothing + "point group '" + name + "' holds no points";
  return nothing + "the report gave no rows for the " + text::countText(objects.points.size(), "point") +
         " of group '" + name + "' on the alignment chosen";
}

std::vector<civil::Handle> wantedHandles(const runtime::OpenDrawing& drawing, const WantedPoints& wanted, bool quiet) {
  const civil::FilteredPoints found = findPoints(drawing.drawing(), drawing.index(), wanted, quiet);
  if (!quiet) tellWithoutElevation(found.withoutElevation);
  std::vector<civil::Handle> handles;
  handles.reserve(found.numbers.size());
  for (const std::int32_t number : found.numbers) handles.push_back(drawing.index().pointByNumber(number)->handle);
  return handles;
}

/// Picks points before the dialog opens for good; it then opens with them chosen.
std::string planPicked(const runtime::OpenDrawing& drawing, const std::vector<civil::Handle>& handles,
                       CommandLineFrontEnd& frontEnd, advice::ReportObjects& objects) {
  objects.points.reserve(handles.size());
  for (const civil::Handle handle : handles)
    objects.points.push_back(drawing.index().byHandle(handle)->as<civil::Point>());
  frontEnd.selectPoints(handles);
  return "nothing was written: the report gave no rows for the " + text::countText(handles.size(), "point") +
         " on the alignment chosen";
}

}  // namespace

options::ExitCode runPoints(const options::Options& options, ReportRun& run) {
  const options::ReportOptions& report = options.report;
  const WantedPoints wanted = parsePoints(report.points);
  const bool quiet = options.common.quiet;
  return runReport(options, L"lvx_Report_Points", run,
                   [&](MadeForReport& made, const std::vector<DialogStep>& closing, CommandLineFrontEnd& frontEnd) {
                     const runtime::OpenDrawing& drawing = made.drawing();
                     const FoundAlignment found = findAlignment(drawing.drawing(), report.alignment, report.site);
                     std::vector<DialogStep> steps = alignmentSteps(drawing.drawing(), found);
                     PlannedReport planned;
                     planned.objects.report = advice::Report::Points;
                     planned.objects.site = found.site;
                     planned.objects.alignment = found.alignment;
                     std::vector<std::vector<DialogStep>> openings;
                     if (const auto& group = report.points.group) {
                       planned.nothingWritten = planGroup(drawing, *group, quiet, steps, planned.objects);
                     } else {
                       openings.push_back({{DialogStep::Kind::Click, host::kIdPickPoints, 0, {}}});
                       const auto& surface = report.points.ofSurface;
                       const std::vector<civil::Handle> handles =
                           surface ? made.addPointsOf(findSurface(drawing.drawing(), *surface), quiet)
                                   : wantedHandles(drawing, wanted, quiet);
                       planned.nothingWritten = planPicked(drawing, handles, frontEnd, planned.objects);
                     }
                     steps.insert(steps.end(), closing.begin(), closing.end());
                     openings.push_back(std::move(steps));
                     frontEnd.steps().expect(host::kPointsDialog, std::move(openings));
                     return planned;
                   });
}

}  // namespace lvx::cli
