#include "options/option_table.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "civil/point_filter.h"
#include "civil/sample_line_rules.h"
#include "sheets/paper.h"
#include "sheets/settings.h"

namespace lvx::options {

namespace {

constexpr std::array<std::string_view, 3> kForms{"txt", "xls", "html"};
constexpr std::array<std::string_view, 2> kLanguages{"en", "de"};
constexpr std::array<std::string_view, 2> kWorkbookWriters{"excel", "file"};
constexpr std::array<std::string_view, 3> kProgressModes{"auto", "always", "never"};
constexpr std::array<std::string_view, 2> kOrientations{"landscape", "portrait"};
constexpr std::array<std::string_view, 3> kSchemes{"system", "light", "dark"};

std::string complaintAboutForms(const std::string& given) {
  std::size_t start = 0;
  while (start <= given.size()) {
    const std::size_t comma = std::min(given.find(',', start), given.size());
    const std::string form = given.substr(start, comma - start);
    if (std::find(kForms.begin(), kForms.end(), form) == kForms.end())
      return "'" + form + "' is no form of a report; there is txt, xls, html";
    start = comma + 1;
  }
  return {};
}

std::string complaintAboutLines(const std::string& given) {
  try {
    static_cast<void>(civil::parseSampleLineRules(given));
    return {};
  } catch (const civil::SampleLineError& error) {
    return error.what();
  }
}

std::string complaintAboutConditions(const std::string& given) {
  try {
    static_cast<void>(civil::PointFilter::parse(given));
    return {};
  } catch (const civil::PointFilterError& error) {
    return error.what();
  }
}

std::string complaintAboutPart(const std::string& given) {
  return shareOf(given) ? std::string() : "'" + given + "' is no share such as 3/8, the third of eight";
}

std::string complaintAboutLength(const std::string& given) {
  const double length = lengthOf(given);
  return length >= 0.0 && std::isfinite(length) ? std::string() : "'" + given + "' is no length of at least 0";
}

std::string complaintAboutPaper(const std::string& given) {
  return sheets::paperOf(given, false)
             ? std::string()
             : "'" + given + "' is neither A4 to A0 nor a size such as 900x600, width by height in millimetres from " +
                   std::to_string(static_cast<int>(sheets::kLeastSide)) + " to " +
                   std::to_string(static_cast<int>(sheets::kGreatestSide));
}

std::string complaintAboutScale(const std::string& given) {
  return sheets::scaleOf(given) ? std::string() : "'" + given + "' is no scale such as 200 or 1:200";
}

std::string complaintAboutExaggeration(const std::string& given) {
  constexpr double kMost = 1000.0;
  const double factor = lengthOf(given);
  return factor >= 1.0 && factor <= kMost ? std::string() : "'" + given + "' is no number from 1 to 1000";
}

std::string complaintAboutStation(const std::string& given) {
  return sheets::stationOf(given) ? std::string() : "'" + given + "' is no station such as 1200 or 1+200";
}

constexpr OptionGroup kPointsGroup{"Points", "Which points are meant: one of", true};
constexpr OptionGroup kSampleLinesGroup{"Sample lines", "Which sample lines are reported: one of", true};
constexpr OptionGroup kSectionLinesGroup{"Sample lines", "Which sections are drawn: one of", true};
constexpr OptionGroup kProfileGroup{"Profile", "Which profile is reported: one of", true};
constexpr OptionGroup kSheetGroup{"Sheets", "", false};
constexpr OptionGroup kRulesGroup{"Rules", "Where lines stand, how far they reach, what they are called", false};

constexpr int kMostJobsAtOnce = 1024;
constexpr int kMostSectionsOnSheet = 1000;
constexpr int kMostThreads = 1024;

constexpr std::string_view kSiteHelp =
    "Its site; \"\" for the alignments outside any site (default: where the name is)";
constexpr std::string_view kLinesHelp =
    "Rules of sample lines that are made for this report alone, such as every=20,ends,left=30,right=30";
constexpr std::string_view kModuleHelp = "Report module to load in place of the program's own";

/// Rows stand in the order of the helps, those of sample line rules between the two tables; where those differ, or their words, an option has a row for each.
// clang-format off
constexpr std::array kTable{
    // ---- arguments
    OptionDescription{.name = "DRAWING",
                      .commands = kDrawingCommands,
                      .field = [](Options& o) -> Field { return &o.drawing; },
                      .help = "LandXML file; - for standard input",
                      .isArgument = true,
                      .isRequired = true},
    OptionDescription{.name = "DRAWING",
                      .commands = Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.window.drawing; },
                      .help = "LandXML file to open",
                      .isArgument = true},
    OptionDescription{.name = "JOBS",
                      .commands = Command::Batch,
                      .field = [](Options& o) -> Field { return &o.batch.jobs; },
                      .help = "JSON Lines: a report a line; - for standard input",
                      .isArgument = true,
                      .isRequired = true},
    OptionDescription{.name = "SCRIPT",
                      .commands = Command::Play,
                      .field = [](Options& o) -> Field { return &o.play.script; },
                      .help = "JSON array of what a user does; - for standard input",
                      .isArgument = true,
                      .isRequired = true},
    OptionDescription{.name = "COMMAND",
                      .commands = Command::Dialog,
                      .field = [](Options& o) -> Field { return &o.dialog.command; },
                      .help = "projection, points, gls or a command of the module",
                      .isArgument = true,
                      .isRequired = true},

