#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "runtime/host_choices.h"

namespace lvx::options {

enum class Overwrite : std::uint8_t { Ask, Always, Never };
enum class ProgressMode : std::uint8_t { Auto, Always, Never };

/// The options that every command of lvxhost knows.
struct CommonOptions {
  /// Forms of the reports, joined by commas.
  std::string forms = "txt,xls,html";
  bool overwrite = false;
  bool keep = false;
  runtime::HostChoices host;
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

/// The options of the report commands; each command has some of them.
struct ReportOptions {
  std::string alignment;
  /// Empty text: the alignments outside any site. None: wherever the name is.
  std::optional<std::string> site;
  std::string profile;
  /// Sample line group.
  std::string group;
  std::string surface;
  std::optional<std::string> pointGroup;
  /// "1,5,7-9"
  std::optional<std::string> points;
  /// Path of the report files without extension.
  std::string stem;
  bool addSections = false;
  /// Where the drawing with its added sections goes; none: they stay in memory.
  std::optional<std::string> saveTo;
};

struct BatchOptions {
  std::string jobs;
  /// Reports at a time; none: as many as the machine has processors.
  std::optional<int> atOnce;
};

struct PlayOptions {
  std::string script;
  bool checks = false;
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
  /// Of info: a form that programs read.
  bool json = false;
  ReportOptions report;
  BatchOptions batch;
  PlayOptions play;
  WindowOptions window;
};

}  // namespace lvx::options
