#include "options/commands.h"

#include <array>
#include <string>

#include "host/dialog_controls.h"

namespace lvx::options {

namespace {

// One literal a line of the output, however wide.
// clang-format off

constexpr std::string_view kInfoFooter =
    "Examples:\n"
    "  lvxhost info examples/valley-road.xml\n"
    "      sites, alignments with their elements, profiles, sample line groups, surfaces, points,\n"
    "      corridors, and what the reader found odd, with its line in the file\n"
    "  lvxhost info examples/valley-road.xml --json | jq '.surfaces[].name'\n";

constexpr std::string_view kProjectionFooter =
    "Examples:\n"
    "  lvxhost projection examples/valley-road.xml --alignment 'Valley road' \\\n"
    "      --group 'Cross sections 20 m' --surface 'Existing ground' --out out/valley-road\n"
    "      writes out/valley-road.txt, .xls and .html: for each sample line the offsets and elevations\n"
    "      of the ground from far left to far right\n"
    "  lvxhost projection drawing.xml --alignment A1 --site \"\" --group SL --surface Ground \\\n"
    "      --out a1 --forms txt,html --overwrite\n"
    "      an alignment outside any site, two forms, into the current folder\n"
    "  lvxhost projection road.xml --with ground.xml --alignment A1 --group SL --surface Ground --out a1\n"
    "      the alignment of one file over the ground of another\n";

constexpr std::string_view kPointsFooter =
    "Examples:\n"
    "  lvxhost points examples/valley-road.xml --alignment 'Valley road' \\\n"
    "      --point-group 'Control points' --out out/control-points\n"
    "      writes out/control-points.txt, .xls and .html: number, coordinates, texts, station and offset\n"
    "      of each point, in ascending order of stations\n"
    "  lvxhost points examples/valley-road.xml --alignment 'Mill lane' --points 1,5,7-9 --out some \\\n"
    "      --forms txt\n"
    "      five points by their numbers, the text form alone\n";

constexpr std::string_view kGlsFooter =
    "Examples:\n"
    "  lvxhost gls examples/valley-road.xml --alignment 'Valley road' --profile 'Valley road design' \\\n"
    "      --group 'Cross sections 20 m' --out out/valley-road-gls\n"
    "      one table: stations, vertical design, cross-falls, widths, edges, horizontal elements\n"
    "  lvxhost gls examples/valley-road.xml --alignment 'Mill lane' --profile 'Mill lane design' \\\n"
    "      --group 'Mill lane 25 m' --out mill --add-sections --save mill.xml\n"
    "      the same after adding corridor sections, and the drawing with them in another file\n";

constexpr std::string_view kBatchFooter =
    "Each line is an object with a report command, its drawing and its options under their own names; blank lines are\n"
    "skipped. Paths are seen from the current folder. An option that may be given many times takes a list, as in\n"
    "\"with\": [\"ground.xml\", \"points.xml\"]. The common options hold for every job without its own:\n"
    "  {\"command\": \"points\", \"drawing\": \"road.xml\", \"alignment\": \"A1\", \"point-group\": \"Edge\", \"out\": \"edge\"}\n"
    "Example:\n"
    "  lvxhost batch examples/reports.jsonl --jobs 4 --overwrite\n"
    "      every report in a process of its own; one that fails doesn't stop the others\n";

/// The controls are those of the report dialogs, by the numbers that scripts use.
std::string playFooter() {
  const auto number = [](int control) { return std::to_string(control); };
  return
    "Actions, taken one by one by whatever waits:\n"
    "  {\"command\": \"lvx_Report_Que\"}               start a command\n"
    "  {\"select\": " + number(host::kIdSites) + ", \"row\": 0}                   select a row of a list, or by its \"text\"\n"
    "  {\"type\": " + number(host::kIdOutputStem) + ", \"text\": \"out/road\"}          type into an edit box\n"
    "  {\"tick\": " + number(host::kIdCheckExcel) + ", \"on\": false}                 tick a check box or not\n"
    "  {\"click\": " + number(host::kIdOk) + "}   {\"close\": true}             press a button; close the dialog by its mark\n"
    "  {\"pick\": \"1F4\"}   {\"escape\": true}         pick an object by its handle; give up a pick\n"
    "  {\"pick\": {\"name\": \"Ground\", \"class\": \"QMT_TIN_SURFACE\"}}\n"
    "  {\"pickPoints\": [1, 5]}                     select points by their numbers\n"
    "  {\"file\": \"out/road.html\"}                 answer the file box; null cancels it\n"
    "  {\"answer\": \"yes\"}                         answer a message box: ok, cancel, yes, no, retry\n"
    "  {\"snapshot\": true}                        show the open dialog once more\n"
    "The transcript has one JSON event a line: dialog, changed, closed, box, prompt, console, filebox, help,\n"
    "written, unwritten, removed, exception, misuse, end.\n"
    "Example:\n"
    "  lvxhost play examples/valley-road.xml examples/scripts/plain-run.json\n";
}

// clang-format on

}  // namespace

std::span<const CommandDescription> commands() {
  static const std::string playText = playFooter();
  static const std::array<CommandDescription, 6> commands{{
      {Command::Info, "info", "Tell what a drawing holds", kInfoFooter},
      {Command::Projection, "projection", "Write the profile projection report: the ground across an alignment",
       kProjectionFooter},
      {Command::Points, "points", "Write the points report: points with station and offset against an alignment",
       kPointsFooter},
      {Command::Gls, "gls", "Write the GLS report: an alignment with its profile and corridors in one table",
       kGlsFooter},
      {Command::Batch, "batch", "Write many reports from a file of jobs", kBatchFooter},
      {Command::Play, "play", "Run commands by a script of what a user does", playText},
  }};
  return commands;
}

const CommandDescription* findCommand(std::string_view name) {
  for (const CommandDescription& command : commands())
    if (command.name == name) return &command;
  return nullptr;
}

}  // namespace lvx::options
