#include <exception>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/batch_command.h"
#include "cli/failure.h"
#include "cli/gls_command.h"
#include "cli/info_command.h"
#include "cli/options.h"
#include "cli/play_command.h"
#include "cli/points_command.h"
#include "cli/projection_command.h"
#include "cli/terminal.h"
#include "host/dialog_controls.h"
#include "runtime/open_drawing.h"
#include "standin_platform/interruption.h"
#include "standin_platform/standard_streams.h"

namespace lvx::cli {
namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 everything asked for was written; 1 something was not, said on standard error; 2 usage; 3 the "
    "drawing "
    "can't be read or saved; 4 a name isn't in the drawing or stands in several sites; 5 a script doesn't fit what the "
    "command waits for; 70 the command ended by an "
    "exception; 130 interrupted.";

std::string checkForms(const std::string& given) {
  std::size_t start = 0;
  while (start <= given.size()) {
    const std::size_t comma = std::min(given.find(',', start), given.size());
    const std::string form = given.substr(start, comma - start);
    if (form != "txt" && form != "xls" && form != "html")
      return "'" + form + "' is no form of a report; there is txt, xls, html";
    start = comma + 1;
  }
  return {};
}

/// Options that stand before or behind the name of the command.
void addCommonOptions(CLI::App& app, CommonOptions& options) {
  const std::string group = "Common options";
  app.add_option("--forms", options.forms, "Forms to write: txt, xls, html, joined by commas (default: all)")
      ->check(CLI::Validator(checkForms, "FORMS"))
      ->group(group);
  auto* overwrite = app.add_flag("--overwrite", options.overwrite, "Replace files that exist")->group(group);
  app.add_flag("--keep", options.keep, "Keep files that exist (default: ask on a terminal, keep otherwise)")
      ->excludes(overwrite)
      ->group(group);
  app.add_option("--lang", options.language, "Language of the reports: en or de (default: en)")
      ->check(CLI::IsMember({"en", "de"}))
      ->group(group);
  app.add_option("--messages", options.messages, "Message file to use in place of the language's own")
      ->type_name("FILE")
      ->group(group);
  app.add_option("--release", options.release, "Host release that the headers show; empty for none (default: R24.3)")
      ->type_name("TEXT")
      ->group(group);
  app.add_option(
         "--report-code-page", options.reportCodePage,
         "Single-byte code page of text and HTML reports, by its iconv name (default: U+0000 to U+00FF as bytes)")
      ->type_name("NAME")
      ->group(group);
  app.add_option("--message-code-page", options.messageCodePage,
                 "Code page of message files, by its iconv name (default: WINDOWS-1252)")
      ->type_name("NAME")
      ->group(group);
  app.add_option("--module", options.module, "Report module to load in place of the program's own")
      ->type_name("FILE")
      ->group(group);
  app.add_option("--progress", options.progress, "Progress on standard error: auto, always or never (default: auto)")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->group(group);
  app.add_flag("--quiet", options.quiet, "Say nothing but errors")->group(group);
}

void addInfo(CLI::App& app, InfoOptions& options) {
  app.add_option("DRAWING", options.drawing, "LandXML file")->required();
  app.add_flag("--json", options.json, "Write a form that programs read");
  app.footer(
      "Examples:\n"
      "  lvxhost info examples/valley-road.xml\n"
      "      sites, alignments with their elements, profiles, sample line groups, surfaces, points,\n"
      "      corridors, and what the reader found odd, with its line in the file\n"
      "  lvxhost info examples/valley-road.xml --json | jq '.surfaces[].name'\n");
}

void addProjection(CLI::App& app, ProjectionOptions& options) {
  app.add_option("DRAWING", options.drawing, "LandXML file")->required();
  app.add_option("--alignment", options.alignment, "Name of the alignment")->required()->type_name("NAME");
  app.add_option("--site", options.site,
                 "Its site; \"\" for the alignments outside any site (default: where the name is)")
      ->type_name("NAME");
  app.add_option("--group", options.group, "Sample line group whose lines are reported")->required()->type_name("NAME");
  app.add_option("--surface", options.surface, "Surface whose ground is sampled")->required()->type_name("NAME");
  app.add_option("--out", options.stem, "Path of the report files without extension; .txt, .xls and .html are added")
      ->required()
      ->type_name("STEM");
  app.footer(
      "Examples:\n"
      "  lvxhost projection examples/valley-road.xml --alignment 'Valley road' \\\n"
      "      --group 'Cross sections 20 m' --surface 'Existing ground' --out out/valley-road\n"
      "      writes out/valley-road.txt, .xls and .html: for each sample line the offsets and elevations\n"
      "      of the ground from far left to far right\n"
      "  lvxhost projection drawing.xml --alignment A1 --site \"\" --group SL --surface Ground \\\n"
      "      --out a1 --forms txt,html --overwrite\n"
      "      an alignment outside any site, two forms, into the current folder\n");
}

void addPoints(CLI::App& app, PointsOptions& options) {
  app.add_option("DRAWING", options.drawing, "LandXML file")->required();
  app.add_option("--alignment", options.alignment, "Name of the alignment that the points are measured against")
      ->required()
      ->type_name("NAME");
  app.add_option("--site", options.site,
                 "Its site; \"\" for the alignments outside any site (default: where the name is)")
      ->type_name("NAME");
  CLI::Option_group* source = app.add_option_group("Points", "Which points are reported: one of");
  source->add_option("--point-group", options.group, "All points of this group")->type_name("NAME");
  source->add_option("--points", options.points, "Points by their numbers, as if picked by hand: 1,5,7-9")
      ->type_name("NUMBERS");
  source->require_option(1);
  app.add_option("--out", options.stem, "Path of the report files without extension; .txt, .xls and .html are added")
      ->required()
      ->type_name("STEM");
  app.footer(
      "Examples:\n"
      "  lvxhost points examples/valley-road.xml --alignment 'Valley road' \\\n"
      "      --point-group 'Control points' --out out/control-points\n"
      "      writes out/control-points.txt, .xls and .html: number, coordinates, texts, station and offset\n"
      "      of each point, in ascending order of stations\n"
      "  lvxhost points examples/valley-road.xml --alignment 'Mill lane' --points 1,5,7-9 --out some \\\n"
      "      --forms txt\n"
      "      five points by their numbers, the text form alone\n");
}

void addBatch(CLI::App& app, BatchOptions& options) {
  app.add_option("JOBS", options.jobs, "JSON Lines: a report a line")->required();
  app.add_option("--jobs", options.atOnce, "Reports at a time (default: as many as there are processors)")
      ->check(CLI::Range(1, 1024))
      ->type_name("N");
  app.footer(
      "Each line is an object with a report command, its drawing and its options under their own names; blank lines "
      "are\n"
      "skipped. Paths are seen from the current folder. The common options hold for every job without its own:\n"
      "  {\"command\": \"points\", \"drawing\": \"road.xml\", \"alignment\": \"A1\", \"point-group\": \"Edge\", "
      "\"out\": \"edge\"}\n"
      "Example:\n"
      "  lvxhost batch examples/reports.jsonl --jobs 4 --overwrite\n"
      "      every report in a process of its own; one that fails doesn't stop the others\n");
}

void addPlay(CLI::App& app, PlayOptions& options) {
  app.add_option("DRAWING", options.drawing, "LandXML file")->required();
  app.add_option("SCRIPT", options.script, "JSON array of what a user does")->required();
  app.add_flag("--check", options.checks, "Also report what the module didn't give back to its host");
  app.footer(std::string("Actions, taken one by one by whatever waits:\n") +
             "  {\"command\": \"lvx_Report_Que\"}               start a command\n"
             "  {\"select\": " +
             std::to_string(host::kIdSites) +
             ", \"row\": 0}                   select a row of a list, or by its \"text\"\n"
             "  {\"type\": " +
             std::to_string(host::kIdOutputStem) +
             ", \"text\": \"out/road\"}          type into an edit box\n"
             "  {\"tick\": " +
             std::to_string(host::kIdCheckExcel) +
             ", \"on\": false}                 tick a check box or not\n"
             "  {\"click\": " +
             std::to_string(host::kIdOk) +
             "}   {\"close\": true}             press a button; close the dialog by its mark\n"
             "  {\"pick\": \"1F4\"}   {\"escape\": true}         pick an object by its handle; give up a pick\n"
             "  {\"pick\": {\"name\": \"Ground\", \"class\": \"QMT_TIN_SURFACE\"}}\n"
             "  {\"pickPoints\": [1, 5]}                     select points by their numbers\n"
             "  {\"file\": \"out/road.html\"}                 answer the file box; null cancels it\n"
             "  {\"answer\": \"yes\"}                         answer a message box: ok, cancel, yes, no, retry\n"
             "  {\"snapshot\": true}                        show the open dialog once more\n"
             "The transcript has one JSON event a line: dialog, changed, closed, box, prompt, console, filebox, help,\n"
             "written, unwritten, removed, exception, misuse, end.\n"
             "Example:\n"
             "  lvxhost play examples/valley-road.xml examples/scripts/plain-run.json\n");
}

void addGls(CLI::App& app, GlsOptions& options) {
  app.add_option("DRAWING", options.drawing, "LandXML file")->required();
  app.add_option("--alignment", options.alignment, "Name of the alignment")->required()->type_name("NAME");
  app.add_option("--site", options.site,
                 "Its site; \"\" for the alignments outside any site (default: where the name is)")
      ->type_name("NAME");
  app.add_option("--profile", options.profile, "Profile of the alignment")->required()->type_name("NAME");
  app.add_option("--group", options.group, "Sample line group whose stations get rows")->required()->type_name("NAME");
  app.add_option("--out", options.stem, "Path of the report files without extension; .txt, .xls and .html are added")
      ->required()
      ->type_name("STEM");
  auto* add = app.add_flag("--add-sections", options.addSections,
                           "Add a section to every corridor region at each station of the report and rebuild");
  app.add_option("--save", options.saveTo, "Save the drawing with its added sections; may be DRAWING itself")
      ->type_name("FILE")
      ->needs(add);
  app.footer(
      "Examples:\n"
      "  lvxhost gls examples/valley-road.xml --alignment 'Valley road' --profile 'Valley road design' \\\n"
      "      --group 'Cross sections 20 m' --out out/valley-road-gls\n"
      "      one table: stations, vertical design, cross-falls, widths, edges, horizontal elements\n"
      "  lvxhost gls examples/valley-road.xml --alignment 'Mill lane' --profile 'Mill lane design' \\\n"
      "      --group 'Mill lane 25 m' --out mill --add-sections --save mill.xml\n"
      "      the same after adding corridor sections, and the drawing with them in another file\n");
}

int run(int argc, char** argv) {
  CommonOptions common;
  InfoOptions info;
  ProjectionOptions projection;
  PointsOptions points;
  GlsOptions gls;
  BatchOptions batch;
  PlayOptions play;

  CLI::App app("lvxhost opens LandXML drawings and runs the road reports on them, without windows.", "lvxhost");
  app.set_version_flag("--version", "lvxhost " LVX_VERSION);
  app.require_subcommand(1);
  app.footer(std::string("Example:\n"
                         "  lvxhost info examples/valley-road.xml\n"
                         "Each command has its own --help with examples.\n\n") +
             kExitCodes);
  addCommonOptions(app, common);
  CLI::App* infoCommand = app.add_subcommand("info", "Tell what a drawing holds");
  addInfo(*infoCommand, info);
  addCommonOptions(*infoCommand, common);
  CLI::App* projectionCommand =
      app.add_subcommand("projection", "Write the profile projection report: the ground across an alignment");
  addProjection(*projectionCommand, projection);
  addCommonOptions(*projectionCommand, common);
  CLI::App* pointsCommand =
      app.add_subcommand("points", "Write the points report: points with station and offset against an alignment");
  addPoints(*pointsCommand, points);
  addCommonOptions(*pointsCommand, common);
  CLI::App* glsCommand =
      app.add_subcommand("gls", "Write the GLS report: an alignment with its profile and corridors in one table");
  addGls(*glsCommand, gls);
  addCommonOptions(*glsCommand, common);
  CLI::App* batchCommand = app.add_subcommand("batch", "Write many reports from a file of jobs");
  addBatch(*batchCommand, batch);
  addCommonOptions(*batchCommand, common);
  CLI::App* playCommand = app.add_subcommand("play", "Run commands by a script of what a user does");
  addPlay(*playCommand, play);
  addCommonOptions(*playCommand, common);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    finishOutput();
    return code == 0 ? kDone : kUsage;
  }
  if (common.overwrite && common.keep) throw Failure(kUsage, "--overwrite and --keep exclude each other");
  projection.siteGiven = projectionCommand->count("--site") > 0;
  points.siteGiven = pointsCommand->count("--site") > 0;
  gls.siteGiven = glsCommand->count("--site") > 0;
  points.pointsGiven = pointsCommand->count("--points") > 0;

  ExitCode code = kDone;
  if (infoCommand->parsed()) code = runInfo(common, info);
  if (projectionCommand->parsed()) code = runProjection(common, projection);
  if (pointsCommand->parsed()) code = runPoints(common, points);
  if (glsCommand->parsed()) code = runGls(common, gls);
  if (batchCommand->parsed()) code = runBatch(common, batch);
  if (playCommand->parsed()) code = runPlay(common, play);
  finishOutput();
  return code;
}

int runGuarded(int argc, char** argv) {
  standin_platform::guardStandardStreams();
  standin_platform::watchInterruption();
  try {
    return run(argc, argv);
  } catch (const Failure& failure) {
    say(failure.what());
    return failure.code();
  } catch (const runtime::Interrupted&) {
    say("interrupted; no unfinished file was left");
    return kInterrupted;
  } catch (const std::exception& error) {
    say(std::string("the command ended by an exception: ") + error.what());
    return kException;
  }
}

}  // namespace
}  // namespace lvx::cli

int main(int argc, char** argv) { return lvx::cli::runGuarded(argc, argv); }
