#include "cli/projection_command.h"

#include "cli/name_lookup.h"
#include "cli/report_run.h"
#include "cli/terminal.h"
#include "host/dialog_controls.h"
#include "platform/utf8.h"

namespace lvx::cli {

using platform::fromUtf8;

namespace {

std::vector<DialogStep> stepsFor(MadeForReport& made, const options::Options& options,
                                 const std::vector<DialogStep>& closing, advice::ReportObjects& objects) {
  using Kind = DialogStep::Kind;
  const civil::Drawing& drawing = made.drawing().drawing();
  const FoundAlignment found = findAlignment(drawing, options.report.alignment, options.report.site);
  const civil::SampleLineGroup& group = groupFor(made, *found.alignment, options, "");
  const civil::SurfaceObject& surface = findSurface(drawing, options.report.surface);
  if (group.lines.empty())
    say("sample line group '" + group.name + "' holds no sample lines: the reports have their header alone",
        Severity::Warning);
  if (surface.surface.isEmpty())
    say("surface '" + surface.name + "' holds no triangles: the reports have headings without rows", Severity::Warning);

  objects.report = advice::Report::Projection;
  objects.site = found.site;
  objects.alignment = found.alignment;
  objects.group = &group;
  objects.surface = &surface;

  std::vector<DialogStep> steps = alignmentSteps(drawing, found);
  steps.push_back({Kind::SelectRow, host::kIdSampleLineGroups, rowOf(found.alignment->sampleLineGroups, &group),
                   fromUtf8(group.name)});
  steps.push_back({Kind::SelectRow, host::kIdSurfaces, rowOf(drawing.surfaces, &surface), fromUtf8(surface.name)});
  steps.insert(steps.end(), closing.begin(), closing.end());
  return steps;
}

}  // namespace

options::ExitCode runProjection(const options::Options& options, ReportRun& run) {
  return runReport(options, L"lvx_Report_Que", run,
                   [&](MadeForReport& made, const std::vector<DialogStep>& closing, CommandLineFrontEnd& frontEnd) {
                     PlannedReport planned;
                     frontEnd.steps().expect(host::kProjectionDialog,
                                             {stepsFor(made, options, closing, planned.objects)});
                     return planned;
                   });
}

}  // namespace lvx::cli