    // ---- the drawing's files
    OptionDescription{.name = "with",
                      .commands = kDrawingCommands | Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.files.with; },
                      .help = "One more file of the drawing; may be given many times",
                      .valueName = "FILE"},
    OptionDescription{.name = "convert-units",
                      .commands = kDrawingCommands,
                      .field = [](Options& o) -> Field { return &o.files.convertUnits; },
                      .help = "Convert files in another unit of length than DRAWING's, which are an error otherwise"},
    OptionDescription{.name = "convert-units",
                      .commands = Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.files.convertUnits; },
                      .help = "Convert files in another unit of length than DRAWING's, which are asked about otherwise"},
    OptionDescription{.name = "swap-axes",
                      .commands = kDrawingCommands | Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.files.swapAxes; },
                      .help = "A file of the drawing whose coordinates hold easting before northing; may be given many times",
                      .valueName = "FILE"},

    // ---- what to report
    OptionDescription{.name = "alignment",
                      .commands = Command::Projection | Command::Gls | Command::Lines | kBookCommands,
                      .field = [](Options& o) -> Field { return &o.report.alignment; },
                      .help = "Name of the alignment",
                      .valueName = "NAME",
                      .isRequired = true,
                      .names = NamesOf::Alignments},
    OptionDescription{.name = "alignment",
                      .commands = Command::Points,
                      .field = [](Options& o) -> Field { return &o.report.alignment; },
                      .help = "Name of the alignment that the points are measured against",
                      .valueName = "NAME",
                      .isRequired = true,
                      .names = NamesOf::Alignments},
    OptionDescription{.name = "site",
                      .commands = kJobCommands | Command::Lines,
                      .field = [](Options& o) -> Field { return &o.report.site; },
                      .help = kSiteHelp,
                      .valueName = "NAME",
                      .names = NamesOf::Sites},
    OptionDescription{.name = "profile",
                      .commands = Command::Gls,
                      .field = [](Options& o) -> Field { return &o.report.profile; },
                      .help = "Profile of the alignment",
                      .valueName = "NAME",
                      .names = NamesOf::Profiles,
                      .group = &kProfileGroup},
    OptionDescription{.name = "ground-profile",
                      .commands = Command::Gls,
                      .field = [](Options& o) -> Field { return &o.report.groundProfile; },
                      .help = "The ground of this surface under the alignment",
                      .valueName = "SURFACE",
                      .names = NamesOf::Surfaces,
                      .group = &kProfileGroup},
    OptionDescription{.name = "ground-tolerance",
                      .commands = Command::Gls,
                      .field = [](Options& o) -> Field { return &o.report.groundTolerance; },
                      .help = "Fewer points of --ground-profile, which stays this close to the ground (default: 0, a point at every edge of a triangle)",
                      .valueName = "LENGTH",
                      .check = {"LENGTH", complaintAboutLength},
                      .needs = "ground-profile"},
    OptionDescription{.name = "profile",
                      .commands = Command::Profile,
                      .field = [](Options& o) -> Field { return &o.report.profile; },
                      .help = "Design profile of the alignment (default: the first one that it has)",
                      .valueName = "NAME",
                      .names = NamesOf::Profiles},
    OptionDescription{.name = "ground-profile",
                      .commands = Command::Profile,
                      .field = [](Options& o) -> Field { return &o.report.groundProfile; },
                      .help = "The ground of this surface under the alignment (default: the ground profiles that the alignment has, else all surfaces)",
                      .valueName = "SURFACE",
                      .names = NamesOf::Surfaces},
    OptionDescription{.name = "group",
                      .commands = Command::Sections,
                      .field = [](Options& o) -> Field { return &o.report.group; },
                      .help = "Sample line group whose sections are drawn",
                      .valueName = "NAME",
                      .names = NamesOf::SampleLineGroups,
                      .group = &kSectionLinesGroup},
    OptionDescription{.name = "lines",
                      .commands = Command::Sections,
                      .field = [](Options& o) -> Field { return &o.report.lines; },
                      .help = "Rules of sample lines that are made for this book alone, such as every=20,ends,left=30,right=30",
                      .valueName = "RULES",
                      .check = {"RULES", complaintAboutLines},
                      .group = &kSectionLinesGroup},
    OptionDescription{.name = "surface",
                      .commands = Command::Sections,
                      .field = [](Options& o) -> Field { return &o.book.surfaces; },
                      .help = "Surface whose ground is drawn; may be given many times (default: all)",
                      .valueName = "NAME",
                      .names = NamesOf::Surfaces},
    OptionDescription{.name = "from",
                      .commands = kBookCommands,
                      .field = [](Options& o) -> Field { return &o.book.from; },
                      .help = "First station, as 1200 or 1+200 (default: where the alignment begins)",
                      .valueName = "STATION",
                      .check = {"STATION", complaintAboutStation}},
    OptionDescription{.name = "to",
                      .commands = kBookCommands,
                      .field = [](Options& o) -> Field { return &o.book.to; },
                      .help = "Last station (default: where the alignment ends)",
                      .valueName = "STATION",
                      .check = {"STATION", complaintAboutStation}},
    OptionDescription{.name = "out",
                      .commands = kBookCommands,
                      .field = [](Options& o) -> Field { return &o.report.stem; },
                      .help = "The file: book.pdf with all sheets, or book.svg; where there are several, each becomes a file: book-01.svg, book-02.svg",
                      .valueName = "FILE",
                      .isRequired = true},
    OptionDescription{.name = "paper",
                      .commands = kBookCommands,
                      .field = [](Options& o) -> Field { return &o.book.paper; },
                      .help = "A4, A3, A2, A1, A0, or width by height in millimetres as 900x600 (default: A3)",
                      .valueName = "SIZE",
                      .check = {"SIZE", complaintAboutPaper},
                      .group = &kSheetGroup},
    OptionDescription{.name = "orientation",
                      .commands = kBookCommands,
                      .field = [](Options& o) -> Field { return &o.book.orientation; },
                      .help = "How a paper of A4 to A0 lies: landscape or portrait (default: landscape)",
                      .choices = kOrientations,
                      .group = &kSheetGroup},
    OptionDescription{.name = "scale",
                      .commands = Command::Sections,
                      .field = [](Options& o) -> Field { return &o.book.scale; },
                      .help = "Scale as 200 or 1:200 (default: the largest usual one at which each section fits)",
                      .valueName = "SCALE",
                      .check = {"SCALE", complaintAboutScale},
                      .group = &kSheetGroup},
    OptionDescription{.name = "scale",
                      .commands = Command::Profile,
                      .field = [](Options& o) -> Field { return &o.book.scale; },
                      .help = "Scale along the stations, as 1000 or 1:1000 (default: the largest usual one at which all fits on one sheet, at least 1:1000)",
                      .valueName = "SCALE",
                      .check = {"SCALE", complaintAboutScale},
                      .group = &kSheetGroup},
    OptionDescription{.name = "exaggeration",
                      .commands = Command::Sections,
                      .field = [](Options& o) -> Field { return &o.book.exaggeration; },
                      .help = "How many times larger heights are drawn than widths (default: 1)",
                      .valueName = "X",
                      .check = {"X", complaintAboutExaggeration},
                      .group = &kSheetGroup},
    OptionDescription{.name = "exaggeration",
                      .commands = Command::Profile,
                      .field = [](Options& o) -> Field { return &o.book.exaggeration; },
                      .help = "How many times larger heights are drawn than lengths (default: 10)",
                      .valueName = "X",
                      .check = {"X", complaintAboutExaggeration},
                      .group = &kSheetGroup},
    OptionDescription{.name = "per-sheet",
                      .commands = Command::Sections,
                      .field = [](Options& o) -> Field { return &o.book.perSheet; },
                      .help = "Sections on a sheet at most (default: as many as fit)",
                      .valueName = "N",
                      .greatest = kMostSectionsOnSheet,
                      .group = &kSheetGroup},
    OptionDescription{.name = "grid",
                      .commands = kBookCommands,
                      .field = [](Options& o) -> Field { return &o.book.grid; },
                      .help = "Draw a grid with elevations",
                      .group = &kSheetGroup},
    OptionDescription{.name = "group",
                      .commands = Command::Projection,
                      .field = [](Options& o) -> Field { return &o.report.group; },
                      .help = "Sample line group whose lines are reported",
                      .valueName = "NAME",
                      .names = NamesOf::SampleLineGroups,
                      .group = &kSampleLinesGroup},
    OptionDescription{.name = "group",
                      .commands = Command::Gls,
                      .field = [](Options& o) -> Field { return &o.report.group; },
                      .help = "Sample line group whose stations get rows",
                      .valueName = "NAME",
                      .names = NamesOf::SampleLineGroups,
                      .group = &kSampleLinesGroup},
    OptionDescription{.name = "lines",
                      .commands = Command::Projection | Command::Gls,
                      .field = [](Options& o) -> Field { return &o.report.lines; },
                      .help = kLinesHelp,
                      .valueName = "RULES",
                      .check = {"RULES", complaintAboutLines},
                      .group = &kSampleLinesGroup},
    OptionDescription{.name = "surface",
                      .commands = Command::Projection,
                      .field = [](Options& o) -> Field { return &o.report.surface; },
                      .help = "Surface whose ground is sampled",
                      .valueName = "NAME",
                      .isRequired = true,
                      .names = NamesOf::Surfaces},
    OptionDescription{.name = "surface",
                      .commands = Command::Volumes,
                      .field = [](Options& o) -> Field { return &o.volumes.existing; },
                      .help = "Surface of the existing ground",
                      .valueName = "NAME",
                      .isRequired = true,
                      .names = NamesOf::Surfaces},
    OptionDescription{.name = "design",
                      .commands = Command::Volumes,
                      .field = [](Options& o) -> Field { return &o.volumes.design; },
                      .help = "Surface that the ground is to become",
                      .valueName = "NAME",
                      .isRequired = true,
                      .names = NamesOf::Surfaces},
    OptionDescription{.name = "point-group",
                      .commands = Command::Points,
                      .field = [](Options& o) -> Field { return &o.report.points.group; },
                      .help = "All points of this group",
                      .valueName = "NAME",
                      .names = NamesOf::PointGroups,
                      .group = &kPointsGroup},
    OptionDescription{.name = "points",
                      .commands = Command::Points,
                      .field = [](Options& o) -> Field { return &o.report.points.numbers; },
                      .help = "Points by their numbers, as if picked by hand: 1,5,7-9; or all",
                      .valueName = "NUMBERS",
                      .group = &kPointsGroup},
    OptionDescription{.name = "points",
                      .commands = Command::Group,
                      .field = [](Options& o) -> Field { return &o.report.points.numbers; },
                      .help = "Points by their numbers: 1,5,7-9; or all",
                      .valueName = "NUMBERS",
                      .group = &kPointsGroup},
    OptionDescription{.name = "points-where",
                      .commands = Command::Points | Command::Group,
                      .field = [](Options& o) -> Field { return &o.report.points.where; },
                      .help = "Points by what they are, such as description=TREE*; may be given many times",
                      .valueName = "CONDITIONS",
                      .check = {"CONDITIONS", complaintAboutConditions},
                      .group = &kPointsGroup},
    OptionDescription{.name = "surface-points",
                      .commands = Command::Points,
                      .field = [](Options& o) -> Field { return &o.report.points.ofSurface; },
                      .help = "The points of this surface, numbered for the report from west to east",
                      .valueName = "SURFACE",
                      .names = NamesOf::Surfaces,
                      .group = &kPointsGroup},
    OptionDescription{.name = "out",
                      .commands = kReportCommands,
                      .field = [](Options& o) -> Field { return &o.report.stem; },
                      .help = "Path of the report files without extension; .txt, .xls and .html are added",
                      .valueName = "STEM",
                      .isRequired = true},
    OptionDescription{.name = "add-sections",
                      .commands = Command::Gls,
                      .field = [](Options& o) -> Field { return &o.report.addSections; },
                      .help = "Add a section to every corridor region at each station of the report and rebuild"},
    OptionDescription{.name = "save",
                      .commands = Command::Gls,
                      .field = [](Options& o) -> Field { return &o.report.saveTo; },
                      .help = "Save the drawing with its added sections; may be DRAWING itself",
                      .valueName = "FILE",
                      .emptyText = EmptyText::None,
                      .needs = "add-sections"},

    // ---- what to make
    OptionDescription{.name = "name",
                      .commands = kMakingCommands,
                      .field = [](Options& o) -> Field { return &o.newGroup.name; },
                      .help = "Name of the new group",
                      .valueName = "NAME",
                      .isRequired = true},
    OptionDescription{.name = "replace",
                      .commands = kMakingCommands,
                      .field = [](Options& o) -> Field { return &o.newGroup.replace; },
                      .help = "Replace what a group of that name holds"},
    OptionDescription{.name = "save",
                      .commands = kMakingCommands,
                      .field = [](Options& o) -> Field { return &o.report.saveTo; },
                      .help = "Save DRAWING into this file (default: in place, whichever of the files changed)",
                      .valueName = "FILE",
                      .emptyText = EmptyText::None},
    OptionDescription{.name = "rules",
                      .commands = Command::Lines,
                      .field = [](Options& o) -> Field { return &o.lines.rules; },
                      .help = "Rules in one text, beside those below: every=20,ends,left=30",
                      .valueName = "RULES",
                      .group = &kRulesGroup},

    // ---- of single commands
    OptionDescription{.name = "jobs",
                      .commands = Command::Batch,
                      .field = [](Options& o) -> Field { return &o.batch.atOnce; },
                      .help = "Reports at a time (default: as many as there are processors)",
                      .valueName = "N",
                      .greatest = kMostJobsAtOnce},
    OptionDescription{.name = "base",
                      .commands = Command::Batch,
                      .field = [](Options& o) -> Field { return &o.batch.base; },
                      .help = "Folder from which relative paths in jobs are seen, or 'jobs' for the job file's own (default: the current folder)",
                      .valueName = "FOLDER",
                      .emptyText = EmptyText::None},
    OptionDescription{.name = "part",
                      .commands = Command::Batch,
                      .field = [](Options& o) -> Field { return &o.batch.part; },
                      .help = "Run the K-th of N shares of the jobs: whole drawings, sizes evened out, the same share wherever it is asked for",
                      .valueName = "K/N",
                      .emptyText = EmptyText::None,
                      .check = {"K/N", complaintAboutPart}},
    OptionDescription{.name = "journal",
                      .commands = Command::Batch,
                      .field = [](Options& o) -> Field { return &o.batch.journal; },
                      .help = "Write down each job when it ends: its files with bytes and hash, exit code, seconds, words",
                      .valueName = "FILE",
                      .emptyText = EmptyText::None},
    OptionDescription{.name = "resume",
                      .commands = Command::Batch,
                      .field = [](Options& o) -> Field { return &o.batch.resume; },
                      .help = "Go on by the journal: run only what isn't done, or whose drawing, messages, options, program or files changed",
                      .needs = "journal"},
    OptionDescription{.name = "summary",
                      .commands = Command::Batch,
                      .field = [](Options& o) -> Field { return &o.batch.summary; },
                      .help = "Write a JSON object at the end: how many jobs were done, failed, broken off and not begun",
                      .valueName = "FILE",
                      .emptyText = EmptyText::None},
    OptionDescription{.name = "merge",
                      .commands = Command::Batch,
                      .field = [](Options& o) -> Field { return &o.batch.merge; },
                      .help = "Run nothing: put one summary together from the journals of shares; may be given many times",
                      .valueName = "JOURNAL"},
    OptionDescription{.name = "check",
                      .commands = Command::Play,
                      .field = [](Options& o) -> Field { return &o.play.checks; },
                      .help = "Also report what the module didn't give back to its host"},
    OptionDescription{.name = "windows",
                      .commands = Command::Play,
                      .field = [](Options& o) -> Field { return &o.play.windows; },
                      .help = "Dialogs are windows of the system, which the script works and which are read back (on Windows)"},
};

