#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "civil/sample_line_rules.h"
#include "runtime/host_choices.h"

namespace lvx::options {

enum class Overwrite : std::uint8_t { Ask, Always, Never };
enum class ProgressMode : std::uint8_t { Auto, Always, Never };

/// In place of a file's path: what comes on standard input.
inline constexpr const char* kStandardInput = "-";

/// The options that every command of lvxhost knows, as jobs of a batch have them too.
struct CommonOptions {
  /// Forms of the reports, joined by commas.
  std::string forms = "txt,xls,html";
  bool overwrite = false;
  bool keep = false;
  runtime::HostChoices host;
  /// Threads that read the drawing and pack large workbooks; none: as many as there are processors, in a batch one for each drawing.
  std::optional<int> threads;
  std::string progress = "auto";
  bool quiet = false;

  [[nodiscard]] Overwrite overwriteMode() const {
    if (overwrite) return Overwrite::Always;
    return keep ? Overwrite::Never : Overwrite::Ask;
  }
  [[nodiscard]] ProgressMode progressMode() const {
    if (progress == "always") return ProgressMode::Always;
    return progress == "never" || quiet ? ProgressMode::Never : ProgressMode::Auto;
  }
  [[nodiscard]] bool writes(const std::string& form) const {
    return ("," + forms + ",").find("," + form + ",") != std::string::npos;
  }
};

/// The files of a drawing, and how they are read.
struct DrawingOptions {
  /// The files that are added to the first one, in their order.
  std::vector<std::string> with;
  bool convertUnits = false;
  /// Those of the files whose northing and easting are swapped.
  std::vector<std::string> swapAxes;
};

/// Which points of a drawing are meant; one of them.
struct PointChoice {
  std::optional<std::string> group;
  /// "1,5,7-9", or "all"
  std::optional<std::string> numbers;
  /// Conditions that all have to hold.
  std::vector<std::string> where;
  /// The corners of a surface, which become points for the report.
  std::optional<std::string> ofSurface;
};

/// The options of the report commands, and of those that make objects in a drawing; each command has some of them.
struct ReportOptions {
  std::string alignment;
  /// Empty text: the alignments outside any site. None: wherever the name is.
  std::optional<std::string> site;
  std::optional<std::string> profile;
  /// A surface whose ground along the alignment is the profile.
  std::optional<std::string> groundProfile;
  /// How far the ground may be missed by fewer points, a length; none: 0.
  std::optional<std::string> groundTolerance;
  /// Sample line group.
  std::optional<std::string> group;
  /// Rules of a group that is made for the report.
  std::optional<std::string> lines;
  std::string surface;
  PointChoice points;
  /// Path of the report files without extension.
  std::string stem;
  bool addSections = false;
  /// Where the drawing with what was added to it goes. None: sections stay in memory, groups go into the drawing itself.
  std::optional<std::string> saveTo;
};

/// The options of the commands that draw sheets, beside those of ReportOptions; `stem` there is the file of the book.
struct BookOptions {
  /// "A3", or "900x600" in millimetres.
  std::string paper = "A3";
  std::string orientation = "landscape";
  /// "200" or "1:200"; none: the largest usual one that fits.
  std::optional<std::string> scale;
  /// Heights over lengths; none: the command's own.
  std::optional<std::string> exaggeration;
  /// Cross sections on a sheet at most.
  std::optional<int> perSheet;
  bool grid = false;
  /// Surfaces to be drawn; empty: all.
  std::vector<std::string> surfaces;
  /// Range of stations.
  std::optional<std::string> from;
  std::optional<std::string> to;
};

/// The value of one key of sample line rules.
struct RuleValue {
  std::optional<std::string> text;
  /// Of a key that stands for yes.
  bool isSet = false;
};

/// Of the commands that make a group and save it.
struct NewGroupOptions {
  std::string name;
  bool replace = false;
};

/// Of the command that makes a sample line group.
struct LinesOptions {
  /// "every=20,left=30"
  std::string rules;
  /// In the order of civil::sampleLineKeys().
  std::array<RuleValue, civil::kSampleLineKeyCount> keys;
};

/// The third of eight shares of the jobs, for who runs them on several machines.
struct Share {
  std::size_t number = 1;  ///< from 1 to `count`
  std::size_t count = 1;
};

/// Of the command that compares two surfaces.
struct VolumesOptions {
  std::string existing;
  std::string design;
};

struct BatchOptions {
  std::string jobs;
  /// Reports at a time; none: as many as the machine has processors.
  std::optional<int> atOnce;
  /// Folder from which paths in jobs are seen, or "jobs" for the job file's own; none: the current one.
  std::optional<std::string> base;
  /// "3/8": the third of eight shares of the jobs; none: all of them.
  std::optional<std::string> part;
  /// Journals of shares that were run elsewhere, for one summary in place of a run.
  std::vector<std::string> merge;
  /// Where a line is written for each job that ends.
  std::optional<std::string> journal;
  /// Run only what the journal hasn't got as done.
  bool resume = false;
  /// Where the end of the batch is told for programs.
  std::optional<std::string> summary;
};

struct PlayOptions {
  std::string script;
  bool checks = false;
  /// Dialogs are windows of the system.
  bool windows = false;
};

struct DialogOptions {
  std::string command;
};

struct WindowOptions {
  std::optional<std::string> drawing;
  /// "system", "light" or "dark"; none: as last chosen.
  std::optional<std::string> scheme;
};

/// Everything that a command line of lvxhost or lvxhost-desktop can say. A command reads the parts that are its own.
struct Options {
  CommonOptions common;
  /// Of every command of lvxhost that opens one.
  std::string drawing;
  DrawingOptions files;
  /// All that the command tells as one document for programs.
  bool json = false;
  ReportOptions report;
  BookOptions book;
  NewGroupOptions newGroup;
  LinesOptions lines;
  VolumesOptions volumes;
  BatchOptions batch;
  PlayOptions play;
  DialogOptions dialog;
  WindowOptions window;
};

}  // namespace lvx::options
