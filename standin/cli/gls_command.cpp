#include "cli/gls_command.h"

#include "cli/name_lookup.h"
#include "cli/report_run.h"
#include "cli/terminal.h"
#include "host/dialog_controls.h"
#include "options/option_table.h"
#include "platform/utf8.h"

namespace lvx::cli {

using platform::fromUtf8;

namespace {

/// What the command will end at without a word of its own, or show little of.
void tellGaps(const civil::Drawing& drawing, const civil::AlignmentObject& alignment,
              const civil::ProfileObject& profile) {
  if (alignment.geometry.isEmpty())
    say("alignment '" + alignment.name + "' has no elements, and the report needs them", Severity::Warning);
  if (profile.profile.points().size() < 2)
    say("profile '" + profile.name + "' has fewer than two points, and the report needs two", Severity::Warning);
  for (const civil::Corridor& corridor : drawing.corridors) {
    if (corridor.baselines.empty())
      say("corridor '" + corridor.name + "' has no baselines and is passed over", Severity::Warning);
    for (const civil::Baseline& baseline : corridor.baselines)
      if (baseline.profile == nullptr)
        say("corridor '" + corridor.name + "', baseline '" + baseline.name +
                "': no profile, so its heights count from 0",
            Severity::Warning);
  }
}

/// The profile of --profile, or the ground that --ground-profile asks for, which is made.
const civil::ProfileObject& profileFor(MadeForReport& made, const civil::AlignmentObject& alignment,
                                       const options::Options& options) {
  const options::ReportOptions& report = options.report;
  if (!report.groundProfile) return findProfile(alignment, report.profile.value());
  const double tolerance = options::lengthOf(report.groundTolerance.value_or("0"));
  return made.addGroundProfile(alignment, findSurface(made.drawing().drawing(), *report.groundProfile), tolerance,
                               options.common.quiet);
}

std::vector<DialogStep> stepsFor(MadeForReport& made, const options::Options& options,
                                 const std::vector<DialogStep>& closing, advice::ReportObjects& objects) {
  using Kind = DialogStep::Kind;
  const civil::Drawing& drawing = made.drawing().drawing();
  const FoundAlignment found = findAlignment(drawing, options.report.alignment, options.report.site);
  const civil::ProfileObject& profile = profileFor(made, *found.alignment, options);
  const civil::SampleLineGroup& group = groupFor(made, *found.alignment, options, profile.name);
  if (!options.common.quiet) tellGaps(drawing, *found.alignment, profile);

  objects.report = advice::Report::Gls;
  objects.site = found.site;
  objects.alignment = found.alignment;
  objects.profile = &profile;
  objects.group = &group;

  // The profile comes after the alignment: choosing that one puts a corridor's name in the profile's place.
  std::vector<DialogStep> steps = alignmentSteps(drawing, found);
  steps.push_back(
      {Kind::SelectRow, host::kIdProfiles, rowOf(found.alignment->profiles, &profile), fromUtf8(profile.name)});
  steps.push_back({Kind::SelectRow, host::kIdSampleLineGroups, rowOf(found.alignment->sampleLineGroups, &group),
                   fromUtf8(group.name)});
  steps.insert(steps.end(), closing.begin(), closing.end());
  return steps;
}

}  // namespace

options::ExitCode runGls(const options::Options& options, ReportRun& run) {
  return runReport(
      options, L"lvx_Report_GLS", run,
      [&](MadeForReport& made, const std::vector<DialogStep>& closing, CommandLineFrontEnd& frontEnd) {
        PlannedReport planned;
        frontEnd.steps().expect(host::kGlsDialog, {stepsFor(made, options, closing, planned.objects)});
        frontEnd.steps().expect(
            host::kAddSectionsDialog,
            {{{DialogStep::Kind::Click, options.report.addSections ? host::kIdOk : host::kIdCancel, 0, {}}}});
        return planned;
      });
}

}  // namespace lvx::cli