/// Behind the rows of the rules.
constexpr std::array kCommonTable{
    // ---- of every command, and of the windows
    OptionDescription{.name = "forms",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.forms; },
                      .help = "Forms to write: txt, xls, html, joined by commas (default: all)",
                      .check = {"FORMS", complaintAboutForms},
                      .group = &kCommonGroup},
    OptionDescription{.name = "overwrite",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.overwrite; },
                      .help = "Replace files that exist",
                      .excludes = "keep",
                      .group = &kCommonGroup},
    OptionDescription{.name = "keep",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.keep; },
                      .help = "Keep files that exist (default: ask on a terminal, keep otherwise)",
                      .excludes = "overwrite",
                      .group = &kCommonGroup},
    OptionDescription{.name = "lang",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.host.language; },
                      .help = "Language of the reports: en or de (default: en)",
                      .choices = kLanguages,
                      .group = &kCommonGroup},
    OptionDescription{.name = "lang",
                      .commands = Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.common.host.language; },
                      .help = "Language of windows, reports and help: en or de (default: the system's)",
                      .valueName = "LANGUAGE",
                      .choices = kLanguages},
    OptionDescription{.name = "scheme",
                      .commands = Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.window.scheme; },
                      .help = "Colours: system, light or dark (default: as last chosen)",
                      .valueName = "SCHEME",
                      .choices = kSchemes},
    OptionDescription{.name = "messages",
                      .commands = kEveryCommand | Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.common.host.messages; },
                      .help = "Message file to use in place of the language's own",
                      .valueName = "FILE",
                      .emptyText = EmptyText::None,
                      .group = &kCommonGroup},
    OptionDescription{.name = "module",
                      .commands = Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.common.host.module; },
                      .help = kModuleHelp,
                      .valueName = "FILE",
                      .emptyText = EmptyText::None},
    OptionDescription{.name = "release",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.host.release; },
                      .help = "Host release that the headers show; empty for none (default: R24.3)",
                      .valueName = "TEXT",
                      .emptyText = EmptyText::None,
                      .group = &kCommonGroup},
    OptionDescription{.name = "release",
                      .commands = Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.common.host.release; },
                      .help = "Host release that report headers show; empty for none (default: R24.3)",
                      .valueName = "TEXT",
                      .emptyText = EmptyText::None},
    OptionDescription{.name = "report-code-page",
                      .commands = kEveryCommand | Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.common.host.reportCodePage; },
                      .help = "Single-byte code page of text and HTML reports, by its iconv name (default: U+0000 to U+00FF as bytes)",
                      .valueName = "NAME",
                      .emptyText = EmptyText::None,
                      .group = &kCommonGroup},
    OptionDescription{.name = "message-code-page",
                      .commands = kEveryCommand | Command::Desktop,
                      .field = [](Options& o) -> Field { return &o.common.host.messageCodePage; },
                      .help = "Code page of message files, by its iconv name (default: WINDOWS-1252)",
                      .valueName = "NAME",
                      .group = &kCommonGroup},
    OptionDescription{.name = "module",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.host.module; },
                      .help = kModuleHelp,
                      .valueName = "FILE",
                      .emptyText = EmptyText::None,
                      .group = &kCommonGroup},
    OptionDescription{.name = "workbook",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.host.workbook; },
                      .help = "Who writes workbooks: excel or file, this program (default: Excel where it is registered)",
                      .valueName = "WRITER",
                      .choices = kWorkbookWriters,
                      .group = &kCommonGroup},
    OptionDescription{.name = "threads",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.threads; },
                      .help = "Threads that read the drawing and pack large workbooks (default: as many as there are processors; in a batch 1 for each drawing)",
                      .valueName = "N",
                      .greatest = kMostThreads,
                      .group = &kCommonGroup},
    OptionDescription{.name = "progress",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.progress; },
                      .help = "Progress on standard error: auto, always or never (default: auto)",
                      .choices = kProgressModes,
                      .group = &kCommonGroup},
    OptionDescription{.name = "quiet",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.common.quiet; },
                      .help = "Say nothing but errors",
                      .group = &kCommonGroup},
    OptionDescription{.name = "json",
                      .commands = kEveryCommand,
                      .field = [](Options& o) -> Field { return &o.json; },
                      .help = "Standard output is one JSON document: results, files written with bytes and hash, diagnostics, seconds, exit code",
                      .group = &kCommonGroup},
};
// clang-format on

