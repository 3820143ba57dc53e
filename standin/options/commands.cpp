#include "options/commands.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "civil/point_filter.h"
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
    "  lvxhost projection drawing.xml --alignment A1 --lines every=20,ends,left=30,right=30 \\\n"
    "      --surface Ground --out a1\n"
    "      over sample lines made for this report; 'lvxhost lines --help' tells the rules\n"
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
    "      five points by their numbers, the text form alone\n"
    "  lvxhost points drawing.xml --alignment A1 --points all --out all\n"
    "  lvxhost points drawing.xml --alignment A1 --points-where 'description=TREE*,elevation=100..120' --out trees\n"
    "      points by what they are\n"
    "  lvxhost points road.xml --with ground.xml --alignment A1 --surface-points Ground --out ground\n"
    "      the points of a surface, where the drawing has no others\n"
    "\n";

constexpr std::string_view kGlsFooter =
    "Examples:\n"
    "  lvxhost gls examples/valley-road.xml --alignment 'Valley road' --profile 'Valley road design' \\\n"
    "      --group 'Cross sections 20 m' --out out/valley-road-gls\n"
    "      one table: stations, vertical design, cross-falls, widths, edges, horizontal elements\n"
    "  lvxhost gls examples/valley-road.xml --alignment 'Mill lane' --profile 'Mill lane design' \\\n"
    "      --group 'Mill lane 25 m' --out mill --add-sections --save mill.xml\n"
    "      the same after adding corridor sections, and the drawing with them in another file\n"
    "  lvxhost gls drawing.xml --alignment A1 --ground-profile Ground --ground-tolerance 0.02 \\\n"
    "      --lines every=20,ends --out a1\n"
    "      without profile and sample lines in the drawing: the ground under the alignment, a line every 20;\n"
    "      'lvxhost lines --help' tells the rules\n";

constexpr std::string_view kSectionsFooter =
    "Examples:\n"
    "  lvxhost sections examples/valley-road.xml --alignment 'Valley road' --group 'Cross sections 20 m' \\\n"
    "      --out out/sections.pdf\n"
    "      a book of all sections, some on each sheet, with offsets and elevations of ground and design\n"
    "  lvxhost sections examples/valley-road.xml --alignment 'Valley road' --group 'Cross sections 20 m' \\\n"
    "      --from 0+100 --to 0+300 --paper A1 --scale 100 --exaggeration 2 --per-sheet 8 --grid --out out/part.pdf\n"
    "      a range of stations at a scale of its own\n"
    "  lvxhost sections road.xml --with ground.xml --alignment A1 --lines every=25,left=30,right=30 --out a1.svg\n"
    "      over sample lines made for this book, a file for each sheet; 'lvxhost lines --help' tells the rules\n";

constexpr std::string_view kProfileFooter =
    "Examples:\n"
    "  lvxhost profile examples/valley-road.xml --alignment 'Valley road' --out out/profile.pdf\n"
    "      ground and design over the stations, with the differences and the alignment's curvature, cut into sheets\n"
    "  lvxhost profile road.xml --with ground.xml --alignment A1 --ground-profile Ground --scale 500 --paper A4 --out a1.pdf\n"
    "      the ground of a surface under the alignment\n";

constexpr std::string_view kLinesFooter =
    "Rules add up; lines closer to each other than the tolerance are one. Every rule may stand in --rules too, under its\n"
    "own name ('names' as 'name'), which is also how --lines of projection and gls takes them.\n"
    "Examples:\n"
    "  lvxhost lines road.xml --alignment A1 --name 'Every 20' --every 20 --ends --left 25 --right 25\n"
    "      a line at each multiple of 20 and at both ends, saved in road.xml\n"
    "  lvxhost lines examples/valley-road.xml --alignment 'Valley road' --name Border --every 50 --elements \\\n"
    "      --border 'Existing ground' --largest 120 --names 'SL {n}' --save out/with-lines.xml\n"
    "      lines out to the border of the ground, at the ends of elements too, saved in another file\n"
    "  lvxhost lines road.xml --alignment A1 --name Design --replace --rules pvis,curve-ends,left=10,right=10\n"
    "      at the profile's points, in place of the lines that the group has\n";

constexpr std::string_view kGroupFooter =
    "Examples:\n"
    "  lvxhost group road.xml --name Trees --points-where 'description=TREE*;BUSH*'\n"
    "      all points of these descriptions as a group, saved in road.xml\n"
    "  lvxhost group examples/valley-road.xml --name Low --points-where elevation=..105,number=1-50 \\\n"
    "      --save out/with-group.xml\n"
    "      points by elevation and number, saved in another file\n"
    "\n";