// ---------------------------------------------------------------- sample line rules

template <std::size_t Key>
Field flagOfRule(Options& options) {
  return &options.lines.keys[Key].isSet;
}
template <std::size_t Key>
Field textOfRule(Options& options) {
  return &options.lines.keys[Key].text;
}

/// A row for each key of the rules, under the key's own name but for one that `name` has already.
template <std::size_t... Keys>
std::vector<OptionDescription> rowsOfRules(std::index_sequence<Keys...> /*all*/) {
  static std::array<std::string, sizeof...(Keys)> helps;
  std::vector<OptionDescription> rows;
  const auto add = [&](std::size_t index, auto flag, auto text) {
    const civil::SampleLineKey& key = civil::sampleLineKeys()[index];
    helps[index] = key.meaning;
    helps[index].front() = static_cast<char>(std::toupper(static_cast<unsigned char>(helps[index].front())));
    const bool isFlag = key.value == "yes";
    OptionDescription row{.name = key.key == "name" ? "names" : key.key,
                          .commands = Command::Lines,
                          .field = isFlag ? flag : text,
                          .help = helps[index],
                          .valueName = isFlag ? std::string_view() : key.value,
                          .names = key.key == "border"    ? NamesOf::Surfaces
                                   : key.key == "profile" ? NamesOf::Profiles
                                                          : NamesOf::Nothing,
                          .group = &kRulesGroup};
    rows.push_back(row);
  };
  (add(Keys, &flagOfRule<Keys>, &textOfRule<Keys>), ...);
  return rows;
}

const std::vector<OptionDescription>& wholeTable() {
  static const std::vector<OptionDescription> table = [] {
    std::vector<OptionDescription> rows(kTable.begin(), kTable.end());
    for (const OptionDescription& row : rowsOfRules(std::make_index_sequence<civil::kSampleLineKeyCount>()))
      rows.push_back(row);
    rows.insert(rows.end(), kCommonTable.begin(), kCommonTable.end());
    return rows;
  }();
  return table;
}

int numberOf(const OptionDescription& option, const std::string& value) {
  int number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size() || number < 1 || number > option.greatest)
    throw std::invalid_argument("--" + std::string(option.name) + " is '" + value + "', which is no number from 1 to " +
                                std::to_string(option.greatest));
  return number;
}

void requireValid(const OptionDescription& option, const std::string& value) {
  if (!option.choices.empty() && std::find(option.choices.begin(), option.choices.end(), value) == option.choices.end())
    throw std::invalid_argument("--" + std::string(option.name) + " is '" + value + "'; there is " +
                                listed(option.choices));
  if (option.check.complaint == nullptr) return;
  if (const std::string complaint = option.check.complaint(value); !complaint.empty())
    throw std::invalid_argument("--" + std::string(option.name) + ": " + complaint);
}

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

bool OptionDescription::isFlag() const {
  Options options;
  return std::holds_alternative<bool*>(field(options));
}