constexpr std::string_view kVolumesFooter =
    "Volumes and horizontal areas in the drawing's unit, exact over both triangulations: cut where the design lies\n"
    "below the existing ground, fill where it lies above, and the areas that only one of them covers.\n"
    "Examples:\n"
    "  lvxhost volumes road.xml --surface Ground --design Subgrade\n"
    "  lvxhost volumes ground.xml --with design.xml --surface Ground --design Road --json | jq .difference.cut\n"
    "      the ground of one file, the design of another\n";

constexpr std::string_view kBatchFooter =
    "Each line is an object with a report command or one of a book, its drawing and its options under their own names; blank lines are\n"
    "skipped. Paths are seen from the current folder, or from --base. An option that may be given many times takes a\n"
    "list, as in \"with\": [\"ground.xml\", \"points.xml\"]. The common options hold for every job without its own:\n"
    "  {\"command\": \"points\", \"drawing\": \"road.xml\", \"alignment\": \"A1\", \"point-group\": \"Edge\", \"out\": \"edge\"}\n"
    "Example:\n"
    "  lvxhost batch examples/reports.jsonl --jobs 4 --overwrite\n"
    "      each drawing read once, every report in a process of its own; one that fails doesn't stop the others\n"
    "  lvxhost batch examples/reports.jsonl --overwrite --journal out/night.journal --resume --summary out/night.json\n"
    "      begins, or goes on where a run was broken off; jobs that are done and unchanged aren't run again\n";

/// "Conditions of --points-where: …", a line for each key.
std::string conditionsOfPoints() {
  constexpr std::size_t kColumn = 24;
  std::string text =
    "Conditions of --points-where, all of which have to hold, joined by commas or each in an option of its own:\n";
  for (const civil::PointFilterKey& key : civil::pointFilterKeys()) {
    std::string pair = "  " + std::string(key.key) + "=" + std::string(key.value);
    pair.resize(std::max(pair.size() + 1, kColumn), ' ');
    text += pair + std::string(key.meaning) + "\n";
  }
  return text +
    "In a pattern * stands for any letters and ? for one. Alternatives stand between semicolons: 'TREE*;BUSH*', '1-50;60'.\n"
    "A text with a comma or a semicolon stands in quotes of its own.\n";
}

constexpr std::string_view kDialogFooter =
    "COMMAND is projection, points or gls, or the name that the module itself gives a command.\n"
    "Dialogs, message boxes, the box for files and help are windows of Windows; elsewhere this is an error, and\n"
    "lvxhost-desktop shows them. An object to be picked is chosen from a list of the drawing's objects; points are named\n"
    "by their numbers. Sections that the GLS report adds aren't saved: 'lvxhost gls --save' does that.\n"
    "Example:\n"
    "  lvxhost dialog examples/valley-road.xml projection\n"
    "      the dialog of the profile projection report\n";

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
  static const std::string pointsText = std::string(kPointsFooter) + conditionsOfPoints();
  static const std::string groupText = std::string(kGroupFooter) + conditionsOfPoints();
  static const std::array<CommandDescription, 12> commands{{
      {Command::Info, "info", "Tell what a drawing holds", kInfoFooter},
      {Command::Projection, "projection", "Write the profile projection report: the ground across an alignment",
       kProjectionFooter},
      {Command::Points, "points", "Write the points report: points with station and offset against an alignment",
       pointsText},
      {Command::Gls, "gls", "Write the GLS report: an alignment with its profile and corridors in one table",
       kGlsFooter},
      {Command::Sections, "sections", "Draw cross sections into a PDF or SVG files, some on each sheet",
       kSectionsFooter},
      {Command::Profile, "profile", "Draw the long section of an alignment into a PDF or SVG files", kProfileFooter},
      {Command::Lines, "lines", "Make a group of sample lines by rules and save it", kLinesFooter},
      {Command::Group, "group", "Make a group of points by conditions or numbers and save it", groupText},
      {Command::Volumes, "volumes", "Tell cut and fill between two surfaces", kVolumesFooter},
      {Command::Batch, "batch", "Write many reports and books from a file of jobs", kBatchFooter},
      {Command::Play, "play", "Run commands by a script of what a user does", playText},
      {Command::Dialog, "dialog", "Run a report by its dialog, for a person (on Windows)", kDialogFooter},
  }};
  return commands;
}

const CommandDescription* findCommand(std::string_view name) {
  for (const CommandDescription& command : commands())
    if (command.name == name) return &command;
  return nullptr;
}

}  // namespace lvx::options