bool OptionDescription::isList() const {
  Options options;
  return std::holds_alternative<std::vector<std::string>*>(field(options));
}

std::span<const OptionDescription> optionTable() { return wholeTable(); }

std::vector<const OptionDescription*> optionsOf(Command command) {
  std::vector<const OptionDescription*> options;
  for (const OptionDescription& option : wholeTable())
    if (option.commands.contains(command)) options.push_back(&option);
  return options;
}

std::vector<const OptionDescription*> commonOptions() {
  std::vector<const OptionDescription*> options;
  for (const OptionDescription& option : wholeTable())
    if (option.commands.contains(kEveryCommand)) options.push_back(&option);
  return options;
}

void apply(const OptionDescription& option, Options& options, const std::string& value) {
  requireValid(option, value);
  const bool isNone = value.empty() && option.emptyText == EmptyText::None;
  std::visit(Overloaded{[](bool* on) { *on = true; }, [&](std::string* text) { *text = value; },
                        [&](std::optional<std::string>* text) {
                          *text = isNone ? std::nullopt : std::optional<std::string>(value);
                        },
                        [&](std::optional<int>* number) { *number = numberOf(option, value); },
                        [&](std::vector<std::string>* list) { list->push_back(value); }},
             option.field(options));
}

std::optional<std::string> valueOf(const OptionDescription& option, const Options& options) {
  Options read = options;  // fields are found in options that may be written
  return std::visit(Overloaded{[](const bool* on) { return *on ? std::optional<std::string>("true") : std::nullopt; },
                               [](const std::string* text) { return std::optional<std::string>(*text); },
                               [](const std::optional<std::string>* text) { return *text; },
                               [](const std::optional<int>* number) {
                                 return *number ? std::optional<std::string>(std::to_string(**number)) : std::nullopt;
                               },
                               [](const std::vector<std::string>* list) {
                                 return list->empty() ? std::nullopt : std::optional<std::string>(list->back());
                               }},
                    option.field(read));
}

bool isPath(const OptionDescription& option) {
  return option.valueName == "FILE" || option.valueName == "STEM" || option.name == "DRAWING";
}

double lengthOf(const std::string& value) {
  double length = 0.0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), length);
  return error == std::errc() && end == value.data() + value.size() ? length : std::numeric_limits<double>::quiet_NaN();
}

std::optional<Share> shareOf(std::string_view value) {
  constexpr std::size_t kMostShares = 1'000'000;
  Share share;
  const char* const end = value.data() + value.size();
  const auto [slash, error] = std::from_chars(value.data(), end, share.number);
  if (error != std::errc() || slash == end || *slash != '/') return std::nullopt;
  const auto [last, secondError] = std::from_chars(slash + 1, end, share.count);
  if (secondError != std::errc() || last != end) return std::nullopt;
  const bool isShare = share.number >= 1 && share.number <= share.count && share.count <= kMostShares;
  return isShare ? std::optional(share) : std::nullopt;
}

std::string listed(std::span<const std::string_view> choices) {
  std::string list;
  for (std::size_t i = 0; i < choices.size(); ++i) {
    if (i > 0) list += i + 1 < choices.size() ? ", " : " and ";
    list += choices[i];
  }
  return list;
}

}  // namespace lvx::options
